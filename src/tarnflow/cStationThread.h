#pragma once

#include <QtGlobal>
#include <atomic>
#include <condition_variable>
#include <functional>
#include <memory>
#include <mutex>
#include <thread>
#include <vector>

class cFlow;
class cPortGroupBase;
class cStation;

/**
 * The job queue of a station and the thread that works it off.
 *
 * The thread starts with the first job and sleeps while there is nothing to do. Jobs run one at a time, in
 * the order of their stamps; jobs of equal stamps in the order in which they came. Those of a dead station
 * run too: they only tidy up.
 */
class cStationThread {
public:
    explicit cStationThread(cStation& io_station) : m_station(io_station) {}
    /** Waits for the running job and ends the thread. */
    ~cStationThread();
    cStationThread(const cStationThread&) = delete;
    cStationThread& operator=(const cStationThread&) = delete;

    /** From now on jobs are taken; their work is counted in i_flow, which may be null. */
    void open(std::shared_ptr<cFlow> i_flow);
    /** From now on no jobs are taken. Those that are queued are dropped; a running one goes on. */
    void close();
    /** Waits for the end of the running job, unless the caller runs in it. */
    void waitUntilIdle();
    bool isOpen() const;

    void add(std::function<bool()>&& i_function, cPortGroupBase* i_group, qint64 i_stamp);
    /** Drops the group's jobs, and waits for the end of a running one. */
    void removeGroup(cPortGroupBase* i_group);

    void setManual(bool i_manual);
    bool isManual() const;
    /** Runs the first job on the caller's thread. */
    bool runNext();
    int getQueuedCount() const;

    bool isCurrentThread() const;
    /** Runs a function between two jobs: on the station's own thread if that exists and is another one. */
    void runInside(const std::function<void()>& i_function);

private:
    struct Job {
        qint64 stamp;
        quint64 number;
        cPortGroupBase* group;
        std::function<bool()> function;
    };
    static bool isLater(const Job& i_a, const Job& i_b);

    void run();
    // With m_mutex held; the lock is released while the job runs.
    void runFirst(std::unique_lock<std::mutex>& io_lock);
    void updateWork();
    void wakeThread();

    cStation& m_station;
    mutable std::mutex m_mutex; ///< guards everything below
    std::atomic<int> m_wake {0}; ///< counts wakings; the thread sleeps on it, without the mutex
    std::condition_variable m_jobEnded;
    std::vector<Job> m_jobs; ///< a heap, the first job on top
    std::thread m_thread;
    std::shared_ptr<cFlow> m_flow;
    const std::function<void()>* m_inside = nullptr;
    const cPortGroupBase* m_runningGroup = nullptr;
    quint64 m_nextNumber = 0;
    bool m_open = false;
    bool m_manual = false;
    bool m_quit = false;
    bool m_asleep = false;
    bool m_running = false;
    bool m_counted = false; ///< the station's work is counted in the flow
};
