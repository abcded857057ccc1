// A linear map of integers in integer lanes, for each instruction set anew.
#if defined(TARNIMG_CONVERSION_MAP_INTEGERS_INL_H) == defined(HWY_TARGET_TOGGLE)
#ifdef TARNIMG_CONVERSION_MAP_INTEGERS_INL_H
#undef TARNIMG_CONVERSION_MAP_INTEGERS_INL_H
#else
#define TARNIMG_CONVERSION_MAP_INTEGERS_INL_H
#endif

#include "conversion/linearMap.h"

#include <hwy/highway.h>

#include "conversion/mapDefinition-inl.h"

HWY_BEFORE_NAMESPACE();
namespace conversion {
namespace HWY_NAMESPACE {
namespace {

namespace hn = hwy::HWY_NAMESPACE;

// ---- Fractions in lanes of 16 bits

template <class D16, class S>
HWY_INLINE hn::Vec<D16> loadLimited16(D16 d, const S* i_source, const LinearMap& i_map)
{
    using Lane = std::conditional_t<std::is_same_v<S, quint16>, std::uint16_t, std::int16_t>;
    const hn::Rebind<Lane, D16> dl;
    const hn::Rebind<S, D16> ds;
    hn::Vec<decltype(dl)> v;
    if constexpr (sizeof(S) == 1)
        v = hn::PromoteTo(dl, hn::LoadU(ds, i_source));
    else
        v = hn::LoadU(ds, i_source);
    if (i_map.limits)
        v = hn::Max(hn::Min(v, hn::Set(dl, Lane(i_map.fixed.high))), hn::Set(dl, Lane(i_map.fixed.low)));
    return hn::BitCast(d, v);
}

template <class S, class T, class D16>
HWY_INLINE void mapWords(D16 d, const S* i_source, T* o_target, const LinearMap& i_map)
{
    const auto& fixed = i_map.fixed;
    const auto v = hn::Sub(loadLimited16(d, i_source, i_map), hn::Set(d, fixed.subtrahend));
    const auto upper = hn::Set(d, fixed.upper);
    const auto whole = hn::Add(hn::MulHigh(v, upper), hn::Mul(v, hn::Set(d, fixed.whole)));
    // The mean of two fractions of 2^-16 is their sum in units of 2^-15; one more shift makes room for the
    // start.
    const auto fraction = hn::AverageRound(hn::Mul(v, upper), hn::MulHigh(v, hn::Set(d, fixed.lower)));
    const auto rest = hn::Add(hn::ShiftRight<1>(fraction), hn::Set(d, fixed.start));
    const auto result = hn::Add(hn::Add(whole, hn::ShiftRight<14>(rest)), hn::Set(d, fixed.base));

    // Within two units of 2^-14 of a whole number, the sum may belong to its other side.
    const auto place
        = hn::And(hn::Add(rest, hn::Set(d, std::uint16_t(2))), hn::Set(d, std::uint16_t(0x3FFC)));
    if (HWY_LIKELY(hn::AllFalse(d, hn::Eq(place, hn::Zero(d))))) {
        const hn::Rebind<T, D16> dt;
        if constexpr (sizeof(T) == 2)
            hn::StoreU(hn::BitCast(dt, result), dt, o_target);
        else
            hn::StoreU(
                hn::BitCast(dt, hn::TruncateTo(hn::Rebind<std::uint8_t, D16>(), result)), dt, o_target);
    } else {
        const hn::ScalableTag<double> d64;
        for (std::size_t x = 0; x < hn::Lanes(d); x += hn::Lanes(d64))
            mapByDefinition(d64, i_source + x, o_target + x, i_map);
    }
}

// ---- Whole numbers in lanes of 32 bits

/** No element is rounded; see LinearMap::integral. */
template <class S, class T, class D32>
HWY_INLINE void mapIntegral(D32 d, const S* i_source, T* o_target, const LinearMap& i_map)
{
    const auto& integral = i_map.integral;
    const hn::Rebind<S, D32> ds;
    const hn::Rebind<T, D32> dt;
    hn::Vec<D32> v;
    if constexpr (sizeof(S) < 4)
        v = hn::PromoteTo(d, hn::LoadU(ds, i_source));
    else
        v = hn::LoadU(d, i_source);
    if (i_map.limits)
        v = hn::Max(hn::Min(v, hn::Set(d, integral.high)), hn::Set(d, integral.low));
    v = hn::Add(hn::Mul(v, hn::Set(d, integral.factor)), hn::Set(d, integral.summand));
    if constexpr (hwy::IsFloat<T>())
        hn::StoreU(hn::ConvertTo(dt, v), dt, o_target);
    else
        hn::StoreU(hn::BitCast(dt, v), dt, o_target);
}

} // namespace
} // namespace HWY_NAMESPACE
} // namespace conversion
HWY_AFTER_NAMESPACE();

#endif
