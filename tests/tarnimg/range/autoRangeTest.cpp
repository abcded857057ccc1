#include "support/images.h"
#include "support/messageOf.h"
#include "support/rangePrinter.h"

#include <QObject>
#include <climits>
#include <cmath>
#include <gtest/gtest.h>
#include <limits>
#include <string>
#include <tarnbase/cDataValObj.h>
#include <tarnimg/cImg.h>
#include <vector>

namespace {

using Ranges = std::vector<cDblRange>;

/** A descriptor with the automatic range on, and what it announces. */
class AutoRange {
public:
    explicit AutoRange(cImgType::ImageTypes i_type) : m_owner(i_type, 1, 1)
    {
        QObject::connect(
            &type(), &cImgType::rangeChanged, [this](const cDblRange& range) { announced.push_back(range); });
        set("Use", true);
    }
    template <class T> void set(const char* i_key, T i_value)
    {
        cMapObj params;
        params.setSubObject(
            new cDataValObj<T>(i_value), QStringLiteral("AutoRange/") + QString::fromLatin1(i_key), true);
        type().setParams(params);
    }
    cImgType& type() { return m_owner.imgType(); }
    cDblRange range() const { return m_owner.getRange(); }
    /** What a display does before it renders; gives the range. */
    cDblRange show(const cImg& i_image)
    {
        Access::adjust(type(), i_image);
        return range();
    }

