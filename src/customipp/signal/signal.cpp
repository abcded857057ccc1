// Sequences: conversion of floats to integers, least and greatest element.
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

/** The least and the greatest so far. A NaN replaces neither. */
template <class V> struct Extremes {
    V least, greatest;

    HWY_INLINE void take(V v) { take(v, v); }
    HWY_INLINE void take(V low, V high)
    {
        if constexpr (hwy::IsFloat<hn::TFromV<V>>()) {
            least = hn::IfThenElse(hn::Lt(low, least), low, least);
            greatest = hn::IfThenElse(hn::Gt(high, greatest), high, greatest);
        } else {
            least = hn::Min(low, least);
            greatest = hn::Max(high, greatest);
        }
    }
};

template <class D, class T> HWY_INLINE void minMaxOf(D d, const T* src, size_t n, T* least, T* greatest)
{
    const size_t step = hn::Lanes(d);
    if (n < step) {
        if constexpr (hn::MaxLanes(d) > 1)
            return minMaxOf(hn::Half<D>(), src, n, least, greatest);
    }
    using Limits = std::numeric_limits<T>;
    const auto high = hn::Set(d, Limits::has_infinity ? Limits::infinity() : Limits::max());
    const auto low = hn::Set(d, Limits::has_infinity ? -Limits::infinity() : Limits::lowest());
    Extremes<hn::Vec<D>> a {high, low}, b = a, c = a, e = a;
    size_t i = 0;
    for (; i + 4 * step <= n; i += 4 * step) {
        a.take(loadAnywhere(d, src + i));
        b.take(loadAnywhere(d, src + i + step));
        c.take(loadAnywhere(d, src + i + 2 * step));
        e.take(loadAnywhere(d, src + i + 3 * step));
    }
    for (; i + step <= n; i += step)
        a.take(loadAnywhere(d, src + i));
    a.take(loadAnywhere(d, src + n - step));
    a.take(b.least, b.greatest);
    c.take(e.least, e.greatest);
    a.take(c.least, c.greatest);
    *least = hn::GetLane(hn::MinOfLanes(d, a.least));
    *greatest = hn::GetLane(hn::MaxOfLanes(d, a.greatest));
}

template <class T> void minMax(const T* src, size_t n, T* least, T* greatest)
{
    T min, max;
    minMaxOf(hn::ScalableTag<T>(), src, n, &min, &max);
    if constexpr (hwy::IsFloat<T>()) {
        if (min > max) // nothing but NaN
            min = max = std::numeric_limits<T>::quiet_NaN();
        // Of two zeros the sign would depend on the vectors.
        min += T(0);
        max += T(0);
    }
    *least = min;
    *greatest = max;
}

constexpr SignalKernels s_kernels {
    {convert<0>, convert<1>, convert<2>}, {minMax<Ipp32u>, minMax<Ipp32s>, minMax<Ipp64f>}};
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
