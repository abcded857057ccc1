#include "support/images.h"

#include <QImage>
#include <tarnbase/cRgb.h>
#include <tarnbase/cRgba.h>
#include <tarnimg/cImg.h>
#include <vector>

namespace {

/** The greys of all pixels, row by row. */
std::vector<int> greysOf(const QImage& i_image)
{
    std::vector<int> greys;
    for (int y = 0; y < i_image.height(); ++y)
        for (int x = 0; x < i_image.width(); ++x)
            greys.push_back(qGray(i_image.pixel(x, y)));
    return greys;
}

} // namespace

TEST(imgQImage, GreyGoesToAnIndexedImageWithAGreyTable)
{
    const QImage out = makeImage<quint8>(cImgType::UInt8, {{0, 1, 2}, {128, 254, 255}}).toQImage();
    EXPECT_EQ(out.format(), QImage::Format_Indexed8);
    ASSERT_EQ(out.colorCount(), 256);
    for (int i = 0; i < 256; ++i)
        EXPECT_EQ(out.color(i), qRgba(i, i, i, 255));
    EXPECT_EQ(greysOf(out), std::vector<int>({0, 1, 2, 128, 254, 255}));
}

TEST(imgQImage, TheRangeOfAnImageDoesNotCount)
{
    cImg image = makeImage<quint8>(cImgType::UInt8, {{10, 20}});
    image.setRange(10, 20);
    image.imgType().setGamma(3);
    EXPECT_EQ(greysOf(image.toQImage()), std::vector<int>({10, 20}));
}

TEST(imgQImage, SixteenBitsAboveAByteBecomeWhite)
{
    const cImg image = makeImage<quint16>(cImgType::UInt16, {{0, 255, 256, 65535, 100}});
    const QImage out = image.toQImage();
    EXPECT_EQ(out.format(), QImage::Format_Indexed8);
    EXPECT_EQ(greysOf(out), std::vector<int>({0, 255, 255, 255, 100}));
}

TEST(imgQImage, ColoursKeepTheirBytesInTheOrderOfTheFormat)
{
    const QImage rgb = makeImage<quint8>(cImgType::RGB24, {{1, 2, 3, 4, 5, 6}}).toQImage();
    EXPECT_EQ(rgb.format(), QImage::Format_RGB888);
    EXPECT_EQ(rgb.pixel(0, 0), qRgb(1, 2, 3));
    EXPECT_EQ(rgb.pixel(1, 0), qRgb(4, 5, 6));
    const QImage rgba = makeImage<quint8>(cImgType::RGB32, {{1, 2, 3, 4, 5, 6, 7, 8}}).toQImage();
    EXPECT_EQ(rgba.format(), QImage::Format_ARGB32);
    EXPECT_EQ(rgba.pixel(0, 0), qRgba(1, 2, 3, 4));
    EXPECT_EQ(rgba.pixel(1, 0), qRgba(5, 6, 7, 8));
}

TEST(imgQImage, OtherTypesHaveNoQImage)
{
    EXPECT_TRUE(cImg().toQImage().isNull());
    for (auto type : {cImgType::UInt32, cImgType::SInt8, cImgType::SInt16, cImgType::SInt32, cImgType::SInt64,
             cImgType::Float32, cImgType::Float64, cImgType::Gradient16, cImgType::Gradient32,
             cImgType::Complex})
        EXPECT_TRUE(makeRandomImage(type, 2, 2).toQImage().isNull()) << type;
}

TEST(imgQImage, ViewsAndGapsGiveTheirPixels)
{
    const cImg parent = makeImage<quint8>(cImgType::UInt8, {{1, 2, 3}, {4, 5, 6}, {7, 8, 9}});
    EXPECT_EQ(
        greysOf(cImg(parent, false, cRect<int>(1, 1, 2, 2)).toQImage()), std::vector<int>({5, 6, 8, 9}));
    unsigned char memory[] = {1, 99, 2, 99};
    EXPECT_EQ(
        greysOf(cImg(cImgType::UInt8, 2, 1, 2, 4, memory, nullptr).toQImage()), std::vector<int>({1, 2}));
    // Of several channels a row gives its first bytes.
    const cImg three = makeImage<quint8>(cImgType::UInt8, {{1, 2, 3, 4, 5, 6}}, 3);
    EXPECT_EQ(greysOf(three.toQImage()), std::vector<int>({1, 2}));
}