    Ranges announced;

private:
    struct Access : cImgType {
        static void adjust(cImgType& io_type, const cImg& i_image)
        {
            (io_type.*(&Access::adjustRange))(i_image);
        }
    };
    cImg m_owner;
};

cImg bytes(std::initializer_list<quint8> i_row) { return makeImage<quint8>(cImgType::UInt8, {i_row}); }
cImg floats(std::initializer_list<float> i_row) { return makeImage<float>(cImgType::Float32, {i_row}); }

/** 10, 20, ... 100 times a factor, in one row. */
template <class T> cImg tenSteps(cImgType::ImageTypes i_type, int i_factor = 1, int i_offset = 0)
{
    return generateImage(
        i_type, 10, 1, [=](unsigned x, unsigned) { return T(int(10 * (x + 1)) * i_factor + i_offset); });
}

// --- every type that has no rule of its own ---

TEST(autoRangeTest, NothingHappensUnlessItIsUsed)
{
    AutoRange display(cImgType::UInt8);
    display.set("Use", false);
    display.set("BufferSize", 3u);
    EXPECT_EQ(display.show(bytes({10, 20})), cDblRange(0, 255));
    EXPECT_EQ(display.announced, Ranges());
    display.set("Use", true);
    EXPECT_EQ(display.show(bytes({4, 99})), cDblRange(4, 100)) << "the history begins here";
}

TEST(autoRangeTest, TheRangeIsLeastToGreatestPixel)
{
    AutoRange display(cImgType::UInt8);
    EXPECT_EQ(display.show(bytes({30, 10, 20})), cDblRange(10, 30));
    EXPECT_EQ(display.announced, (Ranges {{10, 30}}));
}

TEST(autoRangeTest, AConstantImageHasARangeOfOneValue)
{
    AutoRange display(cImgType::UInt8);
    display.set("Quantil", 0.1);
    EXPECT_EQ(display.show(bytes({7, 7, 7})), cDblRange(7, 7));
    EXPECT_EQ(display.announced, (Ranges {{7, 7}}));
}

TEST(autoRangeTest, TheSameExtremesAgainChangeNothing)
{
    AutoRange display(cImgType::UInt8);
    display.show(bytes({10, 20}));
    display.show(bytes({20, 15, 10}));
    EXPECT_EQ(display.announced, (Ranges {{10, 20}}));
    // Had either been remembered, this would be a mean.
    display.set("BufferSize", 3u);
    EXPECT_EQ(display.show(bytes({40, 50})), cDblRange(40, 51));
}

TEST(autoRangeTest, WithAHistoryTheRangeItselfChangesNothing)
{
    AutoRange display(cImgType::UInt8);
    display.set("BufferSize", 3u);
    display.show(bytes({10, 20}));
    EXPECT_EQ(display.range(), cDblRange(10, 21));
    display.show(bytes({10, 21}));
    EXPECT_EQ(display.announced.size(), 1u);
    EXPECT_EQ(display.show(bytes({20, 40})), cDblRange(15, 31));
}

TEST(autoRangeTest, TheHistoryKeepsTheLastFrames)
{
    AutoRange display(cImgType::UInt8);
    display.set("BufferSize", 3u);
    EXPECT_EQ(display.show(bytes({10, 20})), cDblRange(10, 21));
    EXPECT_EQ(display.show(bytes({20, 30})), cDblRange(15, 26));
    EXPECT_EQ(display.show(bytes({31, 40})), cDblRange(61 / 3.0, 31));
    EXPECT_EQ(display.show(bytes({40, 50})), cDblRange(91 / 3.0, 41)) << "the oldest one is gone";
    EXPECT_EQ(display.announced, (Ranges {{10, 21}, {15, 26}, {61 / 3.0, 31}, {91 / 3.0, 41}}));
}

TEST(autoRangeTest, AShorterHistoryLosesOneFrameAtATime)
{
    AutoRange display(cImgType::UInt8);
    display.set("BufferSize", 4u);
    for (const quint8 low : {10, 20, 30, 40})
        display.show(bytes({low, quint8(low + 100)}));
    display.set("BufferSize", 2u);
    EXPECT_EQ(display.show(bytes({50, 150})), cDblRange(35, 136)) << "of 20, 30, 40, 50";
    EXPECT_EQ(display.show(bytes({60, 160})), cDblRange(45, 146)) << "of 30, 40, 50, 60";
}

TEST(autoRangeTest, TheRangeIsLimitedButNotWhatIsAnnounced)
{
    AutoRange display(cImgType::UInt8);
    display.set("BufferSize", 2u);
    EXPECT_EQ(display.show(bytes({5, 255})), cDblRange(5, 255));
    EXPECT_EQ(display.announced, (Ranges {{5, 256}}));
}

TEST(autoRangeTest, BordersDoNotCount)
{
    const cImg image = makeImage<quint8>(
        cImgType::UInt8, {{0, 1, 2, 3, 4}, {5, 60, 70, 8, 9}, {10, 80, 65, 13, 14}, {255, 16, 17, 18, 19}});
    AutoRange display(cImgType::UInt8);
    display.set("BorderLeft", 1u);
    display.set("BorderTop", 1u);
    display.set("BorderRight", 2u);
    display.set("BorderBottom", 1u);
    EXPECT_EQ(display.show(image), cDblRange(60, 80));
    // Total 4; the quantile leaves out one pixel on each side.
    display.set("Quantil", 0.25);
    EXPECT_EQ(display.show(image), cDblRange(65, 80));
}

TEST(autoRangeTest, EachBorderHasItsSide)
{
    cImg image(cImgType::UInt8, 5, 5);
    for (unsigned y = 0; y < 5; ++y)
        for (unsigned x = 0; x < 5; ++x)
            image.setPixel(x, y, quint8(10 * y + x));
    const std::pair<const char*, cDblRange> sides[] = {{"BorderLeft", {2, 44}}, {"BorderTop", {20, 44}},
        {"BorderRight", {0, 42}}, {"BorderBottom", {0, 24}}};
    for (const auto& [side, range] : sides) {
        AutoRange display(cImgType::UInt8);
        display.set(side, 2u);
        EXPECT_EQ(display.show(image), range) << side;
    }
}

TEST(autoRangeTest, BordersThatLeaveNothingMakeAnInvalidImage)
{
    const std::pair<unsigned, unsigned> borders[]
        = {{2, 1}, {3, 0}, {0, 4}, {UINT_MAX, 3}, {UINT_MAX, UINT_MAX}};
    for (const auto& [left, right] : borders) {
        AutoRange display(cImgType::UInt8);
        display.set("BorderLeft", left);
        display.set("BorderRight", right);
        EXPECT_EQ(messageOf([&] {
            display.show(bytes({1, 2, 3}));
        }),
            "cMinMaxFunctor::operator (): Invalid image.");
        EXPECT_EQ(display.range(), cDblRange(0, 255));
        EXPECT_EQ(display.announced, Ranges());
    }
}

TEST(autoRangeTest, OfSeveralChannelsTheFirstOneCounts)
{
    AutoRange display(cImgType::UInt16);
    EXPECT_EQ(
        display.show(makeImage<quint16>(cImgType::UInt16, {{10, 1, 30, 900, 20, 2}}, 2)), cDblRange(10, 30));
}

TEST(autoRangeTest, TypesThatHaveNoExtremesFail)
{
    for (const auto type :
        {cImgType::SInt64, cImgType::Complex, cImgType::Gradient16, cImgType::Gradient32}) {
        AutoRange display(type);
        const cDblRange before = display.range();
        EXPECT_EQ(
            messageOf([&] { display.show(makeRandomImage(type, 3, 2)); }).find("cMinMaxFunctor::operator ()"),
            0u)
            << type;
        EXPECT_EQ(display.range(), before);
        EXPECT_EQ(display.announced, Ranges());
    }
}

// --- quantiles ---

TEST(autoRangeTest, AQuantileCutsBothEndsOfTheHistogram)
{
    // Of 10 pixels 2 are cut: the third from below is 30, the ninth, up to which more than 8 lie, 90.
    AutoRange words(cImgType::UInt16), numbers(cImgType::SInt16), display(cImgType::UInt8);
    for (AutoRange* each : {&words, &numbers, &display})
        each->set("Quantil", 0.2);
    EXPECT_EQ(display.show(tenSteps<quint8>(cImgType::UInt8)), cDblRange(30, 90));
    EXPECT_EQ(words.show(tenSteps<quint16>(cImgType::UInt16, 600)), cDblRange(18000, 54000));
    EXPECT_EQ(numbers.show(tenSteps<qint16>(cImgType::SInt16, 5, -300)), cDblRange(-150, 150));
}

TEST(autoRangeTest, OfSeveralChannelsAQuantileCutsTheFirstBytesOfEachRow)
{
    AutoRange display(cImgType::UInt8);
    display.set("Quantil", 0.2);
    // Ten pixels of two channels: the histogram has the first ten bytes, 10 to 100, which are five pixels.
    const cImg image = makeImage<quint8>(
        cImgType::UInt8, {{10, 20, 30, 40, 50, 60, 70, 80, 90, 100, 1, 1, 1, 1, 1, 1, 1, 1, 1, 1}}, 2);
    EXPECT_EQ(display.show(image), cDblRange(30, 90));
}

TEST(autoRangeTest, TheGreatestValueOfATypeIsNotCounted)
{
    AutoRange display(cImgType::UInt8);
    display.set("Quantil", 0.25);
    EXPECT_EQ(display.show(bytes({4, 255, 255, 255})), cDblRange(4, 4));
}

TEST(autoRangeTest, AboveOneHalfTheEndsCrossAndAreOrdered)
{
    AutoRange display(cImgType::UInt8);
    display.set("Quantil", 0.75); // targets 7 and 2
    EXPECT_EQ(display.show(tenSteps<quint8>(cImgType::UInt8)), cDblRange(30, 80));
    // The history gets them as they are: low 80, high 30 and 1.
    display.set("BufferSize", 2u);
    display.type().setRange({0, 255});
    EXPECT_EQ(display.show(tenSteps<quint8>(cImgType::UInt8)), cDblRange(31, 80));
}

TEST(autoRangeTest, AQuantileOfOneOrMoreStopsAtTheLastBin)
{
    AutoRange display(cImgType::UInt8);
    display.set("Quantil", 1.0);
    EXPECT_EQ(display.show(tenSteps<quint8>(cImgType::UInt8)), cDblRange(10, 254));
    for (const double quantile : {1.5, 1e300, double(INFINITY)}) {
        display.announced.clear();
        display.type().setRange({0, 255});
        display.set("Quantil", quantile);
        EXPECT_EQ(display.show(tenSteps<quint8>(cImgType::UInt8)), cDblRange(0, 254));
        EXPECT_EQ(display.announced, (Ranges {{-1, 254}})) << "no bin lies before a negative target";
    }
}

TEST(autoRangeTest, AQuantileThatIsNotPositiveIsNone)
{
    for (const double quantile : {0.0, -0.5, double(NAN)}) {
        AutoRange display(cImgType::UInt8);
        display.set("Quantil", quantile);
        EXPECT_EQ(display.show(tenSteps<quint8>(cImgType::UInt8)), cDblRange(10, 100));
    }
}

TEST(autoRangeTest, TypesWithoutAHistogramKeepTheExtremes)
{
    AutoRange small(cImgType::SInt8), large(cImgType::UInt32);
    small.set("Quantil", 0.2);
    large.set("Quantil", 0.2);
    EXPECT_EQ(small.show(tenSteps<qint8>(cImgType::SInt8)), cDblRange(10, 100));
    EXPECT_EQ(large.show(tenSteps<quint32>(cImgType::UInt32, 10000000)), cDblRange(1e8, 1e9));
}

TEST(autoRangeTest, ColoursAreCutByTheirLuminance)
{
    AutoRange three(cImgType::RGB24), four(cImgType::RGB32);
    three.set("Quantil", 0.2);
    four.set("Quantil", 0.2);
    cImg gray(cImgType::RGB24, 10, 1), grayWithAlpha(cImgType::RGB32, 10, 1);
    for (unsigned x = 0; x < 10; ++x)
        for (unsigned c = 0; c < 4; ++c) {
            grayWithAlpha.row<quint8>(0)[4 * x + c] = quint8(c == 3 ? 255 - x : 10 * (x + 1));
            if (c < 3)
                gray.row<quint8>(0)[3 * x + c] = quint8(10 * (x + 1));
        }
    EXPECT_EQ(three.show(gray), cDblRange(30, 90));
    // With a level less the bins of RGB32 are one below.
    EXPECT_EQ(four.show(grayWithAlpha), cDblRange(29, 89));
}

TEST(autoRangeTest, RedAloneDecidesWhetherAColourIsCut)
{
    AutoRange display(cImgType::RGB24);
    display.set("Quantil", 0.3);
    // Luminances 59, 58, 58, 58; red from 0 to 200.
    EXPECT_EQ(
        display.show(makeImage<quint8>(cImgType::RGB24, {{200, 0, 0, 0, 100, 0, 0, 100, 0, 0, 100, 0}})),
        cDblRange(58, 58));
    // Red is 50 everywhere, so the luminance does not matter.
    EXPECT_EQ(display.show(makeImage<quint8>(cImgType::RGB24, {{50, 0, 0, 50, 100, 0, 50, 255, 255}})),
        cDblRange(50, 50));
}

TEST(autoRangeTest, WithoutAQuantileAColoursRangeIsThatOfRed)
{
    AutoRange display(cImgType::RGB24);
    EXPECT_EQ(
        display.show(makeImage<quint8>(cImgType::RGB24, {{20, 0, 255, 30, 100, 7}})), cDblRange(20, 30));
}

// --- Float32 ---

TEST(autoRangeTest, FloatsAreMeasuredFromTheLeastPixel)
{
    AutoRange display(cImgType::Float32);
    display.set("Quantil", 0.01);
    // 100, 100.1, ... 200. The greatest is not counted, so of 1000 pixels 10 are cut: the eleventh, 101, lies
    // in bin 655 of 65535, and the 991st, 199, in bin 64879.
    const cImg image
        = generateImage(cImgType::Float32, 1001, 1, [](unsigned x, unsigned) { return 100 + float(x) / 10; });
    EXPECT_EQ(display.show(image), cDblRange(655 * 100 / 65536.0, 64879 * 100 / 65536.0));
    EXPECT_NEAR(display.range().getLow(), 1, 0.01);
    EXPECT_NEAR(display.range().getHigh(), 99, 0.01);
}

TEST(autoRangeTest, TheDistanceOfFloatsIsAFloatItself)
{
    AutoRange display(cImgType::Float32);
    display.set("Quantil", 0.25);
    // In single precision 1e8 - 0.1 is 1e8. The pixel in the middle lies in bin 32767.
    EXPECT_EQ(display.show(floats({0.1f, 5e7f, 1e8f})), cDblRange(0, 32767 * 1e8 / 65536));
}

TEST(autoRangeTest, OfFloatsBordersDoNotMatterAndOtherChannelCountsDoNothing)
{
    AutoRange display(cImgType::Float32);
    display.set("BorderLeft", 1u);
    display.set("BorderRight", 1u);
    EXPECT_EQ(display.show(floats({-4, 0, 9})), cDblRange(-4, 9));
    EXPECT_EQ(display.show(makeImage<float>(cImgType::Float32, {{1, 2, 3, 4}}, 2)), cDblRange(-4, 9));
    EXPECT_EQ(display.announced.size(), 1u);
}

TEST(autoRangeTest, TheMeanOfFloatsIsOfWholeSums)
{
    AutoRange display(cImgType::Float32);
    display.set("BufferSize", 2u);
    EXPECT_EQ(display.show(floats({0.5f, 1.5f})), cDblRange(0, 1));
    EXPECT_EQ(
        display.show(floats({0.75f, 2.75f})), cDblRange(0, 1.5)); // 0 + 0, and 1 + 2.75 without the fraction
    EXPECT_EQ(display.show(floats({-1.75f, 5})), cDblRange(-0.5, 3.5)); // 0 - 1.75 and 2 + 5
    EXPECT_EQ(display.announced, (Ranges {{0, 1}, {0, 1.5}, {-0.5, 3.5}}));
}

TEST(autoRangeTest, FloatsThatAreTheRangeAlreadyDoNotEnterTheHistory)
{
    AutoRange display(cImgType::Float32);
    display.set("BufferSize", 3u);
    display.show(floats({10, 20}));
    display.show(floats({20, 10}));
    EXPECT_EQ(display.announced, (Ranges {{10, 20}}));
    EXPECT_EQ(display.show(floats({40, 50})), cDblRange(25, 35));
}

TEST(autoRangeTest, FloatsThatAreNoNumbersAndInfiniteOnes)
{
    const float nan = std::numeric_limits<float>::quiet_NaN(),
                infinity = std::numeric_limits<float>::infinity();
    const float most = std::numeric_limits<float>::max();
    AutoRange display(cImgType::Float32);
    display.set("Quantil", 0.2);
    EXPECT_EQ(display.show(floats({nan, nan})), cDblRange(-1, 1));
    EXPECT_EQ(display.announced, Ranges());
    EXPECT_EQ(display.show(floats({2, -infinity, nan})), cDblRange(-double(most), 2));
    EXPECT_EQ(display.announced, (Ranges {{-double(infinity), 2}}));
    EXPECT_EQ(display.show(floats({most, 0, -most})), cDblRange(-double(most), double(most)));
}

// --- Float64 ---

TEST(autoRangeTest, OfDoublesNeitherBordersNorQuantileCount)
{
    AutoRange display(cImgType::Float64);
    display.set("Quantil", 0.4);
    display.set("BorderTop", 1u);
    EXPECT_EQ(
        display.show(makeImage<double>(cImgType::Float64, {{-0.5, 7}, {1e300, 3}})), cDblRange(-0.5, 1e300));
    EXPECT_EQ(display.show(makeImage<double>(cImgType::Float64, {{1, 2}}, 2)), cDblRange(-0.5, 1e300));
    EXPECT_EQ(display.announced.size(), 1u);
}

TEST(autoRangeTest, AViewOfDoublesIsReadWithoutItsGaps)
{
    const cImg image = makeImage<double>(cImgType::Float64, {{9, 1, 2, -3, 4}, {5, 60, 70, 80, 0}});
    AutoRange display(cImgType::Float64);
    EXPECT_EQ(display.show(cImg(image, false, {1, 0, 2, 2})), cDblRange(-3, 4)) << "1, 2, -3, 4";
}

TEST(autoRangeTest, DoublesAtAnyAddress)
{
    const double values[2] = {-7.5, 8};
    unsigned char memory[20];
    std::memcpy(memory + 3, values, sizeof(values));
    AutoRange display(cImgType::Float64);
    EXPECT_EQ(display.show(cImg(cImgType::Float64, 2, 1, 8, 16, memory + 3, {})), cDblRange(-7.5, 8));
}

TEST(autoRangeTest, TheMeanOfDoublesIsOfWholeSums)
{
    AutoRange display(cImgType::Float64);
    display.set("BufferSize", 2u);
    EXPECT_EQ(display.show(makeImage<double>(cImgType::Float64, {{0.5, 1.5}})), cDblRange(0, 1));
    EXPECT_EQ(display.show(makeImage<double>(cImgType::Float64, {{0.75, 2.75}})), cDblRange(0, 1.5));
    EXPECT_EQ(display.show(makeImage<double>(cImgType::Float64, {{0, 1.5}})), cDblRange(0, 1.5));
    EXPECT_EQ(display.announced.size(), 2u) << "the range is that already";
    EXPECT_EQ(display.show(makeImage<double>(cImgType::Float64, {{-1e300, 1e300}})),
        cDblRange(INT_MIN / 2.0, INT_MAX / 2.0))
        << "a sum stays within int";
}

// --- SInt32 ---

TEST(autoRangeTest, IntsAreAnnouncedWithEveryFrame)
{
    AutoRange display(cImgType::SInt32);
    display.set("Quantil", 0.4);
    display.set("BorderLeft", 1u);
    const cImg image = makeImage<qint32>(cImgType::SInt32, {{-4, 0, 9}});
    EXPECT_EQ(display.show(image), cDblRange(-4, 9));
    EXPECT_EQ(display.show(image), cDblRange(-4, 9));
    EXPECT_EQ(display.announced, (Ranges {{-4, 9}, {-4, 9}}));
    display.type().setRange({-4, 10});
    EXPECT_EQ(display.show(image), cDblRange(-4, 10)) << "one above the greatest is the range already";
    EXPECT_EQ(display.announced.size(), 2u);
}

TEST(autoRangeTest, TheHistoryOfIntsIsAsThatOfOtherIntegers)
{
    AutoRange display(cImgType::SInt32);
    display.set("BufferSize", 2u);
    const cImg image = makeImage<qint32>(cImgType::SInt32, {{-4, 9}});
    EXPECT_EQ(display.show(image), cDblRange(-4, 10));
    EXPECT_EQ(display.show(image), cDblRange(-4, 10));
    EXPECT_EQ(display.announced.size(), 1u) << "the range is that already";
    EXPECT_EQ(display.show(makeImage<qint32>(cImgType::SInt32, {{-1, 19}})), cDblRange(-2.5, 15));
    EXPECT_EQ(display.show(makeImage<qint32>(cImgType::SInt32, {{INT_MIN, INT_MAX}})),
        cDblRange((INT_MIN - 1.0) / 2, (INT_MAX + 20.0) / 2))
        << "an entry stays within int, a sum need not";
}

TEST(autoRangeTest, OfIntsAsManyValuesCountAsThereArePixels)
{
    AutoRange display(cImgType::SInt32);
    EXPECT_EQ(display.show(makeImage<qint32>(cImgType::SInt32, {{1, 2, 30, 40}}, 2)), cDblRange(1, 2));
    const cImg image = makeImage<qint32>(cImgType::SInt32, {{9, 1, 2, -3, 4}, {5, 60, 70, 80, 0}});
    EXPECT_EQ(display.show(cImg(image, false, {1, 0, 2, 2})), cDblRange(-3, 4)) << "1, 2, -3, 4";
}

} // namespace
