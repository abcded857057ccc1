#include "Parametrised.h"

#include "support/FencedMemory.h"
#include "support/StationHarness.h"
#include "support/images.h"
#include "support/messageOf.h"

#include <cmath>
#include <customipp/customipp.h>
#include <tarnimg/statistics/cImgNormDiffFunctor.h>
#include <tarnimg/statistics/cImgNormFunctor.h>

namespace {

using Norm = Parametrised<cImgNormFunctor>;
using NormDiff = Parametrised<cImgNormDiffFunctor>;

const char* const s_modes[] = {"NormL1", "NormL2", "NormInf"};

/** An image with one channel for each type whose pixels are 3 and -4, or 3 and 4. */
std::vector<cImg> threeAndFour()
{
    return {makeImage<quint8>(cImgType::UInt8, {{3, 4}}), makeImage<quint16>(cImgType::UInt16, {{3, 4}}),
        makeImage<qint16>(cImgType::SInt16, {{3, -4}}), makeImage<float>(cImgType::Float32, {{3, -4}})};
}

const cImg& rgb24()
{
    static const cImg s_image = makeImage<quint8>(cImgType::RGB24, {{3, 1, 200, 4, 0, 100}});
    return s_image;
}
const cImg& rgb32()
{
    static const cImg s_image = makeImage<quint8>(cImgType::RGB32, {{3, 1, 200, 8, 4, 0, 100, 6}});
    return s_image;
}

} // namespace

TEST(cImgNormFunctorTest, ModesGiveTheirNorms)
{
    const double expected[] = {7, 5, 4};
    for (int mode = 0; mode < 3; ++mode) {
        Norm norm;
        norm.set("mode", QString::fromLatin1(s_modes[mode]));
        for (const cImg& image : threeAndFour())
            EXPECT_EQ(norm(image), expected[mode])
                << s_modes[mode] << " of " << image.getImgType().getTypeId();
        EXPECT_EQ(norm(rgb24()), expected[mode]) << "red";
        EXPECT_EQ(norm(rgb32()), expected[mode]) << "red";
    }
    EXPECT_EQ(cImgNormFunctor()(rgb24()), 7) << "L1 is the default";
}

TEST(cImgNormFunctorTest, AnUnknownModeIsTheFirst)
{
    Norm norm;
    norm.setValue("mode", QStringLiteral("Norm7"));
    EXPECT_EQ(norm(rgb24()), 7);
    EXPECT_EQ(norm(rgb24(), cImg()), 7);
}

TEST(cImgNormFunctorTest, EachChannelHasItsNorm)
{
    Norm norm;
    norm.set("mode", QStringLiteral("NormL1"));
    std::vector<double> norms(4, -1);
    norm(rgb24(), norms.data());
    EXPECT_EQ(norms, (std::vector<double> {7, 1, 300, -1}));
    norm(rgb32(), norms.data());
    EXPECT_EQ(norms, (std::vector<double> {7, 1, 300, 14}));
    norm.set("mode", QStringLiteral("NormInf"));
    norm(rgb32(), norms.data());
    EXPECT_EQ(norms, (std::vector<double> {4, 1, 200, 8}));

    norms.assign(4, -1);
    for (const cImg& image : threeAndFour())
        norm(image, norms.data());
    EXPECT_EQ(norms, std::vector<double>(4, -1)) << "one channel leaves the array alone";
}

TEST(cImgNormFunctorTest, AMaskSelectsThePixelsWhereItIsNotZero)
{
    const cImg mask = makeImage<quint8>(cImgType::UInt8, {{0, 7}});
    for (const char* mode : s_modes) {
        Norm norm;
        norm.set("mode", QString::fromLatin1(mode));
        for (const cImg& image : threeAndFour())
            EXPECT_EQ(norm(image, mask), image.isKindOf(cImgType::SInt16) ? 0 : 4) << mode;
        EXPECT_EQ(norm(rgb24(), mask), 4) << mode;
        EXPECT_EQ(norm(rgb32(), mask), 0) << mode;
    }
    EXPECT_EQ(mask.getPixel<quint8>(1, 0), 7);
}