TEST(imgQImage, ANullImageGivesTheVoidImage)
{
    EXPECT_EQ(cImg::fromQImage(QImage()).getName(), QStringLiteral("Unnamed"));
}

TEST(imgQImage, GreyImagesAreReadAsBytes)
{
    QImage indexed(3, 2, QImage::Format_Indexed8);
    for (int i = 0; i < 256; ++i)
        indexed.setColor(i, qRgb(i, i, i));
    QImage grey(3, 2, QImage::Format_Grayscale8);
    for (int i = 0; i < 6; ++i) {
        indexed.setPixel(i % 3, i / 3, uint(i * 50));
        grey.scanLine(i / 3)[i % 3] = uchar(i * 50);
    }
    const cImg expected = makeImage<quint8>(cImgType::UInt8, {{0, 50, 100}, {150, 200, 250}});
    EXPECT_TRUE(samePixels(cImg::fromQImage(indexed), expected));
    EXPECT_TRUE(samePixels(cImg::fromQImage(grey), expected));
    const cImg read = cImg::fromQImage(grey);
    EXPECT_EQ(read.getName(), QString());
    EXPECT_EQ(read.getNumFrames(), 1u);
    EXPECT_EQ(read.getRange(), cDblRange(0, 255));
}

TEST(imgQImage, ColourTablesAreReadAsRgb)
{
    QImage indexed(2, 1, QImage::Format_Indexed8);
    indexed.setColorTable({qRgb(1, 2, 3), qRgb(4, 5, 6)});
    indexed.setPixel(0, 0, 1);
    indexed.setPixel(1, 0, 0);
    EXPECT_TRUE(
        samePixels(cImg::fromQImage(indexed), makeImage<quint8>(cImgType::RGB24, {{4, 5, 6, 1, 2, 3}})));
}

TEST(imgQImage, ColoursAreReadInTheOrderOfMemory)
{
    QImage rgb(3, 2, QImage::Format_RGB888); // rows of 9 bytes, padded to 12
    rgb.fill(qRgb(9, 9, 9));
    rgb.setPixel(2, 1, qRgb(1, 2, 3));
    const cImg read = cImg::fromQImage(rgb);
    EXPECT_TRUE(read.isKindOf(cImgType::RGB24));
    EXPECT_EQ(read.getPixel<cRgb>(2, 1), cRgb(1, 2, 3));
    EXPECT_EQ(read.getPixel<cRgb>(0, 0), cRgb(9, 9, 9));

    QImage argb(2, 1, QImage::Format_ARGB32);
    argb.setPixel(0, 0, qRgba(1, 2, 3, 4));
    argb.setPixel(1, 0, qRgba(5, 6, 7, 8));
    EXPECT_TRUE(
        samePixels(cImg::fromQImage(argb), makeImage<quint8>(cImgType::RGB32, {{1, 2, 3, 4, 5, 6, 7, 8}})));

    for (auto format : {QImage::Format_RGB32, QImage::Format_RGB16, QImage::Format_RGBA64}) {
        QImage other(2, 1, format);
        other.fill(Qt::white);
        const cImg image = cImg::fromQImage(other);
        EXPECT_TRUE(image.isKindOf(cImgType::RGB32)) << format;
        EXPECT_EQ(image.getPixel<cRgba>(1, 0), cRgba(255, 255, 255, 255)) << format;
    }
}

TEST(imgQImage, PixelsSurviveTheWayThereAndBack)
{
    for (auto type : {cImgType::UInt8, cImgType::RGB24, cImgType::RGB32})
        for (unsigned width : {1u, 2u, 3u, 5u, 16u, 17u, 67u}) {
            const cImg image = makeRandomImage(type, width, 3);
            EXPECT_TRUE(samePixels(cImg::fromQImage(image.toQImage()), image)) << type << ", width " << width;
        }
}
