// The display of colours, against the definition.
#include "displayTesting.h"
#include "reference.h"

using namespace displayTesting;
using reference::Range;
using reference::Triple;

namespace {

class rgbDisplayTest : public onEveryTarget {};

INSTANTIATE_TEST_SUITE_P(
    , rgbDisplayTest, testing::ValuesIn(hwy::SupportedAndGeneratedTargets()), targetName);

constexpr Range s_ranges[] = {{0, 255}, {10, 200}, {100, 150}, {0, 64}, {0, 256}};

/** A channel after the range has been stretched over all grey values. */
int stretched(int i_byte, Range i_range) { return reference::greyOfUInt8(i_byte, i_range); }

struct Pixel {
    Triple rgb;
    int alpha;
};

Pixel pixelOf(const cImg& i_image, unsigned i_x, unsigned i_y)
{
    const unsigned channels = i_image.getNumChannels();
    const quint8* bytes = i_image.getRow<quint8>(i_y) + i_x * channels;
    return {{bytes[0], bytes[1], bytes[2]}, channels == 4 ? bytes[3] : 255};
}

Pixel shownPixel(const QImage& i_picture, unsigned i_x, unsigned i_y)
{
    const uchar* row = i_picture.constScanLine(int(i_y));
    if (i_picture.format() == QImage::Format_RGB888)
        return {{row[3 * i_x], row[3 * i_x + 1], row[3 * i_x + 2]}, 255};
    const QRgb colour = reinterpret_cast<const QRgb*>(row)[i_x];
    return {{qRed(colour), qGreen(colour), qBlue(colour)}, qAlpha(colour)};
}

template <class Expected>
void expectColours(const cImg& i_image, const QImage& i_picture, const Expected& i_expected)
{
    ASSERT_EQ(i_picture.size(), i_image.getSize());
    ASSERT_EQ(
        i_picture.format(), i_image.getNumChannels() == 4 ? QImage::Format_ARGB32 : QImage::Format_RGB888);
    for (unsigned y = 0; y < i_image.getHeight(); ++y)
        for (unsigned x = 0; x < i_image.getWidth(); ++x) {
            const Pixel expected = i_expected(pixelOf(i_image, x, y));
            const Pixel shown = shownPixel(i_picture, x, y);
            ASSERT_EQ(shown.rgb, expected.rgb) << x << ", " << y;
            ASSERT_EQ(shown.alpha, expected.alpha) << x << ", " << y;
        }
}

template <class Expected>
void expectGreys(const cImg& i_image, const QImage& i_picture, const Expected& i_expected)
{
    ASSERT_EQ(i_picture.size(), i_image.getSize());
    ASSERT_EQ(i_picture.format(), QImage::Format_Indexed8);
    for (unsigned y = 0; y < i_image.getHeight(); ++y)
        for (unsigned x = 0; x < i_image.getWidth(); ++x)
            ASSERT_EQ(int(i_picture.constScanLine(int(y))[x]), i_expected(pixelOf(i_image, x, y)))
                << x << ", " << y;
}

void setStyle(cImg& io_image, const char* i_style)
{
    io_image.imgType().setStyle(QString::fromLatin1(i_style));
    ASSERT_EQ(io_image.getImgType().getStyle(), QString::fromLatin1(i_style));
}

/** What a channel's factor makes of the bytes of a pixel. */
Triple multiplied(Triple i_values, Triple i_factorsInPercent)
{
    Triple result;
    for (size_t i = 0; i < 3; ++i)
        result[i] = i_factorsInPercent[i] == 100
            ? i_values[i]
            : reference::multipliedByte(i_values[i], i_factorsInPercent[i] / 100.0);
    return result;
}

} // namespace

TEST_P(rgbDisplayTest, ColoursAreStretched)
{
    for (const auto type : {cImgType::RGB24, cImgType::RGB32})
        for (const Range range : s_ranges)
            for (const unsigned width : {1u, 2u, 5u, 16u, 33u, 4000u}) {
                cImg image = makeRandomImage(type, width, 3, 1, width);
                image.setRange(range.low, range.high);
                // The range is limited to that of a byte.
                const Range used {image.getRange().getLow(), image.getRange().getHigh()};
                const bool four = type == cImgType::RGB32;
                const bool changes = used.low != 0 || used.high != 255;
                expectColours(image, show(image), [&](Pixel p) {
                    if (!changes)
                        return p;
                    // Alpha is stretched like a colour.
                    return Pixel {
                        {stretched(p.rgb[0], used), stretched(p.rgb[1], used), stretched(p.rgb[2], used)},
                        four ? stretched(p.alpha, used) : 255};
                });
            }
}

TEST_P(rgbDisplayTest, OneComponent)
{
    const struct {
        const char* style;
        int (*value)(Pixel);
        bool twice; // four channels are stretched before hue, saturation and value are found
    } s_styles[] = {
        {"Red", [](Pixel p) { return p.rgb[0]; }, false},
        {"Green", [](Pixel p) { return p.rgb[1]; }, false},
        {"Blue", [](Pixel p) { return p.rgb[2]; }, false},
        {"Alpha", [](Pixel p) { return p.alpha; }, false},
        {"Intensity", [](Pixel p) { return reference::greyOf(p.rgb); }, false},
        {"Hue", [](Pixel p) { return reference::hsvOf(p.rgb)[0]; }, true},
        {"Saturation", [](Pixel p) { return reference::hsvOf(p.rgb)[1]; }, true},
        {"Value", [](Pixel p) { return reference::hsvOf(p.rgb)[2]; }, true},
    };
    for (const auto type : {cImgType::RGB24, cImgType::RGB32})
        for (const Range range : s_ranges)
            for (const auto& style : s_styles) {
                const bool four = type == cImgType::RGB32;
                if (!four && style.style == std::string("Alpha"))
                    continue;
                cImg image = makeRandomImage(type, 67, 3);
                image.setRange(range.low, range.high);
                setStyle(image, style.style);
                const Range used {image.getRange().getLow(), image.getRange().getHigh()};
                expectGreys(image, show(image), [&](Pixel p) {
                    if (style.twice && four)
                        for (int& channel : p.rgb)
                            channel = stretched(channel, used);
                    return stretched(style.value(p), used);
                });
            }
}

