// Magnitude and phase of complex pixels.
#include "polar.h"

#include <limits>

#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "arithmetic/polar.cpp"
#include <hwy/foreach_target.h>
#include <hwy/highway.h>

#include "../movers/narrow-inl.h"

HWY_BEFORE_NAMESPACE();
namespace customipp {
namespace HWY_NAMESPACE {
namespace {

template <class D> struct Parts {
    hn::Vec<D> re, im;
};

/** The real and the imaginary parts of Lanes(d) complex numbers. */
template <class D> HWY_INLINE Parts<D> loadParts(D d, const float* from)
{
    const auto a = loadAnywhere(d, from), b = loadAnywhere(d, from + hn::Lanes(d));
    if constexpr (hn::MaxLanes(d) == 1)
        return {a, b};
    else
        return {hn::ConcatEven(d, b, a), hn::ConcatOdd(d, b, a)};
}

/** One bit pattern for all that is not a number: which one an addition of two such gives depends on the
 * processor. */
template <class D> HWY_INLINE hn::Vec<D> withOneNaN(D d, hn::Vec<D> v)
{
    return hn::IfThenElse(hn::Eq(v, v), v, hn::Set(d, std::numeric_limits<float>::quiet_NaN()));
}

/** What v^2 is greater than v^2 rounded to float: a float itself, unless it is too small for one. */
template <class V> HWY_INLINE V restOfSquare(V v, V square)
{
#if !HWY_NATIVE_FMA
    // No fused product: by halves of 12 bits, whose products are exact.
    const hn::DFromV<V> d;
    const auto high = hn::And(v, hn::BitCast(d, hn::Set(hn::RebindToUnsigned<hn::DFromV<V>>(), 0xFFFFF000u)));
    const auto low = hn::Sub(v, high);
    const auto withoutLow = hn::Add(hn::Sub(hn::Mul(high, high), square), hn::Mul(hn::Add(high, high), low));
    return hn::Add(withoutLow, hn::Mul(low, low));
#else
    return hn::MulSub(v, v, square);
#endif
}

/**
 * The squares of floats are exact in double, and no sum of them overflows or underflows there; its root in
 * double is rounded to float.
 *
 * As that is slow, the sum is also taken as a float and the exact rest that it lacks, and the root as the
 * root y of that float and the rest / 2y that this lacks: it is off by less than 2^-42 of itself. If both
 * ends of that span round to the same float, it is the right one, however the numbers were combined. Only
 * where they do not, near the middle between two floats, and for sums that are too small or too great for
 * this, the root in double is taken.
 */
struct Magnitude {
    using Dst = float;
    static constexpr size_t least = 1;
    const float* src;
    float* dst;

    template <class D, class Store> HWY_INLINE void operator()(D d, size_t x, Store store) const
    {
        const auto parts = loadParts(d, src + 2 * x);
        const auto re2 = hn::Mul(parts.re, parts.re), im2 = hn::Mul(parts.im, parts.im);
        const auto sum = hn::Add(re2, im2), y = hn::Sqrt(sum), y2 = hn::Mul(y, y);
        const auto lost = hn::Sub(hn::Min(re2, im2), hn::Sub(sum, hn::Max(re2, im2)));
        const auto ofSquares = hn::Add(restOfSquare(parts.re, re2), restOfSquare(parts.im, im2));
        const auto ofRoot = hn::Sub(hn::Sub(sum, y2), restOfSquare(y, y2));
        const auto rest = hn::Add(ofRoot, hn::Add(lost, ofSquares));
        const auto more = hn::Div(rest, hn::Add(y, y)), margin = hn::Mul(y, hn::Set(d, 0x1p-42f));
        const auto lower = hn::Add(y, hn::Sub(more, margin)), upper = hn::Add(y, hn::Add(more, margin));
        // A sum that overflows makes both NaN.
        const auto isKnown = hn::And(hn::Eq(lower, upper), hn::Gt(sum, hn::Set(d, 0x1p-60f)));
        if (HWY_LIKELY(hn::AllTrue(d, isKnown)))
            store(lower, d, dst + x);
        else
            inDouble(d, x);
    }

private:
    template <class D> HWY_INLINE void inDouble(D d, size_t x) const
    {
        if constexpr (hn::MaxLanes(d) > hn::MaxLanes(hn::ScalableTag<double>())) {
            const hn::Half<D> half;
            inDouble(half, x);
            inDouble(half, x + hn::Lanes(half));
        } else {
            const hn::Rebind<double, D> dd;
            const auto parts = loadParts(d, src + 2 * x);
            const auto re = hn::PromoteTo(dd, parts.re), im = hn::PromoteTo(dd, parts.im);
            const auto root = hn::Sqrt(hn::Add(hn::Mul(re, re), hn::Mul(im, im)));
            storeAnywhere(withOneNaN(d, hn::DemoteTo(d, root)), d, dst + x);
        }
    }
};

/**
 * The angle to the nearer axis is the arc tangent of the smaller part by the greater one, by an odd
 * polynomial of degree 17 whose error on 0 to 1 is below 2e-8; it is added to the angle of that axis or
 * subtracted from it.
 */
struct Phase {
    using Dst = float;
    static constexpr size_t least = 1;
    const float* src;
    float* dst;

