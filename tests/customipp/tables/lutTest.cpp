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
class lutTest : public hwy::TestWithParamTarget {};
HWY_TARGET_INSTANTIATE_TEST_SUITE_P(lutTest);

/** Levels and values of one channel. */
struct Points {
    std::vector<Ipp32s> levels;
    std::vector<Ipp32s> values;
};

/** What a pixel becomes, from the definition; the levels ascend. */
template <class T> T mapped(T i_pixel, const Points& i_points, IppiInterpolationType i_interpolation)
{
    const auto& l = i_points.levels;
    const auto& v = i_points.values;
    const int count = int(l.size());
    if (i_pixel < l.front() || i_pixel > l.back())
        return i_pixel;
    const int k = int(std::upper_bound(l.begin(), l.end(), Ipp32s(i_pixel)) - l.begin()) - 1;
    const double p = i_pixel;
    double value = v[size_t(k)];
    if (k + 1 < count && i_interpolation == ippLinear)
        value += (p - l[size_t(k)]) * (v[size_t(k) + 1] - v[size_t(k)]) / (l[size_t(k) + 1] - l[size_t(k)]);
    if (k + 1 < count && i_interpolation == ippCubic) {
        // Newton's divided differences through the window; another way than Lagrange's.
        const int points = std::min(4, count), first = std::min(std::max(k - 1, 0), count - points);
        double difference[4];
        for (int i = 0; i < points; ++i)
            difference[i] = v[size_t(first + i)];
        for (int order = 1; order < points; ++order)
            for (int i = points - 1; i >= order; --i)
                difference[i] = (difference[i] - difference[i - 1])
                    / (l[size_t(first + i)] - l[size_t(first + i - order)]);
        value = difference[points - 1];
        for (int i = points - 2; i >= 0; --i)
            value = value * (p - l[size_t(first + i)]) + difference[i];
        value = std::round(value * 1e6) / 1e6; // the ties of the examples, which both ways miss by little
    }
    const double low = std::numeric_limits<T>::lowest(), high = std::numeric_limits<T>::max();
    return T(std::min(std::max(std::nearbyint(value), low), high));
}

/** A specification in memory of exactly the size that was asked for, at an odd address. */
template <class T> class Table {
public:
    Table(const std::vector<Points>& i_channels, IppiInterpolationType i_interpolation = ippNearest)
    {
        std::vector<const Ipp32s*> values, levels;
        std::vector<int> counts;
        for (const Points& points : i_channels) {
            values.push_back(points.values.data());
            levels.push_back(points.levels.data());
            counts.push_back(int(points.levels.size()));
        }
        const auto channels = IppChannels(i_channels.size());
        int size = 0;
        constexpr IppDataType type = sizeof(T) == 1 ? ipp8u : std::is_signed_v<T> ? ipp16s : ipp16u;
        EXPECT_EQ(
            ippiLUT_GetSize(i_interpolation, type, channels, {1, 1}, counts.data(), &size), ippStsNoErr);
        m_memory = std::make_unique<FencedMemory>(size_t(size), FencedMemory::AgainstEnd);
        IppStatus status;
        if constexpr (sizeof(T) == 1)
            status = ippiLUT_Init_8u(
                i_interpolation, channels, {1, 1}, values.data(), levels.data(), counts.data(), spec());
        else if constexpr (std::is_signed_v<T>)
            status = ippiLUT_Init_16s(
                i_interpolation, channels, {1, 1}, values.data(), levels.data(), counts.data(), spec());
        else
            status = ippiLUT_Init_16u(
                i_interpolation, channels, {1, 1}, values.data(), levels.data(), counts.data(), spec());
        EXPECT_EQ(status, ippStsNoErr);
    }
    IppiLUT_Spec* spec() { return reinterpret_cast<IppiLUT_Spec*>(m_memory->data()); }

private:
    std::unique_ptr<FencedMemory> m_memory;
};

/** All bytes through a table without any order. */
Points shuffled(unsigned i_seed)
{
    Points points;
    std::mt19937 random(i_seed);
    for (int level = 0; level < 256; ++level) {
        points.levels.push_back(level);
        points.values.push_back(int(random() % 256));
    }
    return points;
}

