#include "localCases.h"

#include <hwy/tests/hwy_gtest.h>

#include <cmath>
#include <random>
#include <vector>

namespace {

/** Runs each case once for every instruction set that is compiled in. */
class findPeaksTest : public hwy::TestWithParamTarget {};
HWY_TARGET_INSTANTIATE_TEST_SUITE_P(findPeaksTest);

using Points = std::vector<std::pair<int, int>>;

/** The definition: above the threshold, greater than each neighbour that there is, outside the rim. */
template <class T> Points definedPeaks(const Plane<T>& i_src, T i_threshold, IppiNorm i_norm, int i_border)
{
    Points peaks;
    for (int y = i_border; y < i_src.rows() - i_border; ++y)
        for (int x = i_border; x < i_src.lanes() - i_border; ++x) {
            bool peak = i_src.get(x, y) > i_threshold;
            for (int dy = -1; dy <= 1; ++dy)
                for (int dx = -1; dx <= 1; ++dx) {
                    const int nx = x + dx, ny = y + dy;
                    const bool counts = (dx || dy) && (i_norm == ippiNormInf || !dx || !dy);
                    if (counts && nx >= 0 && ny >= 0 && nx < i_src.lanes() && ny < i_src.rows())
                        peak = peak && i_src.get(x, y) > i_src.get(nx, ny);
                }
            if (peak)
                peaks.push_back({x, y});
        }
    return peaks;
}

IppStatus find(const Plane<Ipp32s>& i_src, Ipp32s i_threshold, IppiPoint* o_peaks, int i_capacity,
    int* o_count, IppiNorm i_norm, int i_border)
{
    Ipp8u buffer = 0;
    return ippiFindPeaks3x3_32s_C1R(i_src.data(), i_src.step(), {i_src.lanes(), i_src.rows()}, i_threshold,
        o_peaks, i_capacity, o_count, i_norm, i_border, &buffer);
}
IppStatus find(const Plane<Ipp32f>& i_src, Ipp32f i_threshold, IppiPoint* o_peaks, int i_capacity,
    int* o_count, IppiNorm i_norm, int i_border)
{
    Ipp8u buffer = 0;
    return ippiFindPeaks3x3_32f_C1R(i_src.data(), i_src.step(), {i_src.lanes(), i_src.rows()}, i_threshold,
        o_peaks, i_capacity, o_count, i_norm, i_border, &buffer);
}

template <class T> Points foundPeaks(const Plane<T>& i_src, T i_threshold, IppiNorm i_norm, int i_border)
{
    std::vector<IppiPoint> list(size_t(i_src.lanes()) * size_t(i_src.rows()));
    int count = -1;
    EXPECT_EQ(find(i_src, i_threshold, list.data(), int(list.size()), &count, i_norm, i_border), ippStsNoErr);
    Points points;
    for (int i = 0; i < count; ++i)
        points.push_back({list[size_t(i)].x, list[size_t(i)].y});
    return points;
}

template <class T, class Next> void expectPeaks(T i_threshold, Next&& i_next)
{
    local::forEveryGeometry([&](IppiSize size, const Layout& layout) {
        Plane<T> src(size.width, size.height + 2, layout);
        src.fill(i_next);
        for (const IppiNorm norm : {ippiNormInf, ippiNormL1})
            for (const int border : {0, 1, 2, 40})
                ASSERT_EQ(
                    foundPeaks(src, i_threshold, norm, border), definedPeaks(src, i_threshold, norm, border))
                    << "norm " << norm << ", border " << border;
        ASSERT_TRUE(src.frameIsIntact());
    });
}

TEST_P(findPeaksTest, TheListHoldsThePeaksOfTheDefinitionRowByRow)
{
    std::mt19937 random(1);
    // Few values make plateaus, many make peaks.
    expectPeaks<Ipp32s>(2, [&] { return Ipp32s(random() % 5); });
    expectPeaks<Ipp32s>(0, PixelSource<Ipp32s>(2));
    expectPeaks<Ipp32s>(-2147483647 - 1, PixelSource<Ipp32s>(3));
    expectPeaks<Ipp32f>(-1.0f, PixelSource<Ipp32f>(4));
    expectPeaks<Ipp32f>(0.5f, [&] {
        return random() % 9 ? Ipp32f(random() % 7) : random() % 2 ? NAN : INFINITY;
    });
}

TEST_P(findPeaksTest, WorkedExampleAndTheThresholdItselfIsNotAboveIt)
{
    Plane<Ipp32s> src(3, 3);
    src.fill([] { return 1; });
    src.set(1, 1, 5);
    EXPECT_EQ(foundPeaks(src, 4, ippiNormInf, 1), (Points {{1, 1}}));
    EXPECT_EQ(foundPeaks(src, 5, ippiNormInf, 1), Points());
    src.set(0, 0, 6);
    EXPECT_EQ(foundPeaks(src, 4, ippiNormInf, 1), Points()) << "a greater neighbour at the corner";
    EXPECT_EQ(foundPeaks(src, 4, ippiNormL1, 1), (Points {{1, 1}}));
    EXPECT_EQ(foundPeaks(src, 4, ippiNormInf, 0), (Points {{0, 0}}));
}

TEST_P(findPeaksTest, DeepValleysAreNoPeaks)
{
    Plane<Ipp32f> src(3, 3);
    src.fill([] { return 0.0f; });
    src.set(1, 1, -100.0f);
    EXPECT_EQ(foundPeaks(src, 1.0f, ippiNormInf, 1), Points());
}

TEST_P(findPeaksTest, TheSearchEndsWithAFullList)
{
    Plane<Ipp32s> src(101, 5);
    src.fill([] { return 0; });
    for (int x = 0; x < 101; x += 2)
        for (int y = 0; y < 5; y += 2)
            src.set(x, y, 9);
    const Points all = definedPeaks(src, 1, ippiNormInf, 0);
    ASSERT_EQ(all.size(), 51u * 3);
    for (const int capacity : {1, 2, 7, 50, 51, 52, 152, 153, 200}) {
        std::vector<IppiPoint> list(size_t(capacity) + 1, IppiPoint {-5, -5});
        int count = 0;
        ASSERT_EQ(find(src, 1, list.data(), capacity, &count, ippiNormInf, 0), ippStsNoErr);
        ASSERT_EQ(count, std::min(capacity, 153));
        for (int i = 0; i <= capacity; ++i) {
            const auto expected = i < count ? all[size_t(i)] : std::pair(-5, -5);
            ASSERT_EQ(std::pair(list[size_t(i)].x, list[size_t(i)].y), expected) << i << " of " << capacity;
        }
    }
}

TEST_P(findPeaksTest, NothingBeyondTheImageIsRead)
{
    for (const FencedMemory::Side side : local::s_sides)
        for (int width = 1; width <= 70; ++width)
            for (const int border : {0, 1}) {
                FencedMemory src(size_t(width) * 3 * 4, side);
                for (size_t i = 0; i < size_t(width) * 3; ++i)
                    src.set<Ipp32f>(i, float(i * 7 % 11));
                IppiPoint peaks[256];
                int count = -1;
                Ipp8u buffer = 0;
                ASSERT_EQ(ippiFindPeaks3x3_32f_C1R(reinterpret_cast<const Ipp32f*>(src.data()), width * 4,
                              {width, 3}, 0, peaks, 256, &count, ippiNormInf, border, &buffer),
                    ippStsNoErr);
                ASSERT_GE(count, 0);
            }
}

TEST(findPeaksCheckTest, TheSizeQueryGivesMemoryToAllocateOrZero)
{
    for (const auto query : {ippiFindPeaks3x3GetBufferSize_32s_C1R, ippiFindPeaks3x3GetBufferSize_32f_C1R}) {
        int size = -1;
        EXPECT_EQ(query(1, &size), ippStsNoErr);
        EXPECT_GT(size, 0);
        EXPECT_EQ(query(0, &size), ippStsSizeErr);
        EXPECT_EQ(size, 0);
        EXPECT_EQ(query(0, nullptr), ippStsNullPtrErr);
    }
}

TEST(findPeaksCheckTest, TheChecksComeInTheirOrder)
{
    const Ipp32s src[16] = {0, 0, 0, 0, 0, 9};
    IppiPoint peak {-5, -5};
    int count = 77;
    Ipp8u buffer = 0;
    const auto run = [&](IppiSize size, int border, int step, int capacity, int norm) {
        return ippiFindPeaks3x3_32s_C1R(
            src, step, size, 1, &peak, capacity, &count, IppiNorm(norm), border, &buffer);
    };
    const IppiSize four {4, 4};
    EXPECT_EQ(ippiFindPeaks3x3_32s_C1R(nullptr, 0, {0, 0}, 1, &peak, 0, &count, IppiNorm(5), -1, &buffer),
        ippStsNullPtrErr);
    EXPECT_EQ(ippiFindPeaks3x3_32s_C1R(src, 0, {0, 0}, 1, nullptr, 0, &count, IppiNorm(5), -1, &buffer),
        ippStsNullPtrErr);
    EXPECT_EQ(ippiFindPeaks3x3_32s_C1R(src, 0, {0, 0}, 1, &peak, 0, nullptr, IppiNorm(5), -1, &buffer),
        ippStsNullPtrErr);
    EXPECT_EQ(ippiFindPeaks3x3_32s_C1R(src, 0, {0, 0}, 1, &peak, 0, &count, IppiNorm(5), -1, nullptr),
        ippStsNullPtrErr);
    EXPECT_EQ(run({0, 4}, 0, 0, 0, 5), ippStsSizeErr);
    EXPECT_EQ(run(four, -1, 0, 0, 5), ippStsSizeErr);
    EXPECT_EQ(run(four, 1, 0, 0, 5), ippStsStepErr);
    EXPECT_EQ(run(four, 1, 15, 0, 5), ippStsStepErr);
    EXPECT_EQ(run(four, 1, 17, 0, 5), ippStsNotEvenStepErr);
    EXPECT_EQ(run(four, 1, 16, 0, 0), ippStsBadArgErr);
    EXPECT_EQ(run(four, 1, 16, 1, 2), ippStsBadArgErr);
    EXPECT_EQ(run(four, 1, 16, 1, -1), ippStsBadArgErr);
    EXPECT_EQ(count, 77);
    EXPECT_EQ(peak.x, -5);
    EXPECT_EQ(run(four, 2147483647, 16, 1, 0), ippStsNoErr);
    EXPECT_EQ(count, 0) << "nothing is left within the rim";
    EXPECT_EQ(run(four, 1, 16, 1, 0), ippStsNoErr);
    EXPECT_EQ(count, 1);
    EXPECT_EQ(peak.x, 1);
    EXPECT_EQ(peak.y, 1);
}

} // namespace