TEST(cImgNormFunctorTest, WhatIsNoMaskSelectsEveryPixel)
{
    const double expected[] = {7, 5, 4};
    for (const cImg& mask :
        {cImg(), makeImage<quint16>(cImgType::UInt16, {{0, 0}}), makeImage<float>(cImgType::Float32, {{0}})})
        for (int mode = 0; mode < 3; ++mode) {
            Norm norm;
            norm.set("mode", QString::fromLatin1(s_modes[mode]));
            for (const cImg& image : threeAndFour())
                EXPECT_EQ(norm(image, mask), image.isKindOf(cImgType::SInt16) ? 0 : expected[mode]);
            EXPECT_EQ(norm(rgb24(), mask), expected[mode]);
            EXPECT_EQ(norm(rgb32(), mask), 0);
        }
}

TEST(cImgNormFunctorTest, AMaskThatIsTooSmallIsNotReadBeyondItsEnd)
{
    const cImg image = generateImage(cImgType::UInt8, 5, 4, [](unsigned, unsigned) { return quint8(1); });
    FencedMemory memory(10, FencedMemory::AgainstEnd);
    for (unsigned i = 0; i < 10; ++i)
        memory.set<quint8>(i, 1);
    const cImgNormFunctor norm;
    EXPECT_EQ(norm(image, cImg(cImgType::UInt8, 5, 2, 1, 5, memory.data(), {})), 10) << "two rows of it";
    EXPECT_EQ(norm(image, cImg(cImgType::UInt8, 2, 5, 1, 2, memory.data(), {})), 0) << "too narrow";
    const cImg wide(cImgType::UInt8, 5, 2, 1, 5, memory.data(), {});
    EXPECT_EQ(norm(image, cImg(wide, false, cRect<int>(3, 0, 2, 2))), 0)
        << "a view with the pitch of its parent";
    EXPECT_EQ(norm(image, cImg(wide, false, cRect<int>(0, 1, 5, 1))), 5);
}

TEST(cImgNormFunctorTest, AStatusIsReportedButNotOfTheFormWithAMask)
{
    unsigned char memory[10] = {};
    const cImg image(cImgType::UInt16, 2, 2, 2, 5, memory, {}); // the second row begins at an odd byte
    const cImg mask = makeImage<quint8>(cImgType::UInt8, {{1, 1}, {1, 1}});
    const std::string status = ippGetStatusString(ippStsNotEvenStepErr);
    for (const char* mode : s_modes) {
        Norm norm;
        NormDiff difference;
        norm.set("mode", QString::fromLatin1(mode));
        difference.set("mode", QString::fromLatin1(mode));
        EXPECT_EQ(messageOf([&] { norm(image); }), "cImgNormFunctor::operator (): " + status);
        EXPECT_EQ(
            messageOf([&] { difference(image, image); }), "cImgNormDiffFunctor::operator (): " + status);
        EXPECT_EQ(norm(image, mask), 0);
        EXPECT_EQ(norm(image, cImg()), 0);
    }
}

TEST(cImgNormFunctorTest, InvalidAndUnsupportedImagesAreRefused)
{
    const cImgNormFunctor norm;
    double norms[4] = {};
    const cImg none, wide(cImgType::Float64, 2, 2, 1), two(cImgType::UInt8, 2, 2, 2);
    const auto expectRefused = [&](const cImg& image, const char* message) {
        EXPECT_EQ(messageOf([&] { norm(image); }), message);
        EXPECT_EQ(messageOf([&] { norm(image, image); }), message);
        EXPECT_EQ(messageOf([&] { norm(image, norms); }), message);
    };
    expectRefused(none, "cImgNormFunctor::operator (): Invalid image.");
    expectRefused(
        wide, "cImgNormFunctor::operator (): Unsupported image format (Float64) or channel count (1).");
    expectRefused(
        two, "cImgNormFunctor::operator (): Unsupported image format (UInt8) or channel count (2).");
}

TEST(cImgNormFunctorTest, TheStationTakesAMaskOrNone)
{
    const cImg mask = makeImage<quint8>(cImgType::UInt8, {{0, 1}});
    const auto create = [] { return cStation::create(QStringLiteral("ipp/image/statistics/norm")); };
    StationHarness masked(create());
    masked.feed("mask", mask, 10);
    masked.feed("img", threeAndFour()[0], 10);
    masked.runAll();
    EXPECT_EQ(masked.values<double>("norm"), QVector<double> {4});
    EXPECT_EQ(masked.stamps("norm"), QList<qint64> {10});
    // The mask of an earlier image does not stay.
    masked.finish("mask", 11);
    masked.feed("img", threeAndFour()[0], 11);
    masked.runAll();
    EXPECT_EQ(masked.values<double>("norm"), (QVector<double> {4, 7}));

    StationHarness alone(create(), {QStringLiteral("mask")});
    alone.feed("img", threeAndFour()[0], 10);
    alone.feed("img", threeAndFour()[2], 11);
    alone.runAll();
    EXPECT_EQ(alone.values<double>("norm"), (QVector<double> {7, 0})) << "SInt16 has no norm with a mask";
    EXPECT_TRUE(alone.errors().isEmpty());

    StationHarness unasked(create(), {QStringLiteral("mask"), QStringLiteral("norm")});
    unasked.feed("img", cImg(), 10);
    unasked.runAll();
    EXPECT_TRUE(unasked.errors().isEmpty()) << "nobody wants the norm, so nothing is looked at";
    EXPECT_EQ(unasked.fates("img").gated, 1u);
}

