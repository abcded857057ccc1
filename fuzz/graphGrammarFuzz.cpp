// Whatever text comes as a graph: it is parsed or refused with places, and what was parsed is printed and
// parsed the same.
#include "cPipeline.h"

#include <cstdint>
#include <cstdlib>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* i_data, std::size_t i_size)
{
    const QString text = QString::fromUtf8(reinterpret_cast<const char*>(i_data), int(i_size));
    const cParsedPipeline parsed = host::parsePipeline(text, QStringLiteral("input"));
    if (!parsed.errors.isEmpty())
        return 0;
    const QString printed = host::printPipeline(parsed.pipeline);
    const cParsedPipeline again = host::parsePipeline(printed, QStringLiteral("input"));
    if (!again.errors.isEmpty() || host::printPipeline(again.pipeline) != printed)
        std::abort();
    return 0;
}
