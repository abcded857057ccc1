#include "support/StationHarness.h"
#include "support/images.h"
#include "support/messageOf.h"

#include <QPainterPath>
#include <customipp/customipp.h>
#include <gtest/gtest.h>
#include <limits>
#include <tarnimg/statistics/cFindPeaks3x3Functor.h>

namespace {

using Points = QVector<c2DPoint<int>>;

/** Nothing but 1, and single pixels of other values. */
template <class T>
cImg flat(cImgType::ImageTypes i_type, std::initializer_list<std::pair<c2DPoint<int>, T>> i_pixels)
{
    cImg image = generateImage(i_type, 30, 8, [](unsigned, unsigned) { return T(1); });
    for (const auto& [point, value] : i_pixels)
        image.setPixel<T>(unsigned(point.getX()), unsigned(point.getY()), value);
    return image;
}

cImg someFloats()
{
    return flat<float>(cImgType::Float32,
        {{{20, 2}, 5}, {{3, 2}, 7}, {{4, 3}, 9}, {{10, 6}, 1.5f}, {{0, 5}, 100}, {{15, 0}, 100}, {{8, 4}, 6},
            {{9, 4}, 6}});
}

cFindPeaks3x3Functor functor(float i_threshold, unsigned i_maxPeaks = 10, unsigned i_border = 1)
{
    cFindPeaks3x3Functor result;
    result.setThreshold(i_threshold);
    result.setMaxPeaks(i_maxPeaks);
    result.setBorder(i_border);
    return result;
}

StationHarness* harnessWithout(const QStringList& i_unconnected = {})
{
    return new StationHarness(
        cStation::create(QStringLiteral("ipp/image/statistics/findpeaks3x3")), i_unconnected);
}

} // namespace

TEST(cFindPeaks3x3FunctorTest, PeaksComeRowByRow)
{
    // (3, 2) has a greater pixel at its corner; (8, 4) and (9, 4) are equal; the rim does not count.
    EXPECT_EQ(functor(0)(someFloats()), (Points {{20, 2}, {4, 3}, {10, 6}}));
    EXPECT_EQ(functor(1.5f)(someFloats()), (Points {{20, 2}, {4, 3}}));
    EXPECT_EQ(functor(0, 10, 0)(someFloats()), (Points {{15, 0}, {20, 2}, {4, 3}, {0, 5}, {10, 6}}));
    EXPECT_EQ(functor(0, 10, 2)(someFloats()), (Points {{20, 2}, {4, 3}}));
}

TEST(cFindPeaks3x3FunctorTest, TheNormSaysWhichNeighboursCountAndAnUnknownKeyIsTheFirst)
{
    cFindPeaks3x3Functor fourNeighbours = functor(0);
    fourNeighbours.setNorm(QStringLiteral("NormL1"));
    EXPECT_EQ(fourNeighbours(someFloats()), (Points {{3, 2}, {20, 2}, {4, 3}, {10, 6}}));
    cFindPeaks3x3Functor unknown = functor(0);
    unknown.setNorm(QStringLiteral("NormL7"));
    EXPECT_EQ(unknown(someFloats()), functor(0)(someFloats()));
}

TEST(cFindPeaks3x3FunctorTest, TheThresholdIsTruncatedForIntegers)
{
    const cImg image = flat<qint32>(cImgType::SInt32, {{{5, 5}, 6}, {{9, 3}, 5}});
    EXPECT_EQ(functor(4.9f)(image), (Points {{9, 3}, {5, 5}}));
    EXPECT_EQ(functor(5.9f)(image), (Points {{5, 5}}));
    EXPECT_EQ(functor(6.0f)(image), Points());
    EXPECT_EQ(functor(4294967296.0f)(image), (Points {{9, 3}, {5, 5}})) << "cut to 0";
}

TEST(cFindPeaks3x3FunctorTest, TheListIsAsLongAsThereArePeaksOrRoom)
{
    EXPECT_EQ(functor(0, 1)(someFloats()), (Points {{20, 2}}));
    EXPECT_EQ(functor(0, 2)(someFloats()), (Points {{20, 2}, {4, 3}}));
    EXPECT_EQ(functor(0, std::numeric_limits<unsigned>::max())(someFloats()).size(), 3);
    EXPECT_EQ(functor(1000)(someFloats()), Points());
}

TEST(cFindPeaks3x3FunctorTest, AHugeBorderLeavesNothing)
{
    for (const unsigned border : {4u, 15u, 2147483647u, 2147483648u, 4294967295u})
        EXPECT_EQ(functor(0, 10, border)(someFloats()), Points()) << border;
}

