#include "customipp/arithmetic/pointwiseCases.h"

#include <hwy/tests/hwy_gtest.h>

namespace {

/** Runs each case once for every instruction set that is compiled in. */
class absTest : public hwy::TestWithParamTarget {};
HWY_TARGET_INSTANTIATE_TEST_SUITE_P(absTest);

template <class T, class Function> void expectMagnitudes(const char* i_symbol, Function i_function)
{
    PixelSource<T> random;
    pointwise::forEveryGeometry([&](IppiSize size, size_t layout, unsigned) {
        SCOPED_TRACE(std::string(i_symbol) + " " + std::to_string(size.width) + " x "
            + std::to_string(size.height) + ", layout " + std::to_string(layout));
        Plane<T> source(size.width, size.height, pointwise::layoutAt(layout));
        Plane<T> out(size.width, size.height, pointwise::layoutAt(layout + 1)),
            expected(size.width, size.height);
        source.fill(random);
        for (int y = 0; y < size.height; ++y)
            for (int x = 0; x < size.width; ++x)
                expected.set(x, y, oracle::Abs::pixel<T>(source.get(x, y)));
        ASSERT_EQ(i_function(source.data(), source.step(), out.data(), out.step(), size), ippStsNoErr);
        ASSERT_TRUE(samePixels(out, expected));
        ASSERT_TRUE(out.frameIsIntact());
        ASSERT_EQ(i_function(source.data(), source.step(), source.data(), source.step(), size), ippStsNoErr);
        ASSERT_TRUE(samePixels(source, expected)) << "source and destination are one";
        ASSERT_TRUE(source.frameIsIntact());
    });
}

/** As BINARY, but only with the layouts whose steps these functions take. */
template <class T, class Function>
void expectMagnitudesOfDifferences(const char* i_symbol, int i_channels, Function i_function)
{
    PixelSource<T> random;
    for (const int width : everyWidth())
        for (const int height : everyHeight())
            for (const Layout layout : {Layout {0, 0}, Layout {0, 3}, Layout {12, 1}, Layout {64, 0}}) {
                SCOPED_TRACE(
                    std::string(i_symbol) + " " + std::to_string(width) + " x " + std::to_string(height));
                const int lanes = width * i_channels;
                Plane<T> a(lanes, height, layout), b(lanes, height, {4, 5}), out(lanes, height, layout);
                Plane<T> expected(lanes, height);
                a.fill(random);
                b.fill(random);
                for (int y = 0; y < height; ++y)
                    for (int x = 0; x < lanes; ++x)
                        expected.set(x, y, oracle::AbsDiff::pixel<T>(a.get(x, y), b.get(x, y)));
                const IppiSize size {width, height};
                ASSERT_EQ(i_function(a.data(), a.step(), b.data(), b.step(), out.data(), out.step(), size),
                    ippStsNoErr);
                ASSERT_TRUE(samePixels(out, expected));
                ASSERT_TRUE(out.frameIsIntact() && a.frameIsIntact() && b.frameIsIntact());
                ASSERT_EQ(i_function(a.data(), a.step(), b.data(), b.step(), a.data(), a.step(), size),
                    ippStsNoErr);
                ASSERT_TRUE(samePixels(a, expected)) << "first source is the destination";
            }
}

#undef CUSTOMIPP_UNARY
#define CUSTOMIPP_UNARY(symbol, op, T, channels) expectMagnitudes<T>(#symbol, symbol);

#undef CUSTOMIPP_BINARY_STRICT
#define CUSTOMIPP_BINARY_STRICT(symbol, op, T, channels)                                                     \
    expectMagnitudesOfDifferences<T>(#symbol, channels, symbol);

TEST_P(absTest, EveryVariantGivesTheOraclesPixels) {
#include <customipp/abs.def>
#include <customipp/absDiff.def>
}

TEST_P(absTest, EveryPairOfBytesGivesTheOraclesPixel)
{
    pointwise::expectEveryPairOfBytes<oracle::AbsDiff>(
        [](auto* a, int aStep, auto* b, int bStep, auto* out, int outStep, IppiSize size, int) {
            return ippiAbsDiff_8u_C1R(a, aStep, b, bStep, out, outStep, size);
        });
}

TEST_P(absTest, TheLeastWordSaturates)
{
    Ipp16s pixels[3] = {-32768, -32767, -1};
    ASSERT_EQ(ippiAbs_16s_C1R(pixels, 6, pixels, 6, {3, 1}), ippStsNoErr);
    EXPECT_EQ(pixels[0], 32767);
    EXPECT_EQ(pixels[1], 32767);
    EXPECT_EQ(pixels[2], 1);
}

TEST_P(absTest, FloatsLoseTheirSignOnly)
{
    float pixels[2] = {-0.0f, -std::numeric_limits<float>::infinity()};
    ASSERT_EQ(ippiAbs_32f_C1R(pixels, 8, pixels, 8, {2, 1}), ippStsNoErr);
    EXPECT_TRUE(samePixel(pixels[0], 0.0f));
    EXPECT_EQ(pixels[1], std::numeric_limits<float>::infinity());
    const float inf = pixels[1];
    float difference = 0;
    ASSERT_EQ(ippiAbsDiff_32f_C1R(&inf, 4, &inf, 4, &difference, 4, {1, 1}), ippStsNoErr);
    EXPECT_TRUE(std::isnan(difference));
}

} // namespace
