// Floats as bytes of a few evenly spaced values.
#include "reduceBits.h"

#include <cmath>
#include <numeric>

#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "movers/reduceBits.cpp"
#include <hwy/foreach_target.h>
#include <hwy/highway.h>

#include "narrow-inl.h"

HWY_BEFORE_NAMESPACE();
namespace customipp {
namespace HWY_NAMESPACE {
namespace {

/**
 * The second rounding is that of the exact quotient 255 q / n, though no division is made. A quotient that is
 * no tie is at least 1 / (2n) away from one, that is 2^-17 of itself, so that its product with a float near
 * 255 / n rounds to the same byte. Where it is a tie the product must be exact.
 */
struct OneFactor {
    float height;

    /** 255 / n as a float, or the next greater one; for a few n neither will do. */
    static bool find(int n, float& factor)
    {
        const int divisor = std::gcd(510, n), firstTie = n / divisor;
        const auto tiesAreExact = [&](float candidate) {
            if (510 / divisor % 2 == 0)
                return true; // there are none
            for (int q = firstTie; q <= n; q += 2 * firstTie)
                if (float(q) * candidate != float(255 * q / n) + 0.5f)
                    return false;
            return true;
        };
        factor = float(255.0 / n);
        if (tiesAreExact(factor))
            return true;
        factor = std::nextafter(factor, 256.0f);
        return tiesAreExact(factor);
    }
    template <class V> HWY_INLINE V byteOf(V step) const
    {
        return hn::Mul(step, hn::Set(hn::DFromV<V>(), height));
    }
};

/**
 * 255 / n as the sum of a float of 16 bits, whose product with q is exact, and a rest. So the sum of both
 * products is rounded once, fused or not, and a tie comes out exact; else the sum is off by little more than
 * 2^-24 of it at most.
 */
struct TwoFactors {
    float height, heightRest;

    explicit TwoFactors(int n)
    {
        const double exact = 255.0 / n;
        int exponent;
        const double fraction = std::frexp(exact, &exponent);
        height = static_cast<float>(std::ldexp(std::floor(std::ldexp(fraction, 16)), exponent - 16));
        heightRest = static_cast<float>(exact - height);
    }
    template <class V> HWY_INLINE V byteOf(V step) const
    {
        const hn::DFromV<V> d;
        return hn::MulAdd(step, hn::Set(d, height), hn::Mul(step, hn::Set(d, heightRest)));
    }
};

/** A limit for Narrow. */
template <class Factors> struct EvenSteps {
    float steps;
    Factors factors;

    HWY_INLINE EvenSteps(int n, const Factors& f) : steps(static_cast<float>(n)), factors(f) {}
    HWY_INLINE EvenSteps(const EvenSteps& other) : steps(other.steps), factors(other.factors) {}

    template <class D, class V> HWY_INLINE auto of(V v) const
    {
        const hn::DFromV<V> d;
        const auto one = hn::Set(d, 1.0f), whole = hn::Set(d, integerInFloat);
        v = hn::IfThenElseZero(hn::Gt(v, hn::Zero(d)), hn::Min(v, one)); // NaN is not greater
        const auto step = hn::Round(hn::Mul(v, hn::Set(d, steps)));
        return integersOf(hn::Add(factors.byteOf(step), whole));
    }
};

template <class Factors> void reduceBy(const Move& move, int steps, const Factors& factors)
{
    using Steps = EvenSteps<Factors>;
    coverRows<float, Narrow<float, uint8_t, Steps>>(move, Steps(steps, factors));
}

void reduceBits(const Move& move, int steps)
{
    OneFactor factor;
    if (OneFactor::find(steps, factor.height))
        reduceBy(move, steps, factor);
    else
        reduceBy(move, steps, TwoFactors(steps));
}

} // namespace

ReduceBitsKernel reduceBitsKernel() { return reduceBits; }
} // namespace HWY_NAMESPACE
} // namespace customipp
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace customipp {
namespace {
HWY_EXPORT(reduceBitsKernel);
ReduceBitsKernel kernelsReduceBits() { return HWY_DYNAMIC_DISPATCH(reduceBitsKernel)(); }
} // namespace
} // namespace customipp
#include "../entryPoints.h"
#include <customipp/reduceBits.def>
#endif // HWY_ONCE
