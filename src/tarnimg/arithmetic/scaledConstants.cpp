#include "scaledConstants.h"

#include <algorithm>
#include <cmath>

int scaleSearch(double i_constant, int i_bits)
{
    const auto scaledBy = [i_constant](int scale) { return i_constant * std::pow(2.0, scale); };
    const double limit = std::pow(2.0, i_bits);
    int scale = 0;
    do {
        double whole;
        // A negative number has no fraction above 0, and so is never scaled.
        if (!(std::modf(scaledBy(scale), &whole) > 0))
            break;
        ++scale;
    } while (scaledBy(scale + 1) < limit);
    return scale;
}

frame::PixelConstants scaledConstant(double i_constant, int i_bits)
{
    const int scale = scaleSearch(i_constant, i_bits);
    return {{i_constant * std::pow(2.0, scale)}, scale, {"constant"}};
}

frame::PixelConstants scaledConstants(double i_red, double i_green, double i_blue)
{
    const int scale = std::max({scaleSearch(i_red, 8), scaleSearch(i_green, 8), scaleSearch(i_blue, 8)});
    const double unit = std::pow(2.0, scale);
    return {{i_red * unit, i_green * unit, i_blue * unit, unit}, scale,
        {"constantRed", "constantGreen", "constantBlue"}};
}
