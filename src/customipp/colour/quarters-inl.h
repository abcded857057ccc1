// Quarters of the pixels of a plane as floats, and floats as pixels. Compiled once for each instruction set.

#if defined(CUSTOMIPP_COLOUR_QUARTERS_INL_H) == defined(HWY_TARGET_TOGGLE)
#ifdef CUSTOMIPP_COLOUR_QUARTERS_INL_H
#undef CUSTOMIPP_COLOUR_QUARTERS_INL_H
#else
#define CUSTOMIPP_COLOUR_QUARTERS_INL_H
#endif

#include "planes-inl.h"

HWY_BEFORE_NAMESPACE();
namespace customipp {
namespace HWY_NAMESPACE {

/**
 * Added to a number from 0 to 255 this leaves it in the low byte, rounded to nearest with ties to even, and 0
 * in the two bytes above.
 */
inline constexpr float integerInFloat = 8388608.0f; // 2^23

/** Quarter K of a plane: byte K of each 32-bit lane. */
template <int K, class D> HWY_INLINE auto floatsOfQuarter(D d, hn::Vec<D> plane)
{
    const hn::Repartition<int32_t, decltype(d)> d32;
    const hn::Repartition<uint32_t, decltype(d)> dBits;
    const hn::Repartition<float, decltype(d)> df;
    auto bits = hn::BitCast(dBits, plane);
    if constexpr (K > 0)
        bits = hn::ShiftRight<8 * K>(bits);
    if constexpr (K < 3)
        bits = hn::And(bits, hn::Set(dBits, 0xFF));
    return hn::ConvertTo(df, hn::BitCast(d32, bits));
}

/** One channel of the four pixels of each block, each in the low byte of its 32-bit lane. */
template <size_t Size, size_t Channels> constexpr ByteOrder<Size> spreadOrder(size_t skip, size_t channel)
{
    const ByteOrder<Size> apart = apartOrder<Size, Channels>(skip);
    ByteOrder<Size> order = apart;
    for (size_t i = 0; i < Size; ++i)
        order.bytes[i] = i % 4 == 0 ? apart.bytes[i / 16 * 16 + 4 * channel + i % 16 / 4] : order.zero;
    return order;
}

/** Quarter number Part of the pixels as floats, channel by channel. */
template <size_t Channels, size_t Part, class D>
HWY_INLINE Planes<hn::Repartition<float, D>> loadFloats(D d, const uint8_t* from)
{
    constexpr size_t size = hn::MaxLanes(D()), skip = skipOf<size, Channels, Part>;
    static constexpr auto first = spreadOrder<size, Channels>(skip, 0);
    static constexpr auto second = spreadOrder<size, Channels>(skip, 1);
    static constexpr auto third = spreadOrder<size, Channels>(skip, 2);
    const auto pixels = moveLanes(d, loadQuarter<Channels, Part>(d, from), first.lanes);
    const auto channel = [&](const ByteOrder<size>& order) HWY_ATTR {
        const auto bytes = hn::TableLookupBytesOr0(pixels, hn::Load(d, order.bytes));
        return hn::ConvertTo(hn::Repartition<float, D>(), hn::BitCast(hn::Repartition<int32_t, D>(), bytes));
    };
    return {channel(first), channel(second), channel(third)};
}

/** The low bytes of floats in the lower halves of the lanes. */
template <class VF> HWY_INLINE auto joinBytes(VF first, VF second)
{
    const hn::Repartition<uint32_t, hn::DFromV<VF>> d32;
    return hn::Or(hn::BitCast(d32, first), hn::ShiftLeft<8>(hn::BitCast(d32, second)));
}

/** The low bytes of four quarters to their places in a plane. */
template <class D, class VF> HWY_INLINE hn::Vec<D> planeOfQuarters(D d, VF q0, VF q1, VF q2, VF q3)
{
    return hn::BitCast(d, joinThird(joinBytes(q0, q1), hn::ShiftLeft<16>(joinBytes(q2, q3))));
}

/** Op on quarter K of planes, as floats: op(df, c0, c1, c2, r0, r1, r2) gives new channels in the low bytes.
 */
template <int K, class Op, class D> HWY_INLINE auto quarterInFloats(D d, const Op& op, Planes<D> in)
{
    const hn::Repartition<uint32_t, D> d32;
    const hn::Repartition<float, D> df;
    hn::Vec<decltype(df)> first, second, third;
    op(df, floatsOfQuarter<K>(d, in.first), floatsOfQuarter<K>(d, in.second), floatsOfQuarter<K>(d, in.third),
        first, second, third);
    return joinThird(joinBytes(first, second), hn::ShiftLeft<16>(hn::BitCast(d32, third)));
}

template <class Op, class D> HWY_INLINE Quarters<D> inFloats(D d, const Op& op, Planes<D> in)
{
    return {quarterInFloats<0>(d, op, in), quarterInFloats<1>(d, op, in), quarterInFloats<2>(d, op, in),
        quarterInFloats<3>(d, op, in)};
}

} // namespace HWY_NAMESPACE
} // namespace customipp
HWY_AFTER_NAMESPACE();

#endif // toggle
