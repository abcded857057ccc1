#include "support/StationHarness.h"
#include "support/images.h"
#include "support/messageOf.h"

#include <gtest/gtest.h>
#include <tarnimg/statistics/cSqrIntegralFunctor.h>

namespace {

struct Integrals {
    cImg sums, squares;
};

Integrals integralsOf(
    const cImg& i_image, bool i_floatMode = false, float i_offset = 0, double i_offsetSqr = 0)
{
    cSqrIntegralFunctor functor;
    functor.setFloatMode(i_floatMode);
    functor.setOffset(i_offset);
    functor.setOffsetSqr(i_offsetSqr);
    Integrals result;
    functor(i_image, result.sums, result.squares);
    return result;
}

template <class T>
cImg defined(cImgType::ImageTypes i_type, const cImg& i_image, int i_power, double i_offset)
{
    return generateImage(
        i_type, i_image.getWidth() + 1, i_image.getHeight() + 1, [&](unsigned column, unsigned row) {
            double sum = 0;
            for (unsigned y = 0; y < row; ++y)
                for (unsigned x = 0; x < column; ++x) {
                    const double pixel = i_image.getPixel<quint8>(x, y);
                    sum += i_power == 2 ? pixel * pixel : pixel;
                }
            return T(sum + i_offset);
        });
}

} // namespace

TEST(cSqrIntegralFunctorTest, SumsOfPixelsAndSquares)
{
    const cImg image = makeRandomImage(cImgType::UInt8, 33, 7);
    const Integrals integers = integralsOf(image, false, 4.7f, -0.25);
    EXPECT_TRUE(samePixels(integers.sums, defined<qint32>(cImgType::SInt32, image, 1, 4)));
    EXPECT_TRUE(samePixels(integers.squares, defined<double>(cImgType::Float64, image, 2, -0.25)));
    const Integrals floats = integralsOf(image, true, 4.75f, 1e6);
    EXPECT_TRUE(samePixels(floats.sums, defined<float>(cImgType::Float32, image, 1, 4.75)));
    EXPECT_TRUE(samePixels(floats.squares, defined<double>(cImgType::Float64, image, 2, 1e6)));
}

TEST(cSqrIntegralFunctorTest, AResultMayReplaceTheSource)
{
    cImg image = makeRandomImage(cImgType::UInt8, 12, 3);
    const Integrals expected = integralsOf(image);
    cImg squares;
    cSqrIntegralFunctor()(image, image, squares);
    EXPECT_TRUE(samePixels(image, expected.sums));
    EXPECT_TRUE(samePixels(squares, expected.squares));
}

TEST(cSqrIntegralFunctorTest, WhatFailsSaysSoAndLeavesTheResults)
{
    const std::string name = "cSqrIntegralFunctor::operator ()";
    EXPECT_EQ(messageOf([] { integralsOf(cImg()); }), name + ": Invalid image.");
    EXPECT_EQ(messageOf([] { integralsOf(cImg(cImgType::Float32, 2, 2)); }),
        name + ": Unsupported image format (Float32) or channel count (1).");
    EXPECT_EQ(messageOf([] { integralsOf(cImg(cImgType::UInt8, 2, 2, 2)); }),
        name + ": Unsupported image format (UInt8) or channel count (2).");
    cImg sums = makeRandomImage(cImgType::UInt8, 2, 2), squares;
    const cImg before = sums;
    EXPECT_NE(messageOf([&] { cSqrIntegralFunctor()(cImg(), sums, squares); }), "no failure");
    EXPECT_TRUE(sums == before);
}

TEST(cSqrIntegralStationTest, SumsComeBeforeSquaresWithTheStampOfTheirSource)
{
    const cImg image = makeRandomImage(cImgType::UInt8, 12, 3);
    StationHarness harness(cStation::create(QStringLiteral("ipp/image/statistics/sqrIntegral")));
    harness.station().getParams().getSubObject(QStringLiteral("offsetSqr"))->fromVariant(2.5);
    harness.feed("img", image, 8);
    harness.runAll();
    ASSERT_EQ(harness.outputs().size(), 2);
    EXPECT_EQ(harness.outputs().at(0).port, QStringLiteral("integral"));
    EXPECT_EQ(harness.outputs().at(1).port, QStringLiteral("sqrIntegral"));
    EXPECT_EQ(harness.outputs().at(0).stamp.getStamp(), 8);
    EXPECT_EQ(harness.outputs().at(1).stamp.getStamp(), 8);
    EXPECT_TRUE(samePixels(harness.values<cImg>("integral").at(0), integralsOf(image).sums));
    EXPECT_TRUE(
        samePixels(harness.values<cImg>("sqrIntegral").at(0), integralsOf(image, false, 0, 2.5).squares));
}

TEST(cSqrIntegralStationTest, OneWantedOutputIsEnoughAndNoneComputesNothing)
{
    StationHarness one(
        cStation::create(QStringLiteral("ipp/image/statistics/sqrIntegral")), {QStringLiteral("integral")});
    one.feed("img", makeRandomImage(cImgType::UInt8, 3, 3), 1);
    one.runAll();
    EXPECT_EQ(one.values<cImg>("sqrIntegral").size(), 1);

    StationHarness none(cStation::create(QStringLiteral("ipp/image/statistics/sqrIntegral")),
        {QStringLiteral("integral"), QStringLiteral("sqrIntegral")});
    none.feed("img", makeRandomImage(cImgType::UInt8, 3, 3), 1);
    none.runAll();
    EXPECT_EQ(none.fates("img").gated, 1u);
}

TEST(cSqrIntegralStationTest, AnInvalidImageIsReported)
{
    StationHarness harness(cStation::create(QStringLiteral("ipp/image/statistics/sqrIntegral")));
    harness.feed("img", cImg(), 1);
    harness.runAll();
    ASSERT_EQ(harness.errors().size(), 1);
    EXPECT_EQ(harness.errors().at(0).getMessage(),
        QStringLiteral("cSqrIntegralFunctor::operator (): Invalid image."));
    EXPECT_TRUE(harness.outputs().isEmpty());
}
