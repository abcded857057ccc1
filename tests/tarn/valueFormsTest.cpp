#include <cJsonLines.h>
#include <cValueForm.h>
#include <support/qtPrinters.h>

#include <QColor>
#include <QJsonArray>
#include <QJsonDocument>
#include <QPainterPath>
#include <QTemporaryDir>
#include <cmath>
#include <cstring>
#include <gtest/gtest.h>
#include <limits>
#include <random>
#include <tarnflow/valueTypes.h>

namespace {

const cValueForm& formOf(const std::type_info& i_type)
{
    const cValueForm* form = cValueForm::find(i_type);
    if (!form)
        throw std::logic_error("no form");
    return *form;
}

template <class T> QByteArray json(const T& i_value)
{
    QByteArray text;
    formOf(typeid(T)).write(&i_value, text);
    return text;
}

QJsonValue parsed(const QByteArray& i_json)
{
    QJsonParseError error;
    const QJsonDocument document = QJsonDocument::fromJson('[' + i_json + ']', &error);
    EXPECT_EQ(error.error, QJsonParseError::NoError) << i_json.constData();
    return document.array().at(0);
}

/** The value that a JSON text gives; fails if it gives none. */
template <class T> T fromJson(const QByteArray& i_json)
{
    cJsonProblem problem;
    const cValueForm::Value value = formOf(typeid(T)).read(parsed(i_json), problem);
    EXPECT_TRUE(value) << i_json.constData() << ": " << problem.toString().toStdString();
    return value ? *static_cast<const T*>(value.get()) : T {};
}

template <class T> std::string problemOf(const QByteArray& i_json)
{
    cJsonProblem problem;
    EXPECT_FALSE(formOf(typeid(T)).read(parsed(i_json), problem)) << i_json.constData();
    return problem.toString().toStdString();
}

template <class T> void expectForm(const T& i_value, const char* i_json)
{
    EXPECT_EQ(json(i_value), QByteArray(i_json));
    EXPECT_TRUE(fromJson<T>(i_json) == i_value) << i_json;
}

template <class T> void expectSameBits(T i_value)
{
    const T read = fromJson<T>(json(i_value));
    EXPECT_EQ(std::memcmp(&read, &i_value, sizeof(T)), 0) << json(i_value).constData();
}

} // namespace

TEST(valueForms, EveryTypeThatPortsCarryHasOne)
{
#define EXPECT_FORM(T) EXPECT_NE(cValueForm::find(typeid(T)), nullptr) << #T;
    TARNFLOW_VALUE_TYPES(EXPECT_FORM)
#undef EXPECT_FORM
    EXPECT_EQ(cValueForm::find(typeid(QString)), nullptr);
}

TEST(valueForms, AreWrittenAsTheTableSaysAndReadBack)
{
    expectForm(2.5, "2.5");
    expectForm(0.1, "0.1");
    expectForm(0.1f, "0.1");
    expectForm(1e300, "1e+300");
    expectForm(-7, "-7");
    expectForm(QColor(255, 128, 0), "\"#ff8000\"");
    expectForm(QColor(255, 128, 0, 1), "\"#01ff8000\"");
    expectForm(QColor(), "null");
    expectForm(c2DPoint<int>(3, -4), "[3,-4]");
    expectForm(QVector<int> {1, 2, 3}, "[1,2,3]");
    expectForm(QVector<int>(), "[]");
    expectForm(QVector<float> {0.5f, -1.0f}, "[0.5,-1]");
    expectForm(QVector<QVector<int>> {{1, 2}, {}, {3}}, "[[1,2],[],[3]]");
    expectForm(QVector<c2DPoint<int>> {{1, 2}, {3, 4}}, "[[1,2],[3,4]]");
    expectForm(QVector<c2DLine<float>> {{0.5f, 1, 2, 3}}, "[[[0.5,1],[2,3]]]");
    const float elements[] = {1, 2, 3, 4, 5, 6.5f};
    expectForm(cMatrix<float>(2, 3, elements), "[[1,2,3],[4,5,6.5]]");
    expectForm(cMatrix<float>(), "[]");
    QPainterPath path(QPointF(1, 2));
    path.lineTo(3, 4.5);
    path.cubicTo(1, 2, 3, 4, 5, 6);
    expectForm(path, "[[\"M\",1,2],[\"L\",3,4.5],[\"C\",1,2,3,4,5,6]]");
    expectForm(QPainterPath(), "[]");
}

