#pragma once

#include "reduce.h"

#include <tuple>

namespace customipp {

/** Gives a value for each channel. */
template <class T> using NormRun = void (*)(const Operands<T>& operands, double* values);

template <class T, int Channels> struct NormKernel {
    NormRun<T> run;
};
template <class T> struct MaskedNormKernel {
    NormRun<T> run;
};

/** The kernels of one norm, of an image or of the difference of two. */
using ImageNormKernels = std::tuple<NormKernel<Ipp8u, 1>, NormKernel<Ipp8u, 3>, NormKernel<Ipp8u, 4>,
    NormKernel<Ipp16u, 1>, NormKernel<Ipp16s, 1>, NormKernel<Ipp32f, 1>>;

struct NormKernels {
    ImageNormKernels image;
    std::tuple<MaskedNormKernel<Ipp8u>, MaskedNormKernel<Ipp16u>, MaskedNormKernel<Ipp32f>> masked;
    NormRun<Ipp8u> maskedChannel[3]; ///< one channel of three
};

template <class T, int Channels>
IppStatus runNorm(const NormKernels& kernels, const Operands<T>& operands, double* values)
{
    const IppStatus status = checkOperands<true>(operands, Channels, values);
    if (status == ippStsNoErr)
        std::get<NormKernel<T, Channels>>(kernels.image).run(operands, values);
    return status;
}

template <class T>
IppStatus runNormMasked(const NormKernels& kernels, const Operands<T>& operands, double* value)
{
    const IppStatus status = checkOperands<true>(operands, 1, value, Beside::mask);
    if (status == ippStsNoErr)
        std::get<MaskedNormKernel<T>>(kernels.masked).run(operands, value);
    return status;
}

template <class T>
IppStatus runNormMaskedChannel(
    const NormKernels& kernels, const Operands<T>& operands, int channel, double* value)
{
    if (const IppStatus status = checkOperands<true>(operands, 3, value, Beside::mask))
        return status;
    const IppStatus status = checkChannel(channel);
    if (status == ippStsNoErr)
        kernels.maskedChannel[channel - 1](operands, value);
    return status;
}

template <class T, int Channels>
IppStatus runNormDiff(const ImageNormKernels& kernels, const Operands<T>& operands, double* values)
{
    const IppStatus status = checkOperands<true>(operands, Channels, values, Beside::others);
    if (status == ippStsNoErr)
        std::get<NormKernel<T, Channels>>(kernels).run(operands, values);
    return status;
}

} // namespace customipp
