#include "ChangeCounter.h"
#include "TraceCapture.h"
#include "printing.h"

#include <tarnbase/cDataRefObjImpl.h>
#include <tarnbase/cMapObj.h>
#include <tarnbase/cWriteFormat.h>

#include <QVariant>

#include <gtest/gtest.h>

#include <limits>
#include <memory>

namespace {

/** A type that the property tree does not know. */
struct Unknown {
    int number = 0;
    friend bool operator==(const Unknown&, const Unknown&) = default;
};

/** A value and another one of each type that entries are made for. */
template <class T> struct Samples;
template <> struct Samples<bool> {
    static inline const bool a = true, b = false;
};
template <> struct Samples<int> {
    static inline const int a = -5, b = 7;
};
template <> struct Samples<unsigned int> {
    static inline const unsigned int a = 5, b = 4294967295u;
};
template <> struct Samples<unsigned char> {
    static inline const unsigned char a = 5, b = 255;
};
template <> struct Samples<unsigned short> {
    static inline const unsigned short a = 5, b = 65535;
};
template <> struct Samples<float> {
    static inline const float a = 0.1f, b = -3e38f;
};
template <> struct Samples<double> {
    static inline const double a = 0.1, b = -1e308;
};
template <> struct Samples<QString> {
    static inline const QString a = QStringLiteral("one"), b = QStringLiteral("two");
};
template <> struct Samples<QStringList> {
    static inline const QStringList a {QStringLiteral("x"), QString()}, b;
};
template <> struct Samples<QColor> {
    static inline const QColor a {1, 2, 3, 4}, b {Qt::red};
};
template <> struct Samples<QSize> {
    static inline const QSize a {3, 4}, b {-1, -1};
};
template <> struct Samples<c2DPoint<int>> {
    static inline const c2DPoint<int> a {3, -4}, b {5, 5};
};
template <> struct Samples<cRect<int>> {
    static inline const cRect<int> a {1, 2, 3, 4}, b;
};
template <> struct Samples<cRange<double>> {
    static inline const cRange<double> a {0, 255}, b {-1, 1};
};
template <> struct Samples<cMatrix<int>> {
    static inline const cMatrix<int> a {2, 3}, b {3, 2};
};
template <> struct Samples<cMatrix<float>> {
    static inline const cMatrix<float> a {1, 1}, b;
};

} // namespace

Q_DECLARE_METATYPE(Unknown)

template <class T> class cDataRefObjOfEachType : public testing::Test {
};
using EachType
    = testing::Types<bool, int, unsigned int, unsigned char, unsigned short, float, double, QString,
        QStringList, QColor, QSize, c2DPoint<int>, cRect<int>, cRange<double>, cMatrix<int>, cMatrix<float>>;
TYPED_TEST_SUITE(cDataRefObjOfEachType, EachType);

TYPED_TEST(cDataRefObjOfEachType, WritesTheVariableItStandsFor)
{
    TypeParam variable = Samples<TypeParam>::a;
    cDataRefObj<TypeParam> entry(variable, 0);
    const cDataValObj<TypeParam> source(Samples<TypeParam>::b, 0);
    const ChangeCounter changes(entry);

    EXPECT_EQ(entry.getData(), &variable);
    EXPECT_TRUE(entry.isNotEqual(&source));
    EXPECT_TRUE(entry.assign(&source));
    EXPECT_TRUE(variable == Samples<TypeParam>::b);
    EXPECT_EQ(changes.count(), 1);
    EXPECT_TRUE(entry.isEqual(&source));
    EXPECT_FALSE(entry.isNotEqual(&source));
}

TYPED_TEST(cDataRefObjOfEachType, FiresNoChangeForTheSameValue)
{
    TypeParam variable = Samples<TypeParam>::a;
    cDataRefObj<TypeParam> entry(variable, 0);
    const cDataValObj<TypeParam> same(Samples<TypeParam>::a, 0);
    const ChangeCounter changes(entry);

    EXPECT_TRUE(entry.assign(&same));
    EXPECT_TRUE(entry.setFrom(typeid(TypeParam), &variable));
    EXPECT_TRUE(entry.setValue(Samples<TypeParam>::a));
    EXPECT_EQ(changes.count(), 0);
    EXPECT_TRUE(entry.setValue(Samples<TypeParam>::b));
    EXPECT_EQ(changes.count(), 1);
}

