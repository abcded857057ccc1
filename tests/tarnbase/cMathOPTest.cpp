#include <tarnbase/cMathOP.h>

#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <random>
#include <thread>
#include <vector>

namespace {

/** Least and greatest by the definition; values that are no number are passed over. */
template <class E> struct Extremes {
    E min {}, max {};
    unsigned int minIndex = 0, maxIndex = 0;
    explicit Extremes(const std::vector<E>& i_values)
    {
        bool any = false;
        for (unsigned int i = 0; i < i_values.size(); ++i) {
            if (i_values[i] != i_values[i])
                continue;
            if (!any || i_values[i] < min)
                min = i_values[i], minIndex = i;
            if (!any || i_values[i] > max)
                max = i_values[i], maxIndex = i;
            any = true;
        }
    }
};

template <class E> void expectExtremes(const std::vector<E>& i_values)
{
    const Extremes<E> expected(i_values);
    E min {}, max {};
    unsigned int minIndex = 77, maxIndex = 77;
    const auto count = static_cast<unsigned int>(i_values.size());
    cMathOP::cStatistic::minMax<E>(i_values.data(), count, min, max, &minIndex, &maxIndex);
    EXPECT_EQ(min, expected.min);
    EXPECT_EQ(max, expected.max);
    EXPECT_EQ(minIndex, expected.minIndex);
    EXPECT_EQ(maxIndex, expected.maxIndex);
    min = max = E(5);
    cMathOP::cStatistic::minMax<E>(i_values.data(), count, min, max, nullptr, nullptr);
    EXPECT_EQ(min, expected.min);
    EXPECT_EQ(max, expected.max);
}

} // namespace

template <class E> class minMaxOfEachType : public testing::Test {
};
using NumberTypes = testing::Types<int, float, double>;
TYPED_TEST_SUITE(minMaxOfEachType, NumberTypes);

TYPED_TEST(minMaxOfEachType, FindsTheExtremesAtEveryLengthAndPlace)
{
    using E = TypeParam;
    std::mt19937 random(5);
    for (unsigned int length = 0; length < 70; ++length) {
        std::vector<E> values(length);
        for (E& value : values)
            value = E(int(random() % 2001) - 1000);
        expectExtremes(values);
        for (unsigned int place = 0; place < length; ++place) {
            std::vector<E> peaked = values;
            peaked[place] = std::numeric_limits<E>::lowest();
            expectExtremes(peaked);
            peaked[place] = std::numeric_limits<E>::max();
            expectExtremes(peaked);
        }
    }
    expectExtremes(std::vector<E>(50, E(-3)));
}

TYPED_TEST(minMaxOfEachType, PassesOverWhatIsNoNumber)
{
    using E = TypeParam;
    if constexpr (std::is_floating_point_v<E>) {
        const E nan = std::numeric_limits<E>::quiet_NaN();
        std::mt19937 random(6);
        for (unsigned int length = 1; length < 60; ++length) {
            std::vector<E> values(length);
            for (E& value : values)
                value = random() % 2 == 0 ? nan : E(int(random() % 100));
            expectExtremes(values);
            values.back() = -std::numeric_limits<E>::infinity();
            expectExtremes(values);
        }
        expectExtremes(std::vector<E>(40, nan));
    }
}

TEST(cTrigonometry, TurnsDegreesIntoRadiansAndBack)
{
    EXPECT_EQ(cMathOP::cTrigonometry::deg2rad(180.0), M_PI);
    EXPECT_EQ(cMathOP::cTrigonometry::rad2deg(M_PI), 180.0);
    EXPECT_NEAR(cMathOP::cTrigonometry::deg2rad(-90.0), -M_PI / 2, 1e-15);
}

TEST(randInRange, StaysWithinItsRangeAndFillsIt)
{
    using Statistic = cMathOP::cStatistic;
    Statistic::seed(1);
    constexpr int bins = 10;
    constexpr int draws = 20000;
    int counts[bins] = {};
    for (int i = 0; i < draws; ++i) {
        const double value = Statistic::randInRange(5.0, -5.0);
        ASSERT_GE(value, -5.0);
        ASSERT_LT(value, 5.0);
        ++counts[int(value + 5.0)];
    }
    // Each bin expects 2000 with a standard deviation of 42; the sequence is fixed, so this cannot fail by
    // chance.
    for (const int count : counts)
        EXPECT_NEAR(count, draws / bins, 5 * 42);
    EXPECT_EQ(Statistic::randInRange(2.0, 2.0), 2.0);
    const double narrow = Statistic::randInRange(1.0, std::nextafter(1.0, 2.0));
    EXPECT_EQ(narrow, 1.0);
}

TEST(randInRange, GivesTheSameSequenceForTheSameSeed)
{
    using Statistic = cMathOP::cStatistic;
    const auto draw = [] {
        std::vector<double> values;
        Statistic::seed(42);
        for (int i = 0; i < 20; ++i)
            values.push_back(Statistic::randInRange(0.0, 1.0));
        return values;
    };
    EXPECT_EQ(draw(), draw());
}

TEST(randInRange, MayBeCalledFromSeveralThreads)
{
    using Statistic = cMathOP::cStatistic;
    std::vector<std::thread> threads;
    for (int i = 0; i < 3; ++i)
        threads.emplace_back([] {
            for (int draw = 0; draw < 1000; ++draw)
                EXPECT_LT(Statistic::randInRange(0.0, 1.0), 1.0);
        });
    for (std::thread& thread : threads)
        thread.join();
}
