#include "testStations.h"

#include <gtest/gtest.h>
#include <support/TraceLines.h>
#include <tarnbase/cError.h>
#include <tarnflow/SEHException.h>
#include <tarnflow/cGraph.h>
#include <tarnflow/cStepScope.h>
#include <tarnflow/cThreadWatch.h>
#include <thread>

namespace {
constexpr int s_patience = 30000;

/** Does nothing but run the jobs that it is given. */
class JobTest : public testing::Test {
protected:
    void add(int i_number, qint64 i_stamp)
    {
        station.add2CallbackQueue(
            [this, i_number] {
                done.push_back(i_number);
                return true;
            },
            nullptr, i_stamp);
    }

    cStation station;
    std::vector<int> done; // on the thread that runs jobs
};
} // namespace

TEST_F(JobTest, RunInTheOrderOfTheirStamps)
{
    station.setManual(true);
    station.start(EStartReason::Start);
    add(1, 30);
    add(2, 10);
    add(3, 20);
    add(4, 10);
    add(5, 10);
    EXPECT_EQ(station.getQueuedJobCount(), 5);
    while (station.runNextJob()) {}
    EXPECT_EQ(done, (std::vector<int> {2, 4, 5, 3, 1}));

    done.clear();
    std::vector<int> order;
    for (int i = 0; i < 50; ++i) {
        add(i, 7);
        order.push_back(i);
    }
    while (station.runNextJob()) {}
    EXPECT_EQ(done, order);
}

TEST_F(JobTest, AreDroppedWhileTheStationIsStopped)
{
    station.setManual(true);
    add(1, 1);
    EXPECT_FALSE(station.runNextJob());
    station.start(EStartReason::Start);
    add(2, 2);
    station.stop();
    EXPECT_FALSE(station.runNextJob());
    add(3, 3);
    station.start(EStartReason::Start);
    add(4, 4);
    EXPECT_TRUE(station.runNextJob());
    EXPECT_EQ(done, std::vector<int> {4});
}

TEST_F(JobTest, RunOnOneThreadOneAtATime)
{
    station.start(EStartReason::Start);
    std::atomic<int> running {0};
    std::atomic<int> mostAtOnce {0};
    std::mutex mutex;
    std::set<std::thread::id> threads;
    Gate end;
    constexpr int jobs = 2000;
    std::atomic<int> left {2 * jobs};
    const auto addMany = [&] {
        for (int i = 0; i < jobs; ++i)
            station.add2CallbackQueue(
                [&] {
                    mostAtOnce = std::max(mostAtOnce.load(), ++running);
                    {
                        const std::lock_guard lock(mutex);
                        threads.insert(std::this_thread::get_id());
                    }
                    --running;
                    if (--left == 0)
                        end.open();
                    return true;
                },
                nullptr, i);
    };
    std::thread first(addMany);
    std::thread second(addMany);
    first.join();
    second.join();
    EXPECT_TRUE(end.pass());
    station.stop();
    EXPECT_EQ(mostAtOnce, 1);
    EXPECT_EQ(threads.size(), 1u);
    EXPECT_FALSE(threads.count(std::this_thread::get_id()));
}

TEST_F(JobTest, StopWaitsForTheRunningOneAndDropsTheOthers)
{
    station.start(EStartReason::Start);
    Gate begun;
    Gate goOn;
    std::atomic<bool> ended {false};
    station.add2CallbackQueue(
        [&] {
            begun.open();
            goOn.pass();
            ended = true;
            return true;
        },
        nullptr, 1);
    add(2, 2);
    ASSERT_TRUE(begun.pass());
    std::thread opener([&] {
        while (station.getQueuedJobCount() > 0) // until stop has dropped it
            std::this_thread::yield();
        goOn.open();
    });
    station.stop();
    EXPECT_TRUE(ended);
    EXPECT_TRUE(done.empty());
    opener.join();
}

TEST_F(JobTest, ThatThrowEndNothingElse)
{
    station.setManual(true);
    station.start(EStartReason::Start);
    station.add2CallbackQueue([]() -> bool { throw 1; }, nullptr, 1);
    add(2, 2);
    EXPECT_TRUE(station.runNextJob());
    EXPECT_TRUE(station.runNextJob());
    EXPECT_EQ(done, std::vector<int> {2});
}

