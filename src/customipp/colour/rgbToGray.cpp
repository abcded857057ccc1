// Luminance of red, green and blue.
#include "rgbToGray.h"

#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "colour/rgbToGray.cpp"
#include <hwy/foreach_target.h>
#include <hwy/highway.h>

#include "../movers/rows-inl.h"

HWY_BEFORE_NAMESPACE();
namespace customipp {
namespace HWY_NAMESPACE {
namespace {

/**
 * 64 times the luminance, and something below 64, of channels in lanes of 16 bits. All is exact: the weights are 8 times
 * 37, 73 and 14, and 3, 3 and 2 more, so an eighth of the sum, without its fraction, is at most 31875 and fits the lane.
 * The product with 33555 / 2^22 is that eighth divided by 125 for every number up to there.
 */
template <class V> HWY_INLINE V luminance64(V r, V g, V b)
{
    const hn::DFromV<V> d;
    const auto rg = hn::Add(r, g), rgb = hn::Add(rg, b);
    const auto coarse = hn::Add(hn::Add(hn::Mul(rg, hn::Set(d, 37)), hn::Mul(g, hn::Set(d, 36))), hn::Mul(b, hn::Set(d, 14)));
    const auto fine = hn::ShiftRight<3>(hn::Add(hn::Add(rgb, rgb), rg));
    return hn::MulHigh(hn::Add(coarse, fine), hn::Set(d, 33555));
}

template <int Channels> struct GrayBlock {
    static constexpr size_t least = 16;
    const uint8_t* src;
    uint8_t* dst;

    template <class D, class Store> HWY_INLINE void operator()(D d, size_t x, Store store) const
    {
        const hn::RepartitionToWide<D> d16;
        hn::Vec<D> r, g, b, alpha;
        if constexpr (Channels == 3)
            hn::LoadInterleaved3(d, src + 3 * x, r, g, b);
        else
            hn::LoadInterleaved4(d, src + 4 * x, r, g, b, alpha);
        const auto r16 = hn::BitCast(d16, r), g16 = hn::BitCast(d16, g), b16 = hn::BitCast(d16, b);
        const auto low = hn::Set(d16, 0x00FF);
        const auto even = luminance64(hn::And(r16, low), hn::And(g16, low), hn::And(b16, low));
        const auto odd = luminance64(hn::ShiftRight<8>(r16), hn::ShiftRight<8>(g16), hn::ShiftRight<8>(b16));
        const auto both = hn::Or(hn::ShiftRight<6>(even), hn::AndNot(low, hn::ShiftLeft<2>(odd)));
        store(hn::BitCast(d, both), d, dst + x);
    }

    HWY_INLINE void one(size_t x) const
    {
        const uint8_t* pixel = src + x * Channels;
        dst[x] = uint8_t((299u * pixel[0] + 587u * pixel[1] + 114u * pixel[2]) / 1000u);
    }
};

template <int Channels> void rgbToGray(const Move& move)
{
    for (size_t y = 0; y < move.area.height; ++y)
        coverRow(hn::ScalableTag<uint8_t>(), move.area.width, GrayBlock<Channels> {move.src.row(y), move.dst.row(y)});
}

constexpr RGBToGrayKernels s_kernels {rgbToGray<3>, rgbToGray<4>};
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
