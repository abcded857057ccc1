#pragma once

#include "conversion/linearMap.h"

#include <QtGlobal>
#include <cstddef>
#include <tuple>
#include <type_traits>

namespace conversion {

template <class S, class D>
using ConvertRow = void (*)(const S* i_source, D* o_target, std::size_t i_count, const LinearMap& i_map);

template <class S>
using ConvertersFrom
    = std::tuple<ConvertRow<S, quint8>, ConvertRow<S, quint16>, ConvertRow<S, quint32>, ConvertRow<S, qint8>,
        ConvertRow<S, qint16>, ConvertRow<S, qint32>, ConvertRow<S, float>, ConvertRow<S, double>>;

/** One row function for each pair of element types, compiled for the processor at hand. */
using ConverterTable = std::tuple<ConvertersFrom<quint8>, ConvertersFrom<quint16>, ConvertersFrom<quint32>,
    ConvertersFrom<qint8>, ConvertersFrom<qint16>, ConvertersFrom<qint32>, ConvertersFrom<float>,
    ConvertersFrom<double>>;

const ConverterTable& converterTable();

/** The one row function that is not in the table: a double cannot hold all integers of 64 bits. */
void convertInt64Row(const qint64* i_source, qint64* o_target, std::size_t i_count, const LinearMap& i_map);

} // namespace conversion

/**
 * The conversion between any two element types: a linear mapping of one range onto another, computed in
 * double.
 *
 * Values outside the input range are limited to it first. Integers are rounded to nearest, halves upwards for
 * all signs, and stored modulo the width of the type, as an output range may lie outside it. NaN stays NaN in
 * a float and becomes 0 in an integer. A pixel gives the same bytes on every processor.
 */
template <class S, class D> class cImageConverter {
public:
    /** Neither range may have width 0. */
    cImageConverter(const cDblRange& i_input, const cDblRange& i_output)
        : m_map(i_input, i_output, conversion::ElementType::of<S>(), conversion::ElementType::of<D>())
    {
    }

    /** Source and target may be the same row if the types have the same size. */
    void operator()(const S* i_source, D* o_target, std::size_t i_count) const
    {
        using namespace conversion;
        if constexpr (std::is_same_v<S, qint64>)
            convertInt64Row(i_source, o_target, i_count, m_map);
        else
            std::get<ConvertRow<S, D>>(std::get<ConvertersFrom<S>>(converterTable()))(
                i_source, o_target, i_count, m_map);
    }

private:
    conversion::LinearMap m_map;
};