TEST(cStation, AListenerMayStopTheGraphFromTheStepThatFailed)
{
    TraceLines trace;
    cGraph graph;
    addTo(graph, "n", new NumberSource(1000));
    auto& add = addTo(graph, "a", new AddStation());
    Gate stopped;
    add.beforeSend = [](double number) {
        if (number == 3)
            throw std::runtime_error("three");
    };
    ASSERT_TRUE(graph.link("n"_q, "a"_q));
    QObject::connect(
        &graph, &cGraph::errorReported, &graph,
        [&](const cError&) {
            graph.stop();
            stopped.open();
        },
        Qt::DirectConnection);
    ASSERT_TRUE(graph.launch());
    EXPECT_TRUE(stopped.pass());
    EXPECT_EQ(graph.waitForFlow(s_patience), cGraph::EFlow::Stopped);
    graph.stop();
}

TEST(cStation, ReportsFailuresToEveryGraphAroundIt)
{
    TraceLines trace;
    cGraph graph;
    cGraph& inner = *graph.addGraph("sub"_q);
    addTo(inner, "n", new NumberSource(3));
    auto& add = addTo(inner, "a", new AddStation());
    add.beforeSend = [](double number) {
        if (number == 2)
            throw std::runtime_error("not this one");
    };
    ASSERT_TRUE(inner.link("n"_q, "a"_q));
    std::mutex mutex;
    QStringList errors;
    const auto note = [&](const cError& error) {
        const std::lock_guard lock(mutex);
        errors.append(error.getPath() + ": "_q + error.getMessage() + QString::number(error.getLevel())
            + QString::number(error.getState()));
    };
    QObject::connect(&graph, &cGraph::errorReported, &graph, note, Qt::DirectConnection);
    QObject::connect(&inner, &cGraph::errorReported, &inner, note, Qt::DirectConnection);
    ASSERT_TRUE(graph.launch());
    EXPECT_EQ(graph.waitForFlow(s_patience), cGraph::EFlow::Drained);
    graph.stop();
    EXPECT_EQ(errors, (QStringList {"sub/a: not this one06"_q, "sub/a: not this one06"_q}));
    const cFates fates = add.getInport("in"_q)->getFates();
    EXPECT_EQ(fates.failed, 1u);
    EXPECT_EQ(fates.gated, 2u);
    EXPECT_EQ(fates.arrived, fates.getSum());
}

TEST(cStation, AnUnknownExceptionEndsItAndStopReturns)
{
    TraceLines trace;
    cGraph graph;
    auto& source = addTo(graph, "n", new NumberSource(1000));
    auto& add = addTo(graph, "a", new AddStation());
    auto& end = addTo(graph, "end", new Collector<double>());
    std::atomic<bool> angry {true};
    add.beforeSend = [&](double number) {
        if (angry && number == 3)
            throw 42;
    };
    ASSERT_TRUE(graph.link("n"_q, "a"_q));
    ASSERT_TRUE(graph.link("a"_q, "end"_q));
    Gate died;
    QString deadPath;
    QObject::connect(
        &graph, &cGraph::stationDied, &graph,
        [&](const QString& path) {
            deadPath = path;
            died.open();
        },
        Qt::DirectConnection);
    ASSERT_TRUE(graph.launch());
    ASSERT_TRUE(died.pass());
    EXPECT_EQ(deadPath, "a"_q);
    const cGraph::EFlow flow = graph.waitForFlow(s_patience);
    EXPECT_TRUE(flow == cGraph::EFlow::Stalled || flow == cGraph::EFlow::Drained);
    EXPECT_TRUE(add.isDead());
    EXPECT_FALSE(add.getInputMutex().tryLock());
    EXPECT_TRUE(graph.setParam("a.summand"_q, "5"_q)); // no step is there to be disturbed
    graph.stop();
    EXPECT_TRUE(add.isDead());
    EXPECT_EQ(end.values(), (std::vector<double> {1, 2}));

    // A new start makes it good again.
    angry = false;
    source.count = 10;
    ASSERT_TRUE(graph.relaunch());
    EXPECT_FALSE(add.isDead());
    EXPECT_EQ(graph.waitForFlow(s_patience), cGraph::EFlow::Drained);
    graph.stop();
    EXPECT_EQ(end.values().size(), 12u);
    EXPECT_EQ(end.values().back(), 15);
}

