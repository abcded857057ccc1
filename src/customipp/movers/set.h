#pragma once

#include "move.h"

namespace customipp {

/** A region to fill with copies of one pixel. */
struct Fill {
    Rows<uint8_t> dst;
    Area area;
    const uint8_t* pixel;
    bool isBeyondCache;
};
using FillKernel = void (*)(const Fill&);

struct SetKernels {
    FillKernel ofBytes[4]; ///< for pixels of 1 to 4 bytes
    FillKernel channel; ///< one byte of each four
};

/** Fills whole pixels. */
template <class T, int Channels>
IppStatus runFill(const SetKernels& kernels, const T* pixel, Rows<T> dst, IppiSize roi)
{
    if (const IppStatus status = checkArguments({pixel, dst.first}, roi, {dst.step}))
        return status;
    constexpr size_t bytes = sizeof(T) * Channels;
    const Area area = areaOf(roi, 1, {{dst.step, bytes}});
    kernels.ofBytes[bytes - 1]({bytesOf(dst), area, reinterpret_cast<const uint8_t*>(pixel),
        area.width * area.height * bytes > lastLevelCacheBytes()});
    return ippStsNoErr;
}

/** Fills the first of `Channels` channels. */
template <class T, int Channels>
IppStatus runFillChannel(const SetKernels& kernels, T value, Rows<T> dst, IppiSize roi)
{
    static_assert(sizeof(T) == 1 && Channels == 4);
    if (const IppStatus status = checkArguments({dst.first}, roi, {dst.step}))
        return status;
    kernels.channel({dst, areaOf(roi, 1, {{dst.step, Channels}}), &value, false});
    return ippStsNoErr;
}

} // namespace customipp
