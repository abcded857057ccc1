#include "ProbeStation.h"

#include <QTextCodec>
#include <gtest/gtest.h>
#include <stdexcept>
#include <support/StationHarness.h>
#include <support/qtPrinters.h>
#include <tarnbase/cError.h>
#include <tarnflow/SEHException.h>
#include <tarnflow/cGraph.h>
#include <tarnflow/cStepScope.h>
#include <tarnflow/cThreadWatch.h>

namespace {
using Stamps = QList<qint64>;
using OneInput = BufferProbeStation<double>;
using TwoInputs = ProbeStation<double, double>;

/** Sends the sum of both inputs. */
void sendSum(TwoInputs& io_station)
{
    io_station.out.send(
        io_station.group.getValue<0>() + io_station.group.getValue<1>(), io_station.group.getStamp());
}

void sendValue(OneInput& io_station, cBufferT<double>* i_buffer)
{
    io_station.out.send(i_buffer->getValue(), i_buffer->getStamp());
}

/** Throws what its test tells it to. */
class cNullException : public std::exception {
public:
    const char* what() const noexcept override { return nullptr; }
};
} // namespace

// --- matching ---

TEST(portGroupTest, DataAloneStartsNothing)
{
    StationHarness harness(new TwoInputs(sendSum));
    harness.send("a", 1.0, 10);
    harness.send("b", 2.0, 10);
    EXPECT_FALSE(harness.runStep());
    harness.finish("a", 10);
    EXPECT_FALSE(harness.runStep());
    harness.finish("b", 10);
    EXPECT_TRUE(harness.runStep());
    EXPECT_EQ(harness.values<double>("out"), QVector<double> {3.0});
    EXPECT_EQ(harness.stamps("out"), Stamps {10});
    EXPECT_EQ(harness.finished("out"), Stamps {10});
}

TEST(portGroupTest, BuffersThatOneInputHasTooManyOfGoUnseen)
{
    auto* station = new TwoInputs(sendSum);
    StationHarness harness(station);
    harness.feed("a", 1.0, 10);
    harness.feed("a", 5.0, 20);
    harness.feed("b", 100.0, 20);
    EXPECT_EQ(harness.sender("a")->getHeldCount(), 2);
    EXPECT_EQ(harness.runAll(), 1);
    EXPECT_EQ(harness.values<double>("out"), QVector<double> {101.0}) << "the step sees the oldest buffer";
    EXPECT_EQ(harness.stamps("out"), Stamps {20});
    EXPECT_EQ(harness.sender("a")->getHeldCount(), 0);
    EXPECT_EQ(harness.takeTrace(), QStringList());
    EXPECT_EQ(harness.fates("a").used, 1u);
    EXPECT_EQ(harness.fates("a").unseen, 1u);
    EXPECT_EQ(harness.fates("b").used, 1u);
}

TEST(portGroupTest, OneMatchIsUnderWayAtATime)
{
    StationHarness harness(new OneInput(sendValue));
    harness.feed("a", 1.0, 10);
    harness.feed("a", 2.0, 20);
    harness.feed("a", 3.0, 30);
    EXPECT_EQ(harness.station().getQueuedJobCount(), 1);
    EXPECT_EQ(harness.fates("a").waiting, 3u);
    EXPECT_TRUE(harness.runStep());
    EXPECT_EQ(harness.station().getQueuedJobCount(), 1) << "the end of a match looks for the next";
    harness.runAll();
    EXPECT_EQ(harness.matches(), (Stamps {10, 20, 30}));
    EXPECT_EQ(harness.fates("a").used, 3u);
}

TEST(portGroupTest, EachBufferOfAMatchOfOneInputIsProcessedUnderOneLock)
{
    bool locked = true;
    auto* station = new OneInput([&](OneInput& io_station, cBufferT<double>* i_buffer) {
        locked = locked && !io_station.getInputMutex().tryLock();
        sendValue(io_station, i_buffer);
    });
    StationHarness harness(station);
    harness.send("a", 1.0, 10);
    harness.send("a", 2.0, 20);
    harness.finish("a", 20);
    EXPECT_EQ(harness.runAll(), 1);
    EXPECT_EQ(harness.values<double>("out"), (QVector<double> {1.0, 2.0}));
    EXPECT_EQ(harness.stamps("out"), (Stamps {10, 20})) << "each under its own stamp";
    EXPECT_TRUE(locked);
    EXPECT_EQ(harness.matches(), Stamps {20}) << "the mutex was taken once";
    EXPECT_EQ(station->group.getExecutionCount(), 2u);
    EXPECT_EQ(harness.fates("a").used, 2u);
    EXPECT_TRUE(station->getInputMutex().tryLock());
    station->getInputMutex().unlock();
}

TEST(portGroupTest, AMissingRequiredBufferDropsAndAnnouncesTheStamp)
{
    StationHarness harness(new TwoInputs(sendSum));
    harness.send("a", 1.0, 5);
    harness.feed("a", 1.0, 10);
    harness.finish("b", 10);
    EXPECT_FALSE(harness.runStep());
    EXPECT_EQ(harness.finished("out"), Stamps {10});
    const QString line = QStringLiteral("probe has dropped data (10) got from station: feeder.a\n");
    EXPECT_EQ(harness.takeTrace(), (QStringList {line, line}));
    EXPECT_EQ(harness.fates("a").incomplete, 2u);
    EXPECT_EQ(harness.sender("a")->getHeldCount(), 0);
}

