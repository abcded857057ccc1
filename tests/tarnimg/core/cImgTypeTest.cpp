#include "support/guiApplication.h"
#include "support/images.h"
#include "support/qtPrinters.h"

#include <QColor>
#include <QFont>
#include <QFontMetrics>
#include <QMetaEnum>
#include <QPair>
#include <QVariant>
#include <cmath>
#include <cstring>
#include <limits>
#include <memory>
#include <new>
#include <tarnbase/cComplex.h>
#include <tarnbase/cDataValObj.h>
#include <tarnbase/cRgb.h>
#include <tarnbase/cRgba.h>
#include <tarnimg/tarnimg.h>
#include <tuple>
#include <vector>

namespace {

using Descriptor = std::unique_ptr<cImgType>;

Descriptor make(cImgType::ImageTypes i_type, unsigned i_channels = 1)
{
    return Descriptor(cImageTypeFactory::create(i_type, i_channels));
}

struct Row {
    cImgType::ImageTypes type;
    const char* name;
    unsigned pixelSize; // of 3 channels, where the number is free
    unsigned channelSize;
    unsigned channels;
    cDblRange maxRange;
};

constexpr double s_float = 3.4028234663852886e+38;
constexpr double s_double = 1.7976931348623157e+308;

const Row s_rows[] = {
    {cImgType::RGB24, "RGB24", 3, 1, 3, {0, 255}},
    {cImgType::RGB32, "RGB32", 4, 1, 4, {0, 255}},
    {cImgType::UInt8, "UInt8", 3, 1, 3, {0, 255}},
    {cImgType::UInt16, "UInt16", 6, 2, 3, {0, 65535}},
    {cImgType::UInt32, "UInt32", 12, 4, 3, {0, 4294967295.0}},
    {cImgType::SInt8, "SInt8", 3, 1, 3, {-128, 127}},
    {cImgType::SInt16, "SInt16", 6, 2, 3, {-32768, 32767}},
    {cImgType::SInt32, "SInt32", 12, 4, 3, {-2147483648.0, 2147483647}},
    {cImgType::SInt64, "SInt64", 24, 8, 3, {-9223372036854775808.0, 9223372036854775808.0}},
    {cImgType::Float32, "Float32", 12, 4, 3, {-s_float, s_float}},
    {cImgType::Float64, "Float64", 24, 8, 3, {-s_double, s_double}},
    {cImgType::Gradient16, "Gradient16", 4, 4, 2, {-32768, 32767}},
    {cImgType::Gradient32, "Gradient32", 8, 8, 2, {-32768, 32767}},
    {cImgType::Complex, "Complex", 8, 4, 2, {0, 0}},
};

QStringList words(const char* i_words) { return QString::fromLatin1(i_words).split(u' '); }

template <class T> T valueOf(const cMapObj& i_params, const char* i_key)
{
    T value {};
    EXPECT_TRUE(i_params.getSubObject(QString::fromLatin1(i_key))->getValue(value)) << i_key;
    return value;
}

/** The text of one pixel, given by its channels. */
template <class T>
QString textOf(const cImgType& i_type, std::initializer_list<T> i_channels, bool i_hexadecimal = false)
{
    return i_type.pixelToString(reinterpret_cast<const unsigned char*>(i_channels.begin()), i_hexadecimal);
}

QSize boxOf(const QString& i_text) { return QFontMetrics(QFont()).boundingRect(i_text).size(); }

/** An image that has been filled with a value, over a pattern of other bytes. */
cImg filled(cImgType::ImageTypes i_type, const QVariant& i_value, unsigned i_channels = 1)
{
    cImg image = makeRandomImage(i_type, 5, 3, i_channels, 7);
    image.getImgType().fill(image, i_value);
    return image;
}

/** Whether a fill with the value writes this into every channel of images with 1 and with 3 channels. */
template <class T>
::testing::AssertionResult fills(cImgType::ImageTypes i_type, const QVariant& i_value, T i_expected)
{
    for (unsigned channels : {1u, 3u}) {
        cImg expected(i_type, 5, 3, channels);
        for (unsigned i = 0; i < 5 * 3 * channels; ++i)
            reinterpret_cast<T*>(expected.getData())[i] = i_expected;
        if (auto same = samePixels(filled(i_type, i_value, channels), expected); !same)
            return same << "\n  with " << channels << " channels";
    }
    return ::testing::AssertionSuccess();
}

/** Whether a fill with the value is ignored. */
bool leavesAlone(cImgType::ImageTypes i_type, const QVariant& i_value)
{
    return samePixels(filled(i_type, i_value), makeRandomImage(i_type, 5, 3, 1, 7));
}

} // namespace

