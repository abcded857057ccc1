#pragma once

#include "checks.h"
#include "rows.h"

#include <customipp/types.h>

#include <algorithm>
#include <tuple>

/**
 * The frame of operations that compute each lane from the lanes at the same place: the checks, and the choice
 * of the kernel by pixel type. The kernels themselves are in pointwise-inl.h.
 */
namespace customipp {

/** One constant for each channel of a pixel. */
template <class T> struct Constants {
    const T* values;
    int channels;
};

template <class T>
using BinaryKernel
    = IppStatus (*)(Rows<const T> first, Rows<const T> second, Rows<T> out, Extent extent, int scaleFactor);
template <class T>
using ConstantsKernel = IppStatus (*)(
    Rows<const T> pixels, Constants<T> constants, Rows<T> out, Extent extent, int scaleFactor);
template <class T> using UnaryKernel = IppStatus (*)(Rows<const T> pixels, Rows<T> out, Extent extent);
template <class T>
using AccumulateKernel
    = IppStatus (*)(Rows<const T> first, Rows<const T> second, Rows<Ipp32f> accumulator, Extent extent);

/** The kernels of one operation, by pixel type. */
template <class... T> using BinaryKernels = std::tuple<BinaryKernel<T>...>;
template <class... T> using UnaryKernels = std::tuple<UnaryKernel<T>...>;
template <class... T> using AccumulateKernels = std::tuple<AccumulateKernel<T>...>;

template <class... T> struct ConstantsKernelsOf {
    std::tuple<ConstantsKernel<T>...> everyChannel;
    /** Four channels, of which the last keeps what it holds; null where no function needs it. */
    ConstantsKernel<Ipp8u> keepingAlpha;
    /** Whether a constant of 0 is refused. */
    bool divides;
};
using ConstantsKernels = ConstantsKernelsOf<Ipp8u, Ipp16u, Ipp16s, Ipp32f>;

template <class T, class Kernels>
IppStatus runBinary(const Kernels& kernels, Rows<const T> first, Rows<const T> second, Rows<T> out,
    IppiSize size, int channels, int scaleFactor = 0)
{
    if (const IppStatus status
        = checkArguments({first.first, second.first, out.first}, size, {first.step, second.step, out.step}))
        return status;
    return std::get<BinaryKernel<T>>(kernels)(
        first, second, out, extentOf(size, channels, first, second, out), scaleFactor);
}

template <class T, class Kernels>
IppStatus runBinaryStrict(const Kernels& kernels, Rows<const T> first, Rows<const T> second, Rows<T> out,
    IppiSize size, int channels)
{
    if (const IppStatus status
        = checkArguments({first.first, second.first, out.first}, size, {first.step, second.step, out.step}))
        return status;
    constexpr int element = sizeof(T);
    const int pixel = channels * element;
    if (const IppStatus status = checkStrictSteps(size.width,
            {{first.step, pixel, element}, {second.step, pixel, element}, {out.step, pixel, element}}))
        return status;
    return runBinary<T>(kernels, first, second, out, size, channels);
}

template <class T>
IppStatus runConstants(const ConstantsKernels& kernels, Rows<const T> pixels, Constants<T> constants,
    Rows<T> out, IppiSize size, int scaleFactor = 0)
{
    if (const IppStatus status
        = checkArguments({pixels.first, constants.values, out.first}, size, {pixels.step, out.step}))
        return status;
    if (kernels.divides && std::any_of(constants.values, constants.values + constants.channels, [](T value) {
            return value == 0;
        }))
        return ippStsDivByZeroErr;
    return std::get<ConstantsKernel<T>>(kernels.everyChannel)(
        pixels, constants, out, extentOf(size, constants.channels, pixels, out), scaleFactor);
}

template <class T>
IppStatus runConstantsKeepingAlpha(
    const ConstantsKernels& kernels, Rows<T> pixels, const T* value, IppiSize size, int scaleFactor)
{
    if (const IppStatus status = checkArguments({value, pixels.first}, size, {pixels.step}))
        return status;
    const T constants[4] = {value[0], value[1], value[2], 0};
    return kernels.keepingAlpha(
        {pixels.first, pixels.step}, {constants, 4}, pixels, extentOf(size, 4, pixels), scaleFactor);
}

template <class T, class Kernels>
IppStatus runUnary(const Kernels& kernels, Rows<const T> pixels, Rows<T> out, IppiSize size, int channels)
{
    if (const IppStatus status = checkArguments({pixels.first, out.first}, size, {pixels.step, out.step}))
        return status;
    return std::get<UnaryKernel<T>>(kernels)(pixels, out, extentOf(size, channels, pixels, out));
}

template <class T, class Kernels>
IppStatus runAccumulate(const Kernels& kernels, Rows<const T> first, Rows<const T> second,
    Rows<Ipp32f> accumulator, IppiSize size)
{
    if (const IppStatus status = checkArguments({first.first, second.first, accumulator.first}, size,
            {first.step, second.step, accumulator.step}))
        return status;
    constexpr int element = sizeof(T);
    constexpr int sum = sizeof(Ipp32f);
    if (const IppStatus status = checkStrictSteps(size.width,
            {{first.step, element, element}, {second.step, element, element}, {accumulator.step, sum, sum}}))
        return status;
    return std::get<AccumulateKernel<T>>(kernels)(
        first, second, accumulator, extentOf(size, 1, first, second, accumulator));
}

} // namespace customipp
