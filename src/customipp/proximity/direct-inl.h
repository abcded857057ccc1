// Products of pattern and source summed directly. Compiled for each instruction set.
//
// Lanes are results, so the order of every sum is that of the pattern's pixels, row after row.

#if defined(CUSTOMIPP_DIRECT_INL_H_) == defined(HWY_TARGET_TOGGLE)
#ifdef CUSTOMIPP_DIRECT_INL_H_
#undef CUSTOMIPP_DIRECT_INL_H_
#else
#define CUSTOMIPP_DIRECT_INL_H_
#endif

#include "span-inl.h"

HWY_BEFORE_NAMESPACE();
namespace customipp {
namespace HWY_NAMESPACE {
namespace {

/** One pixel of the pattern a step, in double. */
struct SingleProducts {
    using Element = double;
    using D = hn::ScalableTag<double>;
    using Sum = hn::Vec<D>;
    static constexpr int pixels = 1;

    static HWY_INLINE Sum zero() { return hn::Zero(D()); }
    static HWY_INLINE void add(Sum& sum, hn::Vec<D> source, hn::Vec<D> pattern)
    {
        sum = hn::Add(sum, hn::Mul(source, pattern));
    }
    static HWY_INLINE void store(const Sum& sum, double* to) { hn::StoreU(sum, D(), to); }
};

/** Two pixels of the pattern a step, in the halves of 32-bit lanes. */
struct PairProducts {
    using Element = uint32_t;
    using D = hn::ScalableTag<uint32_t>;
    using DSum = hn::RebindToSigned<D>;
    struct Sum {
        hn::Vec<DSum> first, second; // their sum counts
    };
    static constexpr int pixels = 2;

