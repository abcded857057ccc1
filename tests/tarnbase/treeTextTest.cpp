#include "TraceCapture.h"
#include "printing.h"

#include <tarnbase/cDataRefObjImpl.h>
#include <tarnbase/cMapObj.h>

#include <QBuffer>
#include <QLocale>
#include <QTextStream>

#include <gtest/gtest.h>

#include <limits>
#include <random>

namespace {

QString text(const char* i_text) { return QString::fromUtf8(i_text); }

QString written(const cObj& i_object)
{
    QString result;
    QTextStream stream(&result);
    EXPECT_TRUE(i_object.write(stream));
    return result;
}

bool readFrom(cObj& io_object, QString i_text)
{
    QTextStream stream(&i_text);
    return io_object.readStream(stream);
}

/** Random trees of all value types, with texts of any characters. */
class RandomTree {
public:
    explicit RandomTree(unsigned int i_seed) : m_random(i_seed) {}

    void fill(cMapObj& o_map, int i_levels)
    {
        for (int count = number(0, 6); count > 0; --count) {
            QString key = anyText();
            key.remove(QLatin1Char('/'));
            if (i_levels > 0 && number(0, 3) == 0) {
                auto* group = new cMapObj;
                fill(*group, i_levels - 1);
                o_map[key] = group;
            } else {
                o_map[key] = value();
            }
        }
    }

private:
    int number(int i_low, int i_high) { return std::uniform_int_distribution<int>(i_low, i_high)(m_random); }

    QString anyText()
    {
        QString result;
        for (int length = number(0, 8); length > 0; --length) {
            switch (number(0, 3)) {
            case 0:
                result += QChar(ushort(number(0, 0xffff)));
                break;
            case 1:
                result += QLatin1String("\"\\\n\r\t{}=# /;,")[number(0, 12)];
                break;
            case 2: {
                const uint code = uint(number(0x10000, 0x10ffff));
                result += QString::fromUcs4(&code, 1);
                break;
            }
            default:
                result += QChar(ushort(number('a', 'z')));
            }
        }
        return result;
    }

    double real()
    {
        switch (number(0, 5)) {
        case 0:
            return std::numeric_limits<double>::infinity();
        case 1:
            return -0.0;
        default:
            return std::ldexp(std::normal_distribution<double>()(m_random), number(-120, 120));
        }
    }

    template <class E> cMatrix<E> matrix()
    {
        cMatrix<E> result(unsigned(number(0, 3)), unsigned(number(0, 3)));
        for (unsigned int row = 0; row < result.getRowCount(); ++row)
            for (unsigned int column = 0; column < result.getColumnCount(); ++column)
                result(row, column) = E(std::is_same_v<E, int> ? number(-1000, 1000) : real());
        return result;
    }

    template <class T> cObj* entry(const T& i_value) { return new cDataValObj<T>(i_value, 0); }

    cObj* value()
    {
        switch (number(0, 15)) {
        case 0:
            return entry<bool>(number(0, 1) == 1);
        case 1:
            return entry<int>(int(m_random()));
        case 2:
            return entry<unsigned int>(unsigned(m_random()));
        case 3:
            return entry<unsigned char>(static_cast<unsigned char>(m_random()));
        case 4:
            return entry<unsigned short>(static_cast<unsigned short>(m_random()));
        case 5:
            return entry<float>(float(real()));
        case 6:
            return entry<double>(real());
        case 7:
            return entry<QString>(anyText());
        case 8: {
            QStringList list;
            for (int count = number(0, 4); count > 0; --count)
                list.append(anyText());
            return entry<QStringList>(list);
        }
        case 9:
            return entry<QColor>(QColor::fromRgba(QRgb(m_random())));
        case 10:
            return entry<QSize>(QSize(number(-9, 999), number(-9, 999)));
        case 11:
            return entry<c2DPoint<int>>(c2DPoint<int>(int(m_random()), int(m_random())));
        case 12:
            return entry<cRect<int>>(
                cRect<int>(int(m_random()), int(m_random()), int(m_random()), int(m_random())));
        case 13:
            return entry<cRange<double>>(cRange<double>(real(), real()));
        case 14:
            return entry<cMatrix<int>>(matrix<int>());
        default:
            return entry<cMatrix<float>>(matrix<float>());
        }
    }

