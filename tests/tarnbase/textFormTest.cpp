// The text forms of values, through the entries that people meet.
#include "printing.h"

#include <tarnbase/cDataValObj.h>

#include <gtest/gtest.h>

#include <cmath>
#include <cstring>
#include <limits>
#include <random>

namespace {

QString text(const char* i_text) { return QString::fromUtf8(i_text); }

QString inQuotes(const char* i_text)
{
    return QLatin1Char('"')
        + text(i_text)
              .replace(QLatin1Char('\\'), QLatin1String("\\\\"))
              .replace(QLatin1Char('"'), QLatin1String("\\\""))
        + QLatin1Char('"');
}

struct Case {
    const char* type;
    const char* input;
    const char* output; ///< how the value is written, or after "!" what was expected
};

constexpr char s_noInt[] = "!an integer from -2147483648 to 2147483647";
constexpr char s_noDouble[] = "!a number from -1.7976931348623157e+308 to 1.7976931348623157e+308";
constexpr char s_noColour[] = "!a colour such as #ff8000, #80ff8000 or orange";
constexpr char s_noList[] = "!a list such as a,b,\"c, d\"";
constexpr char s_noIntMatrix[]
    = "!rows of equal length such as 1,2,3;4,5,6, each element an integer from -2147483648 to 2147483647";
constexpr char s_noFloatMatrix[]
    = "!rows of equal length such as 1,2,3;4,5,6, each element a number from -3.4028235e+38 to 3.4028235e+38";

const Case s_cases[] = {
    {"bool", "true", "true"},
    {"bool", " On ", "true"},
    {"bool", "1", "true"},
    {"bool", "YES", "true"},
    {"bool", "off", "false"},
    {"bool", "0", "false"},
    {"bool", "2", "!true or false"},
    {"bool", "", "!true or false"},
    {"int", "-2147483648", "-2147483648"},
    {"int", " +7 ", "7"},
    {"int", "010", "10"},
    {"int", "0xFF", "255"},
    {"int", "-0x10", "-16"},
    {"int", "-0", "0"},
    {"int", "2147483648", s_noInt},
    {"int", "99999999999999999999", s_noInt},
    {"int", "1.5", s_noInt},
    {"int", "+-1", s_noInt},
    {"int", "- 1", s_noInt},
    {"int", "0x", s_noInt},
    {"int", "\xd9\xa3", s_noInt},
    {"uint", "4294967295", "4294967295"},
    {"uint", "4294967296", "!an integer from 0 to 4294967295"},
    {"uint", "-1", "!an integer from 0 to 4294967295"},
    {"uchar", "255", "255"},
    {"uchar", "256", "!an integer from 0 to 255"},
    {"uchar", "a", "!an integer from 0 to 255"},
    {"ushort", "65535", "65535"},
    {"ushort", "65536", "!an integer from 0 to 65535"},
    {"float", "0.1", "0.1"},
    {"float", "1e-45", "1e-45"},
    {"float", "3.4028235e38", "3.4028235e+38"},
    {"float", "-inf", "-inf"},
    {"float", "+.5", "0.5"},
    {"float", "1e39", "!a number from -3.4028235e+38 to 3.4028235e+38"},
    {"double", "0.5", "0.5"},
    {"double", "1e22", "1e+22"},
    {"double", "NaN", "nan"},
    {"double", "Infinity", "inf"},
    {"double", "0,5", s_noDouble},
    {"double", "1e400", s_noDouble},
    {"double", "0x10", s_noDouble},
    {"string", " any \n text ", " any \n text "},
    {"string", "", ""},
    {"strings", "", ""},
    {"strings", "\"\"", "\"\""},
    {"strings", "a, b ,c", "a,b,c"},
    {"strings", "a,,", "a,\"\",\"\""},
    {"strings", "\"c, d\" , e", "\"c, d\",e"},
    {"strings", "\"a\\u00e4\\n\"", "\"a\xc3\xa4\\n\""},
    {"strings", "\"open", s_noList},
    {"strings", "\"a\" b", s_noList},
    {"strings", "\"\\x\"", s_noList},
    {"colour", "#ff8000", "#ff8000"},
    {"colour", "#80FF8000", "#80ff8000"},
    {"colour", "#00000000", "#00000000"},
    {"colour", "orange", "#ffa500"},
    {"colour", "transparent", "#00000000"},
    {"colour", "invalid", "invalid"},
    {"colour", "hsv(65535,12000,65535,257,0)", "hsv(65535,12000,65535,257,0)"},
    {"colour", "cmyk(65535,1,2,3,4)", "cmyk(65535,1,2,3,4)"},
    {"colour", "rgb(65535,1,2,3,0)", "rgb(65535,1,2,3,0)"},
    {"colour", "rgb(65535,257,0,0,1)", "rgb(65535,257,0,0,1)"},
    {"colour", "rgb(65535,257,0,0,0)", "#010000"},
    {"colour", "hsv(65535,36001,0,0,0)", s_noColour},
    {"colour", "rgb(1,2,3)", s_noColour},
    {"colour", "#ff80", s_noColour},
    {"colour", "", s_noColour},
    {"size", "640x480", "640x480"},
    {"size", "640, 480", "640x480"},
    {"size", "640", "!width and height such as 640x480"},
    {"point", "5,5", "5,5"},
    {"point", " -1 , 2 ", "-1,2"},
    {"point", "5,5,5", "!two integers such as 5,5"},
    {"point", "5,", "!two integers such as 5,5"},
    {"point", "5.5,1", "!two integers such as 5,5"},
    {"rect", "1,2,-3,4", "1,2,-3,4"},
    {"rect", "1,2,3", "!left, top, width and height such as 0,0,10,10"},
    {"range", "0,255", "0,255"},
    {"range", "255,0", "0,255"},
    {"range", "-inf,1e300", "-inf,1e+300"},
    {"range", "0", "!low and high such as 0,255"},
    {"matrix<int>", "1,2,3;4,5,6", "1,2,3;4,5,6"},
    {"matrix<int>", "2x3:1,2,3;4,5,6", "1,2,3;4,5,6"},
    {"matrix<int>", "", "0x0:"},
    {"matrix<int>", "3x0:", "3x0:"},
    {"matrix<int>", "0x4294967295:", "0x4294967295:"},
    {"matrix<int>", "4294967295x4294967295:", s_noIntMatrix},
    {"matrix<int>", "1,2;3", s_noIntMatrix},
    {"matrix<int>", "3x2:1,2,3;4,5,6", s_noIntMatrix},
    {"matrix<int>", "0x1:5", s_noIntMatrix},
    {"matrix<int>", ";", s_noIntMatrix},
    {"matrix<float>", "0.25,0.5,0.75", "0.25,0.5,0.75"},
    {"matrix<float>", "inf;-0;nan", "inf;-0;nan"},
    {"matrix<float>", "1,1e39", s_noFloatMatrix},
};

std::unique_ptr<cObj> entryOf(const char* i_type)
{
    const cObjType* const type = cObjType::findType(text(i_type));
    return std::unique_ptr<cObj>(type != nullptr ? type->create() : nullptr);
}

template <class Real, class Bits> void expectExactText(Bits i_bits)
{
    Real value;
    static_assert(sizeof(value) == sizeof(i_bits));
    std::memcpy(&value, &i_bits, sizeof(value));
    const cDataValObj<Real> source(value, 0);
    cDataValObj<Real> target(Real(7), 0); // -0 equals 0 and would not be stored over it
    ASSERT_TRUE(target.setFromText(source.toText())) << source.toText().toStdString();
    const Real back = *static_cast<const Real*>(target.getData());
    if (std::isnan(value))
        EXPECT_TRUE(std::isnan(back));
    else
        EXPECT_EQ(std::memcmp(&back, &value, sizeof(value)), 0) << source.toText().toStdString();
}

} // namespace

