#include "customipp/arithmetic/pointwiseCases.h"

#include <hwy/tests/hwy_gtest.h>

namespace {

/** Runs each case once for every instruction set that is compiled in. */
class addTest : public hwy::TestWithParamTarget {};
HWY_TARGET_INSTANTIATE_TEST_SUITE_P(addTest);

TEST_P(addTest, EveryVariantGivesTheOraclesPixels) {
#include <customipp/add.def>
#include <customipp/addC.def>
}

TEST_P(addTest, EveryPairOfBytesGivesTheOraclesPixel)
{
    pointwise::expectEveryPairOfBytes<oracle::Add>(ippiAdd_8u_C1RSfs);
}

TEST_P(addTest, EveryByteWithEveryConstantGivesTheOraclesPixel)
{
    pointwise::expectEveryPixel<oracle::AddC, Ipp8u>(
        pointwise::byteConstantsFrom(0), {0, 1, 2, 7, 8, 9, 16, 17, -1, -3, -8, -17}, ippiAddC_8u_C1RSfs);
}

TEST_P(addTest, EveryWordGivesTheOraclesPixel)
{
    const std::vector<int> factors {0, 1, 2, 7, 8, 16, 17, 18, 24, 31, 32, 33, 34, -1, -2, -8, -15, -16, -17};
    pointwise::expectEveryPixel<oracle::AddC, Ipp16u>(
        {0, 1, 2, 3, 255, 256, 257, 32767, 32768, 39322, 52429, 65280, 65535}, factors, ippiAddC_16u_C1RSfs);
    pointwise::expectEveryPixel<oracle::AddC, Ipp16s>(
        {0, 1, -1, 2, 3, 255, -255, 256, 10000, 32767, -32767, -32768}, factors, ippiAddC_16s_C1RSfs);
}

TEST_P(addTest, HalvesAreRoundedToEven)
{
    const auto half
        = [](int a, int b) { return pointwise::onePixel<Ipp8u>(ippiAdd_8u_C1RSfs, Ipp8u(a), Ipp8u(b), 1); };
    EXPECT_EQ(half(1, 0), 0);
    EXPECT_EQ(half(1, 2), 2);
    EXPECT_EQ(half(2, 3), 2);
    EXPECT_EQ(half(255, 254), 254);
    EXPECT_EQ(half(255, 255), 255);

    const auto signedHalf
        = [](int v) { return pointwise::onePixelWithConstant<Ipp16s>(ippiAddC_16s_C1RSfs, Ipp16s(v), 0, 1); };
    EXPECT_EQ(signedHalf(-1), 0);
    EXPECT_EQ(signedHalf(-3), -2);
    EXPECT_EQ(signedHalf(-5), -2);
    EXPECT_EQ(signedHalf(1), 0);
    EXPECT_EQ(signedHalf(3), 2);
    EXPECT_EQ(signedHalf(5), 2);
}

} // namespace
