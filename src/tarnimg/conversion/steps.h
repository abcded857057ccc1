#pragma once

#include "conversion/program.h"

#include <customipp/customipp.h>
#include <tarnbase/cRange.h>

namespace conversion {

/** The value scale that is used of the source, and the one that it is stretched onto. */
struct Ranges {
    cDblRange input;
    cDblRange output;

    /** Not finite if the input range has width 0. */
    double factor() const { return output.getLength() / input.getLength(); }
};

/** Truncates toward zero and cuts to the width of T, without limiting: 300 as a byte is 44. What is not
 * finite is 0. */
template <class T> T cut(double i_value);

/** A factor as the pixel layer's integer multiply takes it: value / 2^scale. */
struct Multiplier {
    double value;
    int scale;
};

/**
 * The multiplier with the least scale for which the value reaches a limit; with scale 0 if the factor reaches
 * it by itself, or never can (0, negative, not a number).
 */
Multiplier findMultiplier(double i_factor, double i_limit);

/** Whether some pixel of type T may lie outside the range. */
template <class T> bool limits(const cDblRange& i_range);

/** How pixels of type T that begin at 0 get onto the output range: pixel * multiplier / 2^scale + offset,
 * saturated. */
template <class T> struct Stretch {
    explicit Stretch(const Ranges& i_ranges);

    bool multiplies; ///< else the multiplier is 1
    T multiplier; ///< the factor, exact to 1 part in 128 for 8 bits and in 32768 for 16 bits
    int scale;
    T offset;
};

/** Whose pixels go on through the chain if the layer refuses to limit them. */
enum class Refused {
    Source, ///< the step would work on a copy of the source
    Result ///< the step would work on the result, which keeps what it holds
};

/**
 * Limits pixels to a range; no step if no pixel of the type lies outside.
 *
 * The ends are cut to the width of the type. Where that puts them out of order the layer refuses them, and
 * the working image stays as it is.
 */
template <class T>
void addLimit(Program& io_program, int i_channels, const cDblRange& i_range, Refused i_refused);

/** The low end of the input range becomes 0. Saturates. */
template <class T> void addSubtract(Program& io_program, int i_channels, const Ranges& i_ranges);

/** The steps of a Stretch. */
template <class T> void addStretch(Program& io_program, int i_channels, const Ranges& i_ranges);

extern template Ipp8u cut<Ipp8u>(double);
extern template Ipp16u cut<Ipp16u>(double);
extern template bool limits<Ipp8u>(const cDblRange&);
extern template bool limits<Ipp16u>(const cDblRange&);
extern template struct Stretch<Ipp8u>;
extern template struct Stretch<Ipp16u>;
extern template void addLimit<Ipp8u>(Program&, int, const cDblRange&, Refused);
extern template void addLimit<Ipp16u>(Program&, int, const cDblRange&, Refused);
extern template void addSubtract<Ipp8u>(Program&, int, const Ranges&);
extern template void addSubtract<Ipp16u>(Program&, int, const Ranges&);
extern template void addStretch<Ipp8u>(Program&, int, const Ranges&);
extern template void addStretch<Ipp16u>(Program&, int, const Ranges&);

/** The low end of the input range becomes 0, the factor is multiplied, and 0 becomes the low end of the
 * output range. */
void addStretchFloat(Program& io_program, const Ranges& i_ranges);

/**
 * A float source onto any output range: limits always, subtracts, divides by the reciprocal of the factor
 * (which differs from a multiplication in the last bit), adds; then rounds to nearest, ties to even, and
 * saturates.
 */
template <class T> void addFloatChain(Program& io_program, const Ranges& i_ranges);

extern template void addFloatChain<Ipp8u>(Program&, const Ranges&);
extern template void addFloatChain<Ipp8s>(Program&, const Ranges&);
extern template void addFloatChain<Ipp16u>(Program&, const Ranges&);
extern template void addFloatChain<Ipp16s>(Program&, const Ranges&);
extern template void addFloatChain<Ipp32f>(Program&, const Ranges&);

/** A function of the pixel layer that changes the pixel type or the number of channels. */
template <class S, class D>
void addMove(Program& io_program, int i_pixelBytes, IppStatus (*i_function)(const S*, int, D*, int, IppiSize))
{
    io_program.move(i_pixelBytes, [i_function](const Tile& tile, SourceRows source, TargetRows target) {
        i_function(reinterpret_cast<const S*>(source.first), source.step(),
            reinterpret_cast<D*>(target.first), target.step(), tile.elements(1));
    });
}

} // namespace conversion
