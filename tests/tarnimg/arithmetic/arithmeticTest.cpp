#include "support/messageOf.h"

#include <cmath>
#include <customipp/customipp.h>
#include <functional>
#include <gtest/gtest.h>
#include <limits>
#include <random>
#include <tarnbase/cDataValObj.h>
#include <tarnimg/tarnimg.h>
#include <utility>
#include <vector>

namespace {

using Image2 = const cImg&;

/** A functor of two images with the scalar definition of its result. */
struct Operation {
    const char* name;
    std::function<cImg(Image2, Image2)> combine;
    std::function<void(Image2, cImg&)> workInto; // empty if the functor has no such form
    std::function<double(double, double)> exact; // before rounding to the pixel type
    bool rgb32 = true;
    bool sint16 = true;
    bool zeroAllowed = true; // among the pixels of the first image
};

template <class Functor>
Operation withBothForms(const char* i_name, std::function<double(double, double)> i_exact)
{
    return {i_name, [](Image2 a, Image2 b) { return Functor()(a, b); },
        [](Image2 a, cImg& b) { Functor()(a, b); }, std::move(i_exact)};
}

template <class Functor>
Operation allocating(const char* i_name, std::function<double(double, double)> i_exact)
{
    return {i_name, [](Image2 a, Image2 b) { return Functor()(a, b); }, {}, std::move(i_exact)};
}

std::vector<Operation> operations()
{
    std::vector<Operation> all = {
        withBothForms<cAddImagesFunctor>("cAddImagesFunctor", [](double a, double b) { return a + b; }),
        withBothForms<cSubtractImagesFunctor>(
            "cSubtractImagesFunctor", [](double a, double b) { return b - a; }),
        withBothForms<cMultiplyImagesFunctor>(
            "cMultiplyImagesFunctor", [](double a, double b) { return a * b; }),
        withBothForms<cDivideImagesFunctor>("cDivideImagesFunctor", [](double a, double b) { return b / a; }),
        allocating<cImageDifferencesFunctor>(
            "cImageDifferencesFunctor", [](double a, double b) { return std::fabs(a - b); }),
        allocating<cMinEveryFunctor>("cMinEveryFunctor", [](double a, double b) { return a < b ? a : b; }),
        allocating<cMaxEveryFunctor>("cMaxEveryFunctor", [](double a, double b) { return a > b ? a : b; }),
    };
    all[3].zeroAllowed = false;
    all[4].rgb32 = all[4].sint16 = false;
    return all;
}

/** Rounds halves to even, then limits to the type. */
template <class T> T toPixel(double i_exact)
{
    if constexpr (std::is_floating_point_v<T>)
        return T(i_exact);
    else
        return T(std::min(std::max(std::nearbyint(i_exact), double(std::numeric_limits<T>::min())),
            double(std::numeric_limits<T>::max())));
}

/** Random pixels with the type's extremes among them. */
template <class T>
cImg randomImage(cImgType::ImageTypes i_type, unsigned i_lanes, unsigned i_seed, bool i_zeroAllowed)
{
    cImg image(i_type, 37, 5, 1);
    std::mt19937 random(i_seed);
    for (unsigned y = 0; y < image.getHeight(); ++y) {
        T* row = image.row<T>(y);
        for (unsigned x = 0; x < image.getWidth() * i_lanes; ++x) {
            if constexpr (std::is_floating_point_v<T>)
                row[x] = T(std::uniform_int_distribution<int>(-4096, 4096)(random)) / T(16);
            else if (random() % 8 == 0)
                row[x] = random() % 2 ? std::numeric_limits<T>::max() : std::numeric_limits<T>::min();
            else
                row[x] = T(random() % 2 ? random() : random() % 20);
            if (row[x] == T(0) && !i_zeroAllowed)
                row[x] = T(3);
        }
    }
    return image;
}

template <class T>
void expectOperation(const Operation& i_operation, cImgType::ImageTypes i_type, unsigned i_lanes)
{
    SCOPED_TRACE(std::string(i_operation.name) + " on type " + std::to_string(i_type));
    const cImg a = randomImage<T>(i_type, i_lanes, 1, i_operation.zeroAllowed);
    const cImg b = randomImage<T>(i_type, i_lanes, 2, true);
    const cImg aBefore = a.clone();
    const cImg bBefore = b.clone();

    const auto check = [&](const cImg& result) {
        ASSERT_TRUE(result.isKindOf(i_type));
        ASSERT_EQ(result.getSize(), a.getSize());
        for (unsigned y = 0; y < a.getHeight(); ++y) {
            for (unsigned x = 0; x < a.getWidth() * i_lanes; ++x) {
                const T left = aBefore.getRow<T>(y)[x];
                const T right = bBefore.getRow<T>(y)[x];
                ASSERT_EQ(result.getRow<T>(y)[x], toPixel<T>(i_operation.exact(double(left), double(right))))
                    << "lane " << x << " of row " << y << ": " << double(left) << ", " << double(right);
            }
        }
    };
    check(i_operation.combine(a, b));
    EXPECT_TRUE(a == aBefore);
    EXPECT_TRUE(b == bBefore);

    if (i_operation.workInto) {
        cImg inOut = b; // shares its pixels with b, which must not change
        i_operation.workInto(a, inOut);
        check(inOut);
        EXPECT_TRUE(b == bBefore);
    }
}

} // namespace