TEST(portGroupTest, ADropIsReportedWithWholePaths)
{
    TraceLines trace;
    cGraph graph;
    cGraph& inner = *graph.addGraph(QStringLiteral("sub"));
    auto* station = new TwoInputs(sendSum);
    auto* feeder = new cStation(QStringLiteral("feeder"));
    station->setManual(true);
    ASSERT_TRUE(inner.addNode(station) && inner.addNode(feeder));
    cOPort<double> first(feeder, QStringLiteral("first"), 5);
    cOPort<double> second(feeder, QStringLiteral("second"), 5);
    ASSERT_TRUE(inner.link(&first, &station->group.getPort<0>()));
    ASSERT_TRUE(inner.link(&second, &station->group.getPort<1>()));
    station->start(EStartReason::Start);
    first.send(1.0, 10);
    first.sendFinish(10);
    second.sendFinish(10);
    EXPECT_EQ(trace.take(),
        QStringList {QStringLiteral("sub/probe has dropped data (10) got from station: sub/feeder.first\n")});
    station->stop();
}

TEST(portGroupTest, AQueueCanDropInSilence)
{
    auto* station = new TwoInputs(sendSum);
    station->group.getQueue<0>().reportDrops = false;
    StationHarness harness(station);
    harness.feed("a", 1.0, 10);
    harness.finish("b", 10);
    EXPECT_EQ(harness.takeTrace(), QStringList());
    EXPECT_EQ(harness.fates("a").incomplete, 1u);
}

TEST(portGroupTest, ADropLeavesWhatIsLater)
{
    StationHarness harness(new TwoInputs(sendSum));
    harness.send("a", 1.0, 10);
    harness.feed("a", 2.0, 20);
    harness.send("b", 3.0, 20);
    harness.finish("b", 10);
    harness.finish("b", 20);
    harness.runAll();
    // The first stamp of a is 20: the candidate is 20 at once, so 10 is matched with it and not dropped.
    EXPECT_EQ(harness.values<double>("out"), QVector<double> {4.0});
    EXPECT_EQ(harness.fates("a").unseen, 1u);
}

TEST(portGroupTest, AnOptionalInputWithoutASenderNeverBlocks)
{
    auto* station = new TwoInputs([](TwoInputs& io_station) {
        EXPECT_EQ(io_station.group.getBuffer<1>(), nullptr);
        EXPECT_EQ(io_station.group.getValue<1>(), 0.0);
        sendSum(io_station);
    });
    station->group.getQueue<1>().required = false;
    StationHarness harness(station, {QStringLiteral("b")});
    harness.feed("a", 7.0, 10);
    EXPECT_EQ(harness.runAll(), 1);
    EXPECT_EQ(harness.values<double>("out"), QVector<double> {7.0});
}

TEST(portGroupTest, ARequiredInputWithoutASenderBlocksForGood)
{
    auto* station = new TwoInputs(sendSum);
    StationHarness harness(station, {QStringLiteral("b")});
    harness.feed("a", 7.0, 10);
    harness.feed("a", 8.0, 20);
    EXPECT_FALSE(harness.runStep());
    EXPECT_EQ(harness.finished("out"), Stamps());
    EXPECT_EQ(station->group.getDataCount(harness.inport("a")), 2);
    EXPECT_EQ(harness.takeTrace(), QStringList());
}

TEST(portGroupTest, AnOptionalInputWithASenderIsWaitedForButMayGiveNothing)
{
    auto* station = new TwoInputs(sendSum);
    station->group.getQueue<1>().required = false;
    StationHarness harness(station);
    harness.feed("a", 7.0, 10);
    EXPECT_FALSE(harness.runStep());
    harness.finish("b", 10);
    EXPECT_TRUE(harness.runStep());
    EXPECT_EQ(harness.values<double>("out"), QVector<double> {7.0});

    harness.feed("a", 8.0, 20);
    EXPECT_FALSE(harness.runStep());
    harness.finish("b", 15, true);
    EXPECT_TRUE(harness.runStep()) << "an idle sender is not waited for";
    EXPECT_EQ(harness.values<double>("out"), (QVector<double> {7.0, 8.0}));

    harness.feed("a", 9.0, 30);
    EXPECT_EQ(station->group.getStampCount(harness.inport("b")), 0);
    EXPECT_TRUE(harness.runStep()) << "also when none of its stamps is left";
}

TEST(portGroupTest, ARequiredInputWhoseSenderIsIdleGivesNothingToTheMatch)
{
    StationHarness harness(new TwoInputs(sendSum));
    harness.feed("a", 7.0, 10);
    harness.feed("b", 1.0, 10);
    harness.finish("b", 11, true);
    harness.runAll();
    harness.feed("a", 8.0, 20);
    harness.feed("a", 9.0, 30);
    EXPECT_FALSE(harness.runStep());
    EXPECT_EQ(harness.finished("out"), (Stamps {10, 20, 30}));
    EXPECT_EQ(harness.values<double>("out"), QVector<double> {8.0});
    EXPECT_EQ(harness.fates("a").incomplete, 2u);
}

TEST(portGroupTest, ArrivingDataEndsIdleness)
{
    auto* station = new TwoInputs(sendSum);
    station->group.getQueue<1>().required = false;
    StationHarness harness(station);
    harness.finish("b", 5, true);
    harness.feed("a", 7.0, 10);
    EXPECT_TRUE(harness.runStep());
    harness.send("b", 100.0, 12);
    harness.feed("a", 8.0, 11);
    EXPECT_FALSE(harness.runStep());
    harness.finish("b", 12);
    EXPECT_FALSE(harness.runStep()) << "the candidate is the larger of both oldest stamps";
    harness.finish("a", 12);
    EXPECT_TRUE(harness.runStep());
    EXPECT_EQ(harness.matches(), (Stamps {10, 12}));
    EXPECT_EQ(harness.values<double>("out"), (QVector<double> {7.0, 108.0}));
}

TEST(portGroupTest, WithIdleSendersOnlyNothingHappens)
{
    auto* station = new TwoInputs(sendSum);
    station->group.getQueue<1>().required = false;
    StationHarness harness(station, {QStringLiteral("b")});
    harness.finish("a", 10, true);
    harness.finish("a", 20, true);
    EXPECT_FALSE(harness.runStep());
    EXPECT_EQ(harness.finished("out"), (Stamps {10, 20}));
}

