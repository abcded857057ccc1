#include "customipp/movers/moverCases.h"

#include <hwy/tests/hwy_gtest.h>

#include <memory>

namespace {

/** Runs each case once for every instruction set that is compiled in. */
class rgbToGrayTest : public hwy::TestWithParamTarget {};
HWY_TARGET_INSTANTIATE_TEST_SUITE_P(rgbToGrayTest);

/** CRC-32 with the reflected polynomial 0xEDB88320, all ones at the start and inverted at the end. */
uint32_t crc32(const Ipp8u* i_bytes, size_t i_count)
{
    uint32_t table[256];
    for (uint32_t i = 0; i < 256; ++i) {
        table[i] = i;
        for (int bit = 0; bit < 8; ++bit)
            table[i] = table[i] >> 1 ^ (table[i] & 1 ? 0xEDB88320u : 0u);
    }
    uint32_t crc = 0xFFFFFFFFu;
    for (size_t i = 0; i < i_count; ++i)
        crc = crc >> 8 ^ table[(crc ^ i_bytes[i]) & 255];
    return ~crc;
}

TEST_P(rgbToGrayTest, EveryVariantGivesTheOraclesPixels) {
#include <customipp/rgbToGray.def>
}

TEST_P(rgbToGrayTest, EveryColourGivesItsLuminance)
{
    constexpr size_t colours = size_t(1) << 24;
    const std::unique_ptr<Ipp8u[]> rgb(new Ipp8u[3 * colours]), rgba(new Ipp8u[4 * colours]);
    const std::unique_ptr<Ipp8u[]> gray(new Ipp8u[colours]);
    for (size_t p = 0; p < colours; ++p) {
        const Ipp8u pixel[3] = {Ipp8u(p >> 16), Ipp8u(p >> 8), Ipp8u(p)};
        std::copy(pixel, pixel + 3, &rgb[3 * p]);
        std::copy(pixel, pixel + 3, &rgba[4 * p]);
        rgba[4 * p + 3] = Ipp8u(p * 7);
    }
    const IppiSize size {4096, 4096};
    ASSERT_EQ(ippiRGBToGray_8u_C3C1R(rgb.get(), 3 * 4096, gray.get(), 4096, size), ippStsNoErr);
    EXPECT_EQ(crc32(gray.get(), colours), 0xad715c8cu);
    ASSERT_EQ(ippiRGBToGray_8u_AC4C1R(rgba.get(), 4 * 4096, gray.get(), 4096, size), ippStsNoErr);
    EXPECT_EQ(crc32(gray.get(), colours), 0xad715c8cu);
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
