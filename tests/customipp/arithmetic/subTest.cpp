#include "customipp/arithmetic/pointwiseCases.h"

#include <hwy/tests/hwy_gtest.h>

namespace {

/** Runs each case once for every instruction set that is compiled in. */
class subTest : public hwy::TestWithParamTarget {};
HWY_TARGET_INSTANTIATE_TEST_SUITE_P(subTest);

TEST_P(subTest, EveryVariantGivesTheOraclesPixels) {
#include <customipp/sub.def>
#include <customipp/subC.def>
}

TEST_P(subTest, EveryPairOfBytesGivesTheOraclesPixel)
{
    pointwise::expectEveryPairOfBytes<oracle::Sub>(ippiSub_8u_C1RSfs);
}

TEST_P(subTest, EveryByteWithEveryConstantGivesTheOraclesPixel)
{
    pointwise::expectEveryPixel<oracle::SubC, Ipp8u>(
        pointwise::byteConstantsFrom(0), {0, 1, 2, 7, 8, 9, 16, 17, -1, -3, -8, -17}, ippiSubC_8u_C1RSfs);
}

TEST_P(subTest, EveryWordGivesTheOraclesPixel)
{
    const std::vector<int> factors {0, 1, 2, 7, 8, 16, 17, 18, 24, 31, 32, 33, 34, -1, -2, -8, -15, -16, -17};
    pointwise::expectEveryPixel<oracle::SubC, Ipp16u>(
        {0, 1, 2, 3, 255, 256, 257, 32767, 32768, 39322, 52429, 65280, 65535}, factors, ippiSubC_16u_C1RSfs);
    pointwise::expectEveryPixel<oracle::SubC, Ipp16s>(
        {0, 1, -1, 2, 3, 255, -255, 256, 10000, 32767, -32767, -32768}, factors, ippiSubC_16s_C1RSfs);
}

TEST_P(subTest, TheFirstSourceIsSubtracted)
{
    EXPECT_EQ(pointwise::onePixel<Ipp8u>(ippiSub_8u_C1RSfs, 200, 50, 0), 0);
    EXPECT_EQ(pointwise::onePixel<Ipp8u>(ippiSub_8u_C1RSfs, 50, 200, 0), 150);
    EXPECT_EQ(pointwise::onePixelWithConstant<Ipp8u>(ippiSubC_8u_C1RSfs, 200, 50, 0), 150);
}

TEST_P(subTest, RowsLongerThanTheStepAreDoneOneAfterTheOther)
{
    // Pixels of four bytes on an image of three: each row ends within the next one, which changes those bytes
    // again.
    for (const int width : {1, 5, 21, 40, 200}) {
        const int height = 5, step = 3 * width, rowBytes = 4 * width;
        const Ipp8u values[4] = {10, 0, 40, 3};
        std::vector<Ipp8u> image(size_t(step * (height - 1) + rowBytes));
        PixelSource<Ipp8u> random;
        for (Ipp8u& byte : image)
            byte = random();
        std::vector<Ipp8u> expected = image;
        for (int y = 0; y < height; ++y)
            for (int i = 0; i < rowBytes; ++i) {
                Ipp8u& byte = expected[size_t(y * step + i)];
                byte = oracle::SubC::pixel<Ipp8u>(values[i % 4], byte, 0);
            }
        ASSERT_EQ(ippiSubC_8u_C4IRSfs(values, image.data(), step, {width, height}, 0), ippStsNoErr);
        EXPECT_EQ(image, expected) << "width " << width;
    }
}

} // namespace
