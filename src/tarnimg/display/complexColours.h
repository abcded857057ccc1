#pragma once

class QImage;
class cImg;

namespace display {

/** How the colours of complex numbers are found. */
struct ComplexColours {
    bool useLog; ///< takes the logarithm first
    double factor; ///< the greater, the darker
    bool
        moveCenter; ///< exchanges the quadrants, so that the zero frequency of a spectrum comes to the middle
};

/**
 * Fills a `Format_ARGB32` picture of the image's size: hue is the angle, value the magnitude as a share of
 * the greatest in the left half of the image (times the factor).
 *
 * With `moveCenter` rows and columns are moved by half of the size, rounded down; of an odd height the last
 * row is black.
 */
void renderComplexColours(const cImg& i_image, const ComplexColours& i_how, QImage& io_picture);

} // namespace display
