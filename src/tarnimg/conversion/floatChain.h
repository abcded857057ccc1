#pragma once

#include "conversion/reciprocal.h"

#include <customipp/types.h>

#include <cstddef>
#include <tuple>

namespace conversion {

/** Limits, subtracts, divides and adds, each of the last three a float operation with its own rounding. */
struct FloatChain {
    Ipp32f low;
    Ipp32f high;
    Ipp32f subtrahend; ///< the low end; +0 changes no float
    Ipp32f divisor; ///< nor does 1
    Ipp32f summand; ///< nor does -0

    /** Every number gives an integer of the target type: nothing saturates. */
    bool staysWithinType = false;
    /** The low end gives the least integer, as NaN does. */
    bool lowIsLeast = false;
    Reciprocal reciprocal = {}; ///< of the divisor, if all stays within the type

    /** Finds the short ways to integers of a type. */
    void findShortWays(double i_least, double i_greatest);
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
