// Whatever bytes come as a file of the format NPY.
#include "formatFuzz.h"

#include <formats/cNpyFormat.h>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* i_data, std::size_t i_size)
{
    return fuzzFormat(cNpyFormat(), i_data, i_size);
}
