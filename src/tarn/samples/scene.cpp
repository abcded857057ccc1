#include "scene.h"

#include <algorithm>
#include <cmath>
#include <cstdint>

namespace {

constexpr double s_pi = 3.14159265358979323846;
constexpr double s_beltStep = 17; ///< the belt's way from frame to frame
constexpr double s_beltLength = 860; ///< after which the parts come round again
constexpr double s_railHeight = 34;

constexpr Light s_steel {0.80, 0.82, 0.86};
constexpr Light s_brass {0.90, 0.72, 0.36};
constexpr Light s_copper {0.88, 0.54, 0.38};
constexpr Light s_zinc {0.66, 0.76, 0.90};
constexpr Light s_dark {0.42, 0.43, 0.46};

double length(Point i_p) { return std::hypot(i_p.x, i_p.y); }

Point rotated(Point i_p, double i_angle)
{
    const double c = std::cos(i_angle), s = std::sin(i_angle);
    return {c * i_p.x + s * i_p.y, -s * i_p.x + c * i_p.y};
}

double smoothStep(double i_low, double i_high, double i_value)
{
    const double t = std::clamp((i_value - i_low) / (i_high - i_low), 0.0, 1.0);
    return t * t * (3 - 2 * t);
}

double mix(double a, double b, double i_t) { return a + (b - a) * i_t; }

/** Smooth noise along a line, from 0 to 1, with one knot per unit. */
double lineNoise(double i_x, unsigned i_seed)
{
    const double floor = std::floor(i_x);
    const int x = int(floor);
    return mix(hashNoise(x, 0, i_seed), hashNoise(x + 1, 0, i_seed), smoothStep(0, 1, i_x - floor));
}

/** The same in the plane. */
double planeNoise(double i_x, double i_y, unsigned i_seed)
{
    const int x = int(std::floor(i_x)), y = int(std::floor(i_y));
    const double u = smoothStep(0, 1, i_x - x), v = smoothStep(0, 1, i_y - y);
    return mix(mix(hashNoise(x, y, i_seed), hashNoise(x + 1, y, i_seed), u),
        mix(hashNoise(x, y + 1, i_seed), hashNoise(x + 1, y + 1, i_seed), u), v);
}

double boxDistance(Point i_p, double i_halfWidth, double i_halfHeight, double i_corner)
{
    const Point q {std::abs(i_p.x) - i_halfWidth + i_corner, std::abs(i_p.y) - i_halfHeight + i_corner};
    return length({std::max(q.x, 0.0), std::max(q.y, 0.0)}) + std::min(std::max(q.x, q.y), 0.0) - i_corner;
}

double hexagonDistance(Point i_p, double i_radius)
{
    const double x = std::abs(i_p.x), y = std::abs(i_p.y);
    return std::max(x * 0.8660254 + y * 0.5, y) - i_radius * 0.8660254;
}

double gearDistance(const Scene::Part& i_part, Point i_p)
{
    const double r = length(i_p), angle = std::atan2(i_p.y, i_p.x);
    // Trapezoids on the rim: a cut wave with flanks.
    const double wave = std::cos(angle * i_part.teeth);
    const double depth = i_part.size * 3.4 / i_part.teeth;
    const double rim = i_part.size - depth * 0.5 + depth * 0.5 * std::clamp(wave * 2.2, -1.0, 1.0);
    double distance = (r - rim) * 0.8;
    distance = std::max(distance, i_part.size * 0.16 - r);
    if (i_part.size > 40) {
        const double sector = 2 * s_pi / 5;
        const Point hole = rotated(i_p, std::round(angle / sector) * sector);
        distance = std::max(distance, i_part.size * 0.15 - length({hole.x - i_part.size * 0.5, hole.y}));
    }
    return distance;
}

constexpr double s_shankHeight = 0.2;

double boltDistance(const Scene::Part& i_part, Point i_p)
{
    const double s = i_part.size;
    const double head = boxDistance({i_p.x + s * 0.78, i_p.y}, s * 0.22, s * 0.42, s * 0.05);
    const double shank = boxDistance({i_p.x - s * 0.22, i_p.y}, s * 0.8, s * s_shankHeight, s * 0.06);
    return std::min(head, shank);
}

/** How far a place lies outside a part's outline; inside it is negative. */
double distanceTo(const Scene::Part& i_part, Point i_p)
{
    const double s = i_part.size;
    switch (i_part.kind) {
    case Scene::Kind::Gear:
        return gearDistance(i_part, i_p);
    case Scene::Kind::Nut:
        return std::max(hexagonDistance(i_p, s), s * 0.48 - length(i_p));
    case Scene::Kind::Bolt:
        return boltDistance(i_part, i_p);
    case Scene::Kind::Washer:
        return std::max(length(i_p) - s, s * 0.5 - length(i_p));
    case Scene::Kind::Plate: {
        double distance = boxDistance(i_p, s, s * 0.6, s * 0.12);
        const Point corner {std::abs(i_p.x) - s * 0.8, std::abs(i_p.y) - s * 0.4};
        distance = std::max(distance, s * 0.09 - length(corner));
        return std::max(distance, -boxDistance(i_p, s * 0.36, s * 0.11, s * 0.11));
    }
    }
    return 1e9;
}

/** Height of a part's surface: rounded edges, and what was turned, brushed or cut into it. */
double heightOf(const Scene::Part& i_part, Point i_p)
{
    const double s = i_part.size;
    const double inside = std::max(-distanceTo(i_part, i_p), 0.0);
    const double bevel = i_part.kind == Scene::Kind::Washer ? s * 0.25 : 3.5;
    const double t = 1 - std::min(inside / bevel, 1.0);
    double height = bevel * 0.8 * std::sqrt(1 - t * t);
    const double r = length(i_p);
    switch (i_part.kind) {
    case Scene::Kind::Gear:
        height += 3 * smoothStep(s * 0.33, s * 0.28, r)
            - 1.6 * smoothStep(s * 0.30, s * 0.36, r) * smoothStep(s * 0.74, s * 0.68, r);
        height += 0.22 * lineNoise(r * 1.1, 11);
        break;
    case Scene::Kind::Nut:
        height -= 0.9 * std::max(r - s * 0.84, 0.0); // the corners are turned off
        height += 0.25 * lineNoise(r * 1.3, 12);
        break;
    case Scene::Kind::Bolt:
        if (i_p.x > -s * 0.56) {
            const double across = std::min(std::abs(i_p.y) / (s * s_shankHeight), 1.0);
            height = s * s_shankHeight * 0.9 * std::sqrt(1 - across * across);
            if (i_p.x > -s * 0.2)
                height += 0.9 * std::sin(i_p.x * 1.55 + i_p.y * 0.25);
        } else {
            height += 4 + 0.25 * lineNoise(i_p.x * 1.3, 13);
        }
        break;
    case Scene::Kind::Washer:
        height += 0.18 * lineNoise(r * 1.2, 14);
        break;
    case Scene::Kind::Plate:
        height += 0.35 * lineNoise(i_p.y * 1.2 + 3 * lineNoise(i_p.x * 0.02, 15), 16);
        break;
    }
    return height;
}

/** What a polished surface mirrors in a direction: a bright hall above and to the left, dark below. */
double surroundings(double i_x, double i_y)
{
    const double up = -(0.55 * i_x + 0.83 * i_y);
    return 0.30 + 0.55 * smoothStep(-0.5, 0.7, up)
        + 0.25 * smoothStep(0.25, 0.4, up) * smoothStep(0.75, 0.55, up);
}

Light metal(const Scene::Part& i_part, Point i_local)
{
    constexpr double e = 0.5;
    const double slopeX
        = heightOf(i_part, {i_local.x + e, i_local.y}) - heightOf(i_part, {i_local.x - e, i_local.y});
    const double slopeY
        = heightOf(i_part, {i_local.x, i_local.y + e}) - heightOf(i_part, {i_local.x, i_local.y - e});
    const Point slope = rotated({slopeX / (2 * e), slopeY / (2 * e)}, -i_part.angle);
    const double norm = 1 / std::sqrt(slope.x * slope.x + slope.y * slope.y + 1);
    const double nx = -slope.x * norm, ny = -slope.y * norm, nz = norm;
    const double diffuse = std::max(0.0, -0.46 * nx - 0.58 * ny + 0.67 * nz);
    const double half = std::max(0.0, -0.25 * nx - 0.32 * ny + 0.914 * nz);
    const double shine = std::pow(half, 48);
    const double mirrored = surroundings(2 * nz * nx, 2 * nz * ny);
    const Light body = i_part.tint * (0.10 + 0.34 * diffuse + 0.46 * mirrored);
    return body + Light {1, 0.98, 0.94} * (0.30 * shine);
}

/** A few thin bright lines per cell of a grid that moves with the belt. */
double scratches(Point i_p)
{
    constexpr double cell = 90;
    double sum = 0;
    const int cx = int(std::floor(i_p.x / cell)), cy = int(std::floor(i_p.y / cell));
    for (int y = cy - 1; y <= cy + 1; ++y)
        for (int x = cx - 1; x <= cx + 1; ++x) {
            const Point start {(x + hashNoise(x, y, 21)) * cell, (y + hashNoise(x, y, 22)) * cell};
            const double angle = 0.5 * (hashNoise(x, y, 23) - 0.5) + (hashNoise(x, y, 24) < 0.3 ? 1.2 : 0.1);
            const double span = 20 + 55 * hashNoise(x, y, 25);
            const Point p = rotated({i_p.x - start.x, i_p.y - start.y}, angle);
            const double along = std::clamp(p.x, 0.0, span);
            const double away = length({p.x - along, p.y + 0.0008 * p.x * p.x});
            sum += 0.10 * hashNoise(x, y, 26) * smoothStep(1.1, 0.2, away)
                * smoothStep(span, span * 0.6, p.x);
        }
    return sum;
}

} // namespace

