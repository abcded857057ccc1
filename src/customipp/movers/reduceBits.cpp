// Floats as bytes of a few evenly spaced values.
#include "reduceBits.h"

#include <cmath>

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
 * The second rounding is that of the exact quotient 255 q / n, though no division is made: 255 / n is the sum
 * of a float of 16 bits, whose product with q is exact, and a rest. So the sum of both products is rounded
 * once, fused or not, and a tie comes out exact. A quotient that is no tie is at least 1 / (2n) away from
 * one, that is 2^-17 of itself, and the sum is off by little more than 2^-24 of it at most.
 */
struct EvenSteps {
    float steps, height, heightRest;

    explicit EvenSteps(int n) : steps(static_cast<float>(n))
    {
        const double exact = 255.0 / n;
        int exponent;
        const double fraction = std::frexp(exact, &exponent);
        height = static_cast<float>(std::ldexp(std::floor(std::ldexp(fraction, 16)), exponent - 16));
        heightRest = static_cast<float>(exact - height);
    }
    HWY_INLINE EvenSteps(const EvenSteps& other)
        : steps(other.steps),
          height(other.height),
          heightRest(other.heightRest)
    {
    }

    template <class D, class V> HWY_INLINE auto of(V v) const
    {
        const hn::DFromV<V> d;
        const auto one = hn::Set(d, 1.0f), whole = hn::Set(d, integerInFloat);
        v = hn::IfThenElseZero(hn::Gt(v, hn::Zero(d)), hn::Min(v, one)); // NaN is not greater
        const auto step = hn::Round(hn::Mul(v, hn::Set(d, steps)));
        const auto byte = hn::MulAdd(step, hn::Set(d, height), hn::Mul(step, hn::Set(d, heightRest)));
        return integersOf<D>(hn::Add(byte, whole));
    }
};

void reduceBits(const Move& move, int steps)
{
    coverRows<float, Narrow<float, uint8_t, EvenSteps>>(move, EvenSteps(steps));
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
