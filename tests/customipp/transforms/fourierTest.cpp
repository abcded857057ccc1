#include "transforms/fourier.h"

#include <gtest/gtest.h>

#include <cmath>
#include <complex>
#include <cstring>
#include <hwy/aligned_allocator.h>
#include <hwy/tests/hwy_gtest.h>
#include <random>
#include <vector>

namespace {

using namespace customipp;

/** Runs each case once for every instruction set that is compiled in. */
class fourierTest : public hwy::TestWithParamTarget {};
HWY_TARGET_INSTANTIATE_TEST_SUITE_P(fourierTest);

/** Every short length, and longer ones with each radix, alone and mixed. */
const std::vector<int>& lengths()
{
    static const std::vector<int> s_lengths = [] {
        std::vector<int> all;
        for (int n = 1; n <= 66; ++n)
            all.push_back(n);
        all.insert(
            all.end(), {81, 96, 100, 121, 127, 128, 144, 150, 240, 243, 256, 270, 384, 512, 625, 1001});
        return all;
    }();
    return s_lengths;
}

template <class T> FourierKernel<T> kernel()
{
    if constexpr (std::is_same_v<T, float>)
        return kernelsFourier().of32f;
    else
        return kernelsFourier().of64f;
}

/** A batch of complex numbers, apart from the layout of the engine. */
template <class T> struct Numbers {
    int length;
    std::vector<std::complex<double>> values; ///< lane after lane

    static Numbers random(int i_length)
    {
        std::mt19937 random(unsigned(i_length) + 5);
        std::uniform_real_distribution<double> number(-1, 1);
        Numbers numbers {i_length, {}};
        for (size_t i = 0; i < batchLanes<T> * size_t(i_length); ++i) {
            const double re = number(random), im = number(random);
            numbers.values.push_back({double(T(re)), double(T(im))});
        }
        return numbers;
    }
    std::complex<double>& at(size_t i_lane, size_t i_n) { return values[i_lane * size_t(length) + i_n]; }

    /** What the engine makes of them. */
    Numbers transformed(Direction i_direction) const
    {
        const size_t size = batchSize<T>(size_t(length));
        const auto batch = hwy::AllocateAligned<T>(size), scratch = hwy::AllocateAligned<T>(size);
        for (size_t lane = 0; lane < batchLanes<T>; ++lane)
            for (size_t n = 0; n < size_t(length); ++n) {
                const std::complex<double> z = values[lane * size_t(length) + n];
                batch[(2 * n) * batchLanes<T> + lane] = T(z.real());
                batch[(2 * n + 1) * batchLanes<T> + lane] = T(z.imag());
            }
        std::vector<T> tables(fourierTableSize<T>(length));
        const FourierPlan<T> plan = makeFourierPlan(length, tables.data());
        const T* result = kernel<T>()(plan, i_direction, batch.get(), scratch.get());
        EXPECT_EQ(result, plan.stages % 2 == 0 ? batch.get() : scratch.get());
        Numbers out {length, {}};
        for (size_t lane = 0; lane < batchLanes<T>; ++lane)
            for (size_t n = 0; n < size_t(length); ++n)
                out.values.push_back({double(result[(2 * n) * batchLanes<T> + lane]),
                    double(result[(2 * n + 1) * batchLanes<T> + lane])});
        return out;
    }
    /** The definition. */
    Numbers defined(Direction i_direction) const
    {
        const double circle = (i_direction == Direction::Forward ? -2 : 2) * std::acos(-1.0);
        std::vector<std::complex<double>> roots;
        for (int k = 0; k < length; ++k)
            roots.push_back(std::polar(1.0, circle * k / length));
        Numbers out {length, {}};
        for (size_t lane = 0; lane < batchLanes<T>; ++lane)
            for (size_t k = 0; k < size_t(length); ++k) {
                std::complex<double> sum = 0;
                for (size_t n = 0; n < size_t(length); ++n)
                    sum += values[lane * size_t(length) + n] * roots[k * n % size_t(length)];
                out.values.push_back(sum);
            }
        return out;
    }
    /** The root mean square of the difference over that of the numbers, in one lane. */
    double errorOf(const Numbers& i_other, size_t i_lane) const
    {
        double error = 0, size = 0;
        for (size_t n = 0; n < size_t(length); ++n) {
            const size_t i = i_lane * size_t(length) + n;
            error += std::norm(values[i] - i_other.values[i]);
            size += std::norm(values[i]);
        }
        return std::sqrt(error / size);
    }
};

template <class T> void expectDefinition(double i_tolerance)
{
    for (const int length : lengths())
        for (const Direction direction : {Direction::Forward, Direction::Backward}) {
            const auto numbers = Numbers<T>::random(length);
            const auto expected = numbers.defined(direction), actual = numbers.transformed(direction);
            for (size_t lane = 0; lane < batchLanes<T>; ++lane)
                ASSERT_LE(expected.errorOf(actual, lane), i_tolerance)
                    << "length " << length << ", lane " << lane << ", direction " << int(direction);
        }
}

TEST_P(fourierTest, FloatsGiveTheDefinition) { expectDefinition<float>(3e-7); }
// The reference itself is only as exact as this.
TEST_P(fourierTest, DoublesGiveTheDefinition) { expectDefinition<double>(3e-14); }

TEST_P(fourierTest, LongTransformsComeBack)
{
    for (const int length : {2048, 3125, 4096, 6561, 10000, 1022, 7919}) {
        const auto there = Numbers<double>::random(length);
        auto back = there.transformed(Direction::Forward).transformed(Direction::Backward);
        for (auto& value : back.values)
            value /= length;
        for (size_t lane = 0; lane < batchLanes<double>; ++lane)
            ASSERT_LE(there.errorOf(back, lane), length == 7919 ? 1e-13 : 2e-15) << length;
    }
}

TEST_P(fourierTest, AnImpulseBecomesThePowersOfOneRoot)
{
    for (const int length : {1, 2, 12, 60, 77, 1024}) {
        Numbers<double> impulse {length, {}};
        impulse.values.resize(batchLanes<double> * size_t(length));
        impulse.at(3, size_t(length) / 2) = 1;
        auto spectrum = impulse.transformed(Direction::Forward);
        for (int k = 0; k < length; ++k) {
            const UnitRoot root = unitRoot(int(int64_t(length / 2) * k % length), length);
            EXPECT_NEAR(spectrum.at(3, size_t(k)).real(), root.re, 1e-15);
            EXPECT_NEAR(spectrum.at(3, size_t(k)).imag(), -root.im, 1e-15);
            EXPECT_EQ(spectrum.at(2, size_t(k)), 0.0) << "lanes do not meet";
        }
    }
}

template <class T> void expectEqualBytesOnEveryTarget()
{
    for (const int length : lengths()) {
        const auto numbers = Numbers<T>::random(length);
        std::vector<std::complex<double>> first;
        for (const int64_t target : hwy::SupportedAndGeneratedTargets()) {
            hwy::SetSupportedTargetsForTest(target);
            const auto result = numbers.transformed(Direction::Forward).values;
            if (first.empty())
                first = result;
            ASSERT_EQ(std::memcmp(first.data(), result.data(), first.size() * sizeof(first[0])), 0)
                << hwy::TargetName(target) << ", length " << length;
        }
        hwy::SetSupportedTargetsForTest(0);
    }
}

TEST(fourierTargetTest, EveryInstructionSetGivesTheSameBytes)
{
    expectEqualBytesOnEveryTarget<float>();
    expectEqualBytesOnEveryTarget<double>();
}

TEST(unitRootTest, RootsAreExactToTheLastPlace)
{
    for (const int denominator : {1, 2, 3, 4, 7, 8, 12, 100, 1023, 1024, 65536, 1999999973})
        for (int i = 0; i < std::min(denominator, 5000); ++i) {
            const int numerator = int(int64_t(i) * 7919 % denominator);
            const long double angle = 2 * std::acos(-1.0L) * numerator / denominator;
            const UnitRoot root = unitRoot(numerator, denominator);
            ASSERT_NEAR(root.re, double(std::cos(angle)), 2.3e-16) << numerator << " / " << denominator;
            ASSERT_NEAR(root.im, double(std::sin(angle)), 2.3e-16) << numerator << " / " << denominator;
        }
    for (int quarter = 0; quarter < 4; ++quarter) {
        EXPECT_EQ(unitRoot(quarter, 4).re, quarter == 0 ? 1 : quarter == 2 ? -1 : 0);
        EXPECT_EQ(unitRoot(quarter, 4).im, quarter == 1 ? 1 : quarter == 3 ? -1 : 0);
    }
}

} // namespace
