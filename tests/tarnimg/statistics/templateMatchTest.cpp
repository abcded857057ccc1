#include "support/StationHarness.h"
#include "support/images.h"
#include "support/messageOf.h"

#include <cmath>
#include <cstdlib>
#include <customipp/customipp.h>
#include <functional>
#include <gtest/gtest.h>
#include <string>
#include <tarnbase/cMapObj.h>
#include <tarnflow/cStation.h>
#include <tarnimg/tarnimg.h>

namespace {

/** A functor with its parameters. */
template <class Functor> struct Matcher {
    Functor functor;
    cMapObj params;

    explicit Matcher(const char* i_mode = nullptr, const char* i_norm = nullptr)
    {
        functor.refreshParams(&params);
        if (i_mode)
            params.getSubObject(QStringLiteral("mode"))->setValue(QString::fromLatin1(i_mode));
        if (i_norm)
            params.getSubObject(QStringLiteral("norm"))->setValue(QString::fromLatin1(i_norm));
    }
    cImg operator()(const cImg& i_image, const cImg& i_template) { return functor(i_image, i_template); }
    std::string says(const cImg& i_image, const cImg& i_template)
    {
        return messageOf([&] { functor(i_image, i_template); });
    }
};
using Correlation = Matcher<cCrossCorrelationFunctor>;
using Distance = Matcher<cSqrDistanceFunctor>;

std::string textOf(IppStatus i_status) { return ippGetStatusString(i_status); }

/** The pixel of an image, 0 outside. */
template <class T> double pixelAt(const cImg& i_image, int i_x, int i_y)
{
    const bool inside
        = i_x >= 0 && i_y >= 0 && i_x < int(i_image.getWidth()) && i_y < int(i_image.getHeight());
    return inside ? double(i_image.getPixel<T>(unsigned(i_x), unsigned(i_y))) : 0;
}

/** Both measures without a norm, at the place where the template's first pixel lies on x, y of the image. */
template <class T>
std::pair<double, double> matchAt(const cImg& i_image, const cImg& i_template, int i_x, int i_y)
{
    double products = 0, distance = 0;
    for (int j = 0; j < int(i_template.getHeight()); ++j)
        for (int i = 0; i < int(i_template.getWidth()); ++i) {
            const double t = pixelAt<T>(i_template, i, j), x = pixelAt<T>(i_image, i_x + i, i_y + j);
            products += t * x;
            distance += (t - x) * (t - x);
        }
    return {products, distance};
}

template <class T> void expectEveryMode(cImgType::ImageTypes i_type)
{
    const auto small = [](unsigned x, unsigned y) { return T((x * 7 + y * y * 3) % 50); };
    const cImg image = generateImage(i_type, 13, 9, small), part = generateImage(i_type, 4, 3, small);
    struct Case {
        const char* mode;
        unsigned width, height;
        int originX, originY;
    };
    for (const Case& c :
        {Case {"Full", 16, 11, 3, 2}, Case {"Valid", 10, 7, 0, 0}, Case {"Same", 13, 9, 2, 1}}) {
        const cImg correlation = Correlation(c.mode)(image, part), distance = Distance(c.mode)(image, part);
        for (const cImg& result : {correlation, distance}) {
            ASSERT_TRUE(result.isKindOf(cImgType::Float32));
            ASSERT_EQ(result.getNumChannels(), 1u);
            ASSERT_EQ(result.getWidth(), c.width);
            ASSERT_EQ(result.getHeight(), c.height);
        }
        for (unsigned y = 0; y < c.height; ++y)
            for (unsigned x = 0; x < c.width; ++x) {
                const auto [products, squares]
                    = matchAt<T>(image, part, int(x) - c.originX, int(y) - c.originY);
                ASSERT_EQ(correlation.getPixel<float>(x, y), float(products))
                    << c.mode << " " << x << ", " << y;
                ASSERT_EQ(distance.getPixel<float>(x, y), float(squares)) << c.mode << " " << x << ", " << y;
            }
    }
}

} // namespace

