#include "pixelCases.h"

#include <hwy/tests/hwy_gtest.h>

namespace {

/** Runs each case once for every instruction set that is compiled in. */
class yuv422ToRGBTest : public hwy::TestWithParamTarget {};
HWY_TARGET_INSTANTIATE_TEST_SUITE_P(yuv422ToRGBTest);

Ipp8u rounded(int i_thousandths)
{
    return Ipp8u(std::clamp(std::nearbyint(i_thousandths / 1000.0), 0.0, 255.0));
}

/** Channel c of pixel x; the last pixel of a row of an odd number takes the chroma of the pair before it. */
Ipp8u expectedChannel(const Plane<Ipp8u>& i_packed, int i_width, int i_x, int i_y, int i_channel)
{
    const int pair = std::min(i_x / 2, i_width / 2 - 1);
    const int y = i_packed.get(2 * i_x, i_y);
    const int u = i_packed.get(4 * pair + 1, i_y) - 128, v = i_packed.get(4 * pair + 3, i_y) - 128;
    const int thousandths[3] = {1140 * v, -394 * u - 581 * v, 2032 * u};
    return rounded(1000 * y + thousandths[i_channel]);
}

TEST_P(yuv422ToRGBTest, EveryPixelIsTheOracles)
{
    PixelSource<Ipp8u> random(21);
    movers::forEveryGeometry([&](IppiSize size, size_t layout, unsigned count) {
        if (size.width < 2)
            return;
        SCOPED_TRACE(movers::nameOf("YUV422ToRGB", size, layout));
        Plane<Ipp8u> packed(2 * size.width, size.height, movers::layoutAt(layout));
        Plane<Ipp8u> rgb(3 * size.width, size.height, movers::layoutAt(layout + count % 2));
        Plane<Ipp8u> expected(3 * size.width, size.height);
        packed.fill(random);
        for (int y = 0; y < size.height; ++y)
            for (int lane = 0; lane < 3 * size.width; ++lane)
                expected.set(lane, y, expectedChannel(packed, size.width, lane / 3, y, lane % 3));
        ASSERT_EQ(ippiYUV422ToRGB_8u_C2C3R(packed.data(), packed.step(), rgb.data(), rgb.step(), size),
            size.width % 2 == 0 ? ippStsNoErr : ippStsDoubleSize);
        ASSERT_TRUE(samePixels(rgb, expected));
        ASSERT_TRUE(rgb.frameIsIntact());
    });
}

TEST_P(yuv422ToRGBTest, NothingBeyondMemoryIsTouched)
{
    for (const FencedMemory::Side side : movers::s_sides)
        for (const int width : movers::everyFencedWidth()) {
            if (width < 2)
                continue;
            FencedMemory packed(2 * size_t(width), side), rgb(3 * size_t(width), side);
            for (int i = 0; i < 2 * width; ++i)
                packed.set<Ipp8u>(size_t(i), Ipp8u(i * 37));
            ippiYUV422ToRGB_8u_C2C3R(packed.data(), 2 * width, rgb.data(), 3 * width, {width, 1});
            Plane<Ipp8u> plane(2 * width, 1);
            for (int i = 0; i < 2 * width; ++i)
                plane.set(i, 0, packed.get<Ipp8u>(size_t(i)));
            for (int lane = 0; lane < 3 * width; ++lane)
                ASSERT_EQ(rgb.get<Ipp8u>(size_t(lane)), expectedChannel(plane, width, lane / 3, 0, lane % 3))
                    << width << ": " << lane;
        }
}

TEST_P(yuv422ToRGBTest, EveryTripleOfYUVHasItsColour)
{
    constexpr size_t pairs = size_t(1) << 23;
    const std::unique_ptr<Ipp8u[]> packed(new Ipp8u[4 * pairs]), rgb(new Ipp8u[6 * pairs]);
    for (size_t q = 0; q < pairs; ++q) {
        const Ipp8u luma = Ipp8u(2 * (q & 127));
        const Ipp8u pair[4] = {luma, Ipp8u(q >> 15), Ipp8u(luma + 1), Ipp8u(q >> 7)};
        std::copy_n(pair, 4, &packed[4 * q]);
    }
    ASSERT_EQ(ippiYUV422ToRGB_8u_C2C3R(packed.get(), 8192, rgb.get(), 3 * 4096, {4096, 4096}), ippStsNoErr);
    EXPECT_EQ(pixels::crc32(rgb.get(), 6 * pairs), 0x933e9c71u);
}

TEST(yuv422ToRGBValueTest, KnownPairs)
{
    const struct {
        Ipp8u packed[4];
        Ipp8u rgb[6];
    } cases[] = {
        {{100, 153, 101, 153}, {128, 76, 151, 130, 77, 152}},
        {{60, 128, 61, 103}, {32, 75, 60, 32, 76, 61}},
        {{16, 128, 235, 128}, {16, 16, 16, 235, 235, 235}},
        {{76, 84, 76, 255}, {221, 20, 0, 221, 20, 0}},
        {{255, 255, 255, 255}, {255, 131, 255, 255, 131, 255}},
    };
    for (const auto& pair : cases) {
        Ipp8u rgb[6];
        ASSERT_EQ(ippiYUV422ToRGB_8u_C2C3R(pair.packed, 4, rgb, 6, {2, 1}), ippStsNoErr);
        EXPECT_TRUE(std::equal(rgb, rgb + 6, pair.rgb)) << int(pair.packed[0]);
    }
}

TEST(yuv422ToRGBCheckTest, PointersThenSizesThenSteps)
{
    Ipp8u src[64] = {}, dst[64] = {};
    const auto call = [&](const Ipp8u* from, int srcStep, Ipp8u* to, int dstStep, IppiSize size) {
        return ippiYUV422ToRGB_8u_C2C3R(from, srcStep, to, dstStep, size);
    };
    EXPECT_EQ(call(nullptr, 0, dst, 0, {0, 0}), ippStsNullPtrErr);
    EXPECT_EQ(call(src, 0, nullptr, 0, {0, 0}), ippStsNullPtrErr);
    for (const IppiSize size :
        {IppiSize {1, 1}, IppiSize {0, 1}, IppiSize {2, 0}, IppiSize {-2, 1}, IppiSize {2, -1}})
        EXPECT_EQ(call(src, 0, dst, 0, size), ippStsSizeErr);
    EXPECT_EQ(call(src, 0, dst, 6, {2, 1}), ippStsStepErr);
    EXPECT_EQ(call(src, 4, dst, -6, {2, 1}), ippStsStepErr);
    EXPECT_EQ(call(src, 1, dst, 1, {2, 2}), ippStsNoErr) << "rows may overlap";
}

} // namespace
