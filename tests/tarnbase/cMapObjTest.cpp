#include "ChangeCounter.h"
#include "printing.h"

#include <tarnbase/cDataValObj.h>
#include <tarnbase/cMapObj.h>
#include <tarnbase/cObjIter.h>

#include <QPointer>
#include <QVariant>

#include <gtest/gtest.h>

#include <utility>

namespace {

QString key(const char* i_key) { return QString::fromUtf8(i_key); }

cObj* integer(int i_value) { return new cDataValObj<int>(i_value, 0); }

int valueOf(const cMapObj& i_map, const char* i_path)
{
    int value = -1;
    i_map.getSubObject(key(i_path))->getValue(value);
    return value;
}

} // namespace

TEST(cMapObj, KeepsItsEntriesInTheOrderOfInsertion)
{
    cMapObj map;
    for (const char* name : {"zebra", "apple", "mango", ""})
        EXPECT_TRUE(map.setSubObject(integer(1), key(name), true));
    const QStringList order {key("zebra"), key("apple"), key("mango"), key("")};
    EXPECT_EQ(map.getKeys(), order);
    EXPECT_TRUE(map.isMap());
    EXPECT_TRUE(map.isContainer());
    EXPECT_FALSE(map.isVector());
    EXPECT_EQ(map.getNumEntries(), 4u);

    QStringList walked;
    unsigned int index = 0;
    for (cObjIter entry(map); entry.isValid(); ++entry, ++index) {
        walked.append(entry.getKey());
        EXPECT_EQ(&*entry, map.getSubObject(index));
        EXPECT_EQ(map.indexOf(&*entry), int(index));
        EXPECT_EQ(map.getKeyOfChild(&*entry), entry.getKey());
    }
    EXPECT_EQ(walked, order);
    EXPECT_EQ(map.indexOf(&map), -1);
    EXPECT_TRUE(map.getSubObject(4u)->isVoid());
}

TEST(cMapObj, WhatIsNotThereIsTheNullObject)
{
    cMapObj map;
    map[key("a")] = integer(1);
    for (const char* path : {"b", "a/b", "a/b/c", "b/c", "/", "/a", "a/"}) {
        EXPECT_TRUE(map.getSubObject(key(path))->isVoid()) << path;
        EXPECT_TRUE(map[key(path)]->isVoid()) << path;
        EXPECT_TRUE(std::as_const(map)[key(path)]->isVoid()) << path;
        EXPECT_FALSE(map.contains(key(path))) << path;
    }
    EXPECT_TRUE(map.contains(key("a")));
}

TEST(cMapObj, APathLeadsThroughMapsThatAreMadeOnTheWay)
{
    cMapObj map;
    map[key("AutoRange/Use")] = new cDataValObj<bool>(true, 0);
    map[key("AutoRange/Quantil")] = new cDataValObj<double>(0.5, 0);
    map[key("Gamma")] = new cDataValObj<double>(1.0, 0);
    const QStringList keys {key("AutoRange"), key("Gamma")};
    EXPECT_EQ(map.getKeys(), keys);
    EXPECT_TRUE(map.getSubObject(key("AutoRange"))->isMap());
    EXPECT_EQ(map.getSubObject(key("AutoRange"))->getNumEntries(), 2u);
    EXPECT_EQ(map[key("AutoRange")]->getSubObject(key("Use")), map.getSubObject(key("AutoRange/Use")));

    map.remove(key("AutoRange/Use"));
    EXPECT_FALSE(map.contains(key("AutoRange/Use")));
    EXPECT_TRUE(map.contains(key("AutoRange/Quantil")));
    map.remove(key("AutoRange"));
    EXPECT_EQ(map.getKeys(), QStringList {key("Gamma")});
    map.remove(key("nothing/at/all"));
    map.remove(key("Gamma/x"));
    EXPECT_EQ(map.getNumEntries(), 1u);
}

TEST(cMapObj, RemovingKeepsTheOthersWhereTheyAre)
{
    cMapObj map;
    for (int i = 0; i < 6; ++i)
        map[QString::number(i)] = integer(i);
    map.remove(key("2"));
    map.remove(key("0"));
    const QStringList keys {key("1"), key("3"), key("4"), key("5")};
    EXPECT_EQ(map.getKeys(), keys);
    for (const QString& name : keys)
        EXPECT_EQ(map.getSubObject(name)->toText(), name);
    map[key("0")] = integer(0);
    EXPECT_EQ(map.getKeys().last(), key("0"));
}

