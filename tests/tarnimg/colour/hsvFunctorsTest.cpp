#include "support/StationHarness.h"
#include "support/images.h"
#include "support/messageOf.h"
#include "support/skipUnderTsan.h"

#include <array>
#include <gtest/gtest.h>
#include <tarnimg/tarnimg.h>

namespace {

using Bytes = std::array<quint8, 3>;

/** p / q to nearest, ties to even. */
quint8 rounded(int i_p, int i_q) { return quint8(std::nearbyint(double(i_p) / i_q)); }

Bytes hsvOf(const Bytes& i_rgb)
{
    const int r = i_rgb[0], g = i_rgb[1], b = i_rgb[2];
    const int v = std::max({r, g, b}), d = v - std::min({r, g, b});
    const int n = r == v ? g - b + (g < b ? 6 * d : 0) : g == v ? 2 * d + b - r : 4 * d + r - g;
    return {d == 0 ? quint8(0) : rounded(85 * n, 2 * d), v == 0 ? quint8(0) : rounded(255 * d, v), quint8(v)};
}

Bytes rgbOf(const Bytes& i_hsv)
{
    const int h = i_hsv[0] == 255 ? 0 : i_hsv[0], s = i_hsv[1];
    const quint8 v = i_hsv[2];
    const int i = 2 * h / 85, f = 2 * h - 85 * i;
    const quint8 m = rounded(v * (255 - s), 255);
    const quint8 n = rounded(v * (21675 - s * f), 21675), k = rounded(v * (21675 - s * (85 - f)), 21675);
    const Bytes orders[6] = {{v, k, m}, {n, v, m}, {m, v, k}, {m, n, v}, {k, m, v}, {v, m, n}};
    return orders[i];
}

/** The first three bytes of each pixel by a definition; an alpha becomes 255. */
template <class Definition> cImg converted(const cImg& i_image, Definition&& i_definition)
{
    cImg result(i_image.getImgType().getTypeId(), i_image.getWidth(), i_image.getHeight());
    const unsigned size = i_image.getXPitch();
    for (unsigned y = 0; y < i_image.getHeight(); ++y)
        for (unsigned x = 0; x < i_image.getWidth(); ++x) {
            const quint8* from = i_image.getRow<quint8>(y) + x * size;
            quint8* to = result.row<quint8>(y) + x * size;
            const Bytes bytes = i_definition(Bytes {from[0], from[1], from[2]});
            std::copy(bytes.begin(), bytes.end(), to);
            if (size == 4)
                to[3] = 255;
        }
    return result;
}

/** Whole images and views with padded rows. */
std::vector<cImg> images()
{
    std::vector<cImg> all;
    for (const auto type : {cImgType::RGB24, cImgType::RGB32}) {
        const cImg image = makeRandomImage(type, 83, 11);
        all.push_back(image);
        all.push_back(cImg(image, false, cRect<int>(3, 2, 70, 7)));
        all.push_back(makeRandomImage(type, 1, 1));
    }
    return all;
}

template <class Functor> void expectMessages(const std::string& i_class)
{
    EXPECT_EQ(messageOf([] { Functor()(cImg()); }), i_class + "::operator (): Invalid image.");
    EXPECT_EQ(messageOf([] { Functor()(cImg(cImgType::UInt8, 2, 2, 3)); }),
        i_class + "::operator (): Unsupported image format (UInt8) or channel count (3).");
}

} // namespace

TEST(cConvertRGBToHSVFunctorTest, EveryPixelBecomesItsHueSaturationAndValueForAnyNumberOfThreads)
{
    SKIP_WITHOUT_SIGHT_OF_QTS_THREADS();
    for (const cImg& image : images())
        for (const int threads : {1, 0, 2, 3, 100}) {
            cConvertRGBToHSVFunctor functor;
            functor.setNumThreads(threads);
            const cImg expected = converted(image, hsvOf);
            soilNextImage(image.getImgType().getTypeId(), image.getWidth(), image.getHeight());
            EXPECT_TRUE(samePixels(functor(image), expected)) << threads;
        }
}

