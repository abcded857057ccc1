#include "reductionCases.h"

#include <gtest/gtest.h>
#include <hwy/tests/hwy_gtest.h>

#include <climits>
#include <cmath>

namespace {

/** Runs each case once for every instruction set that is compiled in. */
class normTest : public hwy::TestWithParamTarget {};
HWY_TARGET_INSTANTIATE_TEST_SUITE_P(normTest);

// The norms by their definitions. Sums go through long double, which holds every exact sum of these tests.

struct NormInf {
    static long double joined(long double i_sum, long double i_value)
    {
        return std::fabs(i_value) > i_sum ? std::fabs(i_value) : i_sum; // NaN is not greater
    }
    static double finished(long double i_sum) { return double(i_sum); }
};
struct NormL1 {
    static long double joined(long double i_sum, long double i_value) { return i_sum + std::fabs(i_value); }
    static double finished(long double i_sum) { return double(i_sum); }
};
struct NormL2 {
    static long double joined(long double i_sum, long double i_value) { return i_sum + i_value * i_value; }
    static double finished(long double i_sum) { return std::sqrt(double(i_sum)); }
};
using NormDiffInf = NormInf;
using NormDiffL1 = NormL1;
using NormDiffL2 = NormL2;

/** Integers exactly. Sums of floats differ by the roundings of their additions: 2^-53 each, of not 2^12 terms
 * to a lane. */
template <class T> void expectNorm(double i_actual, double i_expected)
{
    if constexpr (std::is_floating_point_v<T>)
        ASSERT_NEAR(i_actual, i_expected, std::fabs(i_expected) * 1e-12);
    else
        ASSERT_EQ(i_actual, i_expected);
}

/** The norm of a channel of what `value(x, y)` gives, pixel by pixel. */
template <class Norm, class Value> double normOf(IppiSize i_size, Value&& i_value)
{
    long double sum = 0;
    for (int y = 0; y < i_size.height; ++y)
        for (int x = 0; x < i_size.width; ++x)
            sum = Norm::joined(sum, i_value(x, y));
    return Norm::finished(sum);
}

/** function(src, step, size, values); the same image at another place and step gives the same bits. */
template <class Norm, class T, int Channels, class Function>
void expectImageNorm(const char* i_symbol, Function&& i_function)
{
    PixelSource<T> random(1);
    reduction::forEveryGeometry([&](IppiSize size, const Layout& layout, unsigned) {
        if (layout.padding % int(sizeof(T)) != 0)
            return;
        SCOPED_TRACE(reduction::nameOf(i_symbol, size));
        Plane<T> image(size.width * Channels, size.height, layout), dense(size.width * Channels, size.height);
        image.fill(random);
        dense.copyFrom(image);
        double values[Channels], again[Channels];
        ASSERT_EQ(i_function(image.data(), image.step(), size, values), ippStsNoErr);
        ASSERT_EQ(i_function(dense.data(), dense.step(), size, again), ippStsNoErr);
        for (int c = 0; c < Channels; ++c) {
            expectNorm<T>(values[c], normOf<Norm>(size, [&](int x, int y) {
                return (long double)(image.get(x * Channels + c, y));
            }));
            ASSERT_TRUE(samePixel(values[c], again[c])) << "depends on the layout";
        }
        ASSERT_TRUE(image.frameIsIntact());
    });
}

/** function(src, step, mask, step, size, value) of channel number i_channel. */
template <class Norm, class T, int Channels, class Function>
void expectMaskedNorm(const char* i_symbol, int i_channel, Function&& i_function)
{
    PixelSource<T> random(1);
    PixelSource<Ipp8u> randomMask(2);
    reduction::forEveryGeometry([&](IppiSize size, const Layout& layout, unsigned count) {
        if (layout.padding % int(sizeof(T)) != 0)
            return;
        SCOPED_TRACE(reduction::nameOf(i_symbol, size));
        Plane<T> image(size.width * Channels, size.height, layout);
        Plane<Ipp8u> mask(size.width, size.height, everyLayout()[count % 3]);
        image.fill(random);
        mask.fill([&] { return count % 4 == 3 ? Ipp8u(0) : randomMask(); });
        double value = -1;
        ASSERT_EQ(
            i_function(image.data(), image.step(), mask.data(), mask.step(), size, &value), ippStsNoErr);
        expectNorm<T>(value, normOf<Norm>(size, [&](int x, int y) {
            return mask.get(x, y) ? (long double)(image.get(x * Channels + i_channel, y)) : 0;
        }));
        ASSERT_TRUE(image.frameIsIntact() && mask.frameIsIntact());
    });
}

/** function(src1, step, src2, step, size, values). */
template <class Norm, class T, int Channels, class Function>
void expectDifferenceNorm(const char* i_symbol, Function&& i_function)
{
    PixelSource<T> random(1);
    reduction::forEveryGeometry([&](IppiSize size, const Layout& layout, unsigned count) {
        if (layout.padding % int(sizeof(T)) != 0)
            return;
        SCOPED_TRACE(reduction::nameOf(i_symbol, size));
        Plane<T> a(size.width * Channels, size.height, layout);
        Plane<T> b(size.width * Channels, size.height, everyLayout()[count % 2]);
        a.fill(random);
        b.fill(random);
        double values[Channels];
        ASSERT_EQ(i_function(a.data(), a.step(), b.data(), b.step(), size, values), ippStsNoErr);
        for (int c = 0; c < Channels; ++c)
            expectNorm<T>(values[c], normOf<Norm>(size, [&](int x, int y) {
                return (long double)(a.get(x * Channels + c, y)) - b.get(x * Channels + c, y);
            }));
        ASSERT_TRUE(a.frameIsIntact() && b.frameIsIntact());
    });
}

#undef CUSTOMIPP_NORM
#define CUSTOMIPP_NORM(symbol, op, T, channels) expectImageNorm<op, T, channels>(#symbol, symbol);
#undef CUSTOMIPP_NORM_HINT
#define CUSTOMIPP_NORM_HINT(symbol, op, T, channels)                                                         \
    for (const int hint : {0, 1, 2, -7})                                                                     \
        expectImageNorm<op, T, channels>(                                                                    \
            #symbol, [hint](const T* src, int step, IppiSize size, double* value) {                          \
                return symbol(src, step, size, value, IppHintAlgorithm(hint));                               \
            });
