// A linear map as it is defined, for each instruction set anew.
#if defined(TARNIMG_CONVERSION_MAP_DEFINITION_INL_H) == defined(HWY_TARGET_TOGGLE)
#ifdef TARNIMG_CONVERSION_MAP_DEFINITION_INL_H
#undef TARNIMG_CONVERSION_MAP_DEFINITION_INL_H
#else
#define TARNIMG_CONVERSION_MAP_DEFINITION_INL_H
#endif

#include "conversion/linearMap.h"

#include <hwy/highway.h>

#include "conversion/loadAsDouble-inl.h"

HWY_BEFORE_NAMESPACE();
namespace conversion {
namespace HWY_NAMESPACE {
namespace {

namespace hn = hwy::HWY_NAMESPACE;

/** The elements, limited to the input range. */
template <class D64, class S>
HWY_INLINE hn::Vec<D64> loadLimited(D64 d, const S* i_source, const LinearMap& i_map)
{
    const auto v = loadAsDouble(d, i_source);
    if (!i_map.limits)
        return v;
    const auto low = hn::Set(d, i_map.low);
    const auto high = hn::Set(d, i_map.high);
    if constexpr (hwy::IsFloat<S>()) { // written out: NaN passes both tests, and an equal low end wins
        const auto notAbove = hn::IfThenElse(hn::Gt(v, high), high, v);
        return hn::IfThenElse(hn::Ge(low, notAbove), low, notAbove);
    } else {
        return hn::Max(hn::Min(v, high), low);
    }
}

/** Subtracts, multiplies, adds: three roundings, never a fused one. */
template <class D64, class V> HWY_INLINE V mapped(D64 d, V v, const LinearMap& i_map)
{
    const V product = hn::Mul(hn::Sub(v, hn::Set(d, i_map.low)), hn::Set(d, i_map.factor));
    return hn::Add(product, hn::Set(d, i_map.offset));
}

/**
 * Halves go upwards for all signs. Negative values are moved up to 0.5 to 2 first, where one more rounding
 * can occur than in floor(w + 0.5): the two differ next to a half.
 */
template <class D64, class V> HWY_INLINE V rounded(D64 d, V w)
{
    const V half = hn::Set(d, 0.5);
    const V below = hn::Trunc(hn::Sub(w, hn::Set(d, 1.0)));
    const V negative = hn::Add(hn::Trunc(hn::Add(hn::Sub(w, below), half)), below);
    return hn::IfThenElse(hn::Ge(w, hn::Zero(d)), hn::Trunc(hn::Add(w, half)), negative);
}

/** The low 32 bits of whole numbers; 0 for what is not finite. */
template <class D64, class V> HWY_INLINE auto lowBits(D64 d, V r)
{
    const V two32 = hn::Set(d, 0x1p32);
    const V times = hn::Floor(hn::Mul(r, hn::Set(d, 0x1p-32)));
    r = hn::Sub(r, hn::Mul(times, two32)); // exact
    r = hn::IfThenElseZero(hn::Eq(r, r), r);
    r = hn::Sub(r, hn::IfThenElseZero(hn::Ge(r, hn::Set(d, 0x1p31)), two32));
    const hn::Rebind<std::uint32_t, D64> bits;
    return hn::BitCast(bits, hn::DemoteTo(hn::Rebind<std::int32_t, D64>(), r));
}

/** Stores the low bits. */
template <class T, class D64, class V32> HWY_INLINE void storeBits(D64, V32 bits, T* o_target)
{
    using U = std::make_unsigned_t<T>;
    const hn::Rebind<U, D64> du;
    const hn::Rebind<T, D64> dt;
    if constexpr (sizeof(T) == 4)
        hn::StoreU(hn::BitCast(dt, bits), dt, o_target);
    else
        hn::StoreU(hn::BitCast(dt, hn::TruncateTo(du, bits)), dt, o_target);
}

template <class S, class T, class D64>
HWY_INLINE void mapByDefinition(D64 d, const S* i_source, T* o_target, const LinearMap& i_map)
{
    const auto w = mapped(d, loadLimited(d, i_source, i_map), i_map);
    if constexpr (std::is_same_v<T, double>) {
        hn::StoreU(w, d, o_target);
    } else if constexpr (std::is_same_v<T, float>) {
        const hn::Rebind<float, D64> df;
        hn::StoreU(hn::DemoteTo(df, w), df, o_target);
    } else {
        storeBits(d, lowBits(d, rounded(d, w)), o_target);
    }
}

} // namespace
} // namespace HWY_NAMESPACE
} // namespace conversion
HWY_AFTER_NAMESPACE();

#endif