TEST_P(rgbDisplayTest, AnyLayout)
{
    for (const auto type : {cImgType::RGB24, cImgType::RGB32})
        for (const char* style : {"Default", "Green", "Intensity", "Hue"}) {
            cImg image = makeRandomImage(type, 37, 3);
            setStyle(image, style);
            image.setRange(20, 200);
            for (cImg& other : otherLayouts(image)) {
                setStyle(other, style);
                other.setRange(20, 200);
                EXPECT_EQ(bytesOf(show(other)), bytesOf(show(image))) << type << style;
            }
        }
}

TEST(rgbDisplay, ARangeOfAllLevelsChangesNothingWhereverItBegins)
{
    for (const auto type : {cImgType::RGB24, cImgType::RGB32}) {
        cImg image = makeRandomImage(type, 30, 3);
        const auto expectLevels = [&](bool stay) {
            setStyle(image, "Default");
            expectColours(image, show(image), [&](Pixel p) {
                return stay ? p : Pixel {{0, 0, 0}, image.getNumChannels() == 4 ? 0 : 255};
            });
            setStyle(image, "Green");
            expectGreys(image, show(image), [&](Pixel p) { return stay ? p.rgb[1] : 0; });
        };
        image.setRange(510, 600); // which limiting makes 255 to 510
        ASSERT_EQ(image.getRange(), cDblRange(255, 510));
        expectLevels(true);
        image.setRange(509.9, 600);
        expectLevels(false);
    }
}

TEST(rgbDisplay, ComponentsHaveTheirColours)
{
    cImg image = makeRandomImage(cImgType::RGB32, 4, 2);
    const struct {
        const char* style;
        QRgb step;
    } s_ramps[] = {{"Red", 0x010000}, {"Green", 0x000100}, {"Blue", 0x000001}, {"Alpha", 0x010101},
        {"Intensity", 0x010101}, {"Hue", 0x010101}, {"Value", 0x010101}, {"Saturation", 0x010101}};
    for (const auto& ramp : s_ramps) {
        setStyle(image, ramp.style);
        const QImage out = show(image);
        ASSERT_EQ(out.colorCount(), 256);
        for (int i = 0; i < 256; ++i)
            EXPECT_EQ(out.color(i), 0xFF000000 | QRgb(i) * ramp.step) << ramp.style;
    }
}

TEST(rgbDisplay, FactorsMultiplyRedGreenAndBlue)
{
    for (const auto type : {cImgType::RGB24, cImgType::RGB32}) {
        cImg image = makeRandomImage(type, 61, 4);
        setParam(image, "Red", 1.3);
        setParam(image, "Green", 0.5);
        expectColours(image, show(image), [](Pixel p) {
            return Pixel {multiplied(p.rgb, {130, 50, 100}), p.alpha};
        });
        setParam(image, "Blue", 2.0);
        expectColours(image, show(image), [](Pixel p) {
            return Pixel {multiplied(p.rgb, {130, 50, 200}), p.alpha};
        });
    }
}

TEST(rgbDisplay, FactorsMultiplyHueSaturationAndValue)
{
    const Triple factors[] = {{100, 100, 150}, {100, 50, 100}, {30, 100, 100}, {70, 120, 80}};
    for (const auto type : {cImgType::RGB24, cImgType::RGB32})
        for (const Triple& factor : factors) {
            cImg image = makeRandomImage(type, 61, 4);
            setParam(image, "Hue", factor[0] / 100.0);
            setParam(image, "Saturation", factor[1] / 100.0);
            setParam(image, "Brightness", factor[2] / 100.0);
            // The bytes of the picture count as they lie in memory: with alpha blue comes first.
            const bool turned = type == cImgType::RGB32;
            expectColours(image, show(image), [&](Pixel p) {
                if (turned)
                    std::swap(p.rgb[0], p.rgb[2]);
                p.rgb = reference::rgbOf(multiplied(reference::hsvOf(p.rgb), factor));
                if (turned)
                    std::swap(p.rgb[0], p.rgb[2]);
                return p;
            });
        }
}

TEST(rgbDisplay, FactorsFollowTheRangeAndLeaveSingleComponentsAlone)
{
    cImg image = makeRandomImage(cImgType::RGB24, 30, 3);
    image.setRange(10, 200);
    setParam(image, "Red", 0.5);
    setParam(image, "Brightness", 0.5);
    expectColours(image, show(image), [](Pixel p) {
        for (int& channel : p.rgb)
            channel = stretched(channel, {10, 200});
        const Triple hsv = reference::hsvOf(multiplied(p.rgb, {50, 100, 100}));
        return Pixel {reference::rgbOf(multiplied(hsv, {100, 100, 50})), p.alpha};
    });
    setStyle(image, "Red");
    expectGreys(image, show(image), [](Pixel p) { return stretched(p.rgb[0], {10, 200}); });
}
