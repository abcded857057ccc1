// Quarters of the pixels of a plane as floats, and back. Compiled once for each instruction set.

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

/** Added to a number from 0 to 255 this leaves it in the low byte, rounded to nearest with ties to even. */
inline constexpr float integerInFloat = 12582912.0f; // 1.5 * 2^23

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

/** The low bytes of four quarters to their places in a plane; the byte above each is 0. */
template <class D, class VF> HWY_INLINE hn::Vec<D> planeOfQuarters(D d, VF q0, VF q1, VF q2, VF q3)
{
    const hn::Repartition<uint16_t, D> d16;
    const hn::Repartition<uint32_t, D> d32;
    const auto lower = hn::Or(hn::BitCast(d32, q0), hn::ShiftLeft<8>(hn::BitCast(d32, q1)));
    const auto upper = hn::Or(hn::BitCast(d32, q2), hn::ShiftLeft<8>(hn::BitCast(d32, q3)));
    return hn::BitCast(d, hn::OddEven(hn::BitCast(d16, hn::ShiftLeft<16>(upper)), hn::BitCast(d16, lower)));
}

/**
 * Op on the channels of each pixel as floats: op(df, c0, c1, c2, r0, r1, r2) gives the new ones, with the
 * numbers in the low bytes and the bytes above them 0.
 */
template <class Op, class D> HWY_INLINE Planes<D> inFloats(D d, const Op& op, Planes<D> in)
{
    const hn::Repartition<float, D> df;
    using VF = hn::Vec<decltype(df)>;
    VF a0, a1, a2, a3, b0, b1, b2, b3, c0, c1, c2, c3;
    op(df, floatsOfQuarter<0>(d, in.first), floatsOfQuarter<0>(d, in.second), floatsOfQuarter<0>(d, in.third),
        a0, b0, c0);
    op(df, floatsOfQuarter<1>(d, in.first), floatsOfQuarter<1>(d, in.second), floatsOfQuarter<1>(d, in.third),
        a1, b1, c1);
    op(df, floatsOfQuarter<2>(d, in.first), floatsOfQuarter<2>(d, in.second), floatsOfQuarter<2>(d, in.third),
        a2, b2, c2);
    op(df, floatsOfQuarter<3>(d, in.first), floatsOfQuarter<3>(d, in.second), floatsOfQuarter<3>(d, in.third),
        a3, b3, c3);
    return {planeOfQuarters(d, a0, a1, a2, a3), planeOfQuarters(d, b0, b1, b2, b3),
        planeOfQuarters(d, c0, c1, c2, c3)};
}

} // namespace HWY_NAMESPACE
} // namespace customipp
HWY_AFTER_NAMESPACE();

#endif // toggle
