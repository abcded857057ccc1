#pragma once

#include "move.h"

#include <type_traits>

namespace customipp {

/** Kernels from float, by rounding mode. */
struct RoundedKernels {
    MoveKernel byMode[3];
};

struct ConvertKernels {
    MoveKernel from8uTo16u, from8uTo32f, from16uTo32f, from16uTo8u, from32sTo8u;
    RoundedKernels to8u, to8s, to16u, to16s;

    template <class S, int, class D, int> MoveKernel of() const
    {
        if constexpr (std::is_same_v<S, Ipp8u>)
            return std::is_same_v<D, Ipp16u> ? from8uTo16u : from8uTo32f;
        else if constexpr (std::is_same_v<S, Ipp16u>)
            return std::is_same_v<D, Ipp32f> ? from16uTo32f : from16uTo8u;
        else
            return from32sTo8u;
    }

    template <class D> const RoundedKernels& rounded() const
    {
        if constexpr (std::is_same_v<D, Ipp8u>)
            return to8u;
        else if constexpr (std::is_same_v<D, Ipp8s>)
            return to8s;
        else if constexpr (std::is_same_v<D, Ipp16u>)
            return to16u;
        else
            return to16s;
    }
};

/** Converts from float. The hint for accuracy is all that may be or-ed to the mode. */
template <class D>
IppStatus runRounded(
    const ConvertKernels& kernels, Rows<const Ipp32f> src, Rows<D> dst, IppiSize roi, IppRoundMode mode)
{
    if (const IppStatus status = checkArguments({src.first, dst.first}, roi, {src.step, dst.step}))
        return status;
    const int rounding = mode & ~ippRndHintAccurate;
    if (rounding < ippRndZero || rounding > ippRndFinancial)
        return ippStsRoundModeNotSupportedErr;
    return runMoveKernel<Ipp32f, D>(kernels.rounded<D>().byMode[rounding], src, 1, dst, 1, roi);
}

} // namespace customipp