TEST(cMapObj, OwnsWhatWasHandedOver)
{
    auto map = std::make_unique<cMapObj>();
    const QPointer<cObj> first(integer(1));
    const QPointer<cObj> second(integer(2));
    const QPointer<cObj> removed(integer(3));
    const QPointer<cObj> kept(integer(4));
    cDataValObj<int> borrowed(5, 0);
    (*map)[key("a")] = first;
    (*map)[key("a")] = second;
    EXPECT_FALSE(first);
    EXPECT_EQ(map->getSubObject(key("a")), second);
    (*map)[key("a")] = second; // the same object again
    ASSERT_TRUE(second);
    (*map)[key("b")] = removed;
    (*map)[key("b")] = nullptr;
    EXPECT_FALSE(removed);
    (*map)[key("c/d")] = kept;
    EXPECT_TRUE(map->setSubObject(&borrowed, key("e"), false));
    map.reset();
    EXPECT_FALSE(second);
    EXPECT_FALSE(kept);
    EXPECT_EQ(borrowed.toText(), key("5"));
}

TEST(cMapObj, WhatIsRefusedIsDeleted)
{
    cMapObj map;
    map[key("value")] = integer(1);
    const QPointer<cObj> throughValue(integer(2));
    EXPECT_FALSE(map.setSubObject(throughValue, key("value/x"), true));
    EXPECT_FALSE(throughValue);
    const QPointer<cObj> tooDeep(integer(3));
    EXPECT_FALSE(map.setSubObject(tooDeep, QString(int(cObj::maxDepth), QLatin1Char('/')), true));
    EXPECT_FALSE(tooDeep);
    const QPointer<cObj> noPlace(integer(4));
    EXPECT_FALSE(map.setSubObject(noPlace, 7u, true));
    EXPECT_FALSE(noPlace);
    cDataValObj<int> borrowed(5, 0);
    EXPECT_FALSE(map.setSubObject(&borrowed, key("value/x"), false));
    EXPECT_FALSE(map.setSubObject(nullptr, key("x"), true));
    EXPECT_FALSE(map.setSubObject(cObj::voidObject(), key("x"), true));
    EXPECT_EQ(map.getKeys(), QStringList {key("value")});
    EXPECT_EQ(valueOf(map, "value"), 1);
}

TEST(cMapObj, NeverHoldsItself)
{
    cMapObj map;
    EXPECT_FALSE(map.setSubObject(&map, key("me"), true));
    auto* inner = new cMapObj;
    map[key("inner")] = inner;
    EXPECT_FALSE(inner->setSubObject(&map, key("outer"), true));
    EXPECT_FALSE(inner->setSubObject(inner, key("x/y"), true));
    EXPECT_EQ(inner->getNumEntries(), 0u);
}

TEST(cMapObj, TheDeepestPathIsAccepted)
{
    cMapObj map;
    QString path = key("k");
    while (path.count(QLatin1Char('/')) + 1 < int(cObj::maxDepth))
        path += QLatin1String("/k");
    EXPECT_TRUE(map.setSubObject(integer(7), path, true));
    EXPECT_EQ(map.getSubObject(path)->toText(), key("7"));
    cMapObj copy(map);
    EXPECT_TRUE(copy.isEqual(&map));
}

TEST(cMapObj, AnEntryIsReplacedAtItsPlace)
{
    cMapObj map;
    map[key("a")] = integer(1);
    map[key("b")] = integer(2);
    EXPECT_TRUE(map.setSubObject(integer(3), 0u, true));
    const QStringList keys {key("a"), key("b")};
    EXPECT_EQ(map.getKeys(), keys);
    EXPECT_EQ(valueOf(map, "a"), 3);
}

TEST(cMapObj, AppendingTakesTheFirstFreeNumber)
{
    cMapObj map;
    map[key("1")] = integer(10);
    map << integer(20) << integer(30);
    const QStringList keys {key("1"), key("2"), key("3")};
    EXPECT_EQ(map.getKeys(), keys);
}

TEST(cMapObj, ACopyHasEntriesOfItsOwn)
{
    int variable = 1;
    cMapObj map;
    map[key("bound")] = new cDataRefObj<int>(variable, 0);
    map[key("group/x")] = integer(2);
    map[key("bound")]->setMetaData(key("max"), integer(9));

    cMapObj copy(map);
    cMapObj assigned;
    assigned[key("old")] = integer(0);
    assigned = map;
    variable = 5;
    EXPECT_TRUE(map[key("group/x")]->setValue(7));
    for (const cMapObj* other : {&copy, &assigned}) {
        EXPECT_EQ(other->getKeys(), map.getKeys());
        EXPECT_EQ(valueOf(*other, "bound"), 1);
        EXPECT_EQ(valueOf(*other, "group/x"), 2);
        EXPECT_EQ(other->getSubObject(key("bound"))->getMetaData(key("max"))->toText(), key("9"));
    }
    const cMapObj& same = copy;
    copy = same;
    EXPECT_EQ(valueOf(copy, "bound"), 1);
}