#undef CUSTOMIPP_NORM_MASKED
#define CUSTOMIPP_NORM_MASKED(symbol, op, T) expectMaskedNorm<op, T, 1>(#symbol, 0, symbol);
#undef CUSTOMIPP_NORM_MASKED_CHANNEL
#define CUSTOMIPP_NORM_MASKED_CHANNEL(symbol, op, T)                                                         \
    for (int channel = 0; channel < 3; ++channel)                                                            \
        expectMaskedNorm<op, T, 3>(#symbol, channel,                                                         \
            [channel](const T* src, int step, const Ipp8u* mask, int maskStep, IppiSize size,                \
                double* value) { return symbol(src, step, mask, maskStep, size, channel + 1, value); });

TEST_P(normTest, EveryFormGivesItsDefinition) {
#include <customipp/norm.def>
}

#undef CUSTOMIPP_NORM_DIFF
#define CUSTOMIPP_NORM_DIFF(symbol, op, T, channels) expectDifferenceNorm<op, T, channels>(#symbol, symbol);
#undef CUSTOMIPP_NORM_DIFF_HINT
#define CUSTOMIPP_NORM_DIFF_HINT(symbol, op, T, channels)                                                    \
    expectDifferenceNorm<op, T, channels>(                                                                   \
        #symbol, [](const T* a, int aStep, const T* b, int bStep, IppiSize size, double* value) {            \
            return symbol(a, aStep, b, bStep, size, value, ippAlgHintFast);                                  \
        });

TEST_P(normTest, EveryDifferenceGivesItsDefinition) {
#include <customipp/normDiff.def>
}

