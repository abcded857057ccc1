#pragma once

#include "functorFrame.h"
#include "ippImages.h"

#include <QColor>
#include <cmath>
#include <limits>
#include <type_traits>

/**
 * Calls functions of the pixel layer that combine an image with a constant for each channel, and what the
 * functors on them share.
 */
namespace frame {

/** What the pixel layer gets beside the image. */
struct PixelConstants {
    double values[4] = {}; ///< one for each channel
    int scaleFactor = 0; ///< an integer result is divided by 2 to this power; may be negative
    const char* params[4] = {}; ///< the parameter that each comes from; null for none
};

/** The parameter "constant" of images with one channel. */
inline PixelConstants constantOf(double i_constant) { return {{i_constant}, 0, {"constant"}}; }

/** The three colours, and a 0 for the fourth channel. */
inline PixelConstants constantsOf(const QColor& i_colour)
{
    return {{double(i_colour.red()), double(i_colour.green()), double(i_colour.blue())}};
}

/**
 * A constant as the pixel type holds it: a float as it is, an integer truncated toward zero and cut to the
 * pixel's width, which keeps its lowest bits. An integer has no infinity and no NaN; they become 0.
 */
template <class T> T pixelConstant(double i_value)
{
    if constexpr (std::is_floating_point_v<T>)
        return T(i_value);
    else
        return std::isfinite(i_value) ? T(qint64(std::fmod(i_value, 4294967296.0))) : T(0);
}

/**
 * The same for the value of a parameter, here multiplied by i_unit: one that is cut is noted as a misfit. A
 * fraction that is lost is none.
 */
template <class T> T pixelConstant(const char* i_param, double i_value, double i_unit = 1)
{
    const T pixel = pixelConstant<T>(i_value);
    if constexpr (!std::is_floating_point_v<T>) {
        using Limits = std::numeric_limits<T>;
        if (double(pixel) != std::trunc(i_value))
            noteCut({i_param, int(8 * sizeof(T)), double(Limits::min()) / i_unit,
                double(Limits::max()) / i_unit, i_value / i_unit, double(pixel) / i_unit, i_unit != 1});
    }
    return pixel;
}

/** One of the constants that a pixel function gets. */
template <class T> T pixelConstant(const PixelConstants& i_constants, int i_channel)
{
    const double value = i_constants.values[i_channel];
    const char* const param = i_constants.params[i_channel];
    return param ? pixelConstant<T>(param, value, std::exp2(std::abs(i_constants.scaleFactor)))
                 : pixelConstant<T>(value);
}

/** The constant argument of a pixel function: a pixel value, or an array with one for each channel. */
template <class T> struct ConstantArgument {
    T value;
    explicit ConstantArgument(const PixelConstants& i_constants) : value(pixelConstant<T>(i_constants, 0)) {}
    operator T() const { return value; }
};
template <class T> struct ConstantArgument<const T*> {
    T values[4];
    explicit ConstantArgument(const PixelConstants& i_constants)
        : values {pixelConstant<T>(i_constants, 0), pixelConstant<T>(i_constants, 1),
            pixelConstant<T>(i_constants, 2), pixelConstant<T>(i_constants, 3)}
    {
    }
    operator const T*() const { return values; }
};

/** Source and constants to a destination, or in place: what the function's own shape says. */
template <auto Function> struct WithConstants;

template <class S, class C, class D, IppStatus (*Function)(const S*, int, C, D*, int, IppiSize)>
struct WithConstants<Function> {
    static IppStatus call(const cImg& i_source, const PixelConstants& i_constants, cImg& io_result)
    {
        D* result = pixels<D>(io_result);
        return Function(pixels<S>(i_source), stepOf(i_source), ConstantArgument<C>(i_constants), result,
            stepOf(io_result), sizeOf(i_source));
    }
};

template <class S, class C, class D, IppStatus (*Function)(const S*, int, C, D*, int, IppiSize, int)>
struct WithConstants<Function> {
    static IppStatus call(const cImg& i_source, const PixelConstants& i_constants, cImg& io_result)
    {
        D* result = pixels<D>(io_result);
        return Function(pixels<S>(i_source), stepOf(i_source), ConstantArgument<C>(i_constants), result,
            stepOf(io_result), sizeOf(i_source), i_constants.scaleFactor);
    }
};

template <class C, class D, IppStatus (*Function)(C, D*, int, IppiSize)> struct WithConstants<Function> {
    static IppStatus call(const PixelConstants& i_constants, cImg& io_image)
    {
        D* image = pixels<D>(io_image);
        return Function(ConstantArgument<C>(i_constants), image, stepOf(io_image), sizeOf(io_image));
    }
};

template <class C, class D, IppStatus (*Function)(C, D*, int, IppiSize, int)> struct WithConstants<Function> {
    static IppStatus call(const PixelConstants& i_constants, cImg& io_image)
    {
        D* image = pixels<D>(io_image);
        return Function(ConstantArgument<C>(i_constants), image, stepOf(io_image), sizeOf(io_image),
            i_constants.scaleFactor);
    }
};

/** How one supported input is computed: into a new image, and in place. Null leaves the pixels as they are.
 */
struct ConstantVariant {
    cImgType::ImageTypes type;
    unsigned channels;
    IppStatus (*call)(const cImg& i_source, const PixelConstants& i_constants, cImg& io_result);
    IppStatus (*callInPlace)(const PixelConstants& i_constants, cImg& io_image);
};

/** A new image of the same type from an image and constants. */
template <class Table>
cImg withConstants(const cImgFunctor& i_functor, const Table& i_variants, const cImg& i_image,
    const PixelConstants& i_constants, const char* i_operator)
{
    checkInput(i_functor, i_image, i_operator);
    cImg result = resultLike(i_image);
    if (const ConstantVariant* variant = find(i_variants, i_image); variant && variant->call)
        checkStatus(variant->call(i_image, i_constants, result), i_operator);
    return result;
}

/** The same in place; the image is detached. */
template <class Table>
void withConstantsInPlace(const cImgFunctor& i_functor, const Table& i_variants, cImg& io_image,
    const PixelConstants& i_constants, const char* i_operator)
{
    checkInput(i_functor, io_image, i_operator);
    if (const ConstantVariant* variant = find(i_variants, io_image); variant && variant->callInPlace)
        checkStatus(variant->callInPlace(i_constants, io_image), i_operator);
}

} // namespace frame
