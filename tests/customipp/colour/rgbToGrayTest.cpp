#include "pixelCases.h"

#include <hwy/tests/hwy_gtest.h>

namespace {

/** Runs each case once for every instruction set that is compiled in. */
class rgbToGrayTest : public hwy::TestWithParamTarget {};
HWY_TARGET_INSTANTIATE_TEST_SUITE_P(rgbToGrayTest);

TEST_P(rgbToGrayTest, EveryVariantGivesTheOraclesPixels) {
#include <customipp/rgbToGray.def>
}

TEST_P(rgbToGrayTest, EveryColourGivesItsLuminance)
{
    const std::unique_ptr<Ipp8u[]> gray(new Ipp8u[pixels::s_allColours]);
    const auto rgb = pixels::everyColour(3), rgba = pixels::everyColour(4);
    ASSERT_EQ(
        ippiRGBToGray_8u_C3C1R(rgb.get(), 3 * 4096, gray.get(), 4096, pixels::s_allColoursSize), ippStsNoErr);
    EXPECT_EQ(pixels::crc32(gray.get(), pixels::s_allColours), 0xad715c8cu);
    ASSERT_EQ(ippiRGBToGray_8u_AC4C1R(rgba.get(), 4 * 4096, gray.get(), 4096, pixels::s_allColoursSize),
        ippStsNoErr);
    EXPECT_EQ(pixels::crc32(gray.get(), pixels::s_allColours), 0xad715c8cu);
}

TEST(rgbToGrayValueTest, FractionsAreCutOff)
{
    const struct {
        Ipp8u rgb[3];
        int gray;
    } colours[] = {{{255, 0, 0}, 76}, {{0, 255, 0}, 149}, {{0, 0, 255}, 29}, {{255, 255, 0}, 225},
        {{0, 255, 255}, 178}, {{255, 0, 255}, 105}, {{10, 20, 30}, 18}, {{200, 100, 50}, 124},
        {{77, 77, 77}, 77}, {{255, 255, 255}, 255}};
    for (const auto& colour : colours) {
        Ipp8u gray = 0;
        EXPECT_EQ(ippiRGBToGray_8u_C3C1R(colour.rgb, 3, &gray, 1, {1, 1}), ippStsNoErr);
        EXPECT_EQ(gray, colour.gray);
    }
}

} // namespace
