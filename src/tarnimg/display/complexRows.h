#pragma once

#include <customipp/types.h>

#include <QtGlobal>
#include <cstddef>

namespace display {

/** Row functions for the display of complex numbers. */
struct ComplexRowTable {
    /** Infinities become 0; NaN stays. */
    void (*dropInfinities)(Ipp32f* io_values, std::size_t i_count);
    /** Pairs of real and imaginary parts, both multiplied. */
    void (*combine)(const Ipp32f* i_real, const Ipp32f* i_imaginary, Ipp32f i_factor, Ipp32fc* o_numbers,
        std::size_t i_count);
    /**
     * 256 * hue + value: hue is the angle in whole degrees from 0 to 359, value the magnitude / scale,
     * limited to 255; both truncated. If one is no number the result is `s_noColour`.
     *
     * Single precision knows an angle no better than to 2^-13 degrees; to that it is rounded first, so that
     * whole degrees come out as such.
     */
    void (*colourIndices)(const Ipp32f* i_magnitudes, const Ipp32f* i_phases, double i_scale,
        qint32* o_indices, std::size_t i_count);

    static constexpr qint32 s_noColour = 256 * 360;
};

const ComplexRowTable& complexRowTable();

} // namespace display