TEST(twoImagesTest, EveryOperationGivesItsDefinitionOnEveryTypeItSupports)
{
    for (const Operation& operation : operations()) {
        expectOperation<unsigned char>(operation, cImgType::UInt8, 1);
        expectOperation<unsigned short>(operation, cImgType::UInt16, 1);
        expectOperation<float>(operation, cImgType::Float32, 1);
        expectOperation<unsigned char>(operation, cImgType::RGB24, 3);
        if (operation.sint16)
            expectOperation<short>(operation, cImgType::SInt16, 1);
        if (operation.rgb32)
            expectOperation<unsigned char>(operation, cImgType::RGB32, 4);
    }
}

TEST(twoImagesTest, TheChecksComeInTheirOrder)
{
    const cImg small(cImgType::UInt8, 4, 4, 1);
    const cImg large(cImgType::UInt8, 5, 4, 1);
    const cImg smallOfThree(cImgType::UInt8, 4, 4, 3);
    const cImg largeOfThree(cImgType::UInt8, 5, 4, 3);
    const cImg wide16(cImgType::UInt16, 5, 4, 2);
    const cImg rgb24(cImgType::RGB24, 4, 4, 3);
    const cImg rgb32(cImgType::RGB32, 4, 4, 4);
    const cImg complex(cImgType::Complex, 4, 4, 2);
    const cImg invalid;

    std::vector<std::pair<std::string, std::function<cImg(Image2, Image2)>>> all;
    for (const Operation& operation : operations())
        all.emplace_back(operation.name, operation.combine);
    all.emplace_back(
        "cAddProductImageFunctor", [](Image2 a, Image2 b) { return cAddProductImageFunctor()(a, b); });

    for (const auto& [name, combine] : all) {
        const std::string op = name + "::operator ()";
        const auto says = [&, &call = combine](Image2 a, Image2 b) { return messageOf([&] { call(a, b); }); };
        EXPECT_EQ(says(invalid, small), op + ": Invalid image.");
        EXPECT_EQ(says(small, invalid), op + ": Invalid image.");
        EXPECT_EQ(says(small, wide16), op + ": Image types must be equal.");
        EXPECT_EQ(says(rgb24, rgb32), op + ": Image types must be equal.");
        EXPECT_EQ(says(small, largeOfThree), op + ": Number of channels must be equal.");
        EXPECT_EQ(says(small, large), op + ": Image sizes must be equal.");
        EXPECT_EQ(says(invalid, wide16), op + ": Invalid image.");
        EXPECT_EQ(says(smallOfThree, largeOfThree), op + ": Image sizes must be equal.");
        EXPECT_EQ(says(smallOfThree, smallOfThree),
            op + ": Unsupported image format (UInt8) or channel count (3).");
        EXPECT_EQ(says(complex, complex), op + ": Unsupported image format (Complex) or channel count (2).");
    }
}

