#include "support/images.h"
#include "support/messageOf.h"

#include <cmath>
#include <customipp/customipp.h>
#include <functional>
#include <gtest/gtest.h>
#include <limits>
#include <tarnbase/cDataValObj.h>
#include <tarnbase/cMapObj.h>
#include <tarnimg/tarnimg.h>
#include <utility>
#include <vector>

namespace {

/** Rounds halves to even, then limits to the type. */
template <class T> T toPixel(double i_exact)
{
    if constexpr (std::is_floating_point_v<T>)
        return T(i_exact);
    else
        return T(std::min(std::max(std::nearbyint(i_exact), double(std::numeric_limits<T>::min())),
            double(std::numeric_limits<T>::max())));
}

/** Both forms of a functor against the definition, lane by lane; exact(pixel, channel) is not rounded yet. */
template <class T, class Functor>
void expectBothForms(
    const Functor& i_functor, cImgType::ImageTypes i_type, const std::function<double(T, unsigned)>& i_exact)
{
    const cImg image = makeRandomImage(i_type, 67, 5, 1, unsigned(i_type));
    const cImg before = image.clone();
    const unsigned channels = image.getNumChannels();
    const cImg expected = [&] {
        cImg pixels(i_type, image.getWidth(), image.getHeight());
        for (unsigned y = 0; y < image.getHeight(); ++y)
            for (unsigned x = 0; x < image.getWidth() * channels; ++x)
                pixels.row<T>(y)[x] = toPixel<T>(i_exact(before.getRow<T>(y)[x], x % channels));
        return pixels;
    }();
    EXPECT_TRUE(samePixels(i_functor(image), expected)) << "new image";
    cImg inPlace = image; // shares its pixels with the image, which must not change
    i_functor(inPlace);
    EXPECT_TRUE(samePixels(inPlace, expected)) << "in place";
    EXPECT_TRUE(image == before);
}

template <class Functor, class Constant> Functor with(Constant i_constant)
{
    Functor functor;
    functor.setConstant(i_constant);
    return functor;
}

cMultiplyConstantWithImageRGBFunctor multiplyRGB(double i_red, double i_green, double i_blue)
{
    cMultiplyConstantWithImageRGBFunctor functor;
    functor.setConstantRed(i_red);
    functor.setConstantGreen(i_green);
    functor.setConstantBlue(i_blue);
    return functor;
}

cDivideImageByConstantFunctor divideRGB(double i_red, double i_green, double i_blue)
{
    cDivideImageByConstantFunctor functor;
    functor.setConstantRed(i_red);
    functor.setConstantGreen(i_green);
    functor.setConstantBlue(i_blue);
    return functor;
}

/** What a functor makes of one pixel. */
template <class T, class Functor> T ofPixel(const Functor& i_functor, cImgType::ImageTypes i_type, T i_pixel)
{
    const cImg image = makeImage<T>(i_type, {{i_pixel}});
    return i_functor(image).template getPixel<T>(0, 0);
}

quint8 ofByte(const auto& i_functor, int i_pixel)
{
    return ofPixel<quint8>(i_functor, cImgType::UInt8, quint8(i_pixel));
}

std::string statusText(IppStatus i_status) { return ippGetStatusString(i_status); }

} // namespace

TEST(cAddConstantToImageFunctorTest, AddsTheConstantAndSaturates)
{
    const auto add = with<cAddConstantToImageFunctor>(100.0f);
    expectBothForms<quint8>(add, cImgType::UInt8, [](quint8 p, unsigned) { return p + 100.0; });
    expectBothForms<quint16>(add, cImgType::UInt16, [](quint16 p, unsigned) { return p + 100.0; });
    expectBothForms<qint16>(add, cImgType::SInt16, [](qint16 p, unsigned) { return p + 100.0; });
    expectBothForms<float>(add, cImgType::Float32, [](float p, unsigned) { return double(p + 100.0f); });
    const auto minus = with<cAddConstantToImageFunctor>(-7000.0f);
    expectBothForms<qint16>(minus, cImgType::SInt16, [](qint16 p, unsigned) { return p - 7000.0; });
}