TEST(cConvertHSVToRGBFunctorTest, EveryPixelBecomesItsColourForAnyNumberOfThreads)
{
    SKIP_WITHOUT_SIGHT_OF_QTS_THREADS();
    for (const cImg& image : images())
        for (const int threads : {1, 0, 2, 3, 100}) {
            cConvertHSVToRGBFunctor functor;
            functor.setNumThreads(threads);
            const cImg expected = converted(image, rgbOf);
            soilNextImage(image.getImgType().getTypeId(), image.getWidth(), image.getHeight());
            EXPECT_TRUE(samePixels(functor(image), expected)) << threads;
        }
}

TEST(cConvertRGBToHSVFunctorTest, OtherImagesAreRefused)
{
    expectMessages<cConvertRGBToHSVFunctor>("cConvertRGBToHSVFunctor");
    expectMessages<cConvertHSVToRGBFunctor>("cConvertHSVToRGBFunctor");
}

TEST(extractHSVTest, EachOfTheThreeIsTheByteOfTheConversion)
{
    cExtractHueFunctor hue;
    cExtractSaturationFunctor saturation;
    cExtractValueFunctor value;
    std::vector<cImg> all = images();
    for (const auto type : {cImgType::RGB24, cImgType::RGB32, cImgType::RGB24})
        for (const unsigned height :
            {2u, 30u, 2u}) // one width: type and height alone make a new working image
            all.push_back(makeRandomImage(type, 83, height));
    all.push_back(makeRandomImage(cImgType::RGB24, 700, 200)); // several portions
    all.push_back(makeRandomImage(cImgType::RGB32, 50000, 3)); // a row is more than a portion
    for (const cImg& image : all) {
        const auto expected = [&](unsigned channel) {
            return generateImage(
                cImgType::UInt8, image.getWidth(), image.getHeight(), [&](unsigned x, unsigned y) {
                    const quint8* pixel = image.getRow<quint8>(y) + x * image.getXPitch();
                    return hsvOf({pixel[0], pixel[1], pixel[2]})[channel];
                });
        };
        EXPECT_TRUE(samePixels(hue(image), expected(0)));
        EXPECT_TRUE(samePixels(saturation(image), expected(1)));
        EXPECT_TRUE(samePixels(value(image), expected(2)));
    }
}

TEST(extractHSVTest, ACopyOfAFunctorHasAWorkingImageOfItsOwn)
{
    const cImg first = makeRandomImage(cImgType::RGB24, 40, 9, 1, 1),
               second = makeRandomImage(cImgType::RGB24, 40, 9, 1, 2);
    cExtractHueFunctor hue;
    const cImg before = hue(first);
    cExtractHueFunctor copy = hue;
    copy(second);
    EXPECT_TRUE(samePixels(hue(first), before));
}

TEST(extractHSVTest, OtherImagesAreRefused)
{
    expectMessages<cExtractHueFunctor>("cExtractHueFunctor");
    expectMessages<cExtractSaturationFunctor>("cExtractSaturationFunctor");
    expectMessages<cExtractValueFunctor>("cExtractValueFunctor");
}

TEST(extractHSVTest, TheStationsSendWithTheAttributesOfTheInput)
{
    cImg image = makeRandomImage(cImgType::RGB32, 20, 5);
    image.setName(QStringLiteral("part"));
    const char* const stations[3] = {"extractHue", "extractSaturation", "extractValue"};
    const cImg expected[3]
        = {cExtractHueFunctor()(image), cExtractSaturationFunctor()(image), cExtractValueFunctor()(image)};
    for (int i = 0; i < 3; ++i) {
        StationHarness harness(
            cStation::create(QStringLiteral("ipp/image/dataExchange/") + QString::fromLatin1(stations[i])));
        harness.feed("img", image, 1);
        harness.runAll();
        ASSERT_EQ(harness.values<cImg>("img").size(), 1);
        EXPECT_TRUE(samePixels(harness.values<cImg>("img").at(0), expected[i]));
        EXPECT_EQ(harness.values<cImg>("img").at(0).getName(), QStringLiteral("part"));
    }
}
