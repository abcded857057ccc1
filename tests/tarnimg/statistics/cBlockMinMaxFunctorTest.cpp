#include "support/StationHarness.h"
#include "support/images.h"
#include "support/messageOf.h"

#include <QVariant>
#include <algorithm>
#include <cmath>
#include <gtest/gtest.h>
#include <tarnimg/statistics/cBlockMinMaxFunctor.h>

namespace {

struct Blocks {
    cImg least, greatest;
    QVariant leastOfAll, greatestOfAll;
};

Blocks blocksOf(const cImg& i_image, const QSize& i_blockSize = QSize(3, 3))
{
    Blocks blocks;
    cBlockMinMaxFunctor functor;
    functor.setBlockSize(i_blockSize);
    functor(i_image, &blocks.least, &blocks.greatest, blocks.leastOfAll, blocks.greatestOfAll);
    return blocks;
}

template <class T> void expectDefinition(cImgType::ImageTypes i_type, QMetaType::Type i_metaType)
{
    const cImg image = makeRandomImage(i_type, 23, 11);
    for (const QSize& size : {QSize(3, 3), QSize(1, 1), QSize(4, 11), QSize(23, 2), QSize(100, 100)}) {
        const unsigned width = unsigned(size.width()), height = unsigned(size.height());
        const auto extreme = [&](unsigned column, unsigned row, bool greatest) {
            T best = image.getPixel<T>(column * width, row * height);
            for (unsigned y = row * height; y < std::min((row + 1) * height, 11u); ++y)
                for (unsigned x = column * width; x < std::min((column + 1) * width, 23u); ++x) {
                    const T pixel = image.getPixel<T>(x, y);
                    best = greatest ? std::max(best, pixel) : std::min(best, pixel);
                }
            return best;
        };
        const unsigned columns = (23 + width - 1) / width, rows = (11 + height - 1) / height;
        const Blocks blocks = blocksOf(image, size);
        EXPECT_TRUE(
            samePixels(blocks.least, generateImage(i_type, columns, rows, [&](unsigned x, unsigned y) {
                return extreme(x, y, false);
            })));
        EXPECT_TRUE(
            samePixels(blocks.greatest, generateImage(i_type, columns, rows, [&](unsigned x, unsigned y) {
                return extreme(x, y, true);
            })));
        const Blocks whole = blocksOf(image, QSize(23, 11));
        EXPECT_EQ(blocks.leastOfAll.userType(), i_metaType);
        EXPECT_EQ(blocks.greatestOfAll.userType(), i_metaType);
        EXPECT_EQ(blocks.leastOfAll.value<T>(), whole.least.getPixel<T>(0, 0));
        EXPECT_EQ(blocks.greatestOfAll.value<T>(), whole.greatest.getPixel<T>(0, 0));
    }
}

} // namespace

TEST(cBlockMinMaxFunctorTest, EachBlockOfEachTypeGivesItsExtremes)
{
    expectDefinition<quint8>(cImgType::UInt8, QMetaType::UChar);
    expectDefinition<quint16>(cImgType::UInt16, QMetaType::UShort);
    expectDefinition<qint16>(cImgType::SInt16, QMetaType::Short);
    expectDefinition<float>(cImgType::Float32, QMetaType::Float);
}

TEST(cBlockMinMaxFunctorTest, TenByTenInBlocksOfThreeGivesFourByFour)
{
    const Blocks blocks = blocksOf(makeRandomImage(cImgType::UInt8, 10, 10));
    EXPECT_EQ(blocks.least.getSize(), QSize(4, 4));
    EXPECT_EQ(blocks.greatest.getSize(), QSize(4, 4));
}

TEST(cBlockMinMaxFunctorTest, AnImageThatIsNotWantedIsNotMade)
{
    const cImg image = makeRandomImage(cImgType::UInt16, 10, 10);
    const Blocks both = blocksOf(image);
    Blocks one;
    cBlockMinMaxFunctor()(image, &one.least, nullptr, one.leastOfAll, one.greatestOfAll);
    EXPECT_TRUE(samePixels(one.least, both.least));
    EXPECT_EQ(one.greatestOfAll, both.greatestOfAll);
    cBlockMinMaxFunctor()(image, nullptr, &one.greatest, one.leastOfAll, one.greatestOfAll);
    EXPECT_TRUE(samePixels(one.greatest, both.greatest));
    Blocks none;
    cBlockMinMaxFunctor()(image, nullptr, nullptr, none.leastOfAll, none.greatestOfAll);
    EXPECT_EQ(none.leastOfAll, both.leastOfAll);
}

