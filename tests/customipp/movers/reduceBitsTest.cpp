#include "customipp/movers/moverCases.h"

#include <hwy/tests/hwy_gtest.h>

#include <climits>
#include <cmath>
#include <vector>

namespace {

/** Runs each case once for every instruction set that is compiled in. */
class reduceBitsTest : public hwy::TestWithParamTarget {};
HWY_TARGET_INSTANTIATE_TEST_SUITE_P(reduceBitsTest);

/** Whole quotient of numbers that are not negative, to nearest, ties to even. */
int nearestQuotient(int i_numerator, int i_denominator)
{
    const int floor = i_numerator / i_denominator, twiceRest = 2 * (i_numerator % i_denominator);
    return floor + (twiceRest > i_denominator || (twiceRest == i_denominator && floor % 2));
}

Ipp8u reduced(float i_value, int i_levels)
{
    const int steps = i_levels - 1;
    const float limited = !(i_value > 0) ? 0 : i_value < 1 ? i_value : 1;
    const float product = limited * float(steps);
    return Ipp8u(nearestQuotient(int(std::nearbyint(product)) * 255, steps));
}

template <int Levels> struct Reduced {
    static constexpr bool oneChannel = false;
    template <class S, int SrcChannels, class D, int DstChannels> static void pixel(const S* i_src, D* o_dst)
    {
        o_dst[0] = reduced(i_src[0], Levels);
    }
};

template <int Levels> void expectLevels()
{
    movers::expectMove<Reduced<Levels>, Ipp32f, 1, Ipp8u, 1>("ippiReduceBits_32f8u_C1R",
        [](const Ipp32f* src, int srcStep, Ipp8u* dst, int dstStep, IppiSize size) {
            return ippiReduceBits_32f8u_C1R(
                src, srcStep, dst, dstStep, size, 0, ippDitherNone, Levels, nullptr);
        });
}

TEST_P(reduceBitsTest, EverySizeAndLayoutGivesTheOraclesPixels)
{
    expectLevels<2>();
    expectLevels<255>();
}

TEST_P(reduceBitsTest, EveryNumberOfLevelsRoundsTwice)
{
    for (int levels = 2; levels <= 256; ++levels) {
        std::vector<float> values {
            NAN, -NAN, -1.0f, -0.0f, 0.0f, 1.0f, 1.5f, INFINITY, -INFINITY, 1e-45f, 3e38f};
        // On both sides of every decision, and in between.
        for (int i = 0; i <= 4 * levels; ++i) {
            const float value = float(i) / (4.0f * float(levels - 1));
            for (const float near : {value, std::nextafter(value, -1.0f), std::nextafter(value, 2.0f)})
                values.push_back(near);
        }
        const int count = int(values.size());
        std::vector<Ipp8u> out(values.size());
        ASSERT_EQ(ippiReduceBits_32f8u_C1R(values.data(), 4 * count, out.data(), count, {count, 1}, 0,
                      ippDitherNone, levels, nullptr),
            ippStsNoErr);
        for (size_t i = 0; i < values.size(); ++i)
            ASSERT_EQ(out[i], reduced(values[i], levels)) << values[i] << ", levels " << levels;
    }
}

TEST_P(reduceBitsTest, With255LevelsEveryByteButOneOccurs)
{
    const float values[] = {0, 0.25f, 0.5f, 0.75f, 1};
    Ipp8u out[5];
    ASSERT_EQ(
        ippiReduceBits_32f8u_C1R(values, 20, out, 5, {5, 1}, 0, ippDitherNone, 255, nullptr), ippStsNoErr);
    EXPECT_EQ(std::vector<int>(out, out + 5), (std::vector<int> {0, 64, 128, 191, 255}));

    std::vector<float> ramp(100000);
    for (size_t i = 0; i < ramp.size(); ++i)
        ramp[i] = float(i) / float(ramp.size() - 1);
    std::vector<Ipp8u> bytes(ramp.size());
    ASSERT_EQ(ippiReduceBits_32f8u_C1R(
                  ramp.data(), 400000, bytes.data(), 100000, {100000, 1}, 0, ippDitherNone, 255, nullptr),
        ippStsNoErr);
    for (int value = 0; value < 256; ++value)
        EXPECT_EQ(std::count(bytes.begin(), bytes.end(), value) > 0, value != 127) << value;
}

TEST(reduceBitsCheckTest, EveryArgumentInItsOrder)
{
    const float src[2] = {1, 1};
    Ipp8u dst[2] = {7, 7}, buffer[8];
    const auto run = [&](const float* from, int srcStep, Ipp8u* to, int dstStep, IppiSize size, int noise,
                         int dither, int levels) {
        return ippiReduceBits_32f8u_C1R(
            from, srcStep, to, dstStep, size, noise, IppiDitherType(dither), levels, buffer);
    };
    EXPECT_EQ(run(nullptr, 0, dst, 0, {0, 0}, -1, 9, 0), ippStsNullPtrErr);
    EXPECT_EQ(run(src, 0, nullptr, 0, {0, 0}, -1, 9, 0), ippStsNullPtrErr);
    for (const IppiSize size : {IppiSize {0, 1}, IppiSize {1, 0}, IppiSize {-1, 1}, IppiSize {1, -1}})
        EXPECT_EQ(run(src, 0, dst, 0, size, -1, 9, 0), ippStsSizeErr);
    EXPECT_EQ(run(src, 0, dst, 1, {1, 1}, -1, 9, 0), ippStsStepErr);
    EXPECT_EQ(run(src, 4, dst, -1, {1, 1}, -1, 9, 0), ippStsStepErr);
    for (const int noise : {-1, 101, INT_MIN, INT_MAX})
        EXPECT_EQ(run(src, 4, dst, 1, {1, 1}, noise, 9, 0), ippStsNoiseValErr);
    for (const int dither : {-1, 5})
        EXPECT_EQ(run(src, 4, dst, 1, {1, 1}, 100, dither, 0), ippStsDitherTypeErr);
    for (const int levels : {-1, 0, 1, 257})
        EXPECT_EQ(run(src, 4, dst, 1, {1, 1}, 1, 4, levels), ippStsDitherLevelsErr);
    EXPECT_EQ(run(src, 4, dst, 1, {1, 1}, 1, 0, 2), ippStsNotSupportedModeErr);
    for (const int dither : {1, 2, 3, 4})
        EXPECT_EQ(run(src, 4, dst, 1, {1, 1}, 0, dither, 2), ippStsNotSupportedModeErr);
    EXPECT_EQ(dst[0], 7);
    EXPECT_EQ(run(src, 4, dst, 1, {1, 1}, 0, 0, 2), ippStsNoErr);
    EXPECT_EQ(dst[0], 255);
    EXPECT_EQ(dst[1], 7);
}

TEST(reduceBitsCheckTest, TheQueryGivesASizeOrZero)
{
    int size = 7;
    EXPECT_EQ(ippiReduceBitsGetBufferSize(ippC1, {0, 0}, 0, ippDitherNone, nullptr), ippStsNullPtrErr);
    const auto expectFailure = [&](IppChannels channels, IppiSize roi, int noise, int dither,
                                   IppStatus status) {
        size = 7;
        EXPECT_EQ(ippiReduceBitsGetBufferSize(channels, roi, noise, IppiDitherType(dither), &size), status);
        EXPECT_EQ(size, 0);
    };
    expectFailure(ippC3, {0, 1}, -1, 9, ippStsSizeErr);
    expectFailure(ippC3, {1, 1}, -1, 9, ippStsChannelErr);
    expectFailure(ippC1, {1, 1}, -1, 0, ippStsDataTypeErr);
    expectFailure(ippC1, {1, 1}, 101, 0, ippStsDataTypeErr);
    expectFailure(ippC1, {1, 1}, 0, 5, ippStsDataTypeErr);
    for (const int dither : {0, 1, 4}) {
        EXPECT_EQ(
            ippiReduceBitsGetBufferSize(ippC1, {1, 1}, 100, IppiDitherType(dither), &size), ippStsNoErr);
        EXPECT_GT(size, 0);
    }
}

} // namespace
