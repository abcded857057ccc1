// The display of gradients, against the definition.
#include "displayTesting.h"
#include "reference.h"

#include <QPair>
#include <algorithm>
#include <cmath>
#include <random>
#include <tarnimg/cImgTypeGradient.h>

using namespace displayTesting;
using reference::Range;

namespace {

constexpr double s_pi = 3.14159265358979323846;

class gradientDisplayTest : public onEveryTarget {};

INSTANTIATE_TEST_SUITE_P(
    , gradientDisplayTest, testing::ValuesIn(hwy::SupportedAndGeneratedTargets()), targetName);

double indexOf(double i_component, Range i_range)
{
    return std::trunc((i_component - i_range.low) * (255.0 / (i_range.high - i_range.low)));
}

int limited(double i_index, int i_low, int i_high)
{
    return int(std::clamp(i_index, double(i_low), double(i_high)));
}

int magnitudeOf(double i_dx, double i_dy, Range i_range)
{
    const int a = limited(std::fabs(indexOf(i_dx, i_range)), 0, 127);
    const int b = limited(std::fabs(indexOf(i_dy, i_range)), 0, 127);
    return int(std::min(255.0, std::sqrt(double(a * a + b * b))));
}

int directionOf(double i_dx, double i_dy, Range i_range)
{
    const int x = limited(indexOf(i_dx, i_range), 0, 255) - 128;
    const int y = limited(indexOf(i_dy, i_range), 0, 255) - 128;
    int n = int((std::atan2(double(y), double(x)) + s_pi) * 252.0 / (2.0 * s_pi));
    n = n >= 252 ? n - 252 : n;
    const int m = std::min(255, int(std::sqrt(double(x * x + y * y))));
    return m / 64 * 64 + n * 64 / 252;
}

int projectionOf(double i_dx, double i_dy, Range i_range, double i_angle, bool i_absolute)
{
    double s = std::sin(i_angle * s_pi / 180.0), c = std::cos(i_angle * s_pi / 180.0);
    const double sum = std::fabs(s) + std::fabs(c);
    s /= sum;
    c /= sum;
    const int x = limited(std::trunc((limited(indexOf(i_dx, i_range), 0, 255) - 128) * c), -127, 127);
    const int y = limited(std::trunc((limited(indexOf(i_dy, i_range), 0, 255) - 128) * s), -127, 127);
    return i_absolute ? std::min(std::abs((x + y) * 2), 255) : std::clamp(x + 128 + y, 0, 255);
}

template <class C> cImg imageFor(cImgType::ImageTypes i_type, Range i_range, unsigned i_width)
{
    std::mt19937 random(i_width);
    cImg image(i_type, i_width, 2);
    const auto component = [&] {
        switch (random() % 8) {
        case 0:
            return C(random());
        case 1:
            return C(i_range.low);
        case 2:
            return C(i_range.high);
        default:
            return C(i_range.low + (i_range.high - i_range.low) * double(random()) / 4294967296.0);
        }
    };
    for (unsigned y = 0; y < 2; ++y)
        for (unsigned x = 0; x < i_width; ++x)
            image.setPixel(x, y, QPair<C, C>(component(), component()));
    image.setRange(i_range.low, i_range.high);
    return image;
}

template <class C, class Expected>
void expectPixels(cImg& io_image, const char* i_style, const Expected& i_expected)
{
    io_image.imgType().setStyle(QString::fromLatin1(i_style));
    ASSERT_EQ(io_image.getImgType().getStyle(), QString::fromLatin1(i_style));
    const QImage out = show(io_image);
    ASSERT_EQ(out.format(), QImage::Format_Indexed8);
    ASSERT_EQ(out.size(), io_image.getSize());
    const Range range {io_image.getRange().getLow(), io_image.getRange().getHigh()};
    for (unsigned y = 0; y < io_image.getHeight(); ++y)
        for (unsigned x = 0; x < io_image.getWidth(); ++x) {
            const auto pixel = io_image.getPixel<QPair<C, C>>(x, y);
            ASSERT_EQ(int(out.constScanLine(int(y))[x]),
                i_expected(double(pixel.first), double(pixel.second), range))
                << i_style << ": " << pixel.first << ", " << pixel.second << " in " << range.low << " to "
                << range.high;
        }
}

template <class C> void expectEveryStyle(cImgType::ImageTypes i_type)
{
    const Range ranges[]
        = {{-32768, 32767}, {-100, 100}, {-128, 127}, {0, 255}, {-0.5, 1000.25}, {-127.5, 127.5}};
    for (const Range range : ranges) {
        for (const unsigned width : {1u, 2u, 17u, 33u, 70u, 5000u}) {
            cImg image = imageFor<C>(i_type, range, width);
            expectPixels<C>(image, "Dx",
                [](double dx, double, Range r) { return reference::greyOfInteger(dx, r, false); });
            expectPixels<C>(image, "Dy",
                [](double, double dy, Range r) { return reference::greyOfInteger(dy, r, false); });
            expectPixels<C>(image, "Absolute", magnitudeOf);
            expectPixels<C>(image, "AbsoluteAndDirection", directionOf);
            for (const double angle : {0.0, 30.0, 90.0, -45.0, 200.0})
                for (const bool absolute : {true, false}) {
                    setParam(image, "angle", angle);
                    setParam(image, "absolute", absolute);
                    expectPixels<C>(image, "ProjectionOfDirection", [=](double dx, double dy, Range r) {
                        return projectionOf(dx, dy, r, angle, absolute);
                    });
                }
        }
    }
}

} // namespace

