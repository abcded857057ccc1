// What all movers share: the shape of a kernel, and how a call becomes one.
#pragma once

#include "../checks.h"
#include "../rows.h"

#include <customipp/types.h>

#include <cstddef>
#include <cstdint>

namespace customipp {

/** Bytes that the last cache before memory holds; a destination beyond it is better written past all caches.
 */
size_t lastLevelCacheBytes();

/** What a kernel walks over: pixels, or lanes where all channels go the same way. */
struct Area {
    size_t width;
    size_t height;
};

/** An image's step with the bytes of one of width. */
struct StepBytes {
    int step;
    size_t bytes;
};

/** A region with `lanes` for each pixel; one long row when every image is without padding. */
inline Area areaOf(IppiSize roi, int lanes, std::initializer_list<StepBytes> images)
{
    const Area area {size_t(roi.width) * size_t(lanes), size_t(roi.height)};
    for (const StepBytes& image : images)
        if (size_t(image.step) != area.width * image.bytes)
            return area;
    return {area.width * area.height, 1};
}

/** One image on its way to another. Rows are bytes at any address. */
struct Move {
    Rows<const uint8_t> src;
    Rows<uint8_t> dst;
    Area area;
    size_t dstBytes; ///< of one of width

    bool isBeyondCache() const { return area.width * area.height * dstBytes > lastLevelCacheBytes(); }
};
using MoveKernel = void (*)(const Move&);

/** The same rows as bytes. */
template <class T> Rows<const uint8_t> bytesOf(Rows<const T> rows)
{
    return {reinterpret_cast<const uint8_t*>(rows.first), rows.step};
}
template <class T> Rows<uint8_t> bytesOf(Rows<T> rows)
{
    return {reinterpret_cast<uint8_t*>(rows.first), rows.step};
}

template <class S, class D>
IppStatus runMoveKernel(
    MoveKernel kernel, Rows<const S> src, int srcLanes, Rows<D> dst, int dstLanes, IppiSize roi)
{
    if (const IppStatus status = checkArguments({src.first, dst.first}, roi, {src.step, dst.step}))
        return status;
    const int together = srcLanes == dstLanes ? srcLanes : 1;
    const size_t srcBytes = sizeof(S) * size_t(srcLanes / together);
    const size_t dstBytes = sizeof(D) * size_t(dstLanes / together);
    kernel({bytesOf(src), bytesOf(dst), areaOf(roi, together, {{src.step, srcBytes}, {dst.step, dstBytes}}),
        dstBytes});
    return ippStsNoErr;
}

/** Moves a region by the kernel for these types and channels. */
template <class S, int SrcChannels, class D, int DstChannels, class Kernels>
IppStatus runMove(const Kernels& kernels, Rows<const S> src, Rows<D> dst, IppiSize roi)
{
    return runMoveKernel<S, D>(
        kernels.template of<S, SrcChannels, D, DstChannels>(), src, SrcChannels, dst, DstChannels, roi);
}

} // namespace customipp
