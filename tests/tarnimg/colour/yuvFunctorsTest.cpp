#include "support/FencedMemory.h"
#include "support/StationHarness.h"
#include "support/images.h"
#include "support/messageOf.h"

#include <customipp/customipp.h>
#include <gtest/gtest.h>
#include <tarnimg/tarnimg.h>

namespace {

std::string failureOf(const char* i_class, IppStatus i_status)
{
    return std::string(i_class) + "::operator (): " + ippGetStatusString(i_status);
}

quint8 rounded(int i_thousandths)
{
    return quint8(std::min(std::max(std::nearbyint(i_thousandths / 1000.0), 0.0), 255.0));
}

/** Byte i of row k, where frame rows begin with every i_every-th row of the image. */
quint8 byteAt(const cImg& i_image, unsigned i_row, unsigned i_every, unsigned i)
{
    return *(i_image.getConstData() + std::size_t(i_row) * i_every * i_image.getYPitch() + i);
}

cImg expectedRGB(const cImg& i_image)
{
    const unsigned width = i_image.getWidth();
    cImg result(cImgType::RGB24, width, i_image.getHeight() / 2);
    for (unsigned row = 0; row < result.getHeight(); ++row)
        for (unsigned x = 0; x < width; ++x) {
            const unsigned pair = std::min(x / 2, width / 2 - 1);
            const int y = byteAt(i_image, row, 2, 2 * x);
            const int u = byteAt(i_image, row, 2, 4 * pair + 1) - 128,
                      v = byteAt(i_image, row, 2, 4 * pair + 3) - 128;
            quint8* pixel = result.row<quint8>(row) + 3 * x;
            pixel[0] = rounded(1000 * y + 1140 * v);
            pixel[1] = rounded(1000 * y - 394 * u - 581 * v);
            pixel[2] = rounded(1000 * y + 2032 * u);
        }
    return result;
}

/** The plane that begins with byte i_first of each row and goes on with every i_stride-th byte. */
cImg expectedPlane(const cImg& i_image, unsigned i_first, unsigned i_stride)
{
    return generateImage(cImgType::UInt8, 2 * i_image.getWidth() / i_stride, i_image.getHeight() / 2,
        [&](unsigned x, unsigned row) { return byteAt(i_image, row, 1, i_first + i_stride * x); });
}

cImg uint8(unsigned i_width, unsigned i_height)
{
    return makeRandomImage(cImgType::UInt8, i_width, i_height);
}

} // namespace

TEST(cConvertYUVToRGBFunctorTest, TwoRowsAreOneRowOfTheFrame)
{
    for (const unsigned width : {2u, 3u, 16u, 17u, 70u, 131u})
        for (const unsigned height : {2u, 3u, 8u, 9u}) {
            const cImg image = uint8(width, height);
            const cImg result = cConvertYUVToRGBFunctor()(image);
            EXPECT_TRUE(samePixels(result, expectedRGB(image))) << width << " x " << height;
        }
}

TEST(cConvertYUVToRGBFunctorTest, AnOddHeightLosesItsLastRow)
{
    EXPECT_EQ(cConvertYUVToRGBFunctor()(uint8(4, 7)).getHeight(), 3u);
    EXPECT_FALSE(cConvertYUVToRGBFunctor()(uint8(4, 1)).isValid());
}

TEST(cConvertYUVToRGBFunctorTest, RowsOfAViewAreTwoPitchesApart)
{
    const cImg parent = uint8(40, 20);
    const cImg view(parent, false, cRect<int>(3, 2, 20, 11));
    EXPECT_TRUE(samePixels(cConvertYUVToRGBFunctor()(view), expectedRGB(view)));
}

TEST(cConvertYUVToRGBFunctorTest, AnImageOfOneColumnIsBlack)
{
    soilNextImage(cImgType::RGB24, 1, 3);
    const cImg result = cConvertYUVToRGBFunctor()(uint8(1, 6));
    EXPECT_TRUE(samePixels(result, makeImage<quint8>(cImgType::RGB24, {{0, 0, 0}, {0, 0, 0}, {0, 0, 0}})));
}

