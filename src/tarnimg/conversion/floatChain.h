#pragma once

#include <customipp/types.h>

#include <cstddef>
#include <tuple>

namespace conversion {

/** Limits, subtracts, divides and adds, each of the last three a float operation with its own rounding. */
struct FloatChain {
    Ipp32f low;
    Ipp32f high;
    Ipp32f subtrahend; ///< +0 changes no float
    Ipp32f divisor; ///< nor does 1
    Ipp32f summand; ///< nor does -0

    /**
     * For targets of 8 bits that the output range does not leave: one multiplication and one addition, whose
     * constant is so large that the float's low 12 bits are the fraction of the result plus a half, and 4 in
     * the last place.
     */
    struct Guess {
        bool usable = false;
        Ipp32f factor = 0;
        Ipp32f constant = 0;
    } guess;

    /** Finds the guess for an output range in double precision. */
    void setGuess(double i_factor, double i_constant);

    /** All numbers are so far from the ends of the float range that a quotient can be made of products. */
    bool isModerate() const;
};

template <class T>
using FloatChainRow
    = void (*)(const Ipp32f* i_source, T* o_target, std::size_t i_count, const FloatChain& i_chain);

/** Rows into each pixel type: integers are rounded to nearest, ties to even, and saturated; NaN is their
 * least value. */
using FloatChainTable = std::tuple<FloatChainRow<Ipp8u>, FloatChainRow<Ipp8s>, FloatChainRow<Ipp16u>,
    FloatChainRow<Ipp16s>, FloatChainRow<Ipp32f>>;

const FloatChainTable& floatChainTable();

} // namespace conversion