TEST(templateMatchTest, EveryModeOnEveryTypeItSupports)
{
    expectEveryMode<unsigned char>(cImgType::UInt8);
    expectEveryMode<unsigned short>(cImgType::UInt16);
    expectEveryMode<float>(cImgType::Float32);
}

TEST(templateMatchTest, TheDefaultsAreTheFullExtentWithoutNorm)
{
    const cImg image = makeImage<unsigned char>(cImgType::UInt8, {{1, 2, 3}});
    const cImg part = makeImage<unsigned char>(cImgType::UInt8, {{1, 10}});
    EXPECT_TRUE(samePixels(
        cCrossCorrelationFunctor()(image, part), makeImage<float>(cImgType::Float32, {{10, 21, 32, 3}})));
    EXPECT_TRUE(samePixels(
        cSqrDistanceFunctor()(image, part), makeImage<float>(cImgType::Float32, {{82, 64, 50, 104}})));
}

TEST(templateMatchTest, NormsDivideByTheRootsOfTheSumsOfSquares)
{
    const cImg image = makeImage<unsigned short>(cImgType::UInt16, {{1, 2, 3}});
    const cImg part = makeImage<unsigned short>(cImgType::UInt16, {{1, 10}});
    EXPECT_FLOAT_EQ(Correlation("Valid", "Norm")(image, part).getPixel<float>(0, 0), 0.9344877f);
    EXPECT_FLOAT_EQ(Distance("Valid", "Norm")(image, part).getPixel<float>(0, 0), 2.8479626f);
    const cImg longer = makeImage<float>(cImgType::Float32, {{1, 2, 3, 7}});
    const cImg three = makeImage<float>(cImgType::Float32, {{1, 10, 4}});
    const cImg coefficient = Correlation("Valid", "NormCoefficient")(longer, three);
    EXPECT_FLOAT_EQ(coefficient.getPixel<float>(0, 0), 0.3273268f);
    EXPECT_NEAR(coefficient.getPixel<float>(1, 0), 0, 1e-7);
}

TEST(templateMatchTest, AnUnknownNormIsNone)
{
    const cImg image = makeImage<unsigned char>(cImgType::UInt8, {{1, 2, 3}});
    const cImg part = makeImage<unsigned char>(cImgType::UInt8, {{1, 10}});
    EXPECT_TRUE(samePixels(
        Correlation("Valid", "nothing")(image, part), makeImage<float>(cImgType::Float32, {{21, 32}})));
}

TEST(templateMatchTest, ALargerTemplateFailsInValidModeOnly)
{
    const auto pixel = [](unsigned x, unsigned y) { return static_cast<unsigned char>(3 * x + y); };
    const cImg image = generateImage(cImgType::UInt8, 4, 4, pixel);
    for (const auto& [width, height] : {std::pair {5u, 4u}, std::pair {4u, 5u}, std::pair {9u, 9u}}) {
        const cImg part = generateImage(cImgType::UInt8, width, height, pixel);
        EXPECT_EQ(Correlation("Valid").says(image, part),
            "cCrossCorrelationFunctor::operator (): First image must not be smaller than second image.");
        EXPECT_EQ(Distance("Valid").says(image, part),
            "cSqrDistanceFunctor::operator (): First image must not be smaller than second image.");
        const cImg full = Correlation("Full")(image, part), same = Distance("Same")(image, part);
        EXPECT_EQ(full.getWidth(), 4 + width - 1);
        EXPECT_EQ(full.getHeight(), 4 + height - 1);
        EXPECT_EQ(same.getWidth(), 4u);
        EXPECT_EQ(same.getHeight(), 4u);
        const auto corner = matchAt<unsigned char>(image, part, 1 - int(width), 1 - int(height));
        EXPECT_EQ(full.getPixel<float>(0, 0), float(corner.first));
        const auto centre = matchAt<unsigned char>(image, part, 2 - int(width / 2), 1 - int(height / 2));
        EXPECT_EQ(same.getPixel<float>(2, 1), float(centre.second));
    }
    const cImg equal = generateImage(cImgType::UInt8, 4, 4, pixel);
    EXPECT_EQ(Distance("Valid")(image, equal).getWidth(), 1u);
}

