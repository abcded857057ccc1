#pragma once

#include <tarnbase/cRange.h>

#include <QtGlobal>
#include <limits>

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
     * fixed point, and 2 in the last place. Rounding is in doubt where the bits behind the point are below 4.
     * A range that is far from 0 for its width wants its low end subtracted from v first.
     */
    struct {
        bool usable;
        bool subtracts;
        double constant;
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

    /** Where no step makes a fraction, in lanes of 32 bits: v * factor + summand, modulo 2^32. */
    struct {
        bool usable;
        qint32 low; ///< of the elements
        qint32 high;
        qint32 factor;
        qint32 summand;
    } integral;

private:
    void findGuess(double i_least, double i_greatest, const ElementType& i_target);
    void findFixed(double i_least, double i_greatest);
    void findIntegral(double i_least, double i_greatest, const ElementType& i_target);

    /** No term of the map is greater, v * factor and low * factor taken apart. */
    double greatestTerm(double i_least, double i_greatest) const;
};

} // namespace conversion
