#pragma once

#include "display/integerScale.h"

#include <cstddef>
#include <tuple>

namespace display {

/** A row function for the processor; the rows may begin at any byte. */
template <class T>
using IntegerRow = void (*)(const T* i_source, quint8* o_target, std::size_t i_count, const IntegerScale&);
using IntegerTable
    = std::tuple<IntegerRow<qint8>, IntegerRow<qint16>, IntegerRow<qint32>, IntegerRow<quint32>>;
using Integer64Row = IntegerRow<qint64>;

const IntegerTable& integerTable();
/** Elements of 64 bits are not scaled. */
Integer64Row integer64Row();

template <class T> IntegerRow<T> integerRowFor() { return std::get<IntegerRow<T>>(integerTable()); }
template <> inline Integer64Row integerRowFor<qint64>() { return integer64Row(); }

} // namespace display