TEST(portGroupTest, IdlenessTravelsOnOnceNothingWaitsHere)
{
    StationHarness harness(new OneInput(sendValue));
    harness.feed("a", 1.0, 10);
    harness.send("a", 2.0, 20);
    harness.finish("a", 20, true);
    harness.runAll();
    ASSERT_EQ(harness.finishes().size(), 2);
    EXPECT_FALSE(harness.finishes()[0].idle);
    EXPECT_TRUE(harness.finishes()[1].idle);
}

TEST(portGroupTest, ASenderThatNeverSentAnythingIsIdleForThoseBehindToo)
{
    StationHarness harness(new OneInput(sendValue));
    harness.sender("a")->sendIdle();
    ASSERT_EQ(harness.finishes().size(), 1);
    EXPECT_TRUE(harness.finishes()[0].idle);
}

TEST(portGroupTest, AMasterAloneSaysWhichStampIsNext)
{
    auto* station = new TwoInputs(sendSum);
    station->group.getQueue<0>().master = true;
    StationHarness harness(station);
    harness.feed("b", 100.0, 20);
    harness.feed("a", 1.0, 10);
    EXPECT_FALSE(harness.runStep());
    EXPECT_EQ(harness.finished("out"), Stamps {10}) << "b has finished past 10 without a buffer for it";
    EXPECT_EQ(harness.fates("a").incomplete, 1u);
    harness.feed("a", 2.0, 30);
    EXPECT_FALSE(harness.runStep()) << "b has not finished 30";
    harness.finish("b", 30);
    harness.runAll();
    EXPECT_EQ(harness.values<double>("out"), QVector<double> {102.0});
}

TEST(portGroupTest, SeveralSendersOfOneInputAreSortedByStamp)
{
    auto* station = new OneInput(sendValue);
    StationHarness harness(station);
    cOPortBase* second = harness.addSender("a");
    harness.send("a", 3.0, 30);
    StationHarness::send(second, 1.0, 10);
    StationHarness::send(second, 4.0, 40);
    StationHarness::send(second, 2.0, 30);
    harness.finish("a", 30);
    harness.runAll();
    EXPECT_EQ(harness.values<double>("out"), (QVector<double> {1.0, 3.0, 2.0}));
    EXPECT_EQ(station->group.getDataCount(harness.inport("a")), 1);
}

TEST(portGroupTest, BuffersOfEqualStampsKeepTheirOrderHoweverManyTheyAre)
{
    StationHarness harness(new OneInput(sendValue));
    cOPortBase* second = harness.addSender("a");
    QVector<double> expected(60);
    for (int i = 0; i < 60; ++i) {
        StationHarness::send(i % 2 ? second : harness.sender("a"), double(i), 10 * (1 + i % 3));
        expected[(i % 3) * 20 + i / 3] = i;
    }
    harness.finish("a", 30);
    harness.runAll();
    EXPECT_EQ(harness.values<double>("out"), expected);
}

TEST(portGroupTest, FromOneSenderALaterBufferHidesWhatIsBehindIt)
{
    auto* station = new OneInput(sendValue);
    StationHarness harness(station);
    harness.send("a", 3.0, 30);
    harness.send("a", 1.0, 10);
    harness.finish("a", 10);
    EXPECT_EQ(harness.runAll(), 1) << "a buffer for the stamp is there, though it cannot be taken";
    EXPECT_EQ(harness.values<double>("out"), QVector<double>());
    EXPECT_EQ(station->group.getDataCount(harness.inport("a")), 2);
}

TEST(portGroupTest, OfSendersThatAreSwitchedOffBuffersAreTakenByStamp)
{
    auto* station = new OneInput(sendValue);
    StationHarness harness(station);
    harness.send("a", 3.0, 30);
    harness.send("a", 1.0, 10);
    harness.sender("a")->getNode()->setEnabled(false);
    EXPECT_EQ(harness.inport("a")->getEnabledChannelCount(), 0u);
    harness.finish("a", 10);
    harness.runAll();
    EXPECT_EQ(harness.values<double>("out"), QVector<double> {1.0});
}

TEST(portGroupTest, ALateStampTakesItsPlaceAndIsMatched)
{
    auto* station = new TwoInputs(sendSum);
    StationHarness harness(station);
    harness.finish("a", 10);
    harness.finish("a", 30);
    harness.finish("a", 20);
    EXPECT_EQ(station->group.getStampCount(harness.inport("a")), 3);
    EXPECT_EQ(station->group.getOldestStamp(harness.inport("a")), 20);
    EXPECT_EQ(station->group.getNewestStamp(harness.inport("a")), 30);
    harness.finish("b", 10);
    EXPECT_EQ(harness.finished("out"), Stamps()) << "the candidate is 20";
    harness.finish("b", 20);
    EXPECT_EQ(harness.finished("out"), Stamps {20});
    EXPECT_EQ(station->group.getStampCount(harness.inport("a")), 1) << "10 stood behind 20";
}

// --- delays and reset markers ---

TEST(portGroupTest, ADelayedInputShowsTheBufferOfTheMatchBeforeAtAFixedDistance)
{
    Stamps seen;
    Stamps times;
    auto* station = new TwoInputs([&](TwoInputs& io_station) {
        seen << qint64(io_station.group.getValue<0>())
             << io_station.group.getBuffer<0>()->getStamp().getStamp();
        times << io_station.group.getBuffer<0>()->getStamp().getTime();
    });
    ASSERT_TRUE(station->group.getPort<0>().getParams().getSubObject(QStringLiteral("delay"))->setValue(1u));
    StationHarness harness(station);
    for (const auto& [stamp, time] : {std::pair(10, 1000), {20, 1100}, {35, 1150}, {40, 1400}}) {
        harness.send("a", double(stamp), {stamp, time});
        harness.finish("a", {stamp, time});
        harness.feed("b", 0.0, {stamp, time});
        harness.runAll();
    }
    EXPECT_EQ(seen, (Stamps {10, 10, 10, 20, 20, 35, 35, 40}));
    EXPECT_EQ(times, (Stamps {1000, 1100, 1150, 1400}));
    EXPECT_EQ(harness.sender("a")->getHeldCount(), 1);
    const cFates fates = harness.fates("a");
    EXPECT_EQ(fates.used, 3u) << "each is counted at the first match that sees it";
    EXPECT_EQ(fates.waiting, 1u);
    EXPECT_EQ(fates.arrived, fates.getSum());
}

