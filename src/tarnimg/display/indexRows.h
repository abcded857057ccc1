#pragma once

#include <tarnbase/cRange.h>

#include <QtGlobal>
#include <cstddef>
#include <tuple>

namespace display {

/** The index of a gradient's component: trunc((c - low) * slope). */
struct IndexScale {
    explicit IndexScale(const cDblRange& i_range);

    double low;
    double slope;
};

template <class T>
using IndexRow = void (*)(const T* i_source, quint8* o_target, std::size_t i_count, const IndexScale&);

/** Row functions for the processor; the rows may begin at any byte. */
struct IndexTable {
    /** Limited to 0 to 255. */
    std::tuple<IndexRow<qint16>, IndexRow<qint32>> indices;
    /** The amount, limited to 127. */
    std::tuple<IndexRow<qint16>, IndexRow<qint32>> amounts;
};

const IndexTable& indexTable();

} // namespace display