TEST(cImageTypeFactory, MakesEveryTypeAndNoOther)
{
    EXPECT_EQ(cImageTypeFactory::getRegistry().size(), 14);
    for (int id : {-1, 0, 15, 99})
        EXPECT_EQ(make(cImgType::ImageTypes(id)), nullptr) << id;
    for (int id = 1; id <= 14; ++id)
        EXPECT_EQ(make(cImgType::ImageTypes(id))->getTypeId(), id);
}

TEST(cImageTypeFactory, RegistersAFreeIdOnce)
{
    const auto creator = [](unsigned) -> cImgType* { return nullptr; };
    EXPECT_FALSE(cImageTypeFactory::registerType(cImgType::UInt8, creator));
    const auto own = cImgType::ImageTypes(77);
    EXPECT_TRUE(
        cImageTypeFactory::registerType(own, cImageTypeFactory::Creator())); // free, but nothing to add
    EXPECT_FALSE(cImageTypeFactory::getRegistry().contains(own));
    EXPECT_TRUE(cImageTypeFactory::registerType(own, creator));
    EXPECT_FALSE(cImageTypeFactory::registerType(own, creator));
    cImageTypeFactory::getRegistry().remove(own);
    registerImageTypes(); // once more does no harm
    EXPECT_EQ(cImageTypeFactory::getRegistry().size(), 14);
}

TEST(cImageTypeFactory, RefusesAPixelBeyond32Bits)
{
    EXPECT_THROW(make(cImgType::Float64, 0x20000000), std::bad_alloc);
    EXPECT_EQ(make(cImgType::UInt8, 0xffffffff)->getPixelSize(), 0xffffffff);
    EXPECT_EQ(make(cImgType::RGB24, 0xffffffff)->getPixelSize(), 3u);
}

TEST(cImgType, SizesChannelsAndRangesAreThoseOfTheType)
{
    for (const Row& row : s_rows) {
        SCOPED_TRACE(row.name);
        const auto type = make(row.type, 3);
        EXPECT_EQ(type->getTypeId(), row.type);
        EXPECT_EQ(type->getName(), QString::fromLatin1(row.name));
        EXPECT_EQ(type->getPixelSize(), row.pixelSize);
        EXPECT_EQ(type->getChannelPixelSize(), row.channelSize);
        EXPECT_EQ(type->getNumChannels(), row.channels);
        EXPECT_EQ(type->getMaxRange(), row.maxRange);
        const bool isFloat = row.type == cImgType::Float32 || row.type == cImgType::Float64;
        EXPECT_EQ(type->getRange(), isFloat ? cDblRange(-1, 1) : row.maxRange);
        EXPECT_EQ(type->getGamma(), 1.0);
    }
}

TEST(cImgType, TheKeysOfTheTypeIdsAreTheNames)
{
    const auto types = QMetaEnum::fromType<cImgType::ImageTypes>();
    EXPECT_EQ(types.keyCount(), 15);
    EXPECT_STREQ(types.valueToKey(0), "Invalid");
    for (const Row& row : s_rows)
        EXPECT_EQ(types.keyToValue(row.name), row.type);
}

TEST(cImgType, NoChannelCountsAsOne)
{
    const auto type = make(cImgType::UInt16, 0);
    EXPECT_EQ(type->getNumChannels(), 1u);
    EXPECT_EQ(type->getStyle(), QStringLiteral("Channel 0"));
    EXPECT_EQ(type->getStyleList(), QStringList(QStringLiteral("Channel 0")));
}

