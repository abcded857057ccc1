#include "ChangeCounter.h"
#include "printing.h"

#include <tarnbase/cDataValObj.h>
#include <tarnbase/cObjIter.h>
#include <tarnbase/cTransform.h>
#include <tarnbase/cTypeConverter.h>
#include <tarnbase/cWriteFormat.h>

#include <QPointer>
#include <QTextStream>
#include <QVariant>

#include <gtest/gtest.h>

#include <cstring>

namespace {

/** Place of a virtual function in the table of its class, in pointers. */
template <class Function> std::ptrdiff_t slotOf(Function i_function)
{
    std::ptrdiff_t raw = 0; // the first word of a pointer to a virtual member is 1 + its offset in bytes
    std::memcpy(&raw, &i_function, sizeof(raw));
    return (raw - 1) / std::ptrdiff_t(sizeof(void*));
}

/** Shows what is private to its bases. */
class OpenObj : public cObj {
public:
    OpenObj() : cObj(nullptr) {}
};

} // namespace

TEST(cObj, TheNullObjectTakesEverythingAndKeepsNothing)
{
    cObj& nothing = *cObj::voidObject();
    const QPointer<cObj> handedOver(new cDataValObj<int>(1, 0));
    const QPointer<cObj> keys(new cDataValObj<QStringList>(QStringList {QStringLiteral("a")}, 0));
    const QPointer<cObj> data(new cDataValObj<int>(1, 0));
    EXPECT_FALSE(nothing.setSubObject(handedOver, QStringLiteral("a"), true));
    nothing.setEnumeration(keys);
    nothing.setMetaData(QStringLiteral("max"), data);
    nothing.setFlags(cObj::ObjHidden);
    nothing.setFormat({});
    nothing.fromVariant(QVariant(5));
    nothing.remove(QStringLiteral("a/b"));
    nothing.clear();
    EXPECT_FALSE(handedOver);
    EXPECT_FALSE(keys);
    EXPECT_FALSE(data);

    EXPECT_TRUE(nothing.isVoid());
    EXPECT_TRUE(nothing.getEnumeration()->isVoid());
    EXPECT_TRUE(nothing.getMetaData(QStringLiteral("max"))->isVoid());
    EXPECT_EQ(nothing.getMetaDataKeys(), QStringList());
    EXPECT_EQ(nothing.getFlags(), cObj::ObjFlags());
    EXPECT_EQ(nothing.getFormat(), nullptr);
    EXPECT_EQ(nothing.toVariant(), QVariant());
    EXPECT_EQ(nothing.toText(), QString());
    EXPECT_EQ(nothing.getTypeName(), QStringLiteral("void"));
    EXPECT_EQ(nothing.getData(), nullptr);
    int number = 3;
    EXPECT_FALSE(nothing.getValue(number));
    EXPECT_FALSE(nothing.setValue(number));
    EXPECT_EQ(number, 3);
    EXPECT_FALSE(nothing.isEqual(&nothing));
    EXPECT_TRUE(nothing[QStringLiteral("a")]->isVoid());
    QString text;
    QTextStream stream(&text);
    EXPECT_FALSE(nothing.write(stream));
    EXPECT_EQ(text, QString());
}

TEST(cObj, ACloneOfTheNullObjectIsAnObjectThatCanBeDeleted)
{
    const std::unique_ptr<cObj> copy(cObj::voidObject()->clone());
    EXPECT_FALSE(copy->isVoid());
}

TEST(cObj, AttachedDataIsOwnedAndReplaced)
{
    auto entry = std::make_unique<cDataValObj<int>>(1, 0);
    const QPointer<cObj> first(new cDataValObj<int>(1, 0));
    const QPointer<cObj> second(new cDataValObj<int>(2, 0));
    const QPointer<cObj> keys(new cDataValObj<QStringList>(QStringList(), 0));
    entry->setMetaData(QStringLiteral("max"), first);
    entry->setMetaData(QStringLiteral("max"), second);
    EXPECT_FALSE(first);
    EXPECT_EQ(entry->getMetaData(QStringLiteral("max")), second);
    EXPECT_EQ(entry->getMetaDataKeys(), QStringList {QStringLiteral("max")});
    entry->setEnumeration(keys);
    entry->setMetaData(QStringLiteral("max"), nullptr);
    EXPECT_FALSE(second);
    EXPECT_EQ(entry->getMetaDataKeys(), QStringList());
    entry.reset();
    EXPECT_FALSE(keys);
}

