#pragma once

#include <QColor>
#include <QVector>
#include <array>
#include <cstddef>

namespace display {

/**
 * What does not depend on any setting of a gradient's display; made once for the process.
 *
 * Both tables are those of factor 1 and of directions over the whole circle, with which every descriptor
 * begins: changing "factor" or "absolute" later does not change them.
 */
struct GradientTables {
    static constexpr std::size_t side = 129;

    /** min(255, sqrt(row^2 + column^2)), truncated. */
    std::array<quint8, side * side> magnitude;
    /** For the indices (y << 8) + x: two bits of magnitude, six of direction. */
    std::array<quint8, 256UL * 256> direction;
    /** Hue by the direction, brightness by the magnitude. */
    QVector<QRgb> colours;

    static const GradientTables& instance();

private:
    GradientTables();
};

/** The projection of a gradient on a direction, as the sum of two entries. */
struct ProjectionTables {
    /** @param i_angle degrees */
    explicit ProjectionTables(double i_angle);

    std::array<qint8, 256> x;
    std::array<qint8, 256> y;
};

} // namespace display
