#pragma once

#include <QList>
#include <QMutex>
#include <QObject>
#include <QPair>
#include <QVarLengthArray>
#include <functional>
#include <tarnflow/cBufferStamp.h>
#include <tarnflow/cFates.h>
#include <tarnflow/cIPortQueueBase.h>
#include <tarnflow/cPortHistoryBase.h>
#include <tarnflow/cStation.h>
#include <tarnflow/cThreadWatch.h>

class cError;
class cIPortBase;
class cOPortBase;

/**
 * The meeting point of a station's inputs: what all groups have in common, whatever the types of their ports.
 *
 * Buffers wait in the queues of the inputs. A finish notice starts the search for a match: the candidate is
 * the largest of the oldest stamps that the inputs have announced, and once every input has finished up to
 * it, what has arrived up to it goes to the process step in one set; or, if a required input gave nothing, is
 * dropped, and the outputs announce the stamp. One match is under way at a time.
 *
 * Ports are named: those functions that take a port find its queue by the port's name.
 *
 * Threads: senders call in on their own threads; the step runs on the station's thread. The group mutex and
 * the station's input mutex are never held together by the group itself. Downstream groups are entered with
 * the group mutex held, in the direction of the flow only.
 */
class TARNFLOW_EXPORT cPortGroupBase : public QObject {
    Q_OBJECT
public:
    /** How the match loop treats what is complete. */
    enum EMode {
        Match = 0, ///< matched sets go to the process step
        Discard = 1 ///< the queues are emptied as fast as stamps arrive, and nobody is told; for a graph that
                    ///< runs dry
    };

    explicit cPortGroupBase(cStation* i_station);
    ~cPortGroupBase() override;

    /** The names of the ports joined by ":", the last port first. */
    virtual QString getPortNames() const;
    /**
     * Empties the queues when a sender has gone; stamps of matches stay. A null sender means all of them.
     *
     * Buffers of this sender go back at once. Those of other senders are taken from the lists too, but do not
     * go back here and now: the station's thread gives them back as its next job (a reset or the group's end
     * does so earlier), so that no pool runs dry. What a step under way is reading stays until that step has
     * ended.
     */
    virtual void removeSender(cOPortBase* i_sender);
    /**
     * Empties everything and forgets all stamps. A match that still waits in the callback queue is void; of a
     * step under way only the end is left.
     */
    virtual void reset();
    /** Stamp and text of each waiting buffer; empty for an unknown port. */
    virtual QList<QPair<cBufferStamp, QString>> getQueueContents(cIPortBase* i_port);
    /** A shared default record for an unknown port. */
    virtual const cPortQueueParams& getQueueParams(cIPortBase* i_port) const;
    /** The number of waiting buffers; -1 for an unknown port. */
    virtual int getDataCount(cIPortBase* i_port) const;
    /** The number of announced stamps; -1 for an unknown port. */
    virtual int getStampCount(cIPortBase* i_port) const;
    // Stamp values of the first and last waiting buffer and announced stamp, read without a lock; the invalid
    // value if there is none, or for an unknown port.
    virtual qint64 getOldestData(cIPortBase* i_port) const;
    virtual qint64 getNewestData(cIPortBase* i_port) const;
    virtual qint64 getOldestStamp(cIPortBase* i_port) const;
    virtual qint64 getNewestStamp(cIPortBase* i_port) const;
    /** First port first. */
    virtual QList<cIPortBase*> getPorts() const;

    /**
     * What became of the frames that arrived at a port; a consistent snapshot at any time. All zero for an
     * unknown port. What the port did not let through (refused, taken by a direct callback) is not known
     * here.
     */
    cFates getFates(const cIPortBase* i_port) const;

    /** Tells that the flow has begun to match, so that whatever is dropped from now on is a loss. @return
     * whether that is new */
    bool enableDropping();
    /** Adds the processor time of one step, nanoseconds. */
    void addExecutionTime(qint64 i_nanoseconds);
    qint64 getExecutionTime() const;
    quint64 getExecutionCount() const;
    /** Passes a failure to whoever listens. Never throws. */
    void emitException(const cError& i_error) noexcept;
    /** The stamp of the match that is under way; for the process step. */
    cBufferStamp getStamp() const { return m_currentStamp; }
    /** Replaces the list of outputs that get finish notices; at first it is all outputs of the station.
     * Before the start. */
    void registerOutPorts(const QList<cOPortBase*>& i_ports);
    QList<cOPortBase*> getOutPorts() const;