TEST(cImgType, TheStylesAreThoseOfTheType)
{
    EXPECT_EQ(make(cImgType::Float32, 3)->getStyleList(),
        QStringList({QStringLiteral("Channel 0"), QStringLiteral("Channel 1"), QStringLiteral("Channel 2")}));
    EXPECT_EQ(make(cImgType::RGB24)->getStyleList(),
        words("Default Red Green Blue Intensity Hue Value Saturation"));
    EXPECT_EQ(make(cImgType::RGB32)->getStyleList(),
        words("Default Red Green Blue Alpha Intensity Hue Value Saturation"));
    EXPECT_EQ(make(cImgType::Complex)->getStyleList(), words("Default Imaginary Real Magnitude Phase"));
    for (auto id : {cImgType::Gradient16, cImgType::Gradient32})
        EXPECT_EQ(
            make(id)->getStyleList(), words("Dx Dy Absolute AbsoluteAndDirection ProjectionOfDirection"));
    for (const Row& row : s_rows)
        EXPECT_EQ(make(row.type)->getStyle(), make(row.type)->getStyleList().first()) << row.name;
}

TEST(cImgType, TheModesHaveTheirNumbers)
{
    EXPECT_EQ(QMetaEnum::fromType<cImgTypeRGB24::Modes>().keyToValue("Saturation"), 7);
    EXPECT_EQ(QMetaEnum::fromType<cImgTypeRGB32::Modes>().keyToValue("Saturation"), 8);
    EXPECT_EQ(QMetaEnum::fromType<cImgTypeRGB32::Modes>().keyToValue("Alpha"), 4);
    EXPECT_STREQ(cImgTypeRGB24::staticMetaObject.className(), "cImgTypeRGB24");
}

TEST(cImgType, AStyleOutsideTheListIsIgnored)
{
    const auto grey = make(cImgType::UInt8, 3);
    grey->setStyle(QStringLiteral("Channel 2"));
    EXPECT_EQ(grey->getStyle(), QStringLiteral("Channel 2"));
    for (const char* style : {"Channel 3", "channel 1", "Channel 01", "Channel 1 ", "Channel", "", "1",
             "Channel -1", "Channel 4294967297"}) {
        grey->setStyle(QString::fromLatin1(style));
        EXPECT_EQ(grey->getStyle(), QStringLiteral("Channel 2")) << style;
    }
    const auto colour = make(cImgType::RGB24);
    colour->setStyle(QStringLiteral("Hue"));
    colour->setStyle(QStringLiteral("Alpha"));
    colour->setStyle(QStringLiteral("red"));
    EXPECT_EQ(colour->getStyle(), QStringLiteral("Hue"));
}

TEST(cImgType, TheNumberOfTheStyleIsThatOfAChannel)
{
    /** Shows what types see of their base. */
    class OpenColour : public cImgTypeRGB24 {
    public:
        using cImgType::getStyleID;
    };
    const Descriptor type(cImageTypeFactory::make<OpenColour>(1));
    const auto numberOf = [&](const char* i_style) {
        type->setStyle(QString::fromLatin1(i_style));
        return static_cast<const OpenColour&>(*type).getStyleID();
    };
    EXPECT_EQ(numberOf("Default"), 0u);
    EXPECT_EQ(numberOf("Green"), 2u);
    EXPECT_EQ(numberOf("Blue"), 2u); // the fourth style of three channels
    EXPECT_EQ(numberOf("Saturation"), 2u);
}