double hashNoise(int i_x, int i_y, unsigned i_seed)
{
    std::uint32_t h
        = std::uint32_t(i_x) * 0x9e3779b1u ^ std::uint32_t(i_y) * 0x85ebca77u ^ i_seed * 0xc2b2ae3du;
    h = (h ^ (h >> 15)) * 0x2c1b3c6du;
    h = (h ^ (h >> 12)) * 0x297a2d39u;
    h ^= h >> 15;
    return h / 4294967296.0;
}

double normalNoise(int i_x, int i_y, unsigned i_seed)
{
    // A sum of twelve uniform numbers; its tails end at six, as a sensor's do somewhere too.
    double sum = -6;
    for (unsigned i = 0; i < 12; ++i)
        sum += hashNoise(i_x, i_y, i_seed * 12 + i);
    return sum;
}

Scene::Scene(int i_width, int i_height, double i_frame)
    : m_scale(640.0 / i_width),
      m_width(640),
      m_height(i_height * m_scale),
      m_shift(i_frame * s_beltStep)
{
    const double middle = m_height / 2;
    const std::vector<Part> carried = {
        {Kind::Plate, {70, middle - 78}, 62, 0.12, s_zinc},
        {Kind::Washer, {68, middle + 96}, 34, 0, s_brass},
        {Kind::Gear, {190, middle + 46}, 62, 0.2, s_steel, 18},
        {Kind::Nut, {212, middle - 104}, 30, 0.4, s_dark},
        {Kind::Bolt, {312, middle - 92}, 56, 0.5, s_steel},
        {Kind::Washer, {318, middle + 108}, 24, 0, s_copper},
        {Kind::Nut, {342, middle + 8}, 26, 0.1, s_brass},
        {Kind::Bolt, {452, middle + 96}, 52, -0.35, s_dark},
        {Kind::Gear, {470, middle - 58}, 38, 0.5, s_brass, 13},
        {Kind::Washer, {566, middle + 30}, 30, 0, s_steel},
        {Kind::Plate, {640, middle + 104}, 46, -0.2, s_copper},
        {Kind::Nut, {650, middle - 52}, 34, 0.9, s_zinc},
        {Kind::Bolt, {742, middle - 10}, 58, 1.2, s_zinc},
        {Kind::Washer, {790, middle + 102}, 38, 0, s_dark},
    };
    for (Part part : carried) {
        part.centre.x = std::fmod(part.centre.x + m_shift, s_beltLength) - 110;
        m_parts.push_back(part);
    }
    // The two that turn in their places overlap the upper rail; their pitch circles touch.
    const double turn = i_frame * 0.09;
    m_parts.push_back({Kind::Gear, {540, 66}, 56, turn, s_steel, 20});
    m_parts.push_back({Kind::Gear, {462, 34}, 31, -turn * 20 / 11 + 0.16, s_brass, 11});
}