TEST(cAddConstantToImageFunctorTest, AnIntegerImageGetsTheTruncatedConstantAndAFloatImageTheWholeOne)
{
    const auto add = with<cAddConstantToImageFunctor>(1.9f);
    EXPECT_EQ(ofByte(add, 10), 11);
    EXPECT_EQ(ofPixel<float>(add, cImgType::Float32, 10.0f), 10.0f + 1.9f);
    EXPECT_EQ(ofByte(with<cAddConstantToImageFunctor>(300.0f), 10), 54);
    EXPECT_EQ(ofByte(with<cAddConstantToImageFunctor>(-1.0f), 10), 255) << "-1 is 255 in a byte";
}

TEST(cAddConstantToImageRGBFunctorTest, AddsAColourAndLeavesTheFourthChannel)
{
    const int colour[] = {10, 200, 30, 0};
    const auto add = with<cAddConstantToImageRGBFunctor>(QColor(10, 200, 30, 77));
    const auto exact = [&](quint8 p, unsigned channel) { return double(p + colour[channel]); };
    expectBothForms<quint8>(add, cImgType::RGB24, exact);
    expectBothForms<quint8>(add, cImgType::RGB32, exact);
}

TEST(cAddConstantToImageRGBFunctorTest, TheDefaultColourIsInvalidAndAddsNothing)
{
    EXPECT_FALSE(cAddConstantToImageRGBFunctor().getConstant().isValid());
    expectBothForms<quint8>(
        cAddConstantToImageRGBFunctor(), cImgType::RGB24, [](quint8 p, unsigned) { return double(p); });
}

TEST(cSubtractConstantFromImageFunctorTest, SubtractsTheConstantAndSaturates)
{
    const auto subtract = with<cSubtractConstantFromImageFunctor>(100.9);
    expectBothForms<quint8>(subtract, cImgType::UInt8, [](quint8 p, unsigned) { return p - 100.0; });
    expectBothForms<quint16>(subtract, cImgType::UInt16, [](quint16 p, unsigned) { return p - 100.0; });
    expectBothForms<qint16>(subtract, cImgType::SInt16, [](qint16 p, unsigned) { return p - 100.0; });
    expectBothForms<float>(
        subtract, cImgType::Float32, [](float p, unsigned) { return double(p - float(100.9)); });
}

TEST(cSubtractConstantFromImageFunctorTest, ColourImagesAreAcceptedAndLeftAsTheyAre)
{
    const auto subtract = with<cSubtractConstantFromImageFunctor>(5.0);
    for (const auto type : {cImgType::RGB24, cImgType::RGB32}) {
        const cImg image = makeRandomImage(type, 7, 3);
        cImg inPlace = image;
        subtract(inPlace);
        EXPECT_TRUE(samePixels(inPlace, image));
        const cImg unwritten = subtract(image);
        EXPECT_TRUE(unwritten.isKindOf(type));
        EXPECT_EQ(unwritten.getSize(), image.getSize());
    }
}

TEST(cSubtractConstantFromImageRGBFunctorTest, SubtractsAColourAndLeavesTheFourthChannel)
{
    const int colour[] = {10, 200, 30, 0};
    const auto subtract = with<cSubtractConstantFromImageRGBFunctor>(QColor(10, 200, 30, 77));
    const auto exact = [&](quint8 p, unsigned channel) { return double(p - colour[channel]); };
    expectBothForms<quint8>(subtract, cImgType::RGB24, exact);
    expectBothForms<quint8>(subtract, cImgType::RGB32, exact);
}

TEST(cMultiplyConstantWithImageFunctorTest, ADefaultFunctorCopies)
{
    const cMultiplyConstantWithImageFunctor multiply;
    expectBothForms<quint8>(multiply, cImgType::UInt8, [](quint8 p, unsigned) { return double(p); });
    expectBothForms<quint16>(multiply, cImgType::UInt16, [](quint16 p, unsigned) { return double(p); });
    expectBothForms<qint16>(multiply, cImgType::SInt16, [](qint16 p, unsigned) { return double(p); });
    expectBothForms<float>(multiply, cImgType::Float32, [](float p, unsigned) { return double(p); });
}

