// Norms of one image.
#include "norm.h"

#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "statistics/norm.cpp"
#include <hwy/foreach_target.h>
#include <hwy/highway.h>

#include "norm-inl.h"

HWY_BEFORE_NAMESPACE();
namespace customipp {
namespace HWY_NAMESPACE {
namespace {

template <class Norm, class T> constexpr NormRun<T> s_selected = norm<Norm, Selected<T, PlanesOf<T, 1>>, T>;
template <class Norm, int Channel>
constexpr NormRun<Ipp8u> s_selectedChannel = norm<Norm, Selected<Ipp8u, ChannelOf<Ipp8u, Channel>>, Ipp8u>;

template <class Norm>
constexpr NormKernels s_kernels {
    {{norm<Norm, PlanesOf<Ipp8u, 1>, Ipp8u>}, {norm<Norm, PlanesOf<Ipp8u, 3>, Ipp8u>},
        {norm<Norm, PlanesOf<Ipp8u, 4>, Ipp8u>}, {norm<Norm, PlanesOf<Ipp16u, 1>, Ipp16u>},
        {norm<Norm, PlanesOf<Ipp16s, 1>, Ipp16s>}, {norm<Norm, DoublesOf<false>, Ipp32f>}},
    {{s_selected<Norm, Ipp8u>}, {s_selected<Norm, Ipp16u>}, {norm<Norm, DoublesOf<true>, Ipp32f>}},
    {s_selectedChannel<Norm, 0>, s_selectedChannel<Norm, 1>, s_selectedChannel<Norm, 2>}};

} // namespace

const NormKernels& normInf() { return s_kernels<NormInf>; }
const NormKernels& normL1() { return s_kernels<NormL1>; }
const NormKernels& normL2() { return s_kernels<NormL2>; }
} // namespace HWY_NAMESPACE
} // namespace customipp
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace customipp {
namespace {
HWY_EXPORT(normInf);
HWY_EXPORT(normL1);
HWY_EXPORT(normL2);
const NormKernels& kernelsNormInf() { return HWY_DYNAMIC_DISPATCH(normInf)(); }
const NormKernels& kernelsNormL1() { return HWY_DYNAMIC_DISPATCH(normL1)(); }
const NormKernels& kernelsNormL2() { return HWY_DYNAMIC_DISPATCH(normL2)(); }
} // namespace
} // namespace customipp
#include "../entryPoints.h"
#include <customipp/norm.def>
#endif // HWY_ONCE
