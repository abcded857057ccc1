// The display of complex numbers, against the definition in double precision.
#include "displayTesting.h"

#include <tarnbase/cComplex.h>

#include <algorithm>
#include <cmath>
#include <complex>
#include <limits>
#include <random>

using namespace displayTesting;

namespace {

constexpr double s_pi = 3.14159265358979323846;
const float s_infinity = std::numeric_limits<float>::infinity();
const float s_nan = std::numeric_limits<float>::quiet_NaN();
constexpr QRgb s_black = 0xFF000000;

class complexDisplayTest : public onEveryTarget {};

INSTANTIATE_TEST_SUITE_P(
    , complexDisplayTest, testing::ValuesIn(hwy::SupportedAndGeneratedTargets()), targetName);

cImg complexImage(unsigned i_width, unsigned i_height, unsigned i_seed = 1)
{
    return makeRandomImage(cImgType::Complex, i_width, i_height, 1, i_seed);
}

std::complex<double> numberAt(const cImg& i_image, unsigned i_x, unsigned i_y)
{
    const auto z = i_image.getPixel<cFltComplex>(i_x, i_y);
    return {z.getReal(), z.getImaginary()};
}

struct How {
    bool useLog = true;
    double factor = 1.0;
};

double scaleOf(const cImg& i_image, How i_how)
{
    double greatest = std::numeric_limits<double>::lowest();
    for (unsigned y = 0; y < i_image.getHeight(); ++y)
        for (unsigned x = 0; x < i_image.getWidth() / 2; ++x) {
            std::complex<double> z = numberAt(i_image, x, y);
            z = (i_how.useLog ? std::log(z) : z) * i_how.factor;
            if (std::abs(z) > greatest)
                greatest = std::abs(z);
        }
    return greatest / 255.0;
}

struct HueValue {
    double hue;
    double value;
};

HueValue hueValueOf(std::complex<double> i_number, double i_scale, How i_how)
{
    const std::complex<double> z = i_how.useLog ? std::log(i_number) : i_number;
    double angle = std::atan2(z.imag(), z.real()) * 180.0 / s_pi;
    if (angle < 0.0)
        angle += 360.0;
    return {angle, std::min(255.0, std::fabs(std::abs(z) / i_scale))};
}

/** Some colour whose hue and value are next to the exact ones: single precision may fall on either side of a
 * whole number. */
bool isColourOf(QRgb i_colour, HueValue i_exact)
{
    for (const double hueError : {-1e-4, 0.0, 1e-4})
        for (const double valueError : {-1e-3, 0.0, 1e-3}) {
            const int hue = int(i_exact.hue + hueError + 360.0) % 360;
            const int value = int(std::clamp(i_exact.value + valueError, 0.0, 255.0));
            if (QColor::fromHsv(hue, 255, value, 255).rgb() == i_colour)
                return true;
        }
    return false;
}

QRgb colourAt(const QImage& i_picture, unsigned i_x, unsigned i_y)
{
    return reinterpret_cast<const QRgb*>(i_picture.constScanLine(int(i_y)))[i_x];
}

void expectColours(const cImg& i_image, const QImage& i_picture, How i_how)
{
    ASSERT_EQ(i_picture.format(), QImage::Format_ARGB32);
    ASSERT_EQ(i_picture.size(), i_image.getSize());
    const double scale = scaleOf(i_image, i_how);
    for (unsigned y = 0; y < i_image.getHeight(); ++y)
        for (unsigned x = 0; x < i_image.getWidth(); ++x) {
            const HueValue exact = hueValueOf(numberAt(i_image, x, y), scale, i_how);
            ASSERT_TRUE(isColourOf(colourAt(i_picture, x, y), exact))
                << x << ", " << y << ": " << std::hex << colourAt(i_picture, x, y) << ", hue " << exact.hue
                << ", value " << exact.value;
        }
}

std::vector<QRgb> rowOf(const QImage& i_picture)
{
    const auto* row = reinterpret_cast<const QRgb*>(i_picture.constScanLine(0));
    return {row, row + i_picture.width()};
}

QRgb hsv(int i_hue, int i_value) { return QColor::fromHsv(i_hue, 255, i_value, 255).rgb(); }

/** One component from black to white, as the levels of 255 grey values. */
std::vector<int> greysOf(std::vector<float> i_values, bool i_useLog)
{
    for (float& value : i_values) {
        value = std::isinf(value) ? 0.0f : value;
        if (i_useLog)
            value = value < 0.0f ? s_nan : std::log(value);
    }
    float least = s_nan, greatest = s_nan;
    for (const float value : i_values) {
        least = std::fmin(least, value);
        greatest = std::fmax(greatest, value);
    }
    std::vector<int> greys;
    for (float value : i_values) {
        value -= least;
        if (greatest - least != 0.0f)
            value /= greatest - least;
        const float part = value > 0.0f ? std::min(value, 1.0f) : 0.0f; // NaN is 0
        greys.push_back(int(std::nearbyint(std::nearbyint(part * 254.0f) * 255.0 / 254.0)));
    }
    return greys;
}

/** Grey values that follow a logarithm or an angle may fall on either side of a half. */
void expectNear(const std::vector<int>& i_actual, const std::vector<int>& i_expected, int i_most)
{
    ASSERT_EQ(i_actual.size(), i_expected.size());
    for (size_t i = 0; i < i_actual.size(); ++i)
        ASSERT_NEAR(i_actual[i], i_expected[i], i_most) << "pixel " << i;
}

} // namespace