double Scene::lampAt(int i_x, int i_y) const
{
    const double x = (i_x + 0.5) * m_scale - m_width * 0.40, y = (i_y + 0.5) * m_scale - m_height * 0.44;
    return 0.46 + 0.54 * std::exp(-(x * x + y * y) / (2 * 250 * 250));
}

Light Scene::belt(Point i_place) const
{
    const Point p {i_place.x - m_shift, i_place.y};
    const double ribs = 0.5 + 0.5 * std::sin(p.x * 0.9) * std::sin(p.y * 0.9);
    const double stains
        = planeNoise(p.x * 0.012, p.y * 0.02, 31) * 0.6 + planeNoise(p.x * 0.05, p.y * 0.05, 32) * 0.4;
    const double grey = 0.085 + 0.045 * stains + 0.018 * ribs + scratches(p) * 0.7;
    return Light {0.92, 1.0, 0.98} * grey;
}

Light Scene::rail(Point i_place) const
{
    const double fromEdge = std::min(i_place.y, m_height - i_place.y);
    const double profile = smoothStep(s_railHeight, s_railHeight - 5, fromEdge);
    const double brushed = 0.06 * lineNoise(i_place.y * 1.5 + 4 * lineNoise(i_place.x * 0.01, 41), 42);
    double grey = 0.34 + 0.14 * profile + brushed;
    // A screw every 160.
    const Point screw {std::remainder(i_place.x - 60, 160), fromEdge - s_railHeight / 2};
    const double r = length(screw);
    if (r < 9) {
        const Point slot = rotated(screw, 0.7 + std::floor((i_place.x + 20) / 160));
        grey = 0.30 + 0.25 * smoothStep(9, 6, r) - 0.05 * (screw.x + screw.y) / 9;
        grey *= 1 - 0.6 * smoothStep(1.8, 1.0, std::abs(slot.y));
    }
    return Light {0.95, 0.98, 1.0} * grey;
}

