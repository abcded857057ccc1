#pragma once

#include "oracle.h"

#include "support/FencedMemory.h"
#include "support/Plane.h"

#include <customipp/customipp.h>

#include <algorithm>
#include <array>
#include <string>

/** Runs the functions of one shape over all sizes and layouts, and at the very ends of memory, against an
 * oracle. */
namespace movers {

/** Calls a function for all sizes and layouts, with a number that counts the calls. */
template <class Function> void forEveryGeometry(Function&& i_function)
{
    unsigned count = 0;
    for (const int width : everyWidth())
        for (const int height : everyHeight())
            for (size_t layout = 0; layout < everyLayout().size(); ++layout)
                i_function(IppiSize {width, height}, layout, count++);
}

inline Layout layoutAt(size_t i_index) { return everyLayout()[i_index % everyLayout().size()]; }

inline std::string nameOf(const char* i_symbol, IppiSize i_size, size_t i_layout)
{
    return std::string(i_symbol) + " " + std::to_string(i_size.width) + " x " + std::to_string(i_size.height)
        + ", layout " + std::to_string(i_layout);
}

template <class T> T* rowOf(Plane<T>& io_plane, int i_row)
{
    return reinterpret_cast<T*>(
        reinterpret_cast<char*>(io_plane.data()) + i_row * ptrdiff_t {io_plane.step()});
}

/** Both sides of a fence, with the image dense and its last pixel at the end of memory, or its first at the
 * start. */
inline constexpr FencedMemory::Side s_sides[] = {FencedMemory::AgainstEnd, FencedMemory::AgainstStart};

/** Widths on both sides of every length at which a row changes its way. */
inline std::vector<int> everyFencedWidth()
{
    std::vector<int> widths;
    for (int width = 1; width <= 70; ++width)
        widths.push_back(width);
    for (const int width : {95, 96, 97, 127, 128, 129, 130, 191, 192, 193, 256, 257})
        widths.push_back(width);
    return widths;
}

/** One pixel of lanes from a plane into another; channels that the oracle leaves keep what they hold. */
template <class Op, class S, int SrcChannels, class D, int DstChannels>
void movePixel(const Plane<S>& i_src, int i_srcChannel, Plane<D>& io_dst, int i_dstChannel, int i_x, int i_y)
{
    constexpr bool out = Op::oneChannel && DstChannels == 1, in = Op::oneChannel && SrcChannels == 1;
    constexpr int srcUsed = out ? 1 : SrcChannels, dstUsed = in ? 1 : DstChannels;
    S src[srcUsed];
    D dst[dstUsed];
    for (int c = 0; c < srcUsed; ++c)
        src[c] = i_src.get(i_x * SrcChannels + i_srcChannel + c, i_y);
    for (int c = 0; c < dstUsed; ++c)
        dst[c] = io_dst.get(i_x * DstChannels + i_dstChannel + c, i_y);
    Op::template pixel<S, srcUsed, D, dstUsed>(src, dst);
    for (int c = 0; c < dstUsed; ++c)
        io_dst.set(i_x * DstChannels + i_dstChannel + c, i_y, dst[c]);
}

/** function(src, step, dst, step, size) on planes. */
template <class Op, class S, int SrcChannels, class D, int DstChannels, class Function>
void expectMovedPixels(const char* i_symbol, Function&& i_function)
{
    constexpr bool out = Op::oneChannel && DstChannels == 1, in = Op::oneChannel && SrcChannels == 1;
    PixelSource<S> random(5);
    PixelSource<D> before(6);
    forEveryGeometry([&](IppiSize size, size_t layout, unsigned count) {
        SCOPED_TRACE(nameOf(i_symbol, size, layout));
        const int srcChannel = out ? int(count) % SrcChannels : 0,
                  dstChannel = in ? int(count) % DstChannels : 0;
        Plane<S> src(size.width * SrcChannels, size.height, layoutAt(layout));
        Plane<D> dst(size.width * DstChannels, size.height, layoutAt(layout + count % 2));
        Plane<D> expected(size.width * DstChannels, size.height),
            start(size.width * DstChannels, size.height);
        src.fill(random);
        start.fill(before);
        expected.copyFrom(start);
        for (int y = 0; y < size.height; ++y)
            for (int x = 0; x < size.width; ++x)
                movePixel<Op, S, SrcChannels, D, DstChannels>(src, srcChannel, expected, dstChannel, x, y);

        dst.copyFrom(start);
        ASSERT_EQ(i_function(src.data() + srcChannel, src.step(), dst.data() + dstChannel, dst.step(), size),
            ippStsNoErr);
        ASSERT_TRUE(samePixels(dst, expected));
        ASSERT_TRUE(dst.frameIsIntact() && src.frameIsIntact());

        dst.copyFrom(start);
        const int upper = size.height / 2;
        if (upper > 0)
            i_function(src.data() + srcChannel, src.step(), dst.data() + dstChannel, dst.step(),
                {size.width, upper});
        i_function(rowOf(src, upper) + srcChannel, src.step(), rowOf(dst, upper) + dstChannel, dst.step(),
            {size.width, size.height - upper});
        ASSERT_TRUE(samePixels(dst, expected)) << "in two bands";
    });
}

/** The same where memory ends with the last element that may be touched and begins with the first. */
template <class Op, class S, int SrcChannels, class D, int DstChannels, class Function>
void expectNothingBeyondMemory(const char* i_symbol, Function&& i_function)
{
    constexpr bool out = Op::oneChannel && DstChannels == 1, in = Op::oneChannel && SrcChannels == 1;
    constexpr int srcUsed = out ? 1 : SrcChannels, dstUsed = in ? 1 : DstChannels;
    PixelSource<S> random(7);
    PixelSource<D> before(8);
    for (const FencedMemory::Side side : s_sides)
        for (const int width : everyFencedWidth())
            for (const int height : {1, 2}) {
                SCOPED_TRACE(nameOf(i_symbol, {width, height}, 0));
                const size_t last = size_t(width) * size_t(height) - 1;
                const size_t srcCount = last * SrcChannels + srcUsed, dstCount = last * DstChannels + dstUsed;
                FencedMemory src(srcCount * sizeof(S), side), dst(dstCount * sizeof(D), side);
                std::vector<D> expected(dstCount);
                for (size_t i = 0; i < srcCount; ++i)
                    src.set<S>(i, random());
                for (size_t i = 0; i < dstCount; ++i)
                    dst.set<D>(i, expected[i] = before());
                for (size_t pixel = 0; pixel <= last; ++pixel) {
                    S from[srcUsed];
                    for (int c = 0; c < srcUsed; ++c)
                        from[c] = src.get<S>(pixel * SrcChannels + size_t(c));
                    Op::template pixel<S, srcUsed, D, dstUsed>(from, &expected[pixel * DstChannels]);
                }
                ASSERT_EQ(i_function(reinterpret_cast<const S*>(src.data()),
                              width * SrcChannels * int(sizeof(S)), reinterpret_cast<D*>(dst.data()),
                              width * DstChannels * int(sizeof(D)), {width, height}),
                    ippStsNoErr);
                for (size_t i = 0; i < dstCount; ++i)
                    ASSERT_TRUE(samePixel(dst.get<D>(i), expected[i])) << "element " << i;
            }
}

template <class Op, class S, int SrcChannels, class D, int DstChannels, class Function>
void expectMove(const char* i_symbol, Function&& i_function)
{
    expectMovedPixels<Op, S, SrcChannels, D, DstChannels>(i_symbol, i_function);
    expectNothingBeyondMemory<Op, S, SrcChannels, D, DstChannels>(i_symbol, i_function);
}

} // namespace movers

#undef CUSTOMIPP_MOVE
#define CUSTOMIPP_MOVE(symbol, op, S, srcChannels, D, dstChannels)                                           \
    movers::expectMove<oracle::op, S, srcChannels, D, dstChannels>(                                          \
        #symbol, [](const S* src, int srcStep, D* dst, int dstStep, IppiSize size) {                         \
            return symbol(src, srcStep, dst, dstStep, size);                                                 \
        });
