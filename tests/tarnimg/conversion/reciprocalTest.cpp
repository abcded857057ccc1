#include "conversion/reciprocal.h"

#include <cmath>
#include <gtest/gtest.h>
#include <random>

using conversion::Reciprocal;

namespace {

/** Tries all dividends of 24 bits; others differ from them by a power of two. */
bool dividesAll(const Reciprocal& i_reciprocal, float i_divisor)
{
    for (int significand = 1 << 23; significand < 1 << 24; ++significand) {
        const auto v = float(significand);
        if (std::fma(v, i_reciprocal.value, v * i_reciprocal.rest) != v / i_divisor)
            return false;
    }
    return true;
}

} // namespace

TEST(Reciprocal, DividesEveryDividendWhereItIsProven)
{
    for (const float divisor : {1.0f / 255, 1.0f / 65535, 254.0f / 65535, 2.0f / 255, 3.0f, 0.7f, 16777215.0f,
             8388608.0f, 8388609.0f, 8388616.0f, 0x1.fffffep59f, 0x1.000002p-59f}) {
        const Reciprocal reciprocal = Reciprocal::of(divisor);
        EXPECT_TRUE(reciprocal.proven) << divisor;
        EXPECT_TRUE(dividesAll(reciprocal, divisor)) << divisor;
    }
}

TEST(Reciprocal, IsNotProvenForADivisorWithAnAwkwardDividend)
{
    const Reciprocal reciprocal = Reciprocal::of(1.59246767f);
    EXPECT_FALSE(reciprocal.proven);
    EXPECT_FALSE(dividesAll(reciprocal, 1.59246767f));
}

TEST(Reciprocal, IsProvenForNearlyAllDivisors)
{
    std::mt19937 random(1);
    int proven = 0;
    for (int i = 0; i < 1000; ++i)
        proven += Reciprocal::of(
            std::ldexp(float((1 << 23) + int(random() % (1 << 23))), int(random() % 100) - 73))
                      .proven;
    EXPECT_GT(proven, 970);
    EXPECT_LT(proven, 1000);
}
