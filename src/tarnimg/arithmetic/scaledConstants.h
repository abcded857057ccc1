#pragma once

#include "frame/ippConstants.h"

/**
 * The power of two by which a fractional constant becomes the integer that the pixel layer takes: the least s
 * with which constant * 2^s is an integer, or the greatest that keeps it below 2^bits, but at least 1 for a
 * fraction. 0 for an integer, a negative number, an infinity and NaN.
 *
 * A constant of 1.3 in 8 bits gives 7: the factor is trunc(1.3 * 128) = 166, which acts as 1.296875.
 */
int scaleSearch(double i_constant, int i_bits);

/** The parameter "constant" as a factor for integer pixels: constant * 2^s with the scale factor s. */
frame::PixelConstants scaledConstant(double i_constant, int i_bits);

/**
 * The parameters "constantRed", "constantGreen" and "constantBlue" as factors for three channels of 8 bits,
 * all with the greatest scale factor that one of them needs, and for a fourth channel 2^s, which comes to 1.
 * The pixel layer takes them as bytes: from s = 8 on the fourth, and any other that exceeds 8 bits, is cut.
 */
frame::PixelConstants scaledConstants(double i_red, double i_green, double i_blue);

/** The same constants as divisors. */
inline frame::PixelConstants asDivisors(frame::PixelConstants i_factors)
{
    i_factors.scaleFactor = -i_factors.scaleFactor;
    return i_factors;
}
