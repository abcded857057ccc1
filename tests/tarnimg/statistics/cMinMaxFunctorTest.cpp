#include "support/FencedMemory.h"
#include "support/images.h"
#include "support/messageOf.h"

#include <QVariant>
#include <cmath>
#include <gtest/gtest.h>
#include <limits>
#include <tarnimg/statistics/cMinMaxFunctor.h>
#include <vector>

namespace {

struct Variants {
    QVariant min {QStringLiteral("before")};
    QVariant max {QStringLiteral("before")};
};

Variants variantsOf(const cImg& i_image)
{
    Variants result;
    cMinMaxFunctor()(i_image, result.min, result.max);
    return result;
}

template <class T> void expectVariants(const cImg& i_image, QMetaType::Type i_type, T i_least, T i_greatest)
{
    const Variants actual = variantsOf(i_image);
    EXPECT_EQ(actual.min.userType(), i_type);
    EXPECT_EQ(actual.max.userType(), i_type);
    EXPECT_EQ(actual.min.value<T>(), i_least);
    EXPECT_EQ(actual.max.value<T>(), i_greatest);
}

using Doubles = std::vector<double>;

void expectArrays(const cImg& i_image, const Doubles& i_least, const Doubles& i_greatest)
{
    Doubles least(i_least.size(), -1), greatest(i_least.size(), -1);
    cMinMaxFunctor()(i_image, least.data(), greatest.data());
    EXPECT_EQ(least, i_least);
    EXPECT_EQ(greatest, i_greatest);
}

} // namespace

TEST(cMinMaxFunctorTest, VariantsHoldTheTypeOfThePixels)
{
    expectVariants<uchar>(makeImage<quint8>(cImgType::UInt8, {{7, 200}, {3, 9}}), QMetaType::UChar, 3, 200);
    expectVariants<ushort>(
        makeImage<quint16>(cImgType::UInt16, {{7, 60000}, {3, 9}}), QMetaType::UShort, 3, 60000);
    expectVariants<short>(
        makeImage<qint16>(cImgType::SInt16, {{7, 30000}, {-30000, 9}}), QMetaType::Short, -30000, 30000);
    expectVariants<float>(
        makeImage<float>(cImgType::Float32, {{0.5f, -2.25f}, {1e30f, 9}}), QMetaType::Float, -2.25f, 1e30f);
    expectVariants<uint>(
        makeImage<quint32>(cImgType::UInt32, {{7, 4000000000u}, {3, 9}}), QMetaType::UInt, 3, 4000000000u);
    expectVariants<int>(makeImage<qint32>(cImgType::SInt32, {{7, -4}, {3, 9}}), QMetaType::Int, -4, 9);
    expectVariants<double>(
        makeImage<double>(cImgType::Float64, {{0.1, -4.5}, {3, 9}}), QMetaType::Double, -4.5, 9.0);
}

TEST(cMinMaxFunctorTest, BytesWithASignAreRankedWithoutIt)
{
    expectVariants<signed char>(
        makeImage<qint8>(cImgType::SInt8, {{1, -1, 127, -128}}), QMetaType::SChar, 1, -1);
}

TEST(cMinMaxFunctorTest, SeveralChannelsLeaveTheVariantsAlone)
{
    for (const cImg& image :
        {cImg(cImgType::UInt8, 2, 2, 3), cImg(cImgType::RGB24, 2, 2, 3), cImg(cImgType::RGB32, 2, 2, 4)}) {
        const Variants actual = variantsOf(image);
        EXPECT_EQ(actual.min, QVariant(QStringLiteral("before")));
        EXPECT_EQ(actual.max, QVariant(QStringLiteral("before")));
    }
}

TEST(cMinMaxFunctorTest, AVariantThatHoldsTheTypeIsWrittenInPlace)
{
    QVariant min = QVariant::fromValue(uchar(1)), max = min;
    max.detach();
    min.detach();
    const void* before = min.constData();
    cMinMaxFunctor()(makeImage<quint8>(cImgType::UInt8, {{5, 6}}), min, max);
    EXPECT_EQ(min.constData(), before);
    EXPECT_EQ(min.value<uchar>(), 5);
    EXPECT_EQ(max.value<uchar>(), 6);

    const QVariant sharing = min;
    cMinMaxFunctor()(makeImage<quint8>(cImgType::UInt8, {{8, 9}}), min, max);
    EXPECT_EQ(min.value<uchar>(), 8);
    EXPECT_EQ(sharing.value<uchar>(), 5);
}

TEST(cMinMaxFunctorTest, OfWideTypesOnlyAsManyPixelsAsARowHasBytesCount)
{
    // Rows of three pixels: twelve bytes, so twelve pixels, so four rows.
    const auto ofSInt32 = [](unsigned x, unsigned y) { return qint32(10 * y + x); };
    expectVariants<int>(generateImage(cImgType::SInt32, 3, 7, ofSInt32), QMetaType::Int, 0, 32);
    const auto ofUInt32 = [](unsigned x, unsigned y) { return quint32(100 - 10 * y - x); };
    expectVariants<uint>(generateImage(cImgType::UInt32, 3, 7, ofUInt32), QMetaType::UInt, 68, 100);
    // Eight bytes to a pixel: eight rows.
    const auto ofFloat64 = [](unsigned x, unsigned y) { return 0.5 + 10.0 * y + x; };
    expectVariants<double>(generateImage(cImgType::Float64, 3, 10, ofFloat64), QMetaType::Double, 0.5, 72.5);
}

