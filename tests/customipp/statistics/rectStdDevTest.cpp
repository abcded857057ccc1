#include "localCases.h"

#include <hwy/tests/hwy_gtest.h>

#include <cmath>
#include <random>

namespace {

/** Runs each case once for every instruction set that is compiled in. */
class rectStdDevTest : public hwy::TestWithParamTarget {};
HWY_TARGET_INSTANTIATE_TEST_SUITE_P(rectStdDevTest);

/** The population deviation of a rectangle of pixels, in two passes. */
double deviation(const Plane<Ipp8u>& i_src, IppiRect i_rect)
{
    const double count = double(i_rect.width) * i_rect.height;
    double mean = 0, spread = 0;
    for (int y = 0; y < i_rect.height; ++y)
        for (int x = 0; x < i_rect.width; ++x)
            mean += i_src.get(i_rect.x + x, i_rect.y + y) / count;
    for (int y = 0; y < i_rect.height; ++y)
        for (int x = 0; x < i_rect.width; ++x)
            spread += std::pow(i_src.get(i_rect.x + x, i_rect.y + y) - mean, 2) / count;
    return std::sqrt(spread);
}

template <class S, class Integral, class Deviation>
void expectDeviations(S i_offset, double i_squaresOffset, Integral&& i_integral, Deviation&& i_deviation)
{
    const IppiRect rects[] = {{0, 0, 1, 1}, {0, 0, 3, 2}, {2, 1, 5, 4}, {7, 0, 1, 9}};
    std::mt19937 random(2);
    unsigned count = 0;
    local::forEveryGeometry([&](IppiSize size, const Layout& layout) {
        const IppiRect rect = rects[count++ % 4];
        // The last rectangles end with the integral.
        const IppiSize whole {size.width + rect.x + rect.width - 1, size.height + rect.y + rect.height - 1};
        Plane<Ipp8u> src(whole.width, whole.height);
        Plane<S> sums(whole.width + 1, whole.height + 1, layout);
        Plane<Ipp64f> squares(whole.width + 1, whole.height + 1, layout);
        Plane<Ipp32f> dst(size.width, size.height, layout);
        src.fill([&] { return Ipp8u(random()); });
        ASSERT_EQ(i_integral(src.data(), src.step(), sums.data(), sums.step(), squares.data(), squares.step(),
                      whole, i_offset, i_squaresOffset),
            ippStsNoErr);
        ASSERT_EQ(i_deviation(sums.data(), sums.step(), squares.data(), squares.step(), dst.data(),
                      dst.step(), size, rect),
            ippStsNoErr);
        ASSERT_TRUE(dst.frameIsIntact() && sums.frameIsIntact() && squares.frameIsIntact());
        for (int y = 0; y < size.height; ++y)
            for (int x = 0; x < size.width; ++x) {
                const double expected = deviation(src, {x + rect.x, y + rect.y, rect.width, rect.height});
                // The reference rounds each addition.
                ASSERT_NEAR(dst.get(x, y), expected, 1e-6 * (1 + expected)) << x << ", " << y;
            }
    });
}

TEST_P(rectStdDevTest, EachPixelIsTheDeviationOfItsRectangle)
{
    expectDeviations<Ipp32s>(0, 0.0, ippiSqrIntegral_8u32s64f_C1R, ippiRectStdDev_32s32f_C1R);
    expectDeviations<Ipp32f>(0.0f, 0.0, ippiSqrIntegral_8u32f64f_C1R, ippiRectStdDev_32f_C1R);
}

TEST_P(rectStdDevTest, OffsetsCancelAndIntegersMayHaveWrapped)
{
    expectDeviations<Ipp32s>(2147483000, 12345.0, ippiSqrIntegral_8u32s64f_C1R, ippiRectStdDev_32s32f_C1R);
    expectDeviations<Ipp32f>(512.0f, -7.0, ippiSqrIntegral_8u32f64f_C1R, ippiRectStdDev_32f_C1R);
}

TEST_P(rectStdDevTest, WorkedExample)
{
    const Ipp32s sums[9] = {0, 0, 0, 0, 1, 3, 0, 4, 10};
    const Ipp64f squares[9] = {0, 0, 0, 0, 1, 5, 0, 10, 30};
    Ipp32f result = 0;
    ASSERT_EQ(
        ippiRectStdDev_32s32f_C1R(sums, 12, squares, 24, &result, 4, {1, 1}, {0, 0, 2, 2}), ippStsNoErr);
    EXPECT_EQ(result, 1.1180340f);
}

TEST_P(rectStdDevTest, ANegativeVarianceIsZeroAndNotANumberStays)
{
    Ipp32f sums[40] = {}, result[19];
    Ipp64f squares[40] = {};
    for (int x = 0; x < 20; ++x)
        sums[20 + x] = Ipp32f(x), squares[20 + x] = x == 7 ? NAN : x == 12 ? -INFINITY : 0.0;
    ASSERT_EQ(ippiRectStdDev_32f_C1R(sums, 80, squares, 160, result, 76, {19, 1}, {0, 0, 1, 1}), ippStsNoErr);
    for (int x = 0; x < 19; ++x) {
        if (x == 6 || x == 7)
            EXPECT_TRUE(std::isnan(result[x])) << x;
        else
            EXPECT_EQ(result[x], x == 12 ? INFINITY : 0.0f) << x;
    }
}

TEST_P(rectStdDevTest, NothingBeyondTheImagesIsTouched)
{
    for (const FencedMemory::Side side : local::s_sides)
        for (int width = 1; width <= 40; ++width) {
            const size_t n = size_t(width), m = n + 3;
            FencedMemory sums(4 * m * 4, side), squares(4 * m * 8, side), dst(n * 4, side);
            const int step = int(m) * 4;
            const auto* floats = reinterpret_cast<const Ipp32f*>(sums.data());
            const auto* ints = reinterpret_cast<const Ipp32s*>(sums.data());
            const auto* doubles = reinterpret_cast<const Ipp64f*>(squares.data());
            auto* out = reinterpret_cast<Ipp32f*>(dst.data());
            EXPECT_EQ(ippiRectStdDev_32f_C1R(
                          floats, step, doubles, 2 * step, out, width * 4, {width, 1}, {1, 1, 2, 2}),
                ippStsNoErr);
            EXPECT_EQ(ippiRectStdDev_32s32f_C1R(
                          ints, step, doubles, 2 * step, out, width * 4, {width, 1}, {1, 1, 2, 2}),
                ippStsNoErr);
        }
}

TEST(rectStdDevCheckTest, TheChecksComeInTheirOrder)
{
    const Ipp32s sums[64] = {};
    const Ipp64f squares[64] = {};
    Ipp32f dst[16];
    std::fill_n(dst, 16, 77.0f);
    struct Steps {
        int sums = 16, squares = 32, dst = 8;
    };
    const auto run = [&](IppiSize size, IppiRect rect, Steps steps, const Ipp32s* source, Ipp32f* out) {
        return ippiRectStdDev_32s32f_C1R(
            source, steps.sums, squares, steps.squares, out, steps.dst, size, rect);
    };
    const IppiRect bad {0, 0, 0, 0}, good {0, 0, 2, 2};
    const Steps none {0, 0, 0};
    EXPECT_EQ(run({0, 0}, bad, none, nullptr, dst), ippStsNullPtrErr);
    EXPECT_EQ(run({0, 0}, bad, none, sums, nullptr), ippStsNullPtrErr);
    EXPECT_EQ(ippiRectStdDev_32s32f_C1R(sums, 0, nullptr, 0, dst, 0, {0, 0}, bad), ippStsNullPtrErr);
    EXPECT_EQ(run({0, 2}, bad, none, sums, dst), ippStsSizeErr);
    for (const IppiRect& rect : {IppiRect {0, 0, 0, 1}, {0, 0, 1, 0}, {-1, 0, 1, 1}, {0, -1, 1, 1},
             {0, 0, -2147483647 - 1, 1}, {0, 0, 1, -5}})
        EXPECT_EQ(run({2, 2}, rect, none, sums, dst), ippStsRectErr);
    EXPECT_EQ(run({2, 2}, good, none, sums, dst), ippStsStepErr);
    EXPECT_EQ(run({2, 2}, good, {15, 32, 8}, sums, dst), ippStsStepErr);
    EXPECT_EQ(run({2, 2}, good, {17, 31, 8}, sums, dst), ippStsStepErr);
    EXPECT_EQ(run({2, 2}, good, {17, 32, 7}, sums, dst), ippStsStepErr);
    EXPECT_EQ(run({2, 2}, {1, 0, 2, 2}, {16, 32, 8}, sums, dst), ippStsStepErr);
    EXPECT_EQ(run({2, 2}, {2147483647, 0, 2147483647, 1}, {}, sums, dst), ippStsStepErr);
    EXPECT_EQ(run({2, 2}, good, {18, 32, 8}, sums, dst), ippStsNotEvenStepErr);
    EXPECT_EQ(run({2, 2}, good, {16, 36, 8}, sums, dst), ippStsNotEvenStepErr);
    EXPECT_EQ(run({2, 2}, good, {16, 32, 9}, sums, dst), ippStsNotEvenStepErr);
    for (const Ipp32f value : dst)
        EXPECT_EQ(value, 77.0f);
    EXPECT_EQ(run({2, 2}, good, {}, sums, dst), ippStsNoErr) << "the result may be as tight as can be";
}

} // namespace
