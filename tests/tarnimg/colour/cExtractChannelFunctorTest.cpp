#include "support/StationHarness.h"
#include "support/images.h"
#include "support/messageOf.h"

#include <gtest/gtest.h>
#include <tarnimg/tarnimg.h>
#include <vector>

namespace {

cImg channelOf(const cImg& i_image, unsigned i_channel)
{
    cExtractChannelFunctor functor;
    functor.setChannelID(i_channel);
    return functor(i_image);
}

/** The channel pixel by pixel, from the definition of an address. */
template <class T> cImg expectedChannel(const cImg& i_image, cImgType::ImageTypes i_type, unsigned i_channel)
{
    return generateImage(i_type, i_image.getWidth(), i_image.getHeight(), [&](unsigned x, unsigned y) {
        T value;
        std::memcpy(&value,
            i_image.getConstData() + std::size_t(y) * i_image.getYPitch() + x * i_image.getXPitch()
                + i_channel * sizeof(T),
            sizeof(T));
        return value;
    });
}

/** An image of a type with every number of channels that it can have, and as a view with padded rows. */
template <class T>
void expectEveryChannel(cImgType::ImageTypes i_type, cImgType::ImageTypes i_result,
    const std::vector<unsigned>& i_channelCounts, bool i_padded)
{
    for (const unsigned channels : i_channelCounts) {
        cImg image = makeRandomImage(i_type, 45, 7, channels);
        if (i_padded)
            image = cImg(image, false, cRect<int>(2, 1, 40, 5));
        image.setRange(10, 90);
        for (unsigned channel = 0; channel < channels; ++channel) {
            SCOPED_TRACE(image.getImgType().getName().toStdString() + " " + std::to_string(channel) + " of "
                + std::to_string(channels));
            const cImg result = channelOf(image, channel);
            EXPECT_TRUE(samePixels(result, expectedChannel<T>(image, i_result, channel)));
            EXPECT_EQ(result.getNumChannels(), 1u);
            EXPECT_EQ(result.getRange().getLow(), 10);
            EXPECT_EQ(result.getRange().getHigh(), 90);
        }
    }
}

} // namespace

TEST(cExtractChannelFunctorTest, EveryChannelOfEveryTypeComesOutAsItIs)
{
    for (const bool padded : {false, true}) {
        expectEveryChannel<quint8>(cImgType::RGB24, cImgType::UInt8, {3}, padded);
        expectEveryChannel<quint8>(cImgType::RGB32, cImgType::UInt8, {4}, padded);
        expectEveryChannel<qint16>(cImgType::Gradient16, cImgType::SInt16, {2}, padded);
        expectEveryChannel<qint32>(cImgType::Gradient32, cImgType::SInt32, {2}, padded);
        expectEveryChannel<quint8>(cImgType::UInt8, cImgType::UInt8, {1, 3, 4}, padded);
        expectEveryChannel<quint16>(cImgType::UInt16, cImgType::UInt16, {1, 3, 4}, padded);
        expectEveryChannel<qint16>(cImgType::SInt16, cImgType::SInt16, {1, 3, 4}, padded);
        expectEveryChannel<qint32>(cImgType::SInt32, cImgType::SInt32, {1, 3, 4}, padded);
        expectEveryChannel<float>(cImgType::Float32, cImgType::Float32, {1, 3, 4}, padded);
    }
    expectEveryChannel<qint8>(cImgType::SInt8, cImgType::SInt8, {1, 2, 3, 4, 5}, false);
    expectEveryChannel<quint32>(cImgType::UInt32, cImgType::UInt32, {1, 2, 3, 4, 5}, false);
    expectEveryChannel<double>(cImgType::Float64, cImgType::Float64, {1, 2, 3, 4, 5}, false);
    expectEveryChannel<quint8>(cImgType::UInt8, cImgType::UInt8, {2, 5}, false);
    expectEveryChannel<quint16>(cImgType::UInt16, cImgType::UInt16, {2, 5}, false);
    expectEveryChannel<qint16>(cImgType::SInt16, cImgType::SInt16, {2, 5}, false);
    expectEveryChannel<qint32>(cImgType::SInt32, cImgType::SInt32, {2, 5}, false);
    expectEveryChannel<float>(cImgType::Float32, cImgType::Float32, {2, 5}, false);
}