TEST(portGroupTest, ADelayOfTwoShowsTheBufferOfTheMatchBeforeTheLast)
{
    QVector<double> seen;
    auto* station
        = new OneInput([&](OneInput&, cBufferT<double>* i_buffer) { seen << i_buffer->getValue(); });
    station->group.getQueue<0>().delay = 2;
    StationHarness harness(station);
    for (int i = 1; i <= 5; ++i) {
        harness.feed("a", double(i), 10 * i);
        harness.runAll();
    }
    EXPECT_EQ(seen, (QVector<double> {1, 1, 1, 2, 3}));
    EXPECT_EQ(harness.sender("a")->getHeldCount(), 2);
}

TEST(portGroupTest, ABufferThatSomebodyElseHoldsKeepsItsStamp)
{
    Stamps seen;
    auto* station = new OneInput([&](OneInput&, cBufferT<double>* i_buffer) {
        seen << i_buffer->getStamp().getStamp();
        EXPECT_EQ(i_buffer->getValue(), 1.0);
    });
    station->group.getQueue<0>().delay = 1;
    StationHarness harness(station);
    auto* sender = dynamic_cast<cOPort<double>*>(harness.sender("a"));
    cBufferT<double>* held = sender->getFreeBuffer(false);
    held->setValue(1.0);
    held->setStamp({10, 7});
    held->ref();
    sender->sendBuffer(held);
    harness.finish("a", 10);
    harness.runAll();
    EXPECT_EQ(sender->getHeldCount(), 1);
    harness.send("a", 2.0, 25);
    harness.finish("a", 25);
    harness.runStep();
    EXPECT_EQ(seen, (Stamps {10, 25}));
    EXPECT_EQ(held->getStamp().getStamp(), 10);
    EXPECT_EQ(held->getStamp().getTime(), 7);
    EXPECT_EQ(held->getRefCount(), 1) << "the group has given its reference back";
    held->releaseAndUnrefBufferAtPort();
}

TEST(portGroupTest, AResetMarkerMakesTheNextMatchMoveNoStamps)
{
    Stamps seen;
    auto* station = new OneInput(
        [&](OneInput&, cBufferT<double>* i_buffer) { seen << i_buffer->getStamp().getStamp(); });
    station->group.getQueue<0>().delay = 1;
    StationHarness harness(station);
    harness.feed("a", 1.0, 100);
    harness.runAll();
    harness.finish("a", cBufferStamp());
    EXPECT_EQ(station->group.getStamp(), cBufferStamp());
    EXPECT_EQ(station->group.getStampCount(harness.inport("a")), 0);
    harness.feed("a", 2.0, 10);
    harness.runAll();
    EXPECT_EQ(seen, (Stamps {100, 100}));
    EXPECT_EQ(harness.finished("out"), (Stamps {100, 10})) << "a marker is announced to nobody";
    EXPECT_EQ(harness.takeTrace(), QStringList());
}

TEST(portGroupTest, AMarkerDropsNothing)
{
    auto* station = new TwoInputs(sendSum);
    StationHarness harness(station);
    harness.send("a", 1.0, 10);
    harness.finish("a", cBufferStamp());
    EXPECT_EQ(station->group.getDataCount(harness.inport("a")), 1);
    EXPECT_EQ(harness.takeTrace(), QStringList());
}

TEST(portGroupTest, AMarkerBehindALateStampIsUsedUpAllTheSame)
{
    auto* station = new OneInput(sendValue);
    StationHarness harness(station);
    harness.feed("a", 1.0, 10); // under way: what follows only enters the list
    harness.finish("a", cBufferStamp());
    harness.finish("a", 30);
    harness.finish("a", 20);
    EXPECT_EQ(station->group.getStampCount(harness.inport("a")), 3);
    harness.runAll();
    EXPECT_EQ(station->group.getStampCount(harness.inport("a")), 0);
    EXPECT_EQ(harness.finished("out"), (Stamps {10, 20, 30}));
}

// --- the step ---

TEST(portGroupTest, StepsOfAllGroupsRunInTheOrderOfTheirStamps)
{
    class cTwoGroups : public cStation {
    public:
        cTwoGroups() : cStation(QStringLiteral("two")) {}
        QStringList calls;
        cPortGroup<double> first {this, [this] { calls << QStringLiteral("first"); }, QStringLiteral("a")};
        cPortGroup<double> second {this, [this] { calls << QStringLiteral("second"); }, QStringLiteral("b")};
    };
    auto* station = new cTwoGroups;
    StationHarness harness(station);
    harness.feed("a", 1.0, 20);
    harness.feed("b", 1.0, 10);
    harness.runAll();
    EXPECT_EQ(station->calls, (QStringList {QStringLiteral("second"), QStringLiteral("first")}));
}

TEST(portGroupTest, TheTimeOfAStepBeginsWithIt)
{
    constexpr qint64 spell = 20000000; // nanoseconds
    const auto work = [] {
        cThreadWatch watch;
        watch.start();
        while (watch.elapsed() < spell) {}
    };
    auto* station = new OneInput([&](OneInput&, cBufferT<double>* i_buffer) {
        if (i_buffer->getValue() > 0)
            work();
    });
    StationHarness harness(station);
    work();
    harness.feed("a", 0.0, 10);
    harness.runAll();
    EXPECT_LT(station->group.getExecutionTime(), spell);
    harness.feed("a", 1.0, 20);
    harness.runAll();
    EXPECT_GE(station->group.getExecutionTime(), spell);
}

