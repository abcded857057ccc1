#pragma once

#include "../checks.h"
#include "../rows.h"
#include "../taggedState.h"

#include <customipp/types.h>

#include <algorithm>
#include <climits>
#include <cmath>
#include <tuple>

/** Histograms: the spec structure, which holds the levels, and the calls. */
namespace customipp {

inline constexpr uint32_t histogramMagic = 0x48495354;

/** At an aligned place in the caller's memory; the levels follow. */
struct alignas(memoryAlignment) HistogramSpecification {
    SpecificationTag tag;
    int count;

    float* levels() { return reinterpret_cast<float*>(this + 1); }
    const float* levels() const { return reinterpret_cast<const float*>(this + 1); }
    int bins() const { return count - 1; }
};

/** How many values a pair of bytes has. */
inline constexpr size_t bytePairs = 65536;

/**
 * How many counters a histogram of a type runs with. Integers have one for each value and not for each bin.
 * Pixels that follow one another go to different sets of counters, as adding to one that has just been
 * written would wait for it; of bytes, many are counted by pairs.
 */
inline int64_t countersOf(IppDataType dataType, int levels)
{
    if (dataType == ipp8u)
        return 256 + int64_t {bytePairs};
    return 2 * (dataType == ipp32f ? int64_t {levels} : 65536);
}

template <class T> struct HistogramCall {
    Rows<const T> pixels;
    Extent extent;
    const HistogramSpecification& specification;
    uint32_t* counters; ///< As many as countersOf tells; undefined content
    Ipp32u* histogram;
};
template <class T> using HistogramKernel = void (*)(const HistogramCall<T>&);
using HistogramKernels = std::tuple<HistogramKernel<Ipp8u>, HistogramKernel<Ipp16u>, HistogramKernel<Ipp16s>,
    HistogramKernel<Ipp32f>>;

inline IppStatus checkHistogram(IppDataType dataType, int channels, const int* levels)
{
    if (dataType != ipp8u && dataType != ipp16u && dataType != ipp16s && dataType != ipp32f)
        return ippStsDataTypeErr;
    if (channels != 1)
        return ippStsNumChannelsErr;
    return levels[0] < 2 ? ippStsHistoNofLevelsErr : ippStsNoErr;
}

inline IppStatus runHistogramSize(IppDataType dataType, IppiSize roi, const int* levels, int channels,
    int* specificationSize, int* bufferSize)
{
    for (int* size : {specificationSize, bufferSize})
        if (size)
            *size = 0;
    if (const IppStatus status = checkArguments({levels, specificationSize, bufferSize}, roi, {}))
        return status;
    if (const IppStatus status = checkHistogram(dataType, channels, levels))
        return status;
    const int64_t specification
        = withAlignment(int64_t {sizeof(HistogramSpecification)} + levels[0] * int64_t {sizeof(float)});
    const int64_t buffer = withAlignment(countersOf(dataType, levels[0]) * int64_t {sizeof(uint32_t)});
    if (std::max(specification, buffer) > INT_MAX)
        return ippStsExceededSizeErr;
    *specificationSize = int(specification);
    *bufferSize = int(buffer);
    return ippStsNoErr;
}

inline IppStatus runHistogramInit(IppDataType dataType, const float* lower, const float* upper,
    const int* levels, int channels, IppiHistogramSpec* memory)
{
    if (const IppStatus status = checkArguments({lower, upper, levels, memory}, {1, 1}, {}))
        return status;
    if (const IppStatus status = checkHistogram(dataType, channels, levels))
        return status;
    const float low = lower[0], high = upper[0];
    if (!std::isfinite(low) || !std::isfinite(high) || low >= high)
        return ippStsRangeErr;
    auto* specification = aligned<HistogramSpecification>(memory);
    specification->tag = {histogramMagic, dataType, channels};
    specification->count = levels[0];
    const double span = double {high} - low;
    const int bins = specification->bins();
    for (int k = 0; k < bins; ++k)
        specification->levels()[k] = float(low + k * span / bins);
    specification->levels()[bins] = high;
    return ippStsNoErr;
}

inline IppStatus runHistogramLevels(const IppiHistogramSpec* memory, float* const* levels)
{
    if (!memory || !levels || !levels[0])
        return ippStsNullPtrErr;
    const auto* specification = aligned<HistogramSpecification>(memory);
    if (specification->tag.magic != histogramMagic)
        return ippStsBadArgErr;
    std::copy_n(specification->levels(), specification->count, levels[0]);
    return ippStsNoErr;
}

template <class T>
IppStatus runHistogram(const HistogramKernels& kernels, Rows<const T> pixels, IppiSize roi, Ipp32u* histogram,
    const IppiHistogramSpec* memory, Ipp8u* buffer)
{
    if (const IppStatus status
        = checkArguments({pixels.first, histogram, memory, buffer}, roi, {pixels.step}))
        return status;
    if (const IppStatus status = checkStrictSteps(roi.width, {{pixels.step, int(sizeof(T)), 1}}))
        return status;
    const auto* specification = aligned<HistogramSpecification>(memory);
    if (specification->tag != SpecificationTag {histogramMagic, dataTypeOf<T>, 1})
        return ippStsBadArgErr;
    std::get<HistogramKernel<T>>(kernels)(
        {pixels, extentOf(roi, 1, pixels), *specification, aligned<uint32_t>(buffer), histogram});
    return ippStsNoErr;
}

} // namespace customipp
