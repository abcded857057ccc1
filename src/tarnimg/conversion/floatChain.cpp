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

#include "conversion/batches-inl.h"

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

/** Divides by two products, many times as fast, where the reciprocal is proven. */
struct DivideByProducts {
    template <class D, class V> HWY_INLINE V operator()(D d, V v, const FloatChain& i_chain) const
    {
        const V rest = hn::Mul(v, hn::Set(d, i_chain.reciprocal.rest));
        return hn::MulAdd(v, hn::Set(d, i_chain.reciprocal.value), rest);
    }
};

#if HWY_TARGET == HWY_AVX2 || HWY_TARGET == HWY_AVX3 || HWY_TARGET == HWY_NEON
constexpr bool s_hasFusedMulAdd = true;
#else
constexpr bool s_hasFusedMulAdd = false;
#endif

/** Subtracts, divides, adds. */
template <class Division, bool Adds = true, class D, class V>
HWY_INLINE V mapped(D d, V v, const FloatChain& i_chain)
{
    v = Division()(d, hn::Sub(v, hn::Set(d, i_chain.subtrahend)), i_chain);
    if constexpr (Adds)
        v = hn::Add(v, hn::Set(d, i_chain.summand));
    return v;
}

template <class T, class D>
HWY_INLINE void convertByDefinition(D d, const Ipp32f* i_source, T* o_target, const FloatChain& i_chain)
{
    using V = hn::Vec<D>;
    const V low = hn::Set(d, i_chain.low);
    const V high = hn::Set(d, i_chain.high);
    V v = hn::LoadU(d, i_source);
    v = hn::IfThenElse(hn::Lt(v, low), low, hn::IfThenElse(hn::Gt(v, high), high, v)); // NaN stays
    v = mapped<Divide>(d, v, i_chain);
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

/** How many vectors are taken at once. */
constexpr std::size_t s_batch = 4;

/** The greater one; the limit in the place of NaN. */
template <class D, class V> HWY_INLINE V atLeast(D d, V v, Ipp32f i_limit)
{
    const V limit = hn::Set(d, i_limit);
#if HWY_ARCH_X86
    return hn::Max(v, limit); // the second operand if one is NaN
#else
    return hn::IfThenElse(hn::Gt(v, limit), v, limit);
#endif
}

/**
 * Onto an output range that the target type holds: false, with nothing stored, if an element is NaN and the
 * low end of the range does not give the least value as NaN does.
 */
template <class Division, bool Adds, class T, class D>
HWY_INLINE bool convertBatch(D d, const Ipp32f* i_source, T* o_target, const FloatChain& i_chain)
{
    const std::size_t lanes = hn::Lanes(d);
    if constexpr (sizeof(Ipp32f) >= 4 * sizeof(T))
        fetchAhead(i_source, s_batch * lanes);
    if (!i_chain.lowIsLeast && HWY_UNLIKELY(!areNumbers(i_source, s_batch * lanes)))
        return false;
    const auto bitsOf = [&](const Ipp32f* i_from) HWY_ATTR {
        const auto v = hn::Min(atLeast(d, hn::LoadU(d, i_from), i_chain.low), hn::Set(d, i_chain.high));
        // Here the unit of a float is 1: the sum is rounded, ties to even, and its low bits are the integer.
        return hn::Add(mapped<Division, Adds>(d, v, i_chain), hn::Set(d, 0x1.8p23f));
    };
    storeLowBits(bitsOf(i_source), bitsOf(i_source + lanes), bitsOf(i_source + 2 * lanes),
        bitsOf(i_source + 3 * lanes), o_target);
    return true;
}

template <class Division, bool Adds, class T>
HWY_INLINE std::size_t convertBatches(
    const Ipp32f* i_source, T* o_target, std::size_t i_count, const FloatChain& i_chain)
{
    const FloatChain chain = i_chain; // stays in registers: no store can reach it
    const hn::ScalableTag<Ipp32f> d;
    const std::size_t lanes = hn::Lanes(d);
    std::size_t x = 0;
    for (; x + s_batch * lanes <= i_count; x += s_batch * lanes) {
        if (!convertBatch<Division, Adds>(d, i_source + x, o_target + x, chain)) {
            for (std::size_t i = 0; i < s_batch * lanes; i += lanes)
                convertByDefinition(d, i_source + x + i, o_target + x + i, chain);
        }
    }
    return x;
}

/** Takes as many elements as make whole batches. */
template <class T>
HWY_INLINE std::size_t convertShortly(
    const Ipp32f* i_source, T* o_target, std::size_t i_count, const FloatChain& i_chain)
{
    if (!s_hasFusedMulAdd || !i_chain.reciprocal.proven)
        return convertBatches<Divide, true>(i_source, o_target, i_count, i_chain);
    if (i_chain.summand != 0.0f)
        return convertBatches<DivideByProducts, true>(i_source, o_target, i_count, i_chain);
    return convertBatches<DivideByProducts, false>(i_source, o_target, i_count, i_chain);
}

template <class T>
void convertRow(const Ipp32f* i_source, T* o_target, std::size_t i_count, const FloatChain& i_chain)
{
    const FloatChain chain = i_chain; // stays in registers: no store can reach it
    const hn::ScalableTag<Ipp32f> d;
    const hn::CappedTag<Ipp32f, 1> one;
    const std::size_t lanes = hn::Lanes(d);
    std::size_t x = 0;
    if constexpr (!std::is_same_v<T, Ipp32f>)
        if (chain.staysWithinType)
            x = convertShortly(i_source, o_target, i_count, chain);
    for (; x + lanes <= i_count; x += lanes)
        convertByDefinition(d, i_source + x, o_target + x, chain);
    for (; x < i_count;
         ++x) { // by way of aligned places: a vector of one lane is read and written as a number
        Ipp32f from;
        T to;
        std::memcpy(&from, static_cast<const void*>(i_source + x), sizeof(from));
        convertByDefinition(one, &from, &to, chain);
        std::memcpy(static_cast<void*>(o_target + x), &to, sizeof(T));
    }
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

namespace {

/**
 * All numbers are so far from the ends of the float range that the quotient can be made of products. Only
 * quotients below 2^-30 are then so small that a product may not be normal, and these do not matter: added to
 * the summand they change no integer.
 */
bool isModerate(const FloatChain& i_chain)
{
    const auto isSmall = [](Ipp32f i_value) { return std::fabs(i_value) < 0x1p60f; };
    return isSmall(i_chain.low) && isSmall(i_chain.high) && isSmall(i_chain.summand)
        && isSmall(i_chain.divisor) && i_chain.divisor > 0x1p-60f;
}

} // namespace

void FloatChain::findShortWays(double i_least, double i_greatest)
{
    if (!isModerate(*this))
        return;
    // No operation falls where its operand rises, so the ends of the input range give those of the results.
    const Ipp32f first = (low - subtrahend) / divisor + summand;
    const Ipp32f last = (high - subtrahend) / divisor + summand;
    staysWithinType = std::nearbyint(first) >= i_least && std::nearbyint(last) <= i_greatest;
    lowIsLeast = std::nearbyint(first) == i_least;
    if (staysWithinType)
        reciprocal = Reciprocal::of(divisor);
}

} // namespace conversion
#endif // HWY_ONCE