TEST(portGroupTest, ADispatchTurnsDroppingOn)
{
    auto* station = new OneInput(sendValue);
    StationHarness harness(station);
    harness.feed("a", 1.0, 10);
    EXPECT_FALSE(station->group.enableDropping()) << "it is on already";
    station->group.reset();
    EXPECT_TRUE(station->group.enableDropping());
}

TEST(portGroupTest, StepsAreFoundByTheirArguments)
{
    class cManySteps : public cStation {
    public:
        cManySteps() : cStation(QStringLiteral("many")) {}
        QStringList calls;
        cPortGroup<double, int> indexed {this,
            [this](int i_index) { calls << QStringLiteral("index %1").arg(i_index); }, QStringLiteral("i1"),
            QStringLiteral("i2")};
        cPortGroup<double> plain {this, [this] { calls << QStringLiteral("plain"); }, QStringLiteral("p")};
        cPortGroup<int> buffer {this,
            [this](
                cBufferT<int>* i_buffer) { calls << QStringLiteral("buffer %1").arg(i_buffer->getValue()); },
            QStringLiteral("b")};
        cPortGroup<int> indexedBuffer {this,
            [this](int i_index, cBufferT<int>* i_buffer) {
                calls << QStringLiteral("index %1 buffer %2").arg(i_index).arg(i_buffer->getValue());
            },
            QStringLiteral("ib")};
        cPortGroup<int> member {this, &cManySteps::take, QStringLiteral("m")};

    private:
        void take(cBufferT<int>* i_buffer) { calls << QStringLiteral("member %1").arg(i_buffer->getValue()); }
    };
    auto* station = new cManySteps;
    station->indexed.getQueue<0>().index = 3;
    station->indexedBuffer.getQueue<0>().index = 4;
    StationHarness harness(station);
    harness.feed("i1", 0.5, 1);
    harness.feed("i2", 1, 1);
    harness.feed("p", 0.5, 2);
    harness.feed("b", 11, 3);
    harness.feed("ib", 12, 4);
    harness.feed("m", 13, 5);
    harness.runAll();
    EXPECT_EQ(station->calls,
        (QStringList {QStringLiteral("index 3"), QStringLiteral("plain"), QStringLiteral("buffer 11"),
            QStringLiteral("index 4 buffer 12"), QStringLiteral("member 13")}));
}

TEST(portGroupTest, TheHistoryOfTheFirstPortTellsHowAStepWent)
{
    StationHarness harness(new OneInput([](OneInput&, cBufferT<double>* i_buffer) {
        if (i_buffer->getValue() < 0)
            throw std::runtime_error("negative");
    }));
    harness.feed("a", 1.0, 10);
    harness.feed("a", -1.0, 20);
    harness.runAll();
    QList<int> types;
    for (const GraphHistoryEntry& entry : harness.inport("a")->getHistory())
        types << int(entry.type) * 100 + int(entry.stamp);
    EXPECT_EQ(types, (QList<int> {210, 220, 410, 510, 610, 420, 520}));
}

TEST(portGroupTest, AFateIsFoundForEachOutcomeOfAStep)
{
    StationHarness harness(new OneInput([](OneInput& io_station, cBufferT<double>* i_buffer) {
        switch (int(i_buffer->getValue())) {
        case 0:
            return sendValue(io_station, i_buffer);
        case 1:
            return cStepScope::noteRequest(false);
        case 2:
            return cStepScope::noteLost();
        case 3:
            return cStepScope::noteIgnored();
        default:
            throw std::runtime_error("failed");
        }
    }));
    for (int what : {0, 1, 1, 2, 3, 3, 3, 4})
        harness.send("a", double(what), what + 1);
    harness.finish("a", 5);
    harness.runAll();
    const cFates fates = harness.fates("a");
    EXPECT_EQ(fates.arrived, 8u);
    EXPECT_EQ(fates.used, 1u);
    EXPECT_EQ(fates.gated, 2u);
    EXPECT_EQ(fates.lost, 1u);
    EXPECT_EQ(fates.ignored, 3u);
    EXPECT_EQ(fates.failed, 1u);
    EXPECT_EQ(fates.getSum(), 8u);
}

TEST(portGroupTest, AFailureEndsTheMatchAndLeavesTheRestUnseen)
{
    StationHarness harness(new OneInput([](OneInput& io_station, cBufferT<double>* i_buffer) {
        if (i_buffer->getValue() < 0)
            throw std::runtime_error("negative");
        sendValue(io_station, i_buffer);
    }));
    for (double value : {1.0, -1.0, 2.0})
        harness.send("a", value, 10);
    harness.finish("a", 10);
    harness.runAll();
    EXPECT_EQ(harness.values<double>("out"), QVector<double> {1.0});
    const cFates fates = harness.fates("a");
    EXPECT_EQ(fates.used, 1u);
    EXPECT_EQ(fates.failed, 1u);
    EXPECT_EQ(fates.unseen, 1u);
    EXPECT_EQ(harness.finished("out"), Stamps {10});
}

TEST(portGroupTest, AnOutputWithoutReceiversGatesTheStep)
{
    StationHarness harness(new OneInput([](OneInput& io_station, cBufferT<double>* i_buffer) {
        if (io_station.out.requestsData())
            sendValue(io_station, i_buffer);
    }),
        {QStringLiteral("out")});
    harness.feed("a", 1.0, 10);
    harness.runAll();
    EXPECT_EQ(harness.fates("a").gated, 1u);
}

// --- failures ---

