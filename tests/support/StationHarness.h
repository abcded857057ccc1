#pragma once

#include <QList>
#include <QString>
#include <QStringList>
#include <QVector>
#include <functional>
#include <map>
#include <memory>
#include <stdexcept>
#include <support/TraceLines.h>
#include <tarnbase/cError.h>
#include <tarnflow/cBufferT.h>
#include <tarnflow/cGraph.h>
#include <tarnflow/cOPort.h>
#include <tarnflow/cPortGroupBase.h>
#include <tarnflow/cStation.h>

/**
 * One station between senders and receivers that the test plays, run step by step on the test's own thread.
 *
 *     StationHarness harness(new cAddImagesStation());
 *     harness.feed("img1", first, 10);
 *     harness.feed("img2", second, 10);
 *     harness.runAll();
 *     EXPECT_EQ(harness.values<cImg>("img").at(0), sum);
 *
 * Every input has a sender of its own and every output a receiver, all linked in a graph. What the station
 * sends, announces, traces and reports is kept in order. Nothing sleeps: `runStep` runs one job of the
 * station's callback queue.
 */
class StationHarness {
public:
    struct Output {
        QString port;
        cBufferStamp stamp;
        QString text; ///< the value as an audit would show it
    };
    struct Finish {
        QString port;
        qint64 stamp;
        bool idle;
    };

    /** Takes the station over and starts it. @param i_unconnected inputs and outputs that get no link. */
    explicit StationHarness(cStation* i_station, const QStringList& i_unconnected = {});
    ~StationHarness();

    cStation& station() { return *m_station; }
    cGraph& graph() { return m_graph; }
    cIPortBase* inport(const char* i_name) const;
    cOPortBase* outport(const char* i_name) const;

    // --- feeding ---

    /** The first sender of an input; it exists whether it is linked or not. */
    cOPortBase* sender(const char* i_input) const;
    /** A further sender, linked with an input. */
    cOPortBase* addSender(const char* i_input);
    void connectInput(const char* i_input);
    void disconnectInput(const char* i_input);

    /** Sends a value without announcing its stamp. */
    template <class T> void send(const char* i_input, const T& i_value, cBufferStamp i_stamp)
    {
        send(sender(i_input), i_value, i_stamp);
    }
    template <class T> static void send(cOPortBase* i_sender, const T& i_value, cBufferStamp i_stamp)
    {
        auto* port = dynamic_cast<cOPort<T>*>(i_sender);
        if (!port)
            throw std::logic_error("the sender has another type");
        port->send(i_value, i_stamp);
    }
    void finish(const char* i_input, cBufferStamp i_stamp, bool i_idle = false);
    /** Sends a value and announces its stamp. */
    template <class T> void feed(const char* i_input, const T& i_value, cBufferStamp i_stamp)
    {
        send(i_input, i_value, i_stamp);
        finish(i_input, i_stamp);
    }

    // --- running ---

    /** Runs the first job of the callback queue; false if there is none. */
    bool runStep();
    /** Runs jobs until there is none; their number. */
    int runAll();

    // --- what came of it ---

    /** The stamps for which a process step has begun, group by group, in order. */
    QList<qint64> matches() const;
    /** Everything that was sent, in order. */
    const QList<Output>& outputs() const { return m_outputs; }
    /** The stamps of what was sent on an output. */
    QList<qint64> stamps(const char* i_output) const;
    /** The values that were sent on an output. */
    template <class T> QVector<T> values(const char* i_output) const
    {
        QVector<T> values;
        const auto found = m_received.find(QString::fromLatin1(i_output));
        if (found != m_received.end())
            for (const auto& buffer : found->second)
                values.append(dynamic_cast<const cBufferT<T>&>(*buffer).getValue());
        return values;
    }
    /** The finish notices on all outputs. */
    const QList<Finish>& finishes() const { return m_finishes; }
    /** The stamps that were announced on an output. */
    QList<qint64> finished(const char* i_output) const;
    /** The failures that the station's groups have reported. */
    const QList<cError>& errors() const { return m_errors; }
    /** The lines on the trace since the last call. */
    QStringList takeTrace() { return m_trace.take(); }
    cFates fates(const char* i_input) const;

    /** Forgets what has been recorded so far. */
    void clearRecords();

    /** Called with each finish notice as it comes. */
    std::function<void(const Finish&)> onFinish;

private:
    class Receiver;
    struct GiveBack {
        void operator()(cBuffer* i_buffer) const { i_buffer->releaseAndUnrefBufferAtPort(); }
    };

    void record(const QString& i_output, cBuffer* i_buffer);
    void note(const Finish& i_notice);
    void linkOrThrow(cOPortBase* i_from, cIPortBase* i_to);

    TraceLines m_trace;
    cGraph m_graph;
    cStation* m_station;
    cStation* m_feeder; ///< owns the senders
    cStation* m_collector; ///< owns the receivers
    std::map<QString, cOPortBase*> m_senders;
    int m_furtherSenders = 0;
    QList<Output> m_outputs;
    std::map<QString, std::vector<std::unique_ptr<cBuffer, GiveBack>>> m_received;
    QList<Finish> m_finishes;
    QList<cError> m_errors;
};