TEST(templateMatchTest, TheChecksComeInTheirOrder)
{
    const cImg bytes(cImgType::UInt8, 4, 4, 1), larger(cImgType::UInt8, 5, 5, 1);
    const cImg words(cImgType::UInt16, 5, 5, 1), signedWords(cImgType::SInt16, 4, 4, 1);
    const cImg colour(cImgType::RGB24, 5, 5, 3), two(cImgType::UInt8, 4, 4, 2), none;
    const auto expect = [&](auto&& matcher, const std::string& op) {
        EXPECT_EQ(matcher.says(none, colour), op + ": Invalid image.");
        EXPECT_EQ(
            matcher.says(colour, none), op + ": Unsupported image format (RGB24) or channel count (3).");
        EXPECT_EQ(matcher.says(two, none), op + ": Unsupported image format (UInt8) or channel count (2).");
        EXPECT_EQ(matcher.says(bytes, none), op + ": Invalid image.");
        EXPECT_EQ(matcher.says(bytes, signedWords),
            op + ": Unsupported image format (SInt16) or channel count (1).");
        EXPECT_EQ(matcher.says(bytes, two), op + ": Unsupported image format (UInt8) or channel count (2).");
        EXPECT_EQ(matcher.says(bytes, words), op + ": Image types must be equal.");
        EXPECT_EQ(matcher.says(bytes, larger), op + ": First image must not be smaller than second image.");
    };
    expect(Correlation("Valid", "Norm"), "cCrossCorrelationFunctor::operator ()");
    expect(Distance("Valid", "Norm"), "cSqrDistanceFunctor::operator ()");
}

TEST(templateMatchTest, ADistanceHasNoCoefficient)
{
    const cImg image(cImgType::UInt8, 4, 4, 1), part(cImgType::UInt8, 2, 2, 1);
    for (const char* mode : {"Full", "Valid", "Same"})
        EXPECT_EQ(Distance(mode, "NormCoefficient").says(image, part),
            "checkIPPStatus: " + textOf(ippStsAlgTypeErr));
}

TEST(templateMatchTest, AnUnknownModeHasNoResultToWriteTo)
{
    const cImg image(cImgType::UInt8, 4, 4, 1), part(cImgType::UInt8, 2, 2, 1);
    EXPECT_EQ(Correlation("valid").says(image, part),
        "cCrossCorrelationFunctor::operator (): " + textOf(ippStsNullPtrErr));
    EXPECT_EQ(
        Distance("").says(image, part), "cSqrDistanceFunctor::operator (): " + textOf(ippStsNullPtrErr));
}

TEST(templateMatchTest, TheParametersOfferTheirChoices)
{
    const auto expect = [](const cMapObj& params) {
        EXPECT_EQ(params.getSubObject(QStringLiteral("mode"))->getChoices(),
            (QStringList {QStringLiteral("Valid"), QStringLiteral("Same"), QStringLiteral("Full")}));
        EXPECT_EQ(params.getSubObject(QStringLiteral("norm"))->getChoices(),
            (QStringList {
                QStringLiteral("NormNone"), QStringLiteral("Norm"), QStringLiteral("NormCoefficient")}));
    };
    expect(Correlation().params);
    expect(Distance().params);
    EXPECT_EQ(cCrossCorrelationFunctor::Norm, 256);
    EXPECT_EQ(cSqrDistanceFunctor::NormCoefficient, 512);
}

