#include "customipp/movers/moverCases.h"

#include <hwy/tests/hwy_gtest.h>

#include <cmath>

namespace {

/** Runs each case once for every instruction set that is compiled in. */
class thresholdLTValGTValTest : public hwy::TestWithParamTarget {};
HWY_TARGET_INSTANTIATE_TEST_SUITE_P(thresholdLTValGTValTest);

/** Thresholds and values of three channels. */
template <class T> struct Levels {
    T thresholdLT[3], valueLT[3], thresholdGT[3], valueGT[3];

    /** Any values; for each third of the kinds the thresholds themselves, or the same value on both sides. */
    Levels(PixelSource<T>& io_random, unsigned i_kind)
    {
        for (int c = 0; c < 3; ++c) {
            thresholdLT[c] = io_random();
            thresholdGT[c] = io_random();
            if (thresholdLT[c] > thresholdGT[c])
                std::swap(thresholdLT[c], thresholdGT[c]);
            valueLT[c] = i_kind % 3 == 0 ? thresholdLT[c] : io_random();
            valueGT[c] = i_kind % 3 == 0 ? thresholdGT[c] : i_kind % 3 == 1 ? valueLT[c] : io_random();
        }
    }
    T of(T i_pixel, int i_channel) const
    {
        return i_pixel < thresholdLT[i_channel] ? valueLT[i_channel]
            : i_pixel > thresholdGT[i_channel]  ? valueGT[i_channel]
                                                : i_pixel;
    }
};

/** function(src, step, dst, step, size, levels); a fourth channel stays. */
template <class T, int Channels, class Function>
void expectLevels(const char* i_symbol, Function&& i_function)
{
    PixelSource<T> random(11);
    movers::forEveryGeometry([&](IppiSize size, size_t layout, unsigned count) {
        SCOPED_TRACE(movers::nameOf(i_symbol, size, layout));
        const Levels<T> levels(random, count);
        const int lanes = size.width * Channels;
        Plane<T> src(lanes, size.height, movers::layoutAt(layout)), expected(lanes, size.height);
        Plane<T> dst(lanes, size.height, movers::layoutAt(layout + count % 2));
        src.fill(random);
        expected.fill(random);
        // A pixel at a threshold is not beyond it.
        src.set(0, 0, levels.thresholdLT[0]);
        src.set(lanes - Channels, size.height - 1, levels.thresholdGT[0]);
        if constexpr (std::is_floating_point_v<T>)
            src.set(lanes / 2, 0, T(NAN));
        dst.copyFrom(expected);
        for (int y = 0; y < size.height; ++y)
            for (int lane = 0; lane < lanes; ++lane)
                if (lane % Channels < 3)
                    expected.set(lane, y, levels.of(src.get(lane, y), lane % Channels));
        ASSERT_EQ(i_function(src.data(), src.step(), dst.data(), dst.step(), size, levels), ippStsNoErr);
        ASSERT_TRUE(samePixels(dst, expected));
        ASSERT_TRUE(dst.frameIsIntact() && src.frameIsIntact());

        for (int y = 0; Channels == 4 && y < size.height; ++y)
            for (int lane = 3; lane < lanes; lane += 4)
                expected.set(lane, y, src.get(lane, y));
        ASSERT_EQ(i_function(src.data(), src.step(), src.data(), src.step(), size, levels), ippStsNoErr);
        ASSERT_TRUE(samePixels(src, expected)) << "source and destination are one";
        ASSERT_TRUE(src.frameIsIntact());
    });

    for (const FencedMemory::Side side : movers::s_sides)
        for (const int width : movers::everyFencedWidth()) {
            const Levels<T> levels(random, unsigned(width));
            const size_t lanes = size_t(width) * Channels;
            FencedMemory src(lanes * sizeof(T), side), dst(lanes * sizeof(T), side);
            for (size_t i = 0; i < lanes; ++i)
                src.set<T>(i, random());
            const int step = int(lanes * sizeof(T));
            ASSERT_EQ(i_function(reinterpret_cast<const T*>(src.data()), step,
                          reinterpret_cast<T*>(dst.data()), step, {width, 1}, levels),
                ippStsNoErr);
            for (size_t i = 0; i < lanes; ++i)
                ASSERT_TRUE(samePixel(
                    dst.get<T>(i), i % Channels < 3 ? levels.of(src.get<T>(i), int(i % Channels)) : T(0)))
                    << i_symbol << ", width " << width << ", element " << i;
        }
}

#undef CUSTOMIPP_TWO_LEVELS
#define CUSTOMIPP_TWO_LEVELS(symbol, op, T)                                                                  \
    expectLevels<T, 1>(                                                                                      \
        #symbol, [](const T* src, int srcStep, T* dst, int dstStep, IppiSize size, const Levels<T>& l) {     \
            return symbol(src, srcStep, dst, dstStep, size, l.thresholdLT[0], l.valueLT[0],                  \
                l.thresholdGT[0], l.valueGT[0]);                                                             \
        });
