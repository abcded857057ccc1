// Difference of two images, and of an image and constants.
#include "pointwise.h"

#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "arithmetic/sub.cpp"
#include <hwy/foreach_target.h>
#include <hwy/highway.h>

#include "scaled-inl.h"

HWY_BEFORE_NAMESPACE();
namespace customipp {
namespace HWY_NAMESPACE {
namespace {

/** The first operand is the subtrahend. */
struct Difference {
    template <class T> static constexpr int valueBits = bitsOf<T> + 1;

    template <class D, class V> static HWY_INLINE V saturated(D, V subtrahend, V minuend)
    {
        if constexpr (hwy::IsFloat<hn::TFromD<D>>())
            return hn::Sub(minuend, subtrahend);
        else
            return hn::SaturatedSub(minuend, subtrahend);
    }

    template <class D, class V> static HWY_INLINE auto wide(D d, V subtrahend, V minuend)
    {
        using Wide = hwy::MakeSigned<hwy::MakeWide<hn::TFromD<D>>>;
        const auto x = widen<Wide>(d, minuend);
        const auto y = widen<Wide>(d, subtrahend);
        return EvenOdd<decltype(x.even)> {hn::Sub(x.even, y.even), hn::Sub(x.odd, y.odd)};
    }
};

} // namespace

const auto& differences() { return binaryScaledKernels<Difference>(); }
const ConstantsKernels& differencesFromConstants() { return constantsScaledKernels<Difference>(); }

} // namespace HWY_NAMESPACE
} // namespace customipp
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace customipp {
HWY_EXPORT(differences);
HWY_EXPORT(differencesFromConstants);
static const auto& kernelsSub() { return HWY_DYNAMIC_DISPATCH(differences)(); }
static const auto& kernelsSubC() { return HWY_DYNAMIC_DISPATCH(differencesFromConstants)(); }
} // namespace customipp

#include "entryPoints.h"
#include <customipp/sub.def>
#include <customipp/subC.def>
#endif // HWY_ONCE
