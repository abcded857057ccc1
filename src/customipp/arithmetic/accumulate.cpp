// Products and squares added to an image of floats.
#include "pointwise.h"

#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "arithmetic/accumulate.cpp"
#include <hwy/foreach_target.h>
#include <hwy/highway.h>

#include "pointwise-inl.h"

HWY_BEFORE_NAMESPACE();
namespace customipp {
namespace HWY_NAMESPACE {
namespace {

/** The pixels from a place on as floats, as many as a vector of floats has lanes. */
template <class T>
HWY_INLINE auto loadFloats(const T* pixels)
{
    const hn::ScalableTag<float> d;
    if constexpr (hwy::IsFloat<T>()) {
        return hn::LoadU(d, pixels);
    } else {
        const hn::Rebind<T, decltype(d)> dPixels;
        const hn::Rebind<int32_t, decltype(d)> dInts;
        return hn::ConvertTo(d, hn::PromoteTo(dInts, hn::LoadU(dPixels, pixels)));
    }
}

/** The sums are not fused with the products: both are rounded to float, on every processor. */
template <class T>
struct SumOfProducts {
    static constexpr size_t period = 1;
    static constexpr size_t granularity = 1;
    using D = hn::ScalableTag<float>;
    const T* first;
    const T* second;
    const float* sums;

    struct Copies {
        ShortRow<T, D> first;
        ShortRow<T, D> second;
        ShortRow<float, D> sums;
    };
    HWY_INLINE void takeOver(Copies& copies, size_t lanes)
    {
        copies.first.takeOver(first, lanes);
        copies.second.takeOver(second, lanes);
        copies.sums.takeOver(sums, lanes);
    }
    HWY_INLINE hn::Vec<D> anywhere(size_t i)
    {
        const auto product = hn::Mul(loadFloats(first + i), loadFloats(second + i));
        return hn::Add(hn::LoadU(D(), sums + i), product);
    }
    HWY_INLINE void start(size_t) { }
    template <size_t J>
    HWY_INLINE hn::Vec<D> at(size_t i)
    {
        return anywhere(i);
    }
};

template <class T>
IppStatus addProducts(Rows<const T> first, Rows<const T> second, Rows<float> sums, Extent extent)
{
    for (size_t y = 0; y < extent.rows; ++y)
        storeRow(SumOfProducts<T>{first.row(y), second.row(y), sums.row(y)}, sums.row(y), extent.lanes);
    return ippStsNoErr;
}

} // namespace

const auto& accumulatedProducts()
{
    static constexpr AccumulateKernels<Ipp8u, Ipp16u, Ipp32f> s_kernels{
        addProducts<Ipp8u>, addProducts<Ipp16u>, addProducts<Ipp32f>};
    return s_kernels;
}

} // namespace HWY_NAMESPACE
} // namespace customipp
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace customipp {
HWY_EXPORT(accumulatedProducts);
static const auto& kernelsAddProduct() { return HWY_DYNAMIC_DISPATCH(accumulatedProducts)(); }
// A square is the product of an image with itself.
static const auto& kernelsAddSquare() { return HWY_DYNAMIC_DISPATCH(accumulatedProducts)(); }
} // namespace customipp

#include "entryPoints.h"
#include <customipp/addProduct.def>
#include <customipp/addSquare.def>
#endif // HWY_ONCE