TEST_P(normTest, WorkedValues)
{
    const Ipp16s pair[] = {-3, 4};
    const Ipp8u a[] = {1, 5}, b[] = {4, 1};
    double value = 0;
    EXPECT_EQ(ippiNorm_L1_16s_C1R(pair, 4, {2, 1}, &value), ippStsNoErr);
    EXPECT_EQ(value, 7);
    EXPECT_EQ(ippiNorm_L2_16s_C1R(pair, 4, {2, 1}, &value), ippStsNoErr);
    EXPECT_EQ(value, 5);
    EXPECT_EQ(ippiNorm_Inf_16s_C1R(pair, 4, {2, 1}, &value), ippStsNoErr);
    EXPECT_EQ(value, 4);
    EXPECT_EQ(ippiNormDiff_L1_8u_C1R(a, 2, b, 2, {2, 1}, &value), ippStsNoErr);
    EXPECT_EQ(value, 7);
    EXPECT_EQ(ippiNormDiff_L2_8u_C1R(a, 2, b, 2, {2, 1}, &value), ippStsNoErr);
    EXPECT_EQ(value, 5);
    EXPECT_EQ(ippiNormDiff_Inf_8u_C1R(a, 2, b, 2, {2, 1}, &value), ippStsNoErr);
    EXPECT_EQ(value, 4);
    const Ipp16s ends[] = {-32768}, others[] = {32767};
    EXPECT_EQ(ippiNorm_Inf_16s_C1R(ends, 2, {1, 1}, &value), ippStsNoErr);
    EXPECT_EQ(value, 32768);
    EXPECT_EQ(ippiNormDiff_Inf_16s_C1R(ends, 2, others, 2, {1, 1}, &value), ippStsNoErr);
    EXPECT_EQ(value, 65535);
}

/** As many of the greatest pixels as any narrow lane could not count: the lanes have to be emptied in
 * between. */
TEST_P(normTest, GreatSumsAreExact)
{
    const int width = 1 << 21, height = 3;
    std::vector<Ipp8u> bytes(size_t(width) * height, 255);
    std::vector<Ipp16u> words(size_t(width) * height, 65535);
    const double n = double(width) * height;
    double value = 0;
    ASSERT_EQ(ippiNorm_L1_8u_C1R(bytes.data(), width, {width, height}, &value), ippStsNoErr);
    EXPECT_EQ(value, n * 255);
    ASSERT_EQ(ippiNorm_L2_8u_C1R(bytes.data(), width, {width, height}, &value), ippStsNoErr);
    EXPECT_EQ(value, std::sqrt(n * 65025));
    ASSERT_EQ(ippiNorm_L1_16u_C1R(words.data(), width * 2, {width, height}, &value), ippStsNoErr);
    EXPECT_EQ(value, n * 65535);
    ASSERT_EQ(ippiNorm_L2_16u_C1R(words.data(), width * 2, {width, height}, &value), ippStsNoErr);
    EXPECT_EQ(value, std::sqrt(double(uint64_t(n) * 65535 * 65535)));
}

TEST_P(normTest, NotANumberPassesThroughSumsAndNotThroughTheGreatest)
{
    for (int width = 1; width <= 40; ++width)
        for (int place = 0; place < width; ++place) {
            std::vector<float> row(size_t(width), 3.0f), zeros(size_t(width), 0.0f);
            row[size_t(place)] = NAN;
            const float* data = row.data();
            const int step = width * 4;
            double value = -1, difference = -1;
            ippiNorm_Inf_32f_C1R(data, step, {width, 1}, &value);
            ippiNormDiff_Inf_32f_C1R(zeros.data(), step, data, step, {width, 1}, &difference);
            EXPECT_EQ(value, width > 1 ? 3 : 0);
            EXPECT_EQ(difference, value);
            ippiNorm_L1_32f_C1R(data, step, {width, 1}, &value, ippAlgHintNone);
            EXPECT_TRUE(std::isnan(value));
            ippiNorm_L2_32f_C1R(data, step, {width, 1}, &value, ippAlgHintNone);
            EXPECT_TRUE(std::isnan(value));
            std::vector<Ipp8u> mask(size_t(width), 1);
            mask[size_t(place)] = 0;
            ippiNorm_L1_32f_C1MR(data, step, mask.data(), width, {width, 1}, &value);
            EXPECT_EQ(value, 3.0 * (width - 1));
        }
}

