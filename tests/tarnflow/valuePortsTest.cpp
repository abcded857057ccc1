#include "testStations.h"

#include <QColor>
#include <QPainterPath>
#include <gtest/gtest.h>
#include <support/TraceLines.h>
#include <tarnflow/cGraph.h>

namespace {
template <class T> QString textOf(const T& i_value)
{
    cBufferT<T> buffer(nullptr);
    buffer.setValue(i_value);
    return buffer.getAuditText();
}

struct Node : cStation {
    Node() : out(this, QStringLiteral("out"), 5) {}
    cOPort<double> out;
};
} // namespace

TEST(cValueText, WritesNumbersAsTheStreamDoes)
{
    EXPECT_EQ(textOf(1.5), "1.5"_q);
    EXPECT_EQ(textOf(0.25f), "0.25"_q);
    EXPECT_EQ(textOf(-7), "-7"_q);
}

TEST(cValueText, WritesColoursAndPoints)
{
    EXPECT_EQ(textOf(QColor(255, 128, 0)), "#ff8000"_q);
    EXPECT_EQ(textOf(c2DPoint<int>(3, -4)), "(3,-4)"_q);
    EXPECT_EQ(textOf(QVector<c2DPoint<int>> {{1, 2}, {3, 4}}), "(1,2), (3,4)"_q);
    EXPECT_EQ(textOf(QVector<c2DLine<float>> {{0, 1, 2, 3}, {4, 5, 6, 7}}), "(0,1)-(2,3), (4,5)-(6,7)"_q);
}

TEST(cValueText, SeparatesTheElementsOfVectors)
{
    EXPECT_EQ(textOf(QVector<int>()), ""_q);
    EXPECT_EQ(textOf(QVector<int> {1}), "1"_q);
    EXPECT_EQ(textOf(QVector<int> {1, 2, 3}), "1, 2, 3"_q);
    EXPECT_EQ(textOf(QVector<float> {0.5f, 2.0f}), "0.5, 2"_q);
    EXPECT_EQ(textOf(QVector<QVector<int>> {{1, 2}, {3}}), "1, 2, 3"_q);
}

TEST(cValueText, WritesAMatrixRowByRow)
{
    const float elements[] = {1, 2, 3, 4, 5, 6};
    EXPECT_EQ(textOf(cMatrix<float>(2, 3, elements)), "2, 3, 1, 2, 3, 4, 5, 6"_q);
    EXPECT_EQ(textOf(cMatrix<float>()), "0, 0"_q);
}

TEST(cValueText, WritesThePointsOfAPath)
{
    QPainterPath path;
    path.moveTo(1, 2);
    path.lineTo(3, 2);
    path.lineTo(3, 5);
    path.closeSubpath();
    EXPECT_EQ(textOf(path), "(1:2)(3:2)(3:5)(1:2)"_q);
}

TEST(cBufferT, HoldsADefaultValueAtFirst)
{
    cBufferT<c2DPoint<int>> buffer(nullptr);
    EXPECT_EQ(buffer.getValue(), c2DPoint<int>());
    EXPECT_EQ(buffer.getData(), &buffer.m_value);
    EXPECT_TRUE(buffer.getTypeInfo() == typeid(c2DPoint<int>));
    EXPECT_FALSE(buffer.getStamp().isValid());
    cBufferT<int> number(nullptr);
    EXPECT_EQ(number.getValue(), 0);
}

TEST(cIPort, TellsOfADirectCallback)
{
    cIPort<double> port;
    EXPECT_FALSE(port.hasDirectCallback());
    EXPECT_FALSE(port.takesBuffers());
    port.setDirectCallback([](cBufferT<double>*) {});
    EXPECT_TRUE(port.hasDirectCallback());
    EXPECT_TRUE(port.takesBuffers());
    EXPECT_TRUE(port.getTypeID() == typeid(double));
}

TEST(cIPort, WithoutACallbackTakesNothing)
{
    cGraph graph;
    auto& node = addTo(graph, "n", new Node());
    cIPort<double> port;
    port.setCollectHistory(true);
    ASSERT_TRUE(graph.link(&node.out, &port));
    for (int i = 0; i < 20; ++i)
        node.out.send(i, i);
    EXPECT_EQ(node.out.getHeldCount(), 0);
    EXPECT_EQ(port.getFates().arrived, 0u);
    ASSERT_EQ(port.getHistory().size(), 20);
    EXPECT_EQ(port.getHistory()[3].stamp, 3);
    EXPECT_EQ(port.getHistory()[3].type, GraphHistoryEntry::Arrived);
}