TEST(cImgType, ARangeIsLimitedInTwoStepsThatSwapItsEnds)
{
    const auto grey = make(cImgType::UInt8);
    const auto limited = [&](double i_low, double i_high) {
        grey->setRange({i_low, i_high});
        return grey->getRange();
    };
    EXPECT_EQ(limited(-5, 300), cDblRange(0, 255));
    EXPECT_EQ(limited(300, 400), cDblRange(255, 300));
    EXPECT_EQ(limited(-10, -5), cDblRange(-5, 0));
    EXPECT_EQ(limited(10, 20), cDblRange(10, 20));
    EXPECT_EQ(limited(10, 10), cDblRange(10, 10));
    const double nan = std::numeric_limits<double>::quiet_NaN();
    EXPECT_EQ(limited(nan, nan), cDblRange(0, 255));
    EXPECT_EQ(limited(nan, 7), cDblRange(0, 7));

    const auto gradient = make(cImgType::Gradient32);
    gradient->setRange({-1e6, 1e6});
    EXPECT_EQ(gradient->getRange(), cDblRange(-32768, 32767));
    const auto complex = make(cImgType::Complex);
    complex->setRange({1, 2});
    EXPECT_EQ(complex->getRange(), cDblRange(0, 0));
    const auto floats = make(cImgType::Float64);
    floats->setRange({-s_double, s_double}); // its width is infinite
    EXPECT_EQ(floats->getRange(), cDblRange(-s_double, s_double));
}

TEST(cImgType, AGammaThatIsNotPositiveBecomesOne)
{
    const auto type = make(cImgType::UInt8);
    type->setGamma(2.5);
    EXPECT_EQ(type->getGamma(), 2.5);
    for (double gamma : {-1.0, 0.0, std::nan("")}) {
        type->setGamma(gamma);
        EXPECT_EQ(type->getGamma(), 1.0);
    }
}

TEST(cImgType, DescriptorsOfOneTypeAreEqualWhateverTheirChannels)
{
    EXPECT_TRUE(*make(cImgType::UInt8, 1) == *make(cImgType::UInt8, 4));
    EXPECT_TRUE(*make(cImgType::UInt8) != *make(cImgType::SInt8));
}

TEST(cImgTypeParams, HaveTheDefaults)
{
    const cMapObj params = make(cImgType::UInt16)->getParams();
    EXPECT_EQ(params.getKeys(), words("Range Gamma AutoRange"));
    EXPECT_EQ(valueOf<cDblRange>(params, "Range"), cDblRange(0, 65535));
    EXPECT_EQ(valueOf<double>(params, "Gamma"), 1.0);
    EXPECT_EQ(valueOf<bool>(params, "AutoRange/Use"), false);
    EXPECT_EQ(valueOf<unsigned>(params, "AutoRange/BufferSize"), 1u);
    EXPECT_EQ(valueOf<double>(params, "AutoRange/Quantil"), 0.0);
    for (const char* side : {"Left", "Top", "Right", "Bottom"})
        EXPECT_EQ(valueOf<unsigned>(params, (std::string("AutoRange/Border") + side).c_str()), 0u);
    double max = 0;
    EXPECT_TRUE(params[QStringLiteral("Gamma")]->getMetaData(QStringLiteral("max"))->getValue(max));
    EXPECT_EQ(max, 100);
    EXPECT_TRUE(
        params[QStringLiteral("AutoRange/BufferSize")]->getMetaData(QStringLiteral("max"))->getValue(max));
    EXPECT_EQ(max, 20);
}

TEST(cImgTypeParams, HaveTheKeysOfTheType)
{
    EXPECT_EQ(make(cImgType::UInt8)->getParams().getKeys(), words("Range Gamma AutoRange Colorize"));
    EXPECT_EQ(valueOf<QColor>(make(cImgType::UInt8)->getParams(), "Colorize"), QColor(Qt::black));
    for (auto id : {cImgType::RGB24, cImgType::RGB32}) {
        const cMapObj params = make(id)->getParams();
        EXPECT_EQ(params.getKeys(), words("Range Gamma AutoRange Brightness Hue Saturation Red Green Blue"));
        for (const char* key : {"Brightness", "Hue", "Saturation", "Red", "Green", "Blue"})
            EXPECT_EQ(valueOf<double>(params, key), 1.0);
    }
    const cMapObj complex = make(cImgType::Complex)->getParams();
    EXPECT_EQ(complex.getKeys(), words("Range Gamma useLog factor moveCenter"));
    EXPECT_TRUE(valueOf<bool>(complex, "useLog") && valueOf<bool>(complex, "moveCenter"));
    EXPECT_EQ(valueOf<double>(complex, "factor"), 1.0);
    for (auto id : {cImgType::Gradient16, cImgType::Gradient32}) {
        const cMapObj params = make(id)->getParams();
        EXPECT_EQ(params.getKeys(), words("Range Gamma factor absolute angle"));
        EXPECT_EQ(valueOf<double>(params, "factor"), 1.0);
        EXPECT_TRUE(valueOf<bool>(params, "absolute"));
        EXPECT_EQ(valueOf<double>(params, "angle"), 0.0);
    }
}

