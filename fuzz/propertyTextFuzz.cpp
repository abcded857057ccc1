// Whatever text comes as a property tree: it is taken or refused, and what was taken is written and read the
// same.
#include <QTextStream>
#include <cstdint>
#include <cstdlib>
#include <tarnbase/cMapObj.h>
#include <tarnbase/cTracer.h>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* i_data, std::size_t i_size)
{
    cTracer::cerr.setState({});
    QString text = QString::fromUtf8(reinterpret_cast<const char*>(i_data), int(i_size));
    QTextStream in(&text);
    cMapObj map;
    if (!map.readStream(in))
        return 0;
    QString written;
    QTextStream out(&written);
    if (!map.write(out))
        std::abort();
    out.flush();
    QTextStream again(&written);
    cMapObj same;
    if (!same.readStream(again))
        std::abort();
    QString twice;
    QTextStream outAgain(&twice);
    same.write(outAgain);
    outAgain.flush();
    if (written != twice)
        std::abort();
    return 0;
}
