#include "localCases.h"

#include <hwy/tests/hwy_gtest.h>

#include <algorithm>
#include <cmath>
#include <vector>

namespace {

/** Runs each case once for every instruction set that is compiled in. */
class blockMinMaxTest : public hwy::TestWithParamTarget {};
HWY_TARGET_INSTANTIATE_TEST_SUITE_P(blockMinMaxTest);

/** Least and greatest of a rectangle, cut to the image; NaN if there is no number in it. */
template <class T> std::pair<T, T> extremes(const Plane<T>& i_src, IppiRect i_rect)
{
    std::vector<T> numbers;
    for (int y = i_rect.y; y < std::min(i_rect.y + i_rect.height, i_src.rows()); ++y)
        for (int x = i_rect.x; x < std::min(i_rect.x + i_rect.width, i_src.lanes()); ++x)
            if (const T pixel = i_src.get(x, y); pixel == pixel)
                numbers.push_back(pixel);
    if (numbers.empty())
        return {T(NAN), T(NAN)};
    const auto [least, greatest] = std::minmax_element(numbers.begin(), numbers.end());
    return {T(*least + T(0)), T(*greatest + T(0))}; // a positive zero
}

template <class T, class Function, class Next>
void expectBlocks(Function&& i_function, Next&& i_next, IppiSize i_size, IppiSize i_block, Layout i_layout)
{
    SCOPED_TRACE(std::to_string(i_size.width) + " x " + std::to_string(i_size.height) + " in blocks of "
        + std::to_string(i_block.width) + " x " + std::to_string(i_block.height));
    const int columns = (i_size.width + i_block.width - 1) / i_block.width;
    const int rows = (i_size.height + i_block.height - 1) / i_block.height;
    Plane<T> src(i_size.width, i_size.height, i_layout);
    Plane<T> least(columns, rows, i_layout), greatest(columns, rows, i_layout);
    Plane<T> expectedLeast(columns, rows), expectedGreatest(columns, rows);
    src.fill(i_next);
    for (int y = 0; y < rows; ++y)
        for (int x = 0; x < columns; ++x) {
            const auto block
                = extremes(src, {x * i_block.width, y * i_block.height, i_block.width, i_block.height});
            expectedLeast.set(x, y, block.first);
            expectedGreatest.set(x, y, block.second);
        }
    const auto all = extremes(src, {0, 0, i_size.width, i_size.height});
    T leastOfAll {}, greatestOfAll {};
    ASSERT_EQ(i_function(src.data(), src.step(), i_size, least.data(), least.step(), greatest.data(),
                  greatest.step(), i_block, &leastOfAll, &greatestOfAll),
        ippStsNoErr);
    ASSERT_TRUE(samePixels(least, expectedLeast));
    ASSERT_TRUE(samePixels(greatest, expectedGreatest));
    ASSERT_TRUE(samePixel(leastOfAll, all.first) && samePixel(greatestOfAll, all.second));
    ASSERT_TRUE(src.frameIsIntact() && least.frameIsIntact() && greatest.frameIsIntact());
}

/** Every width that is narrower than some vector of bytes, and some beyond. */
std::vector<int> everyBlockWidth()
{
    std::vector<int> widths {200};
    for (int width = 1; width <= 65; ++width)
        widths.push_back(width);
    return widths;
}

template <class T, class Function, class Next> void expectEveryBlock(Function&& i_function, Next&& i_next)
{
    for (const int width : everyWidth())
        for (const int blockWidth : everyBlockWidth())
            for (const Layout& layout : everyLayout())
                expectBlocks<T>(i_function, i_next, {width, 5}, {blockWidth, 1 + blockWidth % 6}, layout);
    // Wider than what is done at once, and blocks that do not divide it.
    for (const int blockWidth : {1, 3, 7, 15})
        expectBlocks<T>(i_function, i_next, {9000, 3}, {blockWidth, 2}, {});
    // Higher than what is done at once.
    for (const int blockHeight : {7, 8, 9, 16, 17, 40})
        for (const int blockWidth : {1, 3, 64})
            expectBlocks<T>(i_function, i_next, {70, 35}, {blockWidth, blockHeight}, {});
}

TEST_P(blockMinMaxTest, EachBlockGivesItsExtremes)
{
    expectEveryBlock<Ipp8u>(ippiBlockMinMax_8u_C1R, PixelSource<Ipp8u>(1));
    expectEveryBlock<Ipp16u>(ippiBlockMinMax_16u_C1R, PixelSource<Ipp16u>(2));
    expectEveryBlock<Ipp16s>(ippiBlockMinMax_16s_C1R, PixelSource<Ipp16s>(3));
    expectEveryBlock<Ipp32f>(ippiBlockMinMax_32f_C1R, PixelSource<Ipp32f>(4));
}

TEST_P(blockMinMaxTest, NotANumberIsPassedOverAndInfinitiesCount)
{
    std::mt19937 random(5);
    expectEveryBlock<Ipp32f>(ippiBlockMinMax_32f_C1R, [&] {
        const unsigned kind = unsigned(random() % 8);
        return kind < 5 ? NAN : kind == 5 ? INFINITY : kind == 6 ? -INFINITY : -0.0f;
    });
}

TEST_P(blockMinMaxTest, ConstantImagesAtTheEndsOfTheType)
{
    for (const int value : {0, 255})
        expectBlocks<Ipp8u>(ippiBlockMinMax_8u_C1R, [&] { return Ipp8u(value); }, {70, 9}, {3, 3}, {});
    for (const int value : {-32768, 32767})
        expectBlocks<Ipp16s>(ippiBlockMinMax_16s_C1R, [&] { return Ipp16s(value); }, {70, 9}, {64, 3}, {});
}

TEST_P(blockMinMaxTest, WhatIsNotWantedMayBeNullAndItsStepIsIgnored)
{
    Plane<Ipp8u> src(10, 10), least(4, 4), greatest(4, 4), only(4, 4);
    PixelSource<Ipp8u> random(6);
    src.fill(random);
    Ipp8u low = 0, high = 0, onlyLow = 1, onlyHigh = 1;
    const auto run = [&](Plane<Ipp8u>* toLeast, Plane<Ipp8u>* toGreatest, Ipp8u* toLow, Ipp8u* toHigh) {
        return ippiBlockMinMax_8u_C1R(src.data(), src.step(), {10, 10}, toLeast ? toLeast->data() : nullptr,
            toLeast ? toLeast->step() : 0, toGreatest ? toGreatest->data() : nullptr,
            toGreatest ? toGreatest->step() : -1, {3, 3}, toLow, toHigh);
    };
    ASSERT_EQ(run(&least, &greatest, &low, &high), ippStsNoErr);
    ASSERT_EQ(run(&only, nullptr, nullptr, &onlyHigh), ippStsNoErr);
    EXPECT_TRUE(samePixels(only, least));
    EXPECT_EQ(onlyHigh, high);
    ASSERT_EQ(run(nullptr, &only, &onlyLow, nullptr), ippStsNoErr);
    EXPECT_TRUE(samePixels(only, greatest));
    EXPECT_EQ(onlyLow, low);
    EXPECT_EQ(run(nullptr, nullptr, nullptr, nullptr), ippStsNoErr);
}

TEST_P(blockMinMaxTest, NothingBeyondTheImageIsRead)
{
    for (const FencedMemory::Side side : local::s_sides)
        for (int width = 1; width <= 140; ++width)
            for (const int block : {1, 3, 5, 16, 64, 100}) {
                FencedMemory src(size_t(width) * 2, side), least(size_t((width - 1) / block + 1), side);
                for (size_t i = 0; i < size_t(width) * 2; ++i)
                    src.set<Ipp8u>(i, Ipp8u(i * 7));
                Ipp8u low = 9, high = 9;
                ASSERT_EQ(ippiBlockMinMax_8u_C1R(src.data(), width, {width, 2}, least.data(),
                              (width - 1) / block + 1, nullptr, 0, {block, 2}, &low, &high),
                    ippStsNoErr);
                ASSERT_EQ(low, 0);
            }
}

TEST(blockMinMaxCheckTest, TheChecksComeInTheirOrder)
{
    const Ipp16u src[64] = {};
    Ipp16u least[16], greatest[16];
    std::fill_n(least, 16, Ipp16u(77));
    std::fill_n(greatest, 16, Ipp16u(77));
    Ipp16u low = 77;
    const auto run = [&](const Ipp16u* source, int step, IppiSize size, int leastStep, int greatestStep,
                         IppiSize block) {
        return ippiBlockMinMax_16u_C1R(
            source, step, size, least, leastStep, greatest, greatestStep, block, &low, nullptr);
    };
    const IppiSize seven {7, 7}, three {3, 3};
    EXPECT_EQ(run(nullptr, 0, {0, 0}, 0, 0, {0, 0}), ippStsNullPtrErr);
    EXPECT_EQ(run(src, 0, {0, 7}, 0, 0, three), ippStsSizeErr);
    for (const IppiSize block : {IppiSize {0, 3}, {3, 0}, {-1, 3}, {3, -1}})
        EXPECT_EQ(run(src, 0, seven, 0, 0, block), ippStsSizeErr);
    EXPECT_EQ(run(src, 0, seven, 6, 6, three), ippStsStepErr);
    EXPECT_EQ(run(src, 13, seven, 6, 6, three), ippStsStepErr);
    EXPECT_EQ(run(src, 14, seven, 5, 6, three), ippStsStepErr);
    EXPECT_EQ(run(src, 14, seven, 6, 5, three), ippStsStepErr);
    for (int i = 0; i < 16; ++i)
        EXPECT_TRUE(least[i] == 77 && greatest[i] == 77) << i;
    EXPECT_EQ(low, 77);
    EXPECT_EQ(run(src, 15, {7, 4}, 7, 6, three), ippStsNoErr) << "an odd step is no error";
    EXPECT_EQ(run(src, 14, seven, 2, 2, {2147483647, 2147483647}), ippStsNoErr);
    EXPECT_EQ(low, 0);
}

} // namespace
