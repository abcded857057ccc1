// Whatever bytes come as an image: no undefined memory, no great allocation, and what was read is written the
// same.
#include <QBuffer>
#include <QDataStream>
#include <cstdint>
#include <cstdlib>
#include <tarnbase/cTracer.h>
#include <tarnimg/cImg.h>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* i_data, std::size_t i_size)
{
    cTracer::cerr.setState({});
    const QByteArray bytes(reinterpret_cast<const char*>(i_data), int(i_size));
    QDataStream in(bytes);
    cImg image;
    in >> image;
    if (in.status() != QDataStream::Ok) {
        if (image.isValid())
            std::abort();
        return 0;
    }
    QByteArray written;
    QDataStream out(&written, QIODevice::WriteOnly);
    out << image;
    QDataStream again(written);
    cImg same;
    again >> same;
    if (image.isValid() != same.isValid() || (image.isValid() && !(image == same)))
        std::abort();
    return 0;
}
