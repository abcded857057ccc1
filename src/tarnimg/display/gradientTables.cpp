#include "display/gradientTables.h"

#include <tarnbase/cMathOP.h>

#include <algorithm>
#include <cmath>

namespace display {

namespace {

constexpr double s_pi = 3.14159265358979323846;
constexpr int s_hues = 252; // the degrees that the hues take, of 360
constexpr int s_directions = 64;

quint8 limitedLength(double i_a, double i_b)
{
    return quint8(std::min(255.0, std::sqrt(i_a * i_a + i_b * i_b)));
}

quint8 directionOf(int i_x, int i_y)
{
    const double angle = std::atan2(double(i_y), double(i_x));
    int hue = int((angle + s_pi) * s_hues / (2.0 * s_pi));
    if (hue >= s_hues)
        hue -= s_hues;
    const int magnitude = limitedLength(i_x, i_y);
    return quint8((magnitude >> 6 << 6) + hue * s_directions / s_hues);
}

} // namespace

GradientTables::GradientTables() : colours(256)
{
    for (std::size_t row = 0; row < side; ++row)
        for (std::size_t column = 0; column < side; ++column)
            magnitude[row * side + column] = limitedLength(double(row), double(column));
    for (int y = -128; y < 128; ++y)
        for (int x = -128; x < 128; ++x)
            direction[std::size_t(y + 128) * 256 + std::size_t(x + 128)] = directionOf(x, y);
    for (int i = 0; i < colours.size(); ++i) {
        const int value = i / s_directions * s_directions;
        colours[i] = QColor::fromHsv(i % s_directions * s_hues / s_directions, value, value, 255).rgb();
    }
}

const GradientTables& GradientTables::instance()
{
    static const GradientTables s_tables;
    return s_tables;
}

ProjectionTables::ProjectionTables(double i_angle)
{
    const double angle = cMathOP::cTrigonometry::deg2rad(i_angle);
    double sine = std::sin(angle);
    double cosine = std::cos(angle);
    const double sum = std::fabs(sine) + std::fabs(cosine);
    sine /= sum;
    cosine /= sum;
    for (int i = 0; i < 256; ++i) {
        x[std::size_t(i)] = qint8(std::clamp((i - 128) * cosine, -127.0, 127.0));
        y[std::size_t(i)] = qint8(std::clamp((i - 128) * sine, -127.0, 127.0));
    }
}

} // namespace display
