// Integer operations with a scale factor: the exact result times 2^-factor, rounded once to nearest with ties
// to even, limited to the pixel type. Compiled once for every target.
//
// An exact operation is a type with three members: saturated(d, a, b), the result for factor 0 (for floats
// the plain result); wide(d, a, b), the exact result in lanes of twice the width; valueBits<T>, so that no
// result exceeds 2^valueBits. One whose valueBits exceed those of T by more than one also has halves(d, a, b)
// for 16-bit types: the exact result as two vectors of T, of which the lower one is unsigned.

#if defined(CUSTOMIPP_SCALED_INL_H_) == defined(HWY_TARGET_TOGGLE)
#ifdef CUSTOMIPP_SCALED_INL_H_
#undef CUSTOMIPP_SCALED_INL_H_
#else
#define CUSTOMIPP_SCALED_INL_H_
#endif

#include "pointwise-inl.h"

#include <limits>

HWY_BEFORE_NAMESPACE();
namespace customipp {
namespace HWY_NAMESPACE {
namespace {

/** The lanes of a vector as two of twice the lane width. Even and odd need no shuffle, and so no order to
 * restore. */
template <class V> struct EvenOdd {
    V even;
    V odd;
};

template <class T> inline constexpr int bitsOf = 8 * static_cast<int>(sizeof(T));

template <class T> inline constexpr T greatest = std::numeric_limits<T>::max();
template <class T> inline constexpr T least = std::numeric_limits<T>::min();

/** Widens to lanes of type W, with the sign where the narrow type has one. */
template <class W, class D, class V> HWY_INLINE auto widen(D, V v)
{
    using T = hn::TFromD<D>;
    const hn::Repartition<hwy::MakeWide<T>, D> dExtending;
    const hn::Repartition<W, D> dWide;
    const auto w = hn::BitCast(dExtending, v);
    const auto odd = hn::ShiftRight<bitsOf<T>>(w);
    if constexpr (hwy::IsSigned<T>())
        return EvenOdd<hn::Vec<decltype(dWide)>> {
            hn::BitCast(dWide, hn::ShiftRight<bitsOf<T>>(hn::ShiftLeft<bitsOf<T>>(w))),
            hn::BitCast(dWide, odd)};
    else
        return EvenOdd<hn::Vec<decltype(dWide)>> {
            hn::BitCast(dWide, hn::And(w, hn::Set(dExtending, greatest<T>))), hn::BitCast(dWide, odd)};
}

/** The inverse of widen, with each value limited to the narrow type. */
template <class D, class W> HWY_INLINE hn::Vec<D> narrowSaturated(D d, EvenOdd<W> wide)
{
    using T = hn::TFromD<D>;
    const hn::DFromV<W> dWide;
    using Wide = hn::TFromD<decltype(dWide)>;
    const auto high = hn::Set(dWide, Wide {greatest<T>});
    wide = {hn::Min(wide.even, high), hn::Min(wide.odd, high)};
    if constexpr (hwy::IsSigned<Wide>()) {
        const auto low = hn::Set(dWide, Wide {least<T>});
        wide = {hn::Max(wide.even, low), hn::Max(wide.odd, low)};
    }
    const auto odd = hn::BitCast(d, hn::ShiftLeft<bitsOf<T>>(wide.odd));
    if constexpr (hwy::IsSigned<T>())
        return hn::OddEven(odd, hn::BitCast(d, wide.even));
    else
        return hn::Or(odd, hn::BitCast(d, wide.even));
}

/** v * 2^-bits to nearest, ties to even, for bits >= 1, as long as v + 2^(bits - 1) fits the lane. */
template <class V> HWY_INLINE V roundedShift(V v, int bits)
{
    const hn::DFromV<V> d;
    using T = hn::TFromD<decltype(d)>;
    const V belowHalf = hn::Set(d, static_cast<T>((T {1} << (bits - 1)) - 1));
    const V oddFloor = hn::And(hn::ShiftRightSame(v, bits), hn::Set(d, T {1}));
    return hn::ShiftRightSame(hn::Add(hn::Add(v, belowHalf), oddFloor), bits);
}

/** Factor 0. */
template <class Exact> struct Saturated : PlainOperation {
    template <class D, class V> HWY_INLINE V operator()(D d, V a, V b) const
    {
        return Exact::saturated(d, a, b);
    }
};

/** A negative factor: the limited result is shifted and limited again, which comes to the same. */
template <class Exact> struct ScaledUp : PlainOperation {
    int bits;
    explicit ScaledUp(int shift) : bits(shift) {}

    template <class D, class V> HWY_INLINE V operator()(D d, V a, V b) const
    {
        using T = hn::TFromD<D>;
        constexpr int valueBits = bitsOf<T> - (hwy::IsSigned<T>() ? 1 : 0);
        // Shifted by all its bits a value goes to an end of the range, and 0 (signed: -1 too) stays or goes
        // there.
        const int limitBits = bits < valueBits ? bits : valueBits;
        const int laneShift = bits < bitsOf<T> - 1 ? bits : bitsOf<T> - 1;
        const V v = Exact::saturated(d, a, b);
        V limited = hn::Min(v, hn::Set(d, static_cast<T>(greatest<T> >> limitBits)));
        V end = hn::Set(d, greatest<T>);
        if constexpr (hwy::IsSigned<T>()) {
            limited = hn::Max(limited, hn::Set(d, static_cast<T>(least<T> >> limitBits)));
            end = hn::Xor(end, hn::BroadcastSignBit(v));
        }
        return hn::IfThenElse(hn::Eq(limited, v), hn::ShiftLeftSame(v, laneShift), end);
    }
};

/** A positive factor. */
template <class Exact> struct ScaledDown : PlainOperation {
    int bits;
    explicit ScaledDown(int scaleFactor) : bits(scaleFactor) {}

    template <class D, class V> HWY_INLINE V operator()(D d, V a, V b) const
    {
        const auto wide = Exact::wide(d, a, b);
        return narrowSaturated(
            d, EvenOdd<decltype(wide.even)> {roundedShift(wide.even, bits), roundedShift(wide.odd, bits)});
    }
};

/** v * 2^-bits to nearest, ties to even, for any bits up to those of the lane, the lanes being of any size.
 */
template <class V> HWY_INLINE V farRoundedShift(V v, int bits)
{
    const hn::DFromV<V> d;
    const hn::RebindToUnsigned<decltype(d)> dBits;
    using Bits = hn::TFromD<decltype(dBits)>;
    const auto half = hn::Set(dBits, static_cast<Bits>(Bits {1} << (bits - 1)));
    const V floor = hn::ShiftRight<1>(hn::ShiftRightSame(v, bits - 1));
    const auto rest
        = hn::And(hn::BitCast(dBits, v), hn::Set(dBits, static_cast<Bits>((Bits {2} << (bits - 1)) - 1)));
    // A tie goes up from an odd floor. The sum does not overflow: with all bits the floor is 0, or even.
    const auto odd = hn::And(hn::BitCast(dBits, floor), hn::Set(dBits, Bits {1}));
    const auto up = hn::VecFromMask(dBits, hn::Gt(hn::Add(rest, odd), half));
    return hn::BitCast(d, hn::Sub(hn::BitCast(dBits, floor), up));
}

/** A positive factor with which the quicker rounding would overflow the wide lane. */
template <class Exact> struct ScaledFarDown : PlainOperation {
    int bits;
    explicit ScaledFarDown(int scaleFactor) : bits(scaleFactor) {}

    template <class D, class V> HWY_INLINE V operator()(D d, V a, V b) const
    {
        using T = hn::TFromD<D>;
        if constexpr (sizeof(T) == 1) {
            const auto wide = Exact::wide(d, a, b);
            return narrowSaturated(d,
                EvenOdd<decltype(wide.even)> {
                    farRoundedShift(wide.even, bits), farRoundedShift(wide.odd, bits)});
        } else {
            // The upper half has the result and, with more than one bit below it, the half that decides; of
            // the lower half it only matters whether it is 0.
            const auto halves = Exact::halves(d, a, b);
            const auto sticky
                = hn::BitCast(d, hn::Min(halves.low, hn::Set(hn::DFromV<decltype(halves.low)>(), T {1})));
            return farRoundedShift(hn::Or(halves.high, sticky), bits - bitsOf<T>);
        }
    }
};

/** A factor so great that every result is less than one half, or a tie with 0. */
struct ScaledToZero : PlainOperation {
    template <class D, class V> HWY_INLINE V operator()(D d, V, V) const { return hn::Zero(d); }
};

/** Calls a loop with the operation for a scale factor; every int is one. */
template <class Exact, class T, class Loop> HWY_INLINE IppStatus withScale(int scaleFactor, const Loop& loop)
{
    if constexpr (hwy::IsFloat<T>()) {
        return loop(Saturated<Exact>());
    } else {
        if (scaleFactor == 0)
            return loop(Saturated<Exact>());
        if (scaleFactor < 0)
            return loop(ScaledUp<Exact>(scaleFactor < -bitsOf<T> ? bitsOf<T> : -scaleFactor));
        if (scaleFactor > Exact::template valueBits<T>)
            return loop(ScaledToZero());
        if constexpr (Exact::template valueBits < T >> bitsOf<T> + 1)
            if (scaleFactor > bitsOf<T> + 1)
                return loop(ScaledFarDown<Exact>(scaleFactor));
        return loop(ScaledDown<Exact>(scaleFactor));
    }
}

template <class Exact, class T>
IppStatus binaryScaled(Rows<const T> first, Rows<const T> second, Rows<T> out, Extent extent, int scaleFactor)
{
    return withScale<Exact, T>(scaleFactor, BinaryLoop<T> {first, second, out, extent});
}

template <class Exact, class T, bool KeepAlpha = false>
IppStatus constantsScaled(
    Rows<const T> pixels, Constants<T> constants, Rows<T> out, Extent extent, int scaleFactor)
{
    if constexpr (sizeof(T) == 1 && !KeepAlpha) // only bytes come with three channels
        if (constants.channels == 3)
            return withScale<Exact, T>(
                scaleFactor, ConstantsLoop<T, 3, false> {pixels, constants, out, extent});
    return withScale<Exact, T>(scaleFactor, ConstantsLoop<T, 1, KeepAlpha> {pixels, constants, out, extent});
}

template <class Exact> const BinaryKernels<Ipp8u, Ipp16u, Ipp16s, Ipp32f>& binaryScaledKernels()
{
    static constexpr BinaryKernels<Ipp8u, Ipp16u, Ipp16s, Ipp32f> s_kernels {binaryScaled<Exact, Ipp8u>,
        binaryScaled<Exact, Ipp16u>, binaryScaled<Exact, Ipp16s>, binaryScaled<Exact, Ipp32f>};
    return s_kernels;
}

template <class Exact> const ConstantsKernels& constantsScaledKernels()
{
    static constexpr ConstantsKernels s_kernels {
        {constantsScaled<Exact, Ipp8u>, constantsScaled<Exact, Ipp16u>, constantsScaled<Exact, Ipp16s>,
            constantsScaled<Exact, Ipp32f>},
        constantsScaled<Exact, Ipp8u, true>, false};
    return s_kernels;
}

} // namespace
} // namespace HWY_NAMESPACE
} // namespace customipp
HWY_AFTER_NAMESPACE();

#endif // per-target include guard
