// Grey or three channels into four: the pixel layer would write every pixel twice, first the colour and then
// alpha.
#include "conversion/expandColour.h"

#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "conversion/expandColour.cpp"
#include <hwy/foreach_target.h>

#include <hwy/highway.h>

HWY_BEFORE_NAMESPACE();
namespace conversion {
namespace HWY_NAMESPACE {
namespace {

namespace hn = hwy::HWY_NAMESPACE;

// Orders of the bytes in each 16-byte block; 0x80 gives 0, and there alpha goes.
alignas(16) constexpr Ipp8u s_repeatGrey[16]
    = {0, 0, 0, 0x80, 4, 4, 4, 0x80, 8, 8, 8, 0x80, 12, 12, 12, 0x80};
alignas(16) constexpr Ipp8u s_spreadRgb[16] = {0, 1, 2, 0x80, 3, 4, 5, 0x80, 6, 7, 8, 0x80, 9, 10, 11, 0x80};
/** Brings the twelve bytes of each block's four pixels to the block; the last four bytes are not used. */
alignas(64) constexpr std::int32_t s_blocks[16] = {0, 1, 2, 2, 3, 4, 5, 5, 6, 7, 8, 8, 9, 10, 11, 11};

template <class D32, class V32>
HWY_INLINE void storeOpaque(D32 d, V32 pixels, const Ipp8u (&i_order)[16], Ipp8u* o_target)
{
    const hn::Repartition<std::uint8_t, D32> bytes;
    const auto colours = hn::TableLookupBytes(hn::BitCast(bytes, pixels), hn::LoadDup128(bytes, i_order));
    const auto alpha = hn::BitCast(bytes, hn::Set(d, 0xFF000000u));
    hn::StoreU(hn::Or(colours, alpha), bytes, o_target);
}

void fromGrey(const Ipp8u* i_source, Ipp8u* o_target, std::size_t i_pixels)
{
    const hn::ScalableTag<std::uint32_t> d;
    const hn::Rebind<std::uint8_t, decltype(d)> grey;
    const std::size_t lanes = hn::Lanes(d);
    std::size_t x = 0;
    for (; x + lanes <= i_pixels; x += lanes)
        storeOpaque(d, hn::PromoteTo(d, hn::LoadU(grey, i_source + x)), s_repeatGrey, o_target + 4 * x);
    for (; x < i_pixels; ++x) {
        o_target[4 * x] = o_target[4 * x + 1] = o_target[4 * x + 2] = i_source[x];
        o_target[4 * x + 3] = 255;
    }
}

void fromRgb24(const Ipp8u* i_source, Ipp8u* o_target, std::size_t i_pixels)
{
    const hn::ScalableTag<std::uint32_t> d;
    const hn::Repartition<std::uint8_t, decltype(d)> bytes;
    const auto blocks = hn::SetTableIndices(d, s_blocks);
    const std::size_t lanes = hn::Lanes(d);
    std::size_t x = 0;
    for (; 3 * x + 4 * lanes <= 3 * i_pixels;
         x += lanes) { // a load reaches beyond its pixels, not beyond the row
        const auto rgb = hn::BitCast(d, hn::LoadU(bytes, i_source + 3 * x));
        storeOpaque(d, hn::TableLookupLanes(rgb, blocks), s_spreadRgb, o_target + 4 * x);
    }
    for (; x < i_pixels; ++x) {
        for (int channel = 0; channel < 3; ++channel)
            o_target[4 * x + channel] = i_source[3 * x + channel];
        o_target[4 * x + 3] = 255;
    }
}

} // namespace

const ColourExpanders& expanders()
{
    static constexpr ColourExpanders s_expanders {fromGrey, fromRgb24};
    return s_expanders;
}

} // namespace HWY_NAMESPACE
} // namespace conversion
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace conversion {

HWY_EXPORT(expanders);

const ColourExpanders& colourExpanders() { return HWY_DYNAMIC_DISPATCH(expanders)(); }

} // namespace conversion
#endif // HWY_ONCE
