#include "proximity/match.h"
#include "matchCases.h"

#include <cstring>
#include <hwy/tests/hwy_gtest.h>
#include <random>
#include <set>

namespace {

using namespace match;

/** Runs each case once for every instruction set that is compiled in. */
class matchTest : public hwy::TestWithParamTarget {};
HWY_TARGET_INSTANTIATE_TEST_SUITE_P(matchTest);

struct Sizes {
    IppiSize source, pattern;
};
/** Each side below, at and above the pattern's; directly and by transforms, in one tile and in several. */
const std::vector<Sizes>& everySize()
{
    static const std::vector<Sizes> s_sizes {{{1, 1}, {1, 1}}, {{5, 4}, {1, 1}}, {{17, 9}, {3, 2}},
        {{33, 20}, {4, 5}}, {{3, 3}, {5, 7}}, {{7, 30}, {9, 4}}, {{16, 12}, {16, 12}}, {{70, 5}, {1, 5}},
        {{270, 40}, {7, 1}}, {{40, 70}, {2, 33}}, {{61, 47}, {40, 40}}, {{150, 60}, {31, 37}},
        {{560, 24}, {24, 20}}};
    return s_sizes;
}

template <class T> void fillNoise(Plane<T>& o_plane, unsigned i_seed)
{
    std::mt19937 random(i_seed);
    o_plane.fill([&] {
        return std::is_floating_point_v<T> ? T(double(random()) / 65536.0 - 32768.0) : T(random() >> 7);
    });
}

template <class T> void expectEverySize()
{
    unsigned seed = 1;
    std::set<customipp::MatchMethod> methods;
    for (const auto& [source, pattern] : everySize()) {
        const Layout layout = everyLayout()[seed % everyLayout().size()];
        Plane<T> image(source.width, source.height, layout), small(pattern.width, pattern.height, layout);
        fillNoise(image, ++seed);
        fillNoise(small, ++seed);
        expectDefinition(image, small, everyLayout()[seed % everyLayout().size()]);
        if (::testing::Test::HasFatalFailure())
            return;
        ASSERT_TRUE(image.frameIsIntact() && small.frameIsIntact());
        customipp::MatchProblem problem;
        customipp::makeMatchProblem(source, pattern, ippiROIFull, customipp::Measure::CrossCorr, {}, problem);
        methods.insert(customipp::makeMatchPlan(problem, sizeof(T) == 1).method);
    }
    EXPECT_TRUE(methods.count(customipp::MatchMethod::Spectrum)) << "no size goes by transforms";
    EXPECT_TRUE(
        methods.count(sizeof(T) == 1 ? customipp::MatchMethod::Pairs : customipp::MatchMethod::Direct));
}

TEST_P(matchTest, BytesGiveTheDefinition) { expectEverySize<Ipp8u>(); }
TEST_P(matchTest, WordsGiveTheDefinition) { expectEverySize<Ipp16u>(); }
TEST_P(matchTest, FloatsGiveTheDefinition) { expectEverySize<Ipp32f>(); }

/** Rows of numbers as an image. */
template <class T> void setRow(Plane<T>& o_plane, std::initializer_list<double> i_values)
{
    int x = 0;
    for (const double value : i_values)
        o_plane.set(x++, 0, T(value));
}

/** The results for one row of source and pattern. */
template <class T>
std::vector<float> rowResult(const Calls<T>& i_calls, std::initializer_list<double> i_source,
    std::initializer_list<double> i_pattern, IppEnum i_flags)
{
    Plane<T> source(int(i_source.size()), 1), pattern(int(i_pattern.size()), 1);
    setRow(source, i_source);
    setRow(pattern, i_pattern);
    const IppiSize sourceSize {source.lanes(), 1}, patternSize {pattern.lanes(), 1};
    int bytes = 0;
    EXPECT_EQ(i_calls.size(sourceSize, patternSize, i_flags, &bytes), ippStsNoErr);
    std::vector<Ipp8u> work(static_cast<size_t>(bytes));
    std::vector<float> result(size_t(resultSize(sourceSize, patternSize, i_flags & ippiROIMask).width));
    EXPECT_EQ(i_calls.run(source.data(), source.step(), sourceSize, pattern.data(), pattern.step(),
                  patternSize, result.data(), int(result.size() * 4), i_flags, work.data()),
        ippStsNoErr);
    return result;
}

template <class T> void expectWorkedExamples()
{
    using Row = std::vector<float>;
    const Calls<T> correlation = bothMeasures<T>()[0], distance = bothMeasures<T>()[1];
    EXPECT_EQ(rowResult(correlation, {1, 2, 3}, {1, 10}, ippiROIFull), (Row {10, 21, 32, 3}));
    EXPECT_EQ(rowResult(correlation, {1, 2, 3}, {1, 10}, ippiROISame), (Row {10, 21, 32}));
    EXPECT_EQ(rowResult(correlation, {1, 2, 3}, {1, 10}, ippiROIValid), (Row {21, 32}));
    EXPECT_EQ(rowResult(distance, {1, 2, 3}, {1, 10}, ippiROIFull), (Row {82, 64, 50, 104}));
    EXPECT_EQ(rowResult(correlation, {1, 2, 3}, {1, 10, 100}, ippiROIFull), (Row {100, 210, 321, 32, 3}));
    EXPECT_EQ(rowResult(correlation, {1, 2, 3}, {1, 10, 100}, ippiROISame), (Row {210, 321, 32}));
    EXPECT_FLOAT_EQ(rowResult(correlation, {1, 2, 3}, {1, 10}, ippiROIValid | ippiNorm)[0], 0.9344877f);
    EXPECT_FLOAT_EQ(rowResult(distance, {1, 2, 3}, {1, 10}, ippiROIValid | ippiNorm)[0], 2.8479626f);
    const Row coefficient
        = rowResult(correlation, {1, 2, 3, 7}, {1, 10, 4}, ippiROIValid | ippiNormCoefficient);
    EXPECT_FLOAT_EQ(coefficient[0], 0.3273268f);
    EXPECT_NEAR(coefficient[1], 0, 2e-7);
    // Where there is nothing to divide by.
    EXPECT_EQ(rowResult(correlation, {0, 0, 3}, {1, 2}, ippiROIValid | ippiNorm)[0], 0);
    EXPECT_EQ(rowResult(correlation, {4, 7, 3}, {0, 0}, ippiROIValid | ippiNorm), (Row {0, 0}));
    EXPECT_EQ(rowResult(correlation, {5, 5, 3}, {1, 2}, ippiROIValid | ippiNormCoefficient)[0], 0);
    EXPECT_EQ(rowResult(correlation, {4, 7, 3}, {9, 9}, ippiROIValid | ippiNormCoefficient), (Row {0, 0}));
    EXPECT_EQ(rowResult(distance, {0, 0, 3}, {0, 0}, ippiROIValid | ippiNorm), (Row {0, 1}));
    EXPECT_EQ(rowResult(distance, {0, 0, 3}, {1, 2}, ippiROIValid | ippiNorm)[0], 1);
    // What is equal is 1, or has no distance.
    EXPECT_EQ(rowResult(correlation, {3, 1, 2}, {1, 2}, ippiROIValid | ippiNorm)[1], 1);
    EXPECT_EQ(rowResult(correlation, {3, 1, 2}, {1, 2}, ippiROIValid | ippiNormCoefficient)[1], 1);
    EXPECT_EQ(rowResult(correlation, {2, 1}, {1, 2}, ippiROIValid | ippiNormCoefficient)[0], -1);
    EXPECT_EQ(rowResult(distance, {3, 1, 2}, {1, 2}, ippiROIValid)[1], 0);
}

TEST_P(matchTest, WorkedExamples)
{
    expectWorkedExamples<Ipp8u>();
    expectWorkedExamples<Ipp16u>();
    expectWorkedExamples<Ipp32f>();
}

TEST_P(matchTest, DarkWindowsBesideBrightOnesAreAsExact)
{
    Plane<Ipp32f> image(90, 70), pattern(36, 33);
    std::mt19937 random(3);
    pattern.fill([&] { return float(random() % 1000); });
    int i = 0;
    // Bright to the left, then a band of zeros, then what is lost in the error of a transform.
    image.fill([&] {
        const int x = i++ % 90;
        const float noise = float(random() % 1000 + 1);
        return x < 5 ? noise * 1e9f : x < 48 ? 0 : noise * 1e-8f;
    });
    expectDefinition(image, pattern);

    Plane<Ipp32f> smooth(90, 70);
    smooth.fill([&] { return 1e6f + float(random() % 3) * 0.0625f; });
    for (int y = 10; y < 60; ++y)
        for (int x = 20; x < 80; ++x)
            smooth.set(x, y, 12345.678f);
    expectDefinition(smooth, pattern);
}

TEST_P(matchTest, WordsThatHardlyDifferFromTheirMeanAreStillCorrelated)
{
    Plane<Ipp16u> image(80, 60), pattern(35, 30);
    std::mt19937 random(4);
    image.fill([&] { return Ipp16u(65535 - (random() % 997 == 0)); });
    pattern.fill([&] { return Ipp16u(65535 - (random() % 331 == 0)); });
    expectDefinition(image, pattern);
}

TEST_P(matchTest, APatternIsFoundWhereItWasCut)
{
    // Large enough for several tiles of transforms.
    Plane<Ipp8u> image(900, 700), pattern(64, 48);
    std::mt19937 random(5);
    image.fill([&] { return Ipp8u(random()); });
    for (int y = 0; y < 48; ++y)
        for (int x = 0; x < 64; ++x)
            pattern.set(x, y, image.get(640 + x, 555 + y));
    const IppiSize source {900, 700}, size {64, 48};
    for (const auto& calls : bothMeasures<Ipp8u>())
        for (const int norm : {int(ippiNorm), int(ippiNormCoefficient)}) {
            if (calls.isDistance && norm == ippiNormCoefficient)
                continue;
            int bytes = 0;
            ASSERT_EQ(calls.size(source, size, norm | ippiROIValid, &bytes), ippStsNoErr);
            std::vector<Ipp8u> work(static_cast<size_t>(bytes));
            Plane<Ipp32f> result(837, 653);
            ASSERT_EQ(calls.run(image.data(), image.step(), source, pattern.data(), pattern.step(), size,
                          result.data(), result.step(), norm | ippiROIValid, work.data()),
                ippStsNoErr);
            for (int y = 0; y < 653; ++y)
                for (int x = 0; x < 837; ++x) {
                    const bool here = x == 640 && y == 555;
                    const float value = calls.isDistance ? 1 - result.get(x, y) : result.get(x, y);
                    ASSERT_EQ(value > 0.95f, here) << calls.name << ": " << x << ", " << y << ": " << value;
                }
            EXPECT_FLOAT_EQ(result.get(640, 555), calls.isDistance ? 0 : 1);
        }
}

TEST_P(matchTest, NothingOutsideIsTouched)
{
    for (const FencedMemory::Side side : {FencedMemory::AgainstEnd, FencedMemory::AgainstStart})
        for (const auto& [source, pattern] : std::vector<Sizes> {{{33, 9}, {5, 3}}, {{61, 47}, {40, 40}}}) {
            FencedMemory image(size_t(source.width) * size_t(source.height) * 4, side);
            FencedMemory small(size_t(pattern.width) * size_t(pattern.height) * 4, side);
            const auto run = [&](auto type) {
                using T = decltype(type);
                for (const int shape : s_shapes) {
                    const IppiSize size = resultSize(source, pattern, shape);
                    FencedMemory result(size_t(size.width) * size_t(size.height) * 4, side);
                    int bytes = 0;
                    const int flags = shape | ippiNormCoefficient;
                    ASSERT_EQ(ippiCrossCorrNormGetBufferSize(source, pattern, flags, &bytes), ippStsNoErr);
                    FencedMemory work(static_cast<size_t>(bytes), side);
                    const size_t used = sizeof(T);
                    const size_t imageStart = side == FencedMemory::AgainstEnd
                        ? size_t(source.width) * size_t(source.height) * (4 - used)
                        : 0;
                    const size_t smallStart = side == FencedMemory::AgainstEnd
                        ? size_t(pattern.width) * size_t(pattern.height) * (4 - used)
                        : 0;
                    ASSERT_EQ(
                        bothMeasures<T>()[0].run(reinterpret_cast<const T*>(image.data() + imageStart),
                            source.width * int(used), source,
                            reinterpret_cast<const T*>(small.data() + smallStart), pattern.width * int(used),
                            pattern, reinterpret_cast<Ipp32f*>(result.data()), size.width * 4, flags,
                            work.data()),
                        ippStsNoErr);
                }
            };
            run(Ipp8u());
            run(Ipp16u());
            run(Ipp32f());
        }
}

TEST_P(matchTest, DirectlySummedWindowsWithoutNaNStayRight)
{
    Plane<Ipp32f> image(30, 20), pattern(4, 3);
    fillNoise(image, 8);
    fillNoise(pattern, 9);
    const Oracle<Ipp32f> oracle(image, pattern);
    Plane<Ipp32f> damaged(30, 20), result(27, 18);
    damaged.copyFrom(image);
    damaged.set(14, 10, NAN);
    damaged.set(3, 4, INFINITY);
    const int flags = ippiROIValid | ippiNormCoefficient;
    int bytes = 0;
    ASSERT_EQ(ippiCrossCorrNormGetBufferSize({30, 20}, {4, 3}, flags, &bytes), ippStsNoErr);
    std::vector<Ipp8u> work(static_cast<size_t>(bytes));
    ASSERT_EQ(ippiCrossCorrNorm_32f_C1R(damaged.data(), damaged.step(), {30, 20}, pattern.data(),
                  pattern.step(), {4, 3}, result.data(), result.step(), flags, work.data()),
        ippStsNoErr);
    int right = 0;
    for (int y = 0; y < 18; ++y)
        for (int x = 0; x < 27; ++x) {
            if ((x > 10 && x <= 14 && y > 7 && y <= 10) || (x <= 3 && y > 1 && y <= 4))
                continue;
            const auto [value, tolerance]
                = oracle.valueOf(oracle.sumsAt(x, y, ippiROIValid), ippiNormCoefficient, false);
            ASSERT_NEAR(result.get(x, y), value, tolerance) << x << ", " << y;
            ++right;
        }
    EXPECT_EQ(right, 27 * 18 - 12 - 12);
}

template <class T> void expectEqualBytesOnEveryTarget()
{
    for (const auto& [source, pattern] : everySize())
        for (const auto& calls : bothMeasures<T>())
            for (const int norm : {int(ippiNormNone), int(ippiNorm), int(ippiNormCoefficient)}) {
                if (calls.isDistance && norm == ippiNormCoefficient)
                    continue;
                Plane<T> image(source.width, source.height), small(pattern.width, pattern.height);
                fillNoise(image, 21);
                fillNoise(small, 22);
                const IppiSize size = resultSize(source, pattern, ippiROIFull);
                Plane<Ipp32f> first(size.width, size.height);
                bool isFirst = true;
                for (const int64_t target : hwy::SupportedAndGeneratedTargets()) {
                    hwy::SetSupportedTargetsForTest(target);
                    int bytes = 0;
                    ASSERT_EQ(calls.size(source, pattern, norm, &bytes), ippStsNoErr);
                    std::vector<Ipp8u> work(size_t(bytes), Ipp8u(isFirst ? 0 : 0xFF));
                    Plane<Ipp32f> result(size.width, size.height);
                    ASSERT_EQ(calls.run(image.data(), image.step(), source, small.data(), small.step(),
                                  pattern, result.data(), result.step(), norm, work.data()),
                        ippStsNoErr);
                    if (isFirst)
                        first.copyFrom(result);
                    isFirst = false;
                    ASSERT_TRUE(samePixels(result, first)) << calls.name << " on " << hwy::TargetName(target);
                }
                hwy::SetSupportedTargetsForTest(0);
            }
}

TEST(matchTargetTest, EveryInstructionSetGivesTheSameBytes)
{
    expectEqualBytesOnEveryTarget<Ipp8u>();
    expectEqualBytesOnEveryTarget<Ipp16u>();
    expectEqualBytesOnEveryTarget<Ipp32f>();
}

} // namespace