TEST(cObj, TheAllowedKeysComeFromTheEnumerationOrTheChoice)
{
    const QStringList keys {QStringLiteral("BorderConst"), QStringLiteral("BorderRepl")};
    cDataValObj<QString> byEnumeration;
    byEnumeration.setEnumeration(new cDataValObj<QStringList>(keys, 0));
    EXPECT_EQ(byEnumeration.getChoices(), keys);
    cDataValObj<QString> byChoice;
    byChoice.setMetaData(QStringLiteral("choice"), new cDataValObj<QStringList>(keys, 0));
    EXPECT_EQ(byChoice.getChoices(), keys);

    for (cObj* entry : {static_cast<cObj*>(&byEnumeration), static_cast<cObj*>(&byChoice)}) {
        QString error;
        EXPECT_TRUE(entry->setFromText(QStringLiteral("BorderRepl"), &error));
        EXPECT_FALSE(entry->setFromText(QStringLiteral("Borderrepl"), &error));
        EXPECT_EQ(error, QStringLiteral("expected one of BorderConst, BorderRepl, found \"Borderrepl\""));
        EXPECT_EQ(entry->toText(), QStringLiteral("BorderRepl"));
        // Within the tree a key outside the list is taken as it is.
        EXPECT_TRUE(entry->setValue(QStringLiteral("other")));
        EXPECT_EQ(entry->toText(), QStringLiteral("other"));
    }
}

TEST(cObj, SlotsAreConnectedOncePerEntryOnDemand)
{
    cDataValObj<int> entry(1, 0);
    cDataValObj<int> listener(1, 0); // any object with a slot or signal of this signature
    const ChangeCounter heard(listener);
    entry.connectChangedSignal(nullptr, nullptr, false, Qt::UniqueConnection);
    entry.connectChangedSignal(&listener, SIGNAL(changed()), false, Qt::UniqueConnection);
    entry.connectChangedSignal(&listener, SIGNAL(changed()), false, Qt::UniqueConnection);
    EXPECT_TRUE(entry.setValue(2));
    EXPECT_EQ(heard.count(), 1);
}

TEST(cObj, TheVirtualOperationsKeepTheirOrder)
{
    const std::ptrdiff_t order[] = {
        slotOf(&cObj::isMap),
        slotOf(&cObj::isVector),
        slotOf(&cObj::isContainer),
        slotOf(&cObj::getNumEntries),
        slotOf(static_cast<cObj* (cObj::*)(unsigned int) const>(&cObj::getSubObject)),
        slotOf(static_cast<cObj* (cObj::*)(const QString&) const>(&cObj::getSubObject)),
        slotOf(static_cast<bool (cObj::*)(cObj*, unsigned int, bool)>(&cObj::setSubObject)),
        slotOf(static_cast<bool (cObj::*)(cObj*, const QString&, bool)>(&cObj::setSubObject)),
        slotOf(&cObj::clone),
        slotOf(&cObj::clear),
        slotOf(&cObj::assign),
        slotOf(&cObj::operator<<),
        slotOf(&cObj::isEqual),
        slotOf(&cObj::isNotEqual),
        slotOf(&cObj::merge),
        slotOf(&cObj::toVariant),
        slotOf(&cObj::fromVariant),
        slotOf(&cObj::getData),
        slotOf(&cObj::indexOf),
        slotOf(&cObj::getKeyOfChild),
        slotOf(&cObj::getKeyOfChild) + 1, // getIter, which is private
        slotOf(&cObj::getAs),
        slotOf(&cObj::setFrom),
    };
    for (std::size_t i = 1; i < std::size(order); ++i)
        EXPECT_EQ(order[i], order[0] + std::ptrdiff_t(i)) << "operation " << i;
}

TEST(cTransform, ItsCopyIsTheThirdVirtualOperation)
{
    EXPECT_EQ(slotOf(&cTransform::map), 2); // two words of the destructor stand first
    EXPECT_EQ(slotOf(&cTransform::clone), 3);
}

TEST(cTypeConverter, ItsOperationsKeepTheirOrder)
{
    EXPECT_EQ(slotOf(&cTypeConverterBase::convert), 2);
    EXPECT_EQ(slotOf(&cTypeConverterBase::clone), 3);
    EXPECT_EQ(slotOf(&cTypeConverterBase::getTypeInfoSrc), 4);
    EXPECT_EQ(slotOf(&cTypeConverterBase::getTypeInfoDst), 5);
}

TEST(cObj, AnObjectWithoutAnyOverrideRefusesEverything)
{
    OpenObj object;
    const cDataValObj<int> source(1, 0);
    EXPECT_FALSE(object.assign(&source));
    EXPECT_FALSE(object.isEqual(&source));
    EXPECT_TRUE(object.isNotEqual(&source));
    EXPECT_FALSE(cObjIter(object).isValid());
    EXPECT_TRUE(cObjIter(static_cast<const cObj*>(nullptr))->isVoid());
    EXPECT_EQ(*object.getObjType().getTypeInfo(), typeid(void));
}
