#include "testStations.h"

#include <gtest/gtest.h>
#include <tarnflow/cGraph.h>

#include <QPointer>

namespace {
struct Node : cStation {
    Node() : out(this, QStringLiteral("out"), 5) {}
    cOPort<double> out;
};

/** A source, a subgraph with an adder in it, and a collector. */
class SubgraphTest : public testing::Test {
protected:
    SubgraphTest()
        : source(addTo(graph, "source", new Node())),
          inner(*graph.addGraph("sub"_q)),
          adder(addTo(inner, "add", new AddStation())),
          end(addTo(graph, "end", new Collector<double>()))
    {
        adder.summand = 100;
    }

    void linkAll()
    {
        ASSERT_TRUE(inner.exportInport("add.in"_q, "in"_q));
        ASSERT_TRUE(inner.exportOutport("add.out"_q, "out"_q));
        ASSERT_TRUE(graph.link("source"_q, "sub"_q));
        ASSERT_TRUE(graph.link("sub"_q, "end"_q));
    }

    cGraph graph;
    Node& source;
    cGraph& inner;
    AddStation& adder;
    Collector<double>& end;
};
} // namespace

TEST_F(SubgraphTest, PassesDataThroughItsBoundary)
{
    linkAll();
    ASSERT_TRUE(graph.launch());
    for (int i = 1; i <= 20; ++i) {
        source.out.send(i, i);
        source.out.sendFinish(i);
    }
    EXPECT_EQ(graph.waitForFlow(30000), cGraph::EFlow::Drained);
    graph.stop();
    ASSERT_EQ(end.values().size(), 20u);
    EXPECT_EQ(end.values().front(), 101);
    EXPECT_EQ(end.stamps().back(), 20);
}

TEST_F(SubgraphTest, BoundaryPortsSayWhatTheyAre)
{
    linkAll();
    const cIPortBase* import = inner.getInport("in"_q);
    const cOPortBase* export_ = inner.getOutport("out"_q);
    EXPECT_TRUE(import->isImport());
    EXPECT_TRUE(export_->isExport());
    EXPECT_FALSE(adder.getInport("in"_q)->isImport());
    EXPECT_FALSE(adder.out.isExport());
    EXPECT_FALSE(import->isJustDeclared());
    EXPECT_FALSE(export_->isJustDeclared());
    EXPECT_EQ(import->getInnerPorts(), QList<cPortBase*> {adder.getInport("in"_q)});
    EXPECT_EQ(export_->getPoolLimit(), 50000);
    EXPECT_EQ(graph.getLinks().size(), 2);
    EXPECT_EQ(import->getPortPath(), "sub.in"_q);
}

TEST_F(SubgraphTest, ADeclaredBoundaryHasNoInnerPortYet)
{
    cImport<double> import(nullptr, &inner, "later"_q);
    cExport<double> declared(nullptr, &inner, "output"_q);
    EXPECT_TRUE(import.isJustDeclared());
    EXPECT_TRUE(declared.isJustDeclared());
    EXPECT_TRUE(import.addInner(adder.getInport("in"_q)));
    EXPECT_FALSE(import.isJustDeclared());
    EXPECT_FALSE(adder.out.addInner(adder.getInport("in"_q)));
}

TEST_F(SubgraphTest, OneInputOfTheGraphFeedsSeveralInside)
{
    auto& second = addTo(inner, "second", new AddStation());
    ASSERT_TRUE(inner.exportInport("add.in"_q, "in"_q));
    ASSERT_TRUE(inner.exportInport("second.in"_q, "in"_q));
    ASSERT_TRUE(graph.link("source"_q, "sub.in"_q));
    EXPECT_EQ(source.out.getReceiver().size(), 2);
    second.setEnabled(false);
    ASSERT_EQ(source.out.getReceiver().size(), 1);
    EXPECT_EQ(source.out.getReceiver()[0].first, adder.getInport("in"_q));
    EXPECT_EQ(adder.getInport("in"_q)->getEnabledChannelCount(), 1u);
    inner.setEnabled(false);
    EXPECT_EQ(source.out.getReceiver().size(), 0);
}