TEST_P(complexDisplayTest, HueIsTheAngleAndValueTheMagnitude)
{
    for (const unsigned width : {2u, 3u, 16u, 33u, 2500u})
        for (const How how : {How {}, How {false, 1.0}, How {false, 0.25}, How {true, 2.0}}) {
            cImg image = complexImage(width, 3, width);
            setParam(image, "useLog", how.useLog);
            setParam(image, "factor", how.factor);
            setParam(image, "moveCenter", false);
            expectColours(image, show(image), how);
        }
}

TEST_P(complexDisplayTest, SingleComponents)
{
    cImg image = complexImage(501, 4);
    image.setPixel(3, 1, cFltComplex(s_infinity, -s_infinity));
    image.setPixel(4, 1, cFltComplex(s_nan, 5.0f));
    const struct {
        const char* style;
        float (*value)(cFltComplex);
        bool exact; // no rounding of its own
    } s_styles[] = {{"Real", [](cFltComplex z) { return z.getReal(); }, true},
        {"Imaginary", [](cFltComplex z) { return z.getImaginary(); }, true},
        {"Magnitude",
            [](cFltComplex z) { return float(std::hypot(double(z.getReal()), double(z.getImaginary()))); },
            false},
        {"Phase",
            [](cFltComplex z) { return float(std::atan2(double(z.getImaginary()), double(z.getReal()))); },
            false}};
    for (const auto& style : s_styles)
        for (const bool useLog : {false, true}) {
            image.imgType().setStyle(QString::fromLatin1(style.style));
            setParam(image, "useLog", useLog);
            std::vector<float> values;
            for (unsigned y = 0; y < 4; ++y)
                for (unsigned x = 0; x < 501; ++x)
                    values.push_back(style.value(image.getPixel<cFltComplex>(x, y)));
            const QImage out = show(image);
            EXPECT_TRUE(hasGreyRamp(out));
            expectNear(bytesOf(out), greysOf(values, useLog), style.exact && !useLog ? 0 : 2);
        }
}

TEST_P(complexDisplayTest, AnyLayout)
{
    for (const char* style : {"Default", "Real", "Phase"}) {
        cImg image = complexImage(37, 4);
        image.imgType().setStyle(QString::fromLatin1(style));
        for (cImg& other : otherLayouts(image)) {
            other.imgType().setStyle(QString::fromLatin1(style));
            EXPECT_EQ(bytesOf(show(other)), bytesOf(show(image))) << style;
        }
    }
}

TEST(complexDisplay, WholeAnglesAreExact)
{
    cImg image = makeImage<float>(
        cImgType::Complex, {{1, 0, 1, 1, 0, 1, -1, 1, -1, 0, -1, -1, 0, -1, 1, -1, 0, 0, 1, -0.0f}});
    setParam(image, "useLog", false);
    setParam(image, "moveCenter", false);
    const int diagonal = 255; // limited: the scale is that of the left half, where it is the greatest
    const int unit = int(1.0 / (double(std::sqrt(2.0f)) / 255.0));
    EXPECT_EQ(rowOf(show(image)),
        std::vector<QRgb>({hsv(0, unit), hsv(45, diagonal), hsv(90, unit), hsv(135, diagonal), hsv(180, unit),
            hsv(225, diagonal), hsv(270, unit), hsv(315, diagonal), hsv(0, 0), hsv(0, unit)}));
}

TEST(complexDisplay, TheCentreMovesByHalfTheSize)
{
    for (const unsigned width : {4u, 5u, 2051u})
        for (const unsigned height : {1u, 2u, 5u, 6u}) {
            cImg image = complexImage(width, height);
            setParam(image, "moveCenter", false);
            const QImage still = show(image);
            setParam(image, "moveCenter", true);
            const QImage moved = show(image);
            for (unsigned y = 0; y < height; ++y)
                for (unsigned x = 0; x < width; ++x) {
                    const unsigned half = height / 2;
                    const QRgb expected = y == 2 * half
                        ? s_black // the last row of an odd height
                        : colourAt(still, (x + width / 2) % width, y < half ? y + half : y - half);
                    ASSERT_EQ(colourAt(moved, x, y), expected) << x << ", " << y;
                }
        }
}

TEST(complexDisplay, WhatIsNoNumberIsBlack)
{
    cImg image = makeImage<float>(cImgType::Complex, {{3, 4, s_nan, 1, 1, s_nan, 0, 0}});
    setParam(image, "moveCenter", false);
    setParam(image, "useLog", false);
    EXPECT_EQ(rowOf(show(image)), std::vector<QRgb>({hsv(53, 255), s_black, s_black, hsv(0, 0)}));
    // The logarithm of 0 lies infinitely far to the left.
    setParam(image, "useLog", true);
    EXPECT_EQ(rowOf(show(image)).at(3), hsv(180, 255));
}

TEST(complexDisplay, AZeroInTheLeftHalfTakesAllLightFromLogarithms)
{
    cImg image = makeImage<float>(cImgType::Complex, {{0, 0, 3, 4, 5, 6, 7, 8}});
    setParam(image, "moveCenter", false);
    for (const QRgb colour : rowOf(show(image)))
        EXPECT_EQ(colour, s_black);
}

TEST(complexDisplay, OneColumnHasNoScale)
{
    cImg image = makeImage<float>(cImgType::Complex, {{3, 4}, {-5, 6}});
    setParam(image, "moveCenter", false);
    const QImage out = show(image);
    EXPECT_EQ(colourAt(out, 0, 0), s_black);
    EXPECT_EQ(colourAt(out, 0, 1), s_black);
}

TEST(complexDisplay, AConstantComponentIsBlack)
{
    cImg image = makeImage<float>(cImgType::Complex, {{2, 7, 2, 8, 2, 9}});
    image.imgType().setStyle(QStringLiteral("Real"));
    EXPECT_EQ(bytesOf(show(image)), std::vector<int>({0, 0, 0}));
}