TEST(portGroupTest, AnExceptionIsReportedAndTheNextMatchRuns)
{
    auto* station = new OneInput([](OneInput& io_station, cBufferT<double>* i_buffer) {
        if (i_buffer->getValue() < 0)
            throw std::runtime_error("cSquareRootFunctor::operator (): negative");
        sendValue(io_station, i_buffer);
    });
    StationHarness harness(station);
    harness.feed("a", -1.0, 10);
    harness.feed("a", 2.0, 20);
    harness.runAll();
    ASSERT_EQ(harness.errors().size(), 1);
    const cError& error = harness.errors().first();
    EXPECT_EQ(int(error.getLevel()), 0);
    EXPECT_EQ(int(error.getState()), 6);
    EXPECT_EQ(error.getMessage(), QStringLiteral("cSquareRootFunctor::operator (): negative"));
    EXPECT_EQ(error.getPath(), QStringLiteral("probe"));
    EXPECT_EQ(harness.takeTrace(),
        QStringList {QStringLiteral("probe: cSquareRootFunctor::operator (): negative")});
    EXPECT_EQ(harness.values<double>("out"), QVector<double> {2.0});
    EXPECT_EQ(harness.finished("out"), (Stamps {10, 20}));
    EXPECT_EQ(harness.sender("a")->getHeldCount(), 0);
    EXPECT_EQ(station->group.getExecutionCount(), 1u) << "a failed step counts no time";
    EXPECT_FALSE(station->isDead());
}

TEST(portGroupTest, TheTextOfAnExceptionIsInTheLocalEncoding)
{
    QTextCodec* const before = QTextCodec::codecForLocale();
    QTextCodec::setCodecForLocale(QTextCodec::codecForName("UTF-8"));
    StationHarness harness(
        new OneInput([](OneInput&, cBufferT<double>*) { throw std::runtime_error("gr\xc3\xbcn"); }));
    harness.feed("a", 1.0, 10);
    harness.runAll();
    QTextCodec::setCodecForLocale(before);
    ASSERT_EQ(harness.errors().size(), 1);
    EXPECT_EQ(harness.errors().first().getMessage(), QString::fromUtf8("gr\xc3\xbcn"));
}

TEST(portGroupTest, AnExceptionWithoutATextIsUnknown)
{
    StationHarness harness(new OneInput([](OneInput&, cBufferT<double>*) { throw cNullException(); }));
    harness.feed("a", 1.0, 10);
    harness.runAll();
    ASSERT_EQ(harness.errors().size(), 1);
    EXPECT_EQ(harness.errors().first().getMessage(), QStringLiteral("Unknown exception"));
    EXPECT_EQ(int(harness.errors().first().getLevel()), 0);
}

TEST(portGroupTest, AStructuredExceptionIsASystemFault)
{
    auto* station = new OneInput(
        [](OneInput&, cBufferT<double>*) { throw SEHException(QStringLiteral("access violation")); });
    StationHarness harness(station);
    harness.feed("a", 1.0, 10);
    harness.feed("a", 1.0, 20);
    harness.runAll();
    ASSERT_EQ(harness.errors().size(), 2);
    EXPECT_EQ(harness.errors().first().getMessage(), QStringLiteral("access violation"));
    EXPECT_EQ(int(harness.errors().first().getLevel()), 1);
    EXPECT_FALSE(station->isDead());
}

TEST(portGroupTest, AfterAnUnknownExceptionNoStepOfTheStationStartsButTheFlowGoesOn)
{
    int calls = 0;
    auto* station = new OneInput([&](OneInput&, cBufferT<double>*) {
        ++calls;
        throw 1;
    });
    StationHarness harness(station);
    harness.send("a", 1.0, 10);
    harness.feed("a", 1.0, 10);
    harness.feed("a", 1.0, 20);
    harness.feed("a", 1.0, 30);
    harness.runAll();
    EXPECT_EQ(calls, 1);
    ASSERT_EQ(harness.errors().size(), 1);
    EXPECT_EQ(harness.errors().first().getMessage(), QString());
    EXPECT_EQ(int(harness.errors().first().getLevel()), 2);
    EXPECT_TRUE(station->isDead());
    EXPECT_FALSE(station->getInputMutex().tryLock()) << "the mutex stays locked";
    EXPECT_EQ(harness.finished("out"), (Stamps {10, 20, 30}));
    const cFates fates = harness.fates("a");
    EXPECT_EQ(fates.failed, 1u);
    EXPECT_EQ(fates.unseen, 1u);
    EXPECT_EQ(fates.discarded, 2u);
    EXPECT_EQ(fates.getSum(), fates.arrived);
    EXPECT_EQ(harness.sender("a")->getHeldCount(), 0);
}

// --- emptying ---

TEST(portGroupTest, ASenderThatGoesTakesItsBuffersBackAndEmptiesTheQueuesOfTheOthers)
{
    auto* station = new TwoInputs(sendSum);
    StationHarness harness(station);
    harness.feed("a", 1.0, 10);
    harness.send("b", 2.0, 10);
    station->group.removeSender(harness.sender("a"));
    for (const char* port : {"a", "b"}) {
        EXPECT_EQ(station->group.getDataCount(harness.inport(port)), 0);
        EXPECT_EQ(station->group.getStampCount(harness.inport(port)), 0);
        EXPECT_EQ(station->group.getOldestData(harness.inport(port)), cBufferStamp::s_invalid);
        EXPECT_EQ(harness.fates(port).discarded, 1u);
    }
    EXPECT_EQ(harness.sender("a")->getHeldCount(), 0);
    EXPECT_EQ(harness.sender("b")->getHeldCount(), 1) << "not released by this";
    EXPECT_EQ(harness.runAll(), 1);
    EXPECT_EQ(harness.sender("b")->getHeldCount(), 0) << "but the station's next job gives it back";
    EXPECT_EQ(harness.matches(), Stamps());
}