TEST(cYUV422PixelToPlanarFunctorTest, RowsBeginOnePitchApart)
{
    for (const unsigned width : {2u, 4u, 18u, 64u, 130u})
        for (const unsigned height : {2u, 3u, 8u, 9u}) {
            const cImg image = uint8(width, height);
            cImg y, u, v;
            cYUV422PixelToPlanarFunctor()(image, y, u, v);
            EXPECT_TRUE(samePixels(y, expectedPlane(image, 0, 2))) << width << " x " << height;
            EXPECT_TRUE(samePixels(u, expectedPlane(image, 1, 4))) << width << " x " << height;
            EXPECT_TRUE(samePixels(v, expectedPlane(image, 3, 4))) << width << " x " << height;
        }
    const cImg view(uint8(40, 20), false, cRect<int>(3, 2, 20, 11));
    cImg y, u, v;
    cYUV422PixelToPlanarFunctor()(view, y, u, v);
    EXPECT_TRUE(samePixels(y, expectedPlane(view, 0, 2)));
    EXPECT_TRUE(samePixels(v, expectedPlane(view, 3, 4)));
}

TEST(cYUV422PixelToPlanarFunctorTest, TheSourceMayBecomeOneOfThePlanes)
{
    cImg image = uint8(6, 4), u, v;
    const cImg before = image.clone();
    cYUV422PixelToPlanarFunctor()(image, image, u, v);
    EXPECT_TRUE(samePixels(image, expectedPlane(before, 0, 2)));
}

TEST(cYUV422PixelToPlanarFunctorTest, NothingBeyondTheImageIsRead)
{
    for (const unsigned width : {2u, 4u, 34u, 66u, 130u})
        for (const unsigned height : {2u, 3u}) {
            const std::size_t bytes = std::size_t(width) * height;
            FencedMemory memory(bytes, FencedMemory::AgainstEnd);
            std::memset(memory.data(), 9, bytes);
            const cImg image(cImgType::UInt8, width, height, 1, width, memory.data(), {});
            cImg y, u, v;
            cYUV422PixelToPlanarFunctor()(image, y, u, v);
            EXPECT_TRUE(samePixels(y, expectedPlane(image, 0, 2)));
            EXPECT_TRUE(samePixels(cConvertYUVToRGBFunctor()(image), expectedRGB(image)));
        }
}

TEST(cYUV422PixelToPlanarFunctorTest, OddWidthsAndImagesOfOneRowOrColumnAreRefused)
{
    cImg y, u, v;
    const auto says = [&](const cImg& image) {
        return messageOf([&] { cYUV422PixelToPlanarFunctor()(image, y, u, v); });
    };
    EXPECT_EQ(says(uint8(5, 4)), failureOf("cYUV422PixelToPlanarFunctor", ippStsDoubleSize));
    EXPECT_NE(says(uint8(4, 1)), "no failure");
    EXPECT_NE(says(uint8(1, 4)), "no failure");
    EXPECT_EQ(says(cImg()), "cYUV422PixelToPlanarFunctor::operator (): Invalid image.");
    EXPECT_EQ(says(cImg(cImgType::UInt8, 4, 4, 3)),
        "cYUV422PixelToPlanarFunctor::operator (): Unsupported image format (UInt8) or channel count (3).");
    EXPECT_EQ(messageOf([] { cConvertYUVToRGBFunctor()(cImg()); }),
        "cConvertYUVToRGBFunctor::operator (): Invalid image.");
    EXPECT_EQ(messageOf([] { cConvertYUVToRGBFunctor()(cImg(cImgType::RGB24, 4, 4)); }),
        "cConvertYUVToRGBFunctor::operator (): Unsupported image format (RGB24) or channel count (3).");
}

