#include "pixelCases.h"

#include <hwy/tests/hwy_gtest.h>

namespace oracle {

/** p / q to nearest, ties to even. */
inline Ipp8u rounded(int i_p, int i_q) { return Ipp8u(std::nearbyint(double(i_p) / i_q)); }

struct RGBToHSV {
    static void pixel(const Ipp8u* i_rgb, Ipp8u* o_hsv)
    {
        const int r = i_rgb[0], g = i_rgb[1], b = i_rgb[2];
        const int v = std::max({r, g, b}), d = v - std::min({r, g, b});
        const int n = r == v ? g - b + (g < b ? 6 * d : 0) : g == v ? 2 * d + b - r : 4 * d + r - g;
        o_hsv[0] = d == 0 ? Ipp8u(0) : rounded(85 * n, 2 * d);
        o_hsv[1] = v == 0 ? Ipp8u(0) : rounded(255 * d, v);
        o_hsv[2] = Ipp8u(v);
    }
};

struct HSVToRGB {
    static void pixel(const Ipp8u* i_hsv, Ipp8u* o_rgb)
    {
        const int h = i_hsv[0] == 255 ? 0 : i_hsv[0], s = i_hsv[1];
        const Ipp8u v = i_hsv[2];
        const int i = 2 * h / 85, f = 2 * h - 85 * i;
        const Ipp8u m = rounded(v * (255 - s), 255);
        const Ipp8u n = rounded(v * (21675 - s * f), 21675), k = rounded(v * (21675 - s * (85 - f)), 21675);
        const Ipp8u orders[6][3] = {{v, k, m}, {n, v, m}, {m, v, k}, {m, n, v}, {k, m, v}, {v, m, n}};
        std::copy_n(s == 0 ? std::array {v, v, v}.data() : orders[i], 3, o_rgb);
    }
};

} // namespace oracle

namespace {

/** Runs each case once for every instruction set that is compiled in. */
class hsvTest : public hwy::TestWithParamTarget {};
HWY_TARGET_INSTANTIATE_TEST_SUITE_P(hsvTest);

TEST_P(hsvTest, EveryVariantGivesTheOraclesPixels) {
#include <customipp/hsvToRGB.def>
#include <customipp/rgbToHSV.def>
}

TEST_P(hsvTest, EveryColourHasItsHueSaturationAndValue)
{
    EXPECT_EQ(pixels::checksumOfEveryColour(ippiRGBToHSV_8u_C3R), 0xfae16a08u);
    EXPECT_EQ(pixels::checksumOfEveryColourWithAlpha(ippiRGBToHSV_8u_AC4R), 0xfae16a08u);
}

TEST_P(hsvTest, EveryTripleOfHueSaturationAndValueHasItsColour)
{
    EXPECT_EQ(pixels::checksumOfEveryColour(ippiHSVToRGB_8u_C3R), 0xcb4b8111u);
    EXPECT_EQ(pixels::checksumOfEveryColourWithAlpha(ippiHSVToRGB_8u_AC4R), 0xcb4b8111u);
}

/** A row of one colour often enough that every loop meets it, and its last pixel. */
template <class Function> std::array<int, 3> convert(Function i_function, const std::array<int, 3>& i_pixel)
{
    constexpr int count = 150;
    Ipp8u row[3 * count];
    for (int i = 0; i < 3 * count; ++i)
        row[i] = Ipp8u(i_pixel[size_t(i % 3)]);
    EXPECT_EQ(i_function(row, 3 * count, row, 3 * count, {count, 1}), ippStsNoErr);
    for (int i = 3; i < 3 * count; ++i)
        EXPECT_EQ(row[i], row[i % 3]);
    return {row[0], row[1], row[2]};
}

TEST_P(hsvTest, KnownColoursThereAndBack)
{
    const struct {
        std::array<int, 3> rgb, hsv, back;
    } cases[] = {
        {{0, 0, 0}, {0, 0, 0}, {0, 0, 0}},
        {{255, 255, 255}, {0, 0, 255}, {255, 255, 255}},
        {{128, 128, 128}, {0, 0, 128}, {128, 128, 128}},
        {{255, 0, 0}, {0, 255, 255}, {255, 0, 0}},
        {{255, 255, 0}, {42, 255, 255}, {255, 252, 0}},
        {{0, 255, 0}, {85, 255, 255}, {0, 255, 0}},
        {{0, 255, 255}, {128, 255, 255}, {0, 252, 255}},
        {{0, 0, 255}, {170, 255, 255}, {0, 0, 255}},
        {{255, 0, 255}, {212, 255, 255}, {252, 0, 255}},
        {{255, 0, 1}, {255, 255, 255}, {255, 0, 0}},
        {{128, 0, 0}, {0, 255, 128}, {128, 0, 0}},
        {{255, 128, 0}, {21, 255, 255}, {255, 126, 0}},
        {{198, 97, 27}, {17, 220, 198}, {198, 96, 27}},
        {{50, 255, 150}, {106, 205, 255}, {50, 255, 151}},
        {{12, 34, 56}, {149, 200, 56}, {12, 34, 56}},
        {{200, 150, 100}, {21, 128, 200}, {200, 149, 100}},
        {{100, 150, 200}, {149, 128, 200}, {100, 149, 200}},
        {{1, 2, 3}, {149, 170, 3}, {1, 2, 3}},
        {{254, 255, 253}, {64, 2, 255}, {254, 255, 253}},
        {{10, 200, 30}, {89, 242, 200}, {10, 200, 28}},
        {{2, 1, 1}, {0, 128, 2}, {2, 1, 1}},
        {{250, 249, 251}, {191, 2, 251}, {250, 249, 251}},
    };
    for (const auto& [rgb, hsv, back] : cases) {
        EXPECT_EQ(convert(ippiRGBToHSV_8u_C3R, rgb), hsv);
        EXPECT_EQ(convert(ippiHSVToRGB_8u_C3R, hsv), back);
    }
    EXPECT_EQ(convert(ippiHSVToRGB_8u_C3R, {255, 100, 200}), convert(ippiHSVToRGB_8u_C3R, {0, 100, 200}))
        << "hue 255 is hue 0";
}

TEST_P(hsvTest, ThereAndBackOnlyTheMiddleChannelErrsByUpToThree)
{
    const auto colours = pixels::everyColour(3), back = pixels::everyColour(3);
    ASSERT_EQ(ippiRGBToHSV_8u_C3R(back.get(), 3 * 4096, back.get(), 3 * 4096, {4096, 4096}), ippStsNoErr);
    ASSERT_EQ(ippiHSVToRGB_8u_C3R(back.get(), 3 * 4096, back.get(), 3 * 4096, {4096, 4096}), ippStsNoErr);
    size_t byError[4] = {}, wrong = 0;
    for (size_t p = 0; p < pixels::s_allColours; ++p) {
        const Ipp8u *before = &colours[3 * p], *after = &back[3 * p];
        int error = 0, channels = 0;
        for (int c = 0; c < 3; ++c) {
            error = std::max(error, std::abs(before[c] - after[c]));
            channels += before[c] != after[c];
        }
        if (error > 3 || channels > 1)
            ++wrong;
        else
            ++byError[error];
    }
    EXPECT_EQ(wrong, 0u);
    EXPECT_EQ(byError[0], 7001293u);
    EXPECT_EQ(byError[1], 7615476u);
    EXPECT_EQ(byError[2], 2058828u);
    EXPECT_EQ(byError[3], 101619u);
}

} // namespace
