#include "arithmetic/scaledConstants.h"

#include <algorithm>
#include <cmath>
#include <gtest/gtest.h>
#include <limits>
#include <random>

namespace {

/**
 * The same number from the constant's bits: c = m * 2^e with an odd m needs -e doublings to become an
 * integer, and may have as many as keep it below the limit. A fraction is doubled once in any case.
 */
int scaleFromTheBits(double i_constant, int i_bits)
{
    if (!(i_constant > 0) || std::isinf(i_constant))
        return 0;
    int exponent = 0; // i_constant < 2^exponent
    auto mantissa = qint64(std::ldexp(std::frexp(i_constant, &exponent), 53));
    int lowest = exponent - 53;
    for (; mantissa % 2 == 0; mantissa /= 2)
        ++lowest;
    if (lowest >= 0)
        return 0;
    return std::min(-lowest, std::max(1, i_bits - exponent));
}

} // namespace

TEST(scaleSearchTest, FindsTheWorkedExamples)
{
    EXPECT_EQ(scaleSearch(0.5, 8), 1);
    EXPECT_EQ(scaleSearch(1.0, 8), 0);
    EXPECT_EQ(scaleSearch(1.3, 8), 7);
    EXPECT_EQ(scaleSearch(0.1, 8), 11);
    EXPECT_EQ(scaleSearch(300.0, 8), 0);
    EXPECT_EQ(scaleSearch(1e-6, 16), 35);
    EXPECT_EQ(scaleSearch(1e-30, 16), 115);
    EXPECT_EQ(scaleSearch(1e-300, 8), 1004);
}

TEST(scaleSearchTest, IntegersNegativeNumbersAndWhatIsNoNumberAreNotScaled)
{
    for (const double constant :
        {0.0, -0.0, 2.0, 255.0, 1e300, -0.5, -1.3, -1e-300, std::numeric_limits<double>::infinity(),
            -std::numeric_limits<double>::infinity(), std::numeric_limits<double>::quiet_NaN()})
        EXPECT_EQ(scaleSearch(constant, 8), 0) << constant;
}

TEST(scaleSearchTest, AFractionIsDoubledOnceEvenBeyondTheLimit)
{
    EXPECT_EQ(scaleSearch(200.5, 8), 1);
    EXPECT_EQ(scaleSearch(1000.25, 8), 1);
    EXPECT_EQ(scaleSearch(1000.25, 16), 2);
}

TEST(scaleSearchTest, AgreesWithTheBitsOfRandomConstants)
{
    std::mt19937_64 random(7);
    std::uniform_real_distribution<double> exponent(-1000, 20);
    for (int i = 0; i < 20000; ++i) {
        double constant = std::exp2(exponent(random));
        switch (random() % 4) {
        case 0: // near 1
            constant = std::exp2(exponent(random) / 100);
            break;
        case 1: // a short binary fraction
            constant = double(random() % 4096) / double(1 << random() % 16);
            break;
        case 2: // a float, as some parameters are
            constant = double(float(constant));
            break;
        default:
            break;
        }
        if (constant < 1e-290)
            continue; // the doublings themselves reach the end of the range
        for (const int bits : {8, 16})
            ASSERT_EQ(scaleSearch(constant, bits), scaleFromTheBits(constant, bits))
                << constant << " in " << bits << " bits";
    }
}

TEST(scaleSearchTest, EndsForTheSmallestNumbers)
{
    EXPECT_EQ(scaleSearch(std::numeric_limits<double>::denorm_min(), 8), 1023);
    EXPECT_EQ(scaleSearch(std::numeric_limits<double>::min(), 16), 1022);
}

TEST(scaledConstantsTest, ThreeColoursShareTheGreatestScaleAndTheFourthChannelIsOne)
{
    const frame::PixelConstants half = scaledConstants(0.5, 1.0, 1.25);
    EXPECT_EQ(half.scaleFactor, 2);
    EXPECT_EQ(half.values[0], 2.0);
    EXPECT_EQ(half.values[1], 4.0);
    EXPECT_EQ(half.values[2], 5.0);
    EXPECT_EQ(half.values[3], 4.0);
    EXPECT_EQ(asDivisors(half).scaleFactor, -2);
}

TEST(pixelConstantTest, AnIntegerIsTruncatedTowardZeroAndCutToThePixelsWidth)
{
    EXPECT_EQ(frame::pixelConstant<quint8>(1.9), 1);
    EXPECT_EQ(frame::pixelConstant<quint8>(-1.9), 255);
    EXPECT_EQ(frame::pixelConstant<quint8>(300.0), 44);
    EXPECT_EQ(frame::pixelConstant<quint16>(65536.0 + 7), 7);
    EXPECT_EQ(frame::pixelConstant<qint16>(-32769.0), 32767);
    EXPECT_EQ(frame::pixelConstant<qint16>(40000.0), 40000 - 65536);
    EXPECT_EQ(frame::pixelConstant<qint32>(4294967295.0), -1);
    EXPECT_EQ(frame::pixelConstant<quint8>(1e300), 0);
    EXPECT_EQ(frame::pixelConstant<quint16>(std::numeric_limits<double>::infinity()), 0);
    EXPECT_EQ(frame::pixelConstant<quint16>(std::numeric_limits<double>::quiet_NaN()), 0);
    EXPECT_EQ(frame::pixelConstant<float>(0.1), 0.1f);
}