TYPED_TEST(cDataRefObjOfEachType, RefusesNothingContainersAndTheNullObject)
{
    TypeParam variable = Samples<TypeParam>::a;
    cDataRefObj<TypeParam> entry(variable, 0);
    const cMapObj map;
    for (const cObj* source : {static_cast<const cObj*>(&map), static_cast<const cObj*>(nullptr),
             static_cast<const cObj*>(cObj::voidObject())}) {
        EXPECT_FALSE(entry.assign(source));
        EXPECT_FALSE(entry.isEqual(source));
        EXPECT_TRUE(entry.isNotEqual(source));
    }
    EXPECT_TRUE(variable == Samples<TypeParam>::a);
}

TYPED_TEST(cDataRefObjOfEachType, ACloneHasStorageAndPropertiesOfItsOwn)
{
    TypeParam variable = Samples<TypeParam>::a;
    std::unique_ptr<cObj> copy;
    {
        cDataRefObj<TypeParam> entry(variable, cObj::ObjReadOnly);
        entry.setMetaData(QStringLiteral("max"), new cDataValObj<int>(100, 0));
        entry.setEnumeration(new cDataValObj<QStringList>(QStringList {QStringLiteral("k")}, 0));
        copy.reset(entry.clone());
    }
    variable = Samples<TypeParam>::b;

    TypeParam value {};
    EXPECT_NE(dynamic_cast<cDataValObj<TypeParam>*>(copy.get()), nullptr);
    EXPECT_TRUE(copy->getValue(value));
    EXPECT_TRUE(value == Samples<TypeParam>::a);
    EXPECT_EQ(copy->getFlags(), cObj::ObjFlags(cObj::ObjReadOnly));
    int max = 0;
    EXPECT_TRUE(copy->getMetaData(QStringLiteral("max"))->getValue(max));
    EXPECT_EQ(max, 100);
    EXPECT_EQ(copy->getChoices(), QStringList {QStringLiteral("k")});
}

TYPED_TEST(cDataRefObjOfEachType, TravelsThroughAVariantAndFiresNothing)
{
    TypeParam variable = Samples<TypeParam>::a;
    cDataRefObj<TypeParam> entry(variable, 0);
    const cDataValObj<TypeParam> source(Samples<TypeParam>::b, 0);
    const ChangeCounter changes(entry);

    const QVariant variant = source.toVariant();
    EXPECT_EQ(variant.userType(), qMetaTypeId<TypeParam>());
    entry.fromVariant(variant);
    EXPECT_TRUE(variable == Samples<TypeParam>::b);
    EXPECT_EQ(changes.count(), 0);
}

TYPED_TEST(cDataRefObjOfEachType, KeepsItsValueThroughItsText)
{
    for (const TypeParam& value : {Samples<TypeParam>::a, Samples<TypeParam>::b, TypeParam {}}) {
        const cDataValObj<TypeParam> source(value, 0);
        cDataValObj<TypeParam> target;
        QString error;
        EXPECT_TRUE(target.setFromText(source.toText(), &error)) << error.toStdString();
        EXPECT_TRUE(target.isEqual(&source)) << source.toText().toStdString();
    }
}

TYPED_TEST(cDataRefObjOfEachType, KnowsItsType)
{
    const TraceCapture trace;
    TypeParam variable {};
    const cDataRefObj<TypeParam> entry(variable, 0);
    EXPECT_EQ(*entry.getObjType().getTypeInfo(), typeid(TypeParam));
    EXPECT_EQ(cObjType::findType(entry.getTypeName()), &entry.getObjType());
    const std::unique_ptr<cObj> made(entry.getObjType().create());
    EXPECT_TRUE(made->isEqual(&entry));
    EXPECT_EQ(trace.texts(), QStringList());
}

