// Deviation under a rectangle, from the integrals of the pixels and of their squares.
#include "rectStdDev.h"

#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "statistics/rectStdDev.cpp"
#include <hwy/foreach_target.h>
#include <hwy/highway.h>

#include "../movers/rows-inl.h"

HWY_BEFORE_NAMESPACE();
namespace customipp {
namespace HWY_NAMESPACE {
namespace {

/** The rows of an integral that hold the upper and the lower corners of the rectangles. */
template <class T> struct Corners {
    const T* upper;
    const T* lower;
    size_t width;

    HWY_INLINE Corners(const Rows<const T>& rows, size_t y, size_t rectWidth, size_t rectHeight)
        : upper(rows.row(y)),
          lower(rows.row(y + rectHeight)),
          width(rectWidth)
    {
    }
};

/** A vector of doubles as the sums over the rectangles. Integers may wrap before the last difference. */
template <class D> HWY_INLINE hn::Vec<D> rectangleSum(D d, const Corners<Ipp32s>& corners, size_t x)
{
    const hn::Rebind<int32_t, D> di;
    const auto lower
        = hn::Sub(hn::LoadU(di, corners.lower + x + corners.width), hn::LoadU(di, corners.lower + x));
    const auto upper
        = hn::Sub(hn::LoadU(di, corners.upper + x + corners.width), hn::LoadU(di, corners.upper + x));
    return hn::PromoteTo(d, hn::Sub(lower, upper));
}
template <class D, class T> HWY_INLINE hn::Vec<D> asDoubles(D d, const T* from)
{
    if constexpr (sizeof(T) == sizeof(double))
        return loadAnywhere(d, from);
    else
        return hn::PromoteTo(d, loadAnywhere(hn::Rebind<T, D>(), from));
}
template <class D, class T> HWY_INLINE hn::Vec<D> rectangleSum(D d, const Corners<T>& corners, size_t x)
{
    const auto right = hn::Sub(
        asDoubles(d, corners.lower + x + corners.width), asDoubles(d, corners.upper + x + corners.width));
    return hn::Add(hn::Sub(right, asDoubles(d, corners.lower + x)), asDoubles(d, corners.upper + x));
}

template <class S> struct DeviationBlock {
    static constexpr size_t least = 1;
    Corners<S> sums;
    Corners<Ipp64f> squares;
    Ipp32f* dst;
    double count; ///< of pixels in a rectangle

    HWY_INLINE DeviationBlock(const RectStdDevMove<S>& move, size_t y)
        : sums(move.sums, y, move.rectWidth, move.rectHeight),
          squares(move.squares, y, move.rectWidth, move.rectHeight),
          dst(move.dst.row(y)),
          count(double(move.rectWidth) * double(move.rectHeight))
    {
    }
    /** The differences are exact as long as the products are below 2^53. */
    template <class D, class Store> HWY_INLINE void operator()(D d, size_t x, Store store) const
    {
        const auto sum = rectangleSum(d, sums, x), squareSum = rectangleSum(d, squares, x);
        const auto n = hn::Set(d, count);
        const auto spread = hn::Sub(hn::Mul(squareSum, n), hn::Mul(sum, sum));
        const auto variance = hn::Div(spread, hn::Mul(n, n));
        const auto zero = hn::Zero(d); // NaN is not below it
        const auto deviation = hn::Sqrt(hn::IfThenElse(hn::Lt(variance, zero), zero, variance));
        const hn::Rebind<float, D> df;
        store(hn::DemoteTo(df, deviation), df, dst + x);
    }
};

template <class S> void rectStdDev(const RectStdDevMove<S>& move)
{
    for (size_t y = 0; y < move.area.height; ++y)
        coverRow(hn::ScalableTag<double>(), move.area.width, DeviationBlock<S>(move, y));
}

constexpr RectStdDevKernels s_kernels {rectStdDev<Ipp32s>, rectStdDev<Ipp32f>};
} // namespace

const RectStdDevKernels& rectStdDevKernels() { return s_kernels; }
} // namespace HWY_NAMESPACE
} // namespace customipp
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace customipp {
namespace {
HWY_EXPORT(rectStdDevKernels);
const RectStdDevKernels& kernelsRectStdDev() { return HWY_DYNAMIC_DISPATCH(rectStdDevKernels)(); }
} // namespace
} // namespace customipp
#include "../entryPoints.h"
#include <customipp/rectStdDev.def>
#endif // HWY_ONCE
