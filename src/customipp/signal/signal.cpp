// Sequences: copy, conversion of floats to integers.
#include "signal.h"

#include <limits>

#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "signal/signal.cpp"
#include <hwy/foreach_target.h>
#include <hwy/highway.h>

#include "../movers/rows-inl.h"

HWY_BEFORE_NAMESPACE();
namespace customipp {
namespace HWY_NAMESPACE {
namespace {

/** To whole numbers in one of the rounding modes. */
template <int Mode, class V> HWY_INLINE V rounded(V v)
{
    using T = hn::TFromV<V>;
    if constexpr (Mode == ippRndNear)
        return hn::Round(v);
    if constexpr (Mode == ippRndZero)
        return hn::Trunc(v);
    // The greatest number below 0.5, as 0.5 would lift the numbers just below 0.5 to 1.
    constexpr T half = T(0.5) - std::numeric_limits<T>::epsilon() / 4;
    // From 1 / epsilon on every number is whole, and the sum could be rounded away from it.
    const hn::DFromV<V> d;
    const auto sum = hn::Trunc(hn::Add(v, hn::CopySignToAbs(hn::Set(d, half), v)));
    return hn::IfThenElse(hn::Lt(hn::Abs(v), hn::Set(d, 1 / std::numeric_limits<T>::epsilon())), sum, v);
}

/** Floats as they are. */
template <int Mode> struct ToInteger {
    static constexpr size_t least = 1;
    const Ipp32f* src;
    Ipp32s* dst;

    template <class D, class Store> HWY_INLINE void operator()(D d, size_t x, Store store) const
    {
        const hn::Rebind<float, D> df;
        const auto lowest = hn::Set(df, -2147483648.0f), beyond = hn::Set(df, 2147483648.0f);
        const auto v = rounded<Mode>(loadAnywhere(df, src + x));
        const auto limited = hn::IfThenElse(hn::Gt(v, lowest), v, lowest); // NaN is not greater
        const auto isBeyond = hn::RebindMask(d, hn::Ge(limited, beyond));
        const auto whole = hn::ConvertTo(d, hn::Min(limited, hn::Set(df, 2147483520.0f)));
        store(hn::IfThenElse(isBeyond, hn::Set(d, std::numeric_limits<Ipp32s>::max()), whole), d, dst + x);
    }
};

/** Floats times a scale, in double, which holds every float, every int and their products with the scale. */
template <int Mode> struct ScaledToInteger {
    static constexpr size_t least = 1;
    const Ipp32f* src;
    Ipp32s* dst;
    double scale;

    template <class D, class Store> HWY_INLINE void operator()(D d, size_t x, Store store) const
    {
        const hn::Rebind<float, D> df;
        const hn::Rebind<double, D> dd;
        const auto lowest = hn::Set(dd, double(std::numeric_limits<Ipp32s>::min()));
        const auto most = hn::Set(dd, double(std::numeric_limits<Ipp32s>::max()));
        const auto v
            = rounded<Mode>(hn::Mul(hn::PromoteTo(dd, loadAnywhere(df, src + x)), hn::Set(dd, scale)));
        const auto limited
            = hn::Min(hn::IfThenElse(hn::Gt(v, lowest), v, lowest), most); // NaN is not greater
        store(hn::DemoteTo(d, limited), d, dst + x);
    }
};

template <int Mode> void convert(const Ipp32f* src, Ipp32s* dst, size_t n, double scale)
{
    if (scale == 1)
        coverRow(hn::ScalableTag<Ipp32s>(), n, ToInteger<Mode> {src, dst});
    else
        coverRow(hn::Half<hn::ScalableTag<Ipp32s>>(), n, ScaledToInteger<Mode> {src, dst, scale});
}

constexpr SignalKernels s_kernels {{convert<0>, convert<1>, convert<2>}};
} // namespace

const SignalKernels& signalKernels() { return s_kernels; }
} // namespace HWY_NAMESPACE
} // namespace customipp
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace customipp {
namespace {
HWY_EXPORT(signalKernels);
const SignalKernels& kernelsSignal() { return HWY_DYNAMIC_DISPATCH(signalKernels)(); }
} // namespace
} // namespace customipp
#include "../entryPoints.h"
#include <customipp/signal.def>
#endif // HWY_ONCE