    std::mt19937 m_random;
};

cMapObj exampleTree()
{
    cMapObj map;
    map[text("Range")] = new cDataValObj<cRange<double>>({0, 255}, 0);
    map[text("AutoRange/Use")] = new cDataValObj<bool>(false, 0);
    map[text("AutoRange/Deeper/x")] = new cDataValObj<unsigned int>(1, 0);
    map[text("a \"key\"")] = new cDataValObj<QString>(text("line\n{"), 0);
    map[text("names")] = new cDataValObj<QStringList>({text("one"), text("two three")}, 0);
    map[text("empty")] = new cMapObj;
    return map;
}

constexpr char s_example[] = "{\n"
                             "    Range = range 0,255\n"
                             "    AutoRange = {\n"
                             "        Use = bool false\n"
                             "        Deeper = {\n"
                             "            x = uint 1\n"
                             "        }\n"
                             "    }\n"
                             "    \"a \\\"key\\\"\" = string \"line\\n{\"\n"
                             "    names = strings one,\"two three\"\n"
                             "    empty = {\n"
                             "    }\n"
                             "}\n";

} // namespace

TEST(treeText, IsReadableAsItStands)
{
    const cMapObj map = exampleTree();
    EXPECT_EQ(written(map), text(s_example));
    EXPECT_EQ(map.toString(false), text(s_example));
    EXPECT_EQ(written(cMapObj()), text("{\n}\n"));
    EXPECT_EQ(written(cDataValObj<double>(0.5, 0)), text("double 0.5\n"));
    EXPECT_EQ(written(cDataValObj<QString>(text("0.5"), 0)), text("string \"0.5\"\n"));
}

TEST(treeText, BringsBackTypesOrderAndValuesIntoAnEmptyMap)
{
    cMapObj copy;
    ASSERT_TRUE(readFrom(copy, text(s_example)));
    EXPECT_TRUE(copy.isEqual(std::make_unique<cMapObj>(exampleTree()).get()));
    EXPECT_EQ(written(copy), text(s_example));
}

TEST(treeText, RandomTreesComeBackWhole)
{
    for (unsigned int seed = 0; seed < 2000; ++seed) {
        SCOPED_TRACE(testing::Message() << "seed " << seed);
        cMapObj map;
        RandomTree(seed).fill(map, 4);
        const QString first = written(map);
        cMapObj copy;
        ASSERT_TRUE(readFrom(copy, first)) << first.toStdString();
        ASSERT_TRUE(copy.isEqual(&map)) << first.toStdString();
        ASSERT_EQ(written(copy), first);
    }
}

TEST(treeText, RandomTreesComeBackThroughAnyEncoding)
{
    for (const char* codec : {"UTF-8", "ISO-8859-1", "US-ASCII", "UTF-16"}) {
        for (unsigned int seed = 0; seed < 200; ++seed) {
            SCOPED_TRACE(testing::Message() << codec << ", seed " << seed);
            cMapObj map;
            RandomTree(seed).fill(map, 3);
            QByteArray bytes;
            QBuffer out(&bytes);
            ASSERT_TRUE(out.open(QIODevice::WriteOnly));
            {
                QTextStream stream(&out);
                stream.setCodec(codec);
                ASSERT_TRUE(map.write(stream));
            }
            QBuffer in(&bytes);
            ASSERT_TRUE(in.open(QIODevice::ReadOnly));
            QTextStream stream(&in);
            stream.setCodec(codec);
            cMapObj copy;
            ASSERT_TRUE(copy.readStream(stream)) << bytes.toStdString();
            ASSERT_TRUE(copy.isEqual(&map)) << bytes.toStdString();
        }
    }
}

TEST(treeText, IsTheSameInEveryLocaleAndWithAnySettingOfTheStream)
{
    const cMapObj map = exampleTree();
    const QLocale before;
    QLocale::setDefault(QLocale(QLocale::German));
    QString result;
    QTextStream stream(&result);
    stream.setLocale(QLocale(QLocale::German));
    stream.setFieldWidth(7);
    stream.setIntegerBase(16);
    stream.setRealNumberPrecision(1);
    EXPECT_TRUE(map.write(stream));
    EXPECT_EQ(stream.fieldWidth(), 7);
    EXPECT_EQ(result, text(s_example));
    cMapObj copy;
    EXPECT_TRUE(copy.readStream(stream));
    EXPECT_TRUE(copy.isEqual(&map));
    QLocale::setDefault(before);
}

