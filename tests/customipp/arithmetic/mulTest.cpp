#include "customipp/arithmetic/pointwiseCases.h"

#include <hwy/tests/hwy_gtest.h>

namespace {

/** Runs each case once for every instruction set that is compiled in. */
class mulTest : public hwy::TestWithParamTarget {};
HWY_TARGET_INSTANTIATE_TEST_SUITE_P(mulTest);

TEST_P(mulTest, EveryVariantGivesTheOraclesPixels) {
#include <customipp/mul.def>
#include <customipp/mulC.def>
}

TEST_P(mulTest, EveryPairOfBytesGivesTheOraclesPixel)
{
    pointwise::expectEveryPairOfBytes<oracle::Mul>(ippiMul_8u_C1RSfs);
}

TEST_P(mulTest, EveryByteWithEveryConstantGivesTheOraclesPixel)
{
    pointwise::expectEveryPixel<oracle::MulC, Ipp8u>(
        pointwise::byteConstantsFrom(0), {0, 1, 2, 7, 8, 9, 16, 17, -1, -3, -8, -17}, ippiMulC_8u_C1RSfs);
}

TEST_P(mulTest, EveryWordGivesTheOraclesPixel)
{
    const std::vector<int> factors {0, 1, 2, 7, 8, 16, 17, 18, 24, 31, 32, 33, 34, -1, -2, -8, -15, -16, -17};
    pointwise::expectEveryPixel<oracle::MulC, Ipp16u>(
        {0, 1, 2, 3, 255, 256, 257, 32767, 32768, 39322, 52429, 65280, 65535}, factors, ippiMulC_16u_C1RSfs);
    pointwise::expectEveryPixel<oracle::MulC, Ipp16s>(
        {0, 1, -1, 2, 3, 255, -255, 256, 10000, 32767, -32767, -32768}, factors, ippiMulC_16s_C1RSfs);
}

TEST_P(mulTest, FractionsAreAnIntegerAndAScaleFactor)
{
    const auto byte = [](int pixel, int factor, int scale) {
        return pointwise::onePixelWithConstant<Ipp8u>(ippiMulC_8u_C1RSfs, Ipp8u(pixel), Ipp8u(factor), scale);
    };
    EXPECT_EQ(byte(1, 1, 1), 0);
    EXPECT_EQ(byte(3, 1, 1), 2);
    EXPECT_EQ(byte(5, 1, 1), 2);
    EXPECT_EQ(byte(100, 166, 7), 130);
    EXPECT_EQ(byte(200, 166, 7), 255);
    EXPECT_EQ(byte(0, 255, -40), 0);
    EXPECT_EQ(byte(1, 1, -40), 255);

    const auto word = [](int pixel, int factor, int scale) {
        return pointwise::onePixelWithConstant<Ipp16u>(
            ippiMulC_16u_C1RSfs, Ipp16u(pixel), Ipp16u(factor), scale);
    };
    EXPECT_EQ(word(65535, 65280, 24), 255);
    EXPECT_EQ(word(255, 32896, 7), 65535);
    EXPECT_EQ(word(65535, 65535, 32), 1);
    EXPECT_EQ(word(65535, 65535, 33), 0);
}

TEST_P(mulTest, WordsAreScaledAndSaturated)
{
    EXPECT_EQ(pointwise::onePixel<Ipp16s>(ippiMul_16s_C1RSfs, 200, 200, 0), 32767);
    EXPECT_EQ(pointwise::onePixel<Ipp16s>(ippiMul_16s_C1RSfs, 200, 200, 1), 20000);
    EXPECT_EQ(pointwise::onePixel<Ipp16s>(ippiMul_16s_C1RSfs, -32768, -32768, 15), 32767);
    EXPECT_EQ(pointwise::onePixel<Ipp16s>(ippiMul_16s_C1RSfs, -32768, -32768, 16), 16384);
    EXPECT_EQ(pointwise::onePixel<Ipp16s>(ippiMul_16s_C1RSfs, -32768, -32768, 31), 0);
}

} // namespace