TEST_F(SubgraphTest, FindsTheSendersBehindAnOutput)
{
    linkAll();
    cOPortBase* output = inner.getOutport("out"_q);
    EXPECT_EQ(output->getSender(typeid(double)), QList<cOPortBase*> {&adder.out});
    EXPECT_EQ(output->getSender(typeid(int)), QList<cOPortBase*>());
    EXPECT_TRUE(end.getInport("in"_q)->receivesData());
    adder.setEnabled(false);
    EXPECT_EQ(output->getSender(typeid(double)), QList<cOPortBase*>());
    EXPECT_FALSE(end.getInport("in"_q)->receivesData());
}

TEST_F(SubgraphTest, NestsWithoutLimit)
{
    cGraph& deep = *inner.addGraph("deep"_q);
    auto& add = addTo(deep, "add", new AddStation());
    ASSERT_TRUE(deep.exportInport("add"_q, "in"_q));
    ASSERT_TRUE(deep.exportOutport("add"_q, "out"_q));
    ASSERT_TRUE(inner.exportInport("deep.in"_q, "in"_q));
    ASSERT_TRUE(inner.exportOutport("deep.out"_q, "out"_q));
    ASSERT_TRUE(graph.link("source"_q, "sub"_q));
    ASSERT_TRUE(graph.link("sub"_q, "end"_q));
    ASSERT_EQ(source.out.getReceiver().size(), 1);
    EXPECT_EQ(source.out.getReceiver()[0].first, add.getInport("in"_q));
    ASSERT_EQ(add.out.getReceiver().size(), 1);
    EXPECT_EQ(add.out.getReceiver()[0].first, end.getInport("in"_q));
    EXPECT_TRUE(add.getInport("in"_q)->receivesData());
    EXPECT_EQ(inner.getOutport("out"_q)->getSender(typeid(double)), QList<cOPortBase*> {&add.out});
    source.setEnabled(false);
    EXPECT_FALSE(add.getInport("in"_q)->receivesData());
}

TEST_F(SubgraphTest, ConvertsAtTheBoundary)
{
    auto& numbers = addTo(graph, "numbers", new cStation());
    auto* out = new cOPort<int>(&numbers, "out"_q, 5);
    ASSERT_TRUE(inner.exportInport("add.in"_q, "in"_q));
    cGraphError error;
    ASSERT_TRUE(graph.link("numbers"_q, "sub.in"_q, &error)) << error.toString().toStdString();
    const auto receivers = out->getReceiver();
    ASSERT_EQ(receivers.size(), 1);
    EXPECT_EQ(receivers[0].first, adder.getInport("in"_q));
    ASSERT_TRUE(receivers[0].second);
    EXPECT_TRUE(receivers[0].second->getTypeInfoSrc() == typeid(int));
    EXPECT_TRUE(inner.getInport("in"_q)->getReceiver(typeid(float)).isEmpty());
    ASSERT_EQ(inner.getInport("in"_q)->getReceiver(typeid(double)).size(), 1);
    EXPECT_EQ(inner.getInport("in"_q)->getReceiver(typeid(double))[0].second, nullptr);
}

TEST_F(SubgraphTest, TheLastInnerLinkTakesTheBoundaryWithIt)
{
    linkAll();
    const QPointer<cIPortBase> import(inner.getInport("in"_q));
    const QPointer<cOPortBase> output(inner.getOutport("out"_q));
    import->removeLink(adder.getInport("in"_q));
    EXPECT_TRUE(import.isNull());
    EXPECT_EQ(inner.getInport("in"_q), nullptr);
    EXPECT_FALSE(source.out.isConnected());
    EXPECT_FALSE(adder.getInport("in"_q)->isConnected());
    output->removeLink(&adder.out);
    EXPECT_TRUE(output.isNull());
    EXPECT_FALSE(end.getInport("in"_q)->isConnected());
    EXPECT_FALSE(adder.out.isConnected());
}

