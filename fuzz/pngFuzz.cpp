// Whatever bytes come as a file of the format PNG.
#include "formatFuzz.h"

#include <formats/cPngFormat.h>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* i_data, std::size_t i_size)
{
    return fuzzFormat(cPngFormat(), i_data, i_size);
}
