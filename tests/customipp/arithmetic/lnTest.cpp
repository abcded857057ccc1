#include "customipp/arithmetic/pointwiseCases.h"

#include "support/FencedMemory.h"
#include "support/everyTarget.h"

#include <hwy/tests/hwy_gtest.h>

#include <cfloat>
#include <cmath>
#include <random>
#include <vector>

namespace {

/** Runs each case once for every instruction set that is compiled in. */
class lnTest : public hwy::TestWithParamTarget {};
HWY_TARGET_INSTANTIATE_TEST_SUITE_P(lnTest);

constexpr float s_infinity = std::numeric_limits<float>::infinity();

/** The logarithm of one pixel, which the accuracy tests hold against the C library. */
float lnOf(float i_value)
{
    ippiLn_32f_C1IR(&i_value, 4, {1, 1});
    return i_value;
}

/** The distance in floats of the result's size from the exact value. */
double ulpsOff(float i_actual, double i_exact)
{
    const float nearest = float(i_exact);
    const double ulp = std::nextafter(std::fabs(nearest), s_infinity) - std::fabs(nearest);
    return std::fabs(i_actual - i_exact) / ulp;
}

/** Logarithms of a sequence of normal positive floats. */
void expectAccurate(std::vector<float> i_values)
{
    const std::vector<float> values = i_values;
    const int count = int(values.size());
    ASSERT_EQ(ippiLn_32f_C1IR(i_values.data(), 4 * count, {count, 1}), ippStsNoErr);
    double worst = 0;
    float where = 0;
    for (size_t i = 0; i < values.size(); ++i)
        if (const double off = ulpsOff(i_values[i], std::log(double(values[i]))); off > worst) {
            worst = off;
            where = values[i];
        }
    // Within 2 units of the correctly rounded value, which itself is off by one half at most.
    EXPECT_LT(worst, 1.5) << "at " << where;
}

TEST_P(lnTest, EveryFractionIsAccurate)
{
    for (const int exponent : {-1, 0, 1}) {
        std::vector<float> values;
        for (uint32_t bits = 0; bits < 1u << 23; bits += 3)
            values.push_back(std::ldexp(float(0x800000 + bits), exponent - 23));
        expectAccurate(std::move(values));
    }
}

TEST_P(lnTest, EveryExponentIsAccurate)
{
    std::vector<float> values;
    std::mt19937 random(1);
    for (int exponent = FLT_MIN_EXP - 1; exponent < FLT_MAX_EXP; ++exponent)
        for (int i = 0; i < 2000; ++i)
            values.push_back(std::ldexp(float(0x800000 + random() % 0x800000), exponent - 23));
    expectAccurate(std::move(values));
}

TEST_P(lnTest, SpecialValuesAndTheirWarnings)
{
    const float leastNormal = IPP_MINABS_32F;
    const struct {
        float value;
        float expected;
        IppStatus status;
    } rows[] = {{1.0f, 0.0f, ippStsNoErr}, {leastNormal, -87.3365448f, ippStsNoErr},
        {s_infinity, s_infinity, ippStsNoErr}, {NAN, NAN, ippStsNoErr}, {0.0f, -s_infinity, ippStsLnZeroArg},
        {-0.0f, -s_infinity, ippStsLnZeroArg}, {1e-45f, -s_infinity, ippStsLnZeroArg},
        {std::nextafter(leastNormal, 0.0f), -s_infinity, ippStsLnZeroArg}, {-1e-45f, NAN, ippStsLnNegArg},
        {-1.0f, NAN, ippStsLnNegArg}, {-s_infinity, NAN, ippStsLnNegArg}};
    for (const auto& row : rows)
        for (const int count : {1, 5, 16, 40}) {
            for (int place = 0; place < count; ++place) {
                std::vector<float> pixels(size_t(count), 2.0f), out(size_t(count), 7.0f);
                pixels[size_t(place)] = row.value;
                ASSERT_EQ(
                    ippiLn_32f_C1R(pixels.data(), 4 * count, out.data(), 4 * count, {count, 1}), row.status)
                    << row.value << " at " << place << " of " << count;
                ASSERT_TRUE(samePixel(out[size_t(place)], row.expected)) << out[size_t(place)];
            }
        }
}

TEST_P(lnTest, ANegativeNumberOutranksZeroWhereverTheyAre)
{
    for (const bool negativeFirst : {true, false}) {
        Plane<float> image(40, 3, {12, 1});
        image.fill([] { return 1.0f; });
        image.set(1, 0, negativeFirst ? -1.0f : 0.0f);
        image.set(30, 2, negativeFirst ? 0.0f : -1.0f);
        EXPECT_EQ(ippiLn_32f_C1IR(image.data(), image.step(), {40, 3}), ippStsLnNegArg);
        EXPECT_TRUE(image.frameIsIntact());
    }
}

TEST_P(lnTest, EveryPlaceOfEveryLayoutGivesTheSamePixel)
{
    std::mt19937 random(2);
    const auto positive
        = [&random] { return std::ldexp(float(1 + random() % 65535), int(random() % 40) - 30); };
    pointwise::forEveryGeometry([&](IppiSize size, size_t layout, unsigned) {
        SCOPED_TRACE(std::to_string(size.width) + " x " + std::to_string(size.height) + ", layout "
            + std::to_string(layout));
        Plane<float> source(size.width, size.height, pointwise::layoutAt(layout));
        Plane<float> out(size.width, size.height, pointwise::layoutAt(layout + 1)),
            expected(size.width, size.height);
        source.fill(positive);
        for (int y = 0; y < size.height; ++y)
            for (int x = 0; x < size.width; ++x)
                expected.set(x, y, lnOf(source.get(x, y)));
        ASSERT_EQ(ippiLn_32f_C1R(source.data(), source.step(), out.data(), out.step(), size), ippStsNoErr);
        ASSERT_TRUE(samePixels(out, expected));
        ASSERT_TRUE(out.frameIsIntact());
        ASSERT_EQ(ippiLn_32f_C1IR(source.data(), source.step(), size), ippStsNoErr);
        ASSERT_TRUE(samePixels(source, expected));
        ASSERT_TRUE(source.frameIsIntact());
    });
}

TEST_P(lnTest, NothingBeyondMemoryIsTouched)
{
    for (const FencedMemory::Side side : {FencedMemory::AgainstEnd, FencedMemory::AgainstStart})
        for (int width = 1; width <= 70; ++width) {
            FencedMemory memory(size_t(width) * 4, side);
            for (int x = 0; x < width; ++x)
                memory.set<float>(size_t(x), float(x + 1));
            ASSERT_EQ(
                ippiLn_32f_C1IR(reinterpret_cast<float*>(memory.data()), 4 * width, {width, 1}), ippStsNoErr);
            for (int x = 0; x < width; ++x)
                ASSERT_EQ(memory.get<float>(size_t(x)), lnOf(float(x + 1))) << width << ": " << x;
        }
}

TEST(lnTargetTest, AllTargetsGiveTheSameBits)
{
    std::vector<float> values;
    std::mt19937 random(3);
    for (int i = 0; i < 1 << 20; ++i) {
        const uint32_t bits = random();
        float value;
        std::memcpy(&value, &bits, sizeof(value));
        values.push_back(value);
    }
    const int count = int(values.size());
    std::vector<float> first;
    forEveryTarget([&](const char* target) {
        std::vector<float> results = values;
        EXPECT_EQ(ippiLn_32f_C1IR(results.data(), 4 * count, {count, 1}), ippStsLnNegArg);
        if (first.empty())
            first = results;
        EXPECT_EQ(std::memcmp(results.data(), first.data(), results.size() * 4), 0) << target;
    });
}

TEST(lnCheckTest, PointersThenSizeThenSteps)
{
    float pixel = 3, out = 7;
    EXPECT_EQ(ippiLn_32f_C1R(nullptr, 0, &out, 0, {0, 0}), ippStsNullPtrErr);
    EXPECT_EQ(ippiLn_32f_C1R(&pixel, 0, nullptr, 0, {0, 0}), ippStsNullPtrErr);
    EXPECT_EQ(ippiLn_32f_C1IR(nullptr, 0, {0, 0}), ippStsNullPtrErr);
    for (const IppiSize size : {IppiSize {0, 1}, IppiSize {1, 0}, IppiSize {-1, 1}, IppiSize {1, -1}}) {
        EXPECT_EQ(ippiLn_32f_C1R(&pixel, 0, &out, 0, size), ippStsSizeErr);
        EXPECT_EQ(ippiLn_32f_C1IR(&pixel, 0, size), ippStsSizeErr);
    }
    for (const int step : {0, -4}) {
        EXPECT_EQ(ippiLn_32f_C1R(&pixel, step, &out, 4, {1, 1}), ippStsStepErr);
        EXPECT_EQ(ippiLn_32f_C1R(&pixel, 4, &out, step, {1, 1}), ippStsStepErr);
        EXPECT_EQ(ippiLn_32f_C1IR(&pixel, step, {1, 1}), ippStsStepErr);
    }
    EXPECT_EQ(pixel, 3);
    EXPECT_EQ(out, 7);
}

} // namespace