TEST_F(SubgraphTest, ABoundaryStaysAsLongAsOneInnerLinkIsLeft)
{
    addTo(inner, "second", new AddStation());
    ASSERT_TRUE(inner.exportInport("add.in"_q, "in"_q));
    ASSERT_TRUE(inner.exportInport("second.in"_q, "in"_q));
    ASSERT_TRUE(graph.link("source"_q, "sub.in"_q));
    const QPointer<cIPortBase> import(inner.getInport("in"_q));
    import->removeLink(adder.getInport("in"_q));
    ASSERT_FALSE(import.isNull());
    EXPECT_EQ(import->getInnerPorts().size(), 1);
    EXPECT_FALSE(source.out.isConnected()); // every outer link is cut in any case
    import->removeLink(nullptr);
    EXPECT_FALSE(import.isNull());
    ASSERT_TRUE(inner.removeNode("second"_q));
    EXPECT_TRUE(import.isNull());
}

TEST_F(SubgraphTest, OneOuterLinkCanBeTakenAwayAlone)
{
    linkAll();
    auto& other = addTo(graph, "other", new Collector<double>());
    ASSERT_TRUE(graph.link("sub"_q, "other"_q));
    ASSERT_TRUE(graph.unlink("sub"_q, "end"_q));
    EXPECT_FALSE(end.getInport("in"_q)->isConnected());
    EXPECT_TRUE(other.getInport("in"_q)->receivesData());
    EXPECT_TRUE(inner.getOutport("out"_q));
}

TEST_F(SubgraphTest, AuditsReachThePortsInside)
{
    linkAll();
    inner.getInport("in"_q)->enableAudit(true);
    EXPECT_TRUE(adder.getInport("in"_q)->isAudit());
    EXPECT_TRUE(inner.getInport("in"_q)->isAudit());
    inner.getOutport("out"_q)->enableAudit(true);
    EXPECT_TRUE(adder.out.isAudit());
}

TEST_F(SubgraphTest, RefusesExportsThatMakeNoSense)
{
    cGraphError error;
    EXPECT_FALSE(inner.exportInport("ad"_q, "in"_q, &error));
    EXPECT_EQ(error.help, "did you mean \"add\"?"_q);
    EXPECT_FALSE(inner.exportInport("add.in"_q, "a b"_q, &error));
    EXPECT_FALSE(graph.exportInport("sub/add.in"_q, "in"_q, &error));
    EXPECT_EQ(error.message, "is not directly in this graph"_q);
    addTo(inner, "whole", new IntStation());
    ASSERT_TRUE(inner.exportInport("add.in"_q, "in"_q));
    EXPECT_FALSE(inner.exportInport("whole.in"_q, "in"_q, &error));
    EXPECT_EQ(error.message, "is of type double, but \"sub/whole.in\" is of type int"_q);
    EXPECT_FALSE(inner.exportInport("add.in"_q, "in"_q, &error));
    EXPECT_FALSE(inner.exportInport("add.in"_q, "again"_q, &error));
    EXPECT_EQ(error.message, "has a sender already"_q);
    EXPECT_FALSE(inner.exportOutport("add.out"_q, "in"_q, &error));
    EXPECT_EQ(error.message, "the graph has another port of this name"_q);
}

TEST_F(SubgraphTest, ARequiredInputBehindAnOpenBoundaryIsReported)
{
    ASSERT_TRUE(inner.exportInport("add.in"_q, "in"_q));
    ASSERT_TRUE(inner.exportOutport("add.out"_q, "out"_q));
    ASSERT_TRUE(graph.link("sub"_q, "end"_q));
    const auto errors = graph.check();
    ASSERT_EQ(errors.size(), 1);
    EXPECT_EQ(errors[0].place, "sub/add.in"_q);
}