TEST(treeText, SeveralTreesStandInOneStream)
{
    QString result;
    QTextStream stream(&result);
    cMapObj first;
    first[text("a")] = new cDataValObj<int>(1, 0);
    const cDataValObj<double> second(2.5, 0);
    EXPECT_TRUE(first.write(stream));
    EXPECT_TRUE(second.write(stream));
    EXPECT_TRUE(first.write(stream));
    stream << "rest";

    cMapObj map;
    cDataValObj<double> number;
    EXPECT_TRUE(map.readStream(stream));
    EXPECT_TRUE(number.readStream(stream));
    EXPECT_TRUE(number.isEqual(&second));
    map.clear();
    EXPECT_TRUE(map.readStream(stream));
    EXPECT_TRUE(map.isEqual(&first));
    EXPECT_EQ(stream.readAll().trimmed(), text("rest"));
}

TEST(treeText, IsReadAsPeopleWriteIt)
{
    cMapObj map;
    EXPECT_TRUE(readFrom(map,
        text("\xef\xbb\xbf# settings\r\n\r\n{ AutoRange/Use=bool on\r\n"
             "  # a comment\r\n\tlist = strings a , b\r\n"
             "colour =   colour  #ff8000  \r\n"
             "s = string \"#\"  \r\n}")));
    EXPECT_EQ(written(map),
        text("{\n    AutoRange = {\n        Use = bool true\n    }\n    list = strings a,b\n"
             "    colour = colour #ff8000\n    s = string \"#\"\n}\n"));
}

TEST(treeText, EntriesThatAreThereTakeTheirValues)
{
    float gamma = 1.0f;
    unsigned char level = 3;
    cMapObj map;
    map[text("gamma")] = new cDataRefObj<float>(gamma, 0);
    map[text("group/level")] = new cDataRefObj<unsigned char>(level, 0);
    map[text("untouched")] = new cDataValObj<int>(1, 0);
    map[text("gamma")]->setMetaData(text("max"), new cDataValObj<int>(100, 0));
    EXPECT_TRUE(readFrom(map, text("{\n gamma = double 2.5\n group/level = int 7\n added = int 1\n}")));
    EXPECT_EQ(gamma, 2.5f);
    EXPECT_EQ(level, 7);
    EXPECT_EQ(map[text("gamma")]->getTypeName(), text("float"));
    EXPECT_TRUE(map[text("gamma")]->contains(QString()) == false);
    EXPECT_EQ(map[text("gamma")]->getMetaData(text("max"))->toText(), text("100"));
    EXPECT_EQ(map[text("untouched")]->toText(), text("1"));
    EXPECT_EQ(map[text("added")]->toText(), text("1"));
}

TEST(treeText, ARefusedValueIsReportedAndTheOthersAreTaken)
{
    const QuietChannel quiet(cTracer::cerr);
    const TraceCapture trace;
    unsigned char level = 3;
    cMapObj map;
    map[text("group/level")] = new cDataRefObj<unsigned char>(level, 0);
    map[text("number")] = new cDataValObj<int>(1, 0);
    EXPECT_FALSE(readFrom(map, text("{\n group/level = int 300\n number = {\n }\n other = int 5\n}")));
    EXPECT_EQ(level, 3);
    EXPECT_EQ(map[text("number")]->toText(), text("1"));
    EXPECT_EQ(map[text("other")]->toText(), text("5"));
    const QStringList reports {
        text("cObj::readStream: the entry \"group/level\" of type uchar refuses its value of type int."),
        text("cObj::readStream: the entry \"number\" of type int refuses its value of type map.")};
    EXPECT_EQ(trace.texts(), reports);
}

