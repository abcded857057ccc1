// A linear map onto integers by a guess that is nearly always certain, for each instruction set anew.
#if defined(TARNIMG_CONVERSION_MAP_GUESS_INL_H) == defined(HWY_TARGET_TOGGLE)
#ifdef TARNIMG_CONVERSION_MAP_GUESS_INL_H
#undef TARNIMG_CONVERSION_MAP_GUESS_INL_H
#else
#define TARNIMG_CONVERSION_MAP_GUESS_INL_H
#endif

#include "conversion/linearMap.h"

#include <hwy/highway.h>

#include "conversion/batches-inl.h"
#include "conversion/loadAsDouble-inl.h"

HWY_BEFORE_NAMESPACE();
namespace conversion {
namespace HWY_NAMESPACE {
namespace {

namespace hn = hwy::HWY_NAMESPACE;

/**
 * The elements mapped by one multiplication and addition whose constant is so large that the double's low
 * bits are a number with a fixed point; see LinearMap::guess.
 */
template <class D64, class S> HWY_INLINE auto guessedBits(D64 d, const S* i_source, const LinearMap& i_map)
{
    const hn::Repartition<std::uint32_t, D64> bits;
    auto v = loadAsDouble(d, i_source);
    if (i_map.limits)
        v = hn::Max(hn::Min(v, hn::Set(d, i_map.high)), hn::Set(d, i_map.low));
    if (i_map.guess.subtracts)
        v = hn::Sub(v, hn::Set(d, i_map.low));
    return hn::BitCast(bits, hn::MulAdd(v, hn::Set(d, i_map.factor), hn::Set(d, i_map.guess.constant)));
}

/** Four vectors of doubles share one question whether the guess holds. */
template <class D64> HWY_INLINE std::size_t guessedAtOnce(D64 d) { return 4 * hn::Lanes(d); }

/**
 * So many elements at once onto integers: false, with nothing stored, if one lies so near a half that its
 * rounding is in doubt, or is NaN.
 */
template <class S, class T, class D64>
HWY_INLINE bool mapByGuess(D64 d, const S* i_source, T* o_target, const LinearMap& i_map)
{
    constexpr int fractionBits = LinearMap::fractionBits<T>;
    const std::size_t lanes = hn::Lanes(d);
    const hn::Repartition<std::uint64_t, D64> d64;
    const hn::Repartition<std::uint32_t, D64> d32;
    if constexpr (sizeof(S) >= 4 * sizeof(T))
        fetchAhead(i_source, guessedAtOnce(d));
    if constexpr (hwy::IsFloat<S>())
        if (HWY_UNLIKELY(!areNumbers(i_source, guessedAtOnce(d))))
            return false;
    const auto bits0 = guessedBits(d, i_source, i_map);
    const auto bits1 = guessedBits(d, i_source + lanes, i_map);
    const auto bits2 = guessedBits(d, i_source + 2 * lanes, i_map);
    const auto bits3 = guessedBits(d, i_source + 3 * lanes, i_map);

    // The fractions at the top of 32 bits: those below four units are in doubt.
    constexpr int above = 32 - fractionBits;
    const auto fractions01 = hn::ShiftLeft<above>(hn::ConcatEven(d32, bits1, bits0));
    const auto fractions23 = hn::ShiftLeft<above>(hn::ConcatEven(d32, bits3, bits2));
    const auto least = hn::Min(fractions01, fractions23);
    if (HWY_UNLIKELY(!hn::AllFalse(d32, hn::Lt(least, hn::Set(d32, 4u << above)))))
        return false;

    if constexpr (fractionBits == 32) {
        storeLowBits(hn::ConcatOdd(d32, bits1, bits0), hn::ConcatOdd(d32, bits3, bits2), o_target);
    } else {
        const auto whole = [d32, d64](auto i_bits) HWY_ATTR {
            return hn::BitCast(d32, hn::ShiftRight<fractionBits>(hn::BitCast(d64, i_bits)));
        };
        storeLowBits(hn::ConcatEven(d32, whole(bits1), whole(bits0)),
            hn::ConcatEven(d32, whole(bits3), whole(bits2)), o_target);
    }
    return true;
}

} // namespace
} // namespace HWY_NAMESPACE
} // namespace conversion
HWY_AFTER_NAMESPACE();

#endif