TEST(twoImagesTest, AViewWithAnotherPitchHasAnotherStructure)
{
    const cImg parent(cImgType::UInt8, 8, 4, 1);
    const cImg view(parent, false, cRect<int>(1, 1, 4, 2));
    const cImg compact(cImgType::UInt8, 4, 2, 1);
    EXPECT_EQ(messageOf([&] { cAddImagesFunctor()(view, compact); }),
        "cAddImagesFunctor::operator (): Image sizes must be equal.");
}

TEST(twoImagesTest, ViewsOfOneParentAreCombinedWithinTheirRectangles)
{
    cImg parent(cImgType::UInt8, 8, 4, 1);
    for (unsigned y = 0; y < 4; ++y)
        for (unsigned x = 0; x < 8; ++x)
            parent.setPixel<unsigned char>(x, y, static_cast<unsigned char>(10 * y + x));
    const cImg left(parent, false, cRect<int>(1, 1, 3, 2));
    const cImg right(parent, false, cRect<int>(5, 2, 3, 2));
    const cImg sum = cAddImagesFunctor()(left, right);
    EXPECT_EQ(sum.getYPitch(), 3u);
    EXPECT_EQ(sum.getPixel<unsigned char>(0, 0), 11 + 25);
    EXPECT_EQ(sum.getPixel<unsigned char>(2, 1), 23 + 37);
}

TEST(twoImagesTest, SubtractTakesTheFirstFromTheSecond)
{
    cImg a(cImgType::UInt8, 1, 1, 1);
    cImg b(cImgType::UInt8, 1, 1, 1);
    a.setPixel<unsigned char>(0, 0, 200);
    b.setPixel<unsigned char>(0, 0, 50);
    EXPECT_EQ(cSubtractImagesFunctor()(std::as_const(a), std::as_const(b)).getPixel<unsigned char>(0, 0), 0);
    EXPECT_EQ(
        cSubtractImagesFunctor()(std::as_const(b), std::as_const(a)).getPixel<unsigned char>(0, 0), 150);
}

TEST(twoImagesTest, AZeroDivisorFailsTheWholeCall)
{
    const auto check = [](cImgType::ImageTypes type, auto one, auto zero) {
        using T = decltype(one);
        cImg divisor(type, 3, 1, 1);
        cImg dividend(type, 3, 1, 1);
        for (unsigned x = 0; x < 3; ++x) {
            divisor.setPixel<T>(x, 0, one);
            dividend.setPixel<T>(x, 0, T(10 * (x + 1)));
        }
        divisor.setPixel<T>(1, 0, zero);
        const std::string text
            = std::string("cDivideImagesFunctor::operator (): ") + ippGetStatusString(ippStsDivByZero);
        EXPECT_EQ(messageOf([&] { cDivideImagesFunctor()(std::as_const(divisor), std::as_const(dividend)); }),
            text);

        // In place the destination keeps what was computed.
        EXPECT_EQ(messageOf([&] { cDivideImagesFunctor()(divisor, dividend); }), text);
        EXPECT_EQ(dividend.getPixel<T>(0, 0), T(5));
        EXPECT_EQ(dividend.getPixel<T>(2, 0), T(15));
    };
    check(cImgType::UInt8, static_cast<unsigned char>(2), static_cast<unsigned char>(0));
    check(cImgType::SInt16, short(2), short(0));
    check(cImgType::Float32, 2.0f, 0.0f);
}