    template <class D, class Store> HWY_INLINE void operator()(D d, size_t x, Store store) const
    {
        const auto zero = hn::Zero(d);
        const auto [re, im] = loadParts(d, src + 2 * x);
        const auto width = hn::Abs(re), height = hn::Abs(im);
        const auto isSteep = hn::Gt(height, width), isLeft = hn::Lt(re, zero);
        const auto smaller = hn::IfThenElse(isSteep, width, height);
        const auto greater = hn::IfThenElse(isSteep, height, width);
        // Equal parts, infinite ones too, lie halfway; of 0 any quotient would do but NaN.
        auto quotient = hn::IfThenElse(hn::Eq(smaller, greater), hn::Set(d, 1.0f), hn::Div(smaller, greater));
        quotient = hn::IfThenZeroElse(hn::Eq(greater, zero), quotient);

        auto angle = arcTangent(d, quotient);
        angle = hn::IfThenElse(hn::Xor(isSteep, isLeft), hn::Neg(angle), angle);
        // The axis, pi / 2, pi or 0, in two parts.
        const auto axis = hn::IfThenElse(
            isSteep, hn::Set(d, 1.57079637f), hn::IfThenElseZero(isLeft, hn::Set(d, 3.14159274f)));
        const auto axisRest = hn::IfThenElse(
            isSteep, hn::Set(d, -4.37113883e-8f), hn::IfThenElseZero(isLeft, hn::Set(d, -8.74227766e-8f)));
        angle = hn::Add(axis, hn::Add(axisRest, angle));
        angle = hn::IfThenElse(hn::Lt(im, zero), hn::Neg(angle), angle);
        const auto isNumber = hn::And(hn::Eq(re, re), hn::Eq(im, im));
        const auto nan = hn::Set(d, std::numeric_limits<float>::quiet_NaN());
        store(hn::IfThenElse(isNumber, angle, nan), d, dst + x);
    }

    template <class D> static HWY_INLINE hn::Vec<D> arcTangent(D d, hn::Vec<D> q)
    {
        const auto t = hn::Mul(q, q);
        auto sum = hn::Set(d, 0.00276628350f);
        for (const float coefficient : {-0.0157312491f, 0.0421376236f, -0.0745685483f, 0.106183706f,
                 -0.141977978f, 0.199918720f, -0.333330367f, 0.999999982f})
            sum = hn::Add(hn::Set(d, coefficient), hn::Mul(t, sum));
        return hn::Mul(q, sum);
    }
};

template <class Block> void polar(const Move& move) { coverRows<float, Block>(move); }

constexpr PolarKernels s_kernels {{polar<Magnitude>}, {polar<Phase>}};
} // namespace

const PolarKernels& polarKernels() { return s_kernels; }
} // namespace HWY_NAMESPACE
} // namespace customipp
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace customipp {
namespace {
HWY_EXPORT(polarKernels);
const PolarKernel& kernelsMagnitude() { return HWY_DYNAMIC_DISPATCH(polarKernels)().magnitude; }
const PolarKernel& kernelsPhase() { return HWY_DYNAMIC_DISPATCH(polarKernels)().phase; }
} // namespace
} // namespace customipp
#include "../entryPoints.h"
#include <customipp/polar.def>
#endif // HWY_ONCE
