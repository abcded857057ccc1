// Product of two images, and of an image and constants.
#include "pointwise.h"

#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "arithmetic/mul.cpp"
#include <hwy/foreach_target.h>
#include <hwy/highway.h>

#include "scaled-inl.h"

HWY_BEFORE_NAMESPACE();
namespace customipp {
namespace HWY_NAMESPACE {
namespace {

template <class Low, class High> struct LowHigh {
    Low low;
    High high;
};

struct Product {
    template <class T> static constexpr int valueBits = 2 * bitsOf<T> - (hwy::IsSigned<T>() ? 1 : 0);

    template <class D, class V> static HWY_INLINE V saturated(D d, V a, V b)
    {
        using T = hn::TFromD<D>;
        if constexpr (hwy::IsFloat<T>()) {
            return hn::Mul(a, b);
        } else if constexpr (sizeof(T) == 1) {
            return narrowSaturated(d, wide(d, a, b));
        } else {
            const V low = hn::Mul(a, b);
            const V high = hn::MulHigh(a, b);
            const V greatestValue = hn::Set(d, greatest<T>);
            if constexpr (hwy::IsSigned<T>())
                return hn::IfThenElse(hn::Eq(high, hn::BroadcastSignBit(low)), low,
                    hn::Xor(greatestValue, hn::BroadcastSignBit(high)));
            else
                return hn::IfThenElse(hn::Eq(high, hn::Zero(d)), low, greatestValue);
        }
    }

    template <class D, class V> static HWY_INLINE auto halves(D, V a, V b)
    {
        const hn::RebindToUnsigned<D> dLow;
        return LowHigh<hn::Vec<decltype(dLow)>, V> {hn::BitCast(dLow, hn::Mul(a, b)), hn::MulHigh(a, b)};
    }

    template <class D, class V> static HWY_INLINE auto wide(D d, V a, V b)
    {
        using T = hn::TFromD<D>;
        using Wide = hwy::MakeWide<T>;
        const hn::Repartition<Wide, D> dWide;
        using Pair = EvenOdd<hn::Vec<decltype(dWide)>>;
        if constexpr (sizeof(T) == 1) {
            const auto x = widen<Wide>(d, a);
            const auto y = widen<Wide>(d, b);
            return Pair {hn::Mul(x.even, y.even), hn::Mul(x.odd, y.odd)};
        } else {
            // The halves of the products put together: a wide multiplication is slower.
            const V low = hn::Mul(a, b);
            const V high = hn::MulHigh(a, b);
            const hn::RebindToUnsigned<decltype(dWide)> dShift;
            const auto highUp = hn::BitCast(d, hn::ShiftLeft<bitsOf<T>>(hn::BitCast(dShift, high)));
            const auto lowDown = hn::BitCast(d, hn::ShiftRight<bitsOf<T>>(hn::BitCast(dShift, low)));
            return Pair {
                hn::BitCast(dWide, hn::OddEven(highUp, low)), hn::BitCast(dWide, hn::OddEven(high, lowDown))};
        }
    }
};

} // namespace

const auto& products() { return binaryScaledKernels<Product>(); }
const ConstantsKernels& productsWithConstants() { return constantsScaledKernels<Product>(); }

} // namespace HWY_NAMESPACE
} // namespace customipp
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace customipp {
HWY_EXPORT(products);
HWY_EXPORT(productsWithConstants);
static const auto& kernelsMul() { return HWY_DYNAMIC_DISPATCH(products)(); }
static const auto& kernelsMulC() { return HWY_DYNAMIC_DISPATCH(productsWithConstants)(); }
} // namespace customipp

#include "entryPoints.h"
#include <customipp/mul.def>
#include <customipp/mulC.def>
#endif // HWY_ONCE
