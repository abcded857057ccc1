// Reductions: a source gives the pixels of a row in blocks of vectors, folds take them in. Compiled once for
// every target.
//
// A source is made from the operands and the number of a row, and gives blocks of `vectors` vectors. Places
// and lengths along its row are in its own unit, of which a block holds `step`: lanes or pixels. block(x) is
// the block at x; rest(x, n, memory) is a source for the block that holds what remains of a row of n from x
// on, less than a block; what it has behind the row's end changes no result: zeros, unless it says otherwise.
//
// A fold takes in the vectors of one place of the block: take(v). At least `chains` folds are at work at
// once, so that one does not wait for another; those of the same place are joined in the end: join(fold). A
// fold whose lanes would overflow says after how many vectors it wants flush(). Where the order counts, as
// for sums of floats, one chain is enough, and the blocks hold the same number of lanes on every target: each
// lane of a block is a sum of its own.

#if defined(CUSTOMIPP_STATISTICS_REDUCE_INL_H) == defined(HWY_TARGET_TOGGLE)
#ifdef CUSTOMIPP_STATISTICS_REDUCE_INL_H
#undef CUSTOMIPP_STATISTICS_REDUCE_INL_H
#else
#define CUSTOMIPP_STATISTICS_REDUCE_INL_H
#endif

#include "reduce.h"

#include <hwy/highway.h>

#include <algorithm>
#include <cstring>
#include <utility>

HWY_BEFORE_NAMESPACE();
namespace customipp {
namespace HWY_NAMESPACE {
namespace {

namespace hn = hwy::HWY_NAMESPACE;

/** What a fold says that can take any number of vectors. */
inline constexpr size_t neverFlush = ~size_t {0};

template <class V, size_t Count> struct Block {
    V v[Count];
};

// The lesser and the greater of two, lane by lane; the one that was kept so far if the next is NaN.

template <class V> HWY_INLINE V lesserOf(V next, V kept)
{
    // These processors answer with the second operand when one is NaN; others answer with the NaN.
    if constexpr (HWY_ARCH_X86 || !hwy::IsFloat<hn::TFromV<V>>())
        return hn::Min(next, kept);
    else
        return hn::IfThenElse(hn::Lt(next, kept), next, kept);
}

template <class V> HWY_INLINE V greaterOf(V next, V kept)
{
    if constexpr (HWY_ARCH_X86 || !hwy::IsFloat<hn::TFromV<V>>())
        return hn::Max(next, kept);
    else
        return hn::IfThenElse(hn::Gt(next, kept), next, kept);
}

/** All folds of a reduction: sets of one for each vector of a source's block, which take turns. */
template <class Source, class Fold> struct Reduction {
    static constexpr size_t vectors = Source::vectors;
    static constexpr size_t sets = std::max<size_t>(Fold::chains / vectors, 1);
    Fold folds[sets * vectors];

    HWY_INLINE Reduction() {}

    /** Takes in a row, whose length is in the unit of the source. */
    HWY_INLINE void takeRow(const Source& source, size_t n)
    {
        size_t x = 0;
        while (n - x >= Source::step) {
            const size_t blocks = std::min((n - x) / Source::step, Fold::takesBeforeFlush);
            const size_t end = x + blocks * Source::step;
            for (; end - x >= sets * Source::step; x += sets * Source::step)
                takeSets(source, x, std::make_index_sequence<sets>());
            for (; x < end; x += Source::step)
                takeBlock<0>(source.block(x), std::make_index_sequence<vectors>());
            flush(std::make_index_sequence<sets * vectors>());
        }
        if (x < n) {
            typename Source::Memory memory;
            takeBlock<0>(source.rest(x, n, memory).block(0), std::make_index_sequence<vectors>());
            flush(std::make_index_sequence<sets * vectors>());
        }
    }

    /** Takes in all rows of the operands; rows of `extent.lanes` in the unit of the source. */
    template <class T> HWY_INLINE void takeRows(const Operands<T>& operands, Extent extent)
    {
        for (size_t y = 0; y < extent.rows; ++y)
            takeRow(Source(operands, y), extent.lanes);
    }

    /** Joins the sets into the first one. */
    HWY_INLINE void joinSets() { joinFolds<vectors>(std::make_index_sequence<(sets - 1) * vectors>()); }

    /** Joins the folds of a block into the first one: those of the second half into the first half, again and
     * again, as then the order is the same for every number of vectors. */
    template <size_t Count = vectors> HWY_INLINE void joinVectors()
    {
        if constexpr (Count > 1) {
            joinFolds<Count / 2>(std::make_index_sequence<Count / 2>());
            joinVectors<Count / 2>();
        }
    }

private:
    template <size_t... Set>
    HWY_INLINE void takeSets(const Source& source, size_t x, std::index_sequence<Set...>)
    {
        (takeBlock<Set>(source.block(x + Set * Source::step), std::make_index_sequence<vectors>()), ...);
    }
    template <size_t Set, class Vectors, size_t... I>
    HWY_INLINE void takeBlock(const Vectors& block, std::index_sequence<I...>)
    {
        (folds[Set * vectors + I].take(block.v[I]), ...);
    }
    template <size_t... I> HWY_INLINE void flush(std::index_sequence<I...>) { (folds[I].flush(), ...); }
    template <size_t Into, size_t... I> HWY_INLINE void joinFolds(std::index_sequence<I...>)
    {
        (folds[I % Into].join(folds[Into + I]), ...);
    }
};

} // namespace
} // namespace HWY_NAMESPACE
} // namespace customipp
HWY_AFTER_NAMESPACE();

#endif // per-target include guard