/** The sum of many different floats has the same bits for every instruction set. */
TEST_P(normTest, SumsOfFloatsHaveOneOrder)
{
    static std::vector<double> s_first;
    std::mt19937 random(9);
    std::vector<float> image(1037 * 13);
    for (float& pixel : image)
        pixel = std::ldexp(float(random()), int(random() % 60) - 60);
    double l1 = 0, l2 = 0;
    ippiNorm_L1_32f_C1R(image.data(), 1037 * 4, {1037, 13}, &l1, ippAlgHintNone);
    ippiNorm_L2_32f_C1R(image.data(), 1037 * 4, {1037, 13}, &l2, ippAlgHintNone);
    if (s_first.empty())
        s_first = {l1, l2};
    EXPECT_EQ(s_first, (std::vector<double> {l1, l2}));
}

TEST_P(normTest, NothingBeyondTheRowIsRead)
{
    for (const FencedMemory::Side side : reduction::s_sides)
        for (int width = 1; width <= 300; ++width) {
            reduction::FencedRow<Ipp8u> bytes(width * 4, side), mask(width, side), three(width * 3, side);
            reduction::FencedRow<float> floats(width, side);
            double values[4];
            EXPECT_EQ(ippiNorm_L1_8u_C3R(three.data(), width * 3, {width, 1}, values), ippStsNoErr);
            EXPECT_EQ(ippiNorm_L1_8u_C4R(bytes.data(), width * 4, {width, 1}, values), ippStsNoErr);
            EXPECT_EQ(
                ippiNormDiff_L1_8u_C3R(three.data(), width * 3, three.data(), width * 3, {width, 1}, values),
                ippStsNoErr);
            EXPECT_EQ(
                ippiNorm_L1_8u_C1MR(mask.data(), width, mask.data(), width, {width, 1}, values), ippStsNoErr);
            EXPECT_EQ(
                ippiNorm_L1_8u_C3CMR(three.data(), width * 3, mask.data(), width, {width, 1}, 2, values),
                ippStsNoErr);
            EXPECT_EQ(ippiNorm_L2_32f_C1MR(floats.data(), width * 4, mask.data(), width, {width, 1}, values),
                ippStsNoErr);
            EXPECT_EQ(ippiNormDiff_L2_32f_C1R(floats.data(), width * 4, floats.data(), width * 4, {width, 1},
                          values, ippAlgHintNone),
                ippStsNoErr);
        }
}

// --- the order of the checks ---

template <class T, int Channels, class Function>
void expectChecks(const char* i_symbol, Function&& i_function)
{
    SCOPED_TRACE(i_symbol);
    const T pixels[4 * Channels] = {};
    double values[4] = {7, 7, 7, 7};
    const int row = 2 * Channels * int(sizeof(T));
    EXPECT_EQ(i_function(nullptr, 0, {0, 0}, values), ippStsNullPtrErr);
    EXPECT_EQ(i_function(pixels, 0, {0, 0}, nullptr), ippStsNullPtrErr);
    for (const IppiSize size : {IppiSize {0, 1}, {2, 0}, {-1, 1}, {1, INT_MIN}})
        EXPECT_EQ(i_function(pixels, 0, size, values), ippStsSizeErr);
    for (const int step : {0, -row, row - 1})
        EXPECT_EQ(i_function(pixels, step, {2, 1}, values), ippStsStepErr);
    if (sizeof(T) > 1) {
        EXPECT_EQ(i_function(pixels, row + 1, {2, 1}, values), ippStsNotEvenStepErr);
    }
    EXPECT_EQ(values[0], 7);
    EXPECT_EQ(i_function(pixels, row, {2, 1}, values), ippStsNoErr);
}

