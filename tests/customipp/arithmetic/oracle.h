#pragma once

#include <cmath>
#include <cstdint>
#include <limits>
#include <type_traits>

/** The pixel arithmetic from its definition, one pixel at a time: the exact result, one rounding, then the
 * limits. */
namespace oracle {

inline int64_t clampTo(int64_t i_value, int64_t i_low, int64_t i_high)
{
    return i_value < i_low ? i_low : i_value > i_high ? i_high : i_value;
}

/** numerator / denominator to the nearest integer, ties to even; the denominator is positive. */
inline int64_t nearest(int64_t i_numerator, int64_t i_denominator)
{
    int64_t floor = i_numerator / i_denominator;
    if (floor * i_denominator > i_numerator)
        --floor;
    const int64_t twiceRest = 2 * (i_numerator - floor * i_denominator);
    if (twiceRest > i_denominator || (twiceRest == i_denominator && (floor & 1)))
        ++floor;
    return floor;
}

/** numerator / denominator * 2^-scaleFactor as a pixel; at most 2^16 both, or a denominator of 1 and at most
 * 2^32. */
template <class T> T scaled(int64_t i_numerator, int64_t i_denominator, int i_scaleFactor)
{
    int64_t numerator = i_denominator < 0 ? -i_numerator : i_numerator;
    int64_t denominator = i_denominator < 0 ? -i_denominator : i_denominator;
    // More bits than these change no pixel: the value is far out of range, or far below one half.
    const int up = denominator == 1 ? 17 : 40;
    if (i_scaleFactor > 0)
        denominator <<= i_scaleFactor < 40 ? i_scaleFactor : 40;
    else
        numerator *= int64_t {1} << (i_scaleFactor > -up ? -i_scaleFactor : up);
    return T(clampTo(
        nearest(numerator, denominator), std::numeric_limits<T>::min(), std::numeric_limits<T>::max()));
}

struct Add {
    template <class T> static T pixel(T i_src1, T i_src2, int i_scaleFactor)
    {
        if constexpr (std::is_floating_point_v<T>)
            return i_src1 + i_src2;
        else
            return scaled<T>(int64_t {i_src1} + i_src2, 1, i_scaleFactor);
    }
};

struct Sub {
    template <class T> static T pixel(T i_subtrahend, T i_minuend, int i_scaleFactor)
    {
        if constexpr (std::is_floating_point_v<T>)
            return i_minuend - i_subtrahend;
        else
            return scaled<T>(int64_t {i_minuend} - i_subtrahend, 1, i_scaleFactor);
    }
};

struct Mul {
    template <class T> static T pixel(T i_src1, T i_src2, int i_scaleFactor)
    {
        if constexpr (std::is_floating_point_v<T>)
            return i_src1 * i_src2;
        else
            return scaled<T>(int64_t {i_src1} * i_src2, 1, i_scaleFactor);
    }
};

struct Div {
    template <class T> static T pixel(T i_divisor, T i_dividend, int i_scaleFactor)
    {
        if constexpr (std::is_floating_point_v<T>) {
            if (i_divisor == 0) {
                if (i_dividend == 0 || i_dividend != i_dividend)
                    return std::numeric_limits<T>::quiet_NaN();
                const bool negative = std::signbit(i_divisor) != std::signbit(i_dividend);
                return negative ? -std::numeric_limits<T>::infinity() : std::numeric_limits<T>::infinity();
            }
            return i_dividend / i_divisor;
        } else {
            if (i_divisor == 0)
                return i_dividend == 0 ? T(0)
                    : i_dividend > 0   ? std::numeric_limits<T>::max()
                                       : std::numeric_limits<T>::min();
            return scaled<T>(i_dividend, i_divisor, i_scaleFactor);
        }
    }
};

// With constants the constant is the second operand, the subtrahend, or the divisor.
struct AddC : Add {};
struct SubC : Sub {};
struct MulC : Mul {};
struct DivC : Div {};

struct AbsDiff {
    template <class T> static T pixel(T i_src1, T i_src2, int = 0)
    {
        if constexpr (std::is_floating_point_v<T>)
            return std::fabs(i_src1 - i_src2);
        else
            return T(i_src1 > i_src2 ? i_src1 - i_src2 : i_src2 - i_src1);
    }
};

struct Abs {
    template <class T> static T pixel(T i_src)
    {
        if constexpr (std::is_floating_point_v<T>)
            return std::fabs(i_src);
        else
            return T(
                clampTo(i_src < 0 ? -int64_t {i_src} : int64_t {i_src}, 0, std::numeric_limits<T>::max()));
    }
};

struct MinEvery {
    template <class T> static T pixel(T i_src, T i_srcDst, int = 0)
    {
        return i_src < i_srcDst ? i_src : i_srcDst;
    }
};

struct MaxEvery {
    template <class T> static T pixel(T i_src, T i_srcDst, int = 0)
    {
        return i_src > i_srcDst ? i_src : i_srcDst;
    }
};

} // namespace oracle
