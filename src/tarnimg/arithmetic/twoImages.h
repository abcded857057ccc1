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

/**
 * An image with the attributes of b, as a deep copy of it has them, and the pixels that a and b give. The
 * status of the pixel function is not looked at: if it fails, a copy of b comes back.
 */
template <class Table>
cImg workIntoCopy(const cImgFunctor& i_functor, const Table& i_variants, const cImg& i_a, const cImg& i_b,
    const char* i_operator)
{
    frame::checkInputs(i_functor, i_a, i_b, i_operator);
    cImg result = i_b.cloneWithoutPixels();
    const frame::BinaryVariant* variant = frame::find(i_variants, i_a);
    return variant && variant->call(i_a, i_b, result) == ippStsNoErr ? result : i_b.clone();
}

} // namespace twoImages
