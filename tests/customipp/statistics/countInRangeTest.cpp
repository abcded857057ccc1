#include "reductionCases.h"

#include <gtest/gtest.h>
#include <hwy/tests/hwy_gtest.h>

#include <array>
#include <climits>
#include <cmath>

namespace {

/** Runs each case once for every instruction set that is compiled in. */
class countInRangeTest : public hwy::TestWithParamTarget {};
HWY_TARGET_INSTANTIATE_TEST_SUITE_P(countInRangeTest);

template <class T> struct Range {
    T lower;
    T upper;
};

/** function(src, step, size, counts, lower, upper), the bounds as arrays. */
template <class T, int Channels, class Function>
void expectCounts(const char* i_symbol, const std::vector<Range<T>>& i_ranges, Function&& i_function)
{
    PixelSource<T> random(1);
    reduction::forEveryGeometry([&](IppiSize size, const Layout& layout, unsigned count) {
        SCOPED_TRACE(reduction::nameOf(i_symbol, size));
        Plane<T> image(size.width * Channels, size.height, layout);
        image.fill(random);
        for (size_t first = 0; first < i_ranges.size(); ++first) {
            T lower[Channels], upper[Channels];
            int expected[Channels] = {}, counts[Channels];
            for (size_t c = 0; c < Channels; ++c) {
                lower[c] = i_ranges[(first + c) % i_ranges.size()].lower;
                upper[c] = i_ranges[(first + c) % i_ranges.size()].upper;
            }
            for (int y = 0; y < size.height; ++y)
                for (int lane = 0; lane < image.lanes(); ++lane) {
                    const int c = lane % Channels;
                    expected[c] += lower[c] <= image.get(lane, y) && image.get(lane, y) <= upper[c];
                }
            ASSERT_EQ(i_function(image.data(), image.step(), size, counts, lower, upper), ippStsNoErr);
            for (int c = 0; c < Channels; ++c)
                ASSERT_EQ(counts[c], expected[c])
                    << "from " << +lower[c] << " to " << +upper[c] << ", " << count;
        }
        ASSERT_TRUE(image.frameIsIntact());
    });
}

const std::vector<Range<Ipp8u>> s_byteRanges {
    {0, 0}, {0, 255}, {255, 255}, {1, 255}, {0, 254}, {3, 200}, {128, 128}};
const std::vector<Range<float>> s_floatRanges {
    {0, 0}, {-1, 1}, {0.5f, 255}, {-INFINITY, INFINITY}, {-INFINITY, -1}, {INFINITY, INFINITY}, {255, 65536}};

TEST_P(countInRangeTest, BothBoundsCount)
{
    expectCounts<Ipp8u, 1>("ippiCountInRange_8u_C1R", s_byteRanges,
        [](const Ipp8u* src, int step, IppiSize size, int* counts, const Ipp8u* lower, const Ipp8u* upper) {
            return ippiCountInRange_8u_C1R(src, step, size, counts, *lower, *upper);
        });
    expectCounts<float, 1>("ippiCountInRange_32f_C1R", s_floatRanges,
        [](const float* src, int step, IppiSize size, int* counts, const float* lower, const float* upper) {
            return ippiCountInRange_32f_C1R(src, step, size, counts, *lower, *upper);
        });
    expectCounts<Ipp8u, 3>("ippiCountInRange_8u_C3R", s_byteRanges,
        [](const Ipp8u* src, int step, IppiSize size, int* counts, Ipp8u* lower, Ipp8u* upper) {
            return ippiCountInRange_8u_C3R(src, step, size, counts, lower, upper);
        });
}

/** All 65536 pairs of a bound and a byte, at both ends of the range. */
TEST_P(countInRangeTest, EveryByteAgainstEveryBound)
{
    Ipp8u bytes[256];
    for (int i = 0; i < 256; ++i)
        bytes[i] = Ipp8u(i);
    for (int bound = 0; bound < 256; ++bound) {
        int above = 0, below = 0;
        ASSERT_EQ(ippiCountInRange_8u_C1R(bytes, 256, {256, 1}, &above, Ipp8u(bound), 255), ippStsNoErr);
        ASSERT_EQ(ippiCountInRange_8u_C1R(bytes, 256, {256, 1}, &below, 0, Ipp8u(bound)), ippStsNoErr);
        EXPECT_EQ(above, 256 - bound);
        EXPECT_EQ(below, bound + 1);
    }
}

TEST_P(countInRangeTest, NotANumberNeverCounts)
{
    for (int width = 1; width <= 70; ++width) {
        std::vector<float> row(size_t(width), 1.0f);
        row[size_t(width) / 2] = NAN;
        int count = -1;
        ASSERT_EQ(ippiCountInRange_32f_C1R(row.data(), width * 4, {width, 1}, &count, -INFINITY, INFINITY),
            ippStsNoErr);
        EXPECT_EQ(count, width - 1);
        for (const auto& [lower, upper] : {Range<float> {NAN, 2}, {0, NAN}, {NAN, NAN}}) {
            ASSERT_EQ(ippiCountInRange_32f_C1R(row.data(), width * 4, {width, 1}, &count, lower, upper),
                ippStsNoErr);
            EXPECT_EQ(count, 0);
        }
    }
}

TEST_P(countInRangeTest, NothingBeyondTheRowIsRead)
{
    for (const FencedMemory::Side side : reduction::s_sides)
        for (int width = 1; width <= 300; ++width) {
            reduction::FencedRow<Ipp8u> three(width * 3, side);
            reduction::FencedRow<float> floats(width, side);
            int counts[3];
            Ipp8u lower[3] = {0, 0, 1}, upper[3] = {0, 9, 9};
            EXPECT_EQ(ippiCountInRange_8u_C3R(three.data(), width * 3, {width, 1}, counts, lower, upper),
                ippStsNoErr);
            EXPECT_EQ(counts[0], width);
            EXPECT_EQ(counts[1], width);
            EXPECT_EQ(counts[2], 0);
            EXPECT_EQ(
                ippiCountInRange_32f_C1R(floats.data(), width * 4, {width, 1}, counts, 0, 0), ippStsNoErr);
            EXPECT_EQ(counts[0], width);
        }
}

TEST(countInRangeCheckTest, PointersThenSizesThenStepsThenTheRange)
{
    const Ipp8u bytes[6] = {};
    const float floats[2] = {};
    Ipp8u three[3] = {5, 5, 5}, smaller[3] = {5, 5, 4};
    int counts[3] = {7, 7, 7};
    EXPECT_EQ(ippiCountInRange_8u_C1R(nullptr, 0, {0, 0}, counts, 5, 4), ippStsNullPtrErr);
    EXPECT_EQ(ippiCountInRange_8u_C1R(bytes, 0, {0, 0}, nullptr, 5, 4), ippStsNullPtrErr);
    EXPECT_EQ(ippiCountInRange_32f_C1R(nullptr, 0, {0, 0}, counts, 5, 4), ippStsNullPtrErr);
    EXPECT_EQ(ippiCountInRange_8u_C3R(bytes, 0, {0, 0}, counts, nullptr, three), ippStsNullPtrErr);
    EXPECT_EQ(ippiCountInRange_8u_C3R(bytes, 0, {0, 0}, counts, three, nullptr), ippStsNullPtrErr);
    EXPECT_EQ(ippiCountInRange_8u_C3R(nullptr, 0, {0, 0}, counts, three, three), ippStsNullPtrErr);
    for (const IppiSize size : {IppiSize {0, 1}, {2, 0}, {-1, 1}, {1, INT_MIN}}) {
        EXPECT_EQ(ippiCountInRange_8u_C1R(bytes, 0, size, counts, 5, 4), ippStsSizeErr);
        EXPECT_EQ(ippiCountInRange_32f_C1R(floats, 0, size, counts, 5, 4), ippStsSizeErr);
        EXPECT_EQ(ippiCountInRange_8u_C3R(bytes, 0, size, counts, three, smaller), ippStsSizeErr);
    }
    for (const int step : {0, -2, 1}) {
        EXPECT_EQ(ippiCountInRange_8u_C1R(bytes, step, {2, 1}, counts, 5, 4), ippStsStepErr);
        EXPECT_EQ(ippiCountInRange_32f_C1R(floats, step + 6, {2, 1}, counts, 5, 4), ippStsStepErr);
        EXPECT_EQ(ippiCountInRange_8u_C3R(bytes, step, {2, 1}, counts, three, smaller), ippStsStepErr);
    }
    EXPECT_EQ(ippiCountInRange_8u_C1R(bytes, 2, {2, 1}, counts, 5, 4), ippStsRangeErr);
    EXPECT_EQ(ippiCountInRange_32f_C1R(floats, 8, {2, 1}, counts, 5, 4), ippStsRangeErr);
    EXPECT_EQ(ippiCountInRange_8u_C3R(bytes, 6, {2, 1}, counts, three, smaller), ippStsRangeErr);
    EXPECT_EQ(counts[0], 7);
    EXPECT_EQ(counts[2], 7);
}

} // namespace
