// Integer vectors as floats or doubles, and back. Compiled once for every target.
//
// A vector of narrow integers is taken as lanes of the float type's width, each of which holds several of
// them. Part p is the p-th integer of every lane: parts are taken out and put back by shifts, without a
// shuffle.

#if defined(CUSTOMIPP_PARTS_INL_H_) == defined(HWY_TARGET_TOGGLE)
#ifdef CUSTOMIPP_PARTS_INL_H_
#undef CUSTOMIPP_PARTS_INL_H_
#else
#define CUSTOMIPP_PARTS_INL_H_
#endif

#include "scaled-inl.h"

HWY_BEFORE_NAMESPACE();
namespace customipp {
namespace HWY_NAMESPACE {
namespace {

template <class T, class F> inline constexpr int partsOf = static_cast<int>(sizeof(F) / sizeof(T));

/** Added to an integer of less than 51 bits this leaves it in the low bits of the double, rounded to nearest.
 */
inline constexpr double integerInDouble = 6755399441055744.0; // 1.5 * 2^52

/** Part of a vector of 8-bit or 16-bit integers as floats of type F. */
template <class F, int Part, class D, class V> HWY_INLINE auto floatsOf(D, V v)
{
    using T = hn::TFromD<D>;
    const hn::Repartition<F, D> dFloat;
    const hn::RebindToUnsigned<decltype(dFloat)> dBits;
    const hn::RebindToSigned<decltype(dFloat)> dSigned;
    using Bits = hn::TFromD<decltype(dBits)>;
    constexpr int shift = Part * bitsOf<T>;
    constexpr bool top = Part == partsOf<T, F> - 1;
    if constexpr (sizeof(F) == 4 && hwy::IsSigned<T>()) {
        const auto up = hn::ShiftLeft<(partsOf<T, F> - 1) * bitsOf<T> - shift>(hn::BitCast(dSigned, v));
        return hn::ConvertTo(dFloat, hn::ShiftRight<(partsOf<T, F> - 1) * bitsOf<T>>(up));
    } else {
        constexpr Bits mask = greatest<hwy::MakeUnsigned<T>>;
        auto bits = hn::ShiftRight<shift>(hn::BitCast(dBits, v));
        if constexpr (!top)
            bits = hn::And(bits, hn::Set(dBits, mask));
        if constexpr (sizeof(F) == 4) {
            return hn::ConvertTo(dFloat, hn::BitCast(dSigned, bits));
        } else {
            // There is no conversion of 64-bit integers below AVX-512: the integer becomes the low bits of
            // 2^52 plus it. A signed one is moved into the positive range before, and back by the
            // subtraction.
            constexpr bool isSigned = hwy::IsSigned<T>();
            constexpr Bits exponent = Bits {0x4330} << 48;
            constexpr Bits flip = exponent | (isSigned ? Bits {1} << (bitsOf<T> - 1) : Bits {0});
            constexpr double offset = 4503599627370496.0 - (isSigned ? double {least<T>} : 0.0); // 2^52
            return hn::Sub(hn::BitCast(dFloat, hn::Xor(bits, hn::Set(dBits, flip))), hn::Set(dFloat, offset));
        }
    }
}

/** Floats limited to the range of an integer type. */
template <class T, class V> HWY_INLINE V limited(V v)
{
    const hn::DFromV<V> d;
    using F = hn::TFromD<decltype(d)>;
    v = hn::Min(v, hn::Set(d, F {greatest<T>}));
    if constexpr (hwy::IsSigned<T>())
        v = hn::Max(v, hn::Set(d, F {least<T>}));
    return v;
}

/** Floats, limited before, rounded to nearest with ties to even, and at their place; 0 in the other parts. */
template <class T, int Part, class V> HWY_INLINE auto roundedPart(V v)
{
    const hn::DFromV<V> dFloat;
    using F = hn::TFromD<decltype(dFloat)>;
    const hn::Repartition<T, decltype(dFloat)> d;
    const hn::RebindToUnsigned<decltype(dFloat)> dBits;
    using Bits = hn::TFromD<decltype(dBits)>;
    hn::Vec<decltype(dBits)> bits;
    if constexpr (sizeof(F) == 4)
        bits = hn::BitCast(dBits, hn::NearestInt(v));
    else
        bits = hn::BitCast(dBits, hn::Add(v, hn::Set(dFloat, integerInDouble)));
    constexpr bool top = Part == partsOf<T, F> - 1;
    if constexpr (!top && (sizeof(F) == 8 || hwy::IsSigned<T>()))
        bits = hn::And(bits, hn::Set(dBits, Bits {greatest<hwy::MakeUnsigned<T>>}));
    return hn::BitCast(d, hn::ShiftLeft<Part * bitsOf<T>>(bits));
}

} // namespace
} // namespace HWY_NAMESPACE
} // namespace customipp
HWY_AFTER_NAMESPACE();

#endif // per-target include guard
