#pragma once

#include "../checks.h"
#include "../rows.h"

#include <customipp/types.h>

namespace customipp {

/** What a reduction reads: one image, with another one to subtract or a mask where its form has them. */
template <class T> struct Operands {
    Rows<const T> pixels;
    Rows<const T> others;
    Rows<const Ipp8u> mask;
    IppiSize size;
};

/** Which of the operands a function has beside its first image. */
enum class Beside { nothing, others, mask };

/**
 * The arguments of a reduction in the order of the tests: its pointers, the size, the steps.
 * @param Strict whether a step must be a multiple of the element size
 */
template <bool Strict, class T>
IppStatus checkOperands(
    const Operands<T>& operands, int channels, const void* result, Beside beside = Beside::nothing)
{
    const auto& [pixels, others, mask, size] = operands;
    const int element = Strict ? int {sizeof(T)} : 1, pixel = channels * int {sizeof(T)};
    const void* second = pixels.first;
    StepOf secondStep {pixels.step, pixel, element};
    if (beside == Beside::others) {
        second = others.first;
        secondStep.step = others.step;
    } else if (beside == Beside::mask) {
        second = mask.first;
        secondStep = {mask.step, 1, 1};
    }
    if (const IppStatus status
        = checkArguments({pixels.first, second, result}, size, {pixels.step, secondStep.step}))
        return status;
    return checkStrictSteps(size.width, {{pixels.step, pixel, element}, secondStep});
}

/** The region as pixels in rows; as one long row, for results that do not depend on the order, if there is no
 * padding. */
template <class T> Extent extentOfPixels(const Operands<T>& operands, int channels, bool inAnyOrder)
{
    const auto width = static_cast<size_t>(operands.size.width),
               height = static_cast<size_t>(operands.size.height);
    const size_t rowBytes = width * static_cast<size_t>(channels) * sizeof(T);
    const auto isDense = [](const auto& rows, size_t bytes) {
        return !rows.first || static_cast<size_t>(rows.step) == bytes;
    };
    if (inAnyOrder && isDense(operands.pixels, rowBytes) && isDense(operands.others, rowBytes)
        && isDense(operands.mask, width))
        return {width * height, 1};
    return {width, height};
}

/** The channel of interest counts from 1. */
inline IppStatus checkChannel(int channel) { return channel < 1 || channel > 3 ? ippStsCOIErr : ippStsNoErr; }

} // namespace customipp
