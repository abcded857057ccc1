#pragma once

#include <customipp/types.h>

#include <algorithm>
#include <cmath>
#include <limits>

namespace customipp {

/** The levels of one channel, and what becomes of them. */
template <class L> struct Curve {
    const L* levels;
    const L* values;
    int count;
    IppiInterpolationType interpolation;

    /** The value at a place from level k on and below the next one. */
    double at(double place, int k) const
    {
        if (interpolation == ippNearest)
            return values[k];
        if (interpolation == ippLinear)
            return values[k]
                + (place - levels[k]) * (double(values[k + 1]) - values[k])
                / (double(levels[k + 1]) - levels[k]);
        const double value = cubicAt(place, k);
        return std::isfinite(value) ? value : values[k];
    }

private:
    /** Lagrange's polynomial through up to four levels. */
    double cubicAt(double place, int k) const
    {
        const int points = std::min(4, count);
        const int first = std::clamp(k - 1, 0, count - points), end = first + points;
        double sum = 0;
        for (int a = first; a < end; ++a) {
            double term = values[a];
            for (int b = first; b < end; ++b)
                if (b != a)
                    term *= (place - levels[b]) / (double(levels[a]) - levels[b]);
            sum += term;
        }
        return sum;
    }
};

template <class T> T saturated(double value)
{
    using Limits = std::numeric_limits<T>;
    return T(std::clamp(std::nearbyint(value), double(Limits::lowest()), double(Limits::max())));
}

/** Values for all pixels of a type of 8 or 16 bits, from its least one on. */
template <class T> inline constexpr int tableLength = 1 << (8 * sizeof(T));

template <class T> void fillTable(const Curve<Ipp32s>& curve, T* table)
{
    constexpr int64_t least = std::numeric_limits<T>::lowest(), greatest = std::numeric_limits<T>::max();
    for (int64_t pixel = least; pixel <= greatest; ++pixel)
        table[pixel - least] = T(pixel);
    // Of equal levels the last one wins, and where levels do not ascend, the last interval.
    for (int k = 0; k + 1 < curve.count; ++k) {
        const int64_t end = std::min(int64_t {curve.levels[k + 1]} - 1, greatest);
        for (int64_t pixel = std::max(int64_t {curve.levels[k]}, least); pixel <= end; ++pixel)
            table[pixel - least] = saturated<T>(curve.at(double(pixel), k));
    }
    const int64_t last = curve.levels[curve.count - 1];
    if (last >= least && last <= greatest)
        table[last - least] = saturated<T>(curve.values[curve.count - 1]);
}

} // namespace customipp