template <class T, int Channels, class Function, class InPlace>
void expectMapped(
    const char* i_symbol, const std::vector<Points>& i_channels, Function&& i_function, InPlace&& i_inPlace)
{
    Table<T> table(i_channels);
    PixelSource<T> random(3);
    const auto expectedOf = [&](T value, int lane) {
        return mapped<T>(value, i_channels[size_t(lane) % i_channels.size()], ippNearest);
    };
    for (const int width : everyWidth())
        for (const int height : everyHeight())
            for (const Layout layout : everyLayout()) {
                SCOPED_TRACE(std::string(i_symbol) + " " + std::to_string(width) + " x "
                    + std::to_string(height) + ", padding " + std::to_string(layout.padding));
                const int lanes = width * Channels;
                const IppiSize size {width, height};
                Plane<T> src(lanes, height, layout), dst(lanes, height, {5, 3}), expected(lanes, height);
                src.fill(random);
                for (int y = 0; y < height; ++y)
                    for (int lane = 0; lane < lanes; ++lane)
                        expected.set(lane, y, expectedOf(src.get(lane, y), lane));
                ASSERT_EQ(i_function(src.data(), src.step(), dst.data(), dst.step(), size, table.spec()),
                    ippStsNoErr);
                ASSERT_TRUE(samePixels(dst, expected));
                ASSERT_TRUE(dst.frameIsIntact() && src.frameIsIntact());
                ASSERT_EQ(i_inPlace(src.data(), src.step(), size, table.spec()), ippStsNoErr);
                ASSERT_TRUE(samePixels(src, expected)) << "in place";
                ASSERT_TRUE(src.frameIsIntact());
            }
    for (const FencedMemory::Side side : {FencedMemory::AgainstEnd, FencedMemory::AgainstStart})
        for (int width = 1; width <= 130; ++width) {
            const size_t lanes = size_t(width) * Channels;
            FencedMemory memory(lanes * sizeof(T), side);
            std::vector<T> expected(lanes);
            for (size_t i = 0; i < lanes; ++i) {
                const T value = random();
                memory.set<T>(i, value);
                expected[i] = expectedOf(value, int(i));
            }
            ASSERT_EQ(i_inPlace(reinterpret_cast<T*>(memory.data()), int(lanes * sizeof(T)), {width, 1},
                          table.spec()),
                ippStsNoErr);
            for (size_t i = 0; i < lanes; ++i)
                ASSERT_EQ(memory.get<T>(i), expected[i]) << i_symbol << " " << width << ": " << i;
        }
}

TEST_P(lutTest, BytesThroughAnyTable)
{
    const Points a = shuffled(1), b = shuffled(2), c = shuffled(3), e = shuffled(4);
    expectMapped<Ipp8u, 1>("C1", {a}, ippiLUT_8u_C1R, ippiLUT_8u_C1IR);
    expectMapped<Ipp8u, 3>("C3", {a, b, c}, ippiLUT_8u_C3R, ippiLUT_8u_C3IR);
    expectMapped<Ipp8u, 4>("C4", {a, b, c, e}, ippiLUT_8u_C4R, ippiLUT_8u_C4IR);
}

TEST_P(lutTest, OneTableForAllChannels)
{
    const Points a = shuffled(5);
    expectMapped<Ipp8u, 3>("C3", {a, a, a}, ippiLUT_8u_C3R, ippiLUT_8u_C3IR);
    expectMapped<Ipp8u, 4>("C4", {a, a, a, a}, ippiLUT_8u_C4R, ippiLUT_8u_C4IR);
}

TEST_P(lutTest, WordsThroughATable)
{
    Points points;
    std::mt19937 random(6);
    for (int level = -40000; level < 70000; level += 1 + int(random() % 50)) {
        points.levels.push_back(level);
        points.values.push_back(int(random() % 200000) - 100000);
    }
    expectMapped<Ipp16u, 1>("16u", {points}, ippiLUT_16u_C1R, ippiLUT_16u_C1IR);
    expectMapped<Ipp16s, 1>("16s", {points}, ippiLUT_16s_C1R, ippiLUT_16s_C1IR);
}

TEST_P(lutTest, EveryByteThroughEveryInterpolation)
{
    const std::vector<Points> curves {{{0, 100, 200}, {10, 60, 20}}, {{0, 255}, {255, 0}}, {{7, 8}, {3, 90}},
        {{10, 20, 50, 100, 120, 250}, {0, 300, -50, 128, 128, 77}}, {{-100, 3, 1000}, {5, -7, 900}},
        {{-10, -5}, {1, 2}}, {{300, 400}, {1, 2}}, {{0, 1, 2, 3}, {200, 100, 50, 25}}};
    for (const Points& points : curves)
        for (const auto interpolation : {ippNearest, ippLinear, ippCubic}) {
            Table<Ipp8u> table({points}, interpolation);
            Ipp8u bytes[256];
            for (int i = 0; i < 256; ++i)
                bytes[i] = Ipp8u(i);
            ASSERT_EQ(ippiLUT_8u_C1IR(bytes, 256, {256, 1}, table.spec()), ippStsNoErr);
            for (int i = 0; i < 256; ++i)
                ASSERT_EQ(bytes[i], mapped<Ipp8u>(Ipp8u(i), points, interpolation))
                    << i << ", first level " << points.levels[0] << ", interpolation " << interpolation;
        }
}