TEST(valueForms, ColoursOfEveryKindReadBack)
{
    for (const QColor& colour :
        {QColor::fromHsv(120, 200, 100), QColor::fromRgba64(1, 2, 3, 4), QColor(Qt::red)})
        EXPECT_EQ(fromJson<QColor>(json(colour)), colour) << json(colour).constData();
}

TEST(valueForms, NumbersReadBackToTheSameBits)
{
    for (const double number :
        {0.0, 1.0 / 3, 5e-324, 1.7976931348623157e308, 123456789012345680.0, 9007199254740993.0, -1e22,
            std::numeric_limits<double>::infinity(), -std::numeric_limits<double>::infinity()}) {
        expectSameBits(number);
        expectSameBits(float(number));
    }
    std::mt19937_64 random(3);
    for (int i = 0; i < 20000; ++i) {
        const quint64 bits = random();
        double number;
        std::memcpy(&number, &bits, sizeof number);
        if (std::isfinite(number))
            expectSameBits(number);
        float single;
        std::memcpy(&single, &bits, sizeof single);
        if (std::isfinite(single))
            expectSameBits(single);
    }
    EXPECT_EQ(json(-0.0), QByteArray("-0.0"));
    EXPECT_EQ(fromJson<double>("-0.0"), 0.0);
    EXPECT_EQ(json(std::nan("")), QByteArray("\"nan\""));
    EXPECT_EQ(json(-std::numeric_limits<float>::infinity()), QByteArray("\"-inf\""));
    EXPECT_TRUE(std::isnan(fromJson<double>("\"nan\"")));
}

TEST(valueForms, WhatIsOfAnotherFormIsRefusedWithWhatWasExpected)
{
    EXPECT_EQ(problemOf<double>("\"abc\""), "expected a number, \"nan\", \"inf\" or \"-inf\", found \"abc\"");
    EXPECT_EQ(problemOf<double>("null"), "expected a number, \"nan\", \"inf\" or \"-inf\", found null");
    EXPECT_EQ(problemOf<float>("1e300"), "expected a number of single precision, found 1e+300");
    EXPECT_EQ(problemOf<int>("2.5"), "expected an integer from -2147483648 to 2147483647, found 2.5");
    EXPECT_EQ(
        problemOf<int>("2147483648"), "expected an integer from -2147483648 to 2147483647, found 2147483648");
    EXPECT_EQ(problemOf<int>("true"), "expected an integer from -2147483648 to 2147483647, found true");
    EXPECT_EQ(problemOf<QColor>("\"rot\""),
        "expected a colour such as \"#ff8000\" or \"red\", or null, found \"rot\"");
    EXPECT_EQ(problemOf<QColor>("17"), "expected a colour such as \"#ff8000\" or \"red\", or null, found 17");
    EXPECT_EQ(problemOf<c2DPoint<int>>("[1,2,3]"), "expected a point, [x, y], found [1,2,3]");
    EXPECT_EQ(problemOf<QVector<int>>("3"), "expected an array, found 3");
    EXPECT_EQ(problemOf<QVector<c2DLine<float>>>("[[1,2]]"), "expected a point, [x, y], found 1");
    EXPECT_EQ(
        problemOf<cMatrix<float>>("[[1,2],[3]]"), "expected a row of 2 numbers, as the first one, found [3]");
    EXPECT_EQ(problemOf<QPainterPath>("[[\"Q\",1,2]]"),
        "expected [\"M\", x, y], [\"L\", x, y] or [\"C\", x, y, x, y, x, y], found [\"Q\",1,2]");
}

