#pragma once

#include "customipp/movers/moverCases.h"

#include <memory>

/**
 * Runs functions that turn each pixel of three channels into another one, with or without an alpha that
 * stays, over all sizes and layouts, in place, and at the very ends of memory, against an oracle:
 * Op::pixel(from, to).
 */
namespace pixels {

/** The oracle on a row of pixels. */
template <class Op> void convertRow(const Ipp8u* i_from, Ipp8u* o_to, int i_count, int i_channels)
{
    for (int x = 0; x < i_count; ++x)
        Op::pixel(i_from + x * i_channels, o_to + x * i_channels);
}

template <class Op, class Function>
void expectPixels(const char* i_symbol, int i_channels, Function&& i_function)
{
    PixelSource<Ipp8u> random(11);
    movers::forEveryGeometry([&](IppiSize size, size_t layout, unsigned count) {
        SCOPED_TRACE(movers::nameOf(i_symbol, size, layout));
        const int lanes = size.width * i_channels;
        Plane<Ipp8u> src(lanes, size.height, movers::layoutAt(layout)), start(lanes, size.height);
        Plane<Ipp8u> dst(lanes, size.height, movers::layoutAt(layout + count % 2));
        Plane<Ipp8u> expected(lanes, size.height), expectedInPlace(lanes, size.height);
        src.fill(random);
        start.fill(random);
        expected.copyFrom(start);
        expectedInPlace.copyFrom(src);
        for (int y = 0; y < size.height; ++y) {
            convertRow<Op>(movers::rowOf(src, y), movers::rowOf(expected, y), size.width, i_channels);
            convertRow<Op>(movers::rowOf(src, y), movers::rowOf(expectedInPlace, y), size.width, i_channels);
        }

        dst.copyFrom(start);
        ASSERT_EQ(i_function(src.data(), src.step(), dst.data(), dst.step(), size), ippStsNoErr);
        ASSERT_TRUE(samePixels(dst, expected));
        ASSERT_TRUE(dst.frameIsIntact() && src.frameIsIntact());

        dst.copyFrom(start);
        const int upper = size.height / 2;
        if (upper > 0)
            i_function(src.data(), src.step(), dst.data(), dst.step(), {size.width, upper});
        i_function(movers::rowOf(src, upper), src.step(), movers::rowOf(dst, upper), dst.step(),
            {size.width, size.height - upper});
        ASSERT_TRUE(samePixels(dst, expected)) << "in two bands";

        ASSERT_EQ(i_function(src.data(), src.step(), src.data(), src.step(), size), ippStsNoErr);
        ASSERT_TRUE(samePixels(src, expectedInPlace)) << "in place";
        ASSERT_TRUE(src.frameIsIntact());
    });
}

/** The same where memory ends with the last pixel or begins with the first. */
template <class Op, class Function>
void expectNothingBeyondMemory(const char* i_symbol, int i_channels, Function&& i_function)
{
    PixelSource<Ipp8u> random(12);
    for (const FencedMemory::Side side : movers::s_sides)
        for (const int width : movers::everyFencedWidth())
            for (const int height : {1, 2}) {
                SCOPED_TRACE(movers::nameOf(i_symbol, {width, height}, 0));
                const size_t bytes = size_t(width) * size_t(height) * size_t(i_channels);
                FencedMemory src(bytes, side), dst(bytes, side);
                std::vector<Ipp8u> expected(bytes);
                for (size_t i = 0; i < bytes; ++i) {
                    src.set<Ipp8u>(i, random());
                    dst.set<Ipp8u>(i, expected[i] = random());
                }
                convertRow<Op>(src.data(), expected.data(), width * height, i_channels);
                const int step = width * i_channels;
                ASSERT_EQ(i_function(src.data(), step, dst.data(), step, {width, height}), ippStsNoErr);
                for (size_t i = 0; i < bytes; ++i)
                    ASSERT_EQ(dst.get<Ipp8u>(i), expected[i]) << "byte " << i;
            }
}

/** CRC-32 with the reflected polynomial 0xEDB88320, all ones at the start and inverted at the end. */
inline uint32_t crc32(const Ipp8u* i_bytes, size_t i_count)
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

inline constexpr size_t s_allColours = size_t(1) << 24;
inline constexpr IppiSize s_allColoursSize {4096, 4096};

/** Every colour once, the third channel running fastest; a fourth channel holds something else. */
inline std::unique_ptr<Ipp8u[]> everyColour(size_t i_channels)
{
    std::unique_ptr<Ipp8u[]> colours(new Ipp8u[i_channels * s_allColours]);
    for (size_t p = 0; p < s_allColours; ++p) {
        const Ipp8u pixel[4] = {Ipp8u(p >> 16), Ipp8u(p >> 8), Ipp8u(p), Ipp8u(p * 7)};
        std::copy_n(pixel, i_channels, &colours[i_channels * p]);
    }
    return colours;
}

/** function(src, step, dst, step, size) on every colour; the checksum of the results, in place. */
template <class Function> uint32_t checksumOfEveryColour(Function&& i_function)
{
    const auto colours = everyColour(3);
    EXPECT_EQ(i_function(colours.get(), 3 * 4096, colours.get(), 3 * 4096, s_allColoursSize), ippStsNoErr);
    return crc32(colours.get(), 3 * s_allColours);
}

/** The same for pixels of four bytes, whose fourth stays. */
template <class Function> uint32_t checksumOfEveryColourWithAlpha(Function&& i_function)
{
    const auto colours = everyColour(4);
    EXPECT_EQ(i_function(colours.get(), 4 * 4096, colours.get(), 4 * 4096, s_allColoursSize), ippStsNoErr);
    size_t changedAlphas = 0;
    for (size_t p = 0; p < s_allColours; ++p) {
        changedAlphas += colours[4 * p + 3] != Ipp8u(p * 7);
        std::copy_n(&colours[4 * p], 3, &colours[3 * p]);
    }
    EXPECT_EQ(changedAlphas, 0u);
    return crc32(colours.get(), 3 * s_allColours);
}

} // namespace pixels

#undef CUSTOMIPP_UNARY
#define CUSTOMIPP_UNARY(symbol, op, T, channels)                                                             \
    pixels::expectPixels<oracle::op>(#symbol, channels, symbol);                                             \
    pixels::expectNothingBeyondMemory<oracle::op>(#symbol, channels, symbol);