/** Of a function with a mask, and one for the second image, which is as a mask of the pixels' type. */
template <class T, int Channels, class M, class Function>
void expectChecksOfTwo(const char* i_symbol, Function&& i_function)
{
    SCOPED_TRACE(i_symbol);
    const T pixels[4 * Channels] = {};
    const M seconds[4 * Channels] = {};
    const int row = 2 * Channels * int(sizeof(T));
    const int second = std::is_same_v<M, T> && !std::is_same_v<T, Ipp8u> ? row : 2 * Channels;
    expectChecks<T, Channels>(i_symbol, [&](const T* src, int step, IppiSize size, double* values) {
        return i_function(src, step, seconds, second, size, values);
    });
    double values[4] = {7, 7, 7, 7};
    EXPECT_EQ(i_function(pixels, 0, nullptr, 0, {0, 0}, values), ippStsNullPtrErr);
    EXPECT_EQ(i_function(pixels, row, seconds, 0, {2, 1}, values), ippStsStepErr);
    EXPECT_EQ(i_function(pixels, row, seconds, 1, {2, 1}, values), ippStsStepErr);
    if (sizeof(T) > 1) { // that a step is too small comes before that one is uneven
        EXPECT_EQ(i_function(pixels, row + 1, seconds, 1, {2, 1}, values), ippStsStepErr);
    }
    if (sizeof(M) > 1) {
        EXPECT_EQ(i_function(pixels, row, seconds, second + 1, {2, 1}, values), ippStsNotEvenStepErr);
    }
    EXPECT_EQ(values[0], 7);
}

TEST(normCheckTest, PointersThenSizesThenStepsThenTheChannel)
{
#undef CUSTOMIPP_NORM
#define CUSTOMIPP_NORM(symbol, op, T, channels) expectChecks<T, channels>(#symbol, symbol);
#undef CUSTOMIPP_NORM_HINT
#define CUSTOMIPP_NORM_HINT(symbol, op, T, channels)                                                         \
    expectChecks<T, channels>(#symbol, [](const T* src, int step, IppiSize size, double* value) {            \
        return symbol(src, step, size, value, ippAlgHintNone);                                               \
    });
#undef CUSTOMIPP_NORM_MASKED
#define CUSTOMIPP_NORM_MASKED(symbol, op, T) expectChecksOfTwo<T, 1, Ipp8u>(#symbol, symbol);
#undef CUSTOMIPP_NORM_MASKED_CHANNEL
#define CUSTOMIPP_NORM_MASKED_CHANNEL(symbol, op, T)                                                         \
    expectChecksOfTwo<T, 3, Ipp8u>(                                                                          \
        #symbol, [](const T* src, int step, const Ipp8u* mask, int maskStep, IppiSize size, double* value) { \
            return symbol(src, step, mask, maskStep, size, 1, value);                                        \
        });                                                                                                  \
    for (const int channel : {0, 4, -1}) {                                                                   \
        const T pixels[3] = {};                                                                              \
        double value = 7;                                                                                    \
        EXPECT_EQ(symbol(pixels, 3, pixels, 1, {1, 1}, channel, &value), ippStsCOIErr);                      \
        EXPECT_EQ(symbol(pixels, 2, pixels, 1, {1, 1}, channel, &value), ippStsStepErr);                     \
        EXPECT_EQ(value, 7);                                                                                 \
    }
#include <customipp/norm.def>

#undef CUSTOMIPP_NORM_DIFF
#define CUSTOMIPP_NORM_DIFF(symbol, op, T, channels) expectChecksOfTwo<T, channels, T>(#symbol, symbol);
#undef CUSTOMIPP_NORM_DIFF_HINT
#define CUSTOMIPP_NORM_DIFF_HINT(symbol, op, T, channels)                                                    \
    expectChecksOfTwo<T, channels, T>(                                                                       \
        #symbol, [](const T* a, int aStep, const T* b, int bStep, IppiSize size, double* value) {            \
            return symbol(a, aStep, b, bStep, size, value, ippAlgHintNone);                                  \
        });
#include <customipp/normDiff.def>
}

} // namespace
