#include "reductionCases.h"

#include <gtest/gtest.h>
#include <hwy/tests/hwy_gtest.h>

#include <climits>
#include <cmath>

namespace {

/** Runs each case once for every instruction set that is compiled in. */
class meanStdDevTest : public hwy::TestWithParamTarget {};
HWY_TARGET_INSTANTIATE_TEST_SUITE_P(meanStdDevTest);

/** By the definition, in two passes. */
void expectMeanAndDeviation(const std::vector<long double>& i_values, double i_mean, double i_stdDev)
{
    if (i_values.empty()) {
        ASSERT_EQ(i_mean, 0);
        ASSERT_EQ(i_stdDev, 0);
        return;
    }
    long double sum = 0, scatter = 0, greatest = 0;
    for (const long double value : i_values) {
        sum += value;
        greatest = std::max(greatest, std::fabs(value));
    }
    const long double mean = sum / i_values.size();
    for (const long double value : i_values)
        scatter += (value - mean) * (value - mean);
    const auto deviation = double(std::sqrt(scatter / i_values.size()));
    ASSERT_NEAR(i_mean, double(mean), double(greatest) * 1e-15);
    ASSERT_NEAR(i_stdDev, deviation, deviation * 1e-12);
}

/** function(src, step, mask, step, size, mean, stdDev) of channel number i_channel. */
template <class T, int Channels, class Function>
void expectDefinition(const char* i_symbol, int i_channel, bool i_masked, Function&& i_function)
{
    PixelSource<T> random(1);
    PixelSource<Ipp8u> randomMask(2);
    reduction::forEveryGeometry([&](IppiSize size, const Layout& layout, unsigned count) {
        if (layout.padding % int(sizeof(T)) != 0)
            return;
        SCOPED_TRACE(reduction::nameOf(i_symbol, size));
        Plane<T> image(size.width * Channels, size.height, layout), dense(size.width * Channels, size.height);
        Plane<Ipp8u> mask(size.width, size.height, everyLayout()[count % 3]);
        image.fill(random);
        dense.copyFrom(image);
        // All, none, the last one only, and any.
        int place = 0;
        mask.fill([&] {
            const bool last = ++place == size.width * size.height;
            return !i_masked     ? Ipp8u(1)
                : count % 4 == 0 ? Ipp8u(0)
                : count % 4 == 1 ? Ipp8u(last)
                                 : randomMask();
        });
        std::vector<long double> values;
        for (int y = 0; y < size.height; ++y)
            for (int x = 0; x < size.width; ++x)
                if (mask.get(x, y))
                    values.push_back(image.get(x * Channels + i_channel, y));
        double mean = -1, stdDev = -1, again[2] = {-1, -1};
        ASSERT_EQ(i_function(image.data(), image.step(), mask.data(), mask.step(), size, &mean, &stdDev),
            ippStsNoErr);
        expectMeanAndDeviation(values, mean, stdDev);
        ASSERT_TRUE(image.frameIsIntact() && mask.frameIsIntact());

        ASSERT_EQ(i_function(dense.data(), dense.step(), mask.data(), mask.step(), size, &again[0], nullptr),
            ippStsNoErr);
        ASSERT_EQ(i_function(dense.data(), dense.step(), mask.data(), mask.step(), size, nullptr, &again[1]),
            ippStsNoErr);
        ASSERT_TRUE(samePixel(mean, again[0]) && samePixel(stdDev, again[1])) << "depends on the layout";
    });
}

#undef CUSTOMIPP_MEAN_STD_DEV
#define CUSTOMIPP_MEAN_STD_DEV(symbol, op, T)                                                                \
    expectDefinition<T, 1>(#symbol, 0, false,                                                                \
        [](const T* src, int step, const Ipp8u*, int, IppiSize size, double* mean, double* stdDev) {         \
            return symbol(src, step, size, mean, stdDev);                                                    \
        });
#undef CUSTOMIPP_MEAN_STD_DEV_CHANNEL
#define CUSTOMIPP_MEAN_STD_DEV_CHANNEL(symbol, op, T)                                                        \
    for (int channel = 0; channel < 3; ++channel)                                                            \
        expectDefinition<T, 3>(#symbol, channel, false,                                                      \
            [channel](const T* src, int step, const Ipp8u*, int, IppiSize size, double* mean,                \
                double* stdDev) { return symbol(src, step, size, channel + 1, mean, stdDev); });
#undef CUSTOMIPP_MEAN_STD_DEV_MASKED
#define CUSTOMIPP_MEAN_STD_DEV_MASKED(symbol, op, T) expectDefinition<T, 1>(#symbol, 0, true, symbol);
#undef CUSTOMIPP_MEAN_STD_DEV_MASKED_CHANNEL
#define CUSTOMIPP_MEAN_STD_DEV_MASKED_CHANNEL(symbol, op, T)                                                 \
    for (int channel = 0; channel < 3; ++channel)                                                            \
        expectDefinition<T, 3>(#symbol, channel, true,                                                       \
            [channel](const T* src, int step, const Ipp8u* mask, int maskStep, IppiSize size, double* mean,  \
                double* stdDev) {                                                                            \
                return symbol(src, step, mask, maskStep, size, channel + 1, mean, stdDev);                   \
            });

TEST_P(meanStdDevTest, EveryFormGivesItsDefinition) {
#include <customipp/meanStdDev.def>
}

TEST_P(meanStdDevTest, WorkedValues)
{
    const Ipp8u bytes[] = {1, 2, 3, 4};
    const float floats[] = {1, 2, 3, 4};
    double mean = 0, stdDev = 0;
    ASSERT_EQ(ippiMean_StdDev_8u_C1R(bytes, 2, {2, 2}, &mean, &stdDev), ippStsNoErr);
    EXPECT_EQ(mean, 2.5);
    EXPECT_DOUBLE_EQ(stdDev, 1.118033988749895);
    ASSERT_EQ(ippiMean_StdDev_32f_C1R(floats, 8, {2, 2}, &mean, &stdDev), ippStsNoErr);
    EXPECT_EQ(mean, 2.5);
    EXPECT_DOUBLE_EQ(stdDev, 1.118033988749895);
}

TEST_P(meanStdDevTest, EqualPixelsDoNotDeviateAtAll)
{
    const std::vector<float> floats(5000 * 3, 0.1f);
    const std::vector<Ipp16u> words(5000 * 3, 65535);
    double mean = 0, stdDev = -1;
    ASSERT_EQ(ippiMean_StdDev_32f_C1R(floats.data(), 20000, {5000, 3}, &mean, &stdDev), ippStsNoErr);
    EXPECT_EQ(mean, double(0.1f));
    EXPECT_EQ(stdDev, 0);
    ASSERT_EQ(ippiMean_StdDev_16u_C1R(words.data(), 10000, {5000, 3}, &mean, &stdDev), ippStsNoErr);
    EXPECT_EQ(mean, 65535);
    EXPECT_EQ(stdDev, 0);
}

/** A small deviation on a great mean, with a first row of something else: one sum of squares would lose it
 * all. */
TEST_P(meanStdDevTest, FloatsFarFromZeroKeepTheirDeviation)
{
    std::mt19937 random(5);
    const int width = 9001, height = 4;
    std::vector<float> image(size_t(width) * height);
    std::vector<Ipp8u> mask(image.size());
    for (const bool masked : {false, true}) {
        std::vector<long double> values;
        for (size_t i = 0; i < image.size(); ++i) {
            image[i] = i < size_t(width) && masked ? float(random()) : 8388608.0f + float(random() % 4);
            mask[i] = i < size_t(width) && masked ? 0 : Ipp8u(1 + random() % 255);
            if (mask[i])
                values.push_back(image[i]);
        }
        double mean = 0, stdDev = 0;
        if (masked)
            ippiMean_StdDev_32f_C1MR(
                image.data(), width * 4, mask.data(), width, {width, height}, &mean, &stdDev);
        else
            ippiMean_StdDev_32f_C1R(image.data(), width * 4, {width, height}, &mean, &stdDev);
        expectMeanAndDeviation(values, mean, stdDev);
    }
}

TEST_P(meanStdDevTest, NotANumberAndInfinityPassThrough)
{
    for (int width = 1; width <= 40; ++width)
        for (int place = 0; place < width; ++place)
            for (const float value : {NAN, INFINITY, -INFINITY}) {
                std::vector<float> row(size_t(width), 3.0f);
                row[size_t(place)] = value;
                double mean = 0, stdDev = 0;
                ippiMean_StdDev_32f_C1R(row.data(), width * 4, {width, 1}, &mean, &stdDev);
                EXPECT_TRUE(samePixel(mean, double(value))) << width << ": " << place << ": " << mean;
                EXPECT_TRUE(std::isnan(stdDev));
                std::vector<Ipp8u> mask(size_t(width), 1);
                mask[size_t(place)] = 0;
                ippiMean_StdDev_32f_C1MR(
                    row.data(), width * 4, mask.data(), width, {width, 1}, &mean, &stdDev);
                EXPECT_EQ(mean, width > 1 ? 3 : 0);
                EXPECT_EQ(stdDev, 0);
            }
}

/** Beyond what the narrow lanes hold between two emptyings, and beyond what the sums hold in 64 bits squared.
 */
TEST_P(meanStdDevTest, GreatSumsAreExact)
{
    const int width = 1 << 21, height = 3;
    std::vector<Ipp8u> bytes(size_t(width) * height, 255);
    std::vector<Ipp16u> words(size_t(width) * height, 65535);
    for (size_t i = 0; i < words.size(); i += 2)
        bytes[i] = 0, words[i] = 0;
    double mean = 0, stdDev = 0;
    ASSERT_EQ(ippiMean_StdDev_8u_C1R(bytes.data(), width, {width, height}, &mean, &stdDev), ippStsNoErr);
    EXPECT_EQ(mean, 127.5);
    EXPECT_EQ(stdDev, 127.5);
    ASSERT_EQ(ippiMean_StdDev_16u_C1R(words.data(), width * 2, {width, height}, &mean, &stdDev), ippStsNoErr);
    EXPECT_EQ(mean, 32767.5);
    EXPECT_EQ(stdDev, 32767.5);
}

/** The same bits for every instruction set, in rows of several pieces. */
TEST_P(meanStdDevTest, SumsOfFloatsHaveOneOrder)
{
    static std::vector<double> s_first;
    std::mt19937 random(9);
    std::vector<float> image(9037 * 3);
    std::vector<Ipp8u> mask(image.size());
    for (size_t i = 0; i < image.size(); ++i) {
        image[i] = std::ldexp(float(random()), int(random() % 60) - 60);
        mask[i] = Ipp8u(random() % 3);
    }
    double mean = 0, stdDev = 0, maskedMean = 0, maskedStdDev = 0;
    ippiMean_StdDev_32f_C1R(image.data(), 9037 * 4, {9037, 3}, &mean, &stdDev);
    ippiMean_StdDev_32f_C1MR(
        image.data(), 9037 * 4, mask.data(), 9037, {9037, 3}, &maskedMean, &maskedStdDev);
    const std::vector<double> all {mean, stdDev, maskedMean, maskedStdDev};
    if (s_first.empty())
        s_first = all;
    EXPECT_EQ(s_first, all);
}

TEST_P(meanStdDevTest, NothingBeyondTheRowIsRead)
{
    for (const FencedMemory::Side side : reduction::s_sides)
        for (int width = 1; width <= 300; ++width) {
            reduction::FencedRow<Ipp8u> mask(width, side), three(width * 3, side);
            reduction::FencedRow<float> floats(width, side);
            mask.set(width - 1, 1);
            double mean = 0, stdDev = 0;
            EXPECT_EQ(ippiMean_StdDev_8u_C3CMR(
                          three.data(), width * 3, mask.data(), width, {width, 1}, 3, &mean, &stdDev),
                ippStsNoErr);
            EXPECT_EQ(ippiMean_StdDev_32f_C1MR(
                          floats.data(), width * 4, mask.data(), width, {width, 1}, &mean, &stdDev),
                ippStsNoErr);
            EXPECT_EQ(
                ippiMean_StdDev_32f_C1R(floats.data(), width * 4, {width, 1}, &mean, &stdDev), ippStsNoErr);
        }
}

// --- the order of the checks ---

/** function(src, step, mask, step, size, channel, mean, stdDev). */
template <class T, int Channels, class Function>
void expectChecks(const char* i_symbol, bool i_masked, bool i_hasChannel, Function&& i_function)
{
    SCOPED_TRACE(i_symbol);
    const T pixels[4 * Channels] = {};
    const Ipp8u mask[2] = {};
    double mean = 7, stdDev = 8;
    const int row = 2 * Channels * int(sizeof(T));
    EXPECT_EQ(i_function(nullptr, 0, mask, 0, {0, 0}, 9, &mean, &stdDev), ippStsNullPtrErr);
    for (const IppiSize size : {IppiSize {0, 1}, {2, 0}, {-1, 1}, {1, INT_MIN}})
        EXPECT_EQ(i_function(pixels, 0, mask, 0, size, 9, &mean, &stdDev), ippStsSizeErr);
    for (const int step : {0, -row, row - 1})
        EXPECT_EQ(i_function(pixels, step, mask, 2, {2, 1}, 9, &mean, &stdDev), ippStsStepErr);
    if (i_masked) {
        EXPECT_EQ(i_function(pixels, 0, nullptr, 0, {0, 0}, 9, &mean, &stdDev), ippStsNullPtrErr);
        EXPECT_EQ(i_function(pixels, row, mask, 1, {2, 1}, 9, &mean, &stdDev), ippStsStepErr);
        EXPECT_EQ(i_function(pixels, row + 1, mask, 1, {2, 1}, 9, &mean, &stdDev), ippStsStepErr);
    }
    if (sizeof(T) > 1) {
        EXPECT_EQ(i_function(pixels, row + 1, mask, 2, {2, 1}, 9, &mean, &stdDev), ippStsNotEvenStepErr);
    }
    if (i_hasChannel) {
        for (const int channel : {0, 4, -1, INT_MAX})
            EXPECT_EQ(i_function(pixels, row, mask, 2, {2, 1}, channel, &mean, &stdDev), ippStsCOIErr);
    }
    EXPECT_EQ(mean, 7);
    EXPECT_EQ(stdDev, 8);
    EXPECT_EQ(i_function(pixels, row, mask, 2, {2, 1}, 1, nullptr, nullptr), ippStsNoErr);
}

TEST(meanStdDevCheckTest, PointersThenSizesThenStepsThenTheChannel)
{
#undef CUSTOMIPP_MEAN_STD_DEV
#define CUSTOMIPP_MEAN_STD_DEV(symbol, op, T)                                                                \
    expectChecks<T, 1>(#symbol, false, false,                                                                \
        [](const T* src, int step, const Ipp8u*, int, IppiSize size, int, double* mean, double* stdDev) {    \
            return symbol(src, step, size, mean, stdDev);                                                    \
        });
#undef CUSTOMIPP_MEAN_STD_DEV_CHANNEL
#define CUSTOMIPP_MEAN_STD_DEV_CHANNEL(symbol, op, T)                                                        \
    expectChecks<T, 3>(#symbol, false, true,                                                                 \
        [](const T* src, int step, const Ipp8u*, int, IppiSize size, int coi, double* mean,                  \
            double* stdDev) { return symbol(src, step, size, coi, mean, stdDev); });
#undef CUSTOMIPP_MEAN_STD_DEV_MASKED
#define CUSTOMIPP_MEAN_STD_DEV_MASKED(symbol, op, T)                                                         \
    expectChecks<T, 1>(#symbol, true, false,                                                                 \
        [](const T* src, int step, const Ipp8u* mask, int maskStep, IppiSize size, int, double* mean,        \
            double* stdDev) { return symbol(src, step, mask, maskStep, size, mean, stdDev); });
#undef CUSTOMIPP_MEAN_STD_DEV_MASKED_CHANNEL
#define CUSTOMIPP_MEAN_STD_DEV_MASKED_CHANNEL(symbol, op, T) expectChecks<T, 3>(#symbol, true, true, symbol);
#include <customipp/meanStdDev.def>
}

} // namespace
