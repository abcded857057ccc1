#include "conversion/linearMap.h"

#include <algorithm>
#include <cmath>
#include <cstdint>

namespace conversion {

namespace {

bool isWhole(double i_value) { return i_value == std::floor(i_value); }

} // namespace

LinearMap::LinearMap(const cDblRange& i_input, const cDblRange& i_output, const ElementType& i_source,
    const ElementType& i_target)
    : low(i_input.getLow()),
      high(i_input.getHigh()),
      factor(i_output.getLength() / i_input.getLength()),
      offset(i_output.getLow()),
      limits(!(i_source.isInteger && low <= i_source.least && high >= i_source.greatest)),
      guess {},
      fixed {},
      integral {}
{
    // The elements that occur once they are limited.
    const double least = i_source.isInteger ? std::max(low, i_source.least) : low;
    const double greatest = i_source.isInteger ? std::min(high, i_source.greatest) : high;
    if (i_target.isInteger)
        findGuess(least, greatest, i_target);
    if (guess.usable && i_source.isInteger && i_source.bytes <= 2 && i_target.bytes <= 2 && least <= greatest)
        findFixed(least, greatest);
    if (i_source.isInteger && i_source.least >= std::numeric_limits<qint32>::min()
        && i_source.greatest <= std::numeric_limits<qint32>::max() && least <= greatest)
        findIntegral(least, greatest, i_target);
}

double LinearMap::greatestTerm(double i_least, double i_greatest) const
{
    return std::max(std::fabs(i_least), std::fabs(i_greatest)) * std::fabs(factor) + std::fabs(low * factor)
        + std::fabs(offset);
}

void LinearMap::findGuess(double i_least, double i_greatest, const ElementType& i_target)
{
    // The doubles from 2^e to 2^(e+1) are multiples of 2^(e-52), so one and a half 2^e in the constant makes
    // the low bits of the sum a fixed-point number. The sum and the constant are rounded by half a unit each;
    // the roundings of the definition are much smaller than the unit.
    const int bits = i_target.bytes <= 2 ? fractionBits<quint8> : fractionBits<quint32>;
    const double limit = std::ldexp(1.0, 50 - bits);
    const double span = std::max(std::fabs(i_least - low), std::fabs(i_greatest - low));
    guess.subtracts = !(greatestTerm(i_least, i_greatest) < limit);
    guess.usable
        = !guess.subtracts || span * std::fabs(factor) + std::fabs(offset) < limit; // not if it is NaN
    guess.constant = offset + 0.5 + std::ldexp(2.0, -bits) + std::ldexp(1.5, 52 - bits);
    if (!guess.subtracts)
        guess.constant -= low * factor;
}

void LinearMap::findFixed(double i_least, double i_greatest)
{
    // 16 bits for whole units, all modulo 2^16, so that only the span must fit. What is below a unit has an
    // error of less than two units of 2^-14.
    fixed.usable = isWhole(low) && isWhole(high) && low >= -32768.0 && i_greatest - low <= 65535.0
        && factor > 0.0 && factor < 0x1p31 && std::fabs(offset) < 0x1p31;
    if (!fixed.usable)
        return;
    const auto fraction = std::uint64_t(std::nearbyint(factor * 0x1p32));
    const double base = std::floor(offset);
    fixed.low = quint16(int(i_least));
    fixed.high = quint16(int(i_greatest));
    fixed.subtrahend = quint16(int(low));
    fixed.whole = quint16(fraction >> 32);
    fixed.upper = quint16(fraction >> 16);
    fixed.lower = quint16(fraction);
    fixed.start = quint16(std::nearbyint((offset - base + 0.5) * 0x1p14));
    fixed.base = quint16(std::int64_t(base));
}

void LinearMap::findIntegral(double i_least, double i_greatest, const ElementType& i_target)
{
    // Whole numbers of this size are exact in a double, and so is each step with them.
    constexpr double exact = 0x1p52;
    integral.usable = isWhole(low) && isWhole(high) && isWhole(factor) && isWhole(offset)
        && std::fabs(factor) < exact && greatestTerm(i_least, i_greatest) < exact;
    if (!i_target.isInteger) {
        // Not modulo 2^32 then.
        for (const double end : {i_least, i_greatest}) {
            const double w = (end - low) * factor + offset;
            integral.usable = integral.usable && w >= std::numeric_limits<qint32>::min()
                && w <= std::numeric_limits<qint32>::max();
        }
    }
    if (!integral.usable)
        return;
    integral.low = qint32(i_least);
    integral.high = qint32(i_greatest);
    integral.factor = qint32(std::int64_t(factor));
    integral.summand = qint32(std::int64_t(offset - low * factor));
}

} // namespace conversion
