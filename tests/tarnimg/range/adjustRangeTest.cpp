#include "support/images.h"
#include "support/rangePrinter.h"

#include <QObject>
#include <cmath>
#include <gtest/gtest.h>
#include <limits>
#include <tarnimg/cImg.h>

namespace {

cDblRange adjusted(cImg i_image)
{
    i_image.adjustRange();
    return i_image.getRange();
}

TEST(adjustRangeTest, LeastAndGreatestPixel)
{
    EXPECT_EQ(adjusted(makeImage<quint8>(cImgType::UInt8, {{7, 200}, {3, 9}})), cDblRange(3, 200));
    EXPECT_EQ(adjusted(makeImage<quint16>(cImgType::UInt16, {{7, 60000}, {3, 9}})), cDblRange(3, 60000));
    EXPECT_EQ(adjusted(makeImage<qint16>(cImgType::SInt16, {{7, -200}, {3, 9}})), cDblRange(-200, 9));
    EXPECT_EQ(adjusted(makeImage<qint32>(cImgType::SInt32, {{7, -200000}, {3, 9}})), cDblRange(-200000, 9));
    EXPECT_EQ(adjusted(makeImage<float>(cImgType::Float32, {{7, -0.5f}, {3, 9}})), cDblRange(-0.5, 9));
    EXPECT_EQ(
        adjusted(makeImage<double>(cImgType::Float64, {{7, -0.25}, {3, 1e300}})), cDblRange(-0.25, 1e300));
}

TEST(adjustRangeTest, OfWideNumbersOnlyAsManyPixelsAsARowHasBytesCount)
{
    // One column: four bytes make four rows, eight bytes eight.
    EXPECT_EQ(
        adjusted(generateImage(cImgType::SInt32, 1, 20, [](unsigned, unsigned y) { return qint32(y); })),
        cDblRange(0, 3));
    EXPECT_EQ(adjusted(generateImage(cImgType::Float64, 1, 20, [](unsigned, unsigned y) { return y + 0.5; })),
        cDblRange(0.5, 7.5));
    // With several channels each of them counts, down to the last row.
    EXPECT_EQ(adjusted(makeImage<qint32>(cImgType::SInt32, {{5, 6}, {7, 8}, {9, 10}, {-1, 3}, {4, 99}}, 2)),
        cDblRange(-1, 99));
}

TEST(adjustRangeTest, AllChannelsCountButAlpha)
{
    EXPECT_EQ(adjusted(makeImage<quint8>(cImgType::RGB24, {{10, 20, 30, 9, 40, 200}})), cDblRange(9, 200));
    EXPECT_EQ(adjusted(makeImage<quint8>(cImgType::RGB32, {{10, 20, 30, 255, 90, 40, 200, 0}})),
        cDblRange(10, 200));
    EXPECT_EQ(
        adjusted(makeImage<quint16>(cImgType::UInt16, {{10, 20, 30, 9, 40, 200}}, 2)), cDblRange(9, 200));
    EXPECT_EQ(adjusted(makeImage<double>(cImgType::Float64, {{0.5, -2, 30}}, 3)), cDblRange(-2, 30));
}

TEST(adjustRangeTest, OtherTypesKeepTheirRange)
{
    for (const auto type : {cImgType::SInt64, cImgType::SInt8, cImgType::UInt32, cImgType::Gradient16}) {
        cImg image = makeRandomImage(type, 3, 2);
        image.setRange(-3, 100);
        const cDblRange before = image.getRange();
        EXPECT_EQ(adjusted(image), before) << type;
    }
}

TEST(adjustRangeTest, PixelsThatAreNoNumberDoNotCount)
{
    const float nan = std::numeric_limits<float>::quiet_NaN();
    EXPECT_EQ(adjusted(makeImage<float>(cImgType::Float32, {{nan, 2, 5, nan}})), cDblRange(2, 5));
    EXPECT_EQ(adjusted(makeImage<float>(cImgType::Float32, {{nan, nan}})), cDblRange(-1, 1))
        << "the present range";
    EXPECT_EQ(adjusted(makeImage<float>(cImgType::Float32, {{nan, nan}}, 2)), cDblRange(-1, 1));
}

TEST(adjustRangeTest, NoSignalIsEmitted)
{
    cImg image = makeImage<quint8>(cImgType::UInt8, {{7, 200}});
    int signalCount = 0;
    QObject::connect(&image.imgType(), &cImgType::rangeChanged, [&] { ++signalCount; });
    image.adjustRange();
    EXPECT_EQ(image.getRange(), cDblRange(7, 200));
    EXPECT_EQ(signalCount, 0);
}

TEST(adjustRangeTest, TheHandlePartsFromItsCopiesButNotFromTheirRange)
{
    cImg image = makeImage<quint8>(cImgType::UInt8, {{7, 200}});
    const cImg copy = image;
    image.adjustRange();
    EXPECT_NE(image.getConstData(), copy.getConstData());
    EXPECT_EQ(copy.getRange(), cDblRange(7, 200));
}

TEST(adjustRangeTest, OfAViewItsOwnPixelsCount)
{
    const cImg image = makeImage<quint8>(cImgType::UInt8, {{1, 20, 30, 250}, {0, 40, 50, 251}});
    EXPECT_EQ(adjusted(cImg(image, false, {1, 0, 2, 2})), cDblRange(20, 50));
}

TEST(adjustRangeTest, ImagesThatAreNotValidStayAsTheyAre)
{
    cImg nothing;
    const cDblRange before = nothing.getRange();
    nothing.adjustRange();
    EXPECT_FALSE(nothing.isValid());
    EXPECT_EQ(nothing.getRange(), before);
}

} // namespace