TEST(portGroupTest, AfterEmptyingASenderIsNoLongerIdle)
{
    for (const bool byReset : {true, false}) {
        auto* station = new TwoInputs(sendSum);
        station->group.getQueue<1>().required = false;
        StationHarness harness(station);
        harness.finish("b", 5, true);
        if (byReset)
            station->group.reset();
        else
            station->group.removeSender(nullptr);
        harness.feed("a", 7.0, 10);
        EXPECT_FALSE(harness.runStep());
        harness.finish("b", 10);
        EXPECT_TRUE(harness.runStep());
    }
}

TEST(portGroupTest, WithoutANameAllSendersGo)
{
    auto* station = new TwoInputs(sendSum);
    StationHarness harness(station);
    harness.feed("a", 1.0, 10);
    harness.send("b", 2.0, 10);
    station->group.removeSender(nullptr);
    EXPECT_EQ(harness.sender("a")->getHeldCount(), 0);
    EXPECT_EQ(harness.sender("b")->getHeldCount(), 0);
    EXPECT_EQ(harness.runAll(), 0);
}

TEST(portGroupTest, TheRemovalOfASenderKeepsTheStampsOfTheMatches)
{
    auto* station = new OneInput(sendValue);
    StationHarness harness(station);
    harness.feed("a", 1.0, 10);
    harness.runAll();
    station->group.removeSender(harness.sender("a"));
    EXPECT_EQ(station->group.getStamp().getStamp(), 10);
}

TEST(portGroupTest, AMatchThatLostItsBuffersBeforeItsStepSeesNone)
{
    bool seen = true;
    auto* station
        = new TwoInputs([&](TwoInputs& io_station) { seen = io_station.group.getBuffer<0>() != nullptr; });
    StationHarness harness(station);
    harness.feed("a", 1.0, 10);
    harness.feed("b", 1.0, 10);
    station->group.removeSender(nullptr);
    EXPECT_EQ(harness.runAll(), 1);
    EXPECT_FALSE(seen);
    EXPECT_EQ(harness.fates("a").discarded, 1u);
    EXPECT_EQ(harness.fates("a").used, 0u);
}

TEST(portGroupTest, WhatAStepIsReadingStaysWhileSendersGo)
{
    double seen = 0.0;
    int heldDuringStep = 0;
    StationHarness* playing = nullptr;
    auto* station = new TwoInputs([&](TwoInputs& io_station) {
        const double& value = io_station.group.getValue<0>();
        io_station.group.removeSender(playing->sender("a"));
        heldDuringStep = playing->sender("a")->getHeldCount();
        playing->send("a", 99.0, 10);
        seen = value + io_station.group.getValue<1>();
    });
    StationHarness harness(station);
    playing = &harness;
    harness.feed("a", 1.0, 10);
    harness.feed("b", 2.0, 10);
    harness.runStep();
    EXPECT_EQ(seen, 3.0);
    EXPECT_EQ(heldDuringStep, 1);
    EXPECT_EQ(harness.sender("a")->getHeldCount(), 1) << "what came meanwhile";
    EXPECT_EQ(harness.sender("b")->getHeldCount(), 1);
    EXPECT_EQ(harness.fates("b").used, 1u);
    harness.runAll();
    EXPECT_EQ(harness.sender("b")->getHeldCount(), 0);
}

TEST(portGroupTest, AResetMakesAWaitingMatchVoid)
{
    int calls = 0;
    auto* station = new TwoInputs([&](TwoInputs&) { ++calls; });
    StationHarness harness(station);
    harness.feed("a", 1.0, 10);
    harness.feed("b", 1.0, 10);
    station->group.reset();
    EXPECT_EQ(station->group.getStamp(), cBufferStamp());
    EXPECT_EQ(harness.sender("a")->getHeldCount(), 0);
    harness.runAll();
    EXPECT_EQ(calls, 0);
    EXPECT_EQ(harness.finished("out"), Stamps());
    EXPECT_EQ(harness.fates("a").discarded, 1u);

    harness.feed("a", 1.0, 5);
    harness.feed("b", 1.0, 5);
    EXPECT_EQ(harness.runAll(), 1);
    EXPECT_EQ(calls, 1);
}

TEST(portGroupTest, AResetDuringAStepTakesEffectAtItsEnd)
{
    auto* station = new OneInput([](OneInput& io_station, cBufferT<double>* i_buffer) {
        io_station.group.reset();
        EXPECT_EQ(io_station.group.getStamp().getStamp(), 10);
        sendValue(io_station, i_buffer);
    });
    StationHarness harness(station);
    harness.feed("a", 1.0, 10);
    harness.feed("a", 2.0, 20);
    EXPECT_EQ(harness.runAll(), 1);
    EXPECT_EQ(station->group.getStamp(), cBufferStamp());
    EXPECT_EQ(harness.values<double>("out"), QVector<double> {1.0});
    EXPECT_EQ(harness.fates("a").used, 1u);
    EXPECT_EQ(harness.fates("a").discarded, 1u);
}

TEST(portGroupTest, AGroupThatDiscardsEmptiesItsQueuesEvenDuringAMatch)
{
    auto* station = new OneInput(sendValue);
    StationHarness harness(station);
    harness.feed("a", 1.0, 10);
    station->group.setMode(cPortGroupBase::Discard);
    harness.feed("a", 2.0, 20);
    EXPECT_EQ(station->group.getDataCount(harness.inport("a")), 0);
    EXPECT_EQ(harness.takeTrace().size(), 1);
    EXPECT_EQ(harness.finished("out"), Stamps());
    EXPECT_EQ(station->group.getStamp().getStamp(), 10);
    harness.runAll();
    EXPECT_EQ(harness.values<double>("out"), QVector<double> {1.0});
    EXPECT_EQ(harness.finished("out"), Stamps {10}) << "of the match that was under way";
    EXPECT_EQ(harness.fates("a").used, 1u);
    EXPECT_EQ(harness.fates("a").discarded, 1u);
}