TEST(templateMatchTest, OneFunctorServesImagesOfManySizes)
{
    Correlation correlation("Same", "NormCoefficient");
    for (const unsigned size : {200u, 3u, 70u, 330u, 1u}) {
        const cImg image = makeRandomImage(cImgType::UInt8, size, size, 1, size);
        const cImg part(image, false, cRect<int>(0, 0, int(size / 3 + 1), int(size / 2 + 1)));
        const cImg result = correlation(image, part);
        const cImg once = Correlation("Same", "NormCoefficient")(image, part);
        EXPECT_TRUE(samePixels(result, once)) << size;
    }
    const Matcher<cCrossCorrelationFunctor> other;
    const cCrossCorrelationFunctor copy = correlation.functor;
    EXPECT_TRUE(
        samePixels(cCrossCorrelationFunctor(copy)(cImg(cImgType::UInt8, 1, 1), cImg(cImgType::UInt8, 1, 1)),
            correlation(cImg(cImgType::UInt8, 1, 1), cImg(cImgType::UInt8, 1, 1))));
}

TEST(templateMatchTest, AViewIsFoundInItsParent)
{
    const cImg image = makeRandomImage(cImgType::UInt8, 300, 200, 1, 3);
    const cImg part(image, false, cRect<int>(123, 77, 40, 31));
    const cImg coefficient = Correlation("Valid", "NormCoefficient")(image, part);
    const cImg distance = Distance("Valid")(image, part);
    for (unsigned y = 0; y < coefficient.getHeight(); ++y)
        for (unsigned x = 0; x < coefficient.getWidth(); ++x) {
            const bool here = x == 123 && y == 77;
            ASSERT_EQ(coefficient.getPixel<float>(x, y) > 0.999f, here) << x << ", " << y;
            ASSERT_EQ(distance.getPixel<float>(x, y) == 0, here) << x << ", " << y;
        }
}

TEST(templateMatchTest, AStationSendsTheMapForImageAndTemplate)
{
    const cImg image = makeImage<unsigned char>(cImgType::UInt8, {{1, 2, 3}});
    const cImg part = makeImage<unsigned char>(cImgType::UInt8, {{1, 10}});
    for (const auto& [id, first] :
        {std::pair {"ipp/image/statistics/proximityMeasures/crossCorrelation", 21.0f},
            std::pair {"ipp/image/statistics/proximityMeasures/sqrDistance", 64.0f}}) {
        StationHarness harness(cStation::create(QString::fromLatin1(id)));
        ASSERT_TRUE(harness.station()
                        .getParams()
                        .getSubObject(QStringLiteral("mode"))
                        ->setFromText(QStringLiteral("Valid")));
        harness.feed("img1", image, 10);
        harness.feed("img2", part, 10);
        // The template may not be the larger one; the station goes on.
        harness.feed("img1", part, 20);
        harness.feed("img2", image, 20);
        harness.runAll();
        const auto results = harness.values<cImg>("img");
        ASSERT_EQ(results.size(), 1);
        EXPECT_EQ(results[0].getWidth(), 2u);
        EXPECT_EQ(results[0].getPixel<float>(0, 0), first);
        EXPECT_EQ(harness.stamps("img"), QList<qint64> {10});
        ASSERT_EQ(harness.errors().size(), 1);
    }
}

TEST(cWorkMemoryTest, ItGrowsToWhatIsAskedAndNeverShrinks)
{
    cWorkMemory work;
    EXPECT_EQ(work.size(), 256u);
    unsigned char* const inside = work.grow(256);
    EXPECT_GE(inside, reinterpret_cast<unsigned char*>(&work));
    EXPECT_LT(inside, reinterpret_cast<unsigned char*>(&work + 1));
    unsigned char* const heap = work.grow(257);
    EXPECT_EQ(work.size(), 257u);
    EXPECT_EQ(work.grow(3), heap);
    EXPECT_EQ(work.grow(257), heap);
    work.grow(100000);
    EXPECT_EQ(work.size(), 100000u);
    EXPECT_EQ(cWorkMemory(work).size(), 256u) << "a copy begins empty";
}
