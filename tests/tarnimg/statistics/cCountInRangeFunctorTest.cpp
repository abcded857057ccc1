#include "Parametrised.h"

#include "support/StationHarness.h"
#include "support/images.h"
#include "support/messageOf.h"

#include <QColor>
#include <array>
#include <cmath>
#include <customipp/customipp.h>
#include <tarnimg/statistics/cCountInRangeFunctor.h>
#include <tarnimg/statistics/cCountInRangeRGBFunctor.h>

namespace {

using Count = Parametrised<cCountInRangeFunctor>;
using CountRGB = Parametrised<cCountInRangeRGBFunctor>;
using Counts = std::array<int, 3>;

Count between(float i_lower, float i_upper)
{
    return Count().setValue("lowerBound", i_lower).setValue("upperBound", i_upper);
}

const cImg& bytes()
{
    static const cImg s_image = makeImage<quint8>(cImgType::UInt8, {{0, 1, 9}, {10, 11, 255}});
    return s_image;
}

const cImg& colours()
{
    static const cImg s_image = makeImage<quint8>(cImgType::RGB24, {{0, 10, 200, 5, 20, 201, 6, 30, 255}});
    return s_image;
}

Counts countsOf(const CountRGB& i_functor, const cImg& i_image)
{
    Counts counts {-1, -1, -1};
    i_functor(i_image, counts.data());
    return counts;
}

} // namespace

TEST(cCountInRangeFunctorTest, BothBoundsCount)
{
    EXPECT_EQ(cCountInRangeFunctor()(bytes()), 6) << "0 to 255 by default";
    EXPECT_EQ(between(1, 10)(bytes()), 3);
    EXPECT_EQ(between(10, 10)(bytes()), 1);
    const cImg floats = makeImage<float>(cImgType::Float32, {{-0.5f, 0.25f, NAN}, {0.5f, 300, INFINITY}});
    EXPECT_EQ(between(0.25f, 0.5f)(floats), 2);
    EXPECT_EQ(between(-1, 255)(floats), 3);
    EXPECT_EQ(between(-INFINITY, INFINITY)(floats), 5);
}

TEST(cCountInRangeFunctorTest, BoundsOfBytesAreTruncatedAndCutToEightBits)
{
    EXPECT_EQ(between(9.9f, 10.9f)(bytes()), 2);
    EXPECT_EQ(between(-0.9f, 0.9f)(bytes()), 1);
    EXPECT_EQ(between(257, 511)(bytes()), 5) << "1 to 255";
    EXPECT_EQ(between(-255, 266)(bytes()), 3) << "1 to 10";
    EXPECT_EQ(between(NAN, 0)(bytes()), 1);
}

TEST(cCountInRangeFunctorTest, CrossedBoundsFail)
{
    const std::string message
        = std::string("cCountInRangeFunctor::operator (): ") + ippGetStatusString(ippStsRangeErr);
    EXPECT_EQ(messageOf([] { between(10, 9)(bytes()); }), message);
    EXPECT_EQ(messageOf([] { between(10, 256)(bytes()); }), message) << "256 is cut to 0";
    EXPECT_EQ(messageOf([] { between(2, 1)(makeImage<float>(cImgType::Float32, {{0}})); }), message);
}

TEST(cCountInRangeFunctorTest, InvalidAndUnsupportedImagesAreRefused)
{
    const cCountInRangeFunctor count;
    EXPECT_EQ(messageOf([&] { count(cImg()); }), "cCountInRangeFunctor::operator (): Invalid image.");
    EXPECT_EQ(messageOf([&] { count(colours()); }),
        "cCountInRangeFunctor::operator (): Unsupported image format (RGB24) or channel count (3).");
}

TEST(cCountInRangeFunctorTest, TheStationSendsTheCount)
{
    StationHarness harness(cStation::create(QStringLiteral("ipp/image/statistics/countInRange")));
    harness.feed("img", bytes(), 10);
    harness.runAll();
    EXPECT_EQ(harness.values<int>("count"), QVector<int> {6});
    EXPECT_EQ(harness.stamps("count"), QList<qint64> {10});
}