#undef CUSTOMIPP_TWO_LEVELS_CHANNELS
#define CUSTOMIPP_TWO_LEVELS_CHANNELS(symbol, op, T, channels)                                               \
    expectLevels<T, channels>(                                                                               \
        #symbol, [](const T* src, int srcStep, T* dst, int dstStep, IppiSize size, const Levels<T>& l) {     \
            return symbol(                                                                                   \
                src, srcStep, dst, dstStep, size, l.thresholdLT, l.valueLT, l.thresholdGT, l.valueGT);       \
        });

TEST_P(thresholdLTValGTValTest, EveryVariantGivesTheOraclesPixels) {
#include <customipp/thresholdLTValGTVal.def>
}

TEST_P(thresholdLTValGTValTest, OnlyPixelsBeyondAThresholdAreReplaced)
{
    const Ipp8u src[4] = {99, 100, 150, 151};
    Ipp8u dst[4] = {};
    ASSERT_EQ(ippiThreshold_LTValGTVal_8u_C1R(src, 4, dst, 4, {4, 1}, 100, 1, 150, 2), ippStsNoErr);
    EXPECT_EQ(dst[0], 1);
    EXPECT_EQ(dst[1], 100);
    EXPECT_EQ(dst[2], 150);
    EXPECT_EQ(dst[3], 2);
}

TEST_P(thresholdLTValGTValTest, NotANumberStaysAndZerosAreEqual)
{
    const Ipp32f src[5] = {NAN, -0.0f, 0.0f, INFINITY, -INFINITY};
    Ipp32f dst[5] = {};
    // Values that are the thresholds, and others.
    ASSERT_EQ(
        ippiThreshold_LTValGTVal_32f_C1R(src, 20, dst, 20, {5, 1}, 0.0f, 0.0f, 1.0f, 1.0f), ippStsNoErr);
    EXPECT_TRUE(std::isnan(dst[0]));
    EXPECT_TRUE(std::signbit(dst[1]));
    EXPECT_FALSE(std::signbit(dst[2]));
    EXPECT_EQ(dst[3], 1.0f);
    EXPECT_EQ(dst[4], 0.0f);
    ASSERT_EQ(ippiThreshold_LTValGTVal_32f_C1R(src, 20, dst, 20, {5, 1}, NAN, 3.0f, NAN, 4.0f), ippStsNoErr);
    for (int i = 0; i < 5; ++i)
        EXPECT_TRUE(samePixel(dst[i], src[i])) << i;
}

TEST(thresholdLTValGTValCheckTest, ThresholdsOutOfOrderAreRefusedAfterAllElse)
{
    Ipp8u src[4] = {1, 2, 3, 4}, dst[4] = {9, 9, 9, 9};
    EXPECT_EQ(ippiThreshold_LTValGTVal_8u_C1R(src, 4, dst, 4, {4, 1}, 11, 0, 10, 0), ippStsThresholdErr);
    EXPECT_EQ(ippiThreshold_LTValGTVal_8u_C1R(src, 4, dst, 4, {4, 1}, 10, 10, 10, 10), ippStsNoErr);
    EXPECT_EQ(ippiThreshold_LTValGTVal_8u_C1R(src, 0, dst, 4, {4, 1}, 11, 0, 10, 0), ippStsStepErr);
    EXPECT_EQ(ippiThreshold_LTValGTVal_8u_C1R(src, 0, dst, 4, {0, 1}, 11, 0, 10, 0), ippStsSizeErr);
    EXPECT_EQ(ippiThreshold_LTValGTVal_8u_C1R(src, 0, nullptr, 4, {0, 1}, 11, 0, 10, 0), ippStsNullPtrErr);
    const Ipp8u low[3] = {10, 10, 10}, high[3] = {20, 20, 20};
    for (int c = 0; c < 3; ++c) {
        Ipp8u crossed[3] = {10, 10, 10};
        crossed[c] = 21;
        Ipp8u untouched[4] = {9, 9, 9, 9};
        EXPECT_EQ(ippiThreshold_LTValGTVal_8u_C3R(src, 3, untouched, 3, {1, 1}, crossed, low, high, low),
            ippStsThresholdErr);
        EXPECT_EQ(ippiThreshold_LTValGTVal_8u_AC4R(src, 4, untouched, 4, {1, 1}, crossed, low, high, low),
            ippStsThresholdErr);
        for (const Ipp8u value : untouched)
            EXPECT_EQ(value, 9);
    }
    for (int missing = 0; missing < 4; ++missing) {
        const auto level = [&](int i) { return i == missing ? nullptr : i == 2 ? high : low; };
        EXPECT_EQ(
            ippiThreshold_LTValGTVal_8u_C3R(src, 0, dst, 0, {0, 0}, level(0), level(1), level(2), level(3)),
            ippStsNullPtrErr);
        EXPECT_EQ(
            ippiThreshold_LTValGTVal_8u_AC4R(src, 0, dst, 0, {0, 0}, level(0), level(1), level(2), level(3)),
            ippStsNullPtrErr);
    }
}

} // namespace
