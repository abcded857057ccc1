#include "support/StationHarness.h"
#include "support/images.h"
#include "support/messageOf.h"

#include <gtest/gtest.h>
#include <tarnimg/tarnimg.h>

namespace {

const float s_sepia[12]
    = {0.393f, 0.769f, 0.189f, 0.5f, 0.349f, 0.686f, 0.168f, -20, 0.272f, 0.534f, 0.131f, 30};

cImg twisted(const cImg& i_image, const cMatrix<float>& i_matrix)
{
    cColorTwistFunctor functor;
    functor.setTwist(i_matrix);
    if (i_image.isValid())
        soilNextImage(i_image.getImgType().getTypeId(), i_image.getWidth(), i_image.getHeight());
    return functor(i_image);
}

cImg expectedTwist(const cImg& i_image, const float* i_matrix)
{
    cImg result(i_image.getImgType().getTypeId(), i_image.getWidth(), i_image.getHeight());
    const unsigned size = i_image.getXPitch();
    for (unsigned y = 0; y < i_image.getHeight(); ++y)
        for (unsigned x = 0; x < i_image.getWidth(); ++x) {
            const quint8* from = i_image.getRow<quint8>(y) + x * size;
            quint8* to = result.row<quint8>(y) + x * size;
            to[size - 1] = 255;
            for (int i = 0; i < 3; ++i) {
                const float* row = i_matrix + 4 * i;
                volatile float products[3];
                for (int c = 0; c < 3; ++c)
                    products[c] = row[c] * float(from[c]);
                const float sum = ((products[0] + products[1]) + products[2]) + row[3];
                to[i] = quint8(std::nearbyint(std::min(std::max(sum, 0.0f), 255.0f)));
            }
        }
    return result;
}

/** Levels from 0 to 3, so that neighbours of the key and the key itself are frequent. */
cImg fewLevels(cImgType::ImageTypes i_type, unsigned i_seed)
{
    cImg image = makeRandomImage(i_type, 61, 9, 1, i_seed);
    for (unsigned y = 0; y < image.getHeight(); ++y)
        for (unsigned i = 0; i < image.getYPitch(); ++i)
            image.row<quint8>(y)[i] %= 4;
    return image;
}

/** Pixel by pixel: the bytes of the key decide. */
template <std::size_t Size>
cImg expectedKeyed(const cImg& i_a, const cImg& i_b, const std::array<quint8, Size>& i_key)
{
    return generateImage(
        i_a.getImgType().getTypeId(), i_a.getWidth(), i_a.getHeight(), [&](unsigned x, unsigned y) {
            std::array<quint8, Size> pixel, other;
            std::memcpy(pixel.data(), i_a.getRow<quint8>(y) + x * Size, Size);
            std::memcpy(other.data(), i_b.getRow<quint8>(y) + x * Size, Size);
            return pixel == i_key ? other : pixel;
        });
}

template <std::size_t Size>
void expectKeyed(
    cImgType::ImageTypes i_type, const cColorKeyFunctor& i_functor, const std::array<quint8, Size>& i_key)
{
    const cImg a = fewLevels(i_type, 1), b = makeRandomImage(i_type, 61, 9, 1, 2);
    const cImg result = i_functor(a, b);
    EXPECT_TRUE(samePixels(result, expectedKeyed(a, b, i_key)));
    EXPECT_FALSE(samePixels(result, a)) << "the key does not occur";
    const cRect<int> rectangle(3, 2, 40, 5);
    const cImg aView(a, false, rectangle), bView(b, false, rectangle);
    EXPECT_TRUE(samePixels(i_functor(aView, bView), expectedKeyed(aView, bView, i_key)));
}

} // namespace

TEST(cColorTwistFunctorTest, EachChannelIsItsRowOfTheMatrix)
{
    for (const auto type : {cImgType::RGB24, cImgType::RGB32}) {
        const cImg image = makeRandomImage(type, 83, 11);
        EXPECT_TRUE(samePixels(twisted(image, cMatrix<float>(3, 4, s_sepia)), expectedTwist(image, s_sepia)));
        const cImg view(image, false, cRect<int>(3, 2, 70, 7));
        EXPECT_TRUE(samePixels(twisted(view, cMatrix<float>(3, 4, s_sepia)), expectedTwist(view, s_sepia)));
        const float nothing[12] = {};
        EXPECT_TRUE(samePixels(cColorTwistFunctor()(image), expectedTwist(image, nothing)))
            << "the default is black";
    }
}

TEST(cColorTwistFunctorTest, AnyOtherFormOfMatrixIsRefusedAfterTheImage)
{
    const std::string op = "cColorTwistFunctor::operator (): ";
    const cImg image = makeRandomImage(cImgType::RGB24, 4, 4);
    for (const auto& matrix :
        {cMatrix<float>(4, 3), cMatrix<float>(3, 3), cMatrix<float>(2, 4), cMatrix<float>()}) {
        EXPECT_EQ(messageOf([&] { twisted(image, matrix); }), op + "Color twist matrix must be 3x4");
        EXPECT_EQ(messageOf([&] { twisted(cImg(), matrix); }), op + "Invalid image.");
        EXPECT_EQ(messageOf([&] { twisted(cImg(cImgType::UInt8, 2, 2), matrix); }),
            op + "Unsupported image format (UInt8) or channel count (1).");
    }
}

