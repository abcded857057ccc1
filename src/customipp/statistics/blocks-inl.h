// Extremes of the blocks of a row of them. Compiled once for each instruction set.

#if defined(CUSTOMIPP_STATISTICS_BLOCKS_INL_H) == defined(HWY_TARGET_TOGGLE)
#ifdef CUSTOMIPP_STATISTICS_BLOCKS_INL_H
#undef CUSTOMIPP_STATISTICS_BLOCKS_INL_H
#else
#define CUSTOMIPP_STATISTICS_BLOCKS_INL_H
#endif

#include "../movers/rows-inl.h"

HWY_BEFORE_NAMESPACE();
namespace customipp {
namespace HWY_NAMESPACE {

/** The better of two pixels, or the first: NaN is never better than what there is. */
struct Least {
    template <class T> static constexpr T start()
    {
        using Limits = std::numeric_limits<T>;
        return Limits::has_infinity ? Limits::infinity() : Limits::max();
    }
    template <class V> static HWY_INLINE V better(V best, V v)
    {
        if constexpr (hwy::IsFloat<hn::TFromV<V>>())
            return hn::IfThenElse(hn::Lt(v, best), v, best);
        else
            return hn::Min(best, v);
    }
    template <class T> static T betterOf(T best, T v) { return v < best ? v : best; }
};
struct Greatest {
    template <class T> static constexpr T start()
    {
        using Limits = std::numeric_limits<T>;
        return Limits::has_infinity ? -Limits::infinity() : Limits::lowest();
    }
    template <class V> static HWY_INLINE V better(V best, V v)
    {
        if constexpr (hwy::IsFloat<hn::TFromV<V>>())
            return hn::IfThenElse(hn::Gt(v, best), v, best);
        else
            return hn::Max(best, v);
    }
    template <class T> static T betterOf(T best, T v) { return v > best ? v : best; }
};

/** The best lane. */
template <class Order, class D> HWY_INLINE hn::TFromD<D> bestOfLanes(D d, hn::Vec<D> v)
{
    if constexpr (hn::MaxLanes(d) == 1) {
        return hn::GetLane(v);
    } else {
        const hn::Half<D> half;
        return bestOfLanes<Order>(half, Order::better(hn::LowerHalf(half, v), hn::UpperHalf(half, v)));
    }
}

/** Extremes side by side, with room for a vector behind the last; at first of pixels, at last of blocks. */
template <class T> struct Extremes {
    static constexpr size_t most = 4096;
    alignas(64) T least[most + 64];
    alignas(64) T greatest[most + 64];

    /** Nothing better follows behind the n-th. */
    void endAt(size_t n)
    {
        std::fill_n(least + n, 64, Least::start<T>());
        std::fill_n(greatest + n, 64, Greatest::start<T>());
    }
};

/** Rows of pixels onto the extremes of their columns. What is done twice at the end changes nothing. */
template <class T> struct ColumnsBlock {
    static constexpr size_t least = 1;
    static constexpr size_t mostRows = 8; ///< their lines stay in the first-level cache together, at any step
    Rows<const T> src;
    size_t rows;
    bool isFirst;
    Extremes<T>& columns;

    template <class D, class Store> HWY_INLINE void operator()(D d, size_t x, Store store) const
    {
        auto low = hn::Set(d, Least::start<T>()), high = hn::Set(d, Greatest::start<T>());
        if (!isFirst) {
            low = loadAnywhere(d, columns.least + x);
            high = loadAnywhere(d, columns.greatest + x);
        }
        for (size_t y = 0; y < rows; ++y) {
            const auto v = loadAnywhere(d, src.row(y) + x);
            low = Least::better(low, v);
            high = Greatest::better(high, v);
        }
        store(low, d, columns.least + x);
        store(high, d, columns.greatest + x);
    }
};

/** Each element becomes the best of itself and the one `distance` behind it. */
template <class Order, class T> void slide(T* row, size_t n, size_t distance)
{
    const hn::ScalableTag<T> d;
    for (size_t x = 0; x < n; x += hn::Lanes(d))
        hn::Store(Order::better(hn::Load(d, row + x), hn::LoadU(d, row + x + distance)), d, row + x);
}

/** Each element becomes the best of itself and the width - 1 behind it. Twice the length each time; the last
 * two may overlap. */
template <class Order, class T> void slideOver(T* row, size_t n, size_t width)
{
    size_t length = 1;
    for (; 2 * length <= width; length *= 2)
        slide<Order>(row, n, length);
    if (length < width)
        slide<Order>(row, n, width - length);
}

/** Every width-th element of a row side by side at its start, as many at once as 16 bytes hold of them. */
template <class T> void keepEvery(size_t width, T* row, size_t n)
{
    const hn::CappedTag<hwy::MakeUnsigned<T>, 16 / sizeof(T)> d;
    const hn::Repartition<uint8_t, decltype(d)> d8;
    auto* const bits = reinterpret_cast<hwy::MakeUnsigned<T>*>(row);
    const size_t atOnce = (hn::Lanes(d) + width - 1) / width;
    alignas(16) uint8_t order[16] = {};
    for (size_t i = 0; i < atOnce * sizeof(T); ++i)
        order[i] = uint8_t(i / sizeof(T) * width * sizeof(T) + i % sizeof(T));
    const auto places = hn::BitCast(d, hn::Load(d8, order));
    for (size_t from = 0, to = 0; from < n; from += atOnce * width, to += atOnce)
        hn::StoreU(hn::TableLookupBytes(hn::LoadU(d, bits + from), places), d, bits + to);
}

/** Some blocks of a row of them. */
template <class T> struct BlockRun {
    Rows<const T> src; ///< from the first pixel of the first block
    size_t width;
    size_t height;
    size_t blockWidth;
};

/** Blocks that are narrower than a vector. */
template <class T> void narrowBlocks(const BlockRun<T>& run, Extremes<T>& blocks)
{
    constexpr size_t together = ColumnsBlock<T>::mostRows;
    for (size_t y = 0; y < run.height; y += together) {
        const Rows<const T> rows {run.src.row(y), run.src.step};
        coverRow(hn::ScalableTag<T>(), run.width,
            ColumnsBlock<T> {rows, std::min(together, run.height - y), y == 0, blocks});
    }
    blocks.endAt(run.width);
    slideOver<Least>(blocks.least, run.width, run.blockWidth);
    slideOver<Greatest>(blocks.greatest, run.width, run.blockWidth);
    keepEvery(run.blockWidth, blocks.least, run.width);
    keepEvery(run.blockWidth, blocks.greatest, run.width);
}

/** A block that is at least as wide as a vector, or the narrower rest of one. */
template <class D, class T>
HWY_INLINE void wideBlock(
    D d, const BlockRun<T>& run, size_t x, size_t n, T& leastOfBlock, T& greatestOfBlock)
{
    const size_t step = hn::Lanes(d);
    if (n < step) {
        if constexpr (hn::MaxLanes(d) > 1)
            return wideBlock(hn::Half<D>(), run, x, n, leastOfBlock, greatestOfBlock);
    }
    auto least = hn::Set(d, Least::start<T>()), greatest = hn::Set(d, Greatest::start<T>());
    const auto take = [&](const T* from) HWY_ATTR {
        const auto v = loadAnywhere(d, from);
        least = Least::better(least, v);
        greatest = Greatest::better(greatest, v);
    };
    for (size_t y = 0; y < run.height; ++y) {
        const T* const row = run.src.row(y) + x;
        for (size_t i = 0; i + step <= n; i += step)
            take(row + i);
        take(row + n - step);
    }
    leastOfBlock = bestOfLanes<Least>(d, least);
    greatestOfBlock = bestOfLanes<Greatest>(d, greatest);
}

template <class T> void wideBlocks(const BlockRun<T>& run, Extremes<T>& blocks)
{
    size_t block = 0;
    for (size_t x = 0; x < run.width; x += run.blockWidth, ++block)
        wideBlock(hn::ScalableTag<T>(), run, x, std::min(run.blockWidth, run.width - x), blocks.least[block],
            blocks.greatest[block]);
}

} // namespace HWY_NAMESPACE
} // namespace customipp
HWY_AFTER_NAMESPACE();

#endif // toggle