TEST(treeText, DamagedTextIsReportedWithItsPlaceAndChangesNothing)
{
    const QuietChannel quiet(cTracer::cerr);
    const struct {
        const char* text;
        const char* report;
    } cases[] = {
        {"", "line 1, column 1: expected a type or '{', found the end of the text."},
        {"\n\n  ", "line 3, column 3: expected a type or '{', found the end of the text."},
        {"{", "line 1, column 2: expected a key or '}', found the end of the text."},
        {"{\n a", "line 2, column 3: expected '=', found the end of the text."},
        {"{\n a\n= int 1\n}", "line 2, column 3: expected '=', found the end of the line."},
        {"{\n a = \n}", "line 2, column 6: expected a type or '{', found the end of the line."},
        {"{\n a = integer 1\n}", "line 2, column 6: expected the name of a type, found \"integer\"."},
        {"{\n a = void 1\n}", "line 2, column 6: expected the name of a type, found \"void\"."},
        {"{\n a = map 1\n}", "line 2, column 6: expected the name of a type, found \"map\"."},
        {"{\n a = int\n}",
            "line 2, column 9: expected an integer from -2147483648 to 2147483647, found \"\"."},
        {"{\n a = uchar   256\n}", "line 2, column 14: expected an integer from 0 to 255, found \"256\"."},
        {"{\n a = string text\n}", "line 2, column 13: expected a text in quotes, found \"t\"."},
        {"{\n a = string \"text",
            "line 2, column 13: expected a text in quotes with valid escapes, found \"\\\"text\"."},
        {"{\n a = string \"\\q\"\n}",
            "line 2, column 13: expected a text in quotes with valid escapes, found \"\\\"\\\\q\\\"\"."},
        {"{\n a = string \"\\u12\"\n}",
            "line 2, column 13: expected a text in quotes with valid escapes, found \"\\\"\\\\u12\\\"\"."},
        {"{\n a = string \"x\" y\n}", "line 2, column 16: expected the end of the line, found \"y\"."},
        {"{\n a = int 1\n a = int 2\n}", "line 3, column 2: the key \"a\" stands here twice."},
        {"{\n a/b = int 1\n a = {\n}\n}", "line 3, column 2: the key \"a\" stands here twice."},
        {"{\n a = int 1\n a/b = int 2\n}", "line 3, column 2: the path \"a/b\" leads through a value."},
        {"{\n a = int 1\n", "line 3, column 1: expected a key or '}', found the end of the text."},
        {"{\n ]\n}", "line 2, column 2: expected a key or '}', found \"]\"."},
        {"}", "line 1, column 1: expected a type or '{', found \"}\"."},
        {"{\n a = matrix<int> 1,2;3\n}",
            "line 2, column 18: expected rows of equal length such as 1,2,3;4,5,6, each element an integer "
            "from "
            "-2147483648 to 2147483647, found \"1,2;3\"."},
    };
    for (const auto& row : cases) {
        SCOPED_TRACE(row.text);
        const TraceCapture trace;
        cMapObj map = exampleTree();
        EXPECT_FALSE(readFrom(map, text(row.text)));
        EXPECT_EQ(trace.texts(), QStringList {text("cObj::readStream: ") + text(row.report)});
        EXPECT_EQ(written(map), text(s_example));
    }
}

TEST(treeText, EveryCutTextIsRefused)
{
    const QuietChannel quiet(cTracer::cerr);
    const QString whole = text(s_example).trimmed();
    for (int length = 0; length < whole.size(); ++length) {
        cMapObj map;
        EXPECT_FALSE(readFrom(map, whole.left(length))) << length;
        EXPECT_EQ(map.getNumEntries(), 0u);
    }
}

TEST(treeText, MutatedTextsAreReadOrRefusedButNeverHarm)
{
    const QuietChannel quiet(cTracer::cerr);
    std::mt19937 random(11);
    const auto number = [&](int i_below) { return int(random() % unsigned(i_below)); };
    int readable = 0;
    for (int run = 0; run < 3000; ++run) {
        cMapObj source;
        RandomTree(unsigned(run)).fill(source, 3);
        QString mutated = written(source);
        for (int changes = 1 + number(3); changes > 0; --changes) {
            const int place = number(mutated.size());
            switch (number(3)) {
            case 0:
                mutated[place] = QChar(ushort(random()));
                break;
            case 1:
                mutated.remove(place, 1 + number(5));
                break;
            default:
                mutated.insert(place, QLatin1String("{}=\"\\,;:x/0")[number(11)]);
            }
            if (mutated.isEmpty())
                break;
        }
        cMapObj map;
        if (readFrom(map, mutated)) {
            ++readable;
            cMapObj again;
            EXPECT_TRUE(readFrom(again, written(map)));
        } else {
            EXPECT_EQ(map.getNumEntries(), 0u);
        }
    }
    EXPECT_GT(readable, 0);
    EXPECT_LT(readable, 3000);
}