TEST(valueForms, AConstantIsReadAsAParameterOrAsJson)
{
    const auto text = [](const std::type_info& type, const char* words) {
        QString problem;
        const cValueForm::Value value = formOf(type).readText(QString::fromUtf8(words), problem);
        if (!value)
            return problem.toUtf8();
        QByteArray json;
        formOf(type).write(value.get(), json);
        return json;
    };
    EXPECT_EQ(text(typeid(double), "2.5"), QByteArray("2.5"));
    EXPECT_EQ(text(typeid(QColor), "red"), QByteArray("\"#ff0000\""));
    EXPECT_EQ(text(typeid(c2DPoint<int>), "3,4"), QByteArray("[3,4]"));
    EXPECT_EQ(text(typeid(c2DPoint<int>), "[3,4]"), QByteArray("[3,4]"));
    EXPECT_EQ(text(typeid(QVector<int>), "[1, 2]"), QByteArray("[1,2]"));
    EXPECT_EQ(text(typeid(cMatrix<float>), "[[1,0],[0,1]]"), QByteArray("[[1,0],[0,1]]"));
    EXPECT_EQ(text(typeid(double), "abc"),
        QByteArray(
            "expected a number from -1.7976931348623157e+308 to 1.7976931348623157e+308, found \"abc\""));
    EXPECT_EQ(text(typeid(QVector<int>), "1;2"),
        QByteArray("expected a value in JSON, such as [1, 2, 3], found \"1;2\""));
    EXPECT_EQ(text(typeid(QVector<int>), "[1,2.5]"),
        QByteArray("expected an integer from -2147483648 to 2147483647, found 2.5"));
}

TEST(jsonPlaces, AnElementIsFoundAlongItsPath)
{
    const QByteArray text = "  [1, [\"a]\\\"\", {\"k\": [2]}, 30 ], 4]";
    EXPECT_EQ(text.mid(host::jsonElement(text, 2, {}), 2), QByteArray("[1"));
    EXPECT_EQ(text.mid(host::jsonElement(text, 2, {0}), 1), QByteArray("1"));
    EXPECT_EQ(text.mid(host::jsonElement(text, 2, {1, 2}), 2), QByteArray("30"));
    EXPECT_EQ(text.mid(host::jsonElement(text, 2, {2}), 1), QByteArray("4"));
}

TEST(jsonPlaces, AMemberIsFoundByItsKey)
{
    const QByteArray text = "{ \"a\" : [1, {\"value\": 2}], \"value\" :  3, \"b\":\"value\"}";
    EXPECT_EQ(text.mid(host::jsonMember(text, 0, "value"), 2), QByteArray("3,"));
    EXPECT_EQ(text.mid(host::jsonMember(text, 0, "b"), 7), QByteArray("\"value\""));
    EXPECT_EQ(host::jsonMember(text, 0, "c"), -1);
    EXPECT_EQ(host::jsonMember("{}", 0, "c"), -1);
}

namespace {

class cJsonLinesTest : public testing::Test {
protected:
    /** What reading this text says, without the folder. */
    QString read(const QByteArray& i_text, const char* i_port = "", const char* i_key = "value")
    {
        QFile file(m_folder.filePath(QStringLiteral("v.jsonl")));
        EXPECT_TRUE(file.open(QIODevice::WriteOnly));
        file.write(i_text);
        file.close();
        return m_lines.read(file.fileName(), QString::fromUtf8(i_key), QString::fromUtf8(i_port))
            .remove(m_folder.path() + u'/');
    }
    QByteArray stampsAndValues() const
    {
        QByteArray text;
        for (const cJsonLines::Entry& entry : m_lines.getEntries())
            text += QByteArray::number(entry.stamp) + ':' + host::jsonText(entry.value).toUtf8() + ' ';
        return text.trimmed();
    }

    QTemporaryDir m_folder;
    cJsonLines m_lines;
};

} // namespace

TEST_F(cJsonLinesTest, LinesWithoutStampsFollowOneAnother)
{
    EXPECT_EQ(read("1.5\n\n [2]\r\n  \n{\"value\":\"red\"}"), QString());
    EXPECT_EQ(stampsAndValues(), QByteArray("0:1.5 1:[2] 2:\"red\""));
}

