#pragma once

#include <QtGlobal>
#include <algorithm>
#include <array>
#include <cmath>

namespace display {

/**
 * Grey values as a line in single precision, n * factor + offset rounded to nearest, for whole numbers n
 * from 0.
 *
 * The rule of a grey value has its own roundings, and so has the line. But both rise with n: if they step
 * onto each of the 255 grey values at the same n, they are equal everywhere. That is tried out, so that rows
 * need not ask any more.
 */
struct GreyLine {
    bool proven = false; ///< else the line is not to be used
    float factor = 0.0f;
    float offset = 0.0f;

    /** Where this is added, the unit of a float is 1: the sum is rounded, and its low byte the grey value. */
    static constexpr float whole = 0x1.8p23f;

    /**
     * Finds the line whose distance from all steps of the rule is greatest, and tries it.
     * @param i_last the last n, less than 2^31
     * @param i_factor the rule's slope, apart from roundings, above 0
     * @param i_offset its value at 0
     * @param i_reaches whether the rule's grey value of n is at least so much; it rises from 0 at n = 0 to
     * 255 at the last n
     */
    template <class Reaches>
    static GreyLine find(qint64 i_last, double i_factor, double i_offset, const Reaches& i_reaches);

private:
    float at(qint64 i_n) const { return (float(i_n) * factor + offset) + whole - whole; }
};

template <class Reaches>
GreyLine GreyLine::find(qint64 i_last, double i_factor, double i_offset, const Reaches& i_reaches)
{
    if (!(i_factor > 0.0) || !std::isfinite(i_offset)) // of a range without an end
        return {};
    constexpr int greatest = 255;
    std::array<qint64, greatest + 1> first; // the least n of each grey value
    double low = -0.5, high = greatest + 0.5 - double(i_last) * i_factor; // between these the offset must lie
    for (int grey = 1; grey <= greatest; ++grey) {
        const double place = std::ceil((grey - i_offset) / i_factor);
        auto n = qint64(std::clamp(place, 1.0, double(i_last)));
        if (!i_reaches(n, grey))
            ++n;
        else if (n > 1 && i_reaches(n - 1, grey))
            --n;
        // Only ranges that do not fit their type bend the rule so much that this fails.
        if (n > i_last || !i_reaches(n, grey) || (n > 1 && i_reaches(n - 1, grey)))
            return {};
        first[std::size_t(grey)] = n;
        low = std::fmax(low, grey - 0.5 - double(n) * i_factor);
        high = std::fmin(high, grey - 0.5 - double(n - 1) * i_factor);
    }
    GreyLine line;
    line.factor = float(i_factor);
    line.offset = float((low + high) / 2);
    bool holds = line.at(0) == 0.0f && line.at(i_last) == float(greatest);
    for (int grey = 1; grey <= greatest; ++grey) {
        const qint64 n = first[std::size_t(grey)];
        holds = holds && line.at(n) >= float(grey) && line.at(n - 1) < float(grey);
    }
    line.proven = holds;
    return line;
}

} // namespace display
