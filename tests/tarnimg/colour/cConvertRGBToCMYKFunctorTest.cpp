#include "support/FencedMemory.h"
#include "support/StationHarness.h"
#include "support/images.h"
#include "support/messageOf.h"
#include "support/skipUnderTsan.h"

#include <array>
#include <gtest/gtest.h>
#include <tarnimg/tarnimg.h>

namespace {

using Inks = std::array<float, 4>;

/** From the definition, step by step. */
Inks inksOf(int i_red, int i_green, int i_blue)
{
    const float r = float(i_red / 255.0), g = float(i_green / 255.0), b = float(i_blue / 255.0);
    float most = g > r ? g : r;
    if (!(most >= b))
        most = b;
    const float black = 1 - most, n = 1 - black;
    return {(n - r) / n, (n - g) / n, (n - b) / n, black};
}

/** The inks of pixels of i_size bytes that follow each other from a place on. */
cImg inksFrom(const quint8* i_pixels, unsigned i_size, unsigned i_width, unsigned i_height)
{
    cImg result(cImgType::Float32, i_width, i_height, 4);
    for (unsigned y = 0; y < i_height; ++y)
        for (unsigned x = 0; x < i_width; ++x) {
            const quint8* pixel = i_pixels + (std::size_t(y) * i_width + x) * i_size;
            const Inks inks = inksOf(pixel[0], pixel[1], pixel[2]);
            std::copy(inks.begin(), inks.end(), result.row<float>(y) + 4 * x);
        }
    return result;
}

cImg inksOf(const cImg& i_image)
{
    return inksFrom(i_image.getConstData(), i_image.getXPitch(), i_image.getWidth(), i_image.getHeight());
}

cImg convert(const cImg& i_image, int i_threads = 1)
{
    cConvertRGBToCMYKFunctor functor;
    functor.setNumThreads(i_threads);
    return functor(i_image);
}

} // namespace

TEST(cConvertRGBToCMYKFunctorTest, EveryLevelAndManyColoursHaveTheirInks)
{
    SKIP_WITHOUT_SIGHT_OF_QTS_THREADS();
    cImg levels(cImgType::RGB24, 256, 256);
    for (unsigned y = 0; y < 256; ++y)
        for (unsigned x = 0; x < 256; ++x) {
            quint8* pixel = levels.row<quint8>(y) + 3 * x;
            pixel[y % 3] = quint8(y);
            pixel[(y + 1) % 3] = quint8(x);
            pixel[(y + 2) % 3] = quint8(x * y);
        }
    const cImg inks = convert(levels);
    EXPECT_TRUE(samePixels(inks, inksOf(levels)));
    EXPECT_TRUE(inks.isKindOf(cImgType::Float32));
    EXPECT_EQ(inks.getNumChannels(), 4u);
    EXPECT_EQ(inks.getRange().getLow(), 0.0);
    EXPECT_EQ(inks.getRange().getHigh(), 1.0);

    for (const auto type : {cImgType::RGB24, cImgType::RGB32})
        for (const unsigned width : {1u, 2u, 5u, 16u, 17u, 33u, 83u})
            for (const int threads : {1, 0, 2, 3, 100}) {
                const cImg image = makeRandomImage(type, width, 11);
                EXPECT_TRUE(samePixels(convert(image, threads), inksOf(image))) << width << ", " << threads;
            }
}

TEST(cConvertRGBToCMYKFunctorTest, WhiteHasNoInkAndBlackHasNothingButBlack)
{
    const cImg inks = convert(makeImage<quint8>(cImgType::RGB24, {{255, 255, 255, 0, 0, 0, 255, 0, 0}}));
    const float* white = inks.getRow<float>(0);
    for (int channel = 0; channel < 4; ++channel)
        EXPECT_EQ(white[channel], 0.0f);
    for (int channel = 0; channel < 3; ++channel)
        EXPECT_TRUE(std::isnan(white[4 + channel]));
    EXPECT_EQ(white[7], 1.0f);
    const float red[4] = {0, 1, 1, 0};
    EXPECT_TRUE(std::equal(red, red + 4, white + 8));
}

TEST(cConvertRGBToCMYKFunctorTest, RowsOfAViewAreTakenAsIfTheyTouchedEachOtherFromEachBandOn)
{
    SKIP_WITHOUT_SIGHT_OF_QTS_THREADS();
    for (const auto type : {cImgType::RGB24, cImgType::RGB32}) {
        const cImg parent = makeRandomImage(type, 12, 8);
        const cImg view(parent, false, cRect<int>(2, 1, 5, 6));
        const unsigned size = view.getXPitch();
        EXPECT_TRUE(samePixels(convert(view), inksFrom(view.getConstData(), size, 5, 6)));
        const cImg inTwo = convert(view, 2);
        for (unsigned band = 0; band < 2; ++band)
            EXPECT_TRUE(samePixels(cImg(inTwo, false, cRect<int>(0, int(3 * band), 5, 3)),
                inksFrom(view.getRow<quint8>(3 * band), size, 5, 3)));
    }
}

TEST(cConvertRGBToCMYKFunctorTest, NothingBeyondTheImageIsRead)
{
    for (const auto type : {cImgType::RGB24, cImgType::RGB32})
        for (const auto side : {FencedMemory::AgainstEnd, FencedMemory::AgainstStart})
            for (unsigned width = 1; width < 70; ++width) {
                const unsigned size = type == cImgType::RGB24 ? 3 : 4;
                FencedMemory memory(std::size_t(width) * size, side);
                std::memset(memory.data(), 7, std::size_t(width) * size);
                const cImg image(type, width, 1, size, width * size, memory.data(), {});
                EXPECT_TRUE(samePixels(convert(image), inksOf(image)));
            }
}

TEST(cConvertRGBToCMYKFunctorTest, TheStationsResultHasTheRangeOfInksAndTheAttributesOfTheImage)
{
    cImg image = makeRandomImage(cImgType::RGB24, 6, 5);
    image.setName(QStringLiteral("part"));
    StationHarness harness(cStation::create(QStringLiteral("ipp/image/colorConversion/RGBToCMYK")));
    harness.feed("img", image, 4);
    harness.runAll();
    ASSERT_EQ(harness.values<cImg>("img").size(), 1);
    const cImg result = harness.values<cImg>("img").at(0);
    EXPECT_TRUE(samePixels(result, inksOf(image)));
    EXPECT_EQ(result.getRange().getLow(), 0.0);
    EXPECT_EQ(result.getRange().getHigh(), 1.0);
    EXPECT_EQ(result.getName(), QStringLiteral("part"));
    EXPECT_EQ(harness.stamps("img"), QList<qint64> {4});
}

TEST(cConvertRGBToCMYKFunctorTest, OtherImagesAreRefused)
{
    EXPECT_EQ(messageOf([] { convert(cImg()); }), "cConvertRGBToCMYKFunctor::operator (): Invalid image.");
    EXPECT_EQ(messageOf([] { convert(cImg(cImgType::UInt8, 2, 2)); }),
        "cConvertRGBToCMYKFunctor::operator (): Unsupported image format (UInt8) or channel count (1).");
}
