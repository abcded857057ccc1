#pragma once

#include "move.h"

namespace customipp {

/** Pixels of four bytes whose channels change places. */
struct Swap {
    Rows<uint8_t> pixels;
    Area area;
    const int* order;
};
using SwapKernel = void (*)(const Swap&);

struct SwapChannelsKernels {
    SwapKernel four;
};

inline IppStatus runSwapChannels(
    const SwapChannelsKernels& kernels, Rows<uint8_t> pixels, IppiSize roi, const int* order)
{
    if (const IppStatus status = checkArguments({pixels.first, order}, roi, {pixels.step}))
        return status;
    for (int k = 0; k < 4; ++k)
        if (order[k] < 0 || order[k] > 3)
            return ippStsChannelOrderErr;
    kernels.four({pixels, areaOf(roi, 1, {{pixels.step, 4}}), order});
    return ippStsNoErr;
}

} // namespace customipp
