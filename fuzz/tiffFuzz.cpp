// Whatever bytes come as a file of the format TIFF.
#include "formatFuzz.h"

#include <formats/cTiffFormat.h>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* i_data, std::size_t i_size)
{
    return fuzzFormat(cTiffFormat(), i_data, i_size);
}
