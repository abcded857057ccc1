#include "customipp/movers/moverCases.h"

#include <hwy/tests/hwy_gtest.h>

namespace {

/** Runs each case once for every instruction set that is compiled in. */
class copyChannelTest : public hwy::TestWithParamTarget {};
HWY_TARGET_INSTANTIATE_TEST_SUITE_P(copyChannelTest);

TEST_P(copyChannelTest, EveryVariantCopiesItsChannelsAndNoOther) {
#include <customipp/copyChannel.def>
}

TEST_P(copyChannelTest, OneColumnOfAWideImageIsARegion)
{
    Plane<Ipp8u> wide(3 * 200, 5), column(1, 5);
    wide.fill(PixelSource<Ipp8u>(1));
    EXPECT_EQ(ippiCopy_8u_C3C1R(wide.data() + 3 * 77 + 2, wide.step(), column.data(), column.step(), {1, 5}),
        ippStsNoErr);
    for (int y = 0; y < 5; ++y)
        EXPECT_EQ(column.get(0, y), wide.get(3 * 77 + 2, y));
}

} // namespace
