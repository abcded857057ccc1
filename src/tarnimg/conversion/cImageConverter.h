#pragma once

#include <tarnbase/cRange.h>

#include <QtGlobal>
#include <cstddef>
#include <limits>
#include <tuple>
#include <type_traits>

namespace conversion {

/** The elements of a type as far as a mapping must know them. */
struct ElementType {
    bool isInteger;
    unsigned bytes;
    double least;
    double greatest;

    template <class T> static constexpr ElementType of()
    {
        using Limits = std::numeric_limits<T>;
        return {Limits::is_integer, unsigned(sizeof(T)), double(Limits::lowest()), double(Limits::max())};
    }
};

/**
 * The mapping w = (v - low) * factor + offset for v limited to low to high, with shorter ways to the same
 * integers.
 *
 * A short way gives w up to a known error. Where w is further from a half than that error the rounded integer
 * is certain; the few vectors in which it is not are computed anew by the definition.
 */
struct LinearMap {
    LinearMap(const cDblRange& i_input, const cDblRange& i_output, const ElementType& i_source,
        const ElementType& i_target);

    double low;
    double high;
    double factor;
    double offset;
    bool limits; ///< some element may lie outside low to high

    /** Bits behind the point of the guess for a target type: as many as leave room for its integers in a
     * double. */
    template <class D> static constexpr int fractionBits = sizeof(D) <= 2 ? 32 : 16;

    /**
     * One multiplication and one addition in double: the low bits of v * factor + constant are w + 0.5 with a
     * fixed point, and 2 in the last place.
     */
    struct {
        bool usable;
        double constant;
        quint64 doubtful; ///< the bits behind the point but for two; all 0 if rounding is in doubt
    } guess;

    /** In lanes of 16 bits: (v - low) * (whole + fraction / 2^32) + base, and in units of 2^-14 what is below
     * a unit. */
    struct {
        bool usable;
        quint16 low; ///< of the elements, modulo 2^16; and so on
        quint16 high;
        quint16 subtrahend;
        quint16 whole;
        quint16 upper; ///< upper half of the fraction
        quint16 lower;
        quint16 start; ///< the offset's share below a unit, and a half for rounding
        quint16 base;
    } fixed;
};

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
