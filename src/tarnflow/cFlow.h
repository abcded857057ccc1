#pragma once

#include <QtGlobal>
#include <atomic>
#include <condition_variable>
#include <functional>
#include <memory>
#include <mutex>
#include <tarnflow/cGraph.h>

/**
 * How far the data of an outermost graph has got.
 *
 * Counts the stations that have a job queued or running, and the threads that sleep for a buffer. A delivery
 * is synchronous, so a job queues its successors before it ends: the first count reaches zero exactly when
 * nothing is left to do. Whoever gives a sleeper its buffer takes it off the second count, so that a sleeper
 * that is about to wake counts as awake.
 *
 * All counts stand in one atomic word, and so belong together whenever they are read.
 */
class cFlow {
public:
    enum class EThread { Station, Outside };

    void setRunning(bool i_running);
    bool isRunning() const { return (m_word.load() & s_running) != 0; }
    /** A station that had nothing to do got its first job. */
    void beginWork() { change(s_busy); }
    /** A station has done its last job. */
    void endWork() { change(quint64(0) - s_busy); }
    void fallAsleep(EThread i_thread) { change(unit(i_thread)); }
    void wakeUp(EThread i_thread) { change(quint64(0) - unit(i_thread)); }

    cGraph::EFlow getState() const { return stateOf(m_word.load()); }
    /** Sleeps while the flow runs; at most so many milliseconds, -1: no limit. */
    cGraph::EFlow waitWhileRunning(int i_milliseconds);

private:
    // Three counts of 21 bits, and the highest bit.
    static constexpr quint64 s_busy = 1;
    static constexpr quint64 s_asleep = quint64(1) << 21;
    static constexpr quint64 s_asleepOutside = quint64(1) << 42;
    static constexpr quint64 s_running = quint64(1) << 63;

    static constexpr quint64 unit(EThread i_thread)
    {
        return i_thread == EThread::Station ? s_asleep : s_asleepOutside;
    }
    static cGraph::EFlow stateOf(quint64 i_word);
    void change(quint64 i_difference);

    std::atomic<quint64> m_word {0};
    std::atomic<int> m_waiters {0};
    std::mutex m_mutex; ///< with m_changed: for the threads in waitWhileRunning
    std::condition_variable m_changed;
};

/** The flow of the outermost graph around a node; null without a graph. */
std::shared_ptr<cFlow> flowOf(const cDfpNode* i_node);
