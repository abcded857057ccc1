// Whatever bytes come as a file of the format TIS.
#include "formatFuzz.h"

#include <formats/cStreamFormat.h>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* i_data, std::size_t i_size)
{
    return fuzzFormat(cStreamFormat(), i_data, i_size);
}
