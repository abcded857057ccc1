#include "reference.h"

#include <algorithm>
#include <cmath>

namespace reference {

double byScaledConstant(double i_value, double i_factor, double i_limit, double i_greatest)
{
    double multiplier = 1.0;
    int scale = 0;
    while (i_limit > multiplier * i_factor) {
        multiplier *= 2.0;
        ++scale;
    }
    const double constant = std::fmod(std::trunc(multiplier * i_factor), i_greatest + 1.0);
    // The product is exact in a double; nearbyint takes ties to even.
    return std::min(std::nearbyint(std::ldexp(i_value * constant, -scale)), i_greatest);
}

namespace {

double greyOfCounted(int i_value, Range i_range, double i_limit, double i_greatest)
{
    const double low = std::fmod(std::trunc(i_range.low), i_greatest + 1.0);
    const double lifted = std::max(i_value - low, 0.0);
    return byScaledConstant(lifted, 255.0 / (i_range.high - i_range.low), i_limit, i_greatest);
}

} // namespace

int greyOfUInt8(int i_value, Range i_range) { return int(greyOfCounted(i_value, i_range, 128.0, 255.0)); }

int greyOfUInt16(int i_value, Range i_range)
{
    return int(std::min(greyOfCounted(i_value, i_range, 32768.0, 65535.0), 255.0));
}

int greyOfFloat32(float i_value, Range i_range)
{
    const float lifted = i_value - float(i_range.low);
    const float scaled = lifted * float(255.0 / (i_range.high - i_range.low));
    return scaled >= 0.0f ? int(std::nearbyint(std::min(scaled, 255.0f))) : 0; // NaN too is 0
}

int greyOfFloat64(double i_value, Range i_range)
{
    if (std::isnan(i_value))
        return 0;
    const double value = std::min(std::max(i_value, i_range.low), i_range.high);
    return int((value - i_range.low) * 255.0 / (i_range.high - i_range.low) + 0.5);
}

int greyOfInteger(double i_value, Range i_range, bool i_rounded)
{
    if (i_value <= std::trunc(i_range.low))
        return 0;
    if (i_value >= std::trunc(i_range.high))
        return 255;
    const double grey = (i_value - i_range.low) / ((i_range.high - i_range.low) / 255.0);
    return int(i_rounded ? std::floor(grey + 0.5) : grey);
}

int greyOfSInt64(std::int64_t i_value, Range i_range)
{
    // 2^63 does not fit, and its low 64 bits are the least number.
    const auto whole = [](double end) { return end >= 0x1p63 ? INT64_MIN : std::int64_t(end); };
    if (i_value <= whole(i_range.low))
        return 0;
    if (i_value >= whole(i_range.high))
        return 255;
    return int(std::fmod(std::trunc(double(i_value) - i_range.low), 256.0));
}

int gammaOf(int i_byte, double i_gamma)
{
    return int(std::min(255.0, std::pow(i_byte / 256.0, 1.0 / i_gamma) * 256.0));
}

int multipliedByte(int i_byte, double i_constant)
{
    const double constant = float(i_constant);
    int scale = 0;
    double whole;
    while (std::modf(std::ldexp(constant, scale), &whole) > 0.0) {
        ++scale;
        if (std::ldexp(constant, scale + 1) >= 256.0)
            break;
    }
    const int factor = int(std::ldexp(constant, scale)) & 0xFF;
    return int(std::min(std::nearbyint(std::ldexp(double(i_byte) * factor, -scale)), 255.0));
}

Triple hsvOf(Triple i_rgb)
{
    const auto [red, green, blue] = i_rgb;
    const int value = std::max({red, green, blue});
    const int width = value - std::min({red, green, blue});
    if (width == 0)
        return {0, 0, value};
    int hue;
    if (red == value)
        hue = green - blue + (green < blue ? 6 * width : 0);
    else if (green == value)
        hue = 2 * width + blue - red;
    else
        hue = 4 * width + red - green;
    return {
        int(std::nearbyint(85.0 * hue / (2.0 * width))), int(std::nearbyint(255.0 * width / value)), value};
}

Triple rgbOf(Triple i_hsv)
{
    const auto [hueByte, saturation, value] = i_hsv;
    if (saturation == 0)
        return {value, value, value};
    const int hue = hueByte == 255 ? 0 : hueByte;
    const int sector = 2 * hue / 85;
    const int fraction = 2 * hue - 85 * sector;
    const double whole = 21675.0;
    const auto part
        = [&, v = value](double share) { return int(std::nearbyint(v * (whole - share) / whole)); };
    const int least = part(85.0 * saturation);
    const int falling = part(double(saturation) * fraction);
    const int rising = part(double(saturation) * (85 - fraction));
    const Triple sectors[] = {{value, rising, least}, {falling, value, least}, {least, value, rising},
        {least, falling, value}, {rising, least, value}, {value, least, falling}};
    return sectors[sector];
}

int greyOf(Triple i_rgb) { return (299 * i_rgb[0] + 587 * i_rgb[1] + 114 * i_rgb[2]) / 1000; }

} // namespace reference
