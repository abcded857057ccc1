#pragma once

#include "reduce.h"

#include <tuple>

namespace customipp {

/** A bound for each channel, both included. */
template <class T> struct Bounds {
    const T* lower;
    const T* upper;
};

template <class T, int Channels> struct CountInRangeKernel {
    void (*run)(const Operands<T>& operands, int* counts, Bounds<T> bounds);
};

using CountInRangeKernels
    = std::tuple<CountInRangeKernel<Ipp8u, 1>, CountInRangeKernel<Ipp32f, 1>, CountInRangeKernel<Ipp8u, 3>>;

template <class T, int Channels>
IppStatus runCountInRange(
    const CountInRangeKernels& kernels, const Operands<T>& operands, int* counts, Bounds<T> bounds)
{
    if (!bounds.lower || !bounds.upper)
        return ippStsNullPtrErr;
    if (const IppStatus status = checkOperands<false>(operands, Channels, counts))
        return status;
    for (int c = 0; c < Channels; ++c)
        if (bounds.lower[c] > bounds.upper[c])
            return ippStsRangeErr;
    std::get<CountInRangeKernel<T, Channels>>(kernels).run(operands, counts, bounds);
    return ippStsNoErr;
}

} // namespace customipp
