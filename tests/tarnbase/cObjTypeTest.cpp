#include "printing.h"

#include <tarnbase/cDataRefObjImpl.h>
#include <tarnbase/cMapObj.h>

#include <QTextStream>

#include <gtest/gtest.h>

namespace {

/** A type that another library brings along. */
struct Brightness {
    int percent = 0;
    friend bool operator==(const Brightness&, const Brightness&) = default;
};

QString textOf(const void* i_value)
{
    return QString::number(static_cast<const Brightness*>(i_value)->percent) + QLatin1Char('%');
}

bool fromText(const QString& i_text, void* o_value, QString* o_error)
{
    bool ok = i_text.endsWith(QLatin1Char('%'));
    const int percent = ok ? i_text.leftRef(i_text.size() - 1).toInt(&ok) : 0;
    if (ok)
        static_cast<Brightness*>(o_value)->percent = percent;
    else if (o_error != nullptr)
        *o_error = QStringLiteral("expected a percentage");
    return ok;
}

} // namespace

Q_DECLARE_METATYPE(Brightness)

TEST(cObjType, ATypeThatIsNotKnownAnswersWithTheEntryOfVoid)
{
    ASSERT_NE(cObjType::findType(typeid(long double)), nullptr);
    EXPECT_EQ(cObjType::findType(typeid(long double)), cObjType::findType(typeid(void)));
    EXPECT_EQ(*cObjType::findType(typeid(void))->getTypeInfo(), typeid(void));
    EXPECT_EQ(*cObjType::findType(typeid(double))->getTypeInfo(), typeid(double));
    EXPECT_EQ(cObjType::findType(QStringLiteral("long double")), nullptr);
}

TEST(cObjType, EachNameIsItsOwn)
{
    const QStringList names {QStringLiteral("bool"), QStringLiteral("int"), QStringLiteral("uint"),
        QStringLiteral("uchar"), QStringLiteral("ushort"), QStringLiteral("float"), QStringLiteral("double"),
        QStringLiteral("string"), QStringLiteral("strings"), QStringLiteral("colour"), QStringLiteral("size"),
        QStringLiteral("point"), QStringLiteral("rect"), QStringLiteral("range"),
        QStringLiteral("matrix<int>"), QStringLiteral("matrix<float>"), QStringLiteral("map"),
        QStringLiteral("void")};
    for (const QString& name : names) {
        const cObjType* const type = cObjType::findType(name);
        ASSERT_NE(type, nullptr) << name.toStdString();
        EXPECT_EQ(type->getName(), name);
        EXPECT_EQ(cObjType::findType(*type->getTypeInfo()), type);
    }
}

TEST(cObjType, ATypeBroughtAlongHasATextFormUntilItGoes)
{
    {
        const cObjType type(
            QStringLiteral("brightness"), typeid(Brightness),
            []() -> cObj* { return new cDataValObj<Brightness>; }, textOf, fromText);
        EXPECT_EQ(cObjType::findType(typeid(Brightness)), &type);
        // The first of a type and of a name stays.
        const cObjType again(QStringLiteral("brightness2"), typeid(Brightness), nullptr, nullptr, nullptr);
        const cObjType taken(QStringLiteral("brightness"), typeid(cObjType), nullptr, nullptr, nullptr);
        EXPECT_EQ(cObjType::findType(typeid(Brightness)), &type);
        EXPECT_EQ(cObjType::findType(typeid(cObjType)), cObjType::findType(typeid(void)));

        cMapObj map;
        map[QStringLiteral("level")] = new cDataValObj<Brightness>(Brightness {30}, 0);
        QString text;
        QTextStream stream(&text);
        EXPECT_TRUE(map.write(stream));
        EXPECT_EQ(text, QStringLiteral("{\n    level = brightness 30%\n}\n"));
        cMapObj copy;
        EXPECT_TRUE(copy.readStream(stream));
        EXPECT_TRUE(copy.isEqual(&map));
    }
    EXPECT_EQ(cObjType::findType(typeid(Brightness)), cObjType::findType(typeid(void)));
    EXPECT_EQ(cObjType::findType(QStringLiteral("brightness")), nullptr);
}
