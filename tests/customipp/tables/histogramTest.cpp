#include "support/FencedMemory.h"
#include "support/Plane.h"

#include <customipp/customipp.h>

#include <hwy/tests/hwy_gtest.h>

#include <climits>
#include <cmath>
#include <random>
#include <string>
#include <vector>

namespace {

/** Runs each case once for every instruction set that is compiled in. */
class histogramTest : public hwy::TestWithParamTarget {};
HWY_TARGET_INSTANTIATE_TEST_SUITE_P(histogramTest);

/** The last count, which no call may touch. */
constexpr Ipp32u s_untouched = 4711;

template <class T> constexpr IppDataType typeOf()
{
    return std::is_same_v<T, Ipp8u> ? ipp8u
        : std::is_same_v<T, Ipp16u> ? ipp16u
        : std::is_same_v<T, Ipp16s> ? ipp16s
                                    : ipp32f;
}

/** A specification and work memory of exactly the sizes that were asked for. */
template <class T> class Histogram {
public:
    Histogram(float i_low, float i_high, int i_levels) : m_count(i_levels)
    {
        int specSize = 0, bufferSize = 0;
        EXPECT_EQ(ippiHistogramGetBufferSize(typeOf<T>(), {1, 1}, &m_count, 1, 1, &specSize, &bufferSize),
            ippStsNoErr);
        m_spec = std::make_unique<FencedMemory>(size_t(specSize), FencedMemory::AgainstEnd);
        m_buffer = std::make_unique<FencedMemory>(size_t(bufferSize), FencedMemory::AgainstEnd);
        std::memset(m_buffer->data(), 0xAB, size_t(bufferSize));
        EXPECT_EQ(ippiHistogramUniformInit(typeOf<T>(), &i_low, &i_high, &m_count, 1, spec()), ippStsNoErr);
    }
    IppiHistogramSpec* spec() { return reinterpret_cast<IppiHistogramSpec*>(m_spec->data()); }
    Ipp8u* buffer() { return m_buffer->data(); }

    std::vector<float> levels()
    {
        std::vector<float> levels(static_cast<size_t>(m_count));
        float* list = levels.data();
        EXPECT_EQ(ippiHistogramGetLevels(spec(), &list), ippStsNoErr);
        return levels;
    }
    std::vector<Ipp32u> countsOf(const T* i_pixels, int i_step, IppiSize i_size)
    {
        std::vector<Ipp32u> counts(size_t(m_count), s_untouched);
        IppStatus status;
        if constexpr (std::is_same_v<T, Ipp8u>)
            status = ippiHistogram_8u_C1R(i_pixels, i_step, i_size, counts.data(), spec(), buffer());
        else if constexpr (std::is_same_v<T, Ipp16u>)
            status = ippiHistogram_16u_C1R(i_pixels, i_step, i_size, counts.data(), spec(), buffer());
        else if constexpr (std::is_same_v<T, Ipp16s>)
            status = ippiHistogram_16s_C1R(i_pixels, i_step, i_size, counts.data(), spec(), buffer());
        else
            status = ippiHistogram_32f_C1R(i_pixels, i_step, i_size, counts.data(), spec(), buffer());
        EXPECT_EQ(status, ippStsNoErr);
        return counts;
    }

private:
    int m_count;
    std::unique_ptr<FencedMemory> m_spec, m_buffer;
};

/** The levels from their definition. */
std::vector<float> levelsFor(float i_low, float i_high, int i_count)
{
    std::vector<float> levels;
    for (int k = 0; k + 1 < i_count; ++k)
        levels.push_back(float(double(i_low) + double(k) * (double(i_high) - double(i_low)) / (i_count - 1)));
    levels.push_back(i_high);
    return levels;
}

/** Each pixel into the last bin that begins at or below it. */
template <class T>
void countInto(std::vector<Ipp32u>& io_counts, const std::vector<float>& i_levels, T i_pixel)
{
    const float pixel = i_pixel;
    if (!(pixel >= i_levels.front() && pixel < i_levels.back()))
        return;
    size_t bin = i_levels.size() - 1;
    while (i_levels[bin] > pixel)
        --bin;
    ++io_counts[bin];
}

std::vector<Ipp32u> noCounts(size_t i_levels)
{
    std::vector<Ipp32u> counts(i_levels);
    counts.back() = s_untouched;
    return counts;
}

struct Range {
    float low, high;
    int levels;
};

template <class T> void expectEverySizeAndLayout(const std::vector<Range>& i_ranges)
{
    PixelSource<T> random(7);
    for (const Range& range : i_ranges) {
        Histogram<T> histogram(range.low, range.high, range.levels);
        const std::vector<float> levels = levelsFor(range.low, range.high, range.levels);
        ASSERT_EQ(histogram.levels(), levels);
        for (const int width : everyWidth())
            for (const int height : everyHeight()) {
                const Layout layout = everyLayout()[size_t(width + height) % everyLayout().size()];
                SCOPED_TRACE(std::to_string(range.levels) + " levels from " + std::to_string(range.low) + ", "
                    + std::to_string(width) + " x " + std::to_string(height));
                Plane<T> image(width, height, layout);
                std::vector<Ipp32u> expected = noCounts(levels.size());
                image.fill(random);
                for (int y = 0; y < height; ++y)
                    for (int x = 0; x < width; ++x)
                        countInto(expected, levels, image.get(x, y));
                ASSERT_EQ(histogram.countsOf(image.data(), image.step(), {width, height}), expected);
                ASSERT_TRUE(image.frameIsIntact());
            }
        for (const FencedMemory::Side side : {FencedMemory::AgainstEnd, FencedMemory::AgainstStart})
            for (int width = 1; width <= 40; ++width) {
                FencedMemory memory(size_t(width) * sizeof(T), side);
                std::vector<Ipp32u> expected = noCounts(levels.size());
                for (size_t x = 0; x < size_t(width); ++x) {
                    memory.set<T>(x, random());
                    countInto(expected, levels, memory.get<T>(x));
                }
                ASSERT_EQ(histogram.countsOf(
                              reinterpret_cast<const T*>(memory.data()), width * int(sizeof(T)), {width, 1}),
                    expected)
                    << width;
            }
    }
}

TEST_P(histogramTest, EverySizeAndLayoutIsCounted)
{
    expectEverySizeAndLayout<Ipp8u>(
        {{0, 255, 256}, {0, 255, 255}, {0, 255, 4}, {-10, 300, 7}, {100.5f, 101.5f, 9}});
    expectEverySizeAndLayout<Ipp16u>({{0, 65535, 65536}, {100, 200, 13}});
    expectEverySizeAndLayout<Ipp16s>({{-32768, 32767, 65536}, {-3, 3.5f, 2}});
    expectEverySizeAndLayout<Ipp32f>(
        {{0, 65536, 257}, {-30000, 30000, 65536}, {-1, 1, 2}, {1, 1.0000002f, 100}});
}

TEST_P(histogramTest, LargeImagesOfBytesAreCounted)
{
    // On both sides of the size from which pixels are counted by pairs; rows end with less than 8 pixels.
    const int width = 1021, step = 1030;
    for (const int height : {513, 514, 700}) {
        PixelSource<Ipp8u> random(3);
        FencedMemory memory(size_t(step * (height - 1) + width), FencedMemory::AgainstEnd);
        for (const unsigned mask : {0xFFu, 0x03u, 0x00u}) {
            SCOPED_TRACE("height " + std::to_string(height) + ", mask " + std::to_string(mask));
            Histogram<Ipp8u> histogram(0, 256, 257);
            std::vector<Ipp32u> expected = noCounts(257);
            for (int y = 0; y < height; ++y)
                for (int x = 0; x < (y + 1 < height ? step : width); ++x) {
                    const Ipp8u pixel = Ipp8u((random() & mask) + unsigned(y) / 8);
                    memory.set<Ipp8u>(size_t(y * step + x), pixel);
                    expected[pixel] += x < width;
                }
            EXPECT_EQ(histogram.countsOf(memory.data(), step, {width, height}), expected);
        }
    }
}

TEST_P(histogramTest, EveryByteGoesToTheBinOfItsLevels)
{
    std::vector<Ipp8u> bytes(256);
    for (size_t i = 0; i < 256; ++i)
        bytes[i] = Ipp8u(i);
    for (int count = 2; count < 300; ++count)
        for (const auto& [low, high] : {std::pair(0.0f, 255.0f), std::pair(3.0f, 250.5f)}) {
            const std::vector<float> levels = levelsFor(low, high, count);
            std::vector<Ipp32u> expected = noCounts(levels.size());
            for (const Ipp8u byte : bytes)
                countInto(expected, levels, byte);
            Histogram<Ipp8u> histogram(low, high, count);
            ASSERT_EQ(histogram.countsOf(bytes.data(), 256, {256, 1}), expected) << count << " levels";
        }
}

TEST_P(histogramTest, TheUpperEndOfABinIsNotInIt)
{
    const Ipp8u pixels[] = {0, 84, 85, 170, 254, 255};
    EXPECT_EQ(Histogram<Ipp8u>(0, 255, 4).countsOf(pixels, 6, {6, 1}),
        (std::vector<Ipp32u> {2, 1, 2, s_untouched}));
}

TEST_P(histogramTest, With255LevelsTheFirstBinHasTwoValues)
{
    std::vector<Ipp8u> bytes(256);
    for (size_t i = 0; i < 256; ++i)
        bytes[i] = Ipp8u(i);
    std::vector<Ipp32u> expected(255, 1);
    expected[0] = 2;
    expected[254] = s_untouched;
    EXPECT_EQ(Histogram<Ipp8u>(0, 255, 255).countsOf(bytes.data(), 256, {256, 1}), expected);
}

/** Enough pixels for every set of counters, all alike or without order. */
template <class T> void expectManyPixels(float i_low, float i_high, int i_levels)
{
    constexpr int width = 640, height = 480;
    const std::vector<float> levels = levelsFor(i_low, i_high, i_levels);
    Histogram<T> histogram(i_low, i_high, i_levels);
    std::mt19937 random(8);
    for (const bool alike : {true, false}) {
        std::vector<T> pixels(size_t(width) * height, T(100));
        std::vector<Ipp32u> expected = noCounts(levels.size());
        for (T& pixel : pixels) {
            if (!alike)
                pixel = T(random());
            const auto end = std::upper_bound(levels.begin(), levels.end(), float(pixel));
            if (end != levels.begin() && end != levels.end())
                ++expected[size_t(end - levels.begin()) - 1];
        }
        ASSERT_EQ(histogram.countsOf(pixels.data(), width * int(sizeof(T)), {width, height}), expected);
    }
}

TEST_P(histogramTest, LargeImagesUseEverySetOfCounters)
{
    expectManyPixels<Ipp8u>(0, 255, 256);
    expectManyPixels<Ipp16u>(0, 65535, 65536);
    expectManyPixels<Ipp16s>(-32768, 32767, 65536);
    expectManyPixels<Ipp16s>(-1000, 1000, 100);
    expectManyPixels<float>(0, 4294967040.0f, 65536);
}

/** Floats on every level and on both sides of it. */
void expectFloatsAroundLevels(float i_low, float i_high, int i_count)
{
    SCOPED_TRACE(std::to_string(i_low) + " to " + std::to_string(i_high) + ", " + std::to_string(i_count));
    const std::vector<float> levels = levelsFor(i_low, i_high, i_count);
    std::vector<float> pixels {NAN, -NAN, INFINITY, -INFINITY, 0.0f, -0.0f, 1e-45f, -1e-45f, 3e38f, -3e38f};
    for (const float level : levels)
        for (const float near : {level, std::nextafter(level, INFINITY), std::nextafter(level, -INFINITY),
                 level + (i_high - i_low) / float(2 * i_count)})
            pixels.push_back(near);
    std::vector<Ipp32u> expected = noCounts(levels.size());
    for (const float pixel : pixels) {
        const auto end = std::upper_bound(levels.begin(), levels.end(), pixel);
        if (pixel >= levels.front() && end != levels.end())
            ++expected[size_t(end - levels.begin()) - 1];
    }
    Histogram<float> histogram(i_low, i_high, i_count);
    const int count = int(pixels.size());
    ASSERT_EQ(histogram.countsOf(pixels.data(), 4 * count, {count, 1}), expected);
}

TEST_P(histogramTest, FloatsOnLevelsAndBesideThem)
{
    for (const int count : {2, 3, 10, 256, 1000, 65536})
        for (const auto& [low, high] : {std::pair(0.0f, 1.0f), std::pair(0.0f, 255.0f),
                 std::pair(-1.0f, 1.0f), std::pair(100.0f, 200.0f), std::pair(-3.4e38f, 3.4e38f),
                 std::pair(0.0f, 1e-40f), std::pair(1e30f, 1.1e30f), std::pair(1.0f, 1.001f),
                 std::pair(16777215.0f, 16777216.0f), std::pair(0.1f, 0.3f)})
            expectFloatsAroundLevels(low, high, count);
}

TEST_P(histogramTest, OfEqualLevelsTheLastBinTakesThePixels)
{
    // Between these floats there is none, so of 4 bins the levels are 1, 1, 1 or above, above, above.
    const float low = 1, high = std::nextafter(1.0f, 2.0f);
    Histogram<float> histogram(low, high, 5);
    const std::vector<float> levels = histogram.levels();
    const float pixels[] = {low, low, high};
    std::vector<Ipp32u> expected = noCounts(5);
    for (size_t bin = 0; bin < 4; ++bin)
        if (levels[bin] == low && levels[bin + 1] == high)
            expected[bin] = 2;
    EXPECT_EQ(histogram.countsOf(pixels, 12, {3, 1}), expected);
}

TEST(histogramCheckTest, TheQueryGivesSizesOrZeros)
{
    const int levels = 256, few = 1, many = INT_MAX;
    int spec = 7, buffer = 7;
    EXPECT_EQ(ippiHistogramGetBufferSize(ipp8s, {0, 0}, &few, 3, 1, nullptr, &buffer), ippStsNullPtrErr);
    EXPECT_EQ(buffer, 0);
    EXPECT_EQ(ippiHistogramGetBufferSize(ipp8s, {0, 0}, &few, 3, 1, &spec, nullptr), ippStsNullPtrErr);
    EXPECT_EQ(spec, 0);
    const auto expectFailure
        = [&](IppDataType type, IppiSize size, const int* count, int channels, IppStatus status) {
              spec = buffer = 7;
              EXPECT_EQ(ippiHistogramGetBufferSize(type, size, count, channels, 1, &spec, &buffer), status);
              EXPECT_EQ(spec, 0);
              EXPECT_EQ(buffer, 0);
          };
    expectFailure(ipp8s, {0, 0}, nullptr, 3, ippStsNullPtrErr);
    for (const IppiSize size : {IppiSize {0, 1}, IppiSize {1, 0}, IppiSize {-1, 1}, IppiSize {1, -1}})
        expectFailure(ipp8s, size, &few, 3, ippStsSizeErr);
    for (const IppDataType type : {ippUndef, ipp8s, ipp32s, ipp64f})
        expectFailure(type, {1, 1}, &few, 3, ippStsDataTypeErr);
    for (const int channels : {0, 3, 4, -1})
        expectFailure(ipp8u, {1, 1}, &few, channels, ippStsNumChannelsErr);
    for (const int count : {1, 0, -5, INT_MIN})
        expectFailure(ipp8u, {1, 1}, &count, 1, ippStsHistoNofLevelsErr);
    expectFailure(ipp8u, {1, 1}, &many, 1, ippStsExceededSizeErr);
    expectFailure(ipp32f, {1, 1}, &many, 1, ippStsExceededSizeErr);
    for (const IppDataType type : {ipp8u, ipp16u, ipp16s, ipp32f})
        for (const int uniform : {0, 1}) {
            EXPECT_EQ(
                ippiHistogramGetBufferSize(type, {1, 1}, &levels, 1, uniform, &spec, &buffer), ippStsNoErr);
            EXPECT_GT(spec, 0);
            EXPECT_GT(buffer, 0);
        }
}

TEST(histogramCheckTest, InitTestsItsArgumentsInOrder)
{
    float low = 0, high = 1, nan = NAN, infinite = INFINITY;
    int levels = 2, few = 1;
    std::vector<Ipp8u> memory(4096, 7);
    auto* spec = reinterpret_cast<IppiHistogramSpec*>(memory.data());
    EXPECT_EQ(ippiHistogramUniformInit(ipp8s, nullptr, &low, &few, 3, spec), ippStsNullPtrErr);
    EXPECT_EQ(ippiHistogramUniformInit(ipp8s, &high, nullptr, &few, 3, spec), ippStsNullPtrErr);
    EXPECT_EQ(ippiHistogramUniformInit(ipp8s, &high, &low, nullptr, 3, spec), ippStsNullPtrErr);
    EXPECT_EQ(ippiHistogramUniformInit(ipp8s, &high, &low, &few, 3, nullptr), ippStsNullPtrErr);
    EXPECT_EQ(ippiHistogramUniformInit(ipp8s, &high, &low, &few, 3, spec), ippStsDataTypeErr);
    EXPECT_EQ(ippiHistogramUniformInit(ipp8u, &high, &low, &few, 3, spec), ippStsNumChannelsErr);
    EXPECT_EQ(ippiHistogramUniformInit(ipp8u, &high, &low, &few, 1, spec), ippStsHistoNofLevelsErr);
    for (float* bad : {&low, &nan, &infinite})
        EXPECT_EQ(ippiHistogramUniformInit(ipp8u, &high, bad, &levels, 1, spec), ippStsRangeErr) << *bad;
    EXPECT_EQ(ippiHistogramUniformInit(ipp8u, &nan, &high, &levels, 1, spec), ippStsRangeErr);
    EXPECT_EQ(ippiHistogramUniformInit(ipp8u, &low, &low, &levels, 1, spec), ippStsRangeErr);
    EXPECT_EQ(std::count(memory.begin(), memory.end(), 7), 4096);
    EXPECT_EQ(ippiHistogramUniformInit(ipp8u, &low, &high, &levels, 1, spec), ippStsNoErr);
}

TEST(histogramCheckTest, LevelsAndRunsTestTheirArgumentsInOrder)
{
    Histogram<Ipp8u> bytes(0, 255, 3);
    Histogram<Ipp16u> words(0, 255, 3);
    std::vector<Ipp8u> zeros(4096);
    auto* none = reinterpret_cast<IppiHistogramSpec*>(zeros.data());
    float list[3];
    float *levels = list, *nowhere = nullptr;
    EXPECT_EQ(ippiHistogramGetLevels(nullptr, &levels), ippStsNullPtrErr);
    EXPECT_EQ(ippiHistogramGetLevels(none, nullptr), ippStsNullPtrErr);
    EXPECT_EQ(ippiHistogramGetLevels(none, &nowhere), ippStsNullPtrErr);
    EXPECT_EQ(ippiHistogramGetLevels(none, &levels), ippStsBadArgErr);

    const Ipp8u pixels[4] = {1, 2, 3, 4};
    Ipp32u counts[3] = {7, 7, 7};
    const IppiSize size {4, 1};
    EXPECT_EQ(ippiHistogram_8u_C1R(nullptr, 0, {0, 0}, counts, none, zeros.data()), ippStsNullPtrErr);
    EXPECT_EQ(ippiHistogram_8u_C1R(pixels, 0, {0, 0}, nullptr, none, zeros.data()), ippStsNullPtrErr);
    EXPECT_EQ(ippiHistogram_8u_C1R(pixels, 0, {0, 0}, counts, nullptr, zeros.data()), ippStsNullPtrErr);
    EXPECT_EQ(ippiHistogram_8u_C1R(pixels, 0, {0, 0}, counts, none, nullptr), ippStsNullPtrErr);
    for (const IppiSize bad : {IppiSize {0, 1}, IppiSize {1, 0}, IppiSize {-1, 1}, IppiSize {1, -1}})
        EXPECT_EQ(ippiHistogram_8u_C1R(pixels, 0, bad, counts, none, zeros.data()), ippStsSizeErr);
    for (const int step : {0, -4, 3})
        EXPECT_EQ(ippiHistogram_8u_C1R(pixels, step, size, counts, none, zeros.data()), ippStsStepErr);
    EXPECT_EQ(ippiHistogram_8u_C1R(pixels, 4, size, counts, none, zeros.data()), ippStsBadArgErr);
    EXPECT_EQ(ippiHistogram_8u_C1R(pixels, 4, size, counts, words.spec(), zeros.data()), ippStsBadArgErr);
    EXPECT_EQ(counts[0], 7u);
    EXPECT_EQ(ippiHistogram_8u_C1R(pixels, 4, size, counts, bytes.spec(), bytes.buffer()), ippStsNoErr);
    EXPECT_EQ(counts[0], 4u);
    EXPECT_EQ(counts[1], 0u);
    EXPECT_EQ(counts[2], 7u);
}

} // namespace