TEST(cYUV422PlanarToPixelFunctorTest, TheSecondHalfOfARowIsReplacedByTheNext)
{
    const cImg y = makeImage<quint8>(cImgType::UInt8, {{1, 2, 3, 4}, {5, 6, 7, 8}, {9, 10, 11, 12}});
    const cImg u = makeImage<quint8>(cImgType::UInt8, {{20, 21}, {22, 23}, {24, 25}});
    const cImg v = makeImage<quint8>(cImgType::UInt8, {{30, 31}, {32, 33}, {34, 35}});
    soilNextImage(cImgType::UInt8, 4, 6);
    const cImg packed = cYUV422PlanarToPixelFunctor()(y, u, v);
    EXPECT_TRUE(samePixels(packed,
        makeImage<quint8>(cImgType::UInt8,
            {{1, 20, 2, 30}, {5, 22, 6, 32}, {9, 24, 10, 34}, {11, 25, 12, 35}, {0, 0, 0, 0},
                {0, 0, 0, 0}})));
}

TEST(cYUV422PlanarToPixelFunctorTest, ASingleRowIsWholeAndPlanesMayBeViews)
{
    const cImg packed = uint8(130, 2);
    cImg y, u, v;
    cYUV422PixelToPlanarFunctor()(packed, y, u, v);
    EXPECT_TRUE(samePixels(cYUV422PlanarToPixelFunctor()(y, u, v), packed));

    const cImg wide = uint8(90, 9);
    const cImg yView(wide, false, cRect<int>(1, 1, 66, 5)), uView(wide, false, cRect<int>(7, 2, 33, 5));
    const cImg vView(wide, false, cRect<int>(40, 4, 33, 5));
    EXPECT_TRUE(samePixels(cYUV422PlanarToPixelFunctor()(yView, uView, vView),
        cYUV422PlanarToPixelFunctor()(yView.clone(), uView.clone(), vView.clone())));
}

TEST(cYUV422PlanarToPixelFunctorTest, TheChecksComeInTheirOrder)
{
    const std::string op = "cYUV422PlanarToPixelFunctor::operator (): ";
    const auto says = [](const cImg& y, const cImg& u, const cImg& v) {
        return messageOf([&] { cYUV422PlanarToPixelFunctor()(y, u, v); });
    };
    const cImg y = uint8(8, 4), good = uint8(4, 4), wide = uint8(5, 4), high = uint8(4, 5),
               both = uint8(5, 5);
    const cImg rgb(cImgType::RGB24, 4, 4), wide16(cImgType::UInt16, 4, 4);
    EXPECT_EQ(says(y, good, good), "no failure");
    EXPECT_EQ(says(cImg(), rgb, cImg()), op + "Invalid image.");
    EXPECT_EQ(says(rgb, cImg(), good), op + "Unsupported image format (RGB24) or channel count (3).");
    EXPECT_EQ(says(y, cImg(), rgb), op + "Invalid image.");
    EXPECT_EQ(says(y, wide16, cImg()), op + "Unsupported image format (UInt16) or channel count (1).");
    EXPECT_EQ(says(y, both, cImg()), op + "Invalid image.");
    EXPECT_EQ(says(y, both, rgb), op + "Unsupported image format (RGB24) or channel count (3).");
    EXPECT_EQ(says(y, both, both), op + "U has wrong width.");
    EXPECT_EQ(says(y, high, wide), op + "V has wrong with.");
    EXPECT_EQ(says(y, high, high), op + "U has wrong height.");
    EXPECT_EQ(says(y, good, high), op + "V has wrong height.");
    EXPECT_EQ(says(uint8(9, 4), good, good), op + "U has wrong width.")
        << "an odd width is never twice another";
}

