#include "testStations.h"

#include <gtest/gtest.h>
#include <tarnflow/cGraph.h>
#include <tarnflow/cStationRegistration.h>

namespace {
const cStationRegistration<AddStation> s_add("test/numbers/plus",
    {.summary = "Adds a number.", .params = {{"summand", "what is added"}}, .notes = {"it adds"}});
const cStationRegistration<SubtractStation> s_subtract(
    "test/numbers/minus", {.summary = "The difference.", .params = {}, .notes = {}});
const cStationRegistration<SubtractStation> s_other(
    "test/other/minus", {.summary = "The same again.", .params = {}, .notes = {}});

class BrokenStation : public cStation {
public:
    BrokenStation() { throw std::runtime_error("no device"); }
};
const cStationRegistration<BrokenStation> s_broken(
    "test/broken", {.summary = "Cannot be made.", .params = {}, .notes = {}});

cStation* makeNothing() { return nullptr; }
} // namespace

TEST(cStationRegistry, GivesANewStationForAnIdentifier)
{
    const std::unique_ptr<cStation> first(cStation::create("test/numbers/plus"_q));
    const std::unique_ptr<cStation> second(cStation::create("test/numbers/plus"_q));
    ASSERT_TRUE(first && second);
    EXPECT_NE(first, second);
    EXPECT_TRUE(dynamic_cast<AddStation*>(first.get()));
    EXPECT_EQ(first->getIdentifier(), "test/numbers/plus"_q);
    EXPECT_EQ(first->getName(), QString());
}

TEST(cStationRegistry, KnowsNothingOfOtherIdentifiers)
{
    EXPECT_EQ(cStation::create("test/numbers"_q), nullptr);
    EXPECT_EQ(cStation::create(QString()), nullptr);
    EXPECT_EQ(cStation::getInfo("test/numbers"_q).summary, QString());
    EXPECT_FALSE(cStation::getIdentifiers().contains("test/numbers"_q));
}

TEST(cStationRegistry, TakesAnIdentifierOnce)
{
    EXPECT_FALSE(cStation::registercStation("test/numbers/plus"_q, makeNothing));
    EXPECT_FALSE(cStation::registercStation("test/null"_q, nullptr));
    EXPECT_FALSE(cStation::registercStation(QString(), makeNothing));
    const std::unique_ptr<cStation> station(cStation::create("test/numbers/plus"_q));
    EXPECT_TRUE(station);
}

TEST(cStationRegistry, ListsIdentifiersInOrder)
{
    const QStringList ids = cStation::getIdentifiers();
    EXPECT_TRUE(ids.contains("test/numbers/minus"_q));
    EXPECT_TRUE(std::is_sorted(ids.begin(), ids.end()));
}

TEST(cStationRegistry, ResolvesWholeLastPartsOfAPath)
{
    EXPECT_EQ(cStation::resolveIdentifier("plus"_q), QStringList {"test/numbers/plus"_q});
    EXPECT_EQ(cStation::resolveIdentifier("numbers/plus"_q), QStringList {"test/numbers/plus"_q});
    EXPECT_EQ(cStation::resolveIdentifier("test/numbers/plus"_q), QStringList {"test/numbers/plus"_q});
    EXPECT_EQ(cStation::resolveIdentifier("lus"_q), QStringList());
    EXPECT_EQ(cStation::resolveIdentifier(QString()), QStringList());
    EXPECT_EQ(
        cStation::resolveIdentifier("minus"_q), (QStringList {"test/numbers/minus"_q, "test/other/minus"_q}));
}

TEST(cStationRegistry, KeepsWhatWasSaidOfAStation)
{
    const cStationInfo info = cStation::getInfo("test/numbers/plus"_q);
    EXPECT_EQ(info.summary, "Adds a number."_q);
    ASSERT_EQ(info.params.size(), 1);
    EXPECT_EQ(info.params[0].key, "summand"_q);
    EXPECT_EQ(info.params[0].meaning, "what is added"_q);
    EXPECT_EQ(info.notes, QStringList {"it adds"_q});
}