TEST(twoImagesTest, AFailedCheckLeavesTheSecondImageAlone)
{
    const cImg a(cImgType::UInt8, 4, 4, 1);
    cImg b(cImgType::UInt8, 5, 4, 1);
    const unsigned char* pixels = std::as_const(b).getConstData();
    EXPECT_NE(messageOf([&] { cAddImagesFunctor()(a, b); }), "no failure");
    EXPECT_EQ(std::as_const(b).getConstData(), pixels);
}

TEST(twoImagesTest, TheSmallerAndTheGreaterPixelCarryTheAttributesOfTheSecondImageAndASumNone)
{
    cImg a(cImgType::UInt8, 2, 2, 1);
    cImg b(cImgType::UInt8, 2, 2, 1);
    a.getImgType().fill(a, 1);
    b.getImgType().fill(b, 2);
    b.setName(QStringLiteral("second"));
    b.setImgAttr(QStringLiteral("exposure"), new cDataValObj<double>(0.5, 0));

    const cImg smaller = cMinEveryFunctor()(std::as_const(a), std::as_const(b));
    EXPECT_EQ(smaller.getName(), QStringLiteral("second"));
    EXPECT_TRUE(smaller.getImgAttributes().contains(QStringLiteral("exposure")));
    EXPECT_EQ(cMaxEveryFunctor()(std::as_const(a), std::as_const(b)).getName(), QStringLiteral("second"));

    const cImg sum = cAddImagesFunctor()(std::as_const(a), std::as_const(b));
    EXPECT_TRUE(sum.getName().isEmpty());
    EXPECT_FALSE(sum.getImgAttributes().contains(QStringLiteral("exposure")));
}

TEST(twoImagesTest, AFailureOfThePixelFunctionGivesACopyOfTheSecondImageWhereTheStatusDoesNotCount)
{
    // Rows as far apart as the pixel layer cannot go; only the first one is there.
    unsigned char first[] = {1, 200};
    unsigned char second[] = {100, 100};
    constexpr unsigned tooFar = 0x80000000u;
    const cImg a(cImgType::UInt8, 2, 1, 1, tooFar, first, nullptr);
    cImg b(cImgType::UInt8, 2, 1, 1, tooFar, second, nullptr);
    b.setName(QStringLiteral("second"));
    const auto expectCopy = [&](const cImg& i_result) {
        EXPECT_EQ(i_result.getName(), QStringLiteral("second"));
        EXPECT_NE(i_result.getConstData(), second);
        EXPECT_EQ(i_result.getPixel<unsigned char>(0, 0), 100);
        EXPECT_EQ(i_result.getPixel<unsigned char>(1, 0), 100);
    };
    expectCopy(cMinEveryFunctor()(a, b));
    expectCopy(cMaxEveryFunctor()(a, b));
    const std::string status = ippGetStatusString(ippStsStepErr);
    EXPECT_EQ(messageOf([&] { cAddImagesFunctor()(a, std::as_const(b)); }),
        "cAddImagesFunctor::operator (): " + status);
    EXPECT_EQ(messageOf([&] { cImageDifferencesFunctor()(a, b); }),
        "cImageDifferencesFunctor::operator (): " + status);
}

TEST(cImageDifferencesFunctorTest, ColourWithAlphaAndSignedImagesAreRefused)
{
    const cImg rgb32(cImgType::RGB32, 2, 2, 4);
    const cImg sint16(cImgType::SInt16, 2, 2, 1);
    EXPECT_EQ(messageOf([&] { cImageDifferencesFunctor()(rgb32, rgb32); }),
        "cImageDifferencesFunctor::operator (): Unsupported image format (RGB32) or channel count (4).");
    EXPECT_EQ(messageOf([&] { cImageDifferencesFunctor()(sint16, sint16); }),
        "cImageDifferencesFunctor::operator (): Unsupported image format (SInt16) or channel count (1).");
}

