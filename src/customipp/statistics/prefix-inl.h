// Sums of each lane and all lanes before it. Compiled once for every target.

#if defined(CUSTOMIPP_STATISTICS_PREFIX_INL_H_) == defined(HWY_TARGET_TOGGLE)
#ifdef CUSTOMIPP_STATISTICS_PREFIX_INL_H_
#undef CUSTOMIPP_STATISTICS_PREFIX_INL_H_
#else
#define CUSTOMIPP_STATISTICS_PREFIX_INL_H_
#endif

#include <hwy/highway.h>

HWY_BEFORE_NAMESPACE();
namespace customipp {
namespace HWY_NAMESPACE {
namespace hn = hwy::HWY_NAMESPACE;

/** For each lane of the upper half of every group of 2 * Half: the last lane of the lower half, and a mask.
 */
template <class T, size_t Lanes, size_t Half> struct LowerHalfLast {
    using Bits = hwy::MakeUnsigned<T>;
    alignas(64) Bits indices[Lanes] = {};
    alignas(64) Bits mask[Lanes] = {};

    constexpr LowerHalfLast()
    {
        for (size_t i = 0; i < Lanes; ++i) {
            const bool upper = i / Half % 2 == 1;
            indices[i] = upper ? Bits(i / Half * Half - 1) : Bits(i);
            mask[i] = upper ? Bits(~Bits(0)) : Bits(0);
        }
    }
};

/** To the upper half of every group of 2 * Half lanes the last lane of its lower half is added; then the same
 * with groups of twice that size, until one is the vector. */
template <size_t Half, class D> HWY_INLINE hn::Vec<D> addLowerHalves(D d, hn::Vec<D> v)
{
    if constexpr (Half < hn::MaxLanes(d)) {
        static constexpr LowerHalfLast<hn::TFromD<D>, hn::MaxLanes(D()), Half> table;
        const hn::RebindToUnsigned<D> bits;
        const auto last = hn::TableLookupLanes(v, hn::SetTableIndices(d, table.indices));
        const auto added = hn::And(hn::BitCast(bits, last), hn::Load(bits, table.mask));
        return addLowerHalves<2 * Half>(d, hn::Add(v, hn::BitCast(d, added)));
    } else {
        return v;
    }
}

/** Sums up to each lane. The order of the additions depends on the place alone, not on the vector's size, if
 * the lanes are doubles. */
template <class D> HWY_INLINE hn::Vec<D> prefixSums(D d, hn::Vec<D> v)
{
    constexpr size_t inBlock = 16 / sizeof(hn::TFromD<D>);
    v = hn::Add(v, hn::ShiftLeftLanes<1>(d, v));
    if constexpr (inBlock > 2)
        v = hn::Add(v, hn::ShiftLeftLanes<2>(d, v));
    static_assert(inBlock <= 4);
    return addLowerHalves<inBlock>(d, v);
}

/** The last lane in all lanes. */
template <class D> HWY_INLINE hn::Vec<D> lastInAll(D d, hn::Vec<D> v)
{
    using Index = hwy::MakeUnsigned<hn::TFromD<D>>;
    alignas(64) static constexpr auto indices = [] {
        struct {
            Index all[hn::MaxLanes(D())];
        } table {};
        for (Index& index : table.all)
            index = Index(hn::MaxLanes(D()) - 1);
        return table;
    }();
    return hn::TableLookupLanes(v, hn::SetTableIndices(d, indices.all));
}

} // namespace HWY_NAMESPACE
} // namespace customipp
HWY_AFTER_NAMESPACE();

#endif // toggle
