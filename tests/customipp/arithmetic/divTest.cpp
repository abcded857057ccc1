#include "customipp/arithmetic/pointwiseCases.h"

#include <hwy/tests/hwy_gtest.h>

namespace {

/** Runs each case once for every instruction set that is compiled in. */
class divTest : public hwy::TestWithParamTarget {};
HWY_TARGET_INSTANTIATE_TEST_SUITE_P(divTest);

TEST_P(divTest, EveryVariantGivesTheOraclesPixels) {
#include <customipp/div.def>
#include <customipp/divC.def>
}

TEST_P(divTest, EveryPairOfBytesGivesTheOraclesPixel)
{
    pointwise::expectEveryPairOfBytes<oracle::Div>(ippiDiv_8u_C1RSfs);
}

TEST_P(divTest, EveryByteWithEveryConstantGivesTheOraclesPixel)
{
    pointwise::expectEveryPixel<oracle::DivC, Ipp8u>(
        pointwise::byteConstantsFrom(1), {0, 1, 2, 7, 8, 9, 16, 17, -1, -3, -8, -17}, ippiDivC_8u_C1RSfs);
}

TEST_P(divTest, EveryWordGivesTheOraclesPixel)
{
    const std::vector<int> factors {0, 1, 2, 7, 8, 16, 17, 18, 24, 31, 32, 33, 34, -1, -2, -8, -15, -16, -17};
    pointwise::expectEveryPixel<oracle::DivC, Ipp16u>(
        {1, 2, 3, 255, 256, 257, 32767, 32768, 39322, 52429, 65280, 65535}, factors, ippiDivC_16u_C1RSfs);
    pointwise::expectEveryPixel<oracle::DivC, Ipp16s>(
        {1, -1, 2, 3, 255, -255, 256, 10000, 32767, -32767, -32768}, factors, ippiDivC_16s_C1RSfs);
}

/** Pairs of words whose quotient is halfway between two integers, or the next one to it. */
template <class T>
void expectQuotientsNearHalves(IppStatus (*i_function)(const T*, int, const T*, int, T*, int, IppiSize, int))
{
    std::mt19937 random(5);
    Plane<T> divisors(256, 64), dividends(256, 64), out(256, 64), expected(256, 64);
    for (const int factor : {0, 1, 3, 8, 15, -1, -2, -7, -8, -9, -15, -16, -17, -32, -33}) {
        for (int y = 0; y < 64; ++y)
            for (int x = 0; x < 256; ++x) {
                const double divisor = std::ldexp(double(1 + random() % 65535), -int(random() % 16)) + 1;
                const double largest = std::min(65535.0, 65535.0 * divisor * std::ldexp(1, factor));
                const double halves = std::floor(double(random()) / 4294967296.0 * largest / divisor) + 0.5;
                const double dividend
                    = halves * std::floor(divisor) * std::ldexp(1, factor) + int(random() % 3) - 1;
                const int sign = std::is_signed_v<T> && random() % 2 ? -1 : 1;
                divisors.set(x, y, T(std::min(divisor, double(std::numeric_limits<T>::max())) * sign));
                dividends.set(x, y, T(std::clamp(dividend, 0.0, double(std::numeric_limits<T>::max()))));
            }
        for (int y = 0; y < 64; ++y)
            for (int x = 0; x < 256; ++x)
                expected.set(x, y, oracle::Div::pixel<T>(divisors.get(x, y), dividends.get(x, y), factor));
        ASSERT_EQ(i_function(divisors.data(), divisors.step(), dividends.data(), dividends.step(), out.data(),
                      out.step(), {256, 64}, factor),
            ippStsNoErr);
        ASSERT_TRUE(samePixels(out, expected)) << "factor " << factor;
    }
}

TEST_P(divTest, QuotientsOfWordsNearHalvesAreRoundedToEven)
{
    expectQuotientsNearHalves<Ipp16u>(ippiDiv_16u_C1RSfs);
    expectQuotientsNearHalves<Ipp16s>(ippiDiv_16s_C1RSfs);
}

TEST_P(divTest, TheFirstSourceDivides)
{
    const auto quotient = [](int dividend, int divisor) {
        return pointwise::onePixel<Ipp8u>(ippiDiv_8u_C1RSfs, Ipp8u(divisor), Ipp8u(dividend), 0);
    };
    EXPECT_EQ(quotient(5, 2), 2);
    EXPECT_EQ(quotient(7, 2), 4);
    EXPECT_EQ(quotient(1, 2), 0);
    EXPECT_EQ(quotient(3, 2), 2);
    EXPECT_EQ(quotient(10, 4), 2);
    EXPECT_EQ(quotient(255, 2), 128);
    EXPECT_EQ(quotient(100, 3), 33);
    EXPECT_EQ(quotient(200, 3), 67);
}

TEST_P(divTest, ADivisionIsScaledBeforeItIsRounded)
{
    const auto quotient = [](int pixel, int divisor, int scale) {
        return pointwise::onePixelWithConstant<Ipp8u>(
            ippiDivC_8u_C1RSfs, Ipp8u(pixel), Ipp8u(divisor), scale);
    };
    EXPECT_EQ(quotient(10, 3, -1), 7);
    EXPECT_EQ(quotient(5, 2, -1), 5);
    EXPECT_EQ(quotient(7, 8, -2), 4);
    EXPECT_EQ(quotient(1, 255, -7), 1);
    EXPECT_EQ(quotient(100, 166, -7), 77);
}

TEST_P(divTest, OneZeroDivisorInManyPixelsWarns)
{
    const IppiSize size {1500, 1000};
    std::vector<Ipp16s> divisors(size_t(size.width * size.height), 2), dividends(divisors.size(), -7),
        out(divisors.size());
    const int step = size.width * int(sizeof(Ipp16s));
    const auto divide = [&] {
        return ippiDiv_16s_C1RSfs(divisors.data(), step, dividends.data(), step, out.data(), step, size, 0);
    };
    EXPECT_EQ(divide(), ippStsNoErr);
    for (const size_t place : {size_t {0}, size_t {777777}, divisors.size() - 1}) {
        divisors[place] = 0;
        EXPECT_EQ(divide(), ippStsDivByZero);
        std::vector<Ipp16s> expected(divisors.size(), -4);
        expected[place] = -32768;
        EXPECT_EQ(out, expected);
        divisors[place] = 2;
    }
}

TEST_P(divTest, ZeroDivisorsGiveTheEndsOfTheRangeUnscaled)
{
    EXPECT_EQ(pointwise::onePixel<Ipp8u>(ippiDiv_8u_C1RSfs, 0, 0, 4), 0);
    EXPECT_EQ(pointwise::onePixel<Ipp8u>(ippiDiv_8u_C1RSfs, 0, 1, 4), 255);
    EXPECT_EQ(pointwise::onePixel<Ipp16u>(ippiDiv_16u_C1RSfs, 0, 1, 4), 65535);
    EXPECT_EQ(pointwise::onePixel<Ipp16s>(ippiDiv_16s_C1RSfs, 0, 1, 4), 32767);
    EXPECT_EQ(pointwise::onePixel<Ipp16s>(ippiDiv_16s_C1RSfs, 0, -1, 4), -32768);
    EXPECT_EQ(pointwise::onePixel<Ipp16s>(ippiDiv_16s_C1RSfs, 0, 0, -4), 0);
    EXPECT_EQ(pointwise::onePixel<Ipp16s>(ippiDiv_16s_C1RSfs, -1, -32768, 0), 32767);
}

TEST_P(divTest, FloatsFollowTheIeeeQuotient)
{
    const float inf = std::numeric_limits<float>::infinity(), nan = std::numeric_limits<float>::quiet_NaN();
    struct {
        float divisor, dividend, quotient;
        IppStatus status;
    } const cases[] = {{0, 0, nan, ippStsDivByZero}, {0, 1, inf, ippStsDivByZero},
        {0, -1, -inf, ippStsDivByZero}, {-0.0f, 1, -inf, ippStsDivByZero}, {-0.0f, -1, inf, ippStsDivByZero},
        {0, nan, nan, ippStsDivByZero}, {nan, 1, nan, ippStsNoErr}, {1e-40f, 1e-40f, 1, ippStsNoErr},
        {1e-30f, 1e30f, inf, ippStsNoErr}, {3, 1, 1.0f / 3, ippStsNoErr}, {inf, 1, 0, ippStsNoErr}};
    for (const auto& row : cases) {
        float out = 5;
        EXPECT_EQ(ippiDiv_32f_C1R(&row.divisor, 4, &row.dividend, 4, &out, 4, {1, 1}), row.status);
        EXPECT_TRUE(samePixel(out, row.quotient)) << row.dividend << " / " << row.divisor << " gave " << out;
    }
}

TEST(divCheckTest, AZeroAmongTheConstantsIsRefusedAfterTheOtherChecks)
{
    Ipp8u pixels[8] = {1, 2, 3, 4, 5, 6, 7, 8};
    const Ipp8u before[8] = {1, 2, 3, 4, 5, 6, 7, 8};
    Ipp8u out[8] = {};
    for (int zero = 0; zero < 4; ++zero) {
        Ipp8u values[4] = {1, 2, 3, 4};
        values[zero] = 0;
        EXPECT_EQ(ippiDivC_8u_C4IRSfs(values, pixels, 8, {2, 1}, 0), ippStsDivByZeroErr);
        EXPECT_EQ(ippiDivC_8u_C4RSfs(pixels, 8, values, out, 8, {2, 1}, 0), ippStsDivByZeroErr);
        // Three channels use three constants.
        EXPECT_EQ(ippiDivC_8u_C3RSfs(pixels, 8, values, out + 4, 4, {1, 1}, 0),
            zero == 3 ? ippStsNoErr : ippStsDivByZeroErr);
        EXPECT_EQ(out[0], 0);
    }
    EXPECT_EQ(std::memcmp(pixels, before, sizeof pixels), 0);
    EXPECT_EQ(ippiDivC_8u_C1IRSfs(0, pixels, 0, {2, 1}, 0), ippStsStepErr);
    float value = 2;
    EXPECT_EQ(ippiDivC_32f_C1IR(-0.0f, &value, 4, {1, 1}), ippStsDivByZeroErr);
    EXPECT_EQ(value, 2);
}

} // namespace
