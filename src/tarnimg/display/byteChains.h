#pragma once

#include "conversion/steps.h"

#include <QtGlobal>
#include <cstddef>

namespace display {

/** Floats as grey values: (v - low) * factor, each operation with its own rounding, to nearest, ties to
 * even; saturated. NaN is 0. */
struct Float32Scale {
    explicit Float32Scale(const conversion::Ranges& i_ranges);

    float low;
    float factor;
};

/**
 * 16 unsigned bits as grey values: (v - low) * multiplier / 2^scale, to nearest, ties to even. Both the
 * difference and the result saturate.
 */
struct WordScale {
    explicit WordScale(const conversion::Ranges& i_ranges);

    bool usable; ///< the product and its rounding fit in 32 bits
    quint16 low;
    quint16 multiplier;
    int scale;
    quint16 greatest; ///< the least difference that becomes 255, or any above
};

/** Row functions for the processor; the rows may begin at any byte. */
struct ChainTable {
    void (*floats)(const float* i_source, quint8* o_target, std::size_t i_count, const Float32Scale&);
    void (*words)(const quint16* i_source, quint8* o_target, std::size_t i_count, const WordScale&);
};

const ChainTable& chainTable();

} // namespace display