TEST(cImageAbsFunctorTest, TheSignGoes)
{
    cImg shorts(cImgType::SInt16, 4, 1, 1);
    const short values[] = {-32768, -1, 0, 32767};
    for (unsigned x = 0; x < 4; ++x)
        shorts.setPixel<short>(x, 0, values[x]);
    const cImg result = cImageAbsFunctor()(shorts);
    const short expected[] = {32767, 1, 0, 32767};
    for (unsigned x = 0; x < 4; ++x)
        EXPECT_EQ(result.getPixel<short>(x, 0), expected[x]);

    cImg floats(cImgType::Float32, 2, 1, 1);
    floats.setPixel<float>(0, 0, -0.0f);
    floats.setPixel<float>(1, 0, -1.5f);
    const cImg positive = cImageAbsFunctor()(floats);
    EXPECT_FALSE(std::signbit(positive.getPixel<float>(0, 0)));
    EXPECT_EQ(positive.getPixel<float>(1, 0), 1.5f);
}

TEST(cImageAbsFunctorTest, UnsignedImagesAreRefused)
{
    EXPECT_EQ(messageOf([] { cImageAbsFunctor()(cImg(cImgType::UInt8, 2, 2, 1)); }),
        "cImageAbsFunctor::operator (): Unsupported image format (UInt8) or channel count (1).");
    EXPECT_EQ(messageOf([] { cImageAbsFunctor()(cImg()); }), "cImageAbsFunctor::operator (): Invalid image.");
}

namespace {

template <class T>
cImg constantImage(cImgType::ImageTypes i_type, unsigned i_width, unsigned i_height, T i_value)
{
    cImg image(i_type, i_width, i_height, 1);
    for (unsigned y = 0; y < i_height; ++y)
        std::fill_n(image.row<T>(y), i_width, i_value);
    return image;
}

cImg bytes(unsigned i_width, unsigned i_height, unsigned char i_value)
{
    return constantImage<unsigned char>(cImgType::UInt8, i_width, i_height, i_value);
}

} // namespace

TEST(cAddSquareImageFunctorTest, TheSumGoesOnAcrossPixelTypesAndStartsAnewForAnotherSize)
{
    cAddSquareImageFunctor addSquare;
    EXPECT_EQ(addSquare(bytes(10, 10, 3)).getPixel<float>(9, 9), 9.0f);
    const cImg sum = addSquare(constantImage<unsigned short>(cImgType::UInt16, 10, 10, 1000));
    EXPECT_TRUE(sum.isKindOf(cImgType::Float32));
    EXPECT_EQ(sum.getPixel<float>(0, 0), 9.0f + 1000000.0f);
    EXPECT_EQ(addSquare(constantImage<float>(cImgType::Float32, 10, 10, 0.5f)).getPixel<float>(4, 4),
        9.0f + 1000000.0f + 0.25f);
    EXPECT_EQ(addSquare(bytes(10, 11, 2)).getPixel<float>(9, 10), 4.0f);
}

TEST(cAddSquareImageFunctorTest, EarlierResultsStayAsTheyWere)
{
    cAddSquareImageFunctor addSquare;
    const cImg first = addSquare(bytes(4, 4, 2));
    const cImg second = addSquare(bytes(4, 4, 2));
    EXPECT_EQ(first.getPixel<float>(0, 0), 4.0f);
    EXPECT_EQ(second.getPixel<float>(0, 0), 8.0f);
}

TEST(cAddSquareImageFunctorTest, AFailedInputKeepsTheSum)
{
    cAddSquareImageFunctor addSquare;
    addSquare(bytes(4, 4, 2));
    EXPECT_EQ(messageOf([&] { addSquare(cImg()); }), "cAddSquareImageFunctor::operator (): Invalid image.");
    EXPECT_EQ(messageOf([&] { addSquare(cImg(cImgType::RGB24, 4, 4, 3)); }),
        "cAddSquareImageFunctor::operator (): Unsupported image format (RGB24) or channel count (3).");
    EXPECT_EQ(addSquare(bytes(4, 4, 2)).getPixel<float>(3, 3), 8.0f);
}

