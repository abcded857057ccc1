// Norms of the difference of two images.
#include "norm.h"

#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "statistics/normDiff.cpp"
#include <hwy/foreach_target.h>
#include <hwy/highway.h>

#include "norm-inl.h"

HWY_BEFORE_NAMESPACE();
namespace customipp {
namespace HWY_NAMESPACE {
namespace {

template <class Norm>
constexpr ImageNormKernels s_kernels {{norm<Norm, DistancesOf<Ipp8u, 1>, Ipp8u>},
    {norm<Norm, DistancesOf<Ipp8u, 3>, Ipp8u>}, {norm<Norm, DistancesOf<Ipp8u, 4>, Ipp8u>},
    {norm<Norm, DistancesOf<Ipp16u, 1>, Ipp16u>}, {norm<Norm, DistancesOf<Ipp16s, 1>, Ipp16s>},
    {norm<Norm, DifferencesOf, Ipp32f>}};

} // namespace

const ImageNormKernels& normDiffInf() { return s_kernels<NormInf>; }
const ImageNormKernels& normDiffL1() { return s_kernels<NormL1>; }
const ImageNormKernels& normDiffL2() { return s_kernels<NormL2>; }
} // namespace HWY_NAMESPACE
} // namespace customipp
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace customipp {
namespace {
HWY_EXPORT(normDiffInf);
HWY_EXPORT(normDiffL1);
HWY_EXPORT(normDiffL2);
const ImageNormKernels& kernelsNormDiffInf() { return HWY_DYNAMIC_DISPATCH(normDiffInf)(); }
const ImageNormKernels& kernelsNormDiffL1() { return HWY_DYNAMIC_DISPATCH(normDiffL1)(); }
const ImageNormKernels& kernelsNormDiffL2() { return HWY_DYNAMIC_DISPATCH(normDiffL2)(); }
} // namespace
} // namespace customipp
#include "../entryPoints.h"
#include <customipp/normDiff.def>
#endif // HWY_ONCE