    static HWY_INLINE Sum zero() { return {hn::Zero(DSum()), hn::Zero(DSum())}; }
    static HWY_INLINE void add(Sum& sum, hn::Vec<D> source, hn::Vec<D> pattern)
    {
        const hn::Repartition<int16_t, D> d16;
        sum.first = hn::ReorderWidenMulAccumulate(
            DSum(), hn::BitCast(d16, source), hn::BitCast(d16, pattern), sum.first, sum.second);
    }
    static HWY_INLINE void store(const Sum& sum, double* to)
    {
        const hn::Repartition<double, D> d;
        const hn::Half<DSum> dHalf;
        const auto all = hn::RearrangeToOddPlusEven(sum.first, sum.second);
        hn::StoreU(hn::PromoteTo(d, hn::LowerHalf(dHalf, all)), d, to);
        hn::StoreU(hn::PromoteTo(d, hn::UpperHalf(dHalf, all)), d, to + hn::Lanes(d));
    }
};

/** Four rows of results by two vectors: what is loaded of the source serves four rows. */
template <class Products> struct DirectBlock {
    using Element = typename Products::Element;
    using D = typename Products::D;
    using Sum = typename Products::Sum;

    PlaneOf<const Element> source;
    const Element* pattern;
    int steps; ///< of a row of the pattern
    int patternHeight;

    /** The sums at column x of the rows from y on, to the same place of the products. */
    HWY_INLINE void run(size_t x, size_t y, const Plane& products) const
    {
        const D d;
        const size_t lanes = hn::Lanes(d);
        Sum s00 = Products::zero(), s01 = Products::zero(), s10 = Products::zero(), s11 = Products::zero();
        Sum s20 = Products::zero(), s21 = Products::zero(), s30 = Products::zero(), s31 = Products::zero();
        for (int line = 0; line < patternHeight + 3; ++line) {
            const Element* from = source.row(y + static_cast<size_t>(line)) + x;
            if (line >= 3 && line < patternHeight) {
                const Element* factors = pattern + ptrdiff_t {line} * steps;
                for (int i = 0; i < steps; ++i, from += Products::pixels, ++factors) {
                    const auto left = hn::LoadU(d, from), right = hn::LoadU(d, from + lanes);
                    const auto f0 = hn::Set(d, factors[0]), f1 = hn::Set(d, factors[-ptrdiff_t {steps}]);
                    const auto f2 = hn::Set(d, factors[-2 * ptrdiff_t {steps}]);
                    const auto f3 = hn::Set(d, factors[-3 * ptrdiff_t {steps}]);
                    Products::add(s00, left, f0);
                    Products::add(s01, right, f0);
                    Products::add(s10, left, f1);
                    Products::add(s11, right, f1);
                    Products::add(s20, left, f2);
                    Products::add(s21, right, f2);
                    Products::add(s30, left, f3);
                    Products::add(s31, right, f3);
                }
            } else {
                addLine(from, line, s00, s01);
                addLine(from, line - 1, s10, s11);
                addLine(from, line - 2, s20, s21);
                addLine(from, line - 3, s30, s31);
            }
        }
        store(s00, s01, products.row(y) + x);
        store(s10, s11, products.row(y + 1) + x);
        store(s20, s21, products.row(y + 2) + x);
        store(s30, s31, products.row(y + 3) + x);
    }

private:
    static HWY_INLINE void store(const Sum& left, const Sum& right, double* to)
    {
        Products::store(left, to);
        Products::store(right, to + hn::Lanes(D()));
    }

    /** A line of the source with one line of the pattern, if there is that line. */
    HWY_INLINE void addLine(const Element* from, int line, Sum& left, Sum& right) const
    {
        if (line < 0 || line >= patternHeight)
            return;
        const D d;
        const Element* factors = pattern + ptrdiff_t {line} * steps;
        for (int i = 0; i < steps; ++i, from += Products::pixels) {
            const auto factor = hn::Set(d, factors[i]);
            Products::add(left, hn::LoadU(d, from), factor);
            Products::add(right, hn::LoadU(d, from + hn::Lanes(d)), factor);
        }
    }
};

template <class Products>
void sumDirectly(PlaneOf<typename Products::Element> source, const typename Products::Element* pattern,
    IppiSize patternSize, const Tile& tile, const Plane& products)
{
    const DirectBlock<Products> block {{source.first, source.stride}, pattern,
        (patternSize.width + Products::pixels - 1) / Products::pixels, patternSize.height};
    const size_t lanes = hn::Lanes(typename Products::D());
    for (size_t y = 0; y < static_cast<size_t>(tile.height); y += 4)
        for (size_t x = 0; x < static_cast<size_t>(tile.width); x += 2 * lanes)
            block.run(x, y, products);
}

/** Each pixel of the span with its right neighbour, and the products of a tile of 8-bit pixels. */
inline void sumPairs(const MatchTask<Ipp8u>& task, const MatchMemory& memory, const Tile& tile)
{
    const PlaneOf<uint32_t> pairs {memory.at<uint32_t>(memory.plan.pairs), memory.plan.stride};
    const size_t width = static_cast<size_t>(memory.plan.spanWidth);
    for (int y = 0; y < memory.plan.spanHeight; ++y) {
        uint32_t* row = pairs.row(static_cast<size_t>(y));
        stageRow(hn::ScalableTag<uint32_t>(), task.source, task.problem.source, tile.sourceX,
            tile.sourceY + y, width, row);
        for (size_t x = 0; x + 1 < width; ++x)
            row[x] |= row[x + 1] << 16;
    }
    sumDirectly<PairProducts>(pairs, memory.at<uint32_t>(memory.plan.pattern), task.problem.pattern, tile,
        memory.plane(memory.plan.products));
}

/** The pattern for sumPairs. */
inline void preparePairs(const MatchTask<Ipp8u>& task, const MatchMemory& memory)
{
    uint32_t* to = memory.at<uint32_t>(memory.plan.pattern);
    const IppiSize size = task.problem.pattern;
    for (int y = 0; y < size.height; ++y) {
        const Ipp8u* row = task.pattern.row(static_cast<size_t>(y));
        for (int x = 0; x < size.width; x += 2)
            *to++ = row[x] | (x + 1 < size.width ? uint32_t {row[x + 1]} << 16 : 0);
    }
}

} // namespace
} // namespace HWY_NAMESPACE
} // namespace customipp
HWY_AFTER_NAMESPACE();

#endif // per-target include guard