TEST_P(gradientDisplayTest, EveryStyleOf16Bits) { expectEveryStyle<short>(cImgType::Gradient16); }

TEST_P(gradientDisplayTest, EveryStyleOf32Bits) { expectEveryStyle<int>(cImgType::Gradient32); }

TEST_P(gradientDisplayTest, AnyLayout)
{
    for (const auto type : {cImgType::Gradient16, cImgType::Gradient32})
        for (const char* style : {"Dx", "Dy", "Absolute", "AbsoluteAndDirection", "ProjectionOfDirection"}) {
            cImg image = makeRandomImage(type, 37, 3);
            image.imgType().setStyle(QString::fromLatin1(style));
            for (cImg& other : otherLayouts(image)) {
                other.imgType().setStyle(QString::fromLatin1(style));
                EXPECT_EQ(bytesOf(show(other)), bytesOf(show(image))) << type << style;
            }
        }
}

TEST(gradientDisplay, AComponentAloneIsThatOfTheStyleAndNothingOfOtherImages)
{
    cImg image = makeImage<short>(cImgType::Gradient16, {{-32768, 32767, 32767, -32768}});
    auto& type = dynamic_cast<cImgTypeGradient<QPair<short, short>>&>(image.imgType());
    QImage out;
    type.makeComponentImage(image, out);
    ASSERT_EQ(out.size(), QSize(2, 1));
    EXPECT_EQ(out.pixelIndex(0, 0), 0);
    EXPECT_EQ(out.pixelIndex(1, 0), 255);
    type.setStyle(QStringLiteral("Dy"));
    type.makeComponentImage(image, out);
    EXPECT_EQ(out.pixelIndex(0, 0), 255);
    EXPECT_EQ(out.pixelIndex(1, 0), 0);
    for (const cImg& other : {cImg(), makeImage<short>(cImgType::SInt16, {{1, 2}})}) {
        out = QImage(2, 1, QImage::Format_Indexed8);
        type.makeComponentImage(other, out);
        EXPECT_TRUE(out.isNull());
    }
}

TEST(gradientDisplay, DirectionsHaveColoursOfTheirOwnAndTheOtherStylesGrey)
{
    cImg image = makeRandomImage(cImgType::Gradient16, 5, 2);
    for (const char* style : {"Dx", "Dy", "Absolute", "ProjectionOfDirection"}) {
        image.imgType().setStyle(QString::fromLatin1(style));
        EXPECT_TRUE(hasGreyRamp(show(image))) << style;
    }
    image.imgType().setStyle(QStringLiteral("AbsoluteAndDirection"));
    const QImage out = show(image);
    ASSERT_EQ(out.colorCount(), 256);
    for (int i = 0; i < 256; ++i) {
        const int value = i / 64 * 64;
        EXPECT_EQ(out.color(i), QColor::fromHsv(i % 64 * 252 / 64, value, value, 255).rgb()) << i;
    }
}

TEST(gradientDisplay, ZeroIsIndex127OfTheWholeRange)
{
    cImg image = makeImage<short>(cImgType::Gradient16, {{0, 0}});
    image.imgType().setStyle(QStringLiteral("Absolute"));
    EXPECT_EQ(bytesOf(show(image)), std::vector<int>({179})); // sqrt(127^2 + 127^2)
}

TEST(gradientDisplay, FactorAndAbsoluteDoNotChangeTheTablesOfADescriptor)
{
    cImg image = makeRandomImage(cImgType::Gradient32, 64, 4);
    image.setRange(-100, 100);
    for (const char* style : {"Absolute", "AbsoluteAndDirection"}) {
        image.imgType().setStyle(QString::fromLatin1(style));
        const std::vector<int> before = bytesOf(show(image));
        setParam(image, "factor", 3.0);
        setParam(image, "absolute", false);
        EXPECT_EQ(bytesOf(show(image)), before) << style;
    }
}
