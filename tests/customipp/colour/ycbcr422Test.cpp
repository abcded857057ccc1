#include "pixelCases.h"

#include <hwy/tests/hwy_gtest.h>

namespace {

/** Runs each case once for every instruction set that is compiled in. */
class ycbcr422Test : public hwy::TestWithParamTarget {};
HWY_TARGET_INSTANTIATE_TEST_SUITE_P(ycbcr422Test);

/** Y, Cb and Cr planes for a size. */
struct Planes {
    Planes(IppiSize i_size, Layout i_layout)
        : y(i_size.width, i_size.height, i_layout),
          cb(i_size.width / 2, i_size.height, i_layout),
          cr(i_size.width / 2, i_size.height, i_layout)
    {
    }
    /** Byte i of a packed row, or null where an odd width has none. */
    const Plane<Ipp8u>* planeOf(int i_byte) const
    {
        return i_byte % 2 == 0 ? &y : i_byte % 4 == 1 ? &cb : &cr;
    }
    bool frameIsIntact() const { return y.frameIsIntact() && cb.frameIsIntact() && cr.frameIsIntact(); }

    Plane<Ipp8u> y, cb, cr;
    Ipp8u* data[3] = {y.data(), cb.data(), cr.data()};
    const Ipp8u* constData[3] = {y.data(), cb.data(), cr.data()};
    int steps[3] = {y.step(), cb.step(), cr.step()};
};

int placeInPlane(int i_byte) { return i_byte % 2 == 0 ? i_byte / 2 : i_byte / 4; }

IppStatus statusOf(IppiSize i_size) { return i_size.width % 2 == 0 ? ippStsNoErr : ippStsDoubleSize; }

TEST_P(ycbcr422Test, PackedRowsComeApart)
{
    PixelSource<Ipp8u> random(31);
    movers::forEveryGeometry([&](IppiSize size, size_t layout, unsigned count) {
        if (size.width < 2)
            return;
        SCOPED_TRACE(movers::nameOf("C2P3R", size, layout));
        // A negative padding makes the step half a row, so that the rows overlap.
        for (const int padding : {movers::layoutAt(layout).padding, -size.width}) {
            Plane<Ipp8u> packed(2 * size.width, size.height, {padding, movers::layoutAt(layout).offset});
            packed.fill(random);
            Planes planes(size, movers::layoutAt(layout + count % 2));
            ASSERT_EQ(ippiYCbCr422_8u_C2P3R(packed.data(), packed.step(), planes.data, planes.steps, size),
                statusOf(size));
            const int bytes = size.width / 2 * 4;
            for (int y = 0; y < size.height; ++y) {
                for (int i = 0; i < bytes; ++i)
                    ASSERT_EQ(planes.planeOf(i)->get(placeInPlane(i), y), packed.get(i, y)) << i << ", " << y;
                if (size.width % 2 != 0) {
                    ASSERT_EQ(planes.y.get(size.width - 1, y), packed.get(2 * size.width - 2, y));
                }
            }
            ASSERT_TRUE(planes.frameIsIntact());
        }
    });
}

TEST_P(ycbcr422Test, PlanesAreWovenRowAfterRow)
{
    PixelSource<Ipp8u> random(32);
    movers::forEveryGeometry([&](IppiSize size, size_t layout, unsigned count) {
        if (size.width < 2)
            return;
        SCOPED_TRACE(movers::nameOf("P3C2R", size, layout));
        for (const int padding : {movers::layoutAt(layout).padding, -size.width}) {
            Planes planes(size, movers::layoutAt(layout));
            planes.y.fill(random);
            planes.cb.fill(random);
            planes.cr.fill(random);
            const Layout packedLayout {padding, movers::layoutAt(layout + count % 2).offset};
            Plane<Ipp8u> packed(2 * size.width, size.height, packedLayout);
            Plane<Ipp8u> expected(2 * size.width, size.height, packedLayout);
            packed.fill([] { return Ipp8u(77); });
            expected.fill([] { return Ipp8u(77); });
            for (int y = 0; y < size.height; ++y) // where rows overlap, later ones win
                for (int i = 0; i < size.width / 2 * 4; ++i)
                    expected.set(i, y, planes.planeOf(i)->get(placeInPlane(i), y));
            ASSERT_EQ(
                ippiYCbCr422_8u_P3C2R(planes.constData, planes.steps, packed.data(), packed.step(), size),
                statusOf(size));
            ASSERT_TRUE(samePixels(packed, expected));
            ASSERT_TRUE(packed.frameIsIntact());
        }
    });
}

TEST_P(ycbcr422Test, NothingBeyondMemoryIsTouched)
{
    for (const FencedMemory::Side side : movers::s_sides)
        for (const int width : movers::everyFencedWidth()) {
            if (width < 2)
                continue;
            const size_t half = size_t(width) / 2;
            FencedMemory packed(2 * size_t(width), side), back(4 * half, side);
            FencedMemory y(size_t(width), side), cb(half, side), cr(half, side);
            for (size_t i = 0; i < 2 * size_t(width); ++i)
                packed.set<Ipp8u>(i, Ipp8u(i * 29));
            Ipp8u* planes[3] = {y.data(), cb.data(), cr.data()};
            const Ipp8u* sources[3] = {y.data(), cb.data(), cr.data()};
            int steps[3] = {width, int(half), int(half)};
            ASSERT_EQ(ippiYCbCr422_8u_C2P3R(packed.data(), 2 * width, planes, steps, {width, 1}),
                statusOf({width, 1}));
            ASSERT_EQ(ippiYCbCr422_8u_P3C2R(sources, steps, back.data(), 2 * width, {width, 1}),
                statusOf({width, 1}));
            for (size_t i = 0; i < 4 * half; ++i)
                ASSERT_EQ(back.get<Ipp8u>(i), Ipp8u(i * 29)) << width << ": " << i;
        }
}

TEST(ycbcr422ValueTest, WithHalfTheStepEachRowLosesItsSecondHalfToTheNext)
{
    const Ipp8u y[8] = {1, 2, 3, 4, 5, 6, 7, 8}, cb[4] = {10, 11, 12, 13}, cr[4] = {20, 21, 22, 23};
    const Ipp8u* planes[3] = {y, cb, cr};
    int steps[3] = {4, 2, 2};
    Ipp8u packed[16];
    std::fill_n(packed, 16, Ipp8u(99));
    ASSERT_EQ(ippiYCbCr422_8u_P3C2R(planes, steps, packed, 4, {4, 2}), ippStsNoErr);
    const Ipp8u expected[16] = {1, 10, 2, 20, 5, 12, 6, 22, 7, 13, 8, 23, 99, 99, 99, 99};
    EXPECT_TRUE(std::equal(packed, packed + 16, expected));
}

TEST(ycbcr422CheckTest, PointersThenSizesThenSteps)
{
    Ipp8u memory[4][64] = {};
    Ipp8u* planes[3] = {memory[1], memory[2], memory[3]};
    const Ipp8u* sources[3] = {memory[1], memory[2], memory[3]};
    int steps[3] = {8, 8, 8};
    const auto expectBoth = [&](IppStatus expected, int packedStep, IppiSize size) {
        EXPECT_EQ(ippiYCbCr422_8u_C2P3R(memory[0], packedStep, planes, steps, size), expected);
        EXPECT_EQ(ippiYCbCr422_8u_P3C2R(sources, steps, memory[0], packedStep, size), expected);
    };
    EXPECT_EQ(ippiYCbCr422_8u_C2P3R(nullptr, 0, planes, steps, {0, 0}), ippStsNullPtrErr);
    EXPECT_EQ(ippiYCbCr422_8u_C2P3R(memory[0], 0, nullptr, steps, {0, 0}), ippStsNullPtrErr);
    EXPECT_EQ(ippiYCbCr422_8u_C2P3R(memory[0], 0, planes, nullptr, {0, 0}), ippStsNullPtrErr);
    EXPECT_EQ(ippiYCbCr422_8u_P3C2R(nullptr, steps, memory[0], 0, {0, 0}), ippStsNullPtrErr);
    EXPECT_EQ(ippiYCbCr422_8u_P3C2R(sources, nullptr, memory[0], 0, {0, 0}), ippStsNullPtrErr);
    EXPECT_EQ(ippiYCbCr422_8u_P3C2R(sources, steps, nullptr, 0, {0, 0}), ippStsNullPtrErr);
    for (int plane = 0; plane < 3; ++plane) {
        planes[plane] = nullptr;
        sources[plane] = nullptr;
        expectBoth(ippStsNullPtrErr, 0, {0, 0});
        planes[plane] = memory[1 + plane];
        sources[plane] = memory[1 + plane];
    }
    for (const IppiSize size :
        {IppiSize {1, 1}, IppiSize {0, 1}, IppiSize {2, 0}, IppiSize {-2, 1}, IppiSize {2, -1}})
        expectBoth(ippStsSizeErr, 0, size);
    expectBoth(ippStsStepErr, 0, {2, 1});
    for (int plane = 0; plane < 3; ++plane) {
        steps[plane] = plane - 1 < 0 ? 0 : -8;
        expectBoth(ippStsStepErr, 4, {2, 1});
        steps[plane] = 8;
    }
    expectBoth(ippStsNoErr, 4, {2, 1});
}

} // namespace