TEST(cImgTypeParams, AreCopies)
{
    const auto type = make(cImgType::UInt8);
    type->getParams()[QStringLiteral("Gamma")]->setValue(5.0);
    EXPECT_EQ(type->getGamma(), 1.0);
}

TEST(cImgTypeParams, ComeBackAsTheyWereSet)
{
    for (const Row& row : s_rows) {
        SCOPED_TRACE(row.name);
        const auto type = make(row.type);
        cMapObj params = type->getParams();
        params[QStringLiteral("Gamma")]->setValue(2.0);
        if (row.type != cImgType::Complex)
            params[QStringLiteral("Range")]->setValue(cDblRange(3, 4));
        for (const QString& key : params.getKeys()) {
            cObj* entry = params.getSubObject(key);
            if (key == QStringLiteral("Colorize"))
                entry->setValue(QColor(Qt::red));
            else if (!entry->isContainer() && key[0].isLower() && key != QStringLiteral("useLog")
                && key != QStringLiteral("moveCenter") && key != QStringLiteral("absolute"))
                entry->setValue(0.25);
            else if (key[0].isLower())
                entry->setValue(false);
            else if (!entry->isContainer() && key != QStringLiteral("Range"))
                entry->setValue(2.0);
        }
        if (cObj* automatic = params.getSubObject(QStringLiteral("AutoRange")); !automatic->isVoid()) {
            automatic->getSubObject(QStringLiteral("Use"))->setValue(true);
            automatic->getSubObject(QStringLiteral("BufferSize"))->setValue(3u);
            automatic->getSubObject(QStringLiteral("Quantil"))->setValue(0.5);
            for (const char* side : {"BorderLeft", "BorderTop", "BorderRight", "BorderBottom"})
                automatic->getSubObject(QString::fromLatin1(side))->setValue(4u);
        }
        type->setParams(params);
        const cMapObj back = type->getParams();
        EXPECT_TRUE(back.isEqual(&params));
        EXPECT_FALSE(back.isEqual(std::make_unique<cMapObj>(make(row.type)->getParams()).get()));
    }
}

TEST(cImgTypeParams, AreLimitedAndMissingOnesStay)
{
    const auto type = make(cImgType::UInt8);
    type->setGamma(2);
    type->setRange({10, 20});
    type->setParams(cMapObj());
    EXPECT_EQ(type->getGamma(), 2.0);
    EXPECT_EQ(type->getRange(), cDblRange(10, 20));

    cMapObj params;
    params[QStringLiteral("Gamma")] = new cDataValObj<double>(0);
    params[QStringLiteral("Range")] = new cDataValObj<cDblRange>(cDblRange(-1, 300));
    type->setParams(params);
    EXPECT_EQ(type->getGamma(), 1.0);
    EXPECT_EQ(type->getRange(), cDblRange(0, 255));
}

TEST(cImgTypeParams, CanTurnOnWhatATypeHides)
{
    const auto type = make(cImgType::Complex);
    cMapObj params;
    params.setSubObject(new cDataValObj<bool>(true), QStringLiteral("AutoRange/Use"), true);
    type->setParams(params);
    EXPECT_FALSE(type->getParams().contains(QStringLiteral("AutoRange")));
}