TEST(cMultiplyConstantWithImageFunctorTest, AFractionActsAsAnIntegerWithAPowerOfTwo)
{
    struct Case {
        float constant;
        int factor8, scale8, factor16, scale16;
    };
    for (const Case& c : {Case {0.5f, 1, 1, 1, 1}, Case {1.3f, 166, 7, 42598, 15},
             Case {0.1f, 204, 11, 52428, 19}, Case {3.75f, 15, 2, 15, 2}, Case {255.0f, 255, 0, 255, 0}}) {
        SCOPED_TRACE(c.constant);
        const auto multiply = with<cMultiplyConstantWithImageFunctor>(c.constant);
        expectBothForms<quint8>(multiply, cImgType::UInt8,
            [&](quint8 p, unsigned) { return std::ldexp(double(p * c.factor8), -c.scale8); });
        expectBothForms<quint16>(multiply, cImgType::UInt16,
            [&](quint16 p, unsigned) { return std::ldexp(double(p) * c.factor16, -c.scale16); });
        expectBothForms<qint16>(multiply, cImgType::SInt16,
            [&](qint16 p, unsigned) { return std::ldexp(double(p) * qint16(c.factor16), -c.scale16); });
        expectBothForms<float>(
            multiply, cImgType::Float32, [&](float p, unsigned) { return double(p * c.constant); });
    }
}

TEST(cMultiplyConstantWithImageFunctorTest, WhatExceedsThePixelsWidthIsCut)
{
    EXPECT_EQ(ofByte(with<cMultiplyConstantWithImageFunctor>(300.0f), 2), 88) << "300 acts as 44";
    EXPECT_EQ(ofByte(with<cMultiplyConstantWithImageFunctor>(200.5f), 2), 145) << "401 / 2 acts as 145 / 2";
    EXPECT_EQ(ofByte(with<cMultiplyConstantWithImageFunctor>(-1.5f), 1), 255) << "-1 is 255 in a byte";
    const auto multiply = with<cMultiplyConstantWithImageFunctor>(1.3f);
    EXPECT_EQ(ofPixel<qint16>(multiply, cImgType::SInt16, 1000), -700)
        << "42598 / 2^15 is negative in a short";
    EXPECT_EQ(ofPixel<qint16>(with<cMultiplyConstantWithImageFunctor>(-2.9f), cImgType::SInt16, 1000), -2000);
}

TEST(cMultiplyConstantWithImageRGBFunctorTest, TheColoursShareTheGreatestScale)
{
    const double factors[] = {0.5, 1.0, 1.25, 1.0};
    const auto exact = [&](quint8 p, unsigned channel) { return p * factors[channel]; };
    expectBothForms<quint8>(multiplyRGB(0.5, 1.0, 1.25), cImgType::RGB24, exact);
    expectBothForms<quint8>(multiplyRGB(0.5, 1.0, 1.25), cImgType::RGB32, exact);

    const int bytes[] = {166, 128, 192, 128}; // of 1.3, 1 and 1.5 with 2^7
    const auto scaled = [&](quint8 p, unsigned channel) { return p * bytes[channel] / 128.0; };
    expectBothForms<quint8>(multiplyRGB(1.3, 1.0, 1.5), cImgType::RGB24, scaled);
    expectBothForms<quint8>(multiplyRGB(1.3, 1.0, 1.5), cImgType::RGB32, scaled);
}

TEST(cMultiplyConstantWithImageRGBFunctorTest, ASmallConstantPushesTheOtherFactorsOutOfTheirBytes)
{
    const int bytes[] = {204, 0, 0, 0}; // of 0.1, 1, 2 and the fourth channel's 1 with 2^11
    const auto scaled = [&](quint8 p, unsigned channel) { return p * bytes[channel] / 2048.0; };
    expectBothForms<quint8>(multiplyRGB(0.1, 1.0, 2.0), cImgType::RGB24, scaled);
    expectBothForms<quint8>(multiplyRGB(0.1, 1.0, 2.0), cImgType::RGB32, scaled);
}

