#pragma once

class QImage;

namespace display {

/** Factors of a picture's channels, 1 for no change. */
struct ColourFactors {
    double red;
    double green;
    double blue;
    double brightness;
    double saturation;
    double hue;

    bool changeColours() const { return red != 1.0 || green != 1.0 || blue != 1.0; }
    bool changeHsv() const { return brightness != 1.0 || saturation != 1.0 || hue != 1.0; }
};

/**
 * Multiplies the channels of a `Format_RGB888` or `Format_ARGB32` picture as
 * `cMultiplyConstantWithImageFunctor` does: first red, green and blue, then hue, saturation and value. Alpha
 * stays.
 *
 * Hue is that of the bytes in the order in which they lie in memory: of `Format_ARGB32` blue takes the place
 * of red.
 */
void correctColours(QImage& io_picture, const ColourFactors& i_factors);

} // namespace display