TEST(cMapObj, MovingHandsOverTheEntries)
{
    cMapObj map;
    map[key("a")] = integer(1);
    const QPointer<cObj> entry(map.getSubObject(key("a")));
    cMapObj moved(std::move(map));
    EXPECT_EQ(map.getNumEntries(), 0u); // what was moved from is an empty map and can be used again
    EXPECT_FALSE(map.contains(key("a")));
    EXPECT_EQ(moved.getSubObject(key("a")), entry);
    map[key("b")] = integer(2);
    map = std::move(moved);
    EXPECT_EQ(map.getSubObject(key("a")), entry);
    EXPECT_FALSE(map.contains(key("b")));
}

TEST(cMapObj, BecomesOneOfItsOwnGroups)
{
    cMapObj map;
    map[key("group/x")] = integer(1);
    EXPECT_TRUE(map.assign(map.getSubObject(key("group"))));
    EXPECT_EQ(map.getKeys(), QStringList {key("x")});

    map[key("group/y")] = integer(2);
    map = std::move(*static_cast<cMapObj*>(map.getSubObject(key("group"))));
    EXPECT_EQ(map.getKeys(), QStringList {key("y")});
    EXPECT_FALSE(map.assign(cObj::voidObject()));
    EXPECT_FALSE(map.assign(nullptr));
    EXPECT_FALSE(map.assign(map.getSubObject(key("y"))));
    EXPECT_EQ(valueOf(map, "y"), 2);
}

TEST(cMapObj, EqualMapsHaveEqualEntriesInAnyOrder)
{
    cMapObj a;
    cMapObj b;
    a[key("x")] = integer(1);
    a[key("g/y")] = integer(2);
    b[key("g/y")] = integer(2);
    EXPECT_TRUE(a.isNotEqual(&b));
    b[key("x")] = integer(1);
    EXPECT_TRUE(a.isEqual(&b));
    EXPECT_FALSE(a.isNotEqual(&b));
    EXPECT_TRUE(b[key("g/y")]->setValue(3));
    EXPECT_FALSE(a.isEqual(&b));
    EXPECT_FALSE(a.isEqual(nullptr));
    EXPECT_FALSE(a.isEqual(cObj::voidObject()));
    EXPECT_TRUE(cMapObj().isEqual(std::make_unique<cMapObj>().get()));
}

TEST(cMapObj, MergingTakesOverValuesAndAddsEntries)
{
    int variable = 1;
    cMapObj target;
    target[key("bound")] = new cDataRefObj<int>(variable, 0);
    target[key("g/kept")] = integer(1);
    target[key("same")] = integer(2);
    target[key("other")] = integer(3);
    cMapObj source;
    source[key("bound")] = new cDataValObj<double>(4.9, 0);
    source[key("g/added")] = integer(5);
    source[key("same")] = integer(6);
    source[key("other")] = new cDataValObj<QString>(key("text"), 0);
    source[key("new")] = integer(7);

    const cObj* const same = target.getSubObject(key("same"));
    EXPECT_TRUE(target.merge(source));
    EXPECT_EQ(variable, 4); // a bound entry stays what it is and converts the value
    EXPECT_EQ(valueOf(target, "g/kept"), 1);
    EXPECT_EQ(valueOf(target, "g/added"), 5);
    EXPECT_EQ(target.getSubObject(key("same")), same);
    EXPECT_EQ(valueOf(target, "same"), 6);
    EXPECT_EQ(target[key("other")]->getTypeName(), key("string"));
    EXPECT_EQ(valueOf(target, "new"), 7);
    EXPECT_TRUE(source[key("new")]->setValue(8));
    EXPECT_EQ(valueOf(target, "new"), 7);
}

TEST(cMapObj, TheFlagsOfAMergeLimitWhatItDoes)
{
    const auto make = [](int i_value) {
        cMapObj map;
        map[key("a")] = integer(i_value);
        return map;
    };
    cMapObj source = make(2);
    source[key("b")] = integer(3);

    cMapObj keeping = make(1);
    EXPECT_TRUE(keeping.merge(source, cObj::MergeKeepExisting));
    EXPECT_EQ(valueOf(keeping, "a"), 1);
    EXPECT_EQ(valueOf(keeping, "b"), 3);

    cMapObj existing = make(1);
    EXPECT_TRUE(existing.merge(source, cObj::MergeExistingOnly));
    EXPECT_EQ(valueOf(existing, "a"), 2);
    EXPECT_FALSE(existing.contains(key("b")));

    cMapObj typed = make(1);
    cMapObj texts;
    texts[key("a")] = new cDataValObj<QString>(key("no number"), 0);
    EXPECT_FALSE(typed.merge(texts, cObj::MergeAssignOnly));
    EXPECT_EQ(valueOf(typed, "a"), 1);
    EXPECT_TRUE(texts[key("a")]->setValue(key("12")));
    EXPECT_TRUE(typed.merge(texts, cObj::MergeAssignOnly));
    EXPECT_EQ(valueOf(typed, "a"), 12);
}

