#pragma once

#include "../checks.h"
#include "../rows.h"

#include <customipp/types.h>

#include <tuple>

namespace customipp {

/** A search for peaks within columns and rows of an image. */
template <class T> struct PeakSearch {
    Rows<const T> src;
    int width, height;
    int border; ///< columns and rows on each side that are left out
    T threshold;
    bool diagonal; ///< whether the neighbours at the corners count
    IppiPoint* peaks;
    int capacity;
};
/** Gives the number of peaks in the list. */
template <class T> using PeakKernel = int (*)(const PeakSearch<T>&);
using FindPeaksKernels = std::tuple<PeakKernel<Ipp32s>, PeakKernel<Ipp32f>>;

/** The search needs no memory; callers get something to allocate all the same. */
inline IppStatus sizeOfFindPeaks(int roiWidth, int* size)
{
    const IppStatus status = checkArguments({size}, {roiWidth, 1}, {});
    if (size)
        *size = status == ippStsNoErr ? 64 : 0;
    return status;
}

template <class T>
IppStatus runFindPeaks(const FindPeaksKernels& kernels, Rows<const T> src, IppiSize roi, T threshold,
    IppiPoint* peaks, int capacity, int* count, IppiNorm norm, int border, const Ipp8u* buffer)
{
    if (const IppStatus status = checkArguments({src.first, peaks, count, buffer}, roi, {}))
        return status;
    if (border < 0)
        return ippStsSizeErr;
    if (const IppStatus status = checkRowSteps({{src.step, int64_t {roi.width}, sizeof(T)}}))
        return status;
    if (capacity < 1 || (norm != ippiNormInf && norm != ippiNormL1))
        return ippStsBadArgErr;
    *count = std::get<PeakKernel<T>>(kernels)(
        {src, roi.width, roi.height, border, threshold, norm == ippiNormInf, peaks, capacity});
    return ippStsNoErr;
}

} // namespace customipp
