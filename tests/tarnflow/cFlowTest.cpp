#include "testStations.h"

#include <gtest/gtest.h>
#include <tarnflow/cGraph.h>
#include <thread>

namespace {
constexpr int s_patience = 30000;

quint64 sentOn(const cGraph& i_graph, const char* i_node)
{
    return i_graph.findNode(QString::fromLatin1(i_node))->getOutport("out"_q)->getFates().arrived;
}
} // namespace

TEST(cFlow, IsDrainedWhenEveryJobIsDone)
{
    // Many short runs: a moment at which the count is zero too early would show as a missing value.
    for (int run = 0; run < 300; ++run) {
        cGraph graph;
        addTo(graph, "n", new NumberSource(7));
        addTo(graph, "a", new AddStation());
        addTo(graph, "b", new AddStation());
        addTo(graph, "d", new SubtractStation());
        auto& end = addTo(graph, "end", new Collector<double>());
        ASSERT_TRUE(graph.link("n"_q, "a"_q));
        ASSERT_TRUE(graph.link("n"_q, "b"_q));
        ASSERT_TRUE(graph.link("a"_q, "d.a"_q));
        ASSERT_TRUE(graph.link("b"_q, "d.b"_q));
        ASSERT_TRUE(graph.link("d"_q, "end"_q));
        EXPECT_EQ(graph.getFlow(), cGraph::EFlow::Stopped);
        ASSERT_TRUE(graph.launch());
        ASSERT_EQ(graph.waitForFlow(s_patience), cGraph::EFlow::Drained);
        ASSERT_EQ(end.values().size(), 7u) << "run " << run;
        graph.stop();
        EXPECT_EQ(graph.getFlow(), cGraph::EFlow::Stopped);
    }
}

TEST(cFlow, EveryFrameHasAFateAtAnyTime)
{
    cGraph graph;
    auto& source = addTo(graph, "n", new NumberSource(20000));
    auto& add = addTo(graph, "a", new AddStation());
    addTo(graph, "end", new Collector<double>());
    ASSERT_TRUE(graph.link("n"_q, "a"_q));
    ASSERT_TRUE(graph.link("a"_q, "end"_q));
    ASSERT_TRUE(graph.launch());
    while (graph.getFlow() == cGraph::EFlow::Running)
        for (const cPortFates& port : graph.getFates()) {
            if (!port.output) {
                ASSERT_EQ(port.fates.arrived, port.fates.getSum()) << port.node.toStdString();
            }
        }
    ASSERT_EQ(graph.waitForFlow(s_patience), cGraph::EFlow::Drained);
    EXPECT_EQ(source.out.getFates().arrived, 20000u);
    EXPECT_TRUE(add.getInport("in"_q)->getFates().isAllUsed());
    graph.stop();
    EXPECT_EQ(add.getInport("in"_q)->getFates().arrived, 20000u);
}

TEST(cFlow, IsStalledWhenEveryBusyThreadSleepsForABuffer)
{
    cGraph graph;
    auto& source = addTo(graph, "n", new NumberSource(100));
    auto& difference = addTo(graph, "d", new SubtractStation());
    auto& other = addTo(graph, "other", new cStation());
    auto* second = new cOPort<double>(&other, "out"_q, 5);
    ASSERT_TRUE(graph.link("n"_q, "d.a"_q));
    ASSERT_TRUE(graph.link("other"_q, "d.b"_q));
    addTo(graph, "end", new Collector<double>());
    ASSERT_TRUE(graph.link("d"_q, "end"_q));
    ASSERT_TRUE(graph.launch());
    // Nothing comes on d.b, so that all buffers of the source wait on d.a.
    ASSERT_EQ(graph.waitForFlow(s_patience), cGraph::EFlow::Stalled);
    EXPECT_EQ(sentOn(graph, "n"), 5u);
    EXPECT_TRUE(source.out.isBlocked());
    EXPECT_EQ(graph.describeWaits(),
        QStringList {"n waits for a buffer of n.out: 5 of 5 are held; receivers: d.a (5 waiting)"_q});
    EXPECT_EQ(difference.getInport("a"_q)->getFates().waiting, 5u);
    cGraphError error;
    EXPECT_FALSE(graph.setParam("n.count"_q, "3"_q, &error));
    EXPECT_EQ(error.message, "the station is in a step that waits for a buffer"_q);

    // What was missing comes: the flow goes on.
    for (int i = 1; i <= 100; ++i) {
        second->send(0, i);
        second->sendFinish(i);
    }
    EXPECT_EQ(graph.waitForFlow(s_patience), cGraph::EFlow::Drained);
    EXPECT_EQ(sentOn(graph, "d"), 100u);
    graph.stop();
}

