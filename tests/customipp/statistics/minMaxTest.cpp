#include "reductionCases.h"

#include <gtest/gtest.h>
#include <hwy/tests/hwy_gtest.h>

#include <array>
#include <climits>
#include <cmath>

namespace {

/** Runs each case once for every instruction set that is compiled in. */
class minMaxTest : public hwy::TestWithParamTarget {};
HWY_TARGET_INSTANTIATE_TEST_SUITE_P(minMaxTest);

/** A channel's extremes; pixels that are not a number do not count. */
template <class T> struct Extremes {
    T least = std::numeric_limits<T>::has_quiet_NaN ? std::numeric_limits<T>::quiet_NaN() : T(0);
    T greatest = least;
    bool any = false;

    void take(T i_value)
    {
        if (i_value != i_value)
            return;
        least = !any || i_value < least ? i_value : least;
        greatest = !any || i_value > greatest ? i_value : greatest;
        any = true;
    }
};

template <class T, int Channels> using Function = IppStatus (*)(const T*, int, IppiSize, T*, T*);

template <class T, int Channels>
void expectResult(Function<T, Channels> i_function, const T* i_data, int i_step, IppiSize i_size,
    const std::array<Extremes<T>, Channels>& i_expected)
{
    T least[Channels], greatest[Channels];
    ASSERT_EQ(i_function(i_data, i_step, i_size, least, greatest), ippStsNoErr);
    for (size_t c = 0; c < Channels; ++c) {
        const T zero = T(0); // comes without its sign
        ASSERT_TRUE(samePixel(least[c], T(i_expected[c].least + zero)))
            << "channel " << c << ": " << least[c];
        ASSERT_TRUE(samePixel(greatest[c], T(i_expected[c].greatest + zero)))
            << "channel " << c << ": " << greatest[c];
    }
}

template <class T, int Channels>
void expectEveryGeometry(const char* i_symbol, Function<T, Channels> i_function)
{
    PixelSource<T> random(1);
    reduction::forEveryGeometry([&](IppiSize size, const Layout& layout, unsigned count) {
        SCOPED_TRACE(reduction::nameOf(i_symbol, size));
        Plane<T> image(size.width * Channels, size.height, layout);
        // In turns: anything, and a narrow band that no start value of the search may replace.
        image.fill([&] { return count % 2 ? random() : T(T(40) + T(int(random() > T(7)))); });
        std::array<Extremes<T>, Channels> expected;
        for (int y = 0; y < size.height; ++y)
            for (int lane = 0; lane < image.lanes(); ++lane)
                expected[size_t(lane % Channels)].take(image.get(lane, y));
        expectResult<T, Channels>(i_function, image.data(), image.step(), size, expected);
        ASSERT_TRUE(image.frameIsIntact());
    });
}

/** Each pixel in turn is the only one that differs, in rows that end at the end of memory or begin at its
 * start. */
template <class T, int Channels> void expectEveryPlace(const char* i_symbol, Function<T, Channels> i_function)
{
    for (const FencedMemory::Side side : reduction::s_sides)
        for (const auto* widths : {&everyWidth(), &reduction::everyLongWidth()})
            for (const int width : *widths) {
                SCOPED_TRACE(reduction::nameOf(i_symbol, {width, 1}));
                const int lanes = width * Channels;
                reduction::FencedRow<T> row(lanes, side);
                for (int lane = 0; lane < lanes; ++lane)
                    row.set(lane, T(50));
                for (int lane = 0; lane < lanes; ++lane)
                    for (const T value : {T(49), T(51)}) {
                        row.set(lane, value);
                        std::array<Extremes<T>, Channels> expected;
                        for (size_t c = 0; c < Channels; ++c) {
                            if (int(c) == lane % Channels)
                                expected[c].take(value);
                            if (int(c) != lane % Channels || width > 1)
                                expected[c].take(T(50));
                        }
                        expectResult<T, Channels>(
                            i_function, row.data(), lanes * int(sizeof(T)), {width, 1}, expected);
                        row.set(lane, T(50));
                    }
            }
}

template <class T, int Channels>
void expectArgumentChecks(const char* i_symbol, Function<T, Channels> i_function)
{
    SCOPED_TRACE(i_symbol);
    const T pixels[2 * Channels] = {};
    T least[Channels] = {T(7)}, greatest[Channels] = {T(8)};
    const int row = 2 * Channels * int(sizeof(T));
    EXPECT_EQ(i_function(nullptr, 0, {0, 0}, least, greatest), ippStsNullPtrErr);
    EXPECT_EQ(i_function(pixels, 0, {0, 0}, nullptr, greatest), ippStsNullPtrErr);
    EXPECT_EQ(i_function(pixels, 0, {0, 0}, least, nullptr), ippStsNullPtrErr);
    for (const IppiSize size : {IppiSize {0, 1}, {1, 0}, {-1, 1}, {1, INT_MIN}})
        EXPECT_EQ(i_function(pixels, 0, size, least, greatest), ippStsSizeErr);
    for (const int step : {0, -row, row - 1})
        EXPECT_EQ(i_function(pixels, step, {2, 1}, least, greatest), ippStsStepErr);
    // The bytes of a row are counted beyond the range of int.
    EXPECT_EQ(i_function(pixels, row, {INT_MAX, 1}, least, greatest), ippStsStepErr);
    EXPECT_EQ(least[0], T(7));
    EXPECT_EQ(greatest[0], T(8));
    EXPECT_EQ(i_function(pixels, row, {2, 1}, least, greatest), ippStsNoErr);
}

#undef CUSTOMIPP_SIGNAL_MIN_MAX
#define CUSTOMIPP_SIGNAL_MIN_MAX(symbol, op, T)

#undef CUSTOMIPP_MIN_MAX
#define CUSTOMIPP_MIN_MAX(symbol, op, T, channels) expectEveryGeometry<T, channels>(#symbol, symbol);
TEST_P(minMaxTest, ExtremesOfEverySizeAndLayout) {
#include <customipp/minMax.def>
}

#undef CUSTOMIPP_MIN_MAX
#define CUSTOMIPP_MIN_MAX(symbol, op, T, channels) expectEveryPlace<T, channels>(#symbol, symbol);
TEST_P(minMaxTest, EveryPlaceCountsAndNothingBeyondTheRow) {
#include <customipp/minMax.def>
}

#undef CUSTOMIPP_MIN_MAX
#define CUSTOMIPP_MIN_MAX(symbol, op, T, channels) expectArgumentChecks<T, channels>(#symbol, symbol);
TEST(minMaxCheckTest, PointersThenSizesThenSteps) {
#include <customipp/minMax.def>
}

TEST_P(minMaxTest, NotANumberDoesNotCount)
{
    for (int width = 1; width <= 150; ++width) {
        std::vector<float> row(size_t(width), NAN);
        float least = 0, greatest = 0;
        const auto run = [&] {
            return ippiMinMax_32f_C1R(row.data(), width * 4, {width, 1}, &least, &greatest);
        };
        ASSERT_EQ(run(), ippStsNoErr);
        EXPECT_TRUE(std::isnan(least) && std::isnan(greatest)) << width;
        for (size_t place = 0; place < row.size(); ++place)
            for (const float value : {-7.5f, INFINITY, -INFINITY}) {
                row.assign(size_t(width), NAN);
                row[place] = value;
                ASSERT_EQ(run(), ippStsNoErr);
                ASSERT_EQ(least, value) << width << ": " << place;
                ASSERT_EQ(greatest, value) << width << ": " << place;
            }
    }
}

TEST_P(minMaxTest, ZerosGiveTheSameBitsWhateverTheirPlaces)
{
    for (int width = 1; width <= 100; ++width)
        for (size_t pattern = 0; pattern < 4; ++pattern) {
            std::vector<float> row(size_t(width), 0.0f);
            for (size_t i = pattern; i < row.size(); i += pattern + 1)
                row[i] = -0.0f;
            float least = 1, greatest = 1;
            ASSERT_EQ(ippiMinMax_32f_C1R(row.data(), width * 4, {width, 1}, &least, &greatest), ippStsNoErr);
            EXPECT_TRUE(samePixel(least, 0.0f) && samePixel(greatest, 0.0f));
        }
}

} // namespace
