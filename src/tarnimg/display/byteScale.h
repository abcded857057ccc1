#pragma once

#include "display/greyLine.h"

#include <tarnbase/cRange.h>

#include <QtGlobal>
#include <cstddef>
#include <tuple>

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

/** How floats become grey values: limited to the range, (v - low) * 255 / width, halves up; NaN is 0. */
struct FloatScale {
    explicit FloatScale(const cDblRange& i_range);

    double low;
    double high;
    double width;
    double slope; ///< 255 / width
    bool guess; ///< (v - low) * slope differs from the definition by rounding errors alone
};

/** The index of a gradient's component: trunc((c - low) * slope). */
struct IndexScale {
    explicit IndexScale(const cDblRange& i_range);

    double low;
    double slope;
};

template <class T>
using IntegerRow = void (*)(const T* i_source, quint8* o_target, std::size_t i_count, const IntegerScale&);
using FloatRow = void (*)(const double* i_source, quint8* o_target, std::size_t i_count, const FloatScale&);
template <class T>
using IndexRow = void (*)(const T* i_source, quint8* o_target, std::size_t i_count, const IndexScale&);
using ChannelRow = void (*)(
    const void* i_pixels, void* o_target, std::size_t i_count, unsigned i_channel, unsigned i_channels);

/** Row functions for the processor; the rows may begin at any byte. */
struct RowTable {
    std::tuple<IntegerRow<qint8>, IntegerRow<qint16>, IntegerRow<qint32>, IntegerRow<quint32>,
        IntegerRow<qint64>>
        integers;
    FloatRow floats;
    /** Limited to 0 to 255. */
    std::tuple<IndexRow<qint16>, IndexRow<qint32>> indices;
    /** The amount, limited to 127. */
    std::tuple<IndexRow<qint16>, IndexRow<qint32>> amounts;
    /** One channel of interleaved ones, for channels of 1, 2, 4 and 8 bytes. */
    ChannelRow channel1;
    ChannelRow channel2;
    ChannelRow channel4;
    ChannelRow channel8;
};

const RowTable& rowTable();

} // namespace display
