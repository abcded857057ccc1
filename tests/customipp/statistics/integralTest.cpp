#include "localCases.h"

#include <hwy/tests/hwy_gtest.h>

#include <cmath>

namespace {

/** Runs each case once for every instruction set that is compiled in. */
class integralTest : public hwy::TestWithParamTarget {};
HWY_TARGET_INSTANTIATE_TEST_SUITE_P(integralTest);

/** The sum over the first x columns and y rows, exactly; of the squares, if asked for. */
int64_t exactSum(const Plane<Ipp8u>& i_src, int i_x, int i_y, bool i_squares)
{
    int64_t sum = 0;
    for (int y = 0; y < i_y; ++y)
        for (int x = 0; x < i_x; ++x)
            sum += i_squares ? i_src.get(x, y) * i_src.get(x, y) : i_src.get(x, y);
    return sum;
}

template <class D> D resultOf(int64_t i_sum, D i_offset) { return D(double(i_sum) + double(i_offset)); }
template <> Ipp32s resultOf(int64_t i_sum, Ipp32s i_offset)
{
    return Ipp32s(uint32_t(i_sum) + uint32_t(i_offset));
}

template <class D>
void expectSums(const Plane<Ipp8u>& i_src, const Plane<D>& i_actual, D i_offset, bool i_squares = false)
{
    Plane<D> expected(i_src.lanes() + 1, i_src.rows() + 1);
    for (int y = 0; y <= i_src.rows(); ++y)
        for (int x = 0; x <= i_src.lanes(); ++x)
            expected.set(x, y, resultOf(exactSum(i_src, x, y, i_squares), i_offset));
    ASSERT_TRUE(samePixels(i_actual, expected));
    ASSERT_TRUE(i_actual.frameIsIntact());
}

template <class D, class Function> void expectIntegral(D i_offset, Function&& i_function)
{
    PixelSource<Ipp8u> random(3);
    local::forEveryGeometry([&](IppiSize size, const Layout& layout) {
        Plane<Ipp8u> src(size.width, size.height, layout);
        Plane<D> dst(size.width + 1, size.height + 1, layout);
        src.fill(random);
        ASSERT_EQ(i_function(src.data(), src.step(), dst.data(), dst.step(), size, i_offset), ippStsNoErr);
        expectSums(src, dst, i_offset);
    });
}

TEST_P(integralTest, BytesAreSummedInIntegersThatWrap)
{
    for (const Ipp32s offset : {0, -7, 2147483647})
        expectIntegral(offset, ippiIntegral_8u32s_C1R);
}

TEST_P(integralTest, BytesAreSummedExactlyAndRoundedOnceToFloat)
{
    for (const Ipp32f offset : {0.0f, 1000.0f, 4294700000.0f, -3.0f, 0.1f, 1e9f, 1e30f, -INFINITY})
        expectIntegral(offset, ippiIntegral_8u32f_C1R);
}

TEST_P(integralTest, SumsAndSquaresComeTogether)
{
    PixelSource<Ipp8u> random(4);
    local::forEveryGeometry([&](IppiSize size, const Layout& layout) {
        Plane<Ipp8u> src(size.width, size.height, layout);
        Plane<Ipp32s> sums(size.width + 1, size.height + 1, layout);
        Plane<Ipp32f> floats(size.width + 1, size.height + 1, layout);
        Plane<Ipp64f> squares(size.width + 1, size.height + 1, layout),
            moreSquares(size.width + 1, size.height + 1, layout);
        src.fill(random);
        ASSERT_EQ(ippiSqrIntegral_8u32s64f_C1R(src.data(), src.step(), sums.data(), sums.step(),
                      squares.data(), squares.step(), size, 5, -0.5),
            ippStsNoErr);
        expectSums(src, sums, 5);
        expectSums(src, squares, -0.5, true);
        ASSERT_EQ(ippiSqrIntegral_8u32f64f_C1R(src.data(), src.step(), floats.data(), floats.step(),
                      moreSquares.data(), moreSquares.step(), size, 0.25f, 1e20),
            ippStsNoErr);
        expectSums(src, floats, 0.25f);
        expectSums(src, moreSquares, 1e20, true);
    });
}

/** The order of the additions: eights from the left, each in pairs of pairs, then the row, then the rows. */
Ipp64f pairwise(const double* i_pixels, int i_count)
{
    const int half = i_count > 4 ? 4 : i_count > 2 ? 2 : 1;
    return i_count == 1 ? i_pixels[0] : pairwise(i_pixels, half) + pairwise(i_pixels + half, i_count - half);
}

TEST_P(integralTest, FloatsAreSummedInDoubleInOneOrder)
{
    PixelSource<Ipp32f> random(5);
    local::forEveryGeometry([&](IppiSize size, const Layout& layout) {
        Plane<Ipp32f> src(size.width, size.height, layout);
        Plane<Ipp32f> dst(size.width + 1, size.height + 1, layout), expected(size.width + 1, size.height + 1);
        src.fill([&] { return random() * 1e-7f; }); // so that the rounding of each addition counts
        std::vector<double> above(size_t(size.width), 0.0);
        expected.fill([] { return 0.0f; });
        for (int y = 0; y < size.height; ++y) {
            double row = 0;
            for (int first = 0; first < size.width; first += 8) {
                double pixels[8] = {};
                const int count = std::min(8, size.width - first);
                for (int i = 0; i < count; ++i)
                    pixels[i] = double(src.get(first + i, y));
                for (int i = 0; i < count; ++i) {
                    above[size_t(first + i)] += row + pairwise(pixels, i + 1);
                    expected.set(first + i + 1, y + 1, float(above[size_t(first + i)]));
                }
                row += pairwise(pixels, 8);
            }
        }
        ASSERT_EQ(ippiIntegral_32f_C1R(src.data(), src.step(), dst.data(), dst.step(), size), ippStsNoErr);
        ASSERT_TRUE(samePixels(dst, expected));
        ASSERT_TRUE(dst.frameIsIntact());
    });
}

TEST_P(integralTest, NotANumberAndInfinitySpreadRightAndDown)
{
    Plane<Ipp32f> src(20, 4), dst(21, 5);
    src.fill([] { return 1.0f; });
    src.set(9, 1, NAN);
    src.set(3, 2, INFINITY);
    ASSERT_EQ(ippiIntegral_32f_C1R(src.data(), src.step(), dst.data(), dst.step(), {20, 4}), ippStsNoErr);
    for (int y = 0; y <= 4; ++y)
        for (int x = 0; x <= 20; ++x) {
            if (x > 9 && y > 1)
                EXPECT_TRUE(std::isnan(dst.get(x, y))) << x << ", " << y;
            else
                EXPECT_EQ(dst.get(x, y), x > 3 && y > 2 ? INFINITY : float(x * y)) << x << ", " << y;
        }
}

TEST_P(integralTest, WorkedExample)
{
    const Ipp8u src[4] = {1, 2, 3, 4};
    Ipp32s sums[9];
    Ipp64f squares[9];
    ASSERT_EQ(ippiSqrIntegral_8u32s64f_C1R(src, 2, sums, 12, squares, 24, {2, 2}, 0, 0), ippStsNoErr);
    const int expected[9] = {0, 0, 0, 0, 1, 3, 0, 4, 10}, expectedSquares[9] = {0, 0, 0, 0, 1, 5, 0, 10, 30};
    for (int i = 0; i < 9; ++i) {
        EXPECT_EQ(sums[i], expected[i]) << i;
        EXPECT_EQ(squares[i], expectedSquares[i]) << i;
    }
}

TEST_P(integralTest, GreatSumsAreExact)
{
    // White, so that the sums pass 2^24, 2^31 and 2^32.
    const int width = 8200, height = 2100;
    std::vector<Ipp8u> src(size_t(width) * height, 255);
    std::vector<Ipp32f> floats(size_t(width + 1) * (height + 1));
    std::vector<Ipp32s> ints(floats.size());
    for (const int rows : {1020, 2050, height}) {
        ASSERT_EQ(ippiIntegral_8u32f_C1R(src.data(), width, floats.data(), (width + 1) * 4, {width, rows}, 0),
            ippStsNoErr);
        ASSERT_EQ(ippiIntegral_8u32s_C1R(src.data(), width, ints.data(), (width + 1) * 4, {width, rows}, 0),
            ippStsNoErr);
        for (int y = 0; y <= rows; ++y)
            for (int x = y % 7; x <= width; x += 7) {
                const int64_t sum = int64_t {255} * x * y;
                const size_t place = size_t(y) * size_t(width + 1) + size_t(x);
                ASSERT_EQ(floats[place], float(sum)) << x << ", " << y << " of " << rows;
                ASSERT_EQ(ints[place], Ipp32s(uint32_t(sum))) << x << ", " << y << " of " << rows;
            }
    }
}

TEST_P(integralTest, NothingBeyondTheImagesIsTouched)
{
    for (const FencedMemory::Side side : local::s_sides)
        for (int width = 1; width <= 140; ++width) {
            const size_t n = size_t(width), m = n + 1;
            FencedMemory src(2 * n, side), floats(2 * n * 4, side), sums(3 * m * 4, side),
                squares(3 * m * 8, side);
            for (size_t i = 0; i < 2 * n; ++i) {
                src.set<Ipp8u>(i, Ipp8u(i));
                floats.set<Ipp32f>(i, Ipp32f(i));
            }
            const int step = int(m) * 4;
            ASSERT_EQ(ippiSqrIntegral_8u32s64f_C1R(src.data(), width, reinterpret_cast<Ipp32s*>(sums.data()),
                          step, reinterpret_cast<Ipp64f*>(squares.data()), 2 * step, {width, 2}, 0, 0),
                ippStsNoErr);
            for (const float offset : {0.0f, 0.5f})
                ASSERT_EQ(ippiIntegral_8u32f_C1R(src.data(), width, reinterpret_cast<Ipp32f*>(sums.data()),
                              step, {width, 2}, offset),
                    ippStsNoErr);
            ASSERT_EQ(ippiIntegral_32f_C1R(reinterpret_cast<const Ipp32f*>(floats.data()), width * 4,
                          reinterpret_cast<Ipp32f*>(sums.data()), step, {width, 2}),
                ippStsNoErr);
        }
}

TEST(integralCheckTest, TheChecksComeInTheirOrder)
{
    const Ipp8u src[8] = {};
    const Ipp32f floats[8] = {};
    Ipp32s sums[16];
    Ipp64f squares[16];
    std::fill_n(sums, 16, 77);
    std::fill_n(squares, 16, 77.0);
    const auto run = [&](bool noSource, IppiSize size, int srcStep, int dstStep, int sqrStep) {
        return ippiSqrIntegral_8u32s64f_C1R(
            noSource ? nullptr : src, srcStep, sums, dstStep, squares, sqrStep, size, 0, 0);
    };
    EXPECT_EQ(run(true, {0, 0}, 0, 0, 0), ippStsNullPtrErr);
    EXPECT_EQ(run(false, {0, 1}, 0, 0, 0), ippStsSizeErr);
    EXPECT_EQ(run(false, {1, -1}, 0, 0, 0), ippStsSizeErr);
    EXPECT_EQ(run(false, {2, 2}, 0, 12, 24), ippStsStepErr);
    EXPECT_EQ(run(false, {2, 2}, 1, 12, 24), ippStsStepErr);
    EXPECT_EQ(run(false, {2, 2}, 2, 11, 24), ippStsStepErr);
    EXPECT_EQ(run(false, {2, 2}, 2, 12, 20), ippStsStepErr);
    EXPECT_EQ(run(false, {2, 2}, 2, 13, 20), ippStsStepErr);
    EXPECT_EQ(run(false, {2, 2}, 2, 13, 24), ippStsNotEvenStepErr);
    EXPECT_EQ(run(false, {2, 2}, 2, 12, 28), ippStsNotEvenStepErr);
    EXPECT_EQ(ippiSqrIntegral_8u32s64f_C1R(src, 2, nullptr, 0, squares, 24, {2, 2}, 0, 0), ippStsNullPtrErr);
    EXPECT_EQ(ippiSqrIntegral_8u32s64f_C1R(src, 2, sums, 0, nullptr, 24, {2, 2}, 0, 0), ippStsNullPtrErr);
    auto* const out = reinterpret_cast<Ipp32f*>(sums);
    EXPECT_EQ(ippiIntegral_32f_C1R(nullptr, 0, out, 0, {0, 0}), ippStsNullPtrErr);
    EXPECT_EQ(ippiIntegral_32f_C1R(floats, 0, nullptr, 0, {0, 0}), ippStsNullPtrErr);
    EXPECT_EQ(ippiIntegral_32f_C1R(floats, 7, out, 12, {2, 2}), ippStsStepErr);
    EXPECT_EQ(ippiIntegral_32f_C1R(floats, 9, out, 12, {2, 2}), ippStsNotEvenStepErr);
    EXPECT_EQ(ippiIntegral_8u32s_C1R(src, 2, sums, 8, {2, 2}, 0), ippStsStepErr);
    EXPECT_EQ(ippiIntegral_8u32f_C1R(src, 2, out, 14, {2, 2}, 0), ippStsNotEvenStepErr);
    for (const Ipp32s value : sums)
        EXPECT_EQ(value, 77);
    for (const Ipp64f value : squares)
        EXPECT_EQ(value, 77.0);
}

} // namespace
