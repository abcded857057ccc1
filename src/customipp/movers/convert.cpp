// Converts between pixel types.
#include "convert.h"

#include <limits>

#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "movers/convert.cpp"
#include <hwy/foreach_target.h>
#include <hwy/highway.h>

#include "narrow-inl.h"

HWY_BEFORE_NAMESPACE();
namespace customipp {
namespace HWY_NAMESPACE {
namespace {

/** To a wider type that holds every value. */
template <class S, class D> struct Widen {
    using Dst = D;
    static constexpr size_t least = 1;
    const S* src;
    D* dst;

    template <class Tag, class Store> HWY_INLINE void operator()(Tag d, size_t x, Store store) const
    {
        const auto v = hn::LoadU(hn::Rebind<S, Tag>(), src + x);
        if constexpr (hwy::IsFloat<D>())
            store(hn::ConvertTo(d, hn::PromoteTo(hn::RebindToSigned<Tag>(), v)), d, dst + x);
        else
            store(hn::PromoteTo(d, v), d, dst + x);
    }
};

// Limits, for Narrow.

/** Of integers. */
struct Saturate {
    template <class D, class V> HWY_INLINE auto of(V v) const
    {
        const hn::DFromV<V> ds;
        using S = hn::TFromV<V>;
        v = hn::Min(v, hn::Set(ds, S(std::numeric_limits<D>::max())));
        if constexpr (hwy::IsSigned<S>())
            v = hn::Max(v, hn::Set(ds, S(std::numeric_limits<D>::lowest())));
        return hn::BitCast(hn::RebindToUnsigned<decltype(ds)>(), v);
    }
};

/** Of floats, with one of the rounding modes. The limit comes first. */
template <int Mode> struct Round {
    template <class D, class V> HWY_INLINE auto of(V v) const
    {
        const hn::DFromV<V> df;
        const auto lowest = hn::Set(df, float(std::numeric_limits<D>::lowest()));
        v = hn::IfThenElse(hn::Gt(v, lowest), v, lowest); // NaN is not greater
        v = hn::Min(v, hn::Set(df, float(std::numeric_limits<D>::max())));
        return integersOf(hn::Add(whole(v), hn::Set(df, integerInFloat)));
    }

    template <class V> static HWY_INLINE V whole(V v)
    {
        if constexpr (Mode == ippRndNear)
            return v;
        if constexpr (Mode == ippRndZero)
            return hn::Trunc(v);
        // The greatest float below 0.5: added to one half it gives 1, as the sum is rounded, and added to
        // itself less than 1, where 0.5 would give 1. From 0.5 on it has the effect of 0.5.
        const auto half = hn::Set(hn::DFromV<V>(), 0x1.fffffep-2f);
        return hn::Trunc(hn::Add(v, hn::CopySignToAbs(half, v)));
    }
};

template <class S, class Block> void convert(const Move& move) { coverRows<S, Block>(move); }

template <class S, class D> constexpr MoveKernel s_widen = convert<S, Widen<S, D>>;
template <class S, class D> constexpr MoveKernel s_saturate = convert<S, Narrow<S, D, Saturate>>;
template <class D, int Mode> constexpr MoveKernel s_round = convert<float, Narrow<float, D, Round<Mode>>>;
template <class D> constexpr RoundedKernels s_rounded {{s_round<D, 0>, s_round<D, 1>, s_round<D, 2>}};

constexpr ConvertKernels s_kernels {s_widen<uint8_t, uint16_t>, s_widen<uint8_t, float>,
    s_widen<uint16_t, float>, s_saturate<uint16_t, uint8_t>, s_saturate<int32_t, uint8_t>, s_rounded<uint8_t>,
    s_rounded<int8_t>, s_rounded<uint16_t>, s_rounded<int16_t>};
} // namespace

const ConvertKernels& convertKernels() { return s_kernels; }
} // namespace HWY_NAMESPACE
} // namespace customipp
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace customipp {
namespace {
HWY_EXPORT(convertKernels);
const ConvertKernels& kernelsConvert() { return HWY_DYNAMIC_DISPATCH(convertKernels)(); }
} // namespace
} // namespace customipp
#include "../entryPoints.h"
#include <customipp/convert.def>
#endif // HWY_ONCE