TEST(cSourceStation, GoesOnAfterAnException)
{
    TraceLines trace;
    cGraph graph;
    auto& source = addTo(graph, "n", new NumberSource(6));
    auto& end = addTo(graph, "end", new Collector<double>());
    source.beforeSend = [](int number) {
        if (number == 2)
            throw std::runtime_error("unreadable");
        if (number == 4)
            throw SEHException("access violation"_q);
    };
    ASSERT_TRUE(graph.link("n"_q, "end"_q));
    std::mutex mutex;
    QStringList errors;
    QObject::connect(
        &graph, &cGraph::errorReported, &graph,
        [&](const cError& error) {
            const std::lock_guard lock(mutex);
            errors.append(error.getMessage() + QString::number(error.getLevel()));
        },
        Qt::DirectConnection);
    ASSERT_TRUE(graph.launch());
    EXPECT_EQ(graph.waitForFlow(s_patience), cGraph::EFlow::Drained);
    graph.stop();
    EXPECT_EQ(end.values(), (std::vector<double> {1, 3, 5, 6}));
    EXPECT_EQ(errors, (QStringList {"unreadable0"_q, "access violation1"_q}));
    EXPECT_EQ(trace.take(), (QStringList {"n: unreadable"_q, "n: access violation"_q}));
}

TEST(cSourceStation, DiesOfAnUnknownException)
{
    TraceLines trace;
    cGraph graph;
    auto& source = addTo(graph, "n", new NumberSource(6));
    source.beforeSend = [](int number) {
        if (number == 2)
            throw 1;
    };
    ASSERT_TRUE(graph.launch());
    EXPECT_EQ(graph.waitForFlow(s_patience), cGraph::EFlow::Drained);
    EXPECT_TRUE(source.isDead());
    graph.stop();
}

TEST(cSourceStation, FinishEndsItAfterItsStep)
{
    cGraph graph;
    auto& source = addTo(graph, "n", new NumberSource(1000000000));
    auto& end = addTo(graph, "end", new Collector<double>());
    ASSERT_TRUE(graph.link("n"_q, "end"_q));
    Gate begun;
    end.onValue = [&](double number) {
        if (number == 10)
            begun.open();
    };
    ASSERT_TRUE(graph.launch());
    ASSERT_TRUE(begun.pass());
    graph.finishSources();
    EXPECT_EQ(graph.waitForFlow(s_patience), cGraph::EFlow::Drained);
    EXPECT_EQ(end.values().size(), source.out.getFates().arrived);
    graph.stop();
}

TEST(cSourceStation, PausesWhileItIsDisabled)
{
    cGraph graph;
    auto& source = addTo(graph, "n", new NumberSource(100));
    auto& end = addTo(graph, "end", new Collector<double>());
    source.beforeSend = [&](int number) {
        if (number == 10)
            source.setEnabled(false);
    };
    ASSERT_TRUE(graph.link("n"_q, "end"_q));
    ASSERT_TRUE(graph.launch());
    EXPECT_EQ(graph.waitForFlow(s_patience), cGraph::EFlow::Drained);
    EXPECT_EQ(end.values().size(), 10u);
    source.setEnabled(true);
    EXPECT_EQ(graph.waitForFlow(s_patience), cGraph::EFlow::Drained);
    graph.stop();
    EXPECT_EQ(end.values().size(), 100u);
}

TEST(cSourceStation, AnnouncesItsEnd)
{
    cGraph graph;
    addTo(graph, "n", new NumberSource(2));
    std::vector<std::pair<qint64, bool>> notices;
    cIPort<double> tap;
    tap.setDirectCallback([](cBufferT<double>*) {});
    tap.m_finishCallback
        = [&](const cBufferStamp& stamp, bool idle) { notices.emplace_back(stamp.getStamp(), idle); };
    ASSERT_TRUE(graph.link(graph.findNode("n"_q)->getOutport("out"_q), &tap));
    ASSERT_TRUE(graph.launch());
    EXPECT_EQ(graph.waitForFlow(s_patience), cGraph::EFlow::Drained);
    graph.stop();
    EXPECT_EQ(notices, (std::vector<std::pair<qint64, bool>> {{1, false}, {2, false}, {2, true}}));
}

TEST(cStepScope, TellsWhatBecameOfAStep)
{
    using EOutcome = cStepScope::EOutcome;
    {
        const cStepScope scope;
        EXPECT_EQ(scope.getOutcome(), EOutcome::Used);
        cStepScope::noteRequest(false);
        EXPECT_EQ(scope.getOutcome(), EOutcome::Gated);
        cStepScope::noteRequest(true); // another output is wanted
        EXPECT_EQ(scope.getOutcome(), EOutcome::Used);
        {
            const cStepScope inner;
            cStepScope::noteIgnored();
            EXPECT_EQ(inner.getOutcome(), EOutcome::Ignored);
            {
                const cStepScope::Suspension suspension;
                cStepScope::noteLost();
            }
            EXPECT_EQ(inner.getOutcome(), EOutcome::Ignored);
            cStepScope::noteSent();
            EXPECT_EQ(inner.getOutcome(), EOutcome::Used);
            cStepScope::noteLost();
            EXPECT_EQ(inner.getOutcome(), EOutcome::Lost);
        }
        EXPECT_EQ(scope.getOutcome(), EOutcome::Used);
    }
    cStepScope::noteLost(); // without a step it is nobody's
}

