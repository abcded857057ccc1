#include "support/StationHarness.h"
#include "support/images.h"
#include "support/messageOf.h"

#include <cstring>
#include <customipp/customipp.h>
#include <gtest/gtest.h>
#include <tarnimg/statistics/cIntegralFunctor.h>

namespace {

cIntegralFunctor functor(float i_offset, bool i_floatMode)
{
    cIntegralFunctor result;
    result.setOffset(i_offset);
    result.setFloatMode(i_floatMode);
    return result;
}

/** The sums over what a function gives for each pixel. */
template <class T, class Function>
cImg sumsOf(
    cImgType::ImageTypes i_type, unsigned i_width, unsigned i_height, double i_offset, Function&& i_pixelAt)
{
    return generateImage(i_type, i_width + 1, i_height + 1, [&](unsigned column, unsigned row) {
        double sum = 0;
        for (unsigned y = 0; y < row; ++y)
            for (unsigned x = 0; x < column; ++x)
                sum += i_pixelAt(x, y);
        return T(sum + i_offset);
    });
}

} // namespace

TEST(cIntegralFunctorTest, EachPixelIsTheSumOfAllAboveAndToTheLeft)
{
    const cImg image = makeRandomImage(cImgType::UInt8, 37, 9);
    const auto pixelAt = [&](unsigned x, unsigned y) { return image.getPixel<quint8>(x, y); };
    EXPECT_TRUE(samePixels(cIntegralFunctor()(image), sumsOf<qint32>(cImgType::SInt32, 37, 9, 0, pixelAt)));
    EXPECT_TRUE(
        samePixels(functor(-7.9f, false)(image), sumsOf<qint32>(cImgType::SInt32, 37, 9, -7, pixelAt)));
    EXPECT_TRUE(samePixels(functor(0, true)(image), sumsOf<float>(cImgType::Float32, 37, 9, 0, pixelAt)));
    EXPECT_TRUE(
        samePixels(functor(0.25f, true)(image), sumsOf<float>(cImgType::Float32, 37, 9, 0.25, pixelAt)));
}

TEST(cIntegralFunctorTest, OnePixelGivesTwoByTwo)
{
    EXPECT_TRUE(samePixels(cIntegralFunctor()(makeImage<quint8>(cImgType::UInt8, {{9}})),
        makeImage<qint32>(cImgType::SInt32, {{0, 0}, {0, 9}})));
}

TEST(cIntegralFunctorTest, FloatsAreSummedWithoutAnOffsetWhateverTheMode)
{
    const cImg image = generateImage(
        cImgType::Float32, 21, 5, [](unsigned x, unsigned y) { return 0.25f * float(x) - 3.0f * float(y); });
    const cImg expected = sumsOf<float>(cImgType::Float32, 21, 5, 0,
        [&](unsigned x, unsigned y) { return double(image.getPixel<float>(x, y)); });
    EXPECT_TRUE(samePixels(functor(5, false)(image), expected));
    EXPECT_TRUE(samePixels(functor(5, true)(image), expected));
}

TEST(cIntegralFunctorTest, SignedIntegersAreReadByteByByte)
{
    const cImg image = makeRandomImage(cImgType::SInt32, 13, 4);
    const auto byteAt
        = [&](unsigned x, unsigned y) { return image.getConstData()[y * image.getYPitch() + x]; };
    EXPECT_TRUE(samePixels(functor(3, false)(image), sumsOf<qint32>(cImgType::SInt32, 13, 4, 3, byteAt)));
    EXPECT_TRUE(samePixels(functor(0.5f, true)(image), sumsOf<float>(cImgType::Float32, 13, 4, 0.5, byteAt)));
}

TEST(cIntegralFunctorTest, AnOffsetBeyondTheIntegersIsCutToTheirWidth)
{
    const cImg image = makeImage<quint8>(cImgType::UInt8, {{9}});
    const auto corner = [&](float offset) { return functor(offset, false)(image).getPixel<qint32>(0, 0); };
    EXPECT_EQ(corner(2147483648.0f), -2147483647 - 1);
    EXPECT_EQ(corner(4294967296.0f * 3 + 2048.0f), 2048);
    EXPECT_EQ(corner(-4294967296.0f), 0);
    EXPECT_EQ(corner(1e30f), 0);
    EXPECT_EQ(corner(std::numeric_limits<float>::infinity()), 0);
    EXPECT_EQ(corner(std::numeric_limits<float>::quiet_NaN()), 0);
}

TEST(cIntegralFunctorTest, OnlyTheRectangleOfAViewCounts)
{
    const cImg parent = makeRandomImage(cImgType::UInt8, 30, 9);
    const cImg view(parent, false, cRect<int>(5, 2, 20, 6));
    EXPECT_TRUE(samePixels(cIntegralFunctor()(view), cIntegralFunctor()(view.clone())));
    EXPECT_EQ(cIntegralFunctor()(view).getSize(), QSize(21, 7));
}

TEST(cIntegralFunctorTest, WhatFailsSaysSo)
{
    const std::string name = "cIntegralFunctor::operator ()";
    EXPECT_EQ(messageOf([] { cIntegralFunctor()(cImg()); }), name + ": Invalid image.");
    EXPECT_EQ(messageOf([] { cIntegralFunctor()(cImg(cImgType::UInt16, 2, 2)); }),
        name + ": Unsupported image format (UInt16) or channel count (1).");
    EXPECT_EQ(messageOf([] { cIntegralFunctor()(cImg(cImgType::Float32, 2, 2, 2)); }),
        name + ": Unsupported image format (Float32) or channel count (2).");
    unsigned char memory[18] = {};
    const cImg odd(cImgType::Float32, 2, 2, 4, 9, memory, {}); // the second row begins at an odd byte
    EXPECT_EQ(
        messageOf([&] { cIntegralFunctor()(odd); }), name + ": " + ippGetStatusString(ippStsNotEvenStepErr));
}

TEST(cIntegralStationTest, TheResultCarriesTheAttributesOfTheImage)
{
    cImg image = makeRandomImage(cImgType::UInt8, 6, 5);
    image.setName(QStringLiteral("part"));
    StationHarness harness(cStation::create(QStringLiteral("ipp/image/statistics/integral")));
    harness.station().getParams().getSubObject(QStringLiteral("floatMode"))->fromVariant(true);
    harness.station().getParams().getSubObject(QStringLiteral("offset"))->fromVariant(0.5f);
    harness.feed("img", image, 3);
    harness.runAll();
    ASSERT_EQ(harness.values<cImg>("img").size(), 1);
    const cImg result = harness.values<cImg>("img").at(0);
    EXPECT_TRUE(samePixels(result, functor(0.5f, true)(image)));
    EXPECT_EQ(result.getName(), QStringLiteral("part"));
}