    cStation* getStation() const { return m_station; }
    void setMode(EMode i_mode) { m_mode = i_mode; }
    EMode getMode() const { return EMode(m_mode.load()); }

Q_SIGNALS:
    /** On the thread of the step that failed. */
    void exceptionRaised(const cError& i_error);

protected:
    /** Takes an input into use; first port first. */
    void addInput(
        cIPortBase& io_port, cIPortQueueBase& io_queue, cPortHistoryBase& io_history, const QString& i_name);
    /** Gives back every buffer. For the destructor of the class that owns the queues. */
    void releaseEverything();

    /** Runs the step for the match that is under way and counts what became of the buffers that it saw. */
    virtual void runStep(cFates& io_seen);
    /** Runs one call of the step with watch and fate. */
    void runWatched(cFates& io_seen, const std::function<void()>& i_call);
    /** Whether the step takes no buffer. */
    bool hasSetCallback() const { return m_callback || m_indexedCallback; }

    std::function<void()> m_callback;
    std::function<void(int)> m_indexedCallback; ///< gets the index of the first port's queue
    mutable QMutex m_groupMutex; ///< guards queues, histories and the state below

private:
    struct Input {
        cIPortQueueBase* queue;
        cPortHistoryBase* history;
    };
    enum class EState {
        Ready, ///< no match is on its way through the callback queue
        Scheduled,
        InStep ///< the step may be reading the histories
    };

    const Input* findInput(const cIPortBase* i_port) const;
    void receiveFinish(cIPortQueueBase& io_queue, const cBufferStamp& i_stamp, bool i_idle);

    // The match loop and its parts: with the group mutex held.
    void findMatch();
    bool findCandidate(cBufferStamp& o_candidate) const;
    void dispatch();
    /** Nothing waits here and nothing is to be expected: so it is behind the outputs too. */
    bool isExhausted() const;

    // Emptying, with the group mutex held: the buffers of a sender (null: of all) go back, the others are set
    // aside.
    void emptyQueues(const cOPortBase* i_sender);
    void emptyHistories(const cOPortBase* i_sender);
    void giveBackOrSetAside(cBuffer* i_buffer, const cOPortBase* i_sender);
    void giveBackSetAside(const cOPortBase* i_sender);
    void queueGiveBack(bool i_noneBefore);
    void applyPostponed();
    void forgetStamps();

    // The job in the callback queue, without a lock.
    bool runMatch(quint64 i_generation);
    bool beginStep(quint64 i_generation);
    bool isExhaustedNow() const;
    bool runLockedStep(cFates& io_seen);
    void readDelays(); ///< with the input mutex held
    void report(int i_level, const QString& i_message) noexcept;
    void endMatch(const cFates& i_seen, quint64 cFates::*i_unseen);

    void sendFinish(bool i_idle) const;
    void sendIdle() const;

    QMutex* const m_inputMutex; ///< the station's
    cStation* const m_station;
    QVarLengthArray<Input, 4> m_inputs;
    EState m_state = EState::Ready;
    quint64 m_generation = 0; ///< counts resets: a job of an earlier one is void
    cBufferStamp m_currentStamp;
    cBufferStamp m_previousStamp;
    std::atomic<int> m_mode {Match};
    cThreadWatch m_watch;
    std::vector<cBuffer*> m_setAside; ///< taken from the lists without a release
    std::vector<const cOPortBase*> m_postponedSenders; ///< removed while a step was reading the histories
    bool m_postponedReset = false;
    QList<cOPortBase*> m_outPorts;
    bool m_outPortsGiven = false;
    std::atomic<bool> m_dropping {false};
    std::atomic<qint64> m_executionTime {0};
    std::atomic<quint64> m_executions {0};
};
