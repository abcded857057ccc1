#pragma once

#include "hostStations.h"

#include <QList>
#include <QMutex>
#include <QString>
#include <atomic>
#include <functional>
#include <tarnflow/cFates.h>

class cConsole;
class cError;
class cGraph;
class cProgress;
class cSaveStation;

/** How a command ended, as its process tells it. */
enum class EExit { Good = 0, SomeFailed = 1, BadUsage = 2, Stalled = 3, Died = 4, Interrupted = 130 };

/** What a user chose for a run. */
struct cRunOptions {
    bool stopOnError = false; ///< sources end at the first failure; what is in flight is finished
    bool stats = false; ///< the table and the times of the stations in any case
    bool quiet = false; ///< nothing but failures
    bool verbose = false; ///< failures as they happen
};

/**
 * Runs a graph to its end and tells how it went: progress, the failures, what became of the frames.
 *
 * A failure stays with its frame. The run ends when every frame is done, when it was interrupted, when
 * nothing can move any more or when a station died.
 */
class cRunner {
public:
    cRunner(cGraph& io_graph, const cRunOptions& i_options, cConsole& io_console);
    ~cRunner();

    /** @param i_interrupts how often the user has asked to stop so far: once drains, twice stops. Asked
     * often. */
    EExit run(const std::function<int()>& i_interrupts);

private:
    struct Failure {
        QString node;
        QString frame; ///< file and number of the frame; may be empty
        QString message;
        QString toString() const;
    };

    EExit watch(const std::function<int()>& i_interrupts, cProgress& io_progress);
    /** On the thread of the station that failed. */
    void noteFailure(const cError& i_error);
    QString frameOf(const cError& i_error) const;
    int countFailures() const;
    void report(qint64 i_milliseconds, const QList<cPortFates>& i_fates);
    /** What ports that refused frames would have taken. */
    void reportRefused(const QList<cPortFates>& i_fates);
    /** Parameters whose values acted as others, on images that cannot hold them. */
    void reportCutParams();
    void reportTimes();
    bool isSomethingLost(const QList<cPortFates>& i_fates) const;
    qint64 getDone() const;
    qint64 getTotal() const;

    cGraph& m_graph;
    const cRunOptions m_options;
    cConsole& m_console;
    QList<cFrameSource*> m_sources;
    QList<cSaveStation*> m_sinks;
    bool m_printing = false; ///< values come to the terminal: they take the place of the progress

    mutable QMutex m_mutex; ///< guards the two that follow
    QList<Failure> m_failures;
    QString m_dead; ///< path of the first station that died
};
