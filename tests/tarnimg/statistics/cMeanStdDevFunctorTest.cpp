#include "Parametrised.h"

#include "support/FencedMemory.h"
#include "support/StationHarness.h"
#include "support/images.h"
#include "support/messageOf.h"

#include <cmath>
#include <customipp/customipp.h>
#include <tarnimg/statistics/cMeanStdDevFunctor.h>

namespace {

using MeanStdDev = Parametrised<cMeanStdDevFunctor>;

const cImg& rgb()
{
    static const cImg s_image
        = makeImage<quint8>(cImgType::RGB24, {{1, 10, 7, 2, 10, 7}, {3, 10, 9, 4, 10, 9}});
    return s_image;
}

struct Result {
    double mean = -1;
    double stdDev = -1;
    bool operator==(const Result&) const = default;
};

template <class Functor, class... Images> Result resultOf(const Functor& i_functor, const Images&... i_images)
{
    Result result;
    i_functor(i_images..., result.mean, result.stdDev);
    return result;
}

cStation* station() { return cStation::create(QStringLiteral("ipp/image/statistics/meanStdDev")); }

} // namespace

TEST(cMeanStdDevFunctorTest, GivesThePopulationsValues)
{
    const cMeanStdDevFunctor functor;
    const Result expected {2.5, std::sqrt(1.25)};
    EXPECT_EQ(resultOf(functor, makeImage<quint8>(cImgType::UInt8, {{1, 2}, {3, 4}})), expected);
    EXPECT_EQ(resultOf(functor, makeImage<quint16>(cImgType::UInt16, {{1, 2}, {3, 4}})), expected);
    EXPECT_EQ(resultOf(functor, makeImage<float>(cImgType::Float32, {{1, 2}, {3, 4}})), expected);
    EXPECT_EQ(resultOf(functor, rgb()), expected) << "red unless told otherwise";
}

TEST(cMeanStdDevFunctorTest, TheChannelOfInterestCountsFromOne)
{
    const cImg mask = makeImage<quint8>(cImgType::UInt8, {{1, 255}, {2, 128}});
    const Result expected[] = {{2.5, std::sqrt(1.25)}, {10, 0}, {8, 1}};
    MeanStdDev functor;
    for (int channel = 1; channel <= 3; ++channel) {
        functor.set("channelOfInterest", QString::number(channel));
        EXPECT_EQ(resultOf(functor, rgb()), expected[channel - 1]);
        EXPECT_EQ(resultOf(functor, rgb(), mask), expected[channel - 1]);
    }
    const std::string message
        = std::string("cMeanStdDevFunctor::operator (): ") + ippGetStatusString(ippStsCOIErr);
    for (const char* channel : {"0", "4", "4294967295"}) {
        functor.set("channelOfInterest", QString::fromLatin1(channel));
        EXPECT_EQ(messageOf([&] { resultOf(functor, rgb()); }), message) << channel;
        EXPECT_EQ(messageOf([&] { resultOf(functor, rgb(), mask); }), message) << channel;
    }
    EXPECT_EQ(resultOf(functor, mask), resultOf(cMeanStdDevFunctor(), mask))
        << "of one channel it is not read";
}

TEST(cMeanStdDevFunctorTest, AMaskSelectsThePixelsWhereItIsNotZero)
{
    const cMeanStdDevFunctor functor;
    const cImg mask = makeImage<quint8>(cImgType::UInt8, {{0, 1}, {0, 255}});
    const cImg empty = makeImage<quint8>(cImgType::UInt8, {{0, 0}, {0, 0}});
    for (const cImg& image : {makeImage<quint8>(cImgType::UInt8, {{9, 2}, {9, 4}}),
             makeImage<quint16>(cImgType::UInt16, {{9, 2}, {9, 4}}),
             makeImage<float>(cImgType::Float32, {{NAN, 2}, {9, 4}}), rgb()}) {
        EXPECT_EQ(resultOf(functor, image, mask), (Result {3, 1})) << image.getImgType().getTypeId();
        EXPECT_EQ(resultOf(functor, image, empty), (Result {0, 0})) << image.getImgType().getTypeId();
    }
    // The bytes of a mask of any type: here 1, 0 and 0, 1.
    const cImg words = makeImage<quint16>(cImgType::UInt16, {{0x0001, 0}, {0x0100, 0}});
    EXPECT_EQ(
        resultOf(functor, makeImage<quint8>(cImgType::UInt8, {{2, 9}, {9, 4}}), words), (Result {3, 1}));
}

TEST(cMeanStdDevFunctorTest, AMaskThatIsTooSmallIsNotReadBeyondItsEnd)
{
    const cMeanStdDevFunctor functor;
    const cImg image
        = generateImage(cImgType::UInt8, 5, 4, [](unsigned, unsigned y) { return quint8(10 * y); });
    FencedMemory memory(10, FencedMemory::AgainstEnd);
    for (unsigned i = 0; i < 10; ++i)
        memory.set<quint8>(i, 1);
    const cImg wide(cImgType::UInt8, 5, 2, 1, 5, memory.data(), {});
    EXPECT_EQ(resultOf(functor, image, wide), (Result {5, 5})) << "two rows of it";
    const std::string message
        = std::string("cMeanStdDevFunctor::operator (): ") + ippGetStatusString(ippStsStepErr);
    EXPECT_EQ(
        messageOf([&] { resultOf(functor, image, cImg(wide, false, cRect<int>(3, 0, 2, 2))); }), message);
    EXPECT_EQ(
        messageOf([&] { resultOf(functor, image, cImg(cImgType::UInt8, 2, 5, 1, 2, memory.data(), {})); }),
        message);
}