Light Scene::at(int i_x, int i_y) const
{
    const Point place {(i_x + 0.5) * m_scale, (i_y + 0.5) * m_scale};
    const double fromEdge = std::min(place.y, m_height - place.y);
    const double onRail = smoothStep(s_railHeight + 0.6 * m_scale, s_railHeight - 0.6 * m_scale, fromEdge);
    const double railShadow
        = place.y < m_height / 2 ? smoothStep(s_railHeight + 14, s_railHeight, fromEdge) : 0;
    Light light = belt(place) * (1 - 0.5 * railShadow) * (1 - onRail) + rail(place) * onRail;
    for (const Part& part : m_parts) {
        const Point offset {place.x - part.centre.x, place.y - part.centre.y};
        if (length(offset) > part.size * 1.25 + 24)
            continue;
        const Point shaded = rotated({offset.x - 6, offset.y - 8}, part.angle);
        light = light * (1 - 0.62 * smoothStep(7, -5, distanceTo(part, shaded)));
        const Point local = rotated(offset, part.angle);
        const double cover = std::clamp(0.5 - distanceTo(part, local) / m_scale, 0.0, 1.0);
        if (cover > 0) {
            const Point worn {offset.x + part.size * 7, offset.y + part.size * 3};
            light = light * (1 - cover) + (metal(part, local) + Light {1, 1, 1} * scratches(worn)) * cover;
        }
    }
    return light;
}
