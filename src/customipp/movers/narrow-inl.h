// Vectors of a wide type to one of a narrow type. Compiled once for each instruction set.

#if defined(CUSTOMIPP_MOVERS_NARROW_INL_H) == defined(HWY_TARGET_TOGGLE)
#ifdef CUSTOMIPP_MOVERS_NARROW_INL_H
#undef CUSTOMIPP_MOVERS_NARROW_INL_H
#else
#define CUSTOMIPP_MOVERS_NARROW_INL_H
#endif

#include "bytes-inl.h"
#include "rows-inl.h"

HWY_BEFORE_NAMESPACE();
namespace customipp {
namespace HWY_NAMESPACE {
namespace hn = hwy::HWY_NAMESPACE;

/** Added to a float of less than 22 bits this leaves it in the lowest bits, rounded to the nearest integer
 * (ties to even), in two's complement: the same on every processor. */
inline constexpr float integerInFloat = 12582912.0f; // 1.5 * 2^23

/** Such sums, as unsigned lanes. */
template <class V> HWY_INLINE auto integersOf(V sums)
{
    return hn::BitCast(hn::RebindToUnsigned<hn::DFromV<V>>(), sums);
}

/**
 * A block for coverRow: two or four vectors of S to one of D. `limit` is a function object: limit.template
 * of<D>(v) gives unsigned lanes of the width of S, whose lower bits are the result.
 */
template <class S, class D, class Limit> struct Narrow {
    using Dst = D;
    static constexpr size_t least = 16 / sizeof(D);
    const S* src;
    D* dst;
    Limit limit {};

    template <class Tag, class Store> HWY_INLINE void operator()(Tag d, size_t x, Store store) const
    {
        const hn::Repartition<S, Tag> ds;
        const size_t n = hn::Lanes(ds);
        const hn::RebindToUnsigned<Tag> du;
        const S* from = src + x;
        const auto a = limited(ds, from), b = limited(ds, from + n);
        if constexpr (sizeof(S) == 2 * sizeof(D)) {
            store(hn::BitCast(d, hn::BitCast(du, joinHalves(a, b))), d, dst + x);
        } else {
            const auto c = limited(ds, from + 2 * n), e = limited(ds, from + 3 * n);
            store(hn::BitCast(d, joinQuarters(a, b, c, e)), d, dst + x);
        }
    }

    HWY_INLINE void one(size_t x) const
    {
        const auto value = static_cast<D>(hn::GetLane(limited(hn::CappedTag<S, 1>(), src + x)));
        hwy::CopyBytes<sizeof(D)>(&value, dst + x);
    }

    template <class Tag> HWY_INLINE auto limited(Tag ds, const S* from) const
    {
        return limit.template of<D>(loadAnywhere(ds, from));
    }
};

/** Covers all rows, past the caches if the destination does not fit them. */
template <class S, class Block, class... Rest>
HWY_INLINE void coverRows(const Move& move, const Rest&... rest)
{
    using D = typename Block::Dst;
    const hn::ScalableTag<D> d;
    const bool streams = move.isBeyondCache();
    for (size_t y = 0; y < move.area.height; ++y) {
        const Block block {
            reinterpret_cast<const S*>(move.src.row(y)), reinterpret_cast<D*>(move.dst.row(y)), rest...};
        if (streams)
            streamRow(d, move.area.width, block);
        else
            coverRow(d, move.area.width, block);
    }
    if (streams)
        hwy::FlushStream();
}

} // namespace HWY_NAMESPACE
} // namespace customipp
HWY_AFTER_NAMESPACE();

#endif // toggle
