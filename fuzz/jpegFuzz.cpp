// Whatever bytes come as a file of the format JPEG.
#include "formatFuzz.h"

#include <formats/cJpegBmpFormat.h>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* i_data, std::size_t i_size)
{
    return fuzzFormat(cJpegFormat(), i_data, i_size, true);
}
