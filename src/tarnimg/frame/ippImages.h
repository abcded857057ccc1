#pragma once

#include <customipp/types.h>
#include <tarnimg/cImg.h>

/**
 * Calls functions of the pixel layer on images: one adapter for each shape of function. The adapter takes the
 * pixel type from the function itself, so that a functor's table needs no casts.
 *
 * The region is the whole first source. Integer forms are called with scale factor 0. A destination is
 * detached before any pointer is taken, so that it may share its pixels with a source.
 */
namespace frame {

/** Width and height for the pixel layer. A side beyond the range of int turns negative there, and is refused
 * as a size. */
inline IppiSize sizeOf(const cImg& i_image) { return {int(i_image.getWidth()), int(i_image.getHeight())}; }

/** The first pixel of an image that is read. */
template <class T> const T* pixels(const cImg& i_image)
{
    return reinterpret_cast<const T*>(i_image.getConstData());
}

/** The first pixel of an image that is written; detaches. */
template <class T> T* pixels(cImg& io_image) { return reinterpret_cast<T*>(io_image.getData()); }

/** Bytes from row to row. */
inline int stepOf(const cImg& i_image) { return int(i_image.getYPitch()); }

/** Source to destination, pixel by pixel; the destination may be read too. */
template <auto Function> struct Unary;

template <class S, class D, IppStatus (*Function)(const S*, int, D*, int, IppiSize)> struct Unary<Function> {
    static IppStatus call(const cImg& i_source, cImg& io_result)
    {
        D* result = pixels<D>(io_result);
        return Function(pixels<S>(i_source), stepOf(i_source), result, stepOf(io_result), sizeOf(i_source));
    }
};

template <class S, class D, IppStatus (*Function)(const S*, int, D*, int, IppiSize, int)>
struct Unary<Function> {
    static IppStatus call(const cImg& i_source, cImg& io_result)
    {
        D* result = pixels<D>(io_result);
        return Function(
            pixels<S>(i_source), stepOf(i_source), result, stepOf(io_result), sizeOf(i_source), 0);
    }
};

/** Two sources to a destination, pixel by pixel; the destination may be read too. */
template <auto Function> struct Binary;

template <class S, class D, IppStatus (*Function)(const S*, int, const S*, int, D*, int, IppiSize)>
struct Binary<Function> {
    static IppStatus call(const cImg& i_a, const cImg& i_b, cImg& io_result)
    {
        D* result = pixels<D>(io_result);
        return Function(
            pixels<S>(i_a), stepOf(i_a), pixels<S>(i_b), stepOf(i_b), result, stepOf(io_result), sizeOf(i_a));
    }
};

template <class S, class D, IppStatus (*Function)(const S*, int, const S*, int, D*, int, IppiSize, int)>
struct Binary<Function> {
    static IppStatus call(const cImg& i_a, const cImg& i_b, cImg& io_result)
    {
        D* result = pixels<D>(io_result);
        return Function(pixels<S>(i_a), stepOf(i_a), pixels<S>(i_b), stepOf(i_b), result, stepOf(io_result),
            sizeOf(i_a), 0);
    }
};

/** A row of a functor's table: what is called for a supported input. */
struct UnaryVariant {
    cImgType::ImageTypes type;
    unsigned channels;
    IppStatus (*call)(const cImg& i_source, cImg& io_result);
};

/** The same with two sources. */
struct BinaryVariant {
    cImgType::ImageTypes type;
    unsigned channels;
    IppStatus (*call)(const cImg& i_a, const cImg& i_b, cImg& io_result);
};

} // namespace frame
