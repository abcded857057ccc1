#pragma once

#include "../checks.h"
#include "../rows.h"

#include <customipp/customipp.h>

#include <tuple>

namespace customipp {

/** Where the results go, an element for each channel. */
template <class T> struct MinMaxResult {
    T* least;
    T* greatest;
};

/** What finds the extremes of pixels of one type and number of channels. */
template <class T, int Channels> struct MinMaxKernel {
    void (*run)(Rows<const T> pixels, Extent extent, MinMaxResult<T> result);
};

using MinMaxKernels = std::tuple<MinMaxKernel<Ipp8u, 1>, MinMaxKernel<Ipp8u, 3>, MinMaxKernel<Ipp8u, 4>,
    MinMaxKernel<Ipp16u, 1>, MinMaxKernel<Ipp16s, 1>, MinMaxKernel<Ipp32f, 1>, MinMaxKernel<Ipp32u, 1>,
    MinMaxKernel<Ipp32s, 1>, MinMaxKernel<Ipp64f, 1>>;

template <class T, int Channels>
IppStatus runMinMax(const MinMaxKernels& kernels, Rows<const T> pixels, IppiSize size, MinMaxResult<T> result)
{
    if (const IppStatus status
        = checkArguments({pixels.first, result.least, result.greatest}, size, {pixels.step}))
        return status;
    if (const IppStatus status = checkStrictSteps(size.width, {{pixels.step, Channels * int {sizeof(T)}, 1}}))
        return status;
    std::get<MinMaxKernel<T, Channels>>(kernels).run(pixels, extentOf(size, Channels, pixels), result);
    return ippStsNoErr;
}

/** A sequence is an image of one row. */
template <class T>
IppStatus runSignalMinMax(const MinMaxKernels& kernels, const T* src, int len, MinMaxResult<T> result)
{
    if (const IppStatus status = checkArguments({src, result.least, result.greatest}, {len, 1}, {}))
        return status;
    std::get<MinMaxKernel<T, 1>>(kernels).run({src, 0}, {static_cast<size_t>(len), 1}, result);
    return ippStsNoErr;
}

} // namespace customipp
