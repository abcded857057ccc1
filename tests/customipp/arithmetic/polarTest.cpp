#include "customipp/movers/moverCases.h"

#include "support/everyTarget.h"

#include <hwy/tests/hwy_gtest.h>

#include <cmath>
#include <random>
#include <vector>

namespace {

/** Runs each case once for every instruction set that is compiled in. */
class polarTest : public hwy::TestWithParamTarget {};
HWY_TARGET_INSTANTIATE_TEST_SUITE_P(polarTest);

constexpr float s_infinity = std::numeric_limits<float>::infinity();
constexpr float s_pi = 3.14159274f;

float phaseOf(float i_re, float i_im)
{
    const Ipp32fc pixel {i_re, i_im};
    float phase = 7;
    ippiPhase_32fc32f_C1R(&pixel, 8, &phase, 4, {1, 1});
    return phase;
}

float magnitudeOf(float i_re, float i_im)
{
    const Ipp32fc pixel {i_re, i_im};
    float magnitude = 7;
    ippiMagnitude_32fc32f_C1R(&pixel, 8, &magnitude, 4, {1, 1});
    return magnitude;
}

struct Magnitude {
    static constexpr bool oneChannel = false;
    template <class S, int SrcChannels, class D, int DstChannels> static void pixel(const S* i_src, D* o_dst)
    {
        o_dst[0] = float(std::sqrt(double(i_src[0]) * i_src[0] + double(i_src[1]) * i_src[1]));
    }
};

/** What one pixel alone gives; the tests below hold that against the C library. */
struct Phase {
    static constexpr bool oneChannel = false;
    template <class S, int SrcChannels, class D, int DstChannels> static void pixel(const S* i_src, D* o_dst)
    {
        o_dst[0] = phaseOf(i_src[0], i_src[1]);
    }
};

#undef CUSTOMIPP_MOVE
#define CUSTOMIPP_MOVE(symbol, op, S, srcChannels, D, dstChannels)                                           \
    movers::expectMove<op, Ipp32f, 2, D, 1>(                                                                 \
        #symbol, [](const Ipp32f* src, int srcStep, D* dst, int dstStep, IppiSize size) {                    \
            return symbol(reinterpret_cast<const S*>(src), srcStep, dst, dstStep, size);                     \
        });

TEST_P(polarTest, EveryVariantGivesTheOraclesPixels) {
#include <customipp/polar.def>
}

/** Complex numbers of all sizes and directions. */
std::vector<Ipp32fc> manyNumbers()
{
    std::vector<Ipp32fc> numbers;
    std::mt19937 random(4);
    const auto part = [&random](int spread) {
        const float value
            = std::ldexp(float(1 + random() % 0xFFFFFF), int(random() % unsigned(spread)) - spread / 2);
        return random() % 2 ? value : -value;
    };
    for (int i = 0; i < 300000; ++i)
        numbers.push_back({part(4), part(4)});
    for (int i = 0; i < 100000; ++i)
        numbers.push_back({part(200), part(200)});
    for (const float re : {0.0f, -0.0f, 1e-45f, -1e-45f, 1.0f, -1.0f, 3e38f, -3e38f, s_infinity, -s_infinity})
        for (const float im : {0.0f, 1e-45f, -1e-45f, 1.0f, -1.0f, 3e38f, -3e38f, s_infinity, -s_infinity})
            numbers.push_back({re, im});
    return numbers;
}

