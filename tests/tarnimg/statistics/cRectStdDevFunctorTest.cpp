#include "support/StationHarness.h"
#include "support/images.h"
#include "support/messageOf.h"

#include <cmath>
#include <customipp/customipp.h>
#include <gtest/gtest.h>
#include <tarnimg/statistics/cRectStdDevFunctor.h>
#include <tarnimg/statistics/cSqrIntegralFunctor.h>

namespace {

struct Integrals {
    cImg sums, squares;
};

Integrals integralsOf(const cImg& i_image, bool i_floatMode = false)
{
    cSqrIntegralFunctor functor;
    functor.setFloatMode(i_floatMode);
    Integrals result;
    functor(i_image, result.sums, result.squares);
    return result;
}

cImg deviations(const cImg& i_sums, const cImg& i_squares, const cRect<int>& i_rect)
{
    cRectStdDevFunctor functor;
    functor.setRect(i_rect);
    return functor(i_sums, i_squares);
}

/** Of the pixels themselves. */
double deviation(const cImg& i_image, const cRect<int>& i_rect)
{
    double sum = 0, squares = 0;
    for (int y = i_rect.getTop(); y < i_rect.getBottom(); ++y)
        for (int x = i_rect.getLeft(); x < i_rect.getRight(); ++x) {
            const double pixel = i_image.getPixel<quint8>(unsigned(x), unsigned(y));
            sum += pixel;
            squares += pixel * pixel;
        }
    const double count = double(i_rect.getWidth()) * i_rect.getHeight();
    return std::sqrt((squares * count - sum * sum) / (count * count));
}

std::string statusText(IppStatus i_status)
{
    return std::string("cRectStdDevFunctor::operator (): ") + ippGetStatusString(i_status);
}

} // namespace

TEST(cRectStdDevFunctorTest, EachPixelIsTheDeviationUnderTheMovedRectangle)
{
    const cImg image = makeRandomImage(cImgType::UInt8, 40, 20);
    for (const bool floatMode : {false, true})
        for (const cRect<int>& rect :
            {cRect<int>(0, 0, 10, 10), cRect<int>(3, 2, 5, 1), cRect<int>(0, 4, 1, 7)}) {
            const Integrals integrals = integralsOf(image, floatMode);
            const cImg result = deviations(integrals.sums, integrals.squares, rect);
            ASSERT_TRUE(result.isKindOf(cImgType::Float32));
            ASSERT_EQ(result.getSize(), QSize(int(41 - rect.getRight()), int(21 - rect.getBottom())));
            for (unsigned y = 0; y < result.getHeight(); ++y)
                for (unsigned x = 0; x < result.getWidth(); ++x)
                    ASSERT_EQ(result.getPixel<float>(x, y),
                        float(deviation(image, rect.translated(int(x), int(y)))))
                        << x << ", " << y;
        }
}

TEST(cRectStdDevFunctorTest, ARectangleUpToTheBorderOfTheIntegralIsRefused)
{
    const Integrals integrals = integralsOf(makeRandomImage(cImgType::UInt8, 20, 12));
    const auto says = [&](const cRect<int>& rect) {
        return messageOf([&] { deviations(integrals.sums, integrals.squares, rect); });
    };
    EXPECT_EQ(says({0, 0, 21, 2}), statusText(ippStsStepErr));
    EXPECT_EQ(says({11, 0, 10, 2}), statusText(ippStsStepErr));
    EXPECT_EQ(says({0, 3, 10, 10}), statusText(ippStsStepErr));
    EXPECT_EQ(says({2147483647, 2147483647, 2147483647, 2147483647}), statusText(ippStsStepErr));
    EXPECT_EQ(deviations(integrals.sums, integrals.squares, {10, 2, 10, 10}).getSize(), QSize(1, 1));
}

