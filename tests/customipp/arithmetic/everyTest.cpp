#include "customipp/arithmetic/pointwiseCases.h"

#include <hwy/tests/hwy_gtest.h>

namespace {

/** Runs each case once for every instruction set that is compiled in. */
class everyTest : public hwy::TestWithParamTarget {};
HWY_TARGET_INSTANTIATE_TEST_SUITE_P(everyTest);

TEST_P(everyTest, EveryVariantGivesTheOraclesPixels) {
#include <customipp/maxEvery.def>
#include <customipp/minEvery.def>
}

TEST_P(everyTest, NotANumberKeepsTheDestination)
{
    const float nan = std::numeric_limits<float>::quiet_NaN();
    // Both in the first lanes and in a whole vector of them.
    for (const int width : {4, 64}) {
        std::vector<float> source, start, lesser, greater;
        for (int i = 0; i < width; i += 4) {
            source.insert(source.end(), {nan, 1, nan, 0.0f});
            start.insert(start.end(), {2, nan, nan, -0.0f});
        }
        lesser = greater = start;
        const int step = width * 4;
        ASSERT_EQ(ippiMinEvery_32f_C1IR(source.data(), step, lesser.data(), step, {width, 1}), ippStsNoErr);
        ASSERT_EQ(ippiMaxEvery_32f_C1IR(source.data(), step, greater.data(), step, {width, 1}), ippStsNoErr);
        for (size_t i = 0; i < start.size(); ++i) {
            EXPECT_TRUE(samePixel(lesser[i], start[i])) << i;
            EXPECT_TRUE(samePixel(greater[i], start[i])) << i;
        }
    }
}

} // namespace