TEST(cFlow, StopWakesSleepersAndReturns)
{
    for (int run = 0; run < 20; ++run) {
        cGraph graph;
        auto& source = addTo(graph, "n", new NumberSource(1000000));
        addTo(graph, "d", new SubtractStation());
        addTo(graph, "other", new cStation());
        new cOPort<double>(graph.findNode("other"_q), "out"_q, 5);
        ASSERT_TRUE(graph.link("n"_q, "d.a"_q));
        ASSERT_TRUE(graph.link("other"_q, "d.b"_q));
        ASSERT_TRUE(graph.launch());
        ASSERT_EQ(graph.waitForFlow(s_patience), cGraph::EFlow::Stalled);
        graph.stop();
        EXPECT_FALSE(source.out.isBlocked());
        EXPECT_EQ(source.out.getHeldCount(), 0);
        EXPECT_EQ(graph.getFlow(), cGraph::EFlow::Stopped);
        const cFates fates = graph.findNode("d"_q)->getInport("a"_q)->getFates();
        EXPECT_EQ(fates.discarded, 5u);
        EXPECT_EQ(fates.arrived, fates.getSum());
    }
}

TEST(cFlow, StopEndsARunInTheMiddle)
{
    for (int run = 0; run < 50; ++run) {
        cGraph graph;
        addTo(graph, "n", new NumberSource(1000000000));
        addTo(graph, "a", new AddStation());
        auto& end = addTo(graph, "end", new Collector<double>());
        Gate begun;
        end.onValue = [&](double number) {
            if (number == 5)
                begun.open();
        };
        ASSERT_TRUE(graph.link("n"_q, "a"_q));
        ASSERT_TRUE(graph.link("a"_q, "end"_q));
        ASSERT_TRUE(graph.launch());
        ASSERT_TRUE(begun.pass());
        graph.stop();
        const std::size_t atStop = end.values().size();
        for (cStation* station : graph.getStations())
            EXPECT_EQ(station->getQueuedJobCount(), 0);
        for (const cPortFates& port : graph.getFates())
            if (!port.output) {
                EXPECT_EQ(port.fates.waiting, 0u);
                EXPECT_EQ(port.fates.arrived, port.fates.getSum());
            }
        EXPECT_EQ(end.values().size(), atStop);
    }
}

TEST(cFlow, AGraphRunsAgainAfterAStop)
{
    cGraph graph;
    addTo(graph, "n", new NumberSource(50));
    addTo(graph, "a", new AddStation());
    auto& end = addTo(graph, "end", new Collector<double>());
    ASSERT_TRUE(graph.link("n"_q, "a"_q));
    ASSERT_TRUE(graph.link("a"_q, "end"_q));
    for (std::size_t run = 1; run <= 20; ++run) {
        ASSERT_TRUE(run % 2 ? graph.launch() : graph.relaunch());
        ASSERT_EQ(graph.waitForFlow(s_patience), cGraph::EFlow::Drained);
        ASSERT_EQ(end.values().size(), 50 * run);
        graph.stop();
    }
    // A stop in the middle of a match leaves nothing behind either.
    for (int run = 0; run < 50; ++run) {
        ASSERT_TRUE(graph.launch());
        graph.stop();
    }
    const std::size_t before = end.values().size();
    ASSERT_TRUE(graph.launch());
    ASSERT_EQ(graph.waitForFlow(s_patience), cGraph::EFlow::Drained);
    EXPECT_EQ(end.values().size(), before + 50);
    graph.stop();
}