TEST(cMinMaxFunctorTest, NoPixelBehindTheMemoryOfTheImageIsRead)
{
    for (const unsigned height : {1u, 2u, 3u, 4u}) {
        FencedMemory memory(12 * height, FencedMemory::AgainstEnd);
        for (unsigned i = 0; i < 3 * height; ++i)
            memory.set<qint32>(i, qint32(i) - 2);
        const cImg image(cImgType::SInt32, 3, height, 4, 12, memory.data(), {});
        expectVariants<int>(image, QMetaType::Int, -2, int(3 * height) - 3);
        const cImg lastPixel(image, false, cRect<int>(2, int(height) - 1, 1, 1));
        expectVariants<int>(lastPixel, QMetaType::Int, int(3 * height) - 3, int(3 * height) - 3);
        const cImg withoutSign(cImgType::UInt32, 3, height, 4, 12, memory.data(), {});
        expectVariants<uint>(withoutSign, QMetaType::UInt, 0, ~0u); // -1 is the greatest
    }
}

TEST(cMinMaxFunctorTest, ArraysHoldEachChannelOfEveryPixel)
{
    expectArrays(makeImage<quint8>(cImgType::UInt8, {{1, 20, 3, 40}, {0, 30, 9, 5}}, 2), {0, 5}, {9, 40});
    expectArrays(makeImage<quint16>(cImgType::UInt16, {{1, 65535}, {7, 3}}), {1}, {65535});
    expectArrays(makeImage<qint16>(cImgType::SInt16, {{-32768, 2, 32767}, {7, 3, 8}}, 3), {-32768, 2, 8},
        {7, 3, 32767});
    expectArrays(makeImage<qint32>(cImgType::SInt32, {{5}, {4}, {6}, {7}, {-2147483647}, {2147483647}}),
        {-2147483647}, {2147483647});
    expectArrays(
        makeImage<float>(cImgType::Float32, {{0.5f, -1.5f}, {2.25f, 8.0f}}, 2), {0.5, -1.5}, {2.25, 8.0});
    expectArrays(makeImage<double>(cImgType::Float64, {{0.1, 0.2}, {0.3, 1e300}}), {0.1}, {1e300});
    expectArrays(makeImage<quint8>(cImgType::RGB24, {{1, 2, 3, 250, 0, 9}}), {1, 0, 3}, {250, 2, 9});
    expectArrays(
        makeImage<quint8>(cImgType::RGB32, {{1, 2, 3, 4}, {250, 0, 9, 255}}), {1, 0, 3, 4}, {250, 2, 9, 255});
}

TEST(cMinMaxFunctorTest, WhatIsNotANumberDoesNotCount)
{
    const float nan = std::numeric_limits<float>::quiet_NaN();
    const double most = std::numeric_limits<double>::max();
    expectArrays(makeImage<float>(cImgType::Float32, {{nan, nan}, {2, nan}}, 2), {2, most}, {2, -most});
    expectVariants<float>(makeImage<float>(cImgType::Float32, {{nan, 5}, {2, nan}}), QMetaType::Float, 2, 5);
    const Variants none = variantsOf(makeImage<float>(cImgType::Float32, {{nan, nan}}));
    EXPECT_TRUE(std::isnan(none.min.toFloat()) && std::isnan(none.max.toFloat()));
}

TEST(cMinMaxFunctorTest, AnImageThatIsAViewIsNotReadBesideIt)
{
    const cImg parent = generateImage(cImgType::UInt8, 20, 20,
        [](unsigned x, unsigned y) { return quint8(x < 5 || y < 5 ? 255 : 10 + x); });
    const cImg view(parent, false, cRect<int>(5, 5, 4, 3));
    expectVariants<uchar>(view, QMetaType::UChar, 15, 18);
    expectArrays(view, {15}, {18});
}

TEST(cMinMaxFunctorTest, InvalidAndUnsupportedImagesAreRefused)
{
    const cMinMaxFunctor functor;
    QVariant min, max;
    double least = 0, greatest = 0;
    const auto expectRefused = [&](const cImg& image, const char* message) {
        EXPECT_EQ(messageOf([&] { functor(image, min, max); }), message);
        EXPECT_EQ(messageOf([&] { functor(image, &least, &greatest); }), message);
    };
    expectRefused(cImg(), "cMinMaxFunctor::operator (): Invalid image.");
    expectRefused(cImg(cImgType::SInt64, 2, 2, 1),
        "cMinMaxFunctor::operator (): Unsupported image format (SInt64) or channel count (1).");
    expectRefused(cImg(cImgType::Complex, 2, 2, 1),
        "cMinMaxFunctor::operator (): Unsupported image format (Complex) or channel count (2).");
    for (const cImgType::ImageTypes type : {cImgType::SInt8, cImgType::UInt32}) {
        const cImg image(type, 2, 2, 1);
        EXPECT_FALSE(functor.isSupported(image));
        EXPECT_EQ(messageOf([&] { functor(image, &least, &greatest); }),
            "cMinMaxFunctor::operator (): Unsupported image format ("
                + image.getImgType().getName().toStdString() + ") or channel count (1).");
    }
    EXPECT_FALSE(min.isValid() || max.isValid());
    EXPECT_EQ(least, 0);
}