TEST(treeText, DepthIsLimitedOnBothWays)
{
    const QuietChannel quiet(cTracer::cerr);
    QString deep;
    for (int level = 0; level < 100000; ++level)
        deep += QLatin1String("{a=");
    const TraceCapture trace;
    cMapObj map;
    EXPECT_FALSE(readFrom(map, deep));
    EXPECT_FALSE(
        readFrom(map, QLatin1String("{") + QString(100000, QLatin1Char('/')) + QLatin1String("= int 1\n}")));
    const QStringList tooDeep {
        text("cObj::readStream: line 1, column 193: the maps lie too deep in each other."),
        text("cObj::readStream: line 1, column 2: the path is too deep.")};
    EXPECT_EQ(trace.texts(), tooDeep);

    // The deepest path can be written and read.
    QString path = text("k");
    while (path.count(QLatin1Char('/')) + 1 < int(cObj::maxDepth))
        path += QLatin1String("/k");
    ASSERT_TRUE(map.setSubObject(new cDataValObj<int>(1, 0), path, true));
    cMapObj copy;
    EXPECT_TRUE(readFrom(copy, written(map)));
    EXPECT_TRUE(copy.isEqual(&map));

    // A map below it cannot, and is left out.
    ASSERT_TRUE(map.setSubObject(new cMapObj, path, true));
    QString result;
    QTextStream stream(&result);
    EXPECT_FALSE(map.write(stream));
    EXPECT_TRUE(readFrom(copy, result));
}

TEST(treeText, WhatHasNoTextIsReportedAndLeftOut)
{
    const QuietChannel quiet(cTracer::cerr);
    const TraceCapture trace;
    cMapObj map;
    map[text("a")] = new cDataValObj<int>(1, 0);
    map[text("g/none")] = cObj::voidObject()->clone();
    QString result;
    QTextStream stream(&result);
    EXPECT_FALSE(map.write(stream));
    EXPECT_EQ(result, text("{\n    a = int 1\n    g = {\n    }\n}\n"));
    EXPECT_EQ(trace.texts(),
        QStringList {text("cObj::write: the entry \"g/none\" has no text form and is left out.")});
}

TEST(treeText, TransientEntriesAreNotWritten)
{
    cMapObj map;
    map[text("kept")] = new cDataValObj<int>(1, 0);
    map[text("gone")] = new cDataValObj<int>(1, cObj::ObjTransient);
    EXPECT_EQ(written(map), text("{\n    kept = int 1\n}\n"));
}

TEST(treeText, AValueAndAMapDoNotTakeEachOther)
{
    const QuietChannel quiet(cTracer::cerr);
    const TraceCapture trace;
    cMapObj map;
    cDataValObj<int> number(3, 0);
    EXPECT_FALSE(readFrom(map, text("int 5\n")));
    EXPECT_FALSE(readFrom(number, text("{\n}\n")));
    const QStringList reports {text("cObj::readStream: the tree of type map refuses its value of type int."),
        text("cObj::readStream: the tree of type int refuses its value of type map.")};
    EXPECT_EQ(trace.texts(), reports);
    EXPECT_EQ(map.getNumEntries(), 0u);
    EXPECT_EQ(number.toText(), text("3"));
    EXPECT_TRUE(readFrom(number, text("double 5.9")));
    EXPECT_EQ(number.toText(), text("5"));
}

TEST(treeText, AFailingDeviceIsNoticed)
{
    QByteArray bytes;
    QBuffer readOnly(&bytes);
    ASSERT_TRUE(readOnly.open(QIODevice::ReadOnly));
    QTextStream stream(&readOnly);
    EXPECT_FALSE(exampleTree().write(stream));
}