TEST_P(lutTest, TiesGoToTheEvenValue)
{
    const Points points {{0, 100, 200}, {10, 60, 20}};
    const auto results = [&](IppiInterpolationType interpolation) {
        Table<Ipp8u> table({points}, interpolation);
        Ipp8u pixels[] = {0, 25, 50, 75, 99, 100, 150, 199, 200, 201};
        EXPECT_EQ(ippiLUT_8u_C1IR(pixels, 10, {10, 1}, table.spec()), ippStsNoErr);
        return std::vector<int>(pixels, pixels + 10);
    };
    EXPECT_EQ(results(ippNearest), (std::vector<int> {10, 10, 10, 10, 10, 60, 60, 60, 20, 201}));
    EXPECT_EQ(results(ippLinear), (std::vector<int> {10, 22, 35, 48, 60, 60, 40, 20, 20, 201}));
}

TEST_P(lutTest, OfEqualLevelsTheLastOneWins)
{
    const Points points {{10, 10, 10, 20}, {1, 2, 3, 4}};
    for (const auto interpolation : {ippNearest, ippLinear, ippCubic}) {
        Table<Ipp8u> table({points}, interpolation);
        Ipp8u pixels[] = {9, 10, 20};
        ASSERT_EQ(ippiLUT_8u_C1IR(pixels, 3, {3, 1}, table.spec()), ippStsNoErr);
        EXPECT_EQ(std::vector<int>(pixels, pixels + 3), (std::vector<int> {9, 3, 4}));
    }
}

TEST_P(lutTest, LevelsWithoutOrderDoNoHarm)
{
    const Points points {{200, INT_MAX, INT_MIN, 100, 50, INT_MAX, INT_MIN}, {1, 2, 3, 4, 5, 6, 7}};
    for (const auto interpolation : {ippNearest, ippLinear, ippCubic}) {
        Table<Ipp8u> bytes({points}, interpolation);
        Table<Ipp16s> words({points}, interpolation);
        Ipp8u byte = 30;
        EXPECT_EQ(ippiLUT_8u_C1IR(&byte, 1, {1, 1}, bytes.spec()), ippStsNoErr);
    }
}

TEST(lutCheckTest, TheQueryGivesASizeOrZero)
{
    const int counts[4] = {2, 2, 2, 2}, few[4] = {2, 2, 1, 2};
    int size = 7;
    EXPECT_EQ(ippiLUT_GetSize(ippNearest, ipp8u, ippC1, {1, 1}, counts, nullptr), ippStsNullPtrErr);
    EXPECT_EQ(ippiLUT_GetSize(ippHahn, ipp8s, ippC2, {0, 0}, nullptr, &size), ippStsNullPtrErr);
    const auto expectFailure = [&](int interpolation, IppDataType type, IppChannels channels, IppiSize roi,
                                   const int* levels, IppStatus status) {
        size = 7;
        EXPECT_EQ(ippiLUT_GetSize(IppiInterpolationType(interpolation), type, channels, roi, levels, &size),
            status);
        EXPECT_EQ(size, 0);
    };
    expectFailure(0, ipp8s, ippC2, {0, 1}, few, ippStsSizeErr);
    for (const IppChannels channels : {ippC0, ippC2, ippAC4, IppChannels(-1)})
        expectFailure(0, ipp8s, channels, {1, 1}, few, ippStsChannelErr);
    for (const IppDataType type : {ipp8s, ipp32s, ippUndef})
        expectFailure(0, type, ippC3, {1, 1}, few, ippStsDataTypeErr);
    for (const int interpolation : {0, 3, 8, -1})
        expectFailure(interpolation, ipp8u, ippC3, {1, 1}, few, ippStsInterpolationErr);
    expectFailure(ippCubic, ipp8u, ippC3, {1, 1}, few, ippStsLUTNofLevelsErr);
    for (const IppDataType type : {ipp8u, ipp16u, ipp16s})
        for (const IppChannels channels : {ippC1, ippC3, ippC4}) {
            EXPECT_EQ(ippiLUT_GetSize(ippLinear, type, channels, {1, 1}, counts, &size), ippStsNoErr);
            EXPECT_GE(size, channels * (type == ipp8u ? 256 : 131072));
        }
    EXPECT_EQ(ippiLUT_GetSize(ippLinear, ipp8u, ippC1, {1, 1}, few, &size), ippStsNoErr)
        << "only the channels in use count";
}

