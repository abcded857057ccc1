#pragma once

#include <vector>

/** Light in three channels, 0 dark to 1 white. */
struct Light {
    double r = 0, g = 0, b = 0;

    friend Light operator*(const Light& a, double k) { return {a.r * k, a.g * k, a.b * k}; }
    friend Light operator*(const Light& a, const Light& b) { return {a.r * b.r, a.g * b.g, a.b * b.b}; }
    friend Light operator+(const Light& a, const Light& b) { return {a.r + b.r, a.g + b.g, a.b + b.b}; }
    double luminance() const { return 0.299 * r + 0.587 * g + 0.114 * b; }
};

struct Point {
    double x = 0, y = 0;
};

/**
 * Machine parts on a moving belt, seen from above: gears, nuts, bolts, washers and plates of turned and
 * brushed metal, lit from the upper left. Between two guide rails the belt carries them to the right; two
 * meshing gears turn in their places.
 *
 * Everything follows from the size, the time and the seed: the same arguments give the same picture.
 */
class Scene {
public:
    enum class Kind { Gear, Nut, Bolt, Washer, Plate };

    /** A part; lengths are pixels of a picture that is 640 wide. */
    struct Part {
        Kind kind;
        Point centre;
        double size; ///< radius, or half of the length
        double angle;
        Light tint;
        int teeth = 0;
    };

    Scene(int i_width, int i_height, double i_frame);

    /** The light that comes from the middle of a pixel, before lens and sensor. */
    Light at(int i_x, int i_y) const;
    /** How bright the lamp is at a place: 1 at its brightest, less towards the corners. */
    double lampAt(int i_x, int i_y) const;

private:
    Light belt(Point i_place) const;
    Light rail(Point i_place) const;

    double m_scale; ///< length of a pixel
    double m_width;
    double m_height;
    double m_shift; ///< how far the belt has moved
    std::vector<Part> m_parts; ///< those that lie lower first
};

/** Noise without memory: the same place and seed give the same number, uniform from 0 to 1. */
double hashNoise(int i_x, int i_y, unsigned i_seed);
/** The same with the normal distribution of variance 1. */
double normalNoise(int i_x, int i_y, unsigned i_seed);