TEST(cAddSquareImageFunctorTest, ResetBeginsFromZeroAndIsHarmlessBeforeTheFirstImage)
{
    cAddSquareImageFunctor addSquare;
    addSquare.reset();
    const cImg before = addSquare(bytes(4, 4, 5));
    addSquare.reset();
    EXPECT_EQ(before.getPixel<float>(0, 0), 25.0f);
    EXPECT_EQ(addSquare(bytes(4, 4, 1)).getPixel<float>(0, 0), 1.0f);
}

TEST(cAddSquareImageFunctorTest, ACopyGoesItsOwnWay)
{
    cAddSquareImageFunctor addSquare;
    addSquare(bytes(4, 4, 2));
    cAddSquareImageFunctor copy = addSquare;
    EXPECT_EQ(copy(bytes(4, 4, 1)).getPixel<float>(0, 0), 5.0f);
    EXPECT_EQ(addSquare(bytes(4, 4, 0)).getPixel<float>(0, 0), 4.0f);
}

TEST(cAddProductImageFunctorTest, TheSumOfProductsIsRoundedToSinglePrecisionAtEachStep)
{
    cAddProductImageFunctor addProduct;
    const cImg a = constantImage<unsigned short>(cImgType::UInt16, 5, 3, 65535);
    const cImg b = constantImage<unsigned short>(cImgType::UInt16, 5, 3, 65533);
    addProduct(a, b);
    addProduct.reset();
    const float product = 65535.0f * 65533.0f;
    EXPECT_EQ(addProduct(a, b).getPixel<float>(4, 2), product);
    const cImg one = bytes(5, 3, 1);
    EXPECT_EQ(addProduct(one, one).getPixel<float>(0, 0), product + 1.0f);
}

TEST(cAddProductImageFunctorTest, AnotherSizeStartsANewSum)
{
    cAddProductImageFunctor addProduct;
    const cImg first = addProduct(bytes(4, 4, 1), bytes(4, 4, 1));
    const cImg second = addProduct(bytes(4, 5, 1), bytes(4, 5, 1));
    EXPECT_EQ(first.getHeight(), 4u);
    EXPECT_EQ(second.getHeight(), 5u);
    addProduct.reset();
    EXPECT_EQ(addProduct(bytes(4, 5, 3), bytes(4, 5, 4)).getPixel<float>(0, 0), 12.0f);
}

TEST(cAddProductImageFunctorTest, ANewSumBeginsWithWhatItsMemoryHeld)
{
    cImg::releaseUnusedMemory();
    constantImage<float>(cImgType::Float32, 6, 7, 100.0f); // the memory of which the sum gets
    cAddProductImageFunctor addProduct;
    EXPECT_EQ(addProduct(bytes(6, 7, 2), bytes(6, 7, 3)).getPixel<float>(5, 6), 106.0f);

    constantImage<float>(cImgType::Float32, 8, 7, 100.0f);
    cAddSquareImageFunctor addSquare;
    EXPECT_EQ(addSquare(bytes(8, 7, 2)).getPixel<float>(7, 6), 4.0f) << "that of squares is cleared";
}

TEST(cAddProductImageFunctorTest, AFailedInputKeepsTheSumAndEarlierResultsStay)
{
    cAddProductImageFunctor addProduct;
    addProduct(bytes(4, 4, 1), bytes(4, 4, 1));
    addProduct.reset();
    const cImg first = addProduct(bytes(4, 4, 2), bytes(4, 4, 3));
    EXPECT_EQ(messageOf([&] { addProduct(bytes(4, 4, 1), bytes(4, 5, 1)); }),
        "cAddProductImageFunctor::operator (): Image sizes must be equal.");
    EXPECT_EQ(addProduct(bytes(4, 4, 2), bytes(4, 4, 2)).getPixel<float>(3, 3), 10.0f);
    EXPECT_EQ(first.getPixel<float>(3, 3), 6.0f);
}