TEST(textForm, EachTypeReadsItsTextsAndRefusesTheOthers)
{
    for (const Case& row : s_cases) {
        SCOPED_TRACE(testing::Message() << row.type << " from \"" << row.input << '"');
        const std::unique_ptr<cObj> entry = entryOf(row.type);
        ASSERT_TRUE(entry);
        const QString before = entry->toText();
        QString error;
        if (row.output[0] == '!') {
            EXPECT_FALSE(entry->setFromText(text(row.input), &error));
            EXPECT_EQ(error, text("expected %1, found %2").arg(text(row.output + 1), inQuotes(row.input)));
            EXPECT_EQ(entry->toText(), before);
            EXPECT_FALSE(entry->setFromText(text(row.input)));
        } else {
            EXPECT_TRUE(entry->setFromText(text(row.input), &error)) << error.toStdString();
            EXPECT_EQ(entry->toText(), text(row.output));
            EXPECT_TRUE(error.isEmpty());
        }
    }
}

TEST(textForm, EachBitOfANumberComesBack)
{
    std::mt19937_64 random(7);
    for (int i = 0; i < 20000; ++i) {
        expectExactText<double>(quint64(random()));
        expectExactText<float>(quint32(random()));
    }
    for (const double edge : {0.0, -0.0, 5e-324, 2.2250738585072014e-308, 1.7976931348623157e308, 0.1,
             1.0 / 3.0, std::numeric_limits<double>::infinity(), -std::numeric_limits<double>::infinity()}) {
        quint64 bits;
        std::memcpy(&bits, &edge, sizeof(bits));
        expectExactText<double>(bits);
    }
}

TEST(textForm, ALongTextIsCutInTheMessage)
{
    cDataValObj<int> entry;
    QString error;
    EXPECT_FALSE(entry.setFromText(QString(100000, QLatin1Char('x')), &error));
    EXPECT_EQ(error,
        QStringLiteral("expected an integer from -2147483648 to 2147483647, found \"")
            + QString(60, QLatin1Char('x')) + QStringLiteral("\"..."));
}

TEST(textForm, ColoursOfEveryKindComeBackToTheBit)
{
    QColor wide;
    wide.setRgba64(qRgba64(0x1234, 0x5678, 0x9abc, 0xdef0));
    const QColor colours[] = {QColor(), wide, QColor::fromHsvF(0.3, 0.4, 0.5, 0.6),
        QColor::fromHsv(-1, 0, 10), QColor::fromHslF(0.1, 0.2, 0.3), QColor::fromCmyk(1, 2, 3, 4, 5),
        QColor::fromRgbF(1.5, -0.5, 0.25), QColor(Qt::transparent)};
    for (const QColor& colour : colours) {
        const cDataValObj<QColor> source(colour, 0);
        cDataValObj<QColor> target(QColor(Qt::red), 0);
        QString error;
        ASSERT_TRUE(target.setFromText(source.toText(), &error)) << error.toStdString();
        EXPECT_TRUE(*static_cast<const QColor*>(target.getData()) == colour) << source.toText().toStdString();
    }
}
