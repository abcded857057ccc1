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

/**
 * A part of a row on its way. Both operations go in two steps: the chain from the parts of a number to its
 * result is so long that in one step few of them would be under way at once.
 */
struct Halfway {
    static constexpr size_t most = 512;
    alignas(64) float first[most];
    alignas(64) float second[most];
};

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

/** sum - v^2, where the two are close together. */
template <class V> HWY_INLINE V restOfSum(V sum, V v)
{
#if HWY_NATIVE_FMA
    return hn::NegMulAdd(v, v, sum);
#else
    const auto square = hn::Mul(v, v);
    return hn::Sub(hn::Sub(sum, square), restOfSquare(v, square));
#endif
}

/**
 * How far y * ApproximateReciprocal(y) may be from 1, with some room: in vectors of 512 bits on x86 the
 * estimate has 14 bits, in others there more than 11, elsewhere 7 at the least.
 */
template <class D> constexpr float reciprocalError(D d)
{
    return !HWY_ARCH_X86 ? 0x1p-7f : hn::MaxLanes(d) == 16 ? 0x1p-13f : 0x1p-11f;
}

/**
 * The squares of floats are exact in double, and no sum of them overflows or underflows there; its root in
 * double is rounded to float.
 *
 * As that is slow, the sum is also taken as a float and the exact rest that it lacks, and the root as the
 * root y of that float and the rest / 2y that this lacks, which is at most 2^-23 of y and for which an
 * estimate of the reciprocal will do. If both ends of the span in which the root lies round to the same
 * float, it is the right one, however the numbers were combined and whatever the estimate was. Only where
 * they do not, near the middle between two floats, and for sums that are too small or too great for this, the
 * root in double is taken.
 */
struct SumOfSquares {
    static constexpr size_t least = 1;
    const float* src;
    Halfway& to; ///< the sum and its rest

    template <class D, class Store> HWY_INLINE void operator()(D d, size_t x, Store store) const
    {
        const auto [re, im] = loadParts(d, src + 2 * x);
        const auto re2 = hn::Mul(re, re), im2 = hn::Mul(im, im), sum = hn::Add(re2, im2);
        const auto lost = hn::Sub(hn::Min(re2, im2), hn::Sub(sum, hn::Max(re2, im2)));
        store(sum, d, to.first + x);
        store(hn::Add(lost, hn::Add(restOfSquare(re, re2), restOfSquare(im, im2))), d, to.second + x);
    }
};

struct RootOfSum {
    static constexpr size_t least = 1;
    const float* src;
    const Halfway& from;
    float* dst;

    template <class D, class Store> HWY_INLINE void operator()(D d, size_t x, Store store) const
    {
        const auto sum = loadAnywhere(d, from.first + x);
        const auto y = hn::Sqrt(sum), half = hn::Set(d, 0.5f);
        const auto rest = hn::Add(restOfSum(sum, y), loadAnywhere(d, from.second + x));
        const auto more = hn::Mul(rest, hn::ApproximateReciprocal(y));
        const auto margin = hn::Mul(y, hn::Set(d, 0x1p-23f * reciprocalError(d)));
        const auto lower = hn::Add(y, hn::MulSub(half, more, margin));
        const auto upper = hn::Add(y, hn::MulAdd(half, more, margin));
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
 * The angle to the nearer axis is the arc tangent of the smaller part by the greater one; it is added to the
 * angle of that axis.
 */
struct Direction {
    static constexpr size_t least = 1;
    const float* src;
    Halfway& to; ///< that quotient, with the sign of its angle; the axis, with the sign of the phase

    template <class D, class Store> HWY_INLINE void operator()(D d, size_t x, Store store) const
    {
        const auto zero = hn::Zero(d);
        const auto [re, im] = loadParts(d, src + 2 * x);
        const auto isLeft = hn::Lt(re, zero);
        const auto sign = hn::Add(im, zero); // -0 counts as 0
        // Floats without a sign have the order of their bits, and what is no number is the greatest.
        const hn::RebindToSigned<D> di;
        const auto width = hn::BitCast(di, hn::Abs(re)), height = hn::BitCast(di, hn::Abs(im));
        const auto isSteep = hn::RebindMask(d, hn::Gt(height, width));
        // Of 0 any quotient would do but NaN. Equal parts, infinite ones too, lie halfway.
        const auto smaller = hn::BitCast(d, hn::Min(width, height));
        const auto greater = hn::BitCast(d, hn::Max(hn::Max(width, height), hn::Set(di, 1)));
        auto quotient = hn::IfThenElse(hn::Gt(greater, smaller), hn::Div(smaller, greater), hn::Set(d, 1.0f));
        quotient = hn::CopySign(quotient, sign);
        quotient = hn::IfThenElse(hn::Xor(isSteep, isLeft), hn::Neg(quotient), quotient);
        const auto axis = hn::IfThenElse(
            isSteep, hn::Set(d, 1.57079637f), hn::IfThenElseZero(isLeft, hn::Set(d, 3.14159274f)));
        const auto nan = hn::Set(d, std::numeric_limits<float>::quiet_NaN());
        store(quotient, d, to.first + x);
        store(hn::IfThenElse(hn::Eq(greater, greater), hn::CopySign(axis, sign), nan), d, to.second + x);
    }
};

/** The arc tangent is an odd polynomial of degree 17 whose error on 0 to 1 is below 2e-8. */
struct AngleOfDirection {
    static constexpr size_t least = 1;
    const float* src;
    const Halfway& from;
    float* dst;

    template <class D, class Store> HWY_INLINE void operator()(D d, size_t x, Store store) const
    {
        const auto angle = arcTangent(d, loadAnywhere(d, from.first + x));
        const auto axis = loadAnywhere(d, from.second + x);
        // The rest makes of the float nearest to pi / 2 the one nearest to pi / 2 in twice as many bits.
        const auto axisRest = hn::Mul(axis, hn::Set(d, -0x1.de12cap-26f));
        store(hn::CopySign(hn::Add(axis, hn::Add(axisRest, angle)), axis), d, dst + x);
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

template <class First, class Second> void polar(const Move& move)
{
    const hn::ScalableTag<float> d;
    const bool streams = move.isBeyondCache();
    Halfway halfway;
    for (size_t y = 0; y < move.area.height; ++y) {
        const auto* src = reinterpret_cast<const float*>(move.src.row(y));
        auto* dst = reinterpret_cast<float*>(move.dst.row(y));
        for (size_t left = move.area.width, n; left > 0; left -= n, src += 2 * n, dst += n) {
            n = HWY_MIN(left, Halfway::most);
            coverRow(d, n, First {src, halfway});
            const Second second {src, halfway, dst};
            if (streams)
                streamRow(d, n, second);
            else
                coverRow(d, n, second);
        }
    }
    if (streams)
        hwy::FlushStream();
}

constexpr PolarKernels s_kernels {{polar<SumOfSquares, RootOfSum>}, {polar<Direction, AngleOfDirection>}};
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
