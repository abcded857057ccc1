// Floats through the whole chain in one pass: the passes of the pixel layer, which wait for the memory, give
// the same pixels.
#include "conversion/floatChain.h"

#include <cmath>
#include <cstring>
#include <limits>
#include <type_traits>

#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "conversion/floatChain.cpp"
#include <hwy/foreach_target.h>

#include <hwy/highway.h>

HWY_BEFORE_NAMESPACE();
namespace conversion {
namespace HWY_NAMESPACE {
namespace {

namespace hn = hwy::HWY_NAMESPACE;

/** Divides by the division instruction. */
struct Divide {
    template <class D, class V> HWY_INLINE V operator()(D d, V v, const FloatChain& i_chain) const
    {
        return hn::Div(v, hn::Set(d, i_chain.divisor));
    }
};

/**
 * Divides by products, several times as fast, where there is a fused multiply-add: the remainder of a
 * quotient is then exact. The first correction gives a quotient next to the right one. As the reciprocal is
 * correctly rounded, the second gives the right one (Markstein), except for quotients so small that the
 * chain's rounding to integers forgets them.
 */
struct DivideByProducts {
    template <class D, class V> HWY_INLINE V operator()(D d, V v, const FloatChain& i_chain) const
    {
        const V divisor = hn::Set(d, i_chain.divisor);
        const V reciprocal = hn::Set(d, 1.0f / i_chain.divisor);
        V quotient = hn::Mul(v, reciprocal);
        quotient = hn::MulAdd(hn::NegMulAdd(quotient, divisor, v), reciprocal, quotient);
        return hn::MulAdd(hn::NegMulAdd(quotient, divisor, v), reciprocal, quotient);
    }
};

#if HWY_TARGET == HWY_AVX2 || HWY_TARGET == HWY_AVX3 || HWY_TARGET == HWY_NEON
constexpr bool s_hasFusedMulAdd = true;
#else
constexpr bool s_hasFusedMulAdd = false;
#endif

template <class Division, class T, class D>
HWY_INLINE void convertVector(D d, const Ipp32f* i_source, T* o_target, const FloatChain& i_chain)
{
    using V = hn::Vec<D>;
    const V low = hn::Set(d, i_chain.low);
    const V high = hn::Set(d, i_chain.high);
    V v = hn::LoadU(d, i_source);
    v = hn::IfThenElse(hn::Lt(v, low), low, hn::IfThenElse(hn::Gt(v, high), high, v)); // NaN stays
    v = Division()(d, hn::Sub(v, hn::Set(d, i_chain.subtrahend)), i_chain);
    v = hn::Add(v, hn::Set(d, i_chain.summand));
    if constexpr (std::is_same_v<T, Ipp32f>) {
        hn::StoreU(v, d, o_target);
    } else {
        const hn::Rebind<T, D> dt;
        const V least = hn::Set(d, Ipp32f(std::numeric_limits<T>::min()));
        const V greatest = hn::Set(d, Ipp32f(std::numeric_limits<T>::max()));
        v = hn::Min(hn::IfThenElse(hn::Gt(v, least), v, least), greatest); // NaN becomes the least too
        hn::StoreU(hn::DemoteTo(dt, hn::NearestInt(v)), dt, o_target);
    }
}

/** How many vectors share one question whether their guess holds. */
constexpr std::size_t s_batch = 4;

/**
 * The guess: false, with nothing stored, if an element of the batch lies so near a half that its rounding is
 * in doubt, or is not a number.
 */
template <class T, class D>
HWY_INLINE bool convertByGuess(D d, const Ipp32f* i_source, T* o_target, const FloatChain& i_chain)
{
    const hn::RebindToUnsigned<D> du;
    const std::size_t lanes = hn::Lanes(d);
    const auto bitsOf = [&](auto i_values) HWY_ATTR {
        const auto limited = hn::Max(hn::Min(i_values, hn::Set(d, i_chain.high)), hn::Set(d, i_chain.low));
        return hn::BitCast(
            du, hn::MulAdd(limited, hn::Set(d, i_chain.guess.factor), hn::Set(d, i_chain.guess.constant)));
    };
    const auto fraction = [du](auto i_bits) HWY_ATTR { return hn::And(i_bits, hn::Set(du, 0xFF8u)); };
    const auto v0 = hn::LoadU(d, i_source);
    const auto v1 = hn::LoadU(d, i_source + lanes);
    const auto v2 = hn::LoadU(d, i_source + 2 * lanes);
    const auto v3 = hn::LoadU(d, i_source + 3 * lanes);
    const auto bits0 = bitsOf(v0);
    const auto bits1 = bitsOf(v1);
    const auto bits2 = bitsOf(v2);
    const auto bits3 = bitsOf(v3);
    const auto least
        = hn::Min(hn::Min(fraction(bits0), fraction(bits1)), hn::Min(fraction(bits2), fraction(bits3)));
    // Infinities of both signs give NaN here too, which costs time only.
    const auto sum = hn::Add(hn::Add(v0, v1), hn::Add(v2, v3));
    const auto isDoubtful = hn::Or(hn::Eq(least, hn::Zero(du)), hn::RebindMask(du, hn::IsNaN(sum)));
    if (HWY_UNLIKELY(!hn::AllFalse(du, isDoubtful)))
        return false;
    const auto store = [&](auto i_bits, T* o_to) HWY_ATTR {
        const hn::Rebind<std::make_unsigned_t<T>, D> dtu;
        const hn::Rebind<T, D> dt;
        hn::StoreU(hn::BitCast(dt, hn::TruncateTo(dtu, hn::ShiftRight<12>(i_bits))), dt, o_to);
    };
    store(bits0, o_target);
    store(bits1, o_target + lanes);
    store(bits2, o_target + 2 * lanes);
    store(bits3, o_target + 3 * lanes);
    return true;
}

template <class Division, class T>
HWY_INLINE void convertAll(
    const Ipp32f* i_source, T* o_target, std::size_t i_count, const FloatChain& i_chain)
{
    const FloatChain chain = i_chain; // stays in registers: no store can reach it
    const hn::ScalableTag<Ipp32f> d;
    const hn::CappedTag<Ipp32f, 1> one;
    const std::size_t lanes = hn::Lanes(d);
    std::size_t x = 0;
    if constexpr (sizeof(T) == 1) {
        if (chain.guess.usable) {
            for (; x + s_batch * lanes <= i_count; x += s_batch * lanes) {
                if (!convertByGuess(d, i_source + x, o_target + x, chain)) {
                    for (std::size_t i = 0; i < s_batch; ++i)
                        convertVector<Division>(d, i_source + x + i * lanes, o_target + x + i * lanes, chain);
                }
            }
        }
    }
    for (; x + lanes <= i_count; x += lanes)
        convertVector<Division>(d, i_source + x, o_target + x, chain);
    for (; x < i_count;
         ++x) { // by way of aligned places: a vector of one lane is read and written as a number
        Ipp32f from;
        T to;
        std::memcpy(&from, static_cast<const void*>(i_source + x), sizeof(from));
        convertVector<Division>(one, &from, &to, chain);
        std::memcpy(static_cast<void*>(o_target + x), &to, sizeof(T));
    }
}

template <class T>
void convertRow(const Ipp32f* i_source, T* o_target, std::size_t i_count, const FloatChain& i_chain)
{
    if (s_hasFusedMulAdd && !std::is_same_v<T, Ipp32f> && i_chain.isModerate())
        convertAll<DivideByProducts>(i_source, o_target, i_count, i_chain);
    else
        convertAll<Divide>(i_source, o_target, i_count, i_chain);
}

} // namespace

const FloatChainTable& floatChains()
{
    static constexpr FloatChainTable table {
        convertRow<Ipp8u>, convertRow<Ipp8s>, convertRow<Ipp16u>, convertRow<Ipp16s>, convertRow<Ipp32f>};
    return table;
}

} // namespace HWY_NAMESPACE
} // namespace conversion
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace conversion {

HWY_EXPORT(floatChains);

const FloatChainTable& floatChainTable() { return HWY_DYNAMIC_DISPATCH(floatChains)(); }

void FloatChain::setGuess(double i_factor, double i_constant)
{
    // The chain limits to floats and then rounds three times, each time by 2^-24 of one of these terms; so do
    // the guess's factor and its product without a fused addition. The sum is rounded to the unit, 2^-12,
    // like the constant. A fourfold unit is allowed for all together.
    const double terms = std::fmax(std::fabs(double(low)), std::fabs(double(high))) * std::fabs(i_factor)
        + std::fabs(i_constant);
    guess.usable = isModerate() && terms < 600.0;
    guess.factor = Ipp32f(i_factor);
    guess.constant = Ipp32f(i_constant + 0.5 + 0x4p-12 + 0x1.8p11);
}

bool FloatChain::isModerate() const
{
    const auto isSmall = [](Ipp32f i_value) { return std::fabs(i_value) < 0x1p60f; };
    return isSmall(low) && isSmall(high) && isSmall(summand) && isSmall(divisor) && divisor > 0x1p-60f;
}

} // namespace conversion
#endif // HWY_ONCE