TEST(cColorTwistFunctorTest, TheMatrixIsAParameterOfTheStation)
{
    StationHarness harness(cStation::create(QStringLiteral("ipp/image/colorConversion/colorTwist")));
    ASSERT_TRUE(harness.station()
                    .getParams()
                    .getSubObject(QStringLiteral("twist"))
                    ->setFromText(QStringLiteral("0,0,1,0;0,1,0,0;1,0,0,0")));
    harness.feed("img", makeImage<quint8>(cImgType::RGB24, {{1, 2, 3, 40, 50, 60}}), 1);
    harness.runAll();
    ASSERT_EQ(harness.values<cImg>("img").size(), 1);
    EXPECT_TRUE(samePixels(
        harness.values<cImg>("img").at(0), makeImage<quint8>(cImgType::RGB24, {{3, 2, 1, 60, 50, 40}})));
}

TEST(cColorKeyFunctorTest, TheSecondImageShowsWhereTheFirstHasTheKey)
{
    cColorKeyFunctor functor;
    functor.setColorKeyGray(0xABCD0002u); // cut to the pixel
    expectKeyed<1>(cImgType::UInt8, functor, {2});
    functor.setColorKeyGray(0xABCD0103u);
    expectKeyed<2>(cImgType::UInt16, functor, {3, 1});
    functor.setColorKeyRGB(QColor(1, 2, 3, 0));
    expectKeyed<3>(cImgType::RGB24, functor, {1, 2, 3});
    functor.setColorKeyRGB(QColor(0, 1, 1, 2));
    expectKeyed<4>(cImgType::RGB32, functor, {0, 1, 1, 2});
}

TEST(cColorKeyFunctorTest, TheDefaultKeysAreBlackWhichOnRGB32MeansOpaqueBlack)
{
    const cImg a = makeImage<quint8>(cImgType::RGB32, {{0, 0, 0, 255, 0, 0, 0, 254}});
    const cImg b = makeImage<quint8>(cImgType::RGB32, {{1, 2, 3, 4, 5, 6, 7, 8}});
    EXPECT_TRUE(samePixels(
        cColorKeyFunctor()(a, b), makeImage<quint8>(cImgType::RGB32, {{1, 2, 3, 4, 0, 0, 0, 254}})));
    const cImg grey = makeImage<quint8>(cImgType::UInt8, {{0, 1}}),
               other = makeImage<quint8>(cImgType::UInt8, {{7, 7}});
    EXPECT_TRUE(samePixels(cColorKeyFunctor()(grey, other), makeImage<quint8>(cImgType::UInt8, {{7, 1}})));
}

TEST(cColorKeyFunctorTest, TheStationsSecondInputShowsThrough)
{
    StationHarness harness(cStation::create(QStringLiteral("ipp/image/colorConversion/colorKey")));
    ASSERT_TRUE(harness.station()
                    .getParams()
                    .getSubObject(QStringLiteral("colorKeyGray"))
                    ->setFromText(QStringLiteral("2")));
    harness.feed("img2", makeImage<quint8>(cImgType::UInt8, {{7, 8, 9}}), 3);
    harness.feed("img1", makeImage<quint8>(cImgType::UInt8, {{1, 2, 3}}), 3);
    harness.runAll();
    ASSERT_EQ(harness.values<cImg>("img").size(), 1);
    EXPECT_TRUE(
        samePixels(harness.values<cImg>("img").at(0), makeImage<quint8>(cImgType::UInt8, {{1, 8, 3}})));
    EXPECT_EQ(harness.stamps("img"), QList<qint64> {3});
}

TEST(cColorKeyFunctorTest, TheChecksComeInTheirOrder)
{
    const std::string op = "cColorKeyFunctor::operator (): ";
    const auto says
        = [](const cImg& a, const cImg& b) { return messageOf([&] { cColorKeyFunctor()(a, b); }); };
    const cImg small(cImgType::UInt8, 4, 4), large(cImgType::UInt8, 5, 4), wide16(cImgType::UInt16, 5, 4);
    const cImg largeOfThree(cImgType::UInt8, 5, 4, 3), floats(cImgType::Float32, 4, 4);
    EXPECT_EQ(says(cImg(), small), op + "Invalid image.");
    EXPECT_EQ(says(small, cImg()), op + "Invalid image.");
    EXPECT_EQ(says(small, wide16), op + "Image types must be equal.");
    EXPECT_EQ(says(small, largeOfThree), op + "Number of channels must be equal.");
    EXPECT_EQ(says(small, large), op + "Image sizes must be equal.");
    EXPECT_EQ(says(floats, floats), op + "Unsupported image format (Float32) or channel count (1).");
}