TEST(cDivideImageByConstantFunctorTest, ADefaultFunctorCopies)
{
    const cDivideImageByConstantFunctor divide;
    expectBothForms<quint8>(divide, cImgType::UInt8, [](quint8 p, unsigned) { return double(p); });
    expectBothForms<qint16>(divide, cImgType::SInt16, [](qint16 p, unsigned) { return double(p); });
    expectBothForms<float>(divide, cImgType::Float32, [](float p, unsigned) { return double(p); });
    expectBothForms<quint8>(divide, cImgType::RGB24, [](quint8 p, unsigned) { return double(p); });
    expectBothForms<quint8>(divide, cImgType::RGB32, [](quint8 p, unsigned) { return double(p); });
}

TEST(cDivideImageByConstantFunctorTest, AFractionActsAsAnIntegerOfEightBitsWithAPowerOfTwo)
{
    struct Case {
        double constant;
        int divisor, scale;
    };
    // No quotient is so near to a half that the double would not tell: the divisors are below 2^8.
    for (const Case& c : {Case {0.5, 1, 1}, Case {1.3, 166, 7}, Case {3.0, 3, 0}, Case {0.1, 204, 11}}) {
        SCOPED_TRACE(c.constant);
        const auto divide = with<cDivideImageByConstantFunctor>(c.constant);
        const auto exact = [&](auto p, unsigned) { return std::ldexp(double(p), c.scale) / c.divisor; };
        expectBothForms<quint8>(divide, cImgType::UInt8, exact);
        expectBothForms<quint16>(divide, cImgType::UInt16, exact);
        expectBothForms<qint16>(divide, cImgType::SInt16, exact);
        expectBothForms<float>(
            divide, cImgType::Float32, [&](float p, unsigned) { return double(p / float(c.constant)); });
    }
}

TEST(cDivideImageByConstantFunctorTest, AnIntegerDivisorKeepsThePixelsWidth)
{
    EXPECT_EQ(ofPixel<quint16>(with<cDivideImageByConstantFunctor>(1000.0), cImgType::UInt16, 65000), 65);
    EXPECT_EQ(ofPixel<qint16>(with<cDivideImageByConstantFunctor>(-2.9), cImgType::SInt16, 10), -5);
    EXPECT_EQ(ofByte(with<cDivideImageByConstantFunctor>(300.0), 88), 2) << "300 acts as 44";
}

TEST(cDivideImageByConstantFunctorTest, ColoursHaveTheirOwnConstantsWithTheGreatestScale)
{
    const int bytes[] = {166, 128, 192, 128}; // of 1.3, 1 and 1.5 with 2^7
    const auto exact = [&](quint8 p, unsigned channel) { return p * 128.0 / bytes[channel]; };
    auto divide = divideRGB(1.3, 1.0, 1.5);
    divide.setConstant(0.0); // acts on images with one channel only
    expectBothForms<quint8>(divide, cImgType::RGB24, exact);
    expectBothForms<quint8>(divide, cImgType::RGB32, exact);
}

TEST(cDivideImageByConstantFunctorTest, ADivisorThatComesToZeroFailsAndLeavesThePixels)
{
    const std::string message
        = "cDivideImageByConstantFunctor::operator (): " + statusText(ippStsDivByZeroErr);
    const auto expectFailure = [&](const cDivideImageByConstantFunctor& divide, cImgType::ImageTypes type) {
        const cImg image = makeRandomImage(type, 5, 3);
        EXPECT_EQ(messageOf([&] { divide(image); }), message);
        cImg inPlace = image;
        EXPECT_EQ(messageOf([&] { divide(inPlace); }), message);
        EXPECT_TRUE(samePixels(inPlace, image));
    };
    for (const auto type : {cImgType::UInt8, cImgType::UInt16, cImgType::SInt16, cImgType::Float32})
        expectFailure(with<cDivideImageByConstantFunctor>(0.0), type);
    expectFailure(with<cDivideImageByConstantFunctor>(256.0), cImgType::UInt8);
    expectFailure(divideRGB(1.0, 0.0, 1.0), cImgType::RGB24);
    expectFailure(divideRGB(1.0, 1.0, 256.0), cImgType::RGB32);
    // Fine on three channels; the fourth one's divisor is 2^11, which is 0 in a byte.
    expectFailure(divideRGB(0.1, 0.1, 0.1), cImgType::RGB32);
    EXPECT_EQ(messageOf([] { divideRGB(0.1, 0.1, 0.1)(cImg(cImgType::RGB24, 2, 2)); }), "no failure");
}