TEST(cIPort, TheDirectCallbackGoesFirstAndGivesBackAtOnce)
{
    cGraph graph;
    auto& node = addTo(graph, "n", new Node());
    cIPort<double> port;
    int listCalls = 0;
    std::vector<double> seen;
    port.setListCallback([&](const QList<cBufferT<double>*>&) { ++listCalls; });
    port.setDirectCallback([&](cBufferT<double>* buffer) {
        EXPECT_EQ(buffer->getRefCount(), 1);
        seen.push_back(buffer->getValue());
    });
    ASSERT_TRUE(graph.link(&node.out, &port));
    for (int i = 0; i < 20; ++i)
        node.out.send(i, i);
    EXPECT_EQ(listCalls, 0);
    EXPECT_EQ(seen.size(), 20u);
    EXPECT_EQ(node.out.getHeldCount(), 0);
    EXPECT_EQ(port.getFates().used, 20u);
    EXPECT_EQ(port.getFates().arrived, port.getFates().getSum());
}

TEST(cIPort, TheListCallbackTakesOverTheReferences)
{
    Node node;
    cIPort<double> port;
    QList<cBufferT<double>*> kept;
    int calls = 0;
    port.setListCallback([&](const QList<cBufferT<double>*>& buffers) {
        ++calls;
        kept += buffers;
    });
    QList<cBuffer*> sent;
    for (int i = 0; i < 3; ++i)
        sent.append(node.out.getFreeBuffer(false));
    port.receiveBuffer(sent, nullptr, true);
    EXPECT_EQ(calls, 1);
    ASSERT_EQ(kept.size(), 3);
    EXPECT_EQ(node.out.getHeldCount(), 3);
    for (cBuffer* buffer : kept)
        buffer->releaseAndUnrefBufferAtPort();
    EXPECT_EQ(node.out.getHeldCount(), 0);
}

namespace {
/** Takes even numbers only. */
class EvenPort : public cIPort<int> {
public:
    using cIPort<int>::cIPort;

protected:
    bool checkDynamicData(const int& i_value) override { return i_value % 2 == 0; }
};
} // namespace

TEST(cIPort, ReleasesWhatItRefusesAndCallsBackForTheRest)
{
    cStation node;
    cOPort<int> out(&node, "out"_q, 10);
    EvenPort port;
    std::vector<QList<cBufferT<int>*>> calls;
    port.setListCallback([&](const QList<cBufferT<int>*>& buffers) { calls.push_back(buffers); });
    QList<cBuffer*> sent;
    for (int i = 0; i < 5; ++i) {
        cBufferT<int>* buffer = out.getFreeBuffer(false);
        buffer->setValue(i);
        sent.append(buffer);
    }
    port.receiveBuffer(sent, nullptr, true);
    ASSERT_EQ(calls.size(), 1u);
    EXPECT_EQ(calls[0].size(), 3);
    EXPECT_EQ(out.getHeldCount(), 3);
    EXPECT_EQ(port.getFates().refused, 2u);
    port.receiveBuffer({sent[1]}, nullptr, true); // refused alone: no call at all
    EXPECT_EQ(calls.size(), 1u);
    for (cBuffer* buffer : calls[0])
        buffer->releaseAndUnrefBufferAtPort();
}

TEST(cIPort, AnExceptionOfADirectCallbackLosesNoBuffer)
{
    TraceLines trace;
    cGraph graph;
    auto& node = addTo(graph, "n", new Node());
    cIPort<double> bad;
    cIPort<double> good;
    int seen = 0;
    bad.setDirectCallback([](cBufferT<double>*) { throw 1; });
    good.setDirectCallback([&](cBufferT<double>*) { ++seen; });
    ASSERT_TRUE(graph.link(&node.out, &bad));
    ASSERT_TRUE(graph.link(&node.out, &good));
    for (int i = 0; i < 10; ++i)
        node.out.send(i, i);
    EXPECT_EQ(seen, 10);
    EXPECT_EQ(node.out.getHeldCount(), 0);
    EXPECT_EQ(trace.take().size(), 10);
}

TEST(cIPort, RecordsAuditsWhenItIsTold)
{
    cGraph graph;
    auto& node = addTo(graph, "n", new Node());
    cIPort<double> port;
    port.setDirectCallback([](cBufferT<double>*) {});
    ASSERT_TRUE(graph.link(&node.out, &port));
    node.out.send(1, 1);
    port.enableAudit(true);
    node.out.send(2.5, 2);
    const auto records = port.getAuditRecords();
    ASSERT_EQ(records.size(), 1);
    EXPECT_EQ(records[0].stamp, cBufferStamp(2));
    EXPECT_EQ(records[0].text, "2.5"_q);
    for (int i = 0; i < 300; ++i)
        node.out.send(i, i);
    EXPECT_EQ(port.getAuditRecords().size(), 256);
    EXPECT_EQ(port.getAuditRecords().first().text, "44"_q);
    EXPECT_EQ(port.getAuditRecords().last().text, "299"_q);
}

