#include "customipp/movers/moverCases.h"

#include <hwy/tests/hwy_gtest.h>

namespace {

/** Runs each case once for every instruction set that is compiled in. */
class swapChannelsTest : public hwy::TestWithParamTarget {};
HWY_TARGET_INSTANTIATE_TEST_SUITE_P(swapChannelsTest);

TEST_P(swapChannelsTest, EveryOrderOfChannelsIsTaken)
{
    PixelSource<Ipp8u> random(4);
    unsigned order = 0;
    movers::forEveryGeometry([&](IppiSize size, size_t layout, unsigned) {
        for (int repeat = 0; repeat < 2; ++repeat, ++order) {
            const int channels[4]
                = {int(order & 3), int(order >> 2 & 3), int(order >> 4 & 3), int(order >> 6 & 3)};
            SCOPED_TRACE(movers::nameOf(("order " + std::to_string(order & 255)).c_str(), size, layout));
            Plane<Ipp8u> image(4 * size.width, size.height, movers::layoutAt(layout)),
                before(4 * size.width, size.height);
            before.fill(random);
            image.copyFrom(before);
            ASSERT_EQ(ippiSwapChannels_8u_C4IR(image.data(), image.step(), size, channels), ippStsNoErr);
            for (int y = 0; y < size.height; ++y)
                for (int lane = 0; lane < 4 * size.width; ++lane)
                    ASSERT_EQ(image.get(lane, y), before.get(lane / 4 * 4 + channels[lane % 4], y))
                        << lane << ", " << y;
            ASSERT_TRUE(image.frameIsIntact());
        }
    });
}

TEST_P(swapChannelsTest, NothingBeyondMemoryIsTouched)
{
    const int order[4] = {2, 1, 0, 3};
    for (const FencedMemory::Side side : movers::s_sides)
        for (const int width : movers::everyFencedWidth()) {
            FencedMemory image(4 * size_t(width), side);
            for (size_t i = 0; i < 4 * size_t(width); ++i)
                image.set<Ipp8u>(i, Ipp8u(i * 5));
            ASSERT_EQ(ippiSwapChannels_8u_C4IR(image.data(), 4 * width, {width, 1}, order), ippStsNoErr);
            for (size_t i = 0; i < 4 * size_t(width); ++i)
                ASSERT_EQ(image.get<Ipp8u>(i), Ipp8u((i / 4 * 4 + size_t(order[i % 4])) * 5))
                    << width << ": " << i;
        }
}

TEST(swapChannelsCheckTest, ChannelsOutsideThePixelAreRefusedAfterAllElse)
{
    Ipp8u pixel[4] = {1, 2, 3, 4};
    const int good[4] = {2, 1, 0, 3};
    for (int k = 0; k < 4; ++k)
        for (const int channel : {-1, 4}) {
            int order[4] = {2, 1, 0, 3};
            order[k] = channel;
            EXPECT_EQ(ippiSwapChannels_8u_C4IR(pixel, 4, {1, 1}, order), ippStsChannelOrderErr);
            EXPECT_EQ(ippiSwapChannels_8u_C4IR(pixel, 0, {1, 1}, order), ippStsStepErr);
            EXPECT_EQ(ippiSwapChannels_8u_C4IR(pixel, 0, {1, 0}, order), ippStsSizeErr);
            EXPECT_EQ(ippiSwapChannels_8u_C4IR(nullptr, 0, {1, 0}, order), ippStsNullPtrErr);
        }
    EXPECT_EQ(ippiSwapChannels_8u_C4IR(pixel, 0, {0, 1}, nullptr), ippStsNullPtrErr);
    EXPECT_EQ(pixel[0] + 10 * pixel[1] + 100 * pixel[2] + 1000 * pixel[3], 4321);
    EXPECT_EQ(ippiSwapChannels_8u_C4IR(pixel, 4, {1, 1}, good), ippStsNoErr);
    EXPECT_EQ(pixel[0] + 10 * pixel[1] + 100 * pixel[2] + 1000 * pixel[3], 4123);
}

} // namespace