TEST(cGraphStations, AreNamedAfterTheirIdentifier)
{
    cGraph graph;
    EXPECT_EQ(graph.addStation("plus"_q)->getName(), "plus1"_q);
    EXPECT_EQ(graph.addStation("plus"_q)->getName(), "plus2"_q);
    EXPECT_EQ(graph.addStation("plus"_q, "sum"_q)->getName(), "sum"_q);
    EXPECT_EQ(graph.findNode("plus2"_q)->getPathName(), "plus2"_q);
    EXPECT_EQ(graph.getStations().size(), 3);
}

TEST(cGraphStations, AreRefusedWithTheNearestName)
{
    cGraph graph;
    cGraphError error;
    EXPECT_EQ(graph.addStation("pluss"_q, "a"_q, &error), nullptr);
    EXPECT_EQ(error.message, "there is no station \"pluss\""_q);
    EXPECT_EQ(error.help, "did you mean \"plus\"?"_q);
    EXPECT_EQ(graph.addStation("minus"_q, "a"_q, &error), nullptr);
    EXPECT_EQ(error.message, "\"minus\" names several stations: test/numbers/minus, test/other/minus"_q);
    EXPECT_EQ(graph.addStation("broken"_q, "a"_q, &error), nullptr);
    EXPECT_EQ(error.toString(), "a: cannot be made: no device"_q);
    EXPECT_TRUE(graph.getNodes().isEmpty());
}

TEST(cGraphStations, NeedNamesThatAreFreeAndFit)
{
    cGraph graph;
    cGraphError error;
    ASSERT_TRUE(graph.addStation("plus"_q, "a"_q));
    EXPECT_FALSE(graph.addStation("plus"_q, "a"_q, &error));
    EXPECT_EQ(error.message, "there is a node of this name already"_q);
    EXPECT_FALSE(graph.addStation("plus"_q, "a.b"_q, &error));
    EXPECT_EQ(error.help, "call it \"ab\""_q);
    EXPECT_FALSE(graph.addGraph("x/y"_q, &error));
    ASSERT_TRUE(graph.addStation("plus"_q, "b"_q));
    EXPECT_FALSE(graph.renameNode("b"_q, "a"_q, &error));
    EXPECT_TRUE(graph.renameNode("b"_q, "c"_q));
    EXPECT_TRUE(graph.findNode("c"_q));
    EXPECT_FALSE(graph.findNode("b"_q));
}

TEST(cGraphStations, AreFoundByTheirPath)
{
    cGraph graph("main"_q);
    cGraph* inner = graph.addGraph("sub"_q);
    cGraph* innermost = inner->addGraph("deep"_q);
    cStation* station = innermost->addStation("plus"_q, "p"_q);
    EXPECT_EQ(graph.findNode("sub/deep/p"_q), station);
    EXPECT_EQ(graph.findNode("sub/p"_q), nullptr);
    EXPECT_EQ(graph.findNode("p"_q), nullptr);
    EXPECT_EQ(station->getPathName(), "main/sub/deep/p"_q);
    EXPECT_EQ(station->getInport("in"_q)->getPortPath(), "main/sub/deep/p.in"_q);
    EXPECT_TRUE(graph.removeNode("sub/deep/p"_q));
    EXPECT_EQ(graph.getStations().size(), 0);
}

TEST(cGraphStations, ANodeIsInOneGraphOnly)
{
    cGraph graph;
    cGraph other;
    cGraphError error;
    auto* station = new AddStation();
    ASSERT_TRUE(graph.addNode(station));
    EXPECT_FALSE(other.addNode(station, &error));
    EXPECT_FALSE(graph.addNode(&graph, &error));
    EXPECT_FALSE(graph.addNode(nullptr, &error));
    cGraph* inner = graph.addGraph("inner"_q);
    EXPECT_FALSE(inner->addNode(&graph, &error));
    EXPECT_EQ(error.message, "a graph cannot be inside itself"_q);
}
