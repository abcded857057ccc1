#pragma once

#include "../movers/move.h"

namespace customipp {

using TwistKernel = void (*)(const Move& move, const Ipp32f (*twist)[4]);

struct TwistKernels {
    TwistKernel three;
    TwistKernel threeOfFour;
};

/** `Channels` is 3, or 4 for pixels whose alpha stays. */
template <int Channels>
IppStatus runTwist(const TwistKernels& kernels, Rows<const Ipp8u> src, Rows<Ipp8u> dst, IppiSize roi,
    const Ipp32f (*twist)[4])
{
    if (const IppStatus status = checkArguments({src.first, dst.first, twist}, roi, {src.step, dst.step}))
        return status;
    const auto kernel = Channels == 3 ? kernels.three : kernels.threeOfFour;
    kernel({src, dst, areaOf(roi, 1, {{src.step, Channels}, {dst.step, Channels}}), Channels}, twist);
    return ippStsNoErr;
}

} // namespace customipp
