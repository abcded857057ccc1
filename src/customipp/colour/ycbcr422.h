#pragma once

#include "../movers/move.h"

namespace customipp {

/** A packed image and its planes, of which only one side is written. */
struct PackedRows {
    Rows<const uint8_t> packed;
    Rows<uint8_t> planes[3];
    Area area;
};
struct PlaneRows {
    Rows<const uint8_t> planes[3];
    Rows<uint8_t> packed;
    Area area;
};

struct YCbCr422Kernels {
    void (*toPlanes)(const PackedRows&);
    void (*toPacked)(const PlaneRows&);
};

/** The checks of both directions; the tables of planes come before what they hold. */
template <class Byte>
IppStatus checkPlanes(const void* packed, int packedStep, Byte* const* planes, const int* steps, IppiSize roi)
{
    if (!packed || !planes || !steps)
        return ippStsNullPtrErr;
    const IppiSize atLeastTwo {roi.width < 2 ? 0 : roi.width, roi.height};
    return checkArguments(
        {planes[0], planes[1], planes[2]}, atLeastTwo, {packedStep, steps[0], steps[1], steps[2]});
}

inline IppStatus statusOfWidth(int width) { return width % 2 == 0 ? ippStsNoErr : ippStsDoubleSize; }

inline IppStatus runToPlanes(const YCbCr422Kernels& kernels, Rows<const Ipp8u> src, Ipp8u* const* dst,
    const int* dstStep, IppiSize roi)
{
    if (const IppStatus status = checkPlanes(src.first, src.step, dst, dstStep, roi))
        return status;
    kernels.toPlanes({src, {{dst[0], dstStep[0]}, {dst[1], dstStep[1]}, {dst[2], dstStep[2]}},
        {size_t(roi.width), size_t(roi.height)}});
    return statusOfWidth(roi.width);
}

inline IppStatus runToPacked(const YCbCr422Kernels& kernels, const Ipp8u* const* src, const int* srcStep,
    Rows<Ipp8u> dst, IppiSize roi)
{
    if (const IppStatus status = checkPlanes(dst.first, dst.step, src, srcStep, roi))
        return status;
    kernels.toPacked({{{src[0], srcStep[0]}, {src[1], srcStep[1]}, {src[2], srcStep[2]}}, dst,
        {size_t(roi.width), size_t(roi.height)}});
    return statusOfWidth(roi.width);
}

} // namespace customipp
