#pragma once

#include "../movers/move.h"

namespace customipp {

struct YUV422Kernels {
    MoveKernel toRGB;
};

template <class S, int SrcChannels, class D, int DstChannels>
IppStatus runMove(const YUV422Kernels& kernels, Rows<const S> src, Rows<D> dst, IppiSize roi)
{
    // A row of one pixel has no V.
    const IppiSize atLeastTwo {roi.width < 2 ? 0 : roi.width, roi.height};
    if (const IppStatus status = checkArguments({src.first, dst.first}, atLeastTwo, {src.step, dst.step}))
        return status;
    kernels.toRGB({src, dst, {size_t(roi.width), size_t(roi.height)}, DstChannels});
    return roi.width % 2 == 0 ? ippStsNoErr : ippStsDoubleSize;
}

} // namespace customipp
