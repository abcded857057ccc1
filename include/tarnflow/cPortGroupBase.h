#pragma once

#include <QList>
#include <QMutex>
#include <QObject>
#include <functional>
#include <tarnflow/cBufferStamp.h>
#include <tarnflow/cFates.h>
#include <tarnflow/cStation.h>
#include <tarnflow/cThreadWatch.h>

class cError;
class cIPortBase;
class cMapObj;
class cOPortBase;
struct cPortQueueParams;

/**
 * The meeting point of a station's inputs: what all groups have in common, whatever the types of their ports.
 *
 * Lock order: the group mutex and the station's input mutex are never held together.
 */
class TARNFLOW_EXPORT cPortGroupBase : public QObject {
    Q_OBJECT
public:
    /** How the match loop treats what is complete. */
    enum EMode {
        Match = 0, ///< matched sets go to the process step
        Discard = 1 ///< the queues are emptied as fast as stamps arrive; used while a graph runs dry
    };

    explicit cPortGroupBase(cStation* i_station);
    ~cPortGroupBase() override;

    virtual QString getPortNames() const = 0;
    virtual void removeSender(cOPortBase* i_sender) = 0;
    virtual void reset() = 0;
    virtual QList<QPair<cBufferStamp, QString>> getQueueContents(cIPortBase* i_port) = 0;
    virtual const cPortQueueParams& getQueueParams(cIPortBase* i_port) const = 0;
    virtual int getDataCount(cIPortBase* i_port) const = 0;
    virtual int getStampCount(cIPortBase* i_port) const = 0;
    virtual qint64 getOldestData(cIPortBase* i_port) const = 0;
    virtual qint64 getNewestData(cIPortBase* i_port) const = 0;
    virtual qint64 getOldestStamp(cIPortBase* i_port) const = 0;
    virtual qint64 getNewestStamp(cIPortBase* i_port) const = 0;
    virtual QList<cIPortBase*> getPorts() const = 0;
    /** What became of the frames that arrived at a port; a consistent snapshot. */
    virtual cFates getFates(const cIPortBase* i_port) const = 0;

    bool enableDropping();
    void addExecutionTime(qint64 i_nanoseconds);
    qint64 getExecutionTime() const;
    quint64 getExecutionCount() const;
    /** Passes a failure to the station's graph, which reports it. Never throws. */
    void emitException(const cError& i_error);
    /** The stamp of the match that is under way. */
    cBufferStamp getStamp() const;
    /** Replaces the list of outputs that get finish notices; at first it is all outputs of the station. */
    void registerOutPorts(const QList<cOPortBase*>& i_ports);
    QList<cOPortBase*> getOutPorts() const;

    cStation* getStation() const { return m_station; }
    void setMode(EMode i_mode) { m_mode = i_mode; }

Q_SIGNALS:
    /** On the thread of the step that failed. */
    void exceptionRaised(const cError& i_error);

protected:
    std::function<void()> m_callback;
    std::function<void(int)> m_indexedCallback;
    mutable QMutex m_groupMutex; ///< guards queues, history and the state below
    QMutex* m_inputMutex; ///< the station's
    cStation* m_station;
    bool m_ready = true; ///< no match is on its way through the callback queue
    cBufferStamp m_currentStamp;
    cBufferStamp m_previousStamp;
    std::atomic<int> m_mode{Match};
    cThreadWatch m_watch;

private:
    QList<cOPortBase*> m_outPorts;
    bool m_outPortsGiven = false;
    std::atomic<qint64> m_executionTime{0};
    std::atomic<quint64> m_executions{0};
};
