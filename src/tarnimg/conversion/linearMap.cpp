#include "conversion/cImageConverter.h"

#include <algorithm>
#include <cmath>
#include <cstdint>

namespace conversion {

LinearMap::LinearMap(const cDblRange& i_input, const cDblRange& i_output, const ElementType& i_source,
    const ElementType& i_target)
    : low(i_input.getLow()),
      high(i_input.getHigh()),
      factor(i_output.getLength() / i_input.getLength()),
      offset(i_output.getLow()),
      limits(!(i_source.isInteger && low <= i_source.least && high >= i_source.greatest)),
      guess {},
      fixed {}
{
    // The elements that occur once they are limited.
    const double least = i_source.isInteger ? std::max(low, i_source.least) : low;
    const double greatest = i_source.isInteger ? std::min(high, i_source.greatest) : high;

    // The doubles from 2^e to 2^(e+1) are multiples of 2^(e-52), so one and a half 2^e in the constant makes
    // the low bits of the sum a fixed-point number. The sum and the constant are rounded by half a unit each;
    // the roundings of the definition are much smaller than the unit.
    const int fractionBits
        = i_target.bytes <= 2 ? LinearMap::fractionBits<quint8> : LinearMap::fractionBits<quint32>;
    const double terms = std::max(std::fabs(least), std::fabs(greatest)) * std::fabs(factor)
        + std::fabs(low * factor) + std::fabs(offset);
    guess.usable = i_target.isInteger && terms < std::ldexp(1.0, 50 - fractionBits); // not if it is NaN
    guess.constant
        = offset - low * factor + 0.5 + std::ldexp(2.0, -fractionBits) + std::ldexp(1.5, 52 - fractionBits);
    guess.doubtful = (quint64(1) << fractionBits) - 4;

    // 16 bits for whole units, all modulo 2^16, so that only the span must fit. What is below a unit has an
    // error of less than two units of 2^-14.
    const double span = greatest - low;
    fixed.usable = guess.usable && i_source.isInteger && i_source.bytes <= 2 && i_target.bytes <= 2
        && low == std::floor(low) && high == std::floor(high) && low >= -32768.0 && least <= greatest
        && span <= 65535.0 && factor > 0.0 && factor < 0x1p31 && std::fabs(offset) < 0x1p31;
    if (fixed.usable) {
        const auto fraction = std::uint64_t(std::nearbyint(factor * 0x1p32));
        const double base = std::floor(offset);
        fixed.low = quint16(int(least));
        fixed.high = quint16(int(greatest));
        fixed.subtrahend = quint16(int(low));
        fixed.whole = quint16(fraction >> 32);
        fixed.upper = quint16(fraction >> 16);
        fixed.lower = quint16(fraction);
        fixed.start = quint16(std::nearbyint((offset - base + 0.5) * 0x1p14));
        fixed.base = quint16(std::int64_t(base));
    }
}

} // namespace conversion
