// Whatever bytes come as a file of the format PFM.
#include "formatFuzz.h"

#include <formats/cPfmFormat.h>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* i_data, std::size_t i_size)
{
    return fuzzFormat(cPfmFormat(), i_data, i_size);
}