TEST(cMapObj, ABoundEntryRefusesWhatItCannotHold)
{
    unsigned char variable = 3;
    cMapObj target;
    target[key("a")] = new cDataRefObj<unsigned char>(variable, 0);
    cMapObj source;
    source[key("a")] = integer(300);
    source[key("b")] = integer(1);
    EXPECT_FALSE(target.merge(source));
    EXPECT_EQ(variable, 3);
    EXPECT_EQ(valueOf(target, "b"), 1);

    unsigned char below = 4;
    target[key("g/c")] = new cDataRefObj<unsigned char>(below, 0);
    cMapObj nested;
    nested[key("g/c")] = integer(300);
    nested[key("g/d")] = integer(5);
    EXPECT_FALSE(target.merge(nested));
    EXPECT_EQ(below, 4);
    EXPECT_EQ(valueOf(target, "g/d"), 5);

    cMapObj group;
    group[key("a/b")] = integer(1);
    EXPECT_FALSE(target.merge(group));
    EXPECT_EQ(target[key("a")]->getData(), &variable);
}

TEST(cMapObj, MergesWithItselfAndItsGroups)
{
    cMapObj map;
    map[key("g/g")] = integer(1);
    map[key("g/x")] = integer(2);
    EXPECT_TRUE(map.merge(map));
    EXPECT_TRUE(
        map.merge(map.getSubObject(key("g")), {})); // replaces the group g by the value g of the group
    EXPECT_EQ(valueOf(map, "g"), 1);
    EXPECT_EQ(valueOf(map, "x"), 2);
    EXPECT_FALSE(map.merge(cObj::voidObject(), {}));
    EXPECT_FALSE(map.merge(static_cast<const cObj*>(nullptr), {}));

    // A group takes over what the map was before, not what it becomes meanwhile.
    cMapObj outer;
    outer[key("y")] = integer(2);
    outer[key("g/x")] = integer(1);
    EXPECT_TRUE(outer.getSubObject(key("g"))->merge(&outer, {}));
    EXPECT_EQ(valueOf(outer, "g/y"), 2);
    EXPECT_EQ(valueOf(outer, "g/g/x"), 1);
    EXPECT_FALSE(outer.contains(key("g/g/y")));
}

TEST(cMapObj, TellsWhenItsListOfEntriesChanges)
{
    cMapObj map;
    const ChangeCounter changes(map);
    map[key("a")] = integer(1);
    EXPECT_EQ(changes.count(), 1);
    map.remove(key("b"));
    EXPECT_EQ(changes.count(), 1);
    map.remove(key("a"));
    EXPECT_EQ(changes.count(), 2);
    map.clear();
    EXPECT_EQ(changes.count(), 2);
}

TEST(cMapObj, ConnectsTheEntriesBelowOnDemand)
{
    cMapObj map;
    map[key("g/x")] = integer(1);
    cDataValObj<int> listener(0, 0);
    const ChangeCounter heard(listener);
    map.connectChangedSignal(&listener, SIGNAL(changed()), true, Qt::UniqueConnection);
    EXPECT_TRUE(map[key("g/x")]->setValue(2));
    EXPECT_EQ(heard.count(), 1);
    map[key("g/y")] = integer(1);
    EXPECT_EQ(heard.count(), 2);
}

TEST(cMapObj, TravelsThroughAVariant)
{
    cMapObj map;
    map[key("g/x")] = integer(1);
    map[key("t")] = new cDataValObj<QString>(key("text"), 0);
    const QVariantMap variant = map.toVariant().toMap();
    EXPECT_EQ(variant.value(key("t")), QVariant(key("text")));
    EXPECT_EQ(variant.value(key("g")).toMap().value(key("x")), QVariant(1));

    cMapObj copy(map);
    EXPECT_TRUE(copy[key("g/x")]->setValue(5));
    copy[key("own")] = integer(9);
    copy.fromVariant(map.toVariant());
    EXPECT_EQ(valueOf(copy, "g/x"), 1);
    EXPECT_EQ(valueOf(copy, "own"), 9);
}

TEST(cMapObj, ManyEntriesAreFoundAtOnce)
{
    cMapObj map;
    constexpr int count = 20000;
    for (int i = 0; i < count; ++i)
        map[QString::number(i)] = integer(i);
    for (int i = 0; i < count; i += 97)
        EXPECT_EQ(map[QString::number(i)]->toText(), QString::number(i));
}
