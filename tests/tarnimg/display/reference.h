#pragma once

#include <array>
#include <cstdint>
#include <vector>

/** Grey values and colours of single pixels, slowly and from their definition; knows nothing of the library.
 */
namespace reference {

struct Range {
    double low;
    double high;
};

/** A value by a constant that is exact to one part in `limit`, with a power of two as scale. */
double byScaledConstant(double i_value, double i_factor, double i_limit, double i_greatest);

int greyOfUInt8(int i_value, Range i_range);
int greyOfUInt16(int i_value, Range i_range);
int greyOfFloat32(float i_value, Range i_range);
int greyOfFloat64(double i_value, Range i_range);
/** @param i_rounded halves upwards, else truncated */
int greyOfInteger(double i_value, Range i_range, bool i_rounded);
int greyOfSInt64(std::int64_t i_value, Range i_range);

/** The byte that a gamma puts in the place of another. */
int gammaOf(int i_byte, double i_gamma);
/** A byte times a constant as `cMultiplyConstantWithImageFunctor` defines it for bytes. */
int multipliedByte(int i_byte, double i_constant);

using Triple = std::array<int, 3>;
Triple hsvOf(Triple i_rgb);
Triple rgbOf(Triple i_hsv);
/** The luminance of a colour. */
int greyOf(Triple i_rgb);

} // namespace reference
