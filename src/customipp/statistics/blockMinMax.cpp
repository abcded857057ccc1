// Least and greatest pixel of each block of an image.
#include "blockMinMax.h"

#include <algorithm>
#include <limits>

#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "statistics/blockMinMax.cpp"
#include <hwy/foreach_target.h>
#include <hwy/highway.h>

#include "blocks-inl.h"

HWY_BEFORE_NAMESPACE();
namespace customipp {
namespace HWY_NAMESPACE {
namespace {

/** The best of a row, behind which nothing better follows. */
template <class Order, class T> T bestOfRow(const T* row, size_t n)
{
    const hn::ScalableTag<T> d;
    auto best = hn::Set(d, Order::template start<T>());
    for (size_t x = 0; x < n; x += hn::Lanes(d))
        best = Order::better(best, hn::Load(d, row + x));
    return bestOfLanes<Order>(d, best);
}

/** Extremes as they are given to the caller: of two zeros the positive one, and NaN where there was nothing
 * else. Whoever does not want them gave null. */
template <class T> struct ResultsBlock {
    static constexpr size_t least = 1;
    const T* fromLeast;
    const T* fromGreatest;
    T* toLeast;
    T* toGreatest;

    template <class D, class Store> HWY_INLINE void operator()(D d, size_t x, Store store) const
    {
        auto low = loadAnywhere(d, fromLeast + x), high = loadAnywhere(d, fromGreatest + x);
        if constexpr (hwy::IsFloat<T>()) {
            const auto isNothing = hn::Gt(low, high);
            const auto zero = hn::Zero(d);
            const auto nan = hn::Set(d, std::numeric_limits<T>::quiet_NaN());
            low = hn::IfThenElse(isNothing, nan, hn::Add(low, zero));
            high = hn::IfThenElse(isNothing, nan, hn::Add(high, zero));
        }
        if (toLeast)
            store(low, d, toLeast + x);
        if (toGreatest)
            store(high, d, toGreatest + x);
    }
};

/** The results, run by run. */
template <class T> class BlockResults {
public:
    explicit BlockResults(const BlockMinMaxMove<T>& move) : m_move(move) {}

    /** `count` blocks of a row from `first` on. */
    void take(Extremes<T>& blocks, size_t row, size_t first, size_t count)
    {
        blocks.endAt(count);
        m_least = Least::betterOf(m_least, bestOfRow<Least>(blocks.least, count));
        m_greatest = Greatest::betterOf(m_greatest, bestOfRow<Greatest>(blocks.greatest, count));
        const auto place
            = [&](const Rows<T>& image) { return image.first ? image.row(row) + first : nullptr; };
        coverRow(hn::ScalableTag<T>(), count,
            ResultsBlock<T> {blocks.least, blocks.greatest, place(m_move.least), place(m_move.greatest)});
    }

    void finish() const
    {
        const ResultsBlock<T> all {&m_least, &m_greatest, m_move.leastOfAll, m_move.greatestOfAll};
        all(hn::CappedTag<T, 1>(), 0, Cached());
    }

private:
    const BlockMinMaxMove<T>& m_move;
    T m_least = Least::start<T>();
    T m_greatest = Greatest::start<T>();
};

template <class T> void blockMinMax(const BlockMinMaxMove<T>& move)
{
    const size_t width = move.blockWidth, most = Extremes<T>::most;
    const bool isNarrow = width < hn::Lanes(hn::ScalableTag<T>());
    const size_t blocksOfRow = (move.area.width - 1) / width + 1;
    const size_t blocksOfRun = isNarrow ? most / width : most;
    Extremes<T> blocks;
    BlockResults<T> results(move);
    size_t row = 0;
    for (size_t y = 0; y < move.area.height; y += move.blockHeight, ++row) {
        const size_t height = std::min(move.blockHeight, move.area.height - y);
        for (size_t first = 0; first < blocksOfRow; first += blocksOfRun) {
            const size_t x = first * width, count = std::min(blocksOfRun, blocksOfRow - first);
            const BlockRun<T> run {{move.src.row(y) + x, move.src.step},
                std::min(count * width, move.area.width - x), height, width};
            if (isNarrow)
                narrowBlocks(run, blocks);
            else
                wideBlocks(run, blocks);
            results.take(blocks, row, first, count);
        }
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
