#include "conversion/reciprocal.h"

#include <cmath>
#include <cstdint>

// A quotient q = v / divisor from 2^k to 2^(k+1) has a last place of u = 2^(k-23). The value is wrong by at
// most 2^-24 of itself, so that v * rest is u at the most. Two roundings of 2^-24 each make it inexact: that
// of the rest and that of the product. Together they are 2^-23 u, apart from terms of second order, and the
// fused sum is rounded once. So it is another float than q rounded only if q lies within 2^-23 u of the
// middle between two floats.
//
// Let X and Y be v and the divisor as whole numbers of 24 bits. The middles of the quotients are the odd
// multiples M of 2^-24 where X >= Y, and of 2^-25 where X < Y. So near a middle 2^24 X - M Y, or 2^25 X - M
// Y, is a whole number from -4 to 4. It is not 0, as no Y of 24 bits times an odd M has 24 zeros at its end.
// In both cases 2^25 X and a number from -8 to 8 leave the same remainder when divided by Y. Few X do, so all
// of them are tried.
//
// If Y ends in n zeros, so does each of its multiples and 2^25 X, and therefore the number: for more than two
// zeros there is none left in -4 to 4 but 0.

namespace conversion {

namespace {

constexpr std::int64_t s_leastSignificand = 1 << 23;

bool isDivided(std::int64_t i_significand, const Reciprocal& i_reciprocal, float i_divisor)
{
    const auto v = float(i_significand);
    return std::fma(v, i_reciprocal.value, v * i_reciprocal.rest) == v / i_divisor;
}

bool prove(const Reciprocal& i_reciprocal, float i_divisor)
{
    int exponent;
    auto odd = std::int64_t(std::ldexp(std::frexp(i_divisor, &exponent), 24));
    int zeros = 0;
    for (; odd % 2 == 0; odd /= 2)
        ++zeros;
    if (zeros > 2)
        return true;
    std::int64_t inverse = 1; // of 2^25, modulo the odd number
    for (int i = 0; i < 25; ++i)
        inverse = (inverse % 2 == 0 ? inverse : inverse + odd) / 2;
    for (int number = -8; number <= 8; ++number) {
        std::int64_t significand = (number * inverse % odd + odd) % odd;
        for (; significand < 2 * s_leastSignificand; significand += odd)
            if (significand >= s_leastSignificand && !isDivided(significand, i_reciprocal, i_divisor))
                return false;
    }
    return true;
}

} // namespace

Reciprocal Reciprocal::of(float i_divisor)
{
    Reciprocal reciprocal;
    reciprocal.value = 1.0f / i_divisor;
    // The product of two floats is exact in a double, and so is its distance from 1.
    reciprocal.rest = float((1.0 - double(reciprocal.value) * double(i_divisor)) / double(i_divisor));
    reciprocal.proven = prove(reciprocal, i_divisor);
    return reciprocal;
}

} // namespace conversion
