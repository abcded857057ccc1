#pragma once

#include "conversion/linearMap.h"

#include <cstddef>

namespace display {

/** How doubles become grey values: limited to the range, (v - low) * 255 / width, halves up; NaN is 0. */
struct DoubleScale {
    explicit DoubleScale(const cDblRange& i_range);

    double low;
    double high;
    double width;
    conversion::LinearMap map; ///< its guess differs from the definition by rounding errors alone
};

/** A row function for the processor; the rows may begin at any byte. */
using DoubleRow = void (*)(const double* i_source, quint8* o_target, std::size_t i_count, const DoubleScale&);

DoubleRow doubleRow();

} // namespace display
