#include "customipp/movers/moverCases.h"

#include <hwy/tests/hwy_gtest.h>

#include <memory>

namespace {

/** Runs each case once for every instruction set that is compiled in. */
class copyTest : public hwy::TestWithParamTarget {};
HWY_TARGET_INSTANTIATE_TEST_SUITE_P(copyTest);

TEST_P(copyTest, EveryVariantCopiesThePixels) {
#include <customipp/copy.def>
}

TEST_P(copyTest, AnImageBeyondTheCacheIsCopiedWithoutItsPadding)
{
    // 8300 * 4099 bytes are more than 32 MB.
    for (const int offset : {0, 1}) {
        const IppiSize size {8300, 4099};
        const size_t step = 8311, bytes = step * size_t(size.height) + 64;
        const std::unique_ptr<Ipp8u[]> src(new Ipp8u[bytes]), dst(new Ipp8u[bytes]);
        uint32_t state = 1;
        for (size_t i = 0; i < bytes; ++i) {
            state = state * 1664525 + 1013904223;
            src[i] = Ipp8u(state >> 24);
            dst[i] = Ipp8u(i);
        }
        ASSERT_EQ(
            ippiCopy_8u_C1R(src.get() + 3, int(step), dst.get() + offset, int(step), size), ippStsNoErr);
        size_t wrong = 0;
        for (size_t i = 0; i < bytes; ++i) {
            const bool inside = i >= size_t(offset) && (i - size_t(offset)) % step < size_t(size.width)
                && (i - size_t(offset)) / step < size_t(size.height);
            wrong += dst[i] != (inside ? src[i + 3 - size_t(offset)] : Ipp8u(i));
        }
        EXPECT_EQ(wrong, 0u);
    }
}

TEST(copyAliasTest, AnImageIsCopiedOntoItself)
{
    Plane<Ipp32f> image(130, 5, {7, 1}), before(130, 5);
    before.fill(PixelSource<Ipp32f>(3));
    image.copyFrom(before);
    EXPECT_EQ(
        ippiCopy_32f_C1R(image.data(), image.step(), image.data(), image.step(), {130, 5}), ippStsNoErr);
    EXPECT_TRUE(samePixels(image, before));
}

TEST(copyBitsTest, PayloadsOfNaNAreKept)
{
    const uint32_t bits[3] = {0x7FC12345, 0x7FA00001, 0xFFFFFFFF};
    Ipp32f src[3], dst[3] = {};
    std::memcpy(src, bits, sizeof(bits));
    EXPECT_EQ(ippiCopy_32f_C1R(src, 12, dst, 12, {3, 1}), ippStsNoErr);
    EXPECT_EQ(std::memcmp(dst, bits, sizeof(bits)), 0);
}

} // namespace