TYPED_TEST(cDataRefObjOfEachType, IsNoContainer)
{
    cDataValObj<TypeParam> entry;
    EXPECT_FALSE(entry.isMap());
    EXPECT_FALSE(entry.isVector());
    EXPECT_FALSE(entry.isContainer());
    EXPECT_EQ(entry.getNumEntries(), 0u);
    EXPECT_TRUE(entry.getSubObject(0u)->isVoid());
    EXPECT_TRUE(entry.getSubObject(QStringLiteral("x"))->isVoid());
    EXPECT_FALSE(entry.setSubObject(new cDataValObj<int>(1, 0), QStringLiteral("x"), true));
    EXPECT_FALSE(entry.setSubObject(new cDataValObj<int>(1, 0), 0u, true));
    EXPECT_EQ(entry.indexOf(&entry), -1);
    EXPECT_TRUE(entry.getKeyOfChild(&entry).isNull());
    entry.clear();
    entry << new cDataValObj<int>(1, 0);
    EXPECT_FALSE(entry.merge(&entry, {}));
}

TEST(cDataRefObj, ADoubleReachesAFloatThroughTheConverter)
{
    float variable = 1.0f;
    cDataRefObj<float> entry(variable, 0);
    const cDataValObj<double> source(0.1, 0);
    EXPECT_TRUE(entry.assign(&source));
    EXPECT_EQ(variable, 0.1f);
}

TEST(cDataRefObj, WithoutAConverterTheValueStays)
{
    float variable = 1.0f;
    cDataRefObj<float> entry(variable, 0);
    const cDataValObj<QSize> size(QSize(1, 1), 0);
    QSize target;
    EXPECT_FALSE(entry.assign(&size));
    EXPECT_FALSE(entry.isEqual(&size));
    EXPECT_FALSE(entry.setFrom(typeid(QSize), &target));
    EXPECT_FALSE(entry.getAs(typeid(QSize), &target));
    EXPECT_EQ(variable, 1.0f);
    EXPECT_EQ(target, QSize());
}

TEST(cDataRefObj, AContainerIsRefusedEvenIfItHasAValue)
{
    class ValuedMap : public cMapObj {
    public:
        bool getAs(const std::type_info&, void* o_target) const override
        {
            *static_cast<int*>(o_target) = 9;
            return true;
        }
    };
    int variable = 1;
    cDataRefObj<int> entry(variable, 0);
    const ValuedMap map;
    EXPECT_FALSE(entry.assign(&map));
    EXPECT_FALSE(entry.isEqual(&map));
    EXPECT_EQ(variable, 1);
}

TEST(cDataRefObj, AValueThatTheTypeCannotHoldIsRefused)
{
    unsigned char variable = 9;
    cDataRefObj<unsigned char> entry(variable, 0);
    const ChangeCounter changes(entry);
    EXPECT_FALSE(entry.setValue(256));
    EXPECT_FALSE(entry.setValue(-1));
    EXPECT_FALSE(entry.setValue(std::numeric_limits<double>::quiet_NaN()));
    EXPECT_FALSE(entry.setValue(QStringLiteral("many")));
    const cDataValObj<QString> text(QStringLiteral("many"), 0);
    EXPECT_FALSE(entry.assign(&text));
    EXPECT_EQ(variable, 9);
    EXPECT_EQ(changes.count(), 0);
}

TEST(cDataRefObj, AVariantThatCannotBeReadSetsZeroAndFiresNothing)
{
    float number = 1.5f;
    cDataRefObj<float> entry(number, 0);
    const ChangeCounter changes(entry);
    entry.fromVariant(QVariant(QStringLiteral("abc")));
    EXPECT_EQ(number, 0.0f);
    number = 1.5f;
    entry.fromVariant(QVariant());
    EXPECT_EQ(number, 0.0f);
    entry.fromVariant(QVariant(QStringLiteral("2.5")));
    EXPECT_EQ(number, 2.5f);
    entry.fromVariant(QVariant(3));
    EXPECT_EQ(number, 3.0f);
    EXPECT_EQ(changes.count(), 0);

    cMatrix<float> matrix(2, 2);
    cDataRefObj<cMatrix<float>>(matrix, 0).fromVariant(QVariant(5));
    EXPECT_TRUE(matrix == cMatrix<float>());
}