// --- queries ---

TEST(portGroupTest, PortsAreNamedFromTheLastToTheFirst)
{
    auto* station = new ProbeStation<double, int, QColor>;
    StationHarness harness(station);
    EXPECT_EQ(station->group.getPortNames(), QStringLiteral("c:b:a"));
    EXPECT_EQ(station->group.getPorts(),
        (QList<cIPortBase*> {harness.inport("a"), harness.inport("b"), harness.inport("c")}));
}

TEST(portGroupTest, QueuesAreDescribedByPort)
{
    auto* station = new TwoInputs(sendSum);
    StationHarness harness(station);
    cIPortBase* a = harness.inport("a");
    EXPECT_EQ(station->group.getOldestData(a), cBufferStamp::s_invalid);
    EXPECT_EQ(station->group.getNewestStamp(a), cBufferStamp::s_invalid);
    harness.send("a", 1.5, 10);
    harness.send("a", 2.5, 20);
    harness.finish("a", 10);
    harness.finish("a", 20);
    const auto contents = station->group.getQueueContents(a);
    ASSERT_EQ(contents.size(), 2);
    EXPECT_EQ(contents[0].first.getStamp(), 10);
    EXPECT_EQ(contents[0].second, QStringLiteral("1.5"));
    EXPECT_EQ(contents[1].second, QStringLiteral("2.5"));
    EXPECT_EQ(station->group.getDataCount(a), 2);
    EXPECT_EQ(station->group.getStampCount(a), 2);
    EXPECT_EQ(station->group.getOldestData(a), 10);
    EXPECT_EQ(station->group.getNewestData(a), 20);
    EXPECT_EQ(station->group.getOldestStamp(a), 10);
    EXPECT_EQ(station->group.getNewestStamp(a), 20);
    EXPECT_EQ(station->group.getQueueParams(a).name, QStringLiteral("a"));
}

TEST(portGroupTest, PortsAreFoundByTheirNames)
{
    auto* station = new TwoInputs(sendSum);
    StationHarness harness(station);
    harness.feed("b", 1.0, 10);
    cIPort<double> namesake(nullptr, QStringLiteral("b"));
    EXPECT_EQ(station->group.getDataCount(&namesake), 1);
    EXPECT_EQ(station->group.getOldestStamp(&namesake), 10);
    EXPECT_EQ(station->group.getQueueParams(&namesake).name, QStringLiteral("b"));
}

TEST(portGroupTest, AnUnknownPortHasNoQueue)
{
    auto* station = new TwoInputs(sendSum);
    StationHarness harness(station);
    cIPort<double> stranger(station, QStringLiteral("stranger"));
    for (cIPortBase* port : {static_cast<cIPortBase*>(&stranger), static_cast<cIPortBase*>(nullptr)}) {
        EXPECT_TRUE(station->group.getQueueContents(port).isEmpty());
        const cPortQueueParams& params = station->group.getQueueParams(port);
        EXPECT_EQ(params.name, QString());
        EXPECT_TRUE(params.required);
        EXPECT_EQ(params.index, -1);
        EXPECT_FALSE(params.master);
        EXPECT_EQ(params.delay, 0u);
        EXPECT_TRUE(params.reportDrops);
        EXPECT_EQ(params.options.getNumEntries(), 0u);
        EXPECT_EQ(station->group.getDataCount(port), -1);
        EXPECT_EQ(station->group.getStampCount(port), -1);
        EXPECT_EQ(station->group.getOldestData(port), cBufferStamp::s_invalid);
        EXPECT_EQ(station->group.getNewestData(port), cBufferStamp::s_invalid);
        EXPECT_EQ(station->group.getOldestStamp(port), cBufferStamp::s_invalid);
        EXPECT_EQ(station->group.getNewestStamp(port), cBufferStamp::s_invalid);
        EXPECT_EQ(station->group.getFates(port).arrived, 0u);
    }
}

TEST(portGroupTest, TheDelayIsAParameterOfThePort)
{
    auto* station = new TwoInputs(sendSum);
    StationHarness harness(station);
    cMapObj& params = harness.inport("b")->getParams();
    EXPECT_EQ(params.getKeys(), QStringList {QStringLiteral("delay")});
    EXPECT_TRUE(params.isEqual(&harness.inport("b")->getDefaultParams()));
    ASSERT_TRUE(params.getSubObject(QStringLiteral("delay"))->setValue(4u));
    EXPECT_EQ(station->group.getQueueParams(harness.inport("b")).delay, 4u);
    EXPECT_EQ(station->group.getQueueParams(harness.inport("a")).delay, 0u);
    unsigned int value = 99;
    ASSERT_TRUE(
        harness.inport("b")->getDefaultParams().getSubObject(QStringLiteral("delay"))->getValue(value));
    EXPECT_EQ(value, 0u) << "the default stays";
}

TEST(portGroupTest, FinishNoticesGoToTheRegisteredOutputs)
{
    class cTwoOutputs : public cStation {
    public:
        cTwoOutputs() : cStation(QStringLiteral("two")) {}
        cPortGroup<double> group {this, [] {}, QStringLiteral("a")};
        cOPort<double> first {this, QStringLiteral("first"), 5};
        cOPort<double> second {this, QStringLiteral("second"), 5};
    };
    auto* station = new cTwoOutputs;
    StationHarness harness(station);
    harness.feed("a", 1.0, 10);
    harness.runAll();
    EXPECT_EQ(harness.finished("first"), Stamps {10});
    EXPECT_EQ(harness.finished("second"), Stamps {10});
    station->group.registerOutPorts({&station->second});
    harness.feed("a", 1.0, 20);
    harness.runAll();
    EXPECT_EQ(harness.finished("first"), Stamps {10});
    EXPECT_EQ(harness.finished("second"), (Stamps {10, 20}));
}
