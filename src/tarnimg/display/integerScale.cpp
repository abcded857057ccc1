#include "display/integerScale.h"

#include <cmath>
#include <limits>

namespace display {

namespace {

/** The low bits of the truncated number, as a number of that width. */
qint64 cut(double i_value, int i_bits, bool i_signed)
{
    const double whole = std::trunc(i_value);
    const double period = std::ldexp(1.0, i_bits);
    if (i_signed && whole >= -period / 2 && whole < period / 2)
        return qint64(whole); // a small number below 0 and 2^64 would not be exact
    double low = whole - std::floor(whole / period) * period; // exact: the period is a power of two
    if (!(low >= 0.0 && low < period))
        return 0;
    if (i_signed && low >= period / 2)
        low -= period;
    return qint64(low);
}

} // namespace

IntegerScale::IntegerScale(const cDblRange& i_range, Rounding i_rounding, int i_bits, bool i_signed)
    : low(i_range.getLow()),
      step(i_range.getLength() / 255.0),
      bias(i_rounding == Rounding::HalvesUp ? 0.5 : 0.0),
      first(cut(i_range.getLow(), i_bits, i_signed)),
      last(cut(i_range.getHigh(), i_bits, i_signed)),
      guess {},
      whole {}
{
    constexpr double one = 65536.0; // the guess's unit of a grey value
    constexpr double margin = 16.0;
    if (i_bits > 32)
        findWholeDistance(i_range);
    if (i_bits > 32 || !(first < last) || !(i_range.getLength() >= 1.0))
        return;
    const double factor = one / step;
    const double offset = ((double(first) - low) / step + bias) * one;
    const double end = offset + double(last - first) * factor;
    guess.usable = true;
    guess.forcesEnds = !(offset >= margin && offset < one - margin && end >= 255.0 * one + margin
        && end < 256.0 * one - margin);
    guess.shift = last - first > std::numeric_limits<qint32>::max() ? 1 : 0;
    guess.factor = float(std::ldexp(factor, guess.shift));
    guess.offset = float(offset);
    if (last - first <= std::numeric_limits<qint32>::max())
        line = GreyLine::find(last - first, 1.0 / step, offset / one, [this](qint64 n, int grey) {
            return first + n >= last || (n > 0 && (double(first + n) - low) / step + bias >= grey);
        });
}

void IntegerScale::findWholeDistance(const cDblRange& i_range)
{
    // Then v - low, rounded to a multiple of 2^-9 or less, does not reach another whole number.
    constexpr double moderate = 0x1p42;
    const double fraction = std::fabs(low - double(first));
    whole.usable = std::fabs(low) < moderate && std::fabs(i_range.getHigh()) < moderate
        && (fraction == 0.0 || (fraction > 0x1p-8 && fraction < 1.0 - 0x1p-8));
    whole.origin = low > double(first) ? first + 1 : first;
}

} // namespace display