TEST(cBlockMinMaxFunctorTest, OnlyTheRectangleOfAViewCounts)
{
    cImg parent(cImgType::UInt8, 9, 9);
    parent.getImgType().fill(parent, 255);
    const cImg view(parent, false, cRect<int>(2, 3, 5, 4));
    cImg inside(view);
    for (unsigned y = 0; y < 4; ++y)
        for (unsigned x = 0; x < 5; ++x)
            const_cast<unsigned char*>(inside.getConstData())[y * inside.getYPitch() + x] = 7;
    const Blocks blocks = blocksOf(view, QSize(2, 2));
    EXPECT_EQ(blocks.greatestOfAll.toInt(), 7);
    EXPECT_EQ(blocks.least.getSize(), QSize(3, 2));
}

TEST(cBlockMinMaxFunctorTest, TheResultMayReplaceTheSource)
{
    cImg image = makeRandomImage(cImgType::UInt8, 10, 10);
    const Blocks expected = blocksOf(image);
    QVariant least, greatest;
    cBlockMinMaxFunctor()(image, &image, nullptr, least, greatest);
    EXPECT_TRUE(samePixels(image, expected.least));
}

TEST(cBlockMinMaxFunctorTest, WhatFailsSaysSoAndLeavesTheResults)
{
    const std::string name = "cBlockMinMaxFunctor::operator ()";
    EXPECT_EQ(messageOf([] { blocksOf(cImg()); }), name + ": Invalid image.");
    EXPECT_EQ(messageOf([] { blocksOf(cImg(cImgType::SInt32, 2, 2)); }),
        name + ": Unsupported image format (SInt32) or channel count (1).");
    EXPECT_EQ(messageOf([] { blocksOf(cImg(cImgType::UInt8, 2, 2, 3)); }),
        name + ": Unsupported image format (UInt8) or channel count (3).");
    for (const QSize& size : {QSize(0, 3), QSize(3, 0), QSize(-1, 3), QSize(3, -2147483647 - 1), QSize()})
        EXPECT_EQ(messageOf([&] { blocksOf(cImg(cImgType::UInt8, 2, 2), size); }),
            name + ": blockSize must be > 0.");
    cImg least = makeRandomImage(cImgType::UInt8, 2, 2);
    const cImg before = least;
    QVariant low(1), high(2);
    cBlockMinMaxFunctor functor;
    functor.setBlockSize(QSize(0, 0));
    EXPECT_NE(messageOf([&] { functor(before, &least, nullptr, low, high); }), "no failure");
    EXPECT_TRUE(least == before);
    EXPECT_EQ(low, QVariant(1));
}

TEST(cBlockMinMaxStationTest, BothImagesComeWithTheStampOfTheirSource)
{
    const cImg image = makeRandomImage(cImgType::SInt16, 10, 7);
    const Blocks expected = blocksOf(image);
    StationHarness harness(cStation::create(QStringLiteral("ipp/image/statistics/blockMinMax")));
    harness.feed("img", image, 12);
    harness.runAll();
    ASSERT_EQ(harness.outputs().size(), 2);
    EXPECT_EQ(harness.outputs().at(0).port, QStringLiteral("localMin"));
    EXPECT_EQ(harness.outputs().at(1).port, QStringLiteral("localMax"));
    EXPECT_EQ(harness.outputs().at(0).stamp.getStamp(), 12);
    EXPECT_EQ(harness.outputs().at(1).stamp.getStamp(), 12);
    EXPECT_TRUE(samePixels(harness.values<cImg>("localMin").at(0), expected.least));
    EXPECT_TRUE(samePixels(harness.values<cImg>("localMax").at(0), expected.greatest));
    EXPECT_TRUE(harness.errors().isEmpty());
}

TEST(cBlockMinMaxStationTest, OneWantedOutputIsEnoughAndNoneComputesNothing)
{
    const cImg image = makeRandomImage(cImgType::UInt8, 10, 7);
    StationHarness one(
        cStation::create(QStringLiteral("ipp/image/statistics/blockMinMax")), {QStringLiteral("localMin")});
    one.feed("img", image, 1);
    one.runAll();
    EXPECT_EQ(one.values<cImg>("localMax").size(), 1);

    StationHarness none(cStation::create(QStringLiteral("ipp/image/statistics/blockMinMax")),
        {QStringLiteral("localMin"), QStringLiteral("localMax")});
    none.station().getParams().getSubObject(QStringLiteral("blockSize"))->fromVariant(QSize(0, 0));
    none.feed("img", image, 1);
    none.runAll();
    EXPECT_TRUE(none.errors().isEmpty());
    EXPECT_EQ(none.fates("img").gated, 1u);
}

TEST(cBlockMinMaxStationTest, AnInvalidImageIsReported)
{
    StationHarness harness(cStation::create(QStringLiteral("ipp/image/statistics/blockMinMax")));
    harness.feed("img", cImg(), 1);
    harness.runAll();
    ASSERT_EQ(harness.errors().size(), 1);
    EXPECT_EQ(harness.errors().at(0).getMessage(),
        QStringLiteral("cBlockMinMaxFunctor::operator (): Invalid image."));
    EXPECT_TRUE(harness.outputs().isEmpty());
}
