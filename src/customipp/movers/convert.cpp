// Converts between pixel types.
#include "convert.h"

#include <limits>

#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "movers/convert.cpp"
#include <hwy/foreach_target.h>
#include <hwy/highway.h>

#include "bytes-inl.h"
#include "rows-inl.h"

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

// Limits: a vector to unsigned lanes of the same width, whose lower bits are the result and whose upper bits
// are 0.

/** Of integers. */
struct Saturate {
    template <class D, class V> static HWY_INLINE auto limit(V v)
    {
        const hn::DFromV<V> ds;
        using S = hn::TFromV<V>;
        v = hn::Min(v, hn::Set(ds, S(std::numeric_limits<D>::max())));
        if constexpr (hwy::IsSigned<S>())
            v = hn::Max(v, hn::Set(ds, S(std::numeric_limits<D>::lowest())));
        return hn::BitCast(hn::RebindToUnsigned<decltype(ds)>(), v);
    }
};

/**
 * Of floats, with one of the rounding modes. The limit comes first. The sum with 1.5 * 2^23 then is a float
 * whose last bits are the nearest integer (ties to even) in two's complement: the same on every processor.
 */
template <int Mode> struct Round {
    template <class D, class V> static HWY_INLINE auto limit(V v)
    {
        const hn::DFromV<V> df;
        const hn::RebindToUnsigned<decltype(df)> du;
        const auto lowest = hn::Set(df, float(std::numeric_limits<D>::lowest()));
        v = hn::IfThenElse(hn::Gt(v, lowest), v, lowest); // NaN is not greater
        v = hn::Min(v, hn::Set(df, float(std::numeric_limits<D>::max())));
        const auto sum = hn::BitCast(du, hn::Add(whole(v), hn::Set(df, 12582912.0f)));
        return hn::And(sum, hn::Set(du, (1u << (8 * sizeof(D))) - 1));
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

/** To a narrower type: two or four vectors to one. */
template <class S, class D, class Limit> struct Narrow {
    using Dst = D;
    static constexpr size_t least = 16 / sizeof(D);
    const S* src;
    D* dst;

    template <class Tag, class Store> HWY_INLINE void operator()(Tag d, size_t x, Store store) const
    {
        const hn::Repartition<S, Tag> ds;
        const size_t n = hn::Lanes(ds);
        const hn::RebindToUnsigned<Tag> du;
        const S* from = src + x;
        const auto a = limit(ds, from), b = limit(ds, from + n);
        if constexpr (sizeof(S) == 2 * sizeof(D)) {
            store(hn::BitCast(d, hn::BitCast(du, joinHalves(a, b))), d, dst + x);
        } else {
            const auto c = limit(ds, from + 2 * n), e = limit(ds, from + 3 * n);
            store(hn::BitCast(d, joinQuarters(a, b, c, e)), d, dst + x);
        }
    }

    HWY_INLINE void one(size_t x) const
    {
        const auto value = static_cast<D>(hn::GetLane(limit(hn::CappedTag<S, 1>(), src + x)));
        hwy::CopyBytes<sizeof(D)>(&value, dst + x);
    }

    template <class Tag> static HWY_INLINE auto limit(Tag ds, const S* from)
    {
        return Limit::template limit<D>(loadAnywhere(ds, from));
    }
};

template <class S, class Block> void convert(const Move& move)
{
    using D = typename Block::Dst;
    const hn::ScalableTag<D> d;
    const bool streams = move.isBeyondCache();
    for (size_t y = 0; y < move.area.height; ++y) {
        const Block block {
            reinterpret_cast<const S*>(move.src.row(y)), reinterpret_cast<D*>(move.dst.row(y))};
        if (streams)
            streamRow(d, move.area.width, block);
        else
            coverRow(d, move.area.width, block);
    }
    if (streams)
        hwy::FlushStream();
}

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