TEST_F(cJsonLinesTest, StampsMayBeGivenAndLinesWithoutOneGoOnFromThere)
{
    EXPECT_EQ(
        read("{\"stamp\":-3,\"value\":1}\n{\"stamp\":5,\"value\":2,\"file\":\"a.png\"}\n3\n"), QString());
    EXPECT_EQ(stampsAndValues(), QByteArray("-3:1 5:2 6:3"));
}

TEST_F(cJsonLinesTest, OnePortOfSeveralIsChosen)
{
    const QByteArray text
        = "{\"stamp\":0,\"port\":\"m.a\",\"value\":1}\n{\"stamp\":0,\"port\":\"m.b\",\"value\":2}\n"
          "{\"stamp\":1,\"port\":\"m.a\",\"value\":3}\n7\n";
    EXPECT_EQ(read(text, "m.a"), QString());
    EXPECT_EQ(stampsAndValues(), QByteArray("0:1 1:3"));
    EXPECT_EQ(read(text),
        QStringLiteral(
            "v.jsonl:2:19: the value is of port \"m.b\", those before are of \"m.a\"; choose with port="));
    EXPECT_EQ(read(text, "m.c"), QStringLiteral("v.jsonl: no line has the port \"m.c\""));
}

TEST_F(cJsonLinesTest, TheKeyOfTheValueIsChosen)
{
    EXPECT_EQ(read("{\"gain\":1,\"value\":2}\n", "", "gain"), QString());
    EXPECT_EQ(stampsAndValues(), QByteArray("0:1"));
    EXPECT_EQ(read("1\n {\"gain\":1,\"mean\":2}\n"),
        QStringLiteral("v.jsonl:2:2: expected the key \"value\", found \"gain\", \"mean\""));
    EXPECT_EQ(read("{}\n"), QStringLiteral("v.jsonl:1:1: expected the key \"value\", found none"));
}

TEST_F(cJsonLinesTest, ABadLineIsNamedWithItsPlace)
{
    EXPECT_EQ(read("1\nabc\n"),
        QStringLiteral("v.jsonl:2:1: expected one JSON value, found an error in it (illegal number)"));
    EXPECT_EQ(read("1 2\n"),
        QStringLiteral(
            "v.jsonl:1:4: expected one JSON value, found an error in it (missing value separator)"));
    EXPECT_EQ(read("1, 2\n"),
        QStringLiteral("v.jsonl:1:1: expected one JSON value, found several, or a comma at the end"));
    EXPECT_EQ(read("{\"stamp\":1.5,\"value\":2}\n"),
        QStringLiteral("v.jsonl:1:10: expected an integer as stamp, found 1.5"));
    EXPECT_EQ(read("1\n2\n{\"value\":3,\"stamp\":1}\n"),
        QStringLiteral("v.jsonl:3:20: expected a stamp above 1, the one of line 2, found 1"));
    EXPECT_EQ(read(""), QStringLiteral("v.jsonl: holds no value, expected one in each line"));
    EXPECT_EQ(m_lines.read(QStringLiteral("/nowhere/v.jsonl"), QStringLiteral("value"), QString()),
        QStringLiteral("/nowhere/v.jsonl: No such file or directory"));
}

TEST_F(cJsonLinesTest, AValueOfAnotherTypeIsNamedWithItsPlaceInTheLine)
{
    ASSERT_EQ(read("[1,2]\n  {\"stamp\":4, \"ä\":0, \"value\": [[1, 2], [3, \"x\"]]}\n"), QString());
    cJsonProblem problem;
    const cJsonLines::Entry& entry = m_lines.getEntries()[1];
    ASSERT_FALSE(formOf(typeid(cMatrix<float>)).read(entry.value, problem));
    EXPECT_EQ(m_lines.describe(entry, problem).remove(m_folder.path() + u'/'),
        QStringLiteral("v.jsonl:2:44: expected a number, \"nan\", \"inf\" or \"-inf\", found \"x\""));
}