TEST_P(polarTest, RowsThatAreDoneInPartsGiveThePixelsOfEachAlone)
{
    PixelSource<float> random(12);
    for (const int width : {511, 512, 513, 527, 1024, 1537})
        for (const Layout& layout : everyLayout()) {
            SCOPED_TRACE("width " + std::to_string(width) + ", padding " + std::to_string(layout.padding));
            Plane<float> src(2 * width, 3, layout), phases(width, 3, layout), magnitudes(width, 3, layout);
            Plane<float> expectedPhases(width, 3), expectedMagnitudes(width, 3);
            src.fill(random);
            for (int y = 0; y < 3; ++y)
                for (int x = 0; x < width; ++x) {
                    const float pixel[] = {src.get(2 * x, y), src.get(2 * x + 1, y)};
                    expectedPhases.set(x, y, phaseOf(pixel[0], pixel[1]));
                    expectedMagnitudes.set(x, y, magnitudeOf(pixel[0], pixel[1]));
                }
            const auto* from = reinterpret_cast<const Ipp32fc*>(src.data());
            ippiPhase_32fc32f_C1R(from, src.step(), phases.data(), phases.step(), {width, 3});
            ippiMagnitude_32fc32f_C1R(from, src.step(), magnitudes.data(), magnitudes.step(), {width, 3});
            ASSERT_TRUE(samePixels(phases, expectedPhases) && samePixels(magnitudes, expectedMagnitudes));
            ASSERT_TRUE(phases.frameIsIntact() && magnitudes.frameIsIntact());
        }
}

TEST_P(polarTest, AnImageBeyondTheCacheIsWrittenWithoutItsPadding)
{
    // 2100 * 4100 floats are more than 32 MB.
    const IppiSize size {2100, 4100};
    const size_t dstLanes = 2101;
    std::vector<Ipp32fc> row(size_t(size.width));
    std::vector<float> expected(row.size()), dst(dstLanes * size_t(size.height), -7.0f);
    for (size_t x = 0; x < row.size(); ++x) {
        row[x] = {float(x) - 1000.5f, float(x % 77)};
        expected[x] = magnitudeOf(row[x].re, row[x].im);
    }
    std::vector<Ipp32fc> src;
    for (int y = 0; y < size.height; ++y)
        src.insert(src.end(), row.begin(), row.end());
    ASSERT_EQ(ippiMagnitude_32fc32f_C1R(src.data(), 8 * size.width, dst.data(), int(4 * dstLanes), size),
        ippStsNoErr);
    size_t wrong = 0;
    for (size_t y = 0; y < size_t(size.height); ++y) {
        wrong += std::memcmp(&dst[y * dstLanes], expected.data(), 4 * expected.size()) != 0;
        wrong += dst[y * dstLanes + row.size()] != -7.0f;
    }
    EXPECT_EQ(wrong, 0u);
}

TEST_P(polarTest, ThePhaseIsNearTheExactArgument)
{
    const std::vector<Ipp32fc> numbers = manyNumbers();
    const int count = int(numbers.size());
    std::vector<float> phases(numbers.size());
    ASSERT_EQ(
        ippiPhase_32fc32f_C1R(numbers.data(), 8 * count, phases.data(), 4 * count, {count, 1}), ippStsNoErr);
    double worst = 0;
    for (size_t i = 0; i < numbers.size(); ++i) {
        // 0 has the argument 0, whatever its signs; C tells them apart.
        const double exact = numbers[i].re == 0 && numbers[i].im == 0
            ? 0
            : std::atan2(double(numbers[i].im), double(numbers[i].re));
        worst = std::max(worst, std::fabs(phases[i] - exact));
    }
    EXPECT_LT(worst, 3e-7); // the promise is 5e-7
}

TEST_P(polarTest, DirectionsOfTheAxes)
{
    EXPECT_EQ(phaseOf(1, 0), 0.0f);
    EXPECT_EQ(phaseOf(0, 1), s_pi / 2);
    EXPECT_EQ(phaseOf(-1, 0), s_pi);
    EXPECT_EQ(phaseOf(0, -2), -s_pi / 2);
    EXPECT_EQ(phaseOf(5, 5), s_pi / 4);
    EXPECT_EQ(phaseOf(s_infinity, -s_infinity), -s_pi / 4);
    EXPECT_EQ(phaseOf(-s_infinity, 3), s_pi);
}