TEST(cImgTypeText, ShowsTheChannelOfTheStyle)
{
    const auto type = make(cImgType::UInt8, 3);
    EXPECT_EQ(textOf<quint8>(*type, {255, 2, 16}), QStringLiteral("255"));
    type->setStyle(QStringLiteral("Channel 2"));
    EXPECT_EQ(textOf<quint8>(*type, {255, 2, 16}), QStringLiteral("16"));
    EXPECT_EQ(textOf<quint8>(*type, {255, 2, 16}, true), QStringLiteral("10"));
    const auto floats = make(cImgType::Float32, 2), doubles = make(cImgType::Float64, 2),
               words = make(cImgType::SInt64, 2);
    for (cImgType* each : {floats.get(), doubles.get(), words.get()})
        each->setStyle(QStringLiteral("Channel 1"));
    EXPECT_EQ(textOf<float>(*floats, {1, 2}), QStringLiteral("2.00000"));
    EXPECT_EQ(textOf<double>(*doubles, {1, 2}), QStringLiteral("2.00000"));
    EXPECT_EQ(textOf<qint64>(*words, {1, 2}), QStringLiteral("2"));
}

TEST(cImgTypeText, ShowsIntegersInTheBase)
{
    EXPECT_EQ(textOf<quint16>(*make(cImgType::UInt16), {65535}, true), QStringLiteral("ffff"));
    EXPECT_EQ(textOf<quint32>(*make(cImgType::UInt32), {4294967295u}), QStringLiteral("4294967295"));
    EXPECT_EQ(textOf<qint8>(*make(cImgType::SInt8), {-128}), QStringLiteral("-128"));
    EXPECT_EQ(textOf<qint16>(*make(cImgType::SInt16), {-5}), QStringLiteral("-5"));
    EXPECT_EQ(textOf<qint16>(*make(cImgType::SInt16), {-5}, true), QString::number(-5, 16));
    EXPECT_EQ(textOf<qint32>(*make(cImgType::SInt32), {2147483647}), QStringLiteral("2147483647"));
    EXPECT_EQ(textOf<qint64>(*make(cImgType::SInt64), {std::numeric_limits<qint64>::min()}),
        QStringLiteral("-9223372036854775808"));
}

TEST(cImgTypeText, ShowsFloatsWithFixedDecimals)
{
    EXPECT_EQ(textOf<float>(*make(cImgType::Float32), {1.5f}, true), QStringLiteral("1.50000"));
    EXPECT_EQ(textOf<double>(*make(cImgType::Float64), {-0.123456789}), QStringLiteral("-0.12346"));
    EXPECT_EQ(
        textOf<float>(*make(cImgType::Complex), {1.5f, -2.25f}, true), QStringLiteral("Re:1.500 Im:-2.250"));
}

TEST(cImgTypeText, ShowsColoursAndGradients)
{
    const auto rgb = make(cImgType::RGB24);
    EXPECT_EQ(textOf<quint8>(*rgb, {255, 10, 0}), QStringLiteral("r:255 g:10 b:0"));
    EXPECT_EQ(textOf<quint8>(*rgb, {255, 10, 0}, true), QStringLiteral("r:ff g:a b:0"));
    rgb->setStyle(QStringLiteral("Green"));
    EXPECT_EQ(textOf<quint8>(*rgb, {255, 10, 0}), QStringLiteral("r:255 g:10 b:0"));
    const auto rgba = make(cImgType::RGB32);
    EXPECT_EQ(textOf<quint8>(*rgba, {1, 2, 3, 4}), QStringLiteral("r:1 g:2 b:3 a:4"));
    for (const char* style : {"Hue", "Value", "Saturation"}) {
        rgb->setStyle(QString::fromLatin1(style));
        rgba->setStyle(QString::fromLatin1(style));
        EXPECT_EQ(textOf<quint8>(*rgb, {0, 128, 0}), QStringLiteral("h:120 s:255 v:128"));
        EXPECT_EQ(textOf<quint8>(*rgba, {0, 128, 0, 7}, true), QStringLiteral("h:78 s:ff v:80"));
    }
    EXPECT_EQ(textOf<short>(*make(cImgType::Gradient16), {-3, 10}), QStringLiteral("dx:-3 dy:10"));
    EXPECT_EQ(textOf<int>(*make(cImgType::Gradient32), {100000, 10}, true), QStringLiteral("dx:186a0 dy:a"));
}