TEST(cThreadWatch, MeasuresTheTimeOfItsThread)
{
    cThreadWatch watch;
    watch.start();
    volatile double sum = 0;
    while (watch.elapsed() < 1000000)
        sum = sum + 1;
    EXPECT_GE(watch.elapsed(), 1000000);
    const qint64 before = watch.elapsed();
    std::thread other([] {
        cThreadWatch busy;
        busy.start();
        while (busy.elapsed() < 20000000) {}
    });
    other.join();
    EXPECT_LT(watch.elapsed() - before, 20000000);
}

// --- misfits ---

TEST(cStation, KeepsTheFirstMisfitOfEachPlaceUntilTheNextStart)
{
    cGraph graph;
    auto* station = new cStation(QStringLiteral("s"));
    ASSERT_TRUE(graph.addNode(station));
    const auto note = [&](const char* i_place, const char* i_message) {
        station->noteMisfit({QString::fromLatin1(i_place), QString::fromLatin1(i_message), {}});
    };
    note("img", "first");
    note("", "itself");
    note("img", "second");
    QStringList texts;
    for (const cGraphError& misfit : station->getMisfits())
        texts.append(misfit.toString());
    EXPECT_EQ(texts, (QStringList {QStringLiteral("s.img: first"), QStringLiteral("s: itself")}));
    station->start(EStartReason::Start);
    EXPECT_TRUE(station->getMisfits().isEmpty());
    station->stop();
}

TEST(cStepScope, GivesAMisfitToTheStationWhoseStepItIs)
{
    cStation station(QStringLiteral("s"));
    cStepScope::noteMisfit({QStringLiteral("a"), QStringLiteral("no step"), {}});
    {
        const cStepScope scope(&station);
        cStepScope::noteMisfit({QStringLiteral("b"), QStringLiteral("its step"), {}});
        const cStepScope::Suspension suspension;
        cStepScope::noteMisfit({QStringLiteral("c"), QStringLiteral("of a receiver"), {}});
    }
    ASSERT_EQ(station.getMisfits().size(), 1);
    EXPECT_EQ(station.getMisfits().first().message, QStringLiteral("its step"));
}

TEST(cStation, SaysWhatItIs)
{
    cStation station(QStringLiteral("s"));
    EXPECT_TRUE(station.isStation());
    EXPECT_FALSE(station.isGraph());
    EXPECT_FALSE(station.isProject());
    EXPECT_EQ(station.getView(), nullptr);
    EXPECT_EQ(station.getPathName(), "s"_q);
    EXPECT_EQ(station.getInport("img"_q), nullptr);
    EXPECT_EQ(station.getOutport("img"_q), nullptr);
    EXPECT_TRUE(station.canStart());
    EXPECT_EQ(cStation().getName(), QString());
}

TEST(cStation, IsToldWhenItIsSwitched)
{
    class SwitchedStation : public cStation {
    public:
        QList<bool> told;
        void enableChanged(bool i_enabled) override { told.append(i_enabled); }
    };
    cGraph graph;
    auto& station = addTo(graph, "s", new SwitchedStation());
    EXPECT_TRUE(station.isEnabled());
    station.setEnabled(false);
    EXPECT_FALSE(station.isEnabled());
    station.setEnabled(true);
    EXPECT_EQ(station.told, (QList<bool> {false, true}));
    graph.setEnabled(false);
    EXPECT_FALSE(station.isEnabled());
    EXPECT_EQ(station.told, (QList<bool> {false, true, false})) << "with its graph";
    station.setEnabled(true);
    EXPECT_FALSE(station.told.last()) << "whether it takes part";
}

TEST(cDfpNode, ANameKeepsLettersDigitsAndDashes)
{
    cStation station;
    EXPECT_EQ(station.checkName("left-camera_2"_q), "left-camera_2"_q);
    EXPECT_EQ(station.checkName(" a b/c.d!"_q), "abcd"_q);
    EXPECT_EQ(station.checkName(QString()), QString());
}

TEST(cDfpNode, APortIsGoneOnceItIsRemoved)
{
    cStation station;
    cOPort<double> out(&station, "out"_q, 5);
    cIPort<double> in(&station, "in"_q);
    EXPECT_EQ(station.getOutport("out"_q), &out);
    station.removePort(&out);
    EXPECT_EQ(station.getOutport("out"_q), nullptr);
    EXPECT_EQ(station.getInport("in"_q), &in);
    EXPECT_EQ(in.getPortPath(), ".in"_q);
}
