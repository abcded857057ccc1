#pragma once

#include <tarnbase/cRange.h>

#include <QtGlobal>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <limits>
#include <tuple>

namespace conversion {

/** What is known of the mapped values before any pixel is seen, so that their store can be a short one. */
enum class Store {
    NonNegative, ///< all lie within the element type, and none is negative
    InRange, ///< all lie within the element type
    Wraps ///< any number, NaN included
};

/** w = (v - low) * factor + offset, for v limited to low to high. */
struct LinearMap {
    double low;
    double high;
    double factor;
    double offset;
    Store store;
};

template <class S, class D>
using ConvertRow = void (*)(const S* i_source, D* o_target, std::size_t i_count, const LinearMap& i_map);

template <class S>
using ConvertersFrom = std::tuple<ConvertRow<S, quint8>, ConvertRow<S, quint16>, ConvertRow<S, quint32>,
    ConvertRow<S, qint8>, ConvertRow<S, qint16>, ConvertRow<S, qint32>, ConvertRow<S, float>, ConvertRow<S, double>>;

/** One row function for each pair of element types, compiled for the processor at hand. */
using ConverterTable = std::tuple<ConvertersFrom<quint8>, ConvertersFrom<quint16>, ConvertersFrom<quint32>,
    ConvertersFrom<qint8>, ConvertersFrom<qint16>, ConvertersFrom<qint32>, ConvertersFrom<float>,
    ConvertersFrom<double>>;

const ConverterTable& converterTable();

/** The one row function that is not in the table: a double cannot hold all integers of 64 bits. */
void convertInt64Row(const qint64* i_source, qint64* o_target, std::size_t i_count, const LinearMap& i_map);

} // namespace conversion

/**
 * The conversion between any two element types: a linear mapping of one range onto another, computed in double.
 *
 * Values outside the input range are limited to it first. Integers are rounded to nearest, halves upwards for all signs,
 * and stored modulo the width of the type, as an output range may lie outside it. NaN stays NaN in a float and becomes 0
 * in an integer. A pixel gives the same bytes on every processor.
 */
template <class S, class D>
class cImageConverter {
public:
    /** Neither range may have width 0. */
    cImageConverter(const cDblRange& i_input, const cDblRange& i_output);

    /** Source and target may be the same row if the types have the same size. */
    void operator()(const S* i_source, D* o_target, std::size_t i_count) const;

private:
    conversion::LinearMap m_map;
};

template <class S, class D>
cImageConverter<S, D>::cImageConverter(const cDblRange& i_input, const cDblRange& i_output)
{
    using Limits = std::numeric_limits<D>;
    m_map.low = i_input.getLow();
    m_map.high = i_input.getHigh();
    m_map.factor = i_output.getLength() / i_input.getLength();
    m_map.offset = i_output.getLow();

    // Rounding is monotone: no pixel is mapped beyond the images of both ends. The last bit of the upper one may lie
    // above the output range, which a quarter allows for.
    const double atHigh = i_input.getLength() * m_map.factor + m_map.offset;
    const double least = std::fmin(m_map.offset, atHigh);
    const double greatest = std::fmax(m_map.offset, atHigh);
    const bool fits = std::isfinite(m_map.factor) && std::isfinite(atHigh) && std::isfinite(i_input.getLength())
        && least >= double(Limits::lowest()) - 0.25 && greatest <= double(Limits::max()) + 0.25;
    m_map.store = !fits ? conversion::Store::Wraps
        : least >= 0.0  ? conversion::Store::NonNegative
                        : conversion::Store::InRange;
}

template <class S, class D>
void cImageConverter<S, D>::operator()(const S* i_source, D* o_target, std::size_t i_count) const
{
    using namespace conversion;
    if constexpr (sizeof(S) == 8 && std::numeric_limits<S>::is_integer)
        convertInt64Row(i_source, o_target, i_count, m_map);
    else
        std::get<ConvertRow<S, D>>(std::get<ConvertersFrom<S>>(converterTable()))(
            i_source, o_target, i_count, m_map);
}