TEST(cDataRefObj, AFormatTurnsTheVariantIntoText)
{
    cDataValObj<double> number(1.0 / 3.0, 0);
    EXPECT_EQ(number.getFormat(), nullptr);
    EXPECT_EQ(number.toVariant(), QVariant(1.0 / 3.0));
    number.setFormat({'f', 2, 10});
    EXPECT_EQ(number.toVariant(), QVariant(QStringLiteral("0.33")));
    EXPECT_EQ(number.toString(false), QStringLiteral("0.3333333333333333"));

    cDataValObj<int> integer(255, 0);
    integer.setFormat({'g', 6, 16});
    EXPECT_EQ(integer.toString(true), QStringLiteral("ff"));
    integer.setFormat({'g', -3, 99});
    EXPECT_EQ(integer.toString(true), QStringLiteral("73"));

    cDataValObj<float> single(1.0f / 3.0f, 0);
    single.setFormat({'f', 2, 10});
    EXPECT_EQ(single.toString(true), QStringLiteral("0.33"));

    cDataValObj<bool> truth(true, 0);
    truth.setFormat({'f', 2, 10});
    EXPECT_EQ(truth.toString(true), QStringLiteral("true"));

    cDataValObj<QString> text(QStringLiteral("7"), 0);
    text.setFormat({'f', 2, 10});
    EXPECT_EQ(text.toString(true), QStringLiteral("7"));
}

TEST(cDataRefObj, AnUnknownTypeIsReportedAndWorksOn)
{
    const TraceCapture trace;
    Unknown variable {1};
    cDataRefObj<Unknown> entry(variable, 0);
    const cDataValObj<Unknown> source(Unknown {2}, 0);
    ASSERT_EQ(trace.lines().size(), 2u);
    const QString name = QString::fromLatin1(typeid(Unknown).name());
    EXPECT_EQ(trace.lines()[0].text,
        QStringLiteral(
            "ERROR: cDataRefObj<D>::cDataRefObj(D &i_data, uint32 flags): no attribute defined for")
            + name);
    EXPECT_EQ(trace.lines()[1].text,
        QStringLiteral(
            "ERROR:cDataValObj<D>::cDataValObj(const D &i_data,uint32 i_flags): no attribute defined for")
            + name);
    EXPECT_TRUE(trace.lines()[0].location.startsWith(QStringLiteral(" cDataRefObjImpl.h (")));

    EXPECT_EQ(*entry.getObjType().getTypeInfo(), typeid(void));
    EXPECT_TRUE(entry.assign(&source)); // there is no converter: the entry itself is read
    EXPECT_EQ(variable.number, 2);
    EXPECT_TRUE(entry.isEqual(&source));
    EXPECT_EQ(entry.toText(), QString());
    QString error;
    EXPECT_FALSE(entry.setFromText(QStringLiteral("3"), &error));
    EXPECT_EQ(error, QStringLiteral("expected no text, as this entry holds no single value, found \"3\""));
    entry.fromVariant(QVariant::fromValue(Unknown {5}));
    EXPECT_EQ(variable.number, 5);
}

TEST(cDataRefObj, TheFlagsAreKept)
{
    int variable = 0;
    const cDataRefObj<int> entry(variable, cObj::ObjHidden | cObj::ObjTransient);
    EXPECT_EQ(entry.getFlags(), cObj::ObjHidden | cObj::ObjTransient);
    const cDataRefObj<int> plain(variable);
    EXPECT_EQ(plain.getFlags(), cObj::ObjFlags());
}

TEST(cDataRefObj, ValuesThatEqualNothingAlwaysCountAsChanged)
{
    double variable = std::numeric_limits<double>::quiet_NaN();
    cDataRefObj<double> entry(variable, 0);
    const cDataValObj<double> source(variable, 0);
    const ChangeCounter changes(entry);
    EXPECT_TRUE(entry.assign(&source));
    EXPECT_EQ(changes.count(), 1);
    EXPECT_FALSE(entry.isEqual(&source));
}
