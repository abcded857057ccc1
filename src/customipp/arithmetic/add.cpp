// Sum of two images, and of an image and constants.
#include "pointwise.h"

#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "arithmetic/add.cpp"
#include <hwy/foreach_target.h>
#include <hwy/highway.h>

#include "scaled-inl.h"

HWY_BEFORE_NAMESPACE();
namespace customipp {
namespace HWY_NAMESPACE {
namespace {

struct Sum {
    template <class T> static constexpr int valueBits = bitsOf<T> + 1;

    template <class D, class V> static HWY_INLINE V saturated(D, V a, V b)
    {
        if constexpr (hwy::IsFloat<hn::TFromD<D>>())
            return hn::Add(a, b);
        else
            return hn::SaturatedAdd(a, b);
    }

    template <class D, class V> static HWY_INLINE auto wide(D d, V a, V b)
    {
        using Wide = hwy::MakeSigned<hwy::MakeWide<hn::TFromD<D>>>;
        const auto x = widen<Wide>(d, a);
        const auto y = widen<Wide>(d, b);
        return EvenOdd<decltype(x.even)> {hn::Add(x.even, y.even), hn::Add(x.odd, y.odd)};
    }
};

} // namespace

const auto& sums() { return binaryScaledKernels<Sum>(); }
const ConstantsKernels& sumsWithConstants() { return constantsScaledKernels<Sum>(); }

} // namespace HWY_NAMESPACE
} // namespace customipp
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace customipp {
HWY_EXPORT(sums);
HWY_EXPORT(sumsWithConstants);
static const auto& kernelsAdd() { return HWY_DYNAMIC_DISPATCH(sums)(); }
static const auto& kernelsAddC() { return HWY_DYNAMIC_DISPATCH(sumsWithConstants)(); }
} // namespace customipp

#include "entryPoints.h"
#include <customipp/add.def>
#include <customipp/addC.def>
#endif // HWY_ONCE
