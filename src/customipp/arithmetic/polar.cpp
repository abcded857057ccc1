// Magnitude and phase of complex pixels.
#include "polar.h"

#include <limits>

#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "arithmetic/polar.cpp"
#include <hwy/foreach_target.h>
#include <hwy/highway.h>

#include "../movers/rows-inl.h"

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

/** The squares of floats are exact in double, and no sum of them overflows or underflows there. */
struct Magnitude {
    /** Half a vector: in double it fills one. */
    using Tag = hn::Half<hn::ScalableTag<float>>;
    static constexpr size_t least = 1;
    const float* src;
    float* dst;

    template <class D, class Store> HWY_INLINE void operator()(D d, size_t x, Store store) const
    {
        const hn::Rebind<double, D> dd;
        const auto parts = loadParts(d, src + 2 * x);
        const auto re = hn::PromoteTo(dd, parts.re), im = hn::PromoteTo(dd, parts.im);
        const auto root = hn::Sqrt(hn::Add(hn::Mul(re, re), hn::Mul(im, im)));
        store(withOneNaN(d, hn::DemoteTo(d, root)), d, dst + x);
    }
};

/**
 * The angle to the nearer axis is the arc tangent of the smaller part by the greater one, by an odd
 * polynomial of degree 17 whose error on 0 to 1 is below 2e-8; it is added to the angle of that axis or
 * subtracted from it.
 */
struct Phase {
    using Tag = hn::ScalableTag<float>;
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

template <class Block> void polar(const Move& move)
{
    for (size_t y = 0; y < move.area.height; ++y)
        coverRow(typename Block::Tag(), move.area.width,
            Block {
                reinterpret_cast<const float*>(move.src.row(y)), reinterpret_cast<float*>(move.dst.row(y))});
}

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
