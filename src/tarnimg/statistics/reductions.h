#pragma once

#include "frame/functorFrame.h"
#include "frame/ippImages.h"

#include <algorithm>

/**
 * Calls functions of the pixel layer that reduce an image to numbers: one adapter for each shape of function.
 * They write a double for each channel of the image, or one.
 */
namespace statistics {

/** One image. */
template <auto Function> struct OfImage;

template <class T, IppStatus (*Function)(const T*, int, IppiSize, double*)> struct OfImage<Function> {
    static IppStatus call(const cImg& i_image, double* o_values)
    {
        return Function(frame::pixels<T>(i_image), frame::stepOf(i_image), frame::sizeOf(i_image), o_values);
    }
};

template <class T, IppStatus (*Function)(const T*, int, IppiSize, double*, IppHintAlgorithm)>
struct OfImage<Function> {
    static IppStatus call(const cImg& i_image, double* o_values)
    {
        return Function(frame::pixels<T>(i_image), frame::stepOf(i_image), frame::sizeOf(i_image), o_values,
            ippAlgHintNone);
    }
};

/** Two images of one type and size. */
template <auto Function> struct OfImages;

template <class T, IppStatus (*Function)(const T*, int, const T*, int, IppiSize, double*)>
struct OfImages<Function> {
    static IppStatus call(const cImg& i_a, const cImg& i_b, double* o_values)
    {
        return Function(frame::pixels<T>(i_a), frame::stepOf(i_a), frame::pixels<T>(i_b), frame::stepOf(i_b),
            frame::sizeOf(i_a), o_values);
    }
};

template <class T, IppStatus (*Function)(const T*, int, const T*, int, IppiSize, double*, IppHintAlgorithm)>
struct OfImages<Function> {
    static IppStatus call(const cImg& i_a, const cImg& i_b, double* o_values)
    {
        return Function(frame::pixels<T>(i_a), frame::stepOf(i_a), frame::pixels<T>(i_b), frame::stepOf(i_b),
            frame::sizeOf(i_a), o_values, ippAlgHintNone);
    }
};

/**
 * Calls a function with an image and a mask, a byte for each pixel. Rows of the image that a lower mask does
 * not have are left out; a mask whose rows hold fewer bytes than the image has pixels is refused like a step
 * that is too small.
 */
template <class Call> IppStatus withMask(const cImg& i_image, const cImg& i_mask, Call&& i_call)
{
    IppiSize size = frame::sizeOf(i_image);
    size.height = std::min(size.height, frame::sizeOf(i_mask).height);
    if (quint64(i_mask.getWidth()) * i_mask.getXPitch() < i_image.getWidth())
        return ippStsStepErr;
    return i_call(frame::pixels<Ipp8u>(i_mask), frame::stepOf(i_mask), size);
}

} // namespace statistics