TEST(constantArithmeticTest, InvalidAndUnsupportedImagesAreRefusedInTheirOrder)
{
    const auto check = [](const std::string& name, const auto& functor, bool grey, bool colour) {
        const auto says = [&](const cImg& image) {
            const std::string text = messageOf([&] { functor(image); });
            cImg inPlace = image;
            EXPECT_EQ(messageOf([&] { functor(inPlace); }), text);
            return text;
        };
        const std::string op = name + "::operator (): ";
        EXPECT_EQ(says(cImg()), op + "Invalid image.");
        EXPECT_EQ(says(cImg(cImgType::UInt8, 2, 2, 3)),
            op + "Unsupported image format (UInt8) or channel count (3).");
        EXPECT_EQ(says(cImg(cImgType::Float64, 2, 2)),
            op + "Unsupported image format (Float64) or channel count (1).");
        EXPECT_EQ(says(makeRandomImage(cImgType::UInt8, 2, 2)),
            grey ? "no failure" : op + "Unsupported image format (UInt8) or channel count (1).");
        EXPECT_EQ(says(makeRandomImage(cImgType::RGB32, 2, 2)),
            colour ? "no failure" : op + "Unsupported image format (RGB32) or channel count (4).");
    };
    check("cAddConstantToImageFunctor", cAddConstantToImageFunctor(), true, false);
    check("cAddConstantToImageRGBFunctor", cAddConstantToImageRGBFunctor(), false, true);
    check("cSubtractConstantFromImageFunctor", cSubtractConstantFromImageFunctor(), true, true);
    check("cSubtractConstantFromImageRGBFunctor", cSubtractConstantFromImageRGBFunctor(), false, true);
    check("cMultiplyConstantWithImageFunctor", cMultiplyConstantWithImageFunctor(), true, false);
    check("cMultiplyConstantWithImageRGBFunctor", cMultiplyConstantWithImageRGBFunctor(), false, true);
    check("cDivideImageByConstantFunctor", cDivideImageByConstantFunctor(), true, true);
}

TEST(constantArithmeticTest, AResultOfANewImageHasNoAttributesAndInPlaceTheyStay)
{
    cImg image = makeRandomImage(cImgType::UInt8, 3, 2);
    image.setName(QStringLiteral("part"));
    EXPECT_TRUE(cMultiplyConstantWithImageFunctor()(std::as_const(image)).getName().isEmpty());
    cMultiplyConstantWithImageFunctor()(image);
    EXPECT_EQ(image.getName(), QStringLiteral("part"));
}

TEST(constantArithmeticTest, AViewIsWorkedOnWithinItsRectangle)
{
    cImg parent(cImgType::UInt8, 4, 3);
    parent.getImgType().fill(parent, 10);
    cImg view(parent, false, cRect<int>(1, 1, 2, 1));
    with<cAddConstantToImageFunctor>(5.0f)(view);
    EXPECT_EQ(parent.getPixel<quint8>(1, 1), 15);
    EXPECT_EQ(parent.getPixel<quint8>(2, 1), 15);
    EXPECT_EQ(parent.getPixel<quint8>(0, 1), 10);
    EXPECT_EQ(parent.getPixel<quint8>(3, 1), 10);
    EXPECT_EQ(parent.getPixel<quint8>(1, 2), 10);
}
