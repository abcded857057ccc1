// Magnitude of an image, and of the difference of two.
#include "pointwise.h"

#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "arithmetic/abs.cpp"
#include <hwy/foreach_target.h>
#include <hwy/highway.h>

#include "pointwise-inl.h"

HWY_BEFORE_NAMESPACE();
namespace customipp {
namespace HWY_NAMESPACE {
namespace {

struct Magnitude : PlainOperation {
    template <class D, class V> HWY_INLINE V operator()(D d, V v) const
    {
        if constexpr (hwy::IsFloat<hn::TFromD<D>>())
            return hn::Abs(v);
        else
            return hn::Max(v, hn::SaturatedSub(hn::Zero(d), v)); // -32768 gives 32767
    }
};

struct MagnitudeOfDifference : PlainOperation {
    template <class D, class V> HWY_INLINE V operator()(D, V a, V b) const
    {
        if constexpr (hwy::IsFloat<hn::TFromD<D>>())
            return hn::Abs(hn::Sub(a, b));
        else
            return hn::Or(hn::SaturatedSub(a, b), hn::SaturatedSub(b, a));
    }
};

} // namespace

const auto& magnitudes() { return unaryPlainKernels<Magnitude, Ipp16s, Ipp32f>(); }
const auto& magnitudesOfDifferences()
{
    return binaryPlainKernels<MagnitudeOfDifference, Ipp8u, Ipp16u, Ipp32f>();
}

} // namespace HWY_NAMESPACE
} // namespace customipp
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace customipp {
HWY_EXPORT(magnitudes);
HWY_EXPORT(magnitudesOfDifferences);
static const auto& kernelsAbs() { return HWY_DYNAMIC_DISPATCH(magnitudes)(); }
static const auto& kernelsAbsDiff() { return HWY_DYNAMIC_DISPATCH(magnitudesOfDifferences)(); }
} // namespace customipp

#include "entryPoints.h"
#include <customipp/abs.def>
#include <customipp/absDiff.def>
#endif // HWY_ONCE