TEST_P(polarTest, AMinusBeforeZeroDoesNotCount)
{
    EXPECT_EQ(phaseOf(-1, -0.0f), s_pi);
    EXPECT_TRUE(samePixel(phaseOf(1, -0.0f), 0.0f));
    for (const float re : {0.0f, -0.0f})
        for (const float im : {0.0f, -0.0f})
            EXPECT_TRUE(samePixel(phaseOf(re, im), 0.0f)) << re << ", " << im;
}

TEST_P(polarTest, OnePartThatIsNoNumberIsEnough)
{
    for (const float other : {0.0f, 1.0f, s_infinity, -s_infinity, float(NAN)}) {
        EXPECT_TRUE(std::isnan(phaseOf(NAN, other)) && std::isnan(phaseOf(other, NAN)));
        EXPECT_TRUE(std::isnan(magnitudeOf(NAN, other)) && std::isnan(magnitudeOf(other, NAN)));
    }
}

TEST_P(polarTest, NoMagnitudeOverflowsOrUnderflowsOnTheWay)
{
    EXPECT_EQ(magnitudeOf(3, -4), 5.0f);
    EXPECT_EQ(magnitudeOf(1e30f, 1e30f), 1.4142135e30f);
    EXPECT_EQ(magnitudeOf(3e-45f, -4e-45f), 5.6e-45f); // 2 and 3 times the least float give 4 times
    EXPECT_EQ(magnitudeOf(3e38f, 3e38f), s_infinity);
    EXPECT_EQ(magnitudeOf(s_infinity, 0), s_infinity);
}

TEST_P(polarTest, TheMagnitudeIsTheRootInDoubleRounded)
{
    std::vector<Ipp32fc> numbers = manyNumbers();
    // Roots near the middle between two floats, and small whole numbers, whose roots are often whole.
    std::mt19937 random(9);
    for (int i = 0; i < 400000; ++i) {
        const double angle = double(random()) * 1.5e-9;
        const double middle = 1 + (double(random() % 0x800000) + 0.5) * 0x1p-23;
        numbers.push_back({float(middle * std::cos(angle)), float(middle * std::sin(angle))});
        numbers.push_back({float(1 + random() % 4096), float(random() % 4096)});
    }
    const int count = int(numbers.size());
    std::vector<float> magnitudes(numbers.size());
    ASSERT_EQ(ippiMagnitude_32fc32f_C1R(numbers.data(), 8 * count, magnitudes.data(), 4 * count, {count, 1}),
        ippStsNoErr);
    for (size_t i = 0; i < numbers.size(); ++i) {
        const double re = numbers[i].re, im = numbers[i].im;
        ASSERT_TRUE(samePixel(magnitudes[i], float(std::sqrt(re * re + im * im)))) << re << ", " << im;
    }
}

TEST(polarTargetTest, AllTargetsGiveTheSameBits)
{
    std::vector<Ipp32fc> numbers = manyNumbers();
    for (const float part : {float(NAN), -float(NAN)})
        for (int i = 0; i < 9; ++i) {
            numbers.push_back({part, i % 2 ? -part : 1.0f});
            numbers.push_back({s_infinity, part});
        }
    const int count = int(numbers.size());
    std::vector<float> firstPhases, firstMagnitudes;
    forEveryTarget([&](const char* target) {
        std::vector<float> phases(numbers.size()), magnitudes(numbers.size());
        ippiPhase_32fc32f_C1R(numbers.data(), 8 * count, phases.data(), 4 * count, {count, 1});
        ippiMagnitude_32fc32f_C1R(numbers.data(), 8 * count, magnitudes.data(), 4 * count, {count, 1});
        if (firstPhases.empty()) {
            firstPhases = phases;
            firstMagnitudes = magnitudes;
        }
        EXPECT_EQ(std::memcmp(phases.data(), firstPhases.data(), phases.size() * 4), 0) << target;
        EXPECT_EQ(std::memcmp(magnitudes.data(), firstMagnitudes.data(), magnitudes.size() * 4), 0) << target;
    });
}

} // namespace
