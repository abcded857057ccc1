#pragma once

#include "reduce.h"

#include <tuple>

namespace customipp {

/** Where the results go, an element for each channel. */
template <class T> struct MinMaxResult {
    T* least;
    T* greatest;
};

/** What finds the extremes of pixels of one type and number of channels. */
template <class T, int Channels> struct MinMaxKernel {
    void (*run)(const Operands<T>& operands, MinMaxResult<T> result);
};

using MinMaxKernels = std::tuple<MinMaxKernel<Ipp8u, 1>, MinMaxKernel<Ipp8u, 3>, MinMaxKernel<Ipp8u, 4>,
    MinMaxKernel<Ipp16u, 1>, MinMaxKernel<Ipp16s, 1>, MinMaxKernel<Ipp32f, 1>, MinMaxKernel<Ipp32u, 1>,
    MinMaxKernel<Ipp32s, 1>, MinMaxKernel<Ipp64f, 1>>;

template <class T, int Channels>
IppStatus runMinMax(const MinMaxKernels& kernels, Rows<const T> pixels, IppiSize size, MinMaxResult<T> result)
{
    const Operands<T> operands {pixels, {}, {}, size};
    if (!result.least)
        return ippStsNullPtrErr;
    if (const IppStatus status = checkOperands<false>(operands, Channels, result.greatest))
        return status;
    std::get<MinMaxKernel<T, Channels>>(kernels).run(operands, result);
    return ippStsNoErr;
}

/** A sequence is an image of one row. */
template <class T>
IppStatus runSignalMinMax(const MinMaxKernels& kernels, const T* src, int len, MinMaxResult<T> result)
{
    if (const IppStatus status = checkArguments({src, result.least, result.greatest}, {len, 1}, {}))
        return status;
    std::get<MinMaxKernel<T, 1>>(kernels).run({{src, 0}, {}, {}, {len, 1}}, result);
    return ippStsNoErr;
}

} // namespace customipp
