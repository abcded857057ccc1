#pragma once

#include <QMutex>
#include <functional>
#include <memory>
#include <tarnflow/cDfpNode.h>
#include <tarnflow/cGraphError.h>
#include <tarnflow/cStationInfo.h>

class QWidget;
class cError;
class cPortGroupBase;
class cStation;
class cStationThread;

/** Makes a new station. */
using cStationFactory = cStation* (*)();

/**
 * A node that computes: ports, parameters, and one processing thread that exists from the first job on and
 * sleeps while there is nothing to do.
 */
class TARNFLOW_EXPORT cStation : public cDfpNode {
    Q_OBJECT
public:
    cStation();
    explicit cStation(const QString& i_name);
    ~cStation() override;

    /** Enters a factory under an identifier; false if the identifier is taken or the factory is null. */
    static bool registercStation(const QString& i_id, cStationFactory i_factory);
    static bool registercStation(const QString& i_id, cStationFactory i_factory, const cStationInfo& i_info);
    /** All identifiers, sorted. */
    static QStringList getIdentifiers();
    /** The identifiers that equal the text or end in "/" + text. More than one means the text is ambiguous.
     */
    static QStringList resolveIdentifier(const QString& i_text);
    /** A new station, or null for an unknown identifier. The caller owns it. */
    static cStation* create(const QString& i_id);
    /** What was registered with the identifier; empty for an unknown one. */
    static cStationInfo getInfo(const QString& i_id);

    /** The identifier it was created by; empty for a station that was constructed directly. */
    QString getIdentifier() const;

    /** Held around each process step, and by whoever writes a parameter while the graph runs. */
    QMutex& getInputMutex() { return m_inputMutex; }

    /**
     * Queues a job for the processing thread, in the order of the stamps (jobs of equal stamps stay in their
     * order). Returns at once, and is called with the group's mutex held. Jobs queued while the station is
     * stopped are dropped.
     */
    void add2CallbackQueue(std::function<bool()>&& i_function, cPortGroupBase* i_group, qint64 i_stamp);

    bool isStation() const override;
    void setEnabled(bool i_enabled) override;
    virtual QWidget* getView() const;
    virtual void enableChanged(bool i_enabled);

    void start(StartReasons i_reason) override;
    void stop() override;

    /**
     * True after an exception that is no std::exception ended a step: the input mutex stays locked, so no
     * further step of this station can start until the next start.
     */
    bool isDead() const;
    /** Called in that case, on the thread that holds the input mutex. The graph is told. */
    void markDead();
    /** Tells the graphs around the station of a failure. Never throws; listeners run on the caller's thread.
     */
    void reportError(const cError& i_error);

    /**
     * Keeps what the graph does wrong with the station, in contrast to a frame that failed: a type of data
     * that a port does not take, a parameter's value that the data cannot hold. It would meet each frame of
     * its kind. The place is a port or parameter of the station, or empty for the station itself; the first
     * misfit of each place since the start is kept. Any thread.
     */
    void noteMisfit(const cGraphError& i_misfit);
    /** With their whole places, in the order in which they were met. Any thread. */
    QList<cGraphError> getMisfits() const;

    /**
     * With true there is no processing thread: jobs stay queued until `runNextJob` is called. For a host (or
     * a test) that steps through the flow by itself; only while the station is stopped.
     */
    void setManual(bool i_manual);
    bool isManual() const;
    /** Runs the first queued job on the caller's thread; false if there is none. */
    bool runNextJob();
    /** Jobs that are queued, without the one that is running. */
    int getQueuedJobCount() const;

    /** The groups that were built on this station, in order of construction. */
    QList<cPortGroupBase*> getPortGroups() const;
    void addPortGroup(cPortGroupBase* i_group);
    void removePortGroup(cPortGroupBase* i_group);

private:
    friend class cGraph;
    /** The first half of a stop: drops the queued jobs and wakes whoever sleeps for a buffer of this station.
     */
    void halt();
    /** Unlocks the input mutex of a dead station. */
    void revive();

    QMutex m_inputMutex;
    QString m_identifier;
    QList<cPortGroupBase*> m_groups;
    mutable QMutex m_misfitMutex;
    QList<cGraphError> m_misfits; ///< guarded by m_misfitMutex; places as they were given
    std::atomic<bool> m_dead {false};
    const std::unique_ptr<cStationThread> m_thread;
};