TEST(cFindPeaks3x3FunctorTest, WhatFailsSaysSo)
{
    const std::string name = "cFindPeaks3x3Functor::operator ()";
    EXPECT_EQ(messageOf([] { functor(0, 0)(cImg()); }), name + ": Invalid image.");
    EXPECT_EQ(messageOf([] { functor(0, 0)(cImg(cImgType::UInt8, 3, 3)); }),
        name + ": Unsupported image format (UInt8) or channel count (1).");
    EXPECT_EQ(messageOf([] { functor(0, 0)(cImg(cImgType::SInt32, 3, 3, 2)); }),
        name + ": Unsupported image format (SInt32) or channel count (2).");
    EXPECT_EQ(messageOf([] { functor(0, 0)(cImg(cImgType::SInt32, 3, 3)); }),
        name + ": maxPeaks must be > 0 and norm must be < 2.");
    unsigned char memory[2 * 13] = {};
    EXPECT_EQ(messageOf([&] { functor(0)(cImg(cImgType::SInt32, 3, 2, 4, 13, memory, {})); }),
        name + ": " + ippGetStatusString(ippStsNotEvenStepErr))
        << "the second row begins at an odd byte";
}

TEST(cFindPeaks3x3StationTest, PeaksComeAsPointsAndAsCrosses)
{
    const std::unique_ptr<StationHarness> harness(harnessWithout());
    harness->feed("img", flat<float>(cImgType::Float32, {{{20, 2}, 5}, {{4, 3}, 9}}), 6);
    harness->runAll();
    ASSERT_EQ(harness->outputs().size(), 2);
    EXPECT_EQ(harness->outputs().at(0).port, QStringLiteral("peaks"));
    EXPECT_EQ(harness->outputs().at(1).port, QStringLiteral("path"));
    EXPECT_EQ(harness->outputs().at(0).stamp.getStamp(), 6);
    EXPECT_EQ(harness->outputs().at(1).stamp.getStamp(), 6);
    EXPECT_EQ(harness->values<Points>("peaks").at(0), (Points {{20, 2}, {4, 3}}));
    QPainterPath crosses;
    crosses.moveTo(19, 1);
    crosses.lineTo(22, 4);
    crosses.moveTo(19, 4);
    crosses.lineTo(22, 1);
    crosses.moveTo(3, 2);
    crosses.lineTo(6, 5);
    crosses.moveTo(3, 5);
    crosses.lineTo(6, 2);
    EXPECT_EQ(harness->values<QPainterPath>("path").at(0), crosses);
}

TEST(cFindPeaks3x3StationTest, WithoutPeaksTheListAndThePathAreEmpty)
{
    const std::unique_ptr<StationHarness> harness(harnessWithout());
    harness->feed("img", flat<float>(cImgType::Float32, {}), 1);
    harness->runAll();
    ASSERT_EQ(harness->values<Points>("peaks").size(), 1);
    EXPECT_TRUE(harness->values<Points>("peaks").at(0).isEmpty());
    ASSERT_EQ(harness->values<QPainterPath>("path").size(), 1);
    EXPECT_TRUE(harness->values<QPainterPath>("path").at(0).isEmpty());
}

TEST(cFindPeaks3x3StationTest, AnInvalidImageIsReported)
{
    const std::unique_ptr<StationHarness> harness(harnessWithout());
    harness->feed("img", cImg(cImgType::SInt32, 0, 3), 1);
    harness->runAll();
    ASSERT_EQ(harness->errors().size(), 1);
    EXPECT_EQ(harness->errors().at(0).getMessage(),
        QStringLiteral("cFindPeaks3x3Functor::operator (): Invalid image."));
    EXPECT_TRUE(harness->outputs().isEmpty());
}

TEST(cFindPeaks3x3StationTest, OneWantedOutputIsEnoughAndNoneComputesNothing)
{
    const std::unique_ptr<StationHarness> pathAlone(harnessWithout({QStringLiteral("peaks")}));
    pathAlone->feed("img", someFloats(), 1);
    pathAlone->runAll();
    EXPECT_EQ(pathAlone->values<QPainterPath>("path").size(), 1);

    const std::unique_ptr<StationHarness> peaksAlone(harnessWithout({QStringLiteral("path")}));
    peaksAlone->feed("img", someFloats(), 1);
    peaksAlone->runAll();
    EXPECT_EQ(peaksAlone->values<Points>("peaks").size(), 1);

    const std::unique_ptr<StationHarness> none(
        harnessWithout({QStringLiteral("peaks"), QStringLiteral("path")}));
    none->station().getParams().getSubObject(QStringLiteral("maxPeaks"))->fromVariant(0u);
    none->feed("img", someFloats(), 1);
    none->runAll();
    EXPECT_TRUE(none->errors().isEmpty());
    EXPECT_EQ(none->fates("img").gated, 1u);
}
