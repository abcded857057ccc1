#pragma once

namespace conversion {

/**
 * One over a divisor as the sum of two floats. Where there is a fused multiply-add,
 * fma(v, value, v * rest) divides in two operations.
 *
 * Where that is proven it gives the very float that the division gives, for every v, as long as the divisor,
 * the quotient and v * rest are normal floats. About one divisor in a hundred has a v for which it does not.
 */
struct Reciprocal {
    float value = 0; ///< rounded to nearest
    float rest = 0; ///< what that rounding left over, rounded in turn
    bool proven = false; ///< else the products are not to be used

    /** @param i_divisor a normal float above 0 whose reciprocal is 2^-60 to 2^60 */
    static Reciprocal of(float i_divisor);
};

} // namespace conversion
