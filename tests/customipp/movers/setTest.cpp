#include "customipp/movers/moverCases.h"

#include <hwy/tests/hwy_gtest.h>

#include <memory>

namespace {

/** Runs each case once for every instruction set that is compiled in. */
class setTest : public hwy::TestWithParamTarget {};
HWY_TARGET_INSTANTIATE_TEST_SUITE_P(setTest);

/** function(pixel, dst, step, size), where only channels below `Used` of `Channels` are set from the pointer
 * on. */
template <class T, int Channels, int Used, class Function>
void expectFilled(const char* i_symbol, Function&& i_function)
{
    PixelSource<T> random(9);
    movers::forEveryGeometry([&](IppiSize size, size_t layout, unsigned count) {
        SCOPED_TRACE(movers::nameOf(i_symbol, size, layout));
        const int first = Used < Channels ? int(count) % Channels : 0;
        const T pixel[4] = {random(), random(), random(), random()};
        Plane<T> dst(size.width * Channels, size.height, movers::layoutAt(layout)),
            expected(size.width * Channels, size.height);
        expected.fill(random);
        dst.copyFrom(expected);
        for (int y = 0; y < size.height; ++y)
            for (int x = 0; x < size.width; ++x)
                for (int c = 0; c < Used; ++c)
                    expected.set(x * Channels + first + c, y, pixel[c]);
        ASSERT_EQ(i_function(pixel, dst.data() + first, dst.step(), size), ippStsNoErr);
        ASSERT_TRUE(samePixels(dst, expected));
        ASSERT_TRUE(dst.frameIsIntact());
    });

    for (const FencedMemory::Side side : movers::s_sides)
        for (const int width : movers::everyFencedWidth()) {
            SCOPED_TRACE(movers::nameOf(i_symbol, {width, 1}, 0));
            const T pixel[4] = {random(), random(), random(), random()};
            const size_t lanes = size_t(width - 1) * Channels + Used;
            FencedMemory dst(lanes * sizeof(T), side);
            ASSERT_EQ(i_function(pixel, reinterpret_cast<T*>(dst.data()), int(sizeof(T)) * width * Channels,
                          {width, 1}),
                ippStsNoErr);
            for (size_t i = 0; i < lanes; ++i)
                ASSERT_TRUE(samePixel(dst.get<T>(i), i % Channels < Used ? pixel[i % Channels] : T(0))) << i;
        }
}

#undef CUSTOMIPP_FILL
#define CUSTOMIPP_FILL(symbol, op, T)                                                                        \
    expectFilled<T, 1, 1>(#symbol,                                                                           \
        [](const T* pixel, T* dst, int step, IppiSize size) { return symbol(pixel[0], dst, step, size); });
#undef CUSTOMIPP_FILL_PIXEL
#define CUSTOMIPP_FILL_PIXEL(symbol, op, T, channels)                                                        \
    expectFilled<T, channels, channels>(#symbol,                                                             \
        [](const T* pixel, T* dst, int step, IppiSize size) { return symbol(pixel, dst, step, size); });
#undef CUSTOMIPP_FILL_CHANNEL
#define CUSTOMIPP_FILL_CHANNEL(symbol, op, T, channels)                                                      \
    expectFilled<T, channels, 1>(#symbol,                                                                    \
        [](const T* pixel, T* dst, int step, IppiSize size) { return symbol(pixel[0], dst, step, size); });

TEST_P(setTest, EveryVariantFillsTheRegionAndNoMore) {
#include <customipp/set.def>
}

TEST_P(setTest, AnImageBeyondTheCacheIsFilledWithoutItsPadding)
{
    // 8301 * 4099 bytes are more than 32 MB; every row begins at another place between two vectors.
    const IppiSize size {2767, 4099};
    const size_t step = 8314, bytes = step * size_t(size.height);
    const std::unique_ptr<Ipp8u[]> dst(new Ipp8u[bytes]);
    const Ipp8u pixel[3] = {1, 2, 3};
    std::fill_n(dst.get(), bytes, Ipp8u(0xA5));
    ASSERT_EQ(ippiSet_8u_C3R(pixel, dst.get(), int(step), size), ippStsNoErr);
    size_t wrong = 0;
    for (size_t i = 0; i < bytes; ++i)
        wrong += dst[i] != (i % step < 3 * size_t(size.width) ? pixel[i % step % 3] : Ipp8u(0xA5));
    EXPECT_EQ(wrong, 0u);
}

TEST(setCheckTest, NullPointerComesBeforeAnEmptySizeAndAZeroStep)
{
    EXPECT_EQ(ippiSet_8u_C1R(3, nullptr, 0, {0, 0}), ippStsNullPtrErr);
}

} // namespace
