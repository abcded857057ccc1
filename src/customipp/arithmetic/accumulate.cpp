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

/** The sums are not fused with the products: both are rounded to float, on every processor. */
template <class T> struct SumOfProducts {
    static constexpr size_t period = 1;
    static constexpr size_t granularity = 1;
    using D = hn::ScalableTag<float>;
    using Pixels = hn::Rebind<T, D>;
    const T* first;
    const T* second;
    const float* sums;

    HWY_INLINE hn::Vec<D> end(size_t i, size_t lanes)
    {
        const RowEnds<Pixels> ends(lanes);
        return sum(ends.load(first + i), ends.load(second + i), RowEnds<D>(lanes).load(sums + i));
    }
    HWY_INLINE void start(size_t) {}
    template <size_t J> HWY_INLINE hn::Vec<D> at(size_t i)
    {
        return sum(hn::LoadU(Pixels(), first + i), hn::LoadU(Pixels(), second + i), hn::LoadU(D(), sums + i));
    }

private:
    static HWY_INLINE hn::Vec<D> sum(hn::Vec<Pixels> a, hn::Vec<Pixels> b, hn::Vec<D> before)
    {
        return hn::Add(before, hn::Mul(floats(a), floats(b)));
    }
    static HWY_INLINE hn::Vec<D> floats(hn::Vec<Pixels> pixels)
    {
        if constexpr (hwy::IsFloat<T>())
            return pixels;
        else
            return hn::ConvertTo(D(), hn::PromoteTo(hn::Rebind<int32_t, D>(), pixels));
    }
};

template <class T>
IppStatus addProducts(Rows<const T> first, Rows<const T> second, Rows<float> sums, Extent extent)
{
    for (size_t y = 0; y < extent.rows; ++y)
        storeRow(SumOfProducts<T> {first.row(y), second.row(y), sums.row(y)}, sums.row(y), extent.lanes);
    return ippStsNoErr;
}

} // namespace

const auto& accumulatedProducts()
{
    static constexpr AccumulateKernels<Ipp8u, Ipp16u, Ipp32f> s_kernels {
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
