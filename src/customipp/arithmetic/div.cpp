// Quotient of two images, and of an image and constants.
#include "pointwise.h"

#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "arithmetic/div.cpp"
#include <hwy/foreach_target.h>
#include <hwy/highway.h>

#include "parts-inl.h"

#include <cmath>

HWY_BEFORE_NAMESPACE();
namespace customipp {
namespace HWY_NAMESPACE {
namespace {

/** 2^-scaleFactor, where factors beyond the given ones change no result. */
template <class F> F scaleOf(int scaleFactor, int leastFactor, int greatestFactor)
{
    return std::ldexp(F {1}, -std::clamp(scaleFactor, leastFactor, greatestFactor));
}

/**
 * The quotient of two images by one division in type F, which is scaled exactly and then rounded.
 *
 * Why the rounded division does no harm: a quotient that is not halfway between two integers is at least 1 /
 * (2a) away from there, a being the divisor. The error of the division is at most 2^-24 (double: 2^-53) of
 * the quotient b * 2^k / a, so it is less than that as long as b * 2^k < 2^23 (2^52). Halfway cases are
 * exact.
 */
template <class T, class F> struct Quotient : PlainOperation {
    using D = hn::ScalableTag<T>;
    using Unsigned = hn::RebindToUnsigned<D>;
    F scale;
    hn::Vec<Unsigned> leastDivisor = hn::Set(Unsigned(), greatest<hn::TFromD<Unsigned>>);

    explicit Quotient(F factor) : scale(factor) {}

    HWY_INLINE hn::Vec<D> operator()(D d, hn::Vec<D> divisor, hn::Vec<D> dividend)
    {
        leastDivisor = hn::Min(leastDivisor, hn::BitCast(Unsigned(), divisor));
        const auto isZero = hn::Eq(divisor, hn::Zero(d));
        const auto quotient
            = joined<lastPart>(d, hn::IfThenElse(isZero, hn::Set(d, T {1}), divisor), dividend);
        auto end = hn::Set(d, greatest<T>);
        if constexpr (hwy::IsSigned<T>())
            end = hn::Xor(end, hn::BroadcastSignBit(dividend));
        end = hn::IfThenZeroElse(hn::Eq(dividend, hn::Zero(d)), end);
        return hn::IfThenElse(isZero, end, quotient);
    }

    IppStatus status() const
    {
        return hn::AllFalse(Unsigned(), hn::Eq(leastDivisor, hn::Zero(Unsigned()))) ? ippStsNoErr
                                                                                    : ippStsDivByZero;
    }

private:
    static constexpr int lastPart = partsOf<T, F> - 1;

    template <int Part> HWY_INLINE hn::Vec<D> joined(D d, hn::Vec<D> divisor, hn::Vec<D> dividend) const
    {
        const auto exact = hn::Div(floatsOf<F, Part>(d, dividend), floatsOf<F, Part>(d, divisor));
        const auto scaled = hn::Mul(exact, hn::Set(hn::DFromV<decltype(exact)>(), scale));
        const auto part = roundedPart<T, Part>(limited<T>(scaled));
        if constexpr (Part == 0)
            return part;
        else
            return hn::Or(part, joined<Part - 1>(d, divisor, dividend));
    }
};

/** One IEEE division. */
template <> struct Quotient<Ipp32f, Ipp32f> : PlainOperation {
    using D = hn::ScalableTag<Ipp32f>;
    hn::Vec<D> zeroDivisors;

    // Written out, because a constructor made by the compiler is not compiled for the target.
    HWY_INLINE Quotient() : zeroDivisors(hn::Zero(D())) {}

    HWY_INLINE hn::Vec<D> operator()(D d, hn::Vec<D> divisor, hn::Vec<D> dividend)
    {
        zeroDivisors = hn::Or(zeroDivisors, hn::VecFromMask(d, hn::Eq(divisor, hn::Zero(d))));
        return hn::Div(dividend, divisor);
    }

    IppStatus status() const
    {
        const hn::RebindToUnsigned<D> bits;
        return hn::AllTrue(bits, hn::Eq(hn::BitCast(bits, zeroDivisors), hn::Zero(bits))) ? ippStsNoErr
                                                                                          : ippStsDivByZero;
    }
};

/** As above for divisors that are known not to be 0. */
struct FloatQuotientByConstant : PlainOperation {
    template <class D, class V> HWY_INLINE V operator()(D, V divisor, V dividend) const
    {
        return hn::Div(dividend, divisor);
    }
};

/**
 * The quotient by constants other than 0, as a product with the scaled reciprocal in type F.
 *
 * The product may be off, by less than 2^-22 (double: 2^-51) of itself. It is then rounded to a grid that is
 * finer than the distance of any other quotient from a halfway case, and coarser than the error: so halfway
 * cases are exact again. For 8 bits that distance is more than 2^-9, the grid 2^-10 and the error less than
 * 2^-14; for 16 bits 2^-17, 2^-19 and 2^-35. With a positive factor all of it shrinks alike.
 */
template <class T, class F> struct QuotientByConstant {
    using D = hn::ScalableTag<T>;
    using DF = hn::Repartition<F, D>;
    F scale;
    F grid;

    explicit QuotientByConstant(int scaleFactor)
        : scale(scaleOf<F>(scaleFactor, leastFactor, greatestFactor)),
          // Adding this leaves no more bits below the point than the grid has.
          grid(std::ldexp(F {1.5}, std::numeric_limits<F>::digits - 1 - gridBits) * std::min(scale, F {1}))
    {
    }

    IppStatus status() const { return ippStsNoErr; }

    struct Reciprocals {
        hn::Vec<DF> parts[partsOf<T, F>];
    };

    HWY_INLINE Reciprocals prepare(D d, hn::Vec<D> constants) const
    {
        Reciprocals reciprocals;
        fill<lastPart>(d, constants, reciprocals);
        return reciprocals;
    }

    HWY_INLINE hn::Vec<D> operator()(D d, const Reciprocals& reciprocals, hn::Vec<D> dividend) const
    {
        return joined<lastPart>(d, reciprocals, dividend);
    }

private:
    static constexpr int lastPart = partsOf<T, F> - 1;
    static constexpr int gridBits = sizeof(T) == 1 ? 10 : 19;
    // Beyond these every quotient but 0 saturates, or every one is less than one half.
    static constexpr int leastFactor = -2 * bitsOf<T> - 1;
    static constexpr int greatestFactor = bitsOf<T> + 1;

    template <int Part> HWY_INLINE void fill(D d, hn::Vec<D> constants, Reciprocals& reciprocals) const
    {
        reciprocals.parts[Part] = hn::Div(hn::Set(DF(), scale), floatsOf<F, Part>(d, constants));
        if constexpr (Part > 0)
            fill<Part - 1>(d, constants, reciprocals);
    }

    template <int Part>
    HWY_INLINE hn::Vec<D> joined(D d, const Reciprocals& reciprocals, hn::Vec<D> dividend) const
    {
        auto quotient = limited<T>(hn::Mul(floatsOf<F, Part>(d, dividend), reciprocals.parts[Part]));
        quotient = hn::Sub(hn::Add(quotient, hn::Set(DF(), grid)), hn::Set(DF(), grid));
        const auto part = roundedPart<T, Part>(quotient);
        if constexpr (Part == 0)
            return part;
        else
            return hn::Or(part, joined<Part - 1>(d, reciprocals, dividend));
    }
};

template <class T>
IppStatus quotient(
    Rows<const T> divisors, Rows<const T> dividends, Rows<T> out, Extent extent, int scaleFactor)
{
    const BinaryLoop<T> loop {divisors, dividends, out, extent};
    if constexpr (hwy::IsFloat<T>()) {
        return loop(Quotient<Ipp32f, Ipp32f>());
    } else if constexpr (sizeof(T) == 1) {
        return loop(Quotient<T, float>(scaleOf<float>(scaleFactor, -20, 20)));
    } else {
        if (scaleFactor >= -7)
            return loop(Quotient<T, float>(scaleOf<float>(scaleFactor, -7, 20)));
        return loop(Quotient<T, double>(scaleOf<double>(scaleFactor, -33, -8)));
    }
}

template <class T>
IppStatus quotientByConstants(
    Rows<const T> dividends, Constants<T> divisors, Rows<T> out, Extent extent, int scaleFactor)
{
    const ConstantsLoop<T, 1, false> loop {dividends, divisors, out, extent};
    if constexpr (hwy::IsFloat<T>()) {
        return loop(FloatQuotientByConstant());
    } else {
        const QuotientByConstant<T, std::conditional_t<sizeof(T) == 1, float, double>> op(scaleFactor);
        if (divisors.channels == 3)
            return ConstantsLoop<T, 3, false> {dividends, divisors, out, extent}(op);
        return loop(op);
    }
}

} // namespace

const auto& quotients()
{
    static constexpr BinaryKernels<Ipp8u, Ipp16u, Ipp16s, Ipp32f> s_kernels {
        quotient<Ipp8u>, quotient<Ipp16u>, quotient<Ipp16s>, quotient<Ipp32f>};
    return s_kernels;
}

const ConstantsKernels& quotientsByConstants()
{
    static constexpr ConstantsKernels s_kernels {
        {quotientByConstants<Ipp8u>, quotientByConstants<Ipp16u>, quotientByConstants<Ipp16s>,
            quotientByConstants<Ipp32f>},
        nullptr, true};
    return s_kernels;
}

} // namespace HWY_NAMESPACE
} // namespace customipp
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace customipp {
HWY_EXPORT(quotients);
HWY_EXPORT(quotientsByConstants);
static const auto& kernelsDiv() { return HWY_DYNAMIC_DISPATCH(quotients)(); }
static const auto& kernelsDivC() { return HWY_DYNAMIC_DISPATCH(quotientsByConstants)(); }
} // namespace customipp

#include "entryPoints.h"
#include <customipp/div.def>
#include <customipp/divC.def>
#endif // HWY_ONCE
