#pragma once

#include <customipp/types.h>

#include <initializer_list>

/**
 * The argument checks of every function, in their fixed order: pointers, sizes, steps; then, in the functions
 * that ask for it, whether a step holds a row and is a multiple of the element. What else a function tests
 * comes after these.
 */
namespace customipp {

/** Pointers, then the size, then the steps; the first test that fails decides. */
inline IppStatus checkArguments(
    std::initializer_list<const void*> pointers, IppiSize size, std::initializer_list<int> steps)
{
    for (const void* pointer : pointers)
        if (!pointer)
            return ippStsNullPtrErr;
    if (size.width <= 0 || size.height <= 0)
        return ippStsSizeErr;
    for (const int step : steps)
        if (step <= 0)
            return ippStsStepErr;
    return ippStsNoErr;
}

/** One step with what its rows hold. */
struct StepOf {
    int step;
    int pixelBytes;
    int elementBytes;
};

/** After checkArguments: every step holds a row, then every step is a multiple of its element. */
inline IppStatus checkStrictSteps(int width, std::initializer_list<StepOf> images)
{
    for (const StepOf& image : images)
        if (image.step < int64_t {width} * image.pixelBytes)
            return ippStsStepErr;
    for (const StepOf& image : images)
        if (image.step % image.elementBytes != 0)
            return ippStsNotEvenStepErr;
    return ippStsNoErr;
}

/** One step with the row that it must hold. */
struct RowStep {
    int step;
    int64_t elements;
    int elementBytes;
};

/** As checkStrictSteps, for images of different widths. */
inline IppStatus checkRowSteps(std::initializer_list<RowStep> images)
{
    for (const RowStep& image : images)
        if (image.step < image.elements * image.elementBytes)
            return ippStsStepErr;
    for (const RowStep& image : images)
        if (image.step % image.elementBytes != 0)
            return ippStsNotEvenStepErr;
    return ippStsNoErr;
}

} // namespace customipp
