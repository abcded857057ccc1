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

/**
 * The squares of floats are exact in double, and no sum of them overflows or underflows there; its root in
 * double is rounded to float.
 *
 * As that root is slow, it is approached from the root y of the sum in float: with the rest r of the sum
 * beyond y^2, which is exact, it is y + r / 2y, where floats do for the quotient; what is left is an error
 * below 2^-46 of the root. So the float is the right one unless the root comes that near to the middle
 * between two floats. Only there, and for sums that are too small or too great for floats, the root in double
 * is taken.
 */
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
        const auto sum = hn::Add(hn::Mul(re, re), hn::Mul(im, im));
        const auto root = hn::Sqrt(hn::DemoteTo(d, sum));
        const auto y = hn::PromoteTo(dd, root);
        const auto rest = hn::DemoteTo(d, hn::Sub(sum, hn::Mul(y, y)));
        const auto closer = hn::Add(y, hn::PromoteTo(dd, hn::Div(rest, hn::Add(root, root))));
        const auto fits = hn::And(hn::Gt(sum, hn::Set(dd, 0x1p-100)), hn::Lt(sum, hn::Set(dd, 0x1p100)));
        if (HWY_LIKELY(hn::AllTrue(dd, hn::AndNot(isNearMiddle(dd, closer), fits))))
            store(hn::DemoteTo(d, closer), d, dst + x);
        else
            store(withOneNaN(d, hn::DemoteTo(d, hn::Sqrt(sum))), d, dst + x);
    }

private:
    /** Whether the bits that a float does not have are one half of its last bit, but for 2^-44 of the whole.
     */
    template <class D> static HWY_INLINE hn::Mask<D> isNearMiddle(D dd, hn::Vec<D> v)
    {
        const hn::RebindToUnsigned<D> dBits;
        constexpr uint64_t lost = (uint64_t {1} << 29) - 1, half = uint64_t {1} << 28, margin = 256;
        const auto bits = hn::And(hn::BitCast(dBits, v), hn::Set(dBits, lost));
        const auto distance = hn::Sub(bits, hn::Set(dBits, half - margin));
        return hn::RebindMask(
            dd, hn::Eq(hn::And(distance, hn::Set(dBits, ~(2 * margin - 1))), hn::Zero(dBits)));
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
