// Floats as bytes of a few evenly spaced values.
#include "reduceBits.h"

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
 * The second rounding is that of the exact quotient, though the division rounds too: a quotient 255 q / n
 * that is no tie is at least 1 / (2n) away from one, that is 2^-17 of itself, and the division is off by
 * 2^-24 of it at most. A tie is exact.
 */
struct EvenSteps {
    float steps;

    template <class D, class V> HWY_INLINE auto of(V v) const
    {
        const hn::DFromV<V> d;
        v = hn::IfThenElse(hn::Gt(v, hn::Zero(d)), v, hn::Zero(d)); // NaN is not greater
        v = hn::Min(v, hn::Set(d, 1.0f));
        const auto n = hn::Set(d, steps), whole = hn::Set(d, integerInFloat);
        const auto step = hn::Sub(hn::Add(hn::Mul(v, n), whole), whole);
        return integersOf<D>(hn::Add(hn::Div(hn::Mul(step, hn::Set(d, 255.0f)), n), whole));
    }
};

void reduceBits(const Move& move, int steps)
{
    coverRows<float, Narrow<float, uint8_t, EvenSteps>>(move, EvenSteps {static_cast<float>(steps)});
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