TEST(cCountInRangeRGBFunctorTest, EachChannelIsCountedOnItsOwn)
{
    EXPECT_EQ(countsOf(CountRGB(), colours()), (Counts {3, 3, 3})) << "black to white by default";
    CountRGB functor;
    functor.setValue("lowerBound", QColor(5, 20, 200)).setValue("upperBound", QColor(5, 29, 254));
    EXPECT_EQ(countsOf(functor, colours()), (Counts {1, 1, 2}));
}

TEST(cCountInRangeRGBFunctorTest, ACrossedChannelFailsAndLeavesTheCounts)
{
    CountRGB functor;
    functor.setValue("lowerBound", QColor(0, 0, 9)).setValue("upperBound", QColor(255, 255, 8));
    Counts counts {-1, -1, -1};
    EXPECT_EQ(messageOf([&] { functor(colours(), counts.data()); }),
        std::string("cCountInRangeRGBFunctor::operator (): ") + ippGetStatusString(ippStsRangeErr));
    EXPECT_EQ(counts, (Counts {-1, -1, -1}));
    EXPECT_EQ(messageOf([&] { functor(cImg(), counts.data()); }),
        "cCountInRangeRGBFunctor::operator (): Invalid image.");
    EXPECT_EQ(messageOf([&] { functor(bytes(), counts.data()); }),
        "cCountInRangeRGBFunctor::operator (): Unsupported image format (UInt8) or channel count (1).");
}

TEST(cCountInRangeRGBFunctorTest, TheStationSendsRedGreenBlue)
{
    const auto create = [] {
        cStation* station = cStation::create(QStringLiteral("ipp/image/statistics/countInRangeRGB"));
        station->getParams().getSubObject(QStringLiteral("lowerBound"))->setValue(QColor(5, 10, 255));
        return station;
    };
    StationHarness harness(create());
    harness.feed("img", colours(), 10);
    harness.runAll();
    QStringList ports;
    for (const StationHarness::Output& output : harness.outputs())
        ports.append(output.port);
    EXPECT_EQ(ports,
        (QStringList {
            QStringLiteral("redCount"), QStringLiteral("greenCount"), QStringLiteral("blueCount")}));
    EXPECT_EQ(harness.values<int>("redCount"), QVector<int> {2});
    EXPECT_EQ(harness.values<int>("greenCount"), QVector<int> {3});
    EXPECT_EQ(harness.values<int>("blueCount"), QVector<int> {1});
    EXPECT_EQ(harness.stamps("greenCount"), QList<qint64> {10});

    const std::pair<const char*, int> counts[] = {{"redCount", 2}, {"greenCount", 3}, {"blueCount", 1}};
    for (const auto& [wanted, count] : counts) {
        QStringList others = ports;
        others.removeOne(QString::fromLatin1(wanted));
        StationHarness one(create(), others);
        one.feed("img", colours(), 10);
        one.runAll();
        EXPECT_EQ(one.values<int>(wanted), QVector<int> {count});
    }

    StationHarness unasked(
        create(), {QStringLiteral("redCount"), QStringLiteral("greenCount"), QStringLiteral("blueCount")});
    unasked.feed("img", cImg(cImgType::RGB24, 0, 3), 10);
    unasked.runAll();
    EXPECT_TRUE(unasked.errors().isEmpty());
    EXPECT_EQ(unasked.fates("img").gated, 1u);
}

TEST(cCountInRangeRGBFunctorTest, TheStationsReportAnInvalidImage)
{
    struct Case {
        const char* station;
        const char* functor;
        cImgType::ImageTypes type;
    };
    for (const Case& c : {Case {"countInRange", "cCountInRangeFunctor", cImgType::UInt8},
             Case {"countInRangeRGB", "cCountInRangeRGBFunctor", cImgType::RGB24}}) {
        StationHarness harness(
            cStation::create(QStringLiteral("ipp/image/statistics/") + QString::fromLatin1(c.station)));
        harness.feed("img", cImg(c.type, 0, 3), 10);
        harness.runAll();
        ASSERT_EQ(harness.errors().size(), 1) << c.station;
        EXPECT_EQ(harness.errors().at(0).getMessage(),
            QString::fromLatin1(c.functor) + QStringLiteral("::operator (): Invalid image."));
        EXPECT_TRUE(harness.outputs().isEmpty());
    }
}
