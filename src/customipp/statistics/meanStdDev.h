#pragma once

#include "reduce.h"

#include <tuple>

namespace customipp {

struct MeanStdDev {
    double mean = 0;
    double stdDev = 0;
};

template <class T> using MeanStdDevRun = MeanStdDev (*)(const Operands<T>& operands);
template <class T> struct MeanStdDevKernel {
    MeanStdDevRun<T> run;
};

struct MeanStdDevKernels {
    using OfTypes = std::tuple<MeanStdDevKernel<Ipp8u>, MeanStdDevKernel<Ipp16u>, MeanStdDevKernel<Ipp32f>>;
    OfTypes image, masked;
    MeanStdDevRun<Ipp8u> channel[3], maskedChannel[3]; ///< one channel of three
};

/** Where the results go; both may be null. */
struct MeanStdDevResult {
    double* mean;
    double* stdDev;

    IppStatus take(MeanStdDev values) const
    {
        if (mean)
            *mean = values.mean;
        if (stdDev)
            *stdDev = values.stdDev;
        return ippStsNoErr;
    }
};

template <class T>
IppStatus runMeanStdDev(
    const MeanStdDevKernels& kernels, const Operands<T>& operands, const MeanStdDevResult& result)
{
    const IppStatus status = checkOperands<true>(operands, 1, operands.pixels.first);
    return status ? status : result.take(std::get<MeanStdDevKernel<T>>(kernels.image).run(operands));
}

template <class T>
IppStatus runMeanStdDevMasked(
    const MeanStdDevKernels& kernels, const Operands<T>& operands, const MeanStdDevResult& result)
{
    const IppStatus status = checkOperands<true>(operands, 1, operands.pixels.first, Beside::mask);
    return status ? status : result.take(std::get<MeanStdDevKernel<T>>(kernels.masked).run(operands));
}

template <class T>
IppStatus runMeanStdDevChannel(const MeanStdDevKernels& kernels, const Operands<T>& operands, int channel,
    const MeanStdDevResult& result)
{
    if (const IppStatus status = checkOperands<true>(operands, 3, operands.pixels.first))
        return status;
    const IppStatus status = checkChannel(channel);
    return status ? status : result.take(kernels.channel[channel - 1](operands));
}

template <class T>
IppStatus runMeanStdDevMaskedChannel(const MeanStdDevKernels& kernels, const Operands<T>& operands,
    int channel, const MeanStdDevResult& result)
{
    if (const IppStatus status = checkOperands<true>(operands, 3, operands.pixels.first, Beside::mask))
        return status;
    const IppStatus status = checkChannel(channel);
    return status ? status : result.take(kernels.maskedChannel[channel - 1](operands));
}

} // namespace customipp
