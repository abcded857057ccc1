// Results from sums of products and sums over windows. Compiled for each instruction set.

#if defined(CUSTOMIPP_RESULTS_INL_H_) == defined(HWY_TARGET_TOGGLE)
#ifdef CUSTOMIPP_RESULTS_INL_H_
#undef CUSTOMIPP_RESULTS_INL_H_
#else
#define CUSTOMIPP_RESULTS_INL_H_
#endif

#include "span-inl.h"

HWY_BEFORE_NAMESPACE();
namespace customipp {
namespace HWY_NAMESPACE {
namespace {

/** The part of the squares below which there is no deviation: of floats it is their rounding; the sums of
 * integers are exact. */
template <class T>
inline constexpr double leastDeviation = hwy::IsFloat<T>() ? 9.094947017729282e-13 : 0; // 2^-40

/** Sums over the pattern. */
struct PatternSums {
    double pixels = 0;
    double sum = 0;
    double squares = 0; ///< of the pixels; for the coefficient, of their deviations
    double mean = 0;
    double rest = 0; ///< sum of the deviations, which is not quite 0 as the mean is rounded

    template <class T>
    PatternSums(const Rows<const T>& pattern, IppiSize size, MatchNorm norm)
        : pixels(static_cast<double>(size.width) * size.height)
    {
        for (int y = 0; y < size.height; ++y)
            for (int x = 0; x < size.width; ++x)
                sum += pixelAt(pattern, x, y);
        mean = sum / pixels;
        squares = squaresAbout(0, pattern, size);
        if (norm == MatchNorm::Coefficient) {
            const double all = squares;
            squares = squaresAbout(mean, pattern, size);
            if (squares <= leastDeviation<T> * all)
                squares = 0;
            for (int y = 0; y < size.height; ++y)
                for (int x = 0; x < size.width; ++x)
                    rest += pixelAt(pattern, x, y) - mean;
        }
    }

private:
    template <class T> static double squaresAbout(double mean, const Rows<const T>& pattern, IppiSize size)
    {
        double squares = 0;
        for (int y = 0; y < size.height; ++y)
            for (int x = 0; x < size.width; ++x) {
                const double deviation = pixelAt(pattern, x, y) - mean;
                squares += deviation * deviation;
            }
        return squares;
    }
};

/** A vector of each. */
template <class V> struct ResultSums {
    V products, sums, squares;
};

/** Sum of products as it is. */
struct PlainProducts {
    template <class D, class V> HWY_INLINE V operator()(D, const ResultSums<V>& of) const
    {
        return of.products;
    }
};

/** Over the root of both sums of squares, limited to what it can be; 0 where one is 0. */
struct NormedProducts {
    double patternSquares;

    template <class D, class V> HWY_INLINE V operator()(D d, const ResultSums<V>& of) const
    {
        const V square = hn::Mul(of.squares, hn::Set(d, patternSquares));
        const V value = hn::Div(of.products, hn::Sqrt(square));
        const V one = hn::Set(d, 1.0);
        // Not by the least of two, which differs from processor to processor where a number is none.
        const auto isGreat = hn::Gt(hn::Abs(value), one);
        return hn::IfThenElseZero(
            hn::Gt(square, hn::Zero(d)), hn::IfThenElse(isGreat, hn::CopySign(one, value), value));
    }
};

/** The same of the deviations from both means. */
struct Coefficient {
    double patternSquares, pixels;
    double leastPart; ///< of a window's squares
    double factorSum; ///< of the numbers with which the products were summed

    template <class D, class V> HWY_INLINE V operator()(D d, const ResultSums<V>& of) const
    {
        const V n = hn::Set(d, pixels);
        ResultSums<V> centred = of;
        centred.products
            = hn::Div(hn::Sub(hn::Mul(of.products, n), hn::Mul(of.sums, hn::Set(d, factorSum))), n);
        const V meanSquares = hn::Div(hn::Mul(of.sums, of.sums), n);
        const auto varies
            = hn::Gt(of.squares, hn::Mul(hn::Set(d, leastPart), hn::Add(of.squares, meanSquares)));
        return hn::IfThenElseZero(varies, NormedProducts {patternSquares}(d, centred));
    }
};

/** Squared distance; rounding takes it below 0 at most by as much as it may be wrong. */
struct PlainDistance {
    double patternSquares;

    template <class D, class V> HWY_INLINE V operator()(D d, const ResultSums<V>& of) const
    {
        const V squares = hn::Add(of.squares, hn::Set(d, patternSquares));
        const V distance = hn::Sub(squares, hn::Add(of.products, of.products));
        return hn::IfThenElse(hn::Lt(distance, hn::Zero(d)), hn::Zero(d), distance);
    }
};

/** Over the root of both sums of squares, with no limit. Where one is 0: 0 for equal images, else 1. */
struct NormedDistance {
    double patternSquares;

    template <class D, class V> HWY_INLINE V operator()(D d, const ResultSums<V>& of) const
    {
        const V zero = hn::Zero(d);
        const V distance = PlainDistance {patternSquares}(d, of);
        const V square = hn::Mul(of.squares, hn::Set(d, patternSquares));
        const V otherwise = hn::IfThenElseZero(hn::Gt(distance, zero), hn::Set(d, 1.0));
        return hn::IfThenElse(hn::Eq(square, zero), otherwise, hn::Div(distance, hn::Sqrt(square)));
    }
};

/** All results of a tile. */
template <class Formula>
void writeResults(const MatchMemory& memory, const Tile& tile, bool round, const Formula& formula,
    const Rows<Ipp32f>& result)
{
    const Doubles d;
    const hn::Rebind<float, Doubles> dFloat;
    float* line = memory.at<float>(memory.plan.row);
    const size_t width = static_cast<size_t>(tile.width);
    for (size_t y = 0; y < static_cast<size_t>(tile.height); ++y) {
        const double* products = memory.plane(memory.plan.products).row(y);
        const double* sums = memory.plane(memory.plan.sums).row(y);
        const double* squares = memory.plane(memory.plan.squares).row(y);
        for (size_t x = 0; x < width; x += hn::Lanes(d)) {
            ResultSums<hn::Vec<Doubles>> of {
                hn::Load(d, products + x), hn::Load(d, sums + x), hn::Load(d, squares + x)};
            if (round)
                of.products = hn::Round(of.products);
            hn::StoreU(hn::DemoteTo(dFloat, formula(d, of)), dFloat, line + x);
        }
        __builtin_memcpy(result.row(static_cast<size_t>(tile.y) + y) + tile.x, line, width * sizeof(float));
    }
}

} // namespace
} // namespace HWY_NAMESPACE
} // namespace customipp
HWY_AFTER_NAMESPACE();

#endif // per-target include guard