TEST(cImgTypeText, TakesTheRoomOfASampleText)
{
    guiApplication();
    const auto roomOf = [](cImgType::ImageTypes i_type, bool i_hexadecimal = false) {
        return make(i_type)->getPixelStringSize(QFont(), i_hexadecimal);
    };
    EXPECT_EQ(roomOf(cImgType::UInt8), boxOf(QStringLiteral("255")));
    EXPECT_EQ(roomOf(cImgType::UInt8, true), boxOf(QStringLiteral("ff")));
    EXPECT_EQ(roomOf(cImgType::UInt16), boxOf(QStringLiteral("65535")));
    EXPECT_EQ(roomOf(cImgType::UInt32), boxOf(QStringLiteral("4294967295")));
    EXPECT_EQ(roomOf(cImgType::SInt8), boxOf(QStringLiteral("-128")));
    EXPECT_EQ(roomOf(cImgType::SInt16), boxOf(QStringLiteral("-32768")));
    EXPECT_EQ(roomOf(cImgType::SInt32), boxOf(QStringLiteral("-2147483648")));
    EXPECT_EQ(roomOf(cImgType::SInt64), boxOf(QStringLiteral("-9223372036854775808")));
    EXPECT_EQ(roomOf(cImgType::Float32), boxOf(QStringLiteral("-32768.00000")));
    EXPECT_EQ(roomOf(cImgType::Float64, true), boxOf(QStringLiteral("-32768.00000")));
    const QSize red = boxOf(QStringLiteral("r:255"));
    EXPECT_EQ(roomOf(cImgType::RGB24), QSize(red.width() + 5, red.height() * 3));
    EXPECT_EQ(roomOf(cImgType::RGB32), QSize(red.width() + 5, red.height() * 4));
    const QSize complex = boxOf(QStringLiteral("Re:10000.000 Im:10000.000"));
    EXPECT_EQ(roomOf(cImgType::Complex), QSize(complex.width(), complex.height() * 3));
    const QSize dx = boxOf(QStringLiteral("dx:-32768"));
    EXPECT_EQ(roomOf(cImgType::Gradient16), QSize(dx.width() + 5, dx.height() * 2));
    EXPECT_EQ(roomOf(cImgType::Gradient32), QSize(dx.width() + 5, dx.height() * 2));
}

TEST(cImgTypeFill, WritesNumbersIntoEveryChannel)
{
    EXPECT_TRUE(fills<quint8>(cImgType::UInt8, 200, 200));
    EXPECT_TRUE(fills<quint16>(cImgType::UInt16, 60000, 60000));
    EXPECT_TRUE(fills<quint32>(cImgType::UInt32, 4000000000u, 4000000000u));
    EXPECT_TRUE(fills<qint8>(cImgType::SInt8, -100, -100));
    EXPECT_TRUE(fills<qint16>(cImgType::SInt16, -30000, -30000));
    EXPECT_TRUE(fills<qint32>(cImgType::SInt32, -2000000000, -2000000000));
    EXPECT_TRUE(fills<qint64>(cImgType::SInt64, qint64(-9000000000000000000), -9000000000000000000));
    EXPECT_TRUE(fills<float>(cImgType::Float32, 0.1f, 0.1f));
    EXPECT_TRUE(fills<double>(cImgType::Float64, 0.1, 0.1));
    EXPECT_TRUE(fills<quint8>(cImgType::UInt8, QStringLiteral("17"), 17));
}