TEST(cImgNormDiffFunctorTest, ModesGiveTheirNorms)
{
    const double expected[] = {7, 5, 4};
    const auto expectNorms = [&](const cImg& a, const cImg& b) {
        for (int mode = 0; mode < 3; ++mode) {
            NormDiff norm;
            norm.set("mode", QString::fromLatin1(s_modes[mode]));
            EXPECT_EQ(norm(a, b), expected[mode]) << s_modes[mode] << " of " << a.getImgType().getTypeId();
            EXPECT_EQ(norm(b, a), expected[mode]);
            EXPECT_EQ(norm(a, a), 0);
        }
    };
    expectNorms(
        makeImage<quint8>(cImgType::UInt8, {{1}, {5}}), makeImage<quint8>(cImgType::UInt8, {{4}, {1}}));
    expectNorms(
        makeImage<quint16>(cImgType::UInt16, {{1, 5}}), makeImage<quint16>(cImgType::UInt16, {{4, 1}}));
    expectNorms(
        makeImage<qint16>(cImgType::SInt16, {{-1, 2}}), makeImage<qint16>(cImgType::SInt16, {{2, -2}}));
    expectNorms(makeImage<float>(cImgType::Float32, {{-1.5f, 2.25f}}),
        makeImage<float>(cImgType::Float32, {{1.5f, -1.75f}}));
    expectNorms(makeImage<quint8>(cImgType::RGB24, {{1, 9, 9, 5, 9, 9}}),
        makeImage<quint8>(cImgType::RGB24, {{4, 200, 3, 1, 0, 255}}));
    expectNorms(makeImage<quint8>(cImgType::RGB32, {{1, 9, 9, 9, 5, 9, 9, 9}}),
        makeImage<quint8>(cImgType::RGB32, {{4, 200, 3, 0, 1, 0, 255, 8}}));
}

TEST(cImgNormDiffFunctorTest, TheChecksComeInTheirOrder)
{
    const cImgNormDiffFunctor norm;
    const auto message = [&](const cImg& a, const cImg& b) { return messageOf([&] { norm(a, b); }); };
    const cImg grey(cImgType::UInt8, 4, 4, 1), three(cImgType::UInt8, 5, 4, 3),
        wide(cImgType::UInt8, 5, 4, 1);
    EXPECT_EQ(message(cImg(), grey), "cImgNormDiffFunctor::operator (): Invalid image.");
    EXPECT_EQ(message(grey, cImg()), "cImgNormDiffFunctor::operator (): Invalid image.");
    EXPECT_EQ(message(grey, cImg(cImgType::UInt16, 5, 4, 3)),
        "cImgNormDiffFunctor::operator (): Image types must be equal.");
    EXPECT_EQ(message(grey, three), "cImgNormDiffFunctor::operator (): Number of channels must be equal.");
    EXPECT_EQ(message(grey, wide), "cImgNormDiffFunctor::operator (): Image sizes must be equal.");
    EXPECT_EQ(message(three, three),
        "cImgNormDiffFunctor::operator (): Unsupported image format (UInt8) or channel count (3).");
}

TEST(cImgNormDiffFunctorTest, TheStationSendsTheNormOfAMatch)
{
    StationHarness harness(cStation::create(QStringLiteral("ipp/image/statistics/normDiff")));
    harness.feed("img1", threeAndFour()[0], 10);
    harness.feed("img2", makeImage<quint8>(cImgType::UInt8, {{0, 0}}), 10);
    harness.runAll();
    EXPECT_EQ(harness.values<double>("norm"), QVector<double> {7});
    EXPECT_EQ(harness.stamps("norm"), QList<qint64> {10});
}