TEST(yuvStationsTest, ThePlanesComeOutInTheirOrderWithTheStampAndGoBackTogether)
{
    const cImg image = uint8(8, 6);
    cImg y, u, v;
    cYUV422PixelToPlanarFunctor()(image, y, u, v);

    StationHarness apart(cStation::create(QStringLiteral("ipp/image/colorConversion/YUV422PixelToPlanar")));
    apart.feed("img", image, 7);
    apart.runAll();
    ASSERT_EQ(apart.outputs().size(), 3);
    const char* const names[3] = {"Y", "U", "V"};
    for (int i = 0; i < 3; ++i) {
        EXPECT_TRUE(apart.outputs().at(i).port == QString::fromLatin1(names[i]));
        EXPECT_EQ(apart.outputs().at(i).stamp.getStamp(), 7);
    }
    EXPECT_TRUE(samePixels(apart.values<cImg>("Y").at(0), y));
    EXPECT_TRUE(samePixels(apart.values<cImg>("U").at(0), u));
    EXPECT_TRUE(samePixels(apart.values<cImg>("V").at(0), v));

    StationHarness together(
        cStation::create(QStringLiteral("ipp/image/colorConversion/YUV422PlanarToPixel")));
    together.feed("Y", y, 3);
    together.feed("V", v, 3);
    together.runAll();
    EXPECT_TRUE(together.outputs().isEmpty()) << "all three are needed";
    together.feed("U", u, 3);
    together.runAll();
    ASSERT_EQ(together.outputs().size(), 1);
    EXPECT_EQ(together.outputs().at(0).stamp.getStamp(), 3);
    EXPECT_TRUE(samePixels(together.values<cImg>("YUV422").at(0), cYUV422PlanarToPixelFunctor()(y, u, v)));
}

TEST(yuvStationsTest, NothingIsComputedWhileNobodyWantsTheOutput)
{
    const QStringList outputs {QStringLiteral("Y"), QStringLiteral("U"), QStringLiteral("V")};
    StationHarness unwanted(
        cStation::create(QStringLiteral("ipp/image/colorConversion/YUV422PixelToPlanar")), outputs);
    unwanted.feed("img", uint8(5, 4), 1); // would fail
    unwanted.runAll();
    EXPECT_TRUE(unwanted.errors().isEmpty());

    for (const QString& wanted : outputs) {
        QStringList others = outputs;
        others.removeOne(wanted);
        StationHarness one(
            cStation::create(QStringLiteral("ipp/image/colorConversion/YUV422PixelToPlanar")), others);
        one.feed("img", uint8(5, 4), 1);
        one.feed("img", uint8(6, 4), 2);
        one.runAll();
        ASSERT_EQ(one.errors().size(), 1);
        EXPECT_EQ(one.values<cImg>(wanted.toLatin1().constData()).size(), 1) << "the station goes on";
    }

    StationHarness together(cStation::create(QStringLiteral("ipp/image/colorConversion/YUV422PlanarToPixel")),
        {QStringLiteral("YUV422")});
    for (const char* plane : {"Y", "U", "V"}) // all of one width, which would fail
        together.feed(plane, uint8(4, 4), 1);
    together.runAll();
    EXPECT_TRUE(together.errors().isEmpty());
    EXPECT_EQ(together.fates("Y").gated, 1u);
}

TEST(yuvStationsTest, InvalidImagesAreReportedWhereOneImageDoesNotBecomeOne)
{
    StationHarness apart(cStation::create(QStringLiteral("ipp/image/colorConversion/YUV422PixelToPlanar")));
    apart.feed("img", cImg(), 1);
    apart.runAll();
    ASSERT_EQ(apart.errors().size(), 1);
    EXPECT_EQ(apart.errors().at(0).getMessage(),
        QStringLiteral("cYUV422PixelToPlanarFunctor::operator (): Invalid image."));
    EXPECT_TRUE(apart.outputs().isEmpty());

    StationHarness together(
        cStation::create(QStringLiteral("ipp/image/colorConversion/YUV422PlanarToPixel")));
    together.feed("Y", uint8(4, 4), 1);
    together.feed("U", uint8(2, 4), 1);
    together.feed("V", cImg(), 1);
    together.runAll();
    ASSERT_EQ(together.errors().size(), 1);
    EXPECT_EQ(together.errors().at(0).getMessage(),
        QStringLiteral("cYUV422PlanarToPixelFunctor::operator (): Invalid image."));

    StationHarness rgb(cStation::create(QStringLiteral("ipp/image/colorConversion/YUV422ToRGB")));
    rgb.feed("img", cImg(), 1);
    rgb.feed("img", uint8(4, 1), 2); // not one row of a frame
    rgb.feed("img", uint8(4, 2), 3);
    rgb.runAll();
    EXPECT_TRUE(rgb.errors().isEmpty());
    EXPECT_EQ(rgb.stamps("img"), QList<qint64> {3});
}
