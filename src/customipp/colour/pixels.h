// Operations that turn pixels of three channels, or of three and an alpha that stays, into others of the same
// layout.
#pragma once

#include "../movers/move.h"

namespace customipp {

/** The kernels of one operation and one instruction set. */
struct PixelKernels {
    MoveKernel three;
    MoveKernel threeOfFour;
};

/** `channels` is 3, or 4 for pixels whose alpha stays. */
template <class T>
IppStatus runUnary(const PixelKernels& kernels, Rows<const T> src, Rows<T> dst, IppiSize roi, int channels)
{
    static_assert(sizeof(T) == 1);
    if (const IppStatus status = checkArguments({src.first, dst.first}, roi, {src.step, dst.step}))
        return status;
    const size_t bytes = size_t(channels);
    (channels == 3 ? kernels.three : kernels.threeOfFour)(
        {src, dst, areaOf(roi, 1, {{src.step, bytes}, {dst.step, bytes}}), bytes});
    return ippStsNoErr;
}

} // namespace customipp
