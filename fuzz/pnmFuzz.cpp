// Whatever bytes come as a portable map. What is read is written as PAM, which holds all of them.
#include "formatFuzz.h"

#include <formats/cPnmFormat.h>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* i_data, std::size_t i_size)
{
    return fuzzFormat(cPnmFormat(cPnmFormat::Pam), i_data, i_size);
}