TEST(lutCheckTest, InitTestsItsArgumentsInOrder)
{
    const Ipp32s list[2] = {0, 1};
    const Ipp32s* lists[3] = {list, list, list};
    const Ipp32s* broken[3] = {list, list, nullptr};
    int counts[3] = {2, 2, 2}, few[3] = {2, 2, 1};
    std::vector<Ipp8u> memory(4096, 7);
    auto* spec = reinterpret_cast<IppiLUT_Spec*>(memory.data());
    EXPECT_EQ(ippiLUT_Init_8u(ippHahn, ippC3, {0, 0}, nullptr, lists, few, spec), ippStsNullPtrErr);
    EXPECT_EQ(ippiLUT_Init_8u(ippHahn, ippC3, {0, 0}, lists, nullptr, few, spec), ippStsNullPtrErr);
    EXPECT_EQ(ippiLUT_Init_8u(ippHahn, ippC3, {0, 0}, lists, lists, nullptr, spec), ippStsNullPtrErr);
    EXPECT_EQ(ippiLUT_Init_8u(ippHahn, ippC3, {0, 0}, lists, lists, few, nullptr), ippStsNullPtrErr);
    EXPECT_EQ(ippiLUT_Init_8u(ippHahn, ippC3, {0, 0}, broken, lists, few, spec), ippStsNullPtrErr);
    EXPECT_EQ(ippiLUT_Init_8u(ippHahn, ippC3, {0, 0}, lists, broken, few, spec), ippStsNullPtrErr);
    EXPECT_EQ(ippiLUT_Init_8u(ippHahn, ippC2, {0, 0}, lists, lists, few, spec), ippStsSizeErr);
    EXPECT_EQ(ippiLUT_Init_8u(ippHahn, ippC2, {1, 1}, lists, lists, few, spec), ippStsChannelErr);
    EXPECT_EQ(ippiLUT_Init_8u(ippHahn, ippC3, {1, 1}, lists, lists, few, spec), ippStsInterpolationErr);
    EXPECT_EQ(ippiLUT_Init_8u(ippNearest, ippC3, {1, 1}, lists, lists, few, spec), ippStsLUTNofLevelsErr);
    EXPECT_EQ(std::count(memory.begin(), memory.end(), 7), 4096);
    EXPECT_EQ(ippiLUT_Init_8u(ippNearest, ippC3, {1, 1}, lists, lists, counts, spec), ippStsNoErr);
}

TEST(lutCheckTest, ARunTestsItsArgumentsInOrder)
{
    const Points points {{0, 255}, {255, 0}};
    Table<Ipp8u> one({points}), three({points, points, points});
    Table<Ipp16u> words({points});
    std::vector<Ipp8u> zeros(4096);
    auto* none = reinterpret_cast<IppiLUT_Spec*>(zeros.data());
    Ipp8u src[6] = {1, 1, 1, 1, 1, 1}, dst[6] = {7, 7, 7, 7, 7, 7};
    EXPECT_EQ(ippiLUT_8u_C3R(nullptr, 0, dst, 0, {0, 0}, none), ippStsNullPtrErr);
    EXPECT_EQ(ippiLUT_8u_C3R(src, 0, nullptr, 0, {0, 0}, none), ippStsNullPtrErr);
    EXPECT_EQ(ippiLUT_8u_C3R(src, 0, dst, 0, {0, 0}, nullptr), ippStsNullPtrErr);
    for (const IppiSize size : {IppiSize {0, 1}, IppiSize {1, 0}, IppiSize {-1, 1}, IppiSize {1, -1}})
        EXPECT_EQ(ippiLUT_8u_C3R(src, 0, dst, 0, size, none), ippStsSizeErr);
    for (const int step : {0, -6, 5}) {
        EXPECT_EQ(ippiLUT_8u_C3R(src, step, dst, 6, {2, 1}, none), ippStsStepErr);
        EXPECT_EQ(ippiLUT_8u_C3R(src, 6, dst, step, {2, 1}, none), ippStsStepErr);
        EXPECT_EQ(ippiLUT_8u_C3IR(dst, step, {2, 1}, none), ippStsStepErr);
    }
    for (IppiLUT_Spec* spec : {none, one.spec(), words.spec()}) {
        EXPECT_EQ(ippiLUT_8u_C3R(src, 6, dst, 6, {2, 1}, spec), ippStsBadArgErr);
        EXPECT_EQ(ippiLUT_8u_C3IR(dst, 6, {2, 1}, spec), ippStsBadArgErr);
    }
    EXPECT_EQ(ippiLUT_8u_C1IR(dst, 6, {2, 1}, three.spec()), ippStsBadArgErr);
    Ipp16s word = 7;
    EXPECT_EQ(ippiLUT_16s_C1IR(&word, 2, {1, 1}, words.spec()), ippStsBadArgErr);
    EXPECT_EQ(std::count(dst, dst + 6, 7), 6);
    EXPECT_EQ(ippiLUT_8u_C3R(src, 6, dst, 6, {2, 1}, three.spec()), ippStsNoErr);
    EXPECT_EQ(dst[5], 255);
}

} // namespace
