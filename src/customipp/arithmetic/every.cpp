// The lesser and the greater of two images, pixel by pixel.
#include "pointwise.h"

#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "arithmetic/every.cpp"
#include <hwy/foreach_target.h>
#include <hwy/highway.h>

#include "pointwise-inl.h"

HWY_BEFORE_NAMESPACE();
namespace customipp {
namespace HWY_NAMESPACE {
namespace {

// Floats are compared, as Min and Max of the processors differ in what they make of NaN and of the signs of
// zero.

struct Lesser : PlainOperation {
    template <class D, class V> HWY_INLINE V operator()(D, V source, V kept) const
    {
        if constexpr (hwy::IsFloat<hn::TFromD<D>>())
            return hn::IfThenElse(hn::Lt(source, kept), source, kept);
        else
            return hn::Min(source, kept);
    }
};

struct Greater : PlainOperation {
    template <class D, class V> HWY_INLINE V operator()(D, V source, V kept) const
    {
        if constexpr (hwy::IsFloat<hn::TFromD<D>>())
            return hn::IfThenElse(hn::Gt(source, kept), source, kept);
        else
            return hn::Max(source, kept);
    }
};

} // namespace

const auto& lesser() { return binaryPlainKernels<Lesser, Ipp8u, Ipp16u, Ipp16s, Ipp32f>(); }
const auto& greater() { return binaryPlainKernels<Greater, Ipp8u, Ipp16u, Ipp16s, Ipp32f>(); }

} // namespace HWY_NAMESPACE
} // namespace customipp
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace customipp {
HWY_EXPORT(lesser);
HWY_EXPORT(greater);
static const auto& kernelsMinEvery() { return HWY_DYNAMIC_DISPATCH(lesser)(); }
static const auto& kernelsMaxEvery() { return HWY_DYNAMIC_DISPATCH(greater)(); }
} // namespace customipp

#include "entryPoints.h"
#include <customipp/maxEvery.def>
#include <customipp/minEvery.def>
#endif // HWY_ONCE
