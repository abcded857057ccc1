// Natural logarithm.
#include "pointwise.h"

#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "arithmetic/ln.cpp"
#include <hwy/foreach_target.h>
#include <hwy/highway.h>

#include "pointwise-inl.h"

HWY_BEFORE_NAMESPACE();
namespace customipp {
namespace HWY_NAMESPACE {
namespace {

/**
 * x = 2^k (1 + f) with 1 + f from sqrt(1/2) to sqrt(2), so ln x = k ln 2 + ln(1 + f).
 *
 * With s = f / (2 + f) it is ln(1 + f) = 2 atanh(s) = 2s + s R(s^2), and as 2s = f - s f, also
 * f - (h - s (h + R)) with h = f^2 / 2: so the large part f enters without an error. R is 2 z / 3 + 2 z^2 / 5
 * + ..., here with minimax coefficients whose error is below 1e-8 of the result.
 */
struct Logarithm : PlainOperation {
    using D = hn::ScalableTag<float>;
    hn::Mask<D> belowNormal;
    hn::Mask<D> negative;

    // Written out, because a constructor made by the compiler is not compiled for the target.
    HWY_INLINE Logarithm() : belowNormal(hn::FirstN(D(), 0)), negative(belowNormal) {}

    HWY_INLINE hn::Vec<D> operator()(D d, hn::Vec<D> x)
    {
        const auto isBelowNormal = hn::Lt(x, hn::Set(d, IPP_MINABS_32F));
        const auto isNegative = hn::Lt(x, hn::Zero(d));
        belowNormal = hn::Or(belowNormal, isBelowNormal);
        negative = hn::Or(negative, isNegative);
        const auto ofFinite = hn::IfThenElse(hn::Lt(x, hn::Inf(d)), ofNormal(d, x), hn::Add(x, x));
        return hn::IfThenElse(
            isBelowNormal, hn::IfThenElse(isNegative, hn::NaN(d), hn::Neg(hn::Inf(d))), ofFinite);
    }

    IppStatus status() const
    {
        if (!hn::AllFalse(D(), negative))
            return ippStsLnNegArg;
        return hn::AllFalse(D(), belowNormal) ? ippStsNoErr : ippStsLnZeroArg;
    }

private:
    static HWY_INLINE hn::Vec<D> ofNormal(D d, hn::Vec<D> x)
    {
        const hn::RebindToSigned<D> dBits;
        const auto bits = hn::BitCast(dBits, x);
        const auto sqrtOfHalf = hn::Set(dBits, 0x3F3504F3);
        const auto exponent = hn::ShiftRight<23>(hn::Sub(bits, sqrtOfHalf));
        const auto k = hn::ConvertTo(d, exponent);
        const auto f = hn::Sub(hn::BitCast(d, hn::Sub(bits, hn::ShiftLeft<23>(exponent))), hn::Set(d, 1.0f));

        const auto s = hn::Div(f, hn::Add(hn::Set(d, 2.0f), f));
        const auto z = hn::Mul(s, s);
        auto r = hn::Add(hn::Set(d, 0.399887577f), hn::Mul(z, hn::Set(d, 0.295809859f)));
        r = hn::Mul(z, hn::Add(hn::Set(d, 0.666666851f), hn::Mul(z, r)));
        const auto h = hn::Mul(hn::Mul(f, hn::Set(d, 0.5f)), f);
        // ln 2 in two parts, of which the first has so few bits that its product with k is exact.
        const auto ln2 = hn::Set(d, 0.693138123f), ln2Rest = hn::Set(d, 9.05800061e-6f);
        const auto small = hn::Add(hn::Mul(s, hn::Add(h, r)), hn::Mul(k, ln2Rest));
        return hn::Sub(hn::Mul(k, ln2), hn::Sub(hn::Sub(h, small), f));
    }
};

} // namespace

const auto& logarithms() { return unaryPlainKernels<Logarithm, Ipp32f>(); }

} // namespace HWY_NAMESPACE
} // namespace customipp
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace customipp {
HWY_EXPORT(logarithms);
static const auto& kernelsLn() { return HWY_DYNAMIC_DISPATCH(logarithms)(); }
} // namespace customipp

#include "entryPoints.h"
#include <customipp/ln.def>
#endif // HWY_ONCE
