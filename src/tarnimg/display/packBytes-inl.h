// Bytes from vectors of small numbers, for each instruction set anew.
#if defined(TARNIMG_DISPLAY_PACK_BYTES_INL_H) == defined(HWY_TARGET_TOGGLE)
#ifdef TARNIMG_DISPLAY_PACK_BYTES_INL_H
#undef TARNIMG_DISPLAY_PACK_BYTES_INL_H
#else
#define TARNIMG_DISPLAY_PACK_BYTES_INL_H
#endif

#include <hwy/highway.h>

HWY_BEFORE_NAMESPACE();
namespace display {
namespace HWY_NAMESPACE {
namespace {

/** Which 4 bytes of a vector go where: those of each part of 16 bytes belong to four different results. */
struct PackOrder {
    alignas(64) std::int32_t lanes[HWY_MAX_BYTES / 4];

    HWY_INLINE PackOrder()
    {
        const std::size_t count = hwy::HWY_NAMESPACE::Lanes(hwy::HWY_NAMESPACE::ScalableTag<std::int32_t>());
        for (std::size_t i = 0; i < count; ++i)
            lanes[i] = std::int32_t(i % (count / 4) * 4 + i / (count / 4));
    }
};

/** The bytes of four vectors of 32 bits, one vector behind the other: the low 16 bits are 0 to 255, those
 * above do not matter. */
template <class V>
HWY_INLINE hwy::HWY_NAMESPACE::Vec<hwy::HWY_NAMESPACE::ScalableTag<std::uint8_t>> packBytes(
    V i_v0, V i_v1, V i_v2, V i_v3, const PackOrder& i_order)
{
    namespace hn = hwy::HWY_NAMESPACE;
    const hn::ScalableTag<std::uint8_t> bytes;
    const hn::ScalableTag<std::uint16_t> d16;
    const hn::ScalableTag<std::int32_t> d32;
    alignas(16) static constexpr std::uint8_t inPart[16]
        = {0, 4, 8, 12, 2, 6, 10, 14, 1, 5, 9, 13, 3, 7, 11, 15};
    const auto v01 = hn::OddEven(hn::BitCast(d16, hn::ShiftLeft<16>(i_v1)), hn::BitCast(d16, i_v0));
    const auto v23 = hn::OddEven(hn::BitCast(d16, hn::ShiftLeft<16>(i_v3)), hn::BitCast(d16, i_v2));
    const auto mixed = hn::BitCast(bytes, hn::Or(v01, hn::ShiftLeft<8>(v23)));
    const auto sorted = hn::TableLookupBytes(mixed, hn::LoadDup128(bytes, inPart));
    return hn::BitCast(
        bytes, hn::TableLookupLanes(hn::BitCast(d32, sorted), hn::SetTableIndices(d32, i_order.lanes)));
}

} // namespace
} // namespace HWY_NAMESPACE
} // namespace display
HWY_AFTER_NAMESPACE();

#endif
