// Reductions: a source gives the pixels of a row in blocks of vectors, folds take them in. Compiled once for
// every target.
//
// A source gives blocks of `vectors` vectors. Places and lengths along its row are in its own unit, of which
// a block holds `step`: lanes or pixels. block(x) is the block at x; rest(x, n, memory) is a source for the
// block that holds what remains of a row of n from x on, less than a block, in the given memory; what is
// behind the row's end in that block changes no result.
//
// A fold takes in the vectors of one place of the block: take(v). At least `chains` folds are at work at
// once, so that one does not wait for another; those of the same place are joined in the end: join(fold). A
// fold whose lanes would overflow says after how many vectors it wants flush(). Where the order counts, as
// for sums of floats, there is one set, and the vectors of a block hold the same number of lanes on every
// target: the lanes of a block are the terms of separate sums.

#if defined(CUSTOMIPP_STATISTICS_REDUCE_INL_H) == defined(HWY_TARGET_TOGGLE)
#ifdef CUSTOMIPP_STATISTICS_REDUCE_INL_H
#undef CUSTOMIPP_STATISTICS_REDUCE_INL_H
#else
#define CUSTOMIPP_STATISTICS_REDUCE_INL_H
#endif

#include "../rows.h"

#include <hwy/highway.h>

#include <algorithm>
#include <cstring>
#include <utility>

HWY_BEFORE_NAMESPACE();
namespace customipp {
namespace HWY_NAMESPACE {
namespace {

namespace hn = hwy::HWY_NAMESPACE;

template <class V, size_t Count> struct Block {
    V v[Count];
};

/**
 * Lanes as they lie in memory, with the same channel at the same place of every block: for folds that keep
 * their lanes apart. The unit is the lane.
 */
template <class T, int Channels> struct LanesOf {
    using D = hn::ScalableTag<T>;
    static constexpr size_t vectors = Channels == 3 ? 3 : 1;
    static constexpr size_t step = vectors * hn::MaxLanes(D());
    using Memory = T[step];
    const T* row;

    HWY_INLINE Block<hn::Vec<D>, vectors> block(size_t x) const
    {
        Block<hn::Vec<D>, vectors> result;
        result.v[0] = hn::LoadU(D(), row + x);
        if constexpr (vectors == 3) {
            result.v[1] = hn::LoadU(D(), row + x + hn::MaxLanes(D()));
            result.v[2] = hn::LoadU(D(), row + x + 2 * hn::MaxLanes(D()));
        }
        return result;
    }

    /** Repeats pixels of the row, so this is for folds that may take a pixel twice. */
    HWY_INLINE LanesOf rest(size_t x, size_t n, Memory& memory) const
    {
        if (n >= step)
            return {row + n - step};
        for (size_t filled = 0; filled < step; filled += n - x)
            std::memcpy(memory + filled, row + x, std::min(n - x, step - filled) * sizeof(T));
        return {memory};
    }
};

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
            alignas(64) typename Source::Memory memory;
            takeBlock<0>(source.rest(x, n, memory).block(0), std::make_index_sequence<vectors>());
            flush(std::make_index_sequence<sets * vectors>());
        }
    }

    /** Joins the sets into the first one. */
    HWY_INLINE void join() { joinSets(std::make_index_sequence<(sets - 1) * vectors>()); }

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
    template <size_t... I> HWY_INLINE void joinSets(std::index_sequence<I...>)
    {
        (folds[I % vectors].join(folds[vectors + I]), ...);
    }
};

/** Takes in all rows of an image; `source` makes the source for the row of a number. */
template <class Source, class Fold, class Image>
HWY_INLINE void reduceRows(Reduction<Source, Fold>& io_reduction, const Image& image, Extent extent)
{
    for (size_t y = 0; y < extent.rows; ++y)
        io_reduction.takeRow(image.row(y), extent.lanes);
    io_reduction.join();
}

} // namespace
} // namespace HWY_NAMESPACE
} // namespace customipp
HWY_AFTER_NAMESPACE();

#endif // per-target include guard