TEST(cIPort, AuditsWhatItsListCallbackGetsUnlessTheDeliveryIsNotToBeAudited)
{
    Node node;
    cIPort<double> port;
    port.setListCallback([](const QList<cBufferT<double>*>& buffers) {
        for (cBuffer* buffer : buffers)
            buffer->releaseAndUnrefBufferAtPort();
    });
    port.enableAudit(true);
    for (const bool audit : {false, true}) {
        cBufferT<double>* buffer = node.out.getFreeBuffer(false);
        buffer->setValue(audit ? 2.5 : 1.5);
        port.receiveBuffer({buffer}, nullptr, audit);
    }
    ASSERT_EQ(port.getAuditRecords().size(), 1);
    EXPECT_EQ(port.getAuditRecords().first().text, "2.5"_q);
}

TEST(cIPort, KeepsTheNewestEvents)
{
    cIPort<double> port;
    for (int i = 0; i < 1500; ++i)
        port.updateHistory(i, GraphHistoryEntry::HasMutex);
    const auto history = port.getHistory();
    ASSERT_EQ(history.size(), 1024);
    EXPECT_EQ(history.first().stamp, 1500 - 1024);
    EXPECT_EQ(history.last().stamp, 1499);
}

TEST(cOPort, SendsToEachReceiverOneReference)
{
    cGraph graph;
    auto& node = addTo(graph, "n", new Node());
    cIPort<double> first;
    cIPort<double> second;
    QList<cBufferT<double>*> kept;
    first.setListCallback([&](const QList<cBufferT<double>*>& buffers) {
        EXPECT_EQ(buffers.first()->getRefCount(), 2); // the other receiver's is there already
        kept += buffers;
    });
    second.setListCallback([&](const QList<cBufferT<double>*>& buffers) { kept += buffers; });
    ASSERT_TRUE(graph.link(&node.out, &first));
    ASSERT_TRUE(graph.link(&node.out, &second));
    node.out.send(4, 1);
    ASSERT_EQ(kept.size(), 2);
    EXPECT_EQ(kept[0], kept[1]);
    EXPECT_EQ(kept[0]->getRefCount(), 2);
    kept[0]->releaseAndUnrefBufferAtPort();
    EXPECT_EQ(node.out.getHeldCount(), 1);
    kept[0]->releaseAndUnrefBufferAtPort();
    EXPECT_EQ(node.out.getHeldCount(), 0);
}

TEST(cOPort, TellsItsObserverWithThePath)
{
    cGraph graph("g"_q);
    auto& node = addTo(graph, "n", new Node());
    QStringList told;
    EXPECT_FALSE(node.out.requestsData());
    node.out.setSendObserver([&](const double& value, const QString& path) {
        told.append(path + QLatin1Char('=') + QString::number(value));
    });
    EXPECT_TRUE(node.out.requestsData());
    node.out.send(1.5, 1);
    EXPECT_EQ(told, QStringList {"g/n.out=1.5"_q});
    node.out.setSendObserver({});
    EXPECT_FALSE(node.out.requestsData());
    node.out.send(2.5, 2);
    EXPECT_EQ(told.size(), 1);
    EXPECT_EQ(node.out.getFates().arrived, 2u);
}

TEST(cOPort, WithoutABufferLosesTheValueAndCountsIt)
{
    Node node;
    node.out.setStopped(true);
    QList<cBuffer*> held;
    while (cBuffer* buffer = node.out.getFreeBufferBase(false))
        held.append(buffer);
    int told = 0;
    node.out.setSendObserver([&](const double&, const QString&) { ++told; });
    node.out.send(1, 1);
    EXPECT_EQ(told, 0);
    EXPECT_EQ(node.out.getFates().lost, 1u);
    EXPECT_EQ(node.out.getFates().arrived, 0u);
    for (cBuffer* buffer : held)
        buffer->releaseAndUnrefBufferAtPort();
}

TEST(cOPort, AnnouncesStampsToAllReceivers)
{
    cGraph graph;
    auto& node = addTo(graph, "n", new Node());
    cIPort<double> first;
    cIPort<double> second;
    std::vector<std::pair<qint64, bool>> notices;
    const auto note
        = [&](const cBufferStamp& stamp, bool idle) { notices.emplace_back(stamp.getStamp(), idle); };
    first.m_finishCallback = note;
    second.m_finishCallback = note;
    ASSERT_TRUE(graph.link(&node.out, &first));
    ASSERT_TRUE(graph.link(&node.out, &second));
    node.out.sendFinish(5);
    node.out.sendIdle();
    EXPECT_EQ(notices, (std::vector<std::pair<qint64, bool>> {{5, false}, {5, false}, {5, true}, {5, true}}));
    node.out.sendFinish(cBufferStamp()); // a marker is no stamp that could be idle
    node.out.sendIdle();
    EXPECT_EQ(notices.back(), (std::pair<qint64, bool> {5, true}));
}
