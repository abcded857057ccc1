// How many pixels lie in a range.
#include "countInRange.h"

#include <limits>

#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "statistics/countInRange.cpp"
#include <hwy/foreach_target.h>
#include <hwy/highway.h>

#include "folds-inl.h"
#include "sources-inl.h"

HWY_BEFORE_NAMESPACE();
namespace customipp {
namespace HWY_NAMESPACE {
namespace {

/** Counts what lies outside: that is what differences that stop at 0 tell. */
template <class T> struct Outside;

template <> struct Outside<uint8_t> {
    static constexpr size_t chains = 2;
    static constexpr size_t takesBeforeFlush = neverFlush;
    using D = hn::ScalableTag<uint8_t>;
    hn::Vec<D> lower, span;
    hn::Vec<D64> counts;

    HWY_INLINE Outside() : counts(hn::Zero(D64())) {}
    HWY_INLINE void setBounds(uint8_t low, uint8_t high)
    {
        lower = hn::Set(D(), low);
        span = hn::Set(D(), static_cast<uint8_t>(high - low));
    }
    HWY_INLINE void take(hn::Vec<D> v)
    {
        // Below the lower bound the first difference wraps round to beyond the span.
        const auto beyond = hn::SaturatedSub(hn::Sub(v, lower), span);
        counts = hn::Add(counts, hn::SumsOf8(hn::Min(beyond, hn::Set(D(), 1))));
    }
    HWY_INLINE void flush() {}
    HWY_INLINE void join(const Outside& other) { counts = hn::Add(counts, other.counts); }
    HWY_INLINE uint64_t total() const { return totalOf(counts); }
};

template <> struct Outside<float> {
    static constexpr size_t chains = 2;
    static constexpr size_t takesBeforeFlush = 0xFFFFFFFF;
    using D = hn::ScalableTag<float>;
    hn::Vec<D> lower, upper;
    hn::Vec<D32> some;
    hn::Vec<D64> counts;

    HWY_INLINE Outside() : some(hn::Zero(D32())), counts(hn::Zero(D64())) {}
    HWY_INLINE void setBounds(float low, float high)
    {
        lower = hn::Set(D(), low);
        upper = hn::Set(D(), high);
    }
    HWY_INLINE void take(hn::Vec<D> v)
    {
        const auto inside = hn::RebindMask(D32(), hn::And(hn::Ge(v, lower), hn::Le(v, upper)));
        some = hn::Add(some, hn::IfThenZeroElse(inside, hn::Set(D32(), 1)));
    }
    HWY_INLINE void flush()
    {
        counts = hn::Add(counts, sumsOf32(some));
        some = hn::Zero(D32());
    }
    HWY_INLINE void join(const Outside& other) { counts = hn::Add(counts, other.counts); }
    HWY_INLINE uint64_t total() const { return totalOf(counts); }
};

template <class T, int Channels> void countInRange(const Operands<T>& operands, int* counts, Bounds<T> bounds)
{
    using Source = PlanesOf<T, Channels>;
    Reduction<Source, Outside<T>> reduction;
    for (size_t i = 0; i < reduction.sets * Channels; ++i)
        reduction.folds[i].setBounds(bounds.lower[i % Channels], bounds.upper[i % Channels]);
    const Extent extent = extentOfPixels(operands, Channels, true);
    reduction.takeRows(operands, extent);
    reduction.joinSets();
    // Rows are filled up with zeros to whole blocks.
    const size_t blocks = (extent.lanes + Source::step - 1) / Source::step;
    const size_t added = (blocks * Source::step - extent.lanes) * extent.rows;
    for (size_t c = 0; c < Channels; ++c) {
        const bool holdsZero = bounds.lower[c] <= T(0) && T(0) <= bounds.upper[c];
        const uint64_t outside = reduction.folds[c].total() - (holdsZero ? 0 : added);
        const uint64_t inside = extent.lanes * extent.rows - outside;
        counts[c] = static_cast<int>(std::min<uint64_t>(inside, std::numeric_limits<int>::max()));
    }
}

constexpr CountInRangeKernels s_kernels {
    {countInRange<Ipp8u, 1>}, {countInRange<Ipp32f, 1>}, {countInRange<Ipp8u, 3>}};
} // namespace

const CountInRangeKernels& countInRangeKernels() { return s_kernels; }
} // namespace HWY_NAMESPACE
} // namespace customipp
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace customipp {
namespace {
HWY_EXPORT(countInRangeKernels);
const CountInRangeKernels& kernelsCountInRange() { return HWY_DYNAMIC_DISPATCH(countInRangeKernels)(); }
} // namespace
} // namespace customipp
#include "../entryPoints.h"
#include <customipp/countInRange.def>
#endif // HWY_ONCE
