// Least and greatest pixel of each block of an image.
#include "blockMinMax.h"

#include <algorithm>
#include <cstring>
#include <limits>

#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "statistics/blockMinMax.cpp"
#include <hwy/foreach_target.h>
#include <hwy/highway.h>

#include "../movers/rows-inl.h"

HWY_BEFORE_NAMESPACE();
namespace customipp {
namespace HWY_NAMESPACE {
namespace {

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

/** One row for each order, with room for a vector behind the last pixel. */
template <class T> struct Extremes {
    static constexpr size_t most = 4096;
    alignas(64) T least[most + 64];
    alignas(64) T greatest[most + 64];

    void begin(size_t n)
    {
        std::fill_n(least, n, Least::start<T>());
        std::fill_n(greatest, n, Greatest::start<T>());
    }
};

/** What a pair of extremes comes to: of two zeros the positive one, and NaN where there was nothing else. */
template <class T> struct Pair {
    T least = Least::start<T>();
    T greatest = Greatest::start<T>();

    void take(T low, T high)
    {
        least = Least::betterOf(least, low);
        greatest = Greatest::betterOf(greatest, high);
    }
    void finish()
    {
        if constexpr (hwy::IsFloat<T>()) {
            if (least > greatest)
                least = greatest = std::numeric_limits<T>::quiet_NaN();
            least += T(0);
            greatest += T(0);
        }
    }
};

/** The results, block by block; whoever does not want them gave null. */
template <class T> class BlockResults {
public:
    explicit BlockResults(const BlockMinMaxMove<T>& move) : m_move(move) {}
    void beginRow(size_t row)
    {
        m_least = m_move.least.first ? m_move.least.row(row) : nullptr;
        m_greatest = m_move.greatest.first ? m_move.greatest.row(row) : nullptr;
    }
    HWY_INLINE void set(size_t block, T least, T greatest)
    {
        Pair<T> pair {least, greatest};
        m_all.take(least, greatest);
        pair.finish();
        if (m_least)
            std::memcpy(m_least + block, &pair.least, sizeof(T));
        if (m_greatest)
            std::memcpy(m_greatest + block, &pair.greatest, sizeof(T));
    }
    void finish()
    {
        m_all.finish();
        if (m_move.leastOfAll)
            *m_move.leastOfAll = m_all.least;
        if (m_move.greatestOfAll)
            *m_move.greatestOfAll = m_all.greatest;
    }

private:
    const BlockMinMaxMove<T>& m_move;
    T* m_least = nullptr;
    T* m_greatest = nullptr;
    Pair<T> m_all;
};

/** A row of pixels onto the extremes of its columns. What is done twice at the end changes nothing. */
template <class T> struct ColumnsBlock {
    static constexpr size_t least = 1;
    const T* src;
    Extremes<T>* columns;

    template <class D, class Store> HWY_INLINE void operator()(D d, size_t x, Store store) const
    {
        const auto v = loadAnywhere(d, src + x);
        store(Least::better(loadAnywhere(d, columns->least + x), v), d, columns->least + x);
        store(Greatest::better(loadAnywhere(d, columns->greatest + x), v), d, columns->greatest + x);
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

/** A row of blocks that are narrower than a vector. */
template <class T>
void narrowBlocks(const BlockMinMaxMove<T>& move, size_t firstRow, size_t endRow, BlockResults<T>& results)
{
    const size_t width = move.blockWidth, tile = Extremes<T>::most / width * width;
    Extremes<T> columns;
    for (size_t x = 0; x < move.area.width; x += tile) {
        const size_t n = std::min(tile, move.area.width - x);
        columns.begin(n + 64);
        for (size_t y = firstRow; y < endRow; ++y)
            coverRow(hn::ScalableTag<T>(), n, ColumnsBlock<T> {move.src.row(y) + x, &columns});
        slideOver<Least>(columns.least, n, width);
        slideOver<Greatest>(columns.greatest, n, width);
        for (size_t i = 0; i < n; i += width)
            results.set((x + i) / width, columns.least[i], columns.greatest[i]);
    }
}

/** A block that is at least as wide as a vector, or the narrower rest of one. */
template <class T, class D>
HWY_INLINE Pair<T> wideBlock(
    D d, const BlockMinMaxMove<T>& move, size_t x, size_t n, size_t firstRow, size_t endRow)
{
    const size_t step = hn::Lanes(d);
    if (n < step) {
        if constexpr (hn::MaxLanes(d) > 1)
            return wideBlock<T>(hn::Half<D>(), move, x, n, firstRow, endRow);
    }
    auto least = hn::Set(d, Least::start<T>()), greatest = hn::Set(d, Greatest::start<T>());
    const auto take = [&](const T* from) HWY_ATTR {
        const auto v = loadAnywhere(d, from);
        least = Least::better(least, v);
        greatest = Greatest::better(greatest, v);
    };
    for (size_t y = firstRow; y < endRow; ++y) {
        const T* const row = move.src.row(y) + x;
        for (size_t i = 0; i + step <= n; i += step)
            take(row + i);
        take(row + n - step);
    }
    return {bestOfLanes<Least>(d, least), bestOfLanes<Greatest>(d, greatest)};
}

template <class T>
void wideBlocks(const BlockMinMaxMove<T>& move, size_t firstRow, size_t endRow, BlockResults<T>& results)
{
    size_t block = 0;
    for (size_t x = 0; x < move.area.width; x += move.blockWidth) {
        const size_t n = std::min(move.blockWidth, move.area.width - x);
        const Pair<T> pair = wideBlock<T>(hn::ScalableTag<T>(), move, x, n, firstRow, endRow);
        results.set(block++, pair.least, pair.greatest);
    }
}

template <class T> void blockMinMax(const BlockMinMaxMove<T>& move)
{
    const bool narrow = move.blockWidth < hn::Lanes(hn::ScalableTag<T>());
    BlockResults<T> results(move);
    size_t row = 0;
    for (size_t y = 0; y < move.area.height; y += move.blockHeight) {
        const size_t end = std::min(y + move.blockHeight, move.area.height);
        results.beginRow(row++);
        if (narrow)
            narrowBlocks(move, y, end, results);
        else
            wideBlocks(move, y, end, results);
    }
    results.finish();
}

constexpr BlockMinMaxKernels s_kernels {
    blockMinMax<Ipp8u>, blockMinMax<Ipp16u>, blockMinMax<Ipp16s>, blockMinMax<Ipp32f>};
} // namespace

const BlockMinMaxKernels& blockMinMaxKernels() { return s_kernels; }
} // namespace HWY_NAMESPACE
} // namespace customipp
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace customipp {
namespace {
HWY_EXPORT(blockMinMaxKernels);
const BlockMinMaxKernels& kernelsBlockMinMax() { return HWY_DYNAMIC_DISPATCH(blockMinMaxKernels)(); }
} // namespace
} // namespace customipp
#include "../entryPoints.h"
#include <customipp/blockMinMax.def>
#endif // HWY_ONCE
