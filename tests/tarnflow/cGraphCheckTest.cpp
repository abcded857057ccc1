#include "testStations.h"

#include <gtest/gtest.h>
#include <tarnflow/cGraph.h>

namespace {
class UnreadyStation : public cStation {
public:
    bool canStart() override { return false; }
};

class FailingStation : public cStation {
public:
    void start(StartReasons i_reason) override
    {
        cStation::start(i_reason);
        throw std::runtime_error("no camera");
    }
};

QStringList textsOf(const QList<cGraphError>& i_errors)
{
    QStringList texts;
    for (const cGraphError& error : i_errors)
        texts.append(error.toString());
    return texts;
}
} // namespace

TEST(cGraphCheck, AnEmptyGraphCannotRun)
{
    cGraph graph;
    QList<cGraphError> errors;
    EXPECT_FALSE(graph.launch(&errors));
    EXPECT_EQ(textsOf(errors), QStringList {"the graph has no stations"_q});
    EXPECT_FALSE(graph.isRunning());
    EXPECT_EQ(graph.getFlow(), cGraph::EFlow::Stopped);
}

TEST(cGraphCheck, NamesRequiredInputsWithoutASender)
{
    cGraph graph;
    addTo(graph, "n", new NumberSource(1));
    auto& difference = addTo(graph, "d", new SubtractStation());
    ASSERT_TRUE(graph.link("n"_q, "d.a"_q));
    QList<cGraphError> errors;
    EXPECT_FALSE(graph.launch(&errors));
    EXPECT_EQ(textsOf(errors), QStringList {"d.b: the input is required, but nothing is linked with it"_q});
    EXPECT_EQ(errors[0].help, "link an output of type double with it"_q);
    difference.setEnabled(false);
    EXPECT_TRUE(graph.check().isEmpty());
    difference.setEnabled(true);
    difference.group.getQueue<1>().required = false;
    EXPECT_TRUE(graph.check().isEmpty());
}

TEST(cGraphCheck, FindsCircles)
{
    cGraph graph;
    addTo(graph, "n", new NumberSource(1));
    addTo(graph, "d", new SubtractStation());
    addTo(graph, "x", new AddStation());
    addTo(graph, "y", new AddStation());
    ASSERT_TRUE(graph.link("n"_q, "d.a"_q));
    ASSERT_TRUE(graph.link("d"_q, "x"_q));
    ASSERT_TRUE(graph.link("x"_q, "y"_q));
    EXPECT_EQ(graph.check().size(), 1); // d.b has no sender yet
    ASSERT_TRUE(graph.link("y"_q, "d.b"_q));
    const auto errors = graph.check();
    EXPECT_EQ(textsOf(errors), QStringList {"d: the links go in a circle: d -> x -> y -> d"_q});
}

TEST(cGraphCheck, TwoWaysToOneStationAreNoCircle)
{
    cGraph graph;
    addTo(graph, "n", new NumberSource(1));
    addTo(graph, "x", new AddStation());
    addTo(graph, "d", new SubtractStation());
    ASSERT_TRUE(graph.link("n"_q, "d.a"_q));
    ASSERT_TRUE(graph.link("n"_q, "x"_q));
    ASSERT_TRUE(graph.link("x"_q, "d.b"_q));
    EXPECT_TRUE(graph.check().isEmpty());
}

TEST(cGraphCheck, FindsCirclesThroughSubgraphs)
{
    cGraph graph;
    cGraph& inner = *graph.addGraph("sub"_q);
    addTo(inner, "x", new AddStation());
    addTo(graph, "y", new AddStation());
    ASSERT_TRUE(inner.exportInport("x"_q, "in"_q));
    ASSERT_TRUE(inner.exportOutport("x"_q, "out"_q));
    ASSERT_TRUE(graph.link("sub"_q, "y"_q));
    ASSERT_TRUE(graph.link("y"_q, "sub"_q));
    EXPECT_EQ(textsOf(graph.check()), QStringList {"sub/x: the links go in a circle: sub/x -> y -> sub/x"_q});
}

TEST(cGraphCheck, AsksEachStationWhetherItCanStart)
{
    cGraph graph;
    auto& station = addTo(graph, "u", new UnreadyStation());
    EXPECT_EQ(textsOf(graph.check()), QStringList {"u: the station is not ready to start"_q});
    station.setEnabled(false);
    EXPECT_TRUE(graph.check().isEmpty());
}

TEST(cGraphCheck, AStationThatFailsToStartStopsTheOthers)
{
    cGraph graph;
    addTo(graph, "n", new NumberSource(1000000));
    addTo(graph, "f", new FailingStation());
    QList<cGraphError> errors;
    EXPECT_FALSE(graph.launch(&errors));
    EXPECT_EQ(textsOf(errors), QStringList {"f: cannot be started: no camera"_q});
    EXPECT_FALSE(graph.isRunning());
}

TEST(cGraphCheck, OnlyTheOutermostGraphIsLaunchedAndOnce)
{
    cGraph graph;
    cGraph& inner = *graph.addGraph("sub"_q);
    addTo(inner, "n", new NumberSource(1));
    QList<cGraphError> errors;
    EXPECT_FALSE(inner.launch(&errors));
    EXPECT_EQ(textsOf(errors), QStringList {"sub: is inside another graph"_q});
    ASSERT_TRUE(graph.launch(&errors));
    EXPECT_TRUE(errors.isEmpty());
    EXPECT_FALSE(graph.launch(&errors));
    EXPECT_EQ(errors.size(), 1);
    cGraphError error;
    EXPECT_FALSE(graph.removeNode("sub"_q, &error));
    EXPECT_EQ(error.message, "a node cannot be removed while the graph runs"_q);
    graph.stop();
    EXPECT_TRUE(graph.removeNode("sub"_q, &error));
}
