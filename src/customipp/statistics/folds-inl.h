// Sums, sums of squares and greatest values of vectors without a sign, or of doubles. Compiled once for every
// target.
//
// Each fold has total(): over all lanes, exact for integers, in the fixed order of halves for doubles.

#if defined(CUSTOMIPP_STATISTICS_FOLDS_INL_H) == defined(HWY_TARGET_TOGGLE)
#ifdef CUSTOMIPP_STATISTICS_FOLDS_INL_H
#undef CUSTOMIPP_STATISTICS_FOLDS_INL_H
#else
#define CUSTOMIPP_STATISTICS_FOLDS_INL_H
#endif

#include "reduce-inl.h"

HWY_BEFORE_NAMESPACE();
namespace customipp {
namespace HWY_NAMESPACE {
namespace {

using D16 = hn::ScalableTag<uint16_t>;
using D32 = hn::ScalableTag<uint32_t>;
using D64 = hn::ScalableTag<uint64_t>;
using DDouble = hn::ScalableTag<double>;

template <class V> HWY_INLINE uint64_t totalOf(V sums) { return hn::GetLane(hn::SumOfLanes(D64(), sums)); }

/** The upper half of the lanes onto the lower half, again and again. */
template <class D> HWY_INLINE double totalInHalves(D d, hn::Vec<D> sums)
{
    if constexpr (hn::MaxLanes(d) == 1) {
        return hn::GetLane(sums);
    } else {
        const hn::Half<D> half;
        return totalInHalves(half, hn::Add(hn::LowerHalf(half, sums), hn::UpperHalf(half, sums)));
    }
}

/** Two neighbours each. */
template <class V> HWY_INLINE hn::Vec<D64> sumsOf32(V v)
{
    const auto wide = hn::BitCast(D64(), v);
    return hn::Add(hn::And(wide, hn::Set(D64(), 0xFFFFFFFFu)), hn::ShiftRight<32>(wide));
}

/** Sum of the values; of doubles without their sign. */
template <class T> struct Sum;

template <> struct Sum<uint8_t> {
    static constexpr size_t chains = 4;
    static constexpr size_t takesBeforeFlush = neverFlush;
    hn::Vec<D64> sums;

    HWY_INLINE Sum() : sums(hn::Zero(D64())) {}
    template <class V> HWY_INLINE void take(V v) { sums = hn::Add(sums, hn::SumsOf8(v)); }
    HWY_INLINE void flush() {}
    HWY_INLINE void join(const Sum& other) { sums = hn::Add(sums, other.sums); }
    HWY_INLINE uint64_t total() const { return totalOf(sums); }
};

template <> struct Sum<uint16_t> {
    static constexpr size_t chains = 2;
    static constexpr size_t takesBeforeFlush = 32768; // of two values each
    hn::Vec<D32> some;
    hn::Vec<D64> sums;

    HWY_INLINE Sum() : some(hn::Zero(D32())), sums(hn::Zero(D64())) {}
    template <class V> HWY_INLINE void take(V v)
    {
        const auto pairs = hn::BitCast(D32(), v);
        const auto even = hn::And(pairs, hn::Set(D32(), 0xFFFF));
        some = hn::Add(some, hn::Add(even, hn::ShiftRight<16>(pairs)));
    }
    HWY_INLINE void flush()
    {
        sums = hn::Add(sums, sumsOf32(some));
        some = hn::Zero(D32());
    }
    HWY_INLINE void join(const Sum& other) { sums = hn::Add(sums, other.sums); }
    HWY_INLINE uint64_t total() const { return totalOf(sums); }
};

template <> struct Sum<double> {
    static constexpr size_t chains = 1;
    static constexpr size_t takesBeforeFlush = neverFlush;
    hn::Vec<DDouble> sums;

    HWY_INLINE Sum() : sums(hn::Zero(DDouble())) {}
    HWY_INLINE void take(hn::Vec<DDouble> v) { sums = hn::Add(sums, hn::Abs(v)); }
    HWY_INLINE void flush() {}
    HWY_INLINE void join(const Sum& other) { sums = hn::Add(sums, other.sums); }
    HWY_INLINE double total() const { return totalInHalves(DDouble(), sums); }
};

/** Sum of the squares. */
template <class T> struct SumOfSquares;

template <> struct SumOfSquares<uint8_t> {
    static constexpr size_t chains = 2;
    static constexpr size_t takesBeforeFlush = 16384; // of two squares each, below 2^31
    using DSigned = hn::RebindToSigned<D32>;
    hn::Vec<DSigned> even, odd, evenMore, oddMore;
    hn::Vec<D64> sums;

    HWY_INLINE SumOfSquares() : sums(hn::Zero(D64())) { clear(); }
    template <class V> HWY_INLINE void take(V v)
    {
        const hn::RebindToSigned<D16> d;
        const auto pairs = hn::BitCast(D16(), v);
        const auto low = hn::BitCast(d, hn::And(pairs, hn::Set(D16(), 0xFF)));
        const auto high = hn::BitCast(d, hn::ShiftRight<8>(pairs));
        even = hn::ReorderWidenMulAccumulate(DSigned(), low, low, even, evenMore);
        odd = hn::ReorderWidenMulAccumulate(DSigned(), high, high, odd, oddMore);
    }
    HWY_INLINE void flush()
    {
        const auto some = hn::Add(sumsOf32(even), sumsOf32(odd));
        sums = hn::Add(sums, hn::Add(some, hn::Add(sumsOf32(evenMore), sumsOf32(oddMore))));
        clear();
    }
    HWY_INLINE void join(const SumOfSquares& other) { sums = hn::Add(sums, other.sums); }
    HWY_INLINE uint64_t total() const { return totalOf(sums); }

private:
    HWY_INLINE void clear() { even = odd = evenMore = oddMore = hn::Zero(DSigned()); }
};

template <> struct SumOfSquares<uint16_t> {
    static constexpr size_t chains = 2;
    static constexpr size_t takesBeforeFlush = neverFlush;
    hn::Vec<D64> sums;

    HWY_INLINE SumOfSquares() : sums(hn::Zero(D64())) {}
    template <class V> HWY_INLINE void take(V v)
    {
        const auto pairs = hn::BitCast(D32(), v);
        const auto even = hn::And(pairs, hn::Set(D32(), 0xFFFF)), odd = hn::ShiftRight<16>(pairs);
        const auto both = hn::Add(sumsOf32(hn::Mul(even, even)), sumsOf32(hn::Mul(odd, odd)));
        sums = hn::Add(sums, both);
    }
    HWY_INLINE void flush() {}
    HWY_INLINE void join(const SumOfSquares& other) { sums = hn::Add(sums, other.sums); }
    HWY_INLINE uint64_t total() const { return totalOf(sums); }
};

template <> struct SumOfSquares<double> {
    static constexpr size_t chains = 1;
    static constexpr size_t takesBeforeFlush = neverFlush;
    hn::Vec<DDouble> sums;

    HWY_INLINE SumOfSquares() : sums(hn::Zero(DDouble())) {}
    HWY_INLINE void take(hn::Vec<DDouble> v) { sums = hn::Add(sums, hn::Mul(v, v)); }
    HWY_INLINE void flush() {}
    HWY_INLINE void join(const SumOfSquares& other) { sums = hn::Add(sums, other.sums); }
    HWY_INLINE double total() const { return totalInHalves(DDouble(), sums); }
};

/** The greatest value; of doubles without their sign, and without those that are NaN. 0 if there is none. */
template <class T> struct Greatest {
    static constexpr size_t chains = 4;
    static constexpr size_t takesBeforeFlush = neverFlush;
    using D = hn::ScalableTag<T>;
    hn::Vec<D> greatest;

    HWY_INLINE Greatest() : greatest(hn::Zero(D())) {}
    HWY_INLINE void take(hn::Vec<D> v)
    {
        if constexpr (hwy::IsFloat<T>())
            v = hn::Abs(v);
        greatest = greaterOf(v, greatest);
    }
    HWY_INLINE void flush() {}
    HWY_INLINE void join(const Greatest& other) { greatest = greaterOf(other.greatest, greatest); }
    HWY_INLINE T total() const
    {
        T lanes[hn::MaxLanes(D())];
        hn::StoreU(greatest, D(), lanes);
        return *std::max_element(lanes, lanes + hn::MaxLanes(D()));
    }
};

/** Two folds over the same vectors. */
template <class First, class Second> struct Both {
    static constexpr size_t chains = std::min(First::chains, Second::chains);
    static constexpr size_t takesBeforeFlush = std::min(First::takesBeforeFlush, Second::takesBeforeFlush);
    First first;
    Second second;

    HWY_INLINE Both() {}
    template <class V> HWY_INLINE void take(V v)
    {
        first.take(v);
        second.take(v);
    }
    HWY_INLINE void flush()
    {
        first.flush();
        second.flush();
    }
    HWY_INLINE void join(const Both& other)
    {
        first.join(other.first);
        second.join(other.second);
    }
};

} // namespace
} // namespace HWY_NAMESPACE
} // namespace customipp
HWY_AFTER_NAMESPACE();

#endif // per-target include guard
