#pragma once

#include "oracle.h"

#include "support/Plane.h"

#include <customipp/customipp.h>

#include <array>
#include <climits>
#include <cstring>
#include <string>

/**
 * Runs a function of the pixel layer of each shape over all sizes and layouts and compares it with an oracle:
 * separate images, the same image as source and destination, and the image in two bands of rows.
 */
namespace pointwise {

/** Below, at and beyond every place where the arithmetic changes its way. */
inline const std::vector<int>& everyScaleFactor()
{
    static const std::vector<int> s_factors {0, 1, 2, 3, 7, 8, 9, 10, 11, 16, 17, 18, 19, 30, 31, 32, 33, 34,
        115, INT_MAX, -1, -2, -6, -7, -8, -9, -14, -15, -16, -17, -20, -21, -33, -34, -1004, INT_MIN};
    return s_factors;
}

template <class T>
inline const std::vector<int> factorsOf
    = std::is_floating_point_v<T> ? std::vector<int> {0} : everyScaleFactor();

/** Calls a function for all sizes and layouts, with a number that counts the calls. */
template <class Function> void forEveryGeometry(Function&& i_function)
{
    unsigned count = 0;
    for (const int width : everyWidth())
        for (const int height : everyHeight())
            for (size_t layout = 0; layout < everyLayout().size(); ++layout)
                i_function(IppiSize {width, height}, layout, count++);
}

inline Layout layoutAt(size_t i_index) { return everyLayout()[i_index % everyLayout().size()]; }

template <class T> T* rowOf(Plane<T>& io_plane, int i_row)
{
    return reinterpret_cast<T*>(
        reinterpret_cast<char*>(io_plane.data()) + i_row * ptrdiff_t {io_plane.step()});
}

/** One call for the upper rows and one for the rest; the call takes the first row and the size. */
template <class Call> void inTwoBands(IppiSize i_size, Call&& i_call)
{
    const int upper = i_size.height / 2;
    if (upper > 0)
        i_call(0, IppiSize {i_size.width, upper});
    i_call(upper, IppiSize {i_size.width, i_size.height - upper});
}

/** Whether a zero divisor was met; only quotients warn. */
template <class Op, class T> bool warns(const Plane<T>& i_divisors)
{
    if constexpr (std::is_same_v<Op, oracle::Div>)
        for (int y = 0; y < i_divisors.rows(); ++y)
            for (int x = 0; x < i_divisors.lanes(); ++x)
                if (i_divisors.get(x, y) == 0)
                    return true;
    return false;
}

/** call(src1, step, src2, step, dst, step, size, factor) for all geometries; also on one image only. */
template <class Op, class T, class Call>
void expectBinary(const char* i_symbol, int i_channels, Call&& i_call)
{
    PixelSource<T> random;
    forEveryGeometry([&](IppiSize size, size_t layout, unsigned count) {
        const int factor = factorsOf<T>[count % factorsOf<T>.size()];
        SCOPED_TRACE(std::string(i_symbol) + " " + std::to_string(size.width) + " x "
            + std::to_string(size.height) + ", layout " + std::to_string(layout) + ", factor "
            + std::to_string(factor));
        const int lanes = size.width * i_channels;
        Plane<T> a(lanes, size.height, layoutAt(layout)), b(lanes, size.height, layoutAt(layout + count % 2));
        Plane<T> out(lanes, size.height, layoutAt(layout + count % 3)), expected(lanes, size.height);
        a.fill(random);
        b.fill(random);
        // A zero in most small images would hide the status 0 of quotients.
        if (std::is_same_v<Op, oracle::Div> && count % 2)
            a.fill([&] {
                const T value = random();
                return value == 0 ? T(3) : value;
            });
        const auto expectedFrom = [&](const Plane<T>& x, const Plane<T>& y) -> const Plane<T>& {
            for (int row = 0; row < size.height; ++row)
                for (int lane = 0; lane < lanes; ++lane)
                    expected.set(
                        lane, row, Op::template pixel<T>(x.get(lane, row), y.get(lane, row), factor));
            return expected;
        };
        const IppStatus status = warns<Op>(a) ? ippStsDivByZero : ippStsNoErr;

        ASSERT_EQ(
            i_call(a.data(), a.step(), b.data(), b.step(), out.data(), out.step(), size, factor), status);
        ASSERT_TRUE(samePixels(out, expectedFrom(a, b)));
        ASSERT_TRUE(out.frameIsIntact() && a.frameIsIntact() && b.frameIsIntact());

        out.fill([] { return T(77); });
        inTwoBands(size, [&](int y, IppiSize band) {
            i_call(rowOf(a, y), a.step(), rowOf(b, y), b.step(), rowOf(out, y), out.step(), band, factor);
        });
        ASSERT_TRUE(samePixels(out, expected)) << "in two bands";

        out.copyFrom(b);
        ASSERT_EQ(
            i_call(a.data(), a.step(), out.data(), out.step(), out.data(), out.step(), size, factor), status);
        ASSERT_TRUE(samePixels(out, expected)) << "second source is the destination";
        out.copyFrom(a);
        ASSERT_EQ(
            i_call(out.data(), out.step(), b.data(), b.step(), out.data(), out.step(), size, factor), status);
        ASSERT_TRUE(samePixels(out, expected)) << "first source is the destination";
        out.copyFrom(a);
        ASSERT_EQ(
            i_call(out.data(), out.step(), out.data(), out.step(), out.data(), out.step(), size, factor),
            status);
        ASSERT_TRUE(samePixels(out, expectedFrom(a, a))) << "all images are one";
        ASSERT_TRUE(out.frameIsIntact());
    });
}

/** call(src, step, srcDst, step, size, factor). */
template <class Op, class T, class Call>
void expectBinaryInPlace(const char* i_symbol, int i_channels, Call&& i_call)
{
    PixelSource<T> random(2);
    forEveryGeometry([&](IppiSize size, size_t layout, unsigned count) {
        const int factor = factorsOf<T>[count % factorsOf<T>.size()];
        SCOPED_TRACE(std::string(i_symbol) + " " + std::to_string(size.width) + " x "
            + std::to_string(size.height) + ", layout " + std::to_string(layout) + ", factor "
            + std::to_string(factor));
        const int lanes = size.width * i_channels;
        Plane<T> source(lanes, size.height, layoutAt(layout)), start(lanes, size.height);
        Plane<T> image(lanes, size.height, layoutAt(layout + count % 2)), expected(lanes, size.height);
        source.fill(random);
        start.fill(random);
        const auto expectedFrom = [&](const Plane<T>& x, const Plane<T>& y) -> const Plane<T>& {
            for (int row = 0; row < size.height; ++row)
                for (int lane = 0; lane < lanes; ++lane)
                    expected.set(
                        lane, row, Op::template pixel<T>(x.get(lane, row), y.get(lane, row), factor));
            return expected;
        };
        const IppStatus status = warns<Op>(source) ? ippStsDivByZero : ippStsNoErr;

        image.copyFrom(start);
        ASSERT_EQ(i_call(source.data(), source.step(), image.data(), image.step(), size, factor), status);
        ASSERT_TRUE(samePixels(image, expectedFrom(source, start)));
        ASSERT_TRUE(image.frameIsIntact() && source.frameIsIntact());

        image.copyFrom(start);
        inTwoBands(size, [&](int y, IppiSize band) {
            i_call(rowOf(source, y), source.step(), rowOf(image, y), image.step(), band, factor);
        });
        ASSERT_TRUE(samePixels(image, expected)) << "in two bands";

        image.copyFrom(source);
        ASSERT_EQ(i_call(image.data(), image.step(), image.data(), image.step(), size, factor), status);
        ASSERT_TRUE(samePixels(image, expectedFrom(source, source))) << "both images are one";
        ASSERT_TRUE(image.frameIsIntact());
    });
}

/** call(src, step, values, dst, step, size, factor); the source may be the destination. The last of four may
 * be kept. */
template <class Op, class T, class Call>
void expectConstants(const char* i_symbol, int i_channels, bool i_inPlace, bool i_keepsAlpha, Call&& i_call)
{
    PixelSource<T> random(3);
    forEveryGeometry([&](IppiSize size, size_t layout, unsigned count) {
        const int factor = factorsOf<T>[count % factorsOf<T>.size()];
        const int lanes = size.width * i_channels;
        Plane<T> source(lanes, size.height, layoutAt(layout)),
            out(lanes, size.height, layoutAt(layout + count % 3));
        Plane<T> expected(lanes, size.height);
        source.fill(random);
        std::array<T, 4> values;
        for (T& value : values)
            do
                value = random();
            while (value == 0 && std::is_same_v<Op, oracle::DivC>);
        SCOPED_TRACE(std::string(i_symbol) + " " + std::to_string(size.width) + " x "
            + std::to_string(size.height) + ", layout " + std::to_string(layout) + ", factor "
            + std::to_string(factor) + ", constants " + std::to_string(values[0]) + ", "
            + std::to_string(values[1]) + ", " + std::to_string(values[2]) + ", "
            + std::to_string(values[3]));
        for (int row = 0; row < size.height; ++row)
            for (int lane = 0; lane < lanes; ++lane) {
                const int channel = lane % i_channels;
                const T pixel = source.get(lane, row);
                expected.set(lane, row,
                    i_keepsAlpha && channel == 3
                        ? pixel
                        : Op::template pixel<T>(values[size_t(channel)], pixel, factor));
            }

        if (!i_inPlace) {
            ASSERT_EQ(
                i_call(source.data(), source.step(), values.data(), out.data(), out.step(), size, factor),
                ippStsNoErr);
            ASSERT_TRUE(samePixels(out, expected));
            ASSERT_TRUE(out.frameIsIntact() && source.frameIsIntact());
        }
        out.copyFrom(source);
        ASSERT_EQ(
            i_call(out.data(), out.step(), values.data(), out.data(), out.step(), size, factor), ippStsNoErr);
        ASSERT_TRUE(samePixels(out, expected)) << "source and destination are one";
        ASSERT_TRUE(out.frameIsIntact());

        out.copyFrom(source);
        inTwoBands(size, [&](int y, IppiSize band) {
            i_call(rowOf(out, y), out.step(), values.data(), rowOf(out, y), out.step(), band, factor);
        });
        ASSERT_TRUE(samePixels(out, expected)) << "in two bands";
    });
}

/** Every value of a pixel type of at most 16 bits, in a plane of 256 columns. */
template <class T> void fillWithEveryValue(Plane<T>& o_plane)
{
    unsigned value = 0;
    o_plane.fill([&] { return T(value++); });
}

/** call(src1, step, src2, step, dst, step, size, factor) on all pairs of 8-bit pixels, for factors round the
 * limits. */
template <class Op, class Call> void expectEveryPairOfBytes(Call&& i_call)
{
    Plane<Ipp8u> a(256, 256), b(256, 256), out(256, 256), expected(256, 256);
    fillWithEveryValue(a);
    for (int y = 0; y < 256; ++y)
        for (int x = 0; x < 256; ++x)
            b.set(x, y, Ipp8u(y));
    for (const int factor : {0, 1, 2, 3, 5, 8, 9, 10, 16, 17, -1, -2, -3, -7, -8, -9, -15, -20, -21}) {
        for (int y = 0; y < 256; ++y)
            for (int x = 0; x < 256; ++x)
                expected.set(x, y, Op::template pixel<Ipp8u>(a.get(x, y), b.get(x, y), factor));
        ASSERT_EQ(i_call(a.data(), a.step(), b.data(), b.step(), out.data(), out.step(), IppiSize {256, 256},
                      factor),
            warns<Op>(a) ? ippStsDivByZero : ippStsNoErr);
        ASSERT_TRUE(samePixels(out, expected)) << "factor " << factor;
    }
}

/** call(src, step, value, dst, step, size, factor) on all pixels of a type, for the given constants and
 * factors. */
template <class Op, class T, class Call>
void expectEveryPixel(const std::vector<int>& i_constants, const std::vector<int>& i_factors, Call&& i_call)
{
    const int rows = 1 << (8 * sizeof(T) - 8);
    Plane<T> source(256, rows), out(256, rows), expected(256, rows);
    fillWithEveryValue(source);
    for (const int constant : i_constants)
        for (const int factor : i_factors) {
            for (int y = 0; y < rows; ++y)
                for (int x = 0; x < 256; ++x)
                    expected.set(x, y, Op::template pixel<T>(T(constant), source.get(x, y), factor));
            ASSERT_EQ(i_call(source.data(), source.step(), T(constant), out.data(), out.step(),
                          IppiSize {256, rows}, factor),
                ippStsNoErr);
            ASSERT_TRUE(samePixels(out, expected)) << "constant " << T(constant) << ", factor " << factor;
        }
}

/** All byte constants from a first one on. */
inline std::vector<int> byteConstantsFrom(int i_first)
{
    std::vector<int> constants;
    for (int constant = i_first; constant < 256; ++constant)
        constants.push_back(constant);
    return constants;
}

/** The result of one pixel of a two-image function with a scale factor. */
template <class T, class Function> int onePixel(Function i_function, T i_src1, T i_src2, int i_scaleFactor)
{
    T out = 0;
    i_function(&i_src1, sizeof(T), &i_src2, sizeof(T), &out, sizeof(T), IppiSize {1, 1}, i_scaleFactor);
    return out;
}

/** The result of one pixel of a function with one constant and a scale factor. */
template <class T, class Function>
int onePixelWithConstant(Function i_function, T i_src, T i_value, int i_scaleFactor)
{
    T out = 0;
    i_function(&i_src, sizeof(T), i_value, &out, sizeof(T), IppiSize {1, 1}, i_scaleFactor);
    return out;
}

} // namespace pointwise