TEST(cFlow, WaitingHasALimit)
{
    cGraph graph;
    auto& source = addTo(graph, "n", new NumberSource(1));
    Gate goOn;
    source.beforeSend = [&](int) { goOn.pass(); };
    ASSERT_TRUE(graph.launch());
    EXPECT_EQ(graph.waitForFlow(0), cGraph::EFlow::Running);
    EXPECT_EQ(graph.waitForFlow(5), cGraph::EFlow::Running);
    goOn.open();
    EXPECT_EQ(graph.waitForFlow(-1), cGraph::EFlow::Drained);
    graph.stop();
}

TEST(cFlow, SleepsOfTheHostCountToo)
{
    cGraph graph;
    auto& station = addTo(graph, "s", new cStation());
    auto* out = new cOPort<double>(&station, "out"_q, 1);
    ASSERT_TRUE(graph.launch());
    EXPECT_EQ(graph.getFlow(), cGraph::EFlow::Drained);
    cBuffer* held = out->getFreeBuffer(true);
    cBuffer* taken = held;
    std::thread sender([&] { taken = out->getFreeBuffer(true); });
    while (graph.getFlow() == cGraph::EFlow::Drained)
        std::this_thread::yield();
    EXPECT_EQ(graph.getFlow(), cGraph::EFlow::Stalled);
    EXPECT_EQ(graph.describeWaits(),
        QStringList {"the host waits for a buffer of s.out: 1 of 1 are held; receivers: "_q});
    graph.stop();
    sender.join();
    EXPECT_EQ(taken, nullptr);
    held->releaseAndUnrefBufferAtPort();
}

TEST(cFlow, ADelayedInputHasRoomForWhatItHolds)
{
    // The input holds more than the pool's limit of five.
    cGraph graph;
    auto& source = addTo(graph, "n", new NumberSource(40));
    addTo(graph, "a", new AddStation());
    auto& end = addTo(graph, "end", new Collector<double>());
    addTo(graph, "d", new SubtractStation());
    ASSERT_TRUE(graph.link("n"_q, "a"_q));
    ASSERT_TRUE(graph.link("n"_q, "d.a"_q));
    ASSERT_TRUE(graph.link("a"_q, "d.b"_q));
    ASSERT_TRUE(graph.link("d"_q, "end"_q));
    ASSERT_TRUE(graph.setParam("d.b.delay"_q, "12"_q));
    ASSERT_TRUE(graph.launch());
    EXPECT_EQ(graph.waitForFlow(s_patience), cGraph::EFlow::Drained);
    graph.stop();
    ASSERT_EQ(end.values().size(), 40u);
    EXPECT_EQ(end.values()[39], 12); // 40 - 28
    EXPECT_EQ(source.out.getHeldCount(), 0);
}

TEST(cFlow, TheSameInputGivesTheSameOutput)
{
    std::vector<double> expected;
    for (int run = 0; run < 10; ++run) {
        cGraph graph;
        addTo(graph, "n", new NumberSource(200));
        addTo(graph, "a", new AddStation()).summand = 0.5;
        addTo(graph, "b", new AddStation()).summand = 7;
        addTo(graph, "d", new SubtractStation());
        auto& end = addTo(graph, "end", new Collector<double>());
        ASSERT_TRUE(graph.link("n"_q, "a"_q));
        ASSERT_TRUE(graph.link("a"_q, "b"_q));
        ASSERT_TRUE(graph.link("b"_q, "d.a"_q));
        ASSERT_TRUE(graph.link("n"_q, "d.b"_q));
        ASSERT_TRUE(graph.link("d"_q, "end"_q));
        ASSERT_TRUE(graph.launch());
        ASSERT_EQ(graph.waitForFlow(s_patience), cGraph::EFlow::Drained);
        graph.stop();
        if (run == 0)
            expected = end.values();
        EXPECT_EQ(end.values(), expected);
        EXPECT_EQ(end.values(), std::vector<double>(200, 7.5));
    }
}
