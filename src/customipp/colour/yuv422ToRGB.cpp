// Packed YUV, two pixels to four bytes, to red, green and blue.
#include "yuv422ToRGB.h"

#include <algorithm>

#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "colour/yuv422ToRGB.cpp"
#include <hwy/foreach_target.h>
#include <hwy/highway.h>

#include "../movers/rows-inl.h"
#include "quarters-inl.h"

HWY_BEFORE_NAMESPACE();
namespace customipp {
namespace HWY_NAMESPACE {
namespace {

/** Four pixels to a block: their Y, then U and V, each twice. A vector holds two quarters. */
template <size_t Size> constexpr ByteOrder<Size> yuvOrder(size_t part)
{
    ByteOrder<Size> order;
    const size_t skip = part % 2 * (Size / 8); // lanes before the quarter
    for (size_t i = 0; i < Size; ++i) {
        const size_t pixel = i % 4, within = Size == 16 ? 4 * skip : 0;
        const size_t places[4] = {2 * pixel, 4 * (pixel / 2) + 1, 4 * (pixel / 2) + 3, order.zero};
        const size_t place = places[i % 16 / 4];
        order.bytes[i] = uint8_t(place == order.zero ? place : place + within);
    }
    for (size_t i = 0; i < Size / 4; ++i)
        order.lanes[i] = uint32_t(i / 4 * 2 + i % 2 + skip);
    return order;
}

template <size_t Part, class D> HWY_INLINE hn::Vec<D> yuvApart(D d, hn::Vec<D> v)
{
    static constexpr auto order = yuvOrder<hn::MaxLanes(D())>(Part);
    return reorder(d, v, order);
}

/**
 * Results are multiples of 1/1000, rounded away from them by much less than half of 1/1024. Added to a number
 * from 0 to 255 this constant rounds it to a multiple of 1/1024: so ties become exact and nothing else
 * becomes a tie. It makes no difference whether a processor fuses a product and a sum.
 */
constexpr float grid = 8192.0f; // 2^13

struct ToRGB {
    template <class DF, class VF>
    HWY_INLINE void operator()(DF df, VF y, VF u, VF v, VF& r, VF& g, VF& b) const
    {
        const auto redAndBlue = [](float share) { return -128.0f * share; };
        r = rounded(df, hn::MulAdd(v, hn::Set(df, 1.14f), hn::Add(y, hn::Set(df, redAndBlue(1.14f)))));
        b = rounded(df, hn::MulAdd(u, hn::Set(df, 2.032f), hn::Add(y, hn::Set(df, redAndBlue(2.032f)))));
        const auto yv = hn::MulAdd(v, hn::Set(df, -0.581f), hn::Add(y, hn::Set(df, 128.0f * 0.975f)));
        g = rounded(df, hn::MulAdd(u, hn::Set(df, -0.394f), yv));
    }

    template <class DF, class VF> static HWY_INLINE VF rounded(DF df, VF v)
    {
        const auto limited = hn::Min(hn::Max(v, hn::Zero(df)), hn::Set(df, 255.0f));
        return hn::Add(hn::Add(limited, hn::Set(df, grid)), hn::Set(df, integerInFloat - grid));
    }

    /** A pixel from the bytes of its pair. */
    static void pixel(int y, int u, int v, uint8_t* to)
    {
        to[0] = rounded(1000 * y + 1140 * (v - 128));
        to[1] = rounded(1000 * y - 394 * (u - 128) - 581 * (v - 128));
        to[2] = rounded(1000 * y + 2032 * (u - 128));
    }
    static uint8_t rounded(int thousandths)
    {
        if (thousandths <= 0)
            return 0;
        const int floor = thousandths / 1000, rest = thousandths % 1000;
        return uint8_t(std::min(floor + (rest > 500 || (rest == 500 && floor % 2 != 0)), 255));
    }
};

/** An even number of pixels; a block starts at an even one. */
struct Row {
    static constexpr size_t least = 16;
    const uint8_t* src;
    uint8_t* dst;

    template <class D, class Store> HWY_INLINE void operator()(D d, size_t x, Store) const
    {
        const auto first = hn::LoadU(d, src + 2 * x), second = hn::LoadU(d, src + 2 * x + hn::Lanes(d));
        const auto yuv = planesOf(
            d, yuvApart<0>(d, first), yuvApart<1>(d, first), yuvApart<2>(d, second), yuvApart<3>(d, second));
        storeQuarters<3>(d, inFloats(d, ToRGB(), yuv), dst + 3 * x);
    }
    HWY_INLINE void one(size_t x) const
    {
        const uint8_t* pair = src + 2 * x - 2 * x % 4;
        ToRGB::pixel(src[2 * x], pair[1], pair[3], dst + 3 * x);
    }
};

void toRGB(const Move& move)
{
    const size_t even = move.area.width - move.area.width % 2;
    for (size_t y = 0; y < move.area.height; ++y) {
        const uint8_t* src = move.src.row(y);
        uint8_t* dst = move.dst.row(y);
        coverRow(hn::ScalableTag<uint8_t>(), even, Row {src, dst});
        if (even < move.area.width)
            ToRGB::pixel(src[2 * even], src[2 * even - 3], src[2 * even - 1], dst + 3 * even);
    }
}

constexpr YUV422Kernels s_kernels {toRGB};
} // namespace

const YUV422Kernels& yuv422Kernels() { return s_kernels; }
} // namespace HWY_NAMESPACE
} // namespace customipp
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace customipp {
namespace {
HWY_EXPORT(yuv422Kernels);
const YUV422Kernels& kernelsYUV422ToRGB() { return HWY_DYNAMIC_DISPATCH(yuv422Kernels)(); }
} // namespace
} // namespace customipp
#include "../entryPoints.h"
#include <customipp/yuv422ToRGB.def>
#endif // HWY_ONCE