TEST(cExtractChannelFunctorTest, AChannelThatAColourDoesNotHaveGivesNothingAndNoMessage)
{
    const auto expectNothing = [](const cImg& image, unsigned channel) {
        cImg result(cImgType::UInt8, 1, 1);
        EXPECT_EQ(messageOf([&] { result = channelOf(image, channel); }), "no failure");
        EXPECT_FALSE(result.isValid());
    };
    expectNothing(cImg(cImgType::RGB24, 4, 4), 3);
    expectNothing(cImg(cImgType::RGB32, 4, 4), 4);
    expectNothing(cImg(cImgType::Gradient16, 4, 4), 2);
    expectNothing(cImg(cImgType::Gradient32, 4, 4), 2);
    expectNothing(cImg(cImgType::RGB24, 4, 4), 0xFFFFFFFFu);
    expectNothing(cImg(cImgType::SInt64, 4, 4), 0);
    expectNothing(cImg(cImgType::Complex, 4, 4), 0);
    expectNothing(cImg(), 0);
    expectNothing(cImg(cImgType::UInt8, 0, 4), 0);
}

TEST(cExtractChannelFunctorTest, BeyondTheLastChannelLaterPixelsFollowAndThenZeros)
{
    const cImg image = makeImage<quint8>(cImgType::UInt8, {{1, 2, 3, 4, 5, 6}, {7, 8, 9, 10, 11, 12}}, 3);
    EXPECT_TRUE(samePixels(channelOf(image, 4), makeImage<quint8>(cImgType::UInt8, {{5, 8}, {11, 0}})));
    EXPECT_TRUE(samePixels(channelOf(image, 11), makeImage<quint8>(cImgType::UInt8, {{12, 0}, {0, 0}})));
    EXPECT_TRUE(samePixels(channelOf(image, 12), makeImage<quint8>(cImgType::UInt8, {{0, 0}, {0, 0}})));
    EXPECT_TRUE(
        samePixels(channelOf(image, 0xFFFFFFFFu), makeImage<quint8>(cImgType::UInt8, {{0, 0}, {0, 0}})));

    const cImg single = makeImage<quint16>(cImgType::UInt16, {{1, 2, 3}, {4, 5, 6}});
    EXPECT_TRUE(
        samePixels(channelOf(single, 1), makeImage<quint16>(cImgType::UInt16, {{2, 3, 4}, {5, 6, 0}})));
    const cImg four = makeImage<float>(cImgType::Float32, {{1, 2, 3, 4}, {5, 6, 7, 8}}, 4);
    EXPECT_TRUE(samePixels(channelOf(four, 5), makeImage<float>(cImgType::Float32, {{6}, {0}})));

    const cImg doubles = makeImage<double>(cImgType::Float64, {{1, 2}, {3, 4}}, 2);
    EXPECT_TRUE(samePixels(channelOf(doubles, 2), makeImage<double>(cImgType::Float64, {{3}, {0}})));
    EXPECT_TRUE(
        samePixels(channelOf(doubles, 0x20000000u), makeImage<double>(cImgType::Float64, {{0}, {0}})));
}

TEST(cExtractChannelFunctorTest, SomeTypesAreTakenWithoutRegardToTheRowsOfAView)
{
    cImg parent = makeImage<qint8>(cImgType::SInt8, {{1, 2, 3}, {4, 5, 6}, {7, 8, 9}});
    const cImg view(parent, false, cRect<int>(1, 1, 2, 2));
    EXPECT_TRUE(samePixels(channelOf(view, 0), makeImage<qint8>(cImgType::SInt8, {{5, 6}, {7, 8}})));
    EXPECT_TRUE(samePixels(channelOf(view, 2), makeImage<qint8>(cImgType::SInt8, {{7, 8}, {9, 0}})));
}

TEST(cExtractChannelFunctorTest, TheStationSendsAChannelWithTheAttributesAndNothingWithoutOne)
{
    StationHarness harness(cStation::create(QStringLiteral("ipp/image/dataExchange/extractChannel")));
    cObj* channel = harness.station().getParams().getSubObject(QStringLiteral("channelID"));
    cImg image = makeRandomImage(cImgType::RGB24, 6, 5);
    image.setName(QStringLiteral("part"));
    ASSERT_TRUE(channel->setFromText(QStringLiteral("2")));
    harness.feed("img", image, 1);
    harness.runAll();
    ASSERT_TRUE(channel->setFromText(QStringLiteral("3")));
    harness.feed("img", image, 2);
    harness.runAll();
    const auto results = harness.values<cImg>("img");
    ASSERT_EQ(results.size(), 1);
    EXPECT_TRUE(samePixels(results[0], channelOf(image, 2)));
    EXPECT_EQ(results[0].getName(), QStringLiteral("part"));
    EXPECT_TRUE(harness.errors().isEmpty());
}
