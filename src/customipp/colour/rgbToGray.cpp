// Luminance of red, green and blue.
#include "rgbToGray.h"

#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "colour/rgbToGray.cpp"
#include <hwy/foreach_target.h>
#include <hwy/highway.h>

#include "../movers/bytes-inl.h"
#include "../movers/rows-inl.h"

HWY_BEFORE_NAMESPACE();
namespace customipp {
namespace HWY_NAMESPACE {
namespace {

/** Each lane's upper byte times a factor. (A compiler turns a plain product by a constant into slower shifts
 * and sums.) */
template <class V> HWY_INLINE V times(V upper, uint16_t factor)
{
    return hn::MulHigh(upper, hn::Set(hn::DFromV<V>(), uint16_t(factor << 8)));
}

/**
 * 64 times the luminance, and something below 64, of channels in the upper bytes of lanes of 16 bits. All is
 * exact: an eighth of 299 R + 587 G + 114 B, without its fraction, is 37 R + 73 G and an eighth of 3 R + 3 G
 * + 114 B; it is at most 31875. The product with 33555 / 2^22 is that number divided by 125, for every number
 * up to there.
 */
template <class V> HWY_INLINE V luminance64(V r, V g, V b)
{
    const auto part = hn::Add(hn::Add(times(r, 3), times(g, 3)), times(b, 114));
    const auto whole = hn::Add(times(r, 37), times(g, 73));
    return hn::MulHigh(hn::Add(whole, hn::ShiftRight<3>(part)), hn::Set(hn::DFromV<V>(), 33555));
}

/** The luminance of two vectors of pixels, of the first in the even bytes. */
template <class V> HWY_INLINE V joinLuminance(V even64, V odd64)
{
    const auto low = hn::Set(hn::DFromV<V>(), 0x00FF);
    return hn::Or(hn::ShiftRight<6>(even64), hn::AndNot(low, hn::ShiftLeft<2>(odd64)));
}

// Both blocks work on 32-bit lanes whose halves hold channels of two pixels. Letters are channels, numbers
// pixels, and the lowest byte comes first.

struct GrayFromThree {
    static constexpr size_t least = 16;
    const uint8_t* src;
    uint8_t* dst;

    template <class D, class Store> HWY_INLINE void operator()(D d, size_t x, Store store) const
    {
        const hn::Repartition<uint32_t, D> d32;
        const hn::Repartition<uint16_t, D> d16;
        const auto upper = hn::Set(d16, 0xFF00);
        hn::Vec<decltype(d32)> v0, v1, v2; // R0 G0 B0 R1, G1 B1 R2 G2, B2 R3 G3 B3
        hn::LoadInterleaved3(d32, reinterpret_cast<const uint32_t*>(src + 3 * x), v0, v1, v2);
        const auto a = hn::BitCast(d16, v0), b = hn::BitCast(d16, v1), c = hn::BitCast(d16, v2);

        const auto rg02 = hn::OddEven(b, a); // R0 G0 R2 G2
        const auto gb13 = hn::OddEven(c, b); // G1 B1 G3 B3
        const auto br
            = hn::BitCast(d16, hn::RotateRight<16>(hn::BitCast(d32, hn::OddEven(a, c)))); // B0 R1 B2 R3
        const auto even = luminance64(hn::ShiftLeft<8>(rg02), hn::And(rg02, upper), hn::ShiftLeft<8>(br));
        const auto odd = luminance64(hn::And(br, upper), hn::ShiftLeft<8>(gb13), hn::And(gb13, upper));
        store(hn::BitCast(d, joinLuminance(even, odd)), d, dst + x);
    }

    HWY_INLINE void one(size_t x) const { dst[x] = grayOf(src + 3 * x); }
    static HWY_INLINE uint8_t grayOf(const uint8_t* pixel)
    {
        return uint8_t((299u * pixel[0] + 587u * pixel[1] + 114u * pixel[2]) / 1000u);
    }
};

struct GrayFromFour {
    static constexpr size_t least = 16;
    const uint8_t* src;
    uint8_t* dst;

    template <class D, class Store> HWY_INLINE void operator()(D d, size_t x, Store store) const
    {
        const size_t n = hn::Lanes(d);
        const uint8_t* from = src + 4 * x;
        const auto even = pairs(d, from, from + 2 * n), odd = pairs(d, from + n, from + 3 * n);
        store(apartQuarters(d, hn::BitCast(d, joinLuminance(even, odd))), d, dst + x);
    }

    /** Of the pixels of one vector in the lower half of each lane, those of another in the upper half. */
    template <class D> static HWY_INLINE auto pairs(D d, const uint8_t* first, const uint8_t* second)
    {
        const hn::Repartition<uint32_t, D> d32;
        const hn::Repartition<uint16_t, D> d16;
        const auto upper = hn::Set(d16, 0xFF00);
        const auto v0 = hn::BitCast(d32, hn::LoadU(d, first)), v1 = hn::BitCast(d32, hn::LoadU(d, second));
        const auto rg
            = hn::OddEven(hn::BitCast(d16, hn::ShiftLeft<16>(v1)), hn::BitCast(d16, v0)); // R0 G0 R1 G1
        const auto ba
            = hn::OddEven(hn::BitCast(d16, v1), hn::BitCast(d16, hn::ShiftRight<16>(v0))); // B0 A0 B1 A1
        return luminance64(hn::ShiftLeft<8>(rg), hn::And(rg, upper), hn::ShiftLeft<8>(ba));
    }

    HWY_INLINE void one(size_t x) const { dst[x] = GrayFromThree::grayOf(src + 4 * x); }
};

template <class Block> void rgbToGray(const Move& move)
{
    for (size_t y = 0; y < move.area.height; ++y)
        coverRow(hn::ScalableTag<uint8_t>(), move.area.width, Block {move.src.row(y), move.dst.row(y)});
}

constexpr RGBToGrayKernels s_kernels {rgbToGray<GrayFromThree>, rgbToGray<GrayFromFour>};
} // namespace

const RGBToGrayKernels& rgbToGrayKernels() { return s_kernels; }
} // namespace HWY_NAMESPACE
} // namespace customipp
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace customipp {
namespace {
HWY_EXPORT(rgbToGrayKernels);
const RGBToGrayKernels& kernelsRGBToGray() { return HWY_DYNAMIC_DISPATCH(rgbToGrayKernels)(); }
} // namespace
} // namespace customipp
#include "../entryPoints.h"
#include <customipp/rgbToGray.def>
#endif // HWY_ONCE
