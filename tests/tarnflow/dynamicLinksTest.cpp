#include "testStations.h"

#include <gtest/gtest.h>
#include <tarnflow/cGraph.h>
#include <thread>

namespace {
constexpr int s_patience = 30000;

/** A source that runs until it is told to end, and a collector behind it. */
class RunningGraph : public testing::Test {
protected:
    RunningGraph()
        : source(addTo(graph, "n", new NumberSource(1000000000))),
          end(addTo(graph, "end", new Collector<double>()))
    {
        EXPECT_TRUE(graph.link("n"_q, "end"_q));
    }

    void finish()
    {
        graph.finishSources();
        EXPECT_EQ(graph.waitForFlow(s_patience), cGraph::EFlow::Drained);
        EXPECT_EQ(source.out.getHeldCount(), 0);
        EXPECT_EQ(end.values().size(), source.out.getFates().arrived);
        graph.stop();
    }

    cGraph graph;
    NumberSource& source;
    Collector<double>& end;
};
} // namespace

TEST_F(RunningGraph, TapsComeAndGo)
{
    ASSERT_TRUE(graph.launch());
    for (int round = 0; round < 200; ++round) {
        // After unlink the tap may be destroyed: nothing enters it any more.
        auto tap = std::make_unique<cIPort<double>>();
        Gate seen;
        tap->setDirectCallback([&](cBufferT<double>*) { seen.open(); });
        ASSERT_TRUE(graph.link(&source.out, tap.get()));
        ASSERT_TRUE(seen.pass());
        ASSERT_TRUE(graph.unlink(&source.out, tap.get()));
        const cFates fates = tap->getFates();
        EXPECT_EQ(fates.arrived, fates.used);
        EXPECT_GT(fates.arrived, 0u);
    }
    finish();
}

TEST_F(RunningGraph, ATapMayUnlinkItselfInItsCallback)
{
    ASSERT_TRUE(graph.launch());
    cIPort<double> tap;
    Gate gone;
    std::atomic<int> calls {0};
    tap.setDirectCallback([&](cBufferT<double>*) {
        ++calls;
        EXPECT_TRUE(graph.unlink(&source.out, &tap));
        gone.open();
    });
    ASSERT_TRUE(graph.link(&source.out, &tap));
    ASSERT_TRUE(gone.pass());
    finish();
    EXPECT_EQ(calls, 1);
}

TEST_F(RunningGraph, StationsAreLinkedAndUnlinkedMeanwhile)
{
    auto& add = addTo(graph, "a", new AddStation());
    auto& more = addTo(graph, "more", new Collector<double>());
    ASSERT_TRUE(graph.link("n"_q, "a"_q));
    ASSERT_TRUE(graph.link("a"_q, "more"_q));
    ASSERT_TRUE(graph.launch());
    for (int round = 0; round < 200; ++round) {
        ASSERT_TRUE(graph.unlink("a"_q, "more"_q));
        ASSERT_TRUE(graph.unlink("n"_q, "a"_q));
        ASSERT_TRUE(graph.link("a"_q, "more"_q));
        ASSERT_TRUE(graph.link("n"_q, "a"_q));
        const cFates fates = add.getInport("in"_q)->getFates();
        ASSERT_EQ(fates.arrived, fates.getSum());
    }
    finish();
    EXPECT_LE(more.values().size(), end.values().size());
}

TEST_F(RunningGraph, StationsAreSwitchedOffAndOn)
{
    auto& add = addTo(graph, "a", new AddStation());
    auto& more = addTo(graph, "more", new Collector<double>());
    ASSERT_TRUE(graph.link("n"_q, "a"_q));
    ASSERT_TRUE(graph.link("a"_q, "more"_q));
    ASSERT_TRUE(graph.launch());
    for (int round = 0; round < 500; ++round) {
        add.setEnabled(false);
        EXPECT_EQ(source.out.getReceiver().size(), 1);
        add.setEnabled(true);
        EXPECT_EQ(source.out.getReceiver().size(), 2);
    }
    finish();
    const auto stamps = more.stamps();
    EXPECT_TRUE(std::is_sorted(stamps.begin(), stamps.end()));
}

TEST_F(RunningGraph, ObserversComeAndGo)
{
    ASSERT_TRUE(graph.launch());
    std::atomic<int> told {0};
    for (int round = 0; round < 500; ++round) {
        source.out.setSendObserver([&](const double&, const QString&) { ++told; });
        const int before = told;
        const auto giveUp = std::chrono::steady_clock::now() + std::chrono::seconds(30);
        while (told == before && std::chrono::steady_clock::now() < giveUp)
            std::this_thread::yield();
        EXPECT_GT(told, before);
        source.out.setSendObserver({});
    }
    finish();
}

TEST_F(RunningGraph, UnlinkWaitsForTheDeliveryThatIsUnderWay)
{
    cIPort<double> tap;
    Gate inside;
    Gate goOn;
    std::atomic<bool> left {false};
    tap.setDirectCallback([&](cBufferT<double>*) {
        inside.open();
        goOn.pass();
        left = true;
    });
    ASSERT_TRUE(graph.link(&source.out, &tap));
    ASSERT_TRUE(graph.launch());
    ASSERT_TRUE(inside.pass());
    std::thread opener([&] { goOn.open(); });
    ASSERT_TRUE(graph.unlink(&source.out, &tap));
    EXPECT_TRUE(left);
    opener.join();
    finish();
}