TEST(cMeanStdDevFunctorTest, RowsThatBeginAtOddBytesAreRefused)
{
    const cMeanStdDevFunctor functor;
    unsigned char memory[10] = {};
    const cImg image(cImgType::UInt16, 2, 2, 2, 5, memory, {});
    const std::string message
        = std::string("cMeanStdDevFunctor::operator (): ") + ippGetStatusString(ippStsNotEvenStepErr);
    EXPECT_EQ(messageOf([&] { resultOf(functor, image); }), message);
    EXPECT_EQ(messageOf([&] { resultOf(functor, image, cImg(cImgType::UInt8, 2, 2, 1)); }), message);
}

TEST(cMeanStdDevFunctorTest, InvalidAndUnsupportedImagesAreRefused)
{
    const cMeanStdDevFunctor functor;
    const cImg grey(cImgType::UInt8, 2, 2, 1), none, words(cImgType::SInt16, 2, 2, 1);
    EXPECT_EQ(messageOf([&] { resultOf(functor, none); }), "cMeanStdDevFunctor::operator (): Invalid image.");
    EXPECT_EQ(
        messageOf([&] { resultOf(functor, none, grey); }), "cMeanStdDevFunctor::operator (): Invalid image.");
    EXPECT_EQ(messageOf([&] { resultOf(functor, words, none); }),
        "cMeanStdDevFunctor::operator (): Invalid image.");
    const char* unsupported
        = "cMeanStdDevFunctor::operator (): Unsupported image format (SInt16) or channel count (1).";
    EXPECT_EQ(messageOf([&] { resultOf(functor, words); }), unsupported);
    EXPECT_EQ(messageOf([&] { resultOf(functor, words, grey); }), unsupported);
}

TEST(cMeanStdDevFunctorTest, TheStationSendsMeanThenDeviation)
{
    StationHarness harness(station());
    const cImg image = makeImage<quint8>(cImgType::UInt8, {{9, 2}, {9, 4}});
    harness.feed("mask", makeImage<quint8>(cImgType::UInt8, {{0, 1}, {0, 255}}), 10);
    harness.feed("img", image, 10);
    harness.runAll();
    ASSERT_EQ(harness.outputs().size(), 2);
    EXPECT_EQ(harness.outputs()[0].port, QStringLiteral("mean"));
    EXPECT_EQ(harness.outputs()[1].port, QStringLiteral("stdDev"));
    EXPECT_EQ(harness.values<double>("mean"), QVector<double> {3});
    EXPECT_EQ(harness.values<double>("stdDev"), QVector<double> {1});
    EXPECT_EQ(harness.stamps("mean"), QList<qint64> {10});
    EXPECT_EQ(harness.stamps("stdDev"), QList<qint64> {10});

    // The mask of an earlier image does not stay.
    harness.finish("mask", 11);
    harness.feed("img", image, 11);
    harness.runAll();
    EXPECT_EQ(harness.values<double>("mean"), (QVector<double> {3, 6}));
}

TEST(cMeanStdDevFunctorTest, TheStationNeedsNeitherAMaskNorBothOutputs)
{
    const cImg image = makeImage<quint8>(cImgType::UInt8, {{1, 2}, {3, 4}});
    for (const char* unwanted : {"mean", "stdDev"}) {
        StationHarness harness(station(), {QStringLiteral("mask"), QString::fromLatin1(unwanted)});
        harness.feed("img", image, 10);
        harness.runAll();
        EXPECT_EQ(harness.values<double>("mean").size() + harness.values<double>("stdDev").size(), 1);
    }
    StationHarness unasked(
        station(), {QStringLiteral("mask"), QStringLiteral("mean"), QStringLiteral("stdDev")});
    unasked.feed("img", cImg(), 10);
    unasked.runAll();
    EXPECT_TRUE(unasked.errors().isEmpty());
    EXPECT_EQ(unasked.fates("img").gated, 1u);
}

TEST(cMeanStdDevFunctorTest, TheStationReportsAnInvalidImageAndGoesOn)
{
    StationHarness harness(station(), {QStringLiteral("mask")});
    harness.feed("img", cImg(), 10);
    harness.feed("img", makeImage<quint8>(cImgType::UInt8, {{1, 2}, {3, 4}}), 11);
    harness.runAll();
    ASSERT_EQ(harness.errors().size(), 1);
    EXPECT_EQ(harness.errors().at(0).getMessage(),
        QStringLiteral("cMeanStdDevFunctor::operator (): Invalid image."));
    EXPECT_EQ(harness.stamps("mean"), QList<qint64> {11});
}