// The shapes as cases: each includes the .def file of its operations in the body of a test.

#undef CUSTOMIPP_BINARY_SFS
#define CUSTOMIPP_BINARY_SFS(symbol, op, T, channels)                                                        \
    pointwise::expectBinary<oracle::op, T>(                                                                  \
        #symbol, channels, [](auto... arguments) { return symbol(arguments...); });

#undef CUSTOMIPP_BINARY_SFS_I
#define CUSTOMIPP_BINARY_SFS_I(symbol, op, T, channels)                                                      \
    pointwise::expectBinaryInPlace<oracle::op, T>(                                                           \
        #symbol, channels, [](auto... arguments) { return symbol(arguments...); });

#undef CUSTOMIPP_BINARY
#define CUSTOMIPP_BINARY(symbol, op, T, channels)                                                            \
    pointwise::expectBinary<oracle::op, T>(#symbol, channels,                                                \
        [](auto* a, int aStep, auto* b, int bStep, auto* out, int outStep, IppiSize size, int) {             \
            return symbol(a, aStep, b, bStep, out, outStep, size);                                           \
        });

#undef CUSTOMIPP_BINARY_I
#define CUSTOMIPP_BINARY_I(symbol, op, T, channels)                                                          \
    pointwise::expectBinaryInPlace<oracle::op, T>(                                                           \
        #symbol, channels, [](auto* a, int aStep, auto* out, int outStep, IppiSize size, int) {              \
            return symbol(a, aStep, out, outStep, size);                                                     \
        });

#undef CUSTOMIPP_CONSTANT_SFS
#define CUSTOMIPP_CONSTANT_SFS(symbol, op, T)                                                                \
    pointwise::expectConstants<oracle::op, T>(#symbol, 1, false, false,                                      \
        [](auto* a, int aStep, const T* c, auto* out, int outStep, IppiSize size, int factor) {              \
            return symbol(a, aStep, *c, out, outStep, size, factor);                                         \
        });

#undef CUSTOMIPP_CONSTANT_SFS_I
#define CUSTOMIPP_CONSTANT_SFS_I(symbol, op, T)                                                              \
    pointwise::expectConstants<oracle::op, T>(#symbol, 1, true, false,                                       \
        [](auto*, int, const T* c, auto* out, int outStep, IppiSize size, int factor) {                      \
            return symbol(*c, out, outStep, size, factor);                                                   \
        });

#undef CUSTOMIPP_CONSTANT
#define CUSTOMIPP_CONSTANT(symbol, op, T)                                                                    \
    pointwise::expectConstants<oracle::op, T>(#symbol, 1, false, false,                                      \
        [](auto* a, int aStep, const T* c, auto* out, int outStep, IppiSize size, int) {                     \
            return symbol(a, aStep, *c, out, outStep, size);                                                 \
        });

#undef CUSTOMIPP_CONSTANT_I
#define CUSTOMIPP_CONSTANT_I(symbol, op, T)                                                                  \
    pointwise::expectConstants<oracle::op, T>(                                                               \
        #symbol, 1, true, false, [](auto*, int, const T* c, auto* out, int outStep, IppiSize size, int) {    \
            return symbol(*c, out, outStep, size);                                                           \
        });

#undef CUSTOMIPP_CONSTANTS_SFS
#define CUSTOMIPP_CONSTANTS_SFS(symbol, op, T, channels)                                                     \
    pointwise::expectConstants<oracle::op, T>(                                                               \
        #symbol, channels, false, false, [](auto... arguments) { return symbol(arguments...); });

#undef CUSTOMIPP_CONSTANTS_SFS_I
#define CUSTOMIPP_CONSTANTS_SFS_I(symbol, op, T, channels)                                                   \
    pointwise::expectConstants<oracle::op, T>(#symbol, channels, true, false,                                \
        [](auto*, int, const T* c, auto* out, int outStep, IppiSize size, int factor) {                      \
            return symbol(c, out, outStep, size, factor);                                                    \
        });

#undef CUSTOMIPP_CONSTANTS_AC4_SFS_I
#define CUSTOMIPP_CONSTANTS_AC4_SFS_I(symbol, op, T)                                                         \
    pointwise::expectConstants<oracle::op, T>(#symbol, 4, true, true,                                        \
        [](auto*, int, const T* c, auto* out, int outStep, IppiSize size, int factor) {                      \
            return symbol(c, out, outStep, size, factor);                                                    \
        });
