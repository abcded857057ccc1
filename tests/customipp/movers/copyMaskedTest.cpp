#include "customipp/movers/moverCases.h"

#include <hwy/tests/hwy_gtest.h>

namespace {

/** Runs each case once for every instruction set that is compiled in. */
class copyMaskedTest : public hwy::TestWithParamTarget {};
HWY_TARGET_INSTANTIATE_TEST_SUITE_P(copyMaskedTest);

/** Masks of 0, of 255, and of all values with many zeros. */
Ipp8u maskValue(unsigned i_kind, Ipp8u i_random)
{
    return i_kind == 0 ? Ipp8u(0) : i_kind == 1 ? Ipp8u(255) : i_random;
}

/** function(src, step, dst, step, size, mask, step). */
template <class T, int Channels, class Function>
void expectMasked(const char* i_symbol, Function&& i_function)
{
    PixelSource<T> random(1);
    PixelSource<Ipp8u> randomMask(2);
    movers::forEveryGeometry([&](IppiSize size, size_t layout, unsigned count) {
        SCOPED_TRACE(movers::nameOf(i_symbol, size, layout));
        const int lanes = size.width * Channels;
        Plane<T> src(lanes, size.height, movers::layoutAt(layout));
        Plane<T> dst(lanes, size.height, movers::layoutAt(layout + count % 2)), expected(lanes, size.height);
        Plane<Ipp8u> mask(size.width, size.height, movers::layoutAt(layout + count % 3));
        src.fill(random);
        expected.fill(random);
        dst.copyFrom(expected);
        mask.fill([&] { return maskValue(count % 4, randomMask()); });
        for (int y = 0; y < size.height; ++y)
            for (int lane = 0; lane < lanes; ++lane)
                if (mask.get(lane / Channels, y) != 0)
                    expected.set(lane, y, src.get(lane, y));
        ASSERT_EQ(i_function(src.data(), src.step(), dst.data(), dst.step(), size, mask.data(), mask.step()),
            ippStsNoErr);
        ASSERT_TRUE(samePixels(dst, expected));
        ASSERT_TRUE(dst.frameIsIntact() && src.frameIsIntact() && mask.frameIsIntact());
    });

    for (const FencedMemory::Side side : movers::s_sides)
        for (const int width : movers::everyFencedWidth()) {
            SCOPED_TRACE(movers::nameOf(i_symbol, {width, 1}, 0));
            const size_t lanes = size_t(width) * Channels;
            FencedMemory src(lanes * sizeof(T), side), dst(lanes * sizeof(T), side),
                mask(size_t(width), side);
            for (size_t i = 0; i < lanes; ++i)
                src.set<T>(i, random());
            for (size_t i = 0; i < size_t(width); ++i)
                mask.set<Ipp8u>(i, randomMask());
            const int step = int(lanes * sizeof(T));
            ASSERT_EQ(i_function(reinterpret_cast<const T*>(src.data()), step,
                          reinterpret_cast<T*>(dst.data()), step, {width, 1}, mask.data(), width),
                ippStsNoErr);
            for (size_t i = 0; i < lanes; ++i)
                ASSERT_TRUE(
                    samePixel(dst.get<T>(i), mask.get<Ipp8u>(i / Channels) != 0 ? src.get<T>(i) : T(0)))
                    << i;
        }
}

#undef CUSTOMIPP_MOVE_MASKED
#define CUSTOMIPP_MOVE_MASKED(symbol, op, T, channels) expectMasked<T, channels>(#symbol, symbol);

TEST_P(copyMaskedTest, OnlyPixelsOfTheMaskAreCopied)
{
#include <customipp/copyMasked.def>
}

} // namespace
