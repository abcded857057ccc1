#pragma once

#include "display/greyLine.h"

#include <tarnbase/cRange.h>

#include <QtGlobal>

namespace display {

/** What becomes of the fraction of a grey value. */
enum class Rounding { HalvesUp, Truncated };

/**
 * How integers become grey values: those at or below the truncated low end are 0, then those at or above the
 * truncated high end 255, and in between the grey value is (v - low) / step, rounded.
 *
 * The ends are those of the element's own width, cut to it.
 */
struct IntegerScale {
    /** @param i_bits the width of an element; more than 32 means no scaling: the distance from the low end is
     * the result */
    IntegerScale(const cDblRange& i_range, Rounding i_rounding, int i_bits, bool i_signed);

    double low;
    double step; ///< the width of the range / 255
    double bias; ///< added before the fraction is dropped
    qint64 first; ///< the truncated low end
    qint64 last; ///< the truncated high end

    /**
     * The grey value in single precision with 16 bits behind the point, from the distance to `first`:
     * factor * (distance >> shift) + offset is off by less than 8. So only where it comes near a whole grey
     * value (a few vectors) the definition is needed.
     */
    struct {
        bool usable;
        bool forcesEnds; ///< else both ends come out as 0 and 255 by themselves
        int shift;
        float factor;
        float offset;
    } guess;
    /** For 64 bits: the low byte of v - origin is that of the truncated distance. */
    struct {
        bool usable;
        qint64 origin;
    } whole;
    GreyLine line; ///< from the distance to `first`; where it is proven, there are no doubts

private:
    void findWholeDistance(const cDblRange& i_range);
};

} // namespace display