TEST(cRectStdDevFunctorTest, ARectangleWithoutPixelsOrOutsideIsRefused)
{
    const Integrals integrals = integralsOf(makeRandomImage(cImgType::UInt8, 20, 12));
    constexpr int lowest = -2147483647 - 1;
    for (const cRect<int>& rect : {cRect<int>(0, 0, 0, 3), cRect<int>(0, 0, 3, 0), cRect<int>(-1, 0, 3, 3),
             cRect<int>(0, -1, 3, 3), cRect<int>(lowest, 0, 3, 3), cRect<int>(0, lowest, 3, 3),
             cRect<int>(lowest, lowest, lowest, lowest), cRect<int>(0, 0, -5, 3)})
        EXPECT_EQ(messageOf([&] { deviations(integrals.sums, integrals.squares, rect); }),
            statusText(ippStsRectErr));
}

TEST(cRectStdDevFunctorTest, AnIntegralInDoublePrecisionIsTakenButNothingIsComputed)
{
    const Integrals integrals = integralsOf(makeRandomImage(cImgType::UInt8, 20, 12));
    const cImg result = deviations(integrals.squares, integrals.squares, {0, 0, 10, 10});
    EXPECT_TRUE(result.isKindOf(cImgType::Float32));
    EXPECT_EQ(result.getSize(), QSize(11, 3));
}

TEST(cRectStdDevFunctorTest, TheChecksComeInTheirOrder)
{
    const std::string name = "cRectStdDevFunctor::operator ()";
    const cImg sums(cImgType::SInt32, 20, 20), squares(cImgType::Float64, 20, 20);
    const auto says
        = [](const cImg& a, const cImg& b) { return messageOf([&] { cRectStdDevFunctor()(a, b); }); };
    EXPECT_EQ(says(cImg(), cImg()), name + ": Invalid image.");
    EXPECT_EQ(says(cImg(cImgType::UInt8, 20, 20), cImg()),
        name + ": Unsupported image format (UInt8) or channel count (1).");
    EXPECT_EQ(says(cImg(cImgType::SInt32, 20, 20, 2), squares),
        name + ": Unsupported image format (SInt32) or channel count (2).");
    EXPECT_EQ(says(sums, sums), name + ": Unsupported image format (SInt32) or channel count (1).");
    EXPECT_EQ(says(sums, cImg()),
        name + ": Unsupported image format (" + cImg().getImgType().getName().toStdString()
            + ") or channel count (" + std::to_string(cImg().getNumChannels()) + ").");
    EXPECT_EQ(says(sums, cImg(cImgType::Float64, 0, 20)),
        name + ": Unsupported image format (Float64) or channel count (1).");
    EXPECT_EQ(says(sums, cImg(cImgType::Float64, 3, 3, 2)), name + ": Number of channels must be equal.");
    EXPECT_EQ(says(sums, cImg(cImgType::Float64, 20, 19)), name + ": Image sizes must be equal.");
    EXPECT_EQ(says(sums, cImg(cImgType::Float64, 21, 20)), name + ": Image sizes must be equal.");
    EXPECT_EQ(says(cImg(cImgType::SInt32, 3, 3), cImg(cImgType::Float64, 3, 3)), statusText(ippStsStepErr));
    unsigned char memory[20 * 81] = {};
    EXPECT_EQ(
        says(cImg(cImgType::SInt32, 20, 20, 4, 81, memory, {}), squares), statusText(ippStsNotEvenStepErr))
        << "the second row begins at an odd byte";
}

TEST(cRectStdDevStationTest, BothIntegralsOfAStampBecomeOneImage)
{
    const Integrals integrals = integralsOf(makeRandomImage(cImgType::UInt8, 20, 12));
    StationHarness harness(cStation::create(QStringLiteral("ipp/image/statistics/rectStdDev")));
    harness.feed("integral", integrals.sums, 2);
    harness.feed("sqrIntegral", integrals.squares, 2);
    harness.runAll();
    ASSERT_EQ(harness.values<cImg>("img").size(), 1);
    EXPECT_TRUE(samePixels(
        harness.values<cImg>("img").at(0), deviations(integrals.sums, integrals.squares, {0, 0, 10, 10})));
}
