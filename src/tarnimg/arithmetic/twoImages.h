#pragma once

#include "frame/functorFrame.h"
#include "frame/ippImages.h"

/** What the functors that combine two images pixel by pixel share. */
namespace twoImages {

/** How one supported input is computed: into a new image, and onto the second source. */
struct Variant {
    cImgType::ImageTypes type;
    unsigned channels;
    IppStatus (*combine)(const cImg& i_a, const cImg& i_b, cImg& io_result);
    IppStatus (*workInto)(const cImg& i_a, cImg& io_b) = nullptr;
};

/** A new image from two. */
template <class Table>
cImg combine(const cImgFunctor& i_functor, const Table& i_variants, const cImg& i_a, const cImg& i_b,
    const char* i_operator)
{
    frame::checkInputs(i_functor, i_a, i_b, i_operator);
    cImg result = frame::resultLike(i_a);
    if (const Variant* variant = frame::find(i_variants, i_a))
        frame::checkStatus(variant->combine(i_a, i_b, result), i_operator);
    return result;
}

/** The same with the second image as the result; after a warning it holds what was computed. */
template <class Table>
void workInto(const cImgFunctor& i_functor, const Table& i_variants, const cImg& i_a, cImg& io_b,
    const char* i_operator)
{
    frame::checkInputs(i_functor, i_a, io_b, i_operator);
    if (const Variant* variant = frame::find(i_variants, i_a))
        frame::checkStatus(variant->workInto(i_a, io_b), i_operator);
}

/** How rows of one image are worked into rows of another. */
struct EveryVariant {
    cImgType::ImageTypes type;
    unsigned channels;
    IppStatus (*workInto)(
        const unsigned char* i_a, int i_aStep, unsigned char* io_b, int i_bStep, IppiSize i_size);
};

/** A deep copy of b with rows of a worked into it. */
cImg workIntoCopy(const EveryVariant& i_variant, const cImg& i_a, const cImg& i_b);

/**
 * A deep copy of b, attributes included, with a worked into it. The status of the pixel function is not
 * looked at: if it fails, the copy comes back as it is.
 */
template <class Table>
cImg workIntoCopy(const cImgFunctor& i_functor, const Table& i_variants, const cImg& i_a, const cImg& i_b,
    const char* i_operator)
{
    frame::checkInputs(i_functor, i_a, i_b, i_operator);
    if (const EveryVariant* variant = frame::find(i_variants, i_a))
        return workIntoCopy(*variant, i_a, i_b);
    return i_b.clone();
}

} // namespace twoImages