TEST(cImgTypeFill, WritesPixelsOfSeveralParts)
{
    EXPECT_TRUE(samePixels(filled(cImgType::RGB24, QVariant::fromValue(cRgb(1, 2, 3))),
        generateImage(cImgType::RGB24, 5, 3, [](unsigned, unsigned) { return cRgb(1, 2, 3); })));
    EXPECT_TRUE(samePixels(filled(cImgType::RGB24, QVariant::fromValue(cRgba(1, 2, 3, 4))),
        generateImage(cImgType::RGB24, 5, 3, [](unsigned, unsigned) { return cRgb(1, 2, 3); })));
    EXPECT_TRUE(samePixels(filled(cImgType::RGB32, QVariant::fromValue(cRgba(1, 2, 3, 4))),
        generateImage(cImgType::RGB32, 5, 3, [](unsigned, unsigned) { return cRgba(1, 2, 3, 4); })));
    EXPECT_TRUE(samePixels(filled(cImgType::RGB32, QVariant::fromValue(cRgb(1, 2, 3))),
        generateImage(cImgType::RGB32, 5, 3, [](unsigned, unsigned) { return cRgba(1, 2, 3, 255); })));
    EXPECT_TRUE(samePixels(filled(cImgType::Complex, QVariant::fromValue(cFltComplex(1, -2))),
        generateImage(cImgType::Complex, 5, 3, [](unsigned, unsigned) { return cFltComplex(1, -2); })));
    EXPECT_TRUE(samePixels(filled(cImgType::Gradient16, QVariant::fromValue(qMakePair(short(1), short(-2)))),
        generateImage(
            cImgType::Gradient16, 5, 3, [](unsigned, unsigned) { return qMakePair(short(1), short(-2)); })));
    EXPECT_TRUE(samePixels(filled(cImgType::Gradient32, QVariant::fromValue(qMakePair(1, -2))),
        generateImage(cImgType::Gradient32, 5, 3, [](unsigned, unsigned) { return qMakePair(1, -2); })));
}

TEST(cImgTypeFill, IgnoresWhatDoesNotConvert)
{
    for (const Row& row : s_rows) {
        SCOPED_TRACE(row.name);
        EXPECT_TRUE(leavesAlone(row.type, QVariant()));
        EXPECT_TRUE(leavesAlone(row.type, QStringLiteral("grey")));
        EXPECT_TRUE(leavesAlone(row.type, QVariantList {1, 2}));
    }
    EXPECT_TRUE(leavesAlone(cImgType::RGB24, 5));
    EXPECT_TRUE(leavesAlone(cImgType::Complex, 5));
    EXPECT_TRUE(leavesAlone(cImgType::Gradient16, QVariant::fromValue(qMakePair(1, -2))));
}

TEST(cImgTypeFill, IgnoresImagesOfOtherTypes)
{
    cImg image = makeRandomImage(cImgType::SInt8, 2, 2);
    make(cImgType::UInt8)->fill(image, 5);
    EXPECT_TRUE(samePixels(image, makeRandomImage(cImgType::SInt8, 2, 2)));
    cImg nothing;
    nothing.getImgType().fill(nothing, 5);
    EXPECT_FALSE(nothing.isValid());
}

TEST(cImgTypeFill, DetachesAndStaysWithinAView)
{
    cImg image = filled(cImgType::UInt8, 1);
    const cImg before = image;
    image.getImgType().fill(image, 2);
    EXPECT_EQ(before.getPixel<quint8>(0, 0), 1);

    for (unsigned channels : {1u, 2u}) {
        cImg parent = filled(cImgType::UInt16, 1, channels);
        cImg view(parent, false, cRect<int>(1, 1, 3, 1));
        view.getImgType().fill(view, 9);
        for (unsigned y = 0; y < 3; ++y)
            for (unsigned x = 0; x < 5; ++x)
                for (unsigned channel = 0; channel < channels; ++channel)
                    EXPECT_EQ(parent.getRow<quint16>(y)[x * channels + channel],
                        y == 1 && x >= 1 && x <= 3 ? 9 : 1);
    }
}

TEST(cImgTypeFill, StaysOutOfTheGapsBetweenPixels)
{
    unsigned char memory[2 * 3 * 4];
    std::memset(memory, 99, sizeof memory);
    cImg grey(cImgType::UInt8, 3, 2, 4, 12, memory, nullptr);
    grey.getImgType().fill(grey, 5);
    for (unsigned i = 0; i < sizeof memory; ++i)
        EXPECT_EQ(memory[i], i % 4 ? 99 : 5);
    cImg colour(cImgType::RGB24, 3, 2, 4, 12, memory, nullptr);
    colour.getImgType().fill(colour, QVariant::fromValue(cRgb(7, 7, 7)));
    for (unsigned i = 0; i < sizeof memory; ++i)
        EXPECT_EQ(memory[i], i % 4 == 3 ? 99 : 7);
}
