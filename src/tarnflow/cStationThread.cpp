#include "cStationThread.h"

#include "cBufferPool.h"
#include "cFlow.h"

#include <tarnbase/cError.h>
#include <tarnflow/cStation.h>

#include <algorithm>

cStationThread::~cStationThread()
{
    {
        const std::lock_guard lock(m_mutex);
        m_quit = true;
        m_open = false;
        m_jobs.clear();
        updateWork();
    }
    wakeThread();
    if (m_thread.joinable())
        m_thread.join();
}

bool cStationThread::isLater(const Job& i_a, const Job& i_b)
{
    return i_a.stamp != i_b.stamp ? i_a.stamp > i_b.stamp : i_a.number > i_b.number;
}

void cStationThread::open(std::shared_ptr<cFlow> i_flow)
{
    const std::lock_guard lock(m_mutex);
    m_flow = std::move(i_flow);
    m_open = true;
}

void cStationThread::close()
{
    std::vector<Job> dropped; // what they hold is destroyed without the lock
    const std::lock_guard lock(m_mutex);
    m_open = false;
    dropped.swap(m_jobs);
    updateWork();
}

void cStationThread::waitUntilIdle()
{
    std::unique_lock lock(m_mutex);
    if (isCurrentThread())
        return;
    m_jobEnded.wait(lock, [this] { return !m_running; });
}

bool cStationThread::isOpen() const
{
    const std::lock_guard lock(m_mutex);
    return m_open;
}

void cStationThread::updateWork()
{
    const bool hasWork = m_running || !m_jobs.empty();
    if (hasWork == m_counted)
        return;
    m_counted = hasWork;
    if (!m_flow)
        return;
    if (hasWork)
        m_flow->beginWork();
    else
        m_flow->endWork();
}

void cStationThread::add(std::function<bool()>&& i_function, cPortGroupBase* i_group, qint64 i_stamp)
{
    {
        const std::lock_guard lock(m_mutex);
        if (!m_open)
            return;
        m_jobs.push_back({i_stamp, m_nextNumber++, i_group, std::move(i_function)});
        std::push_heap(m_jobs.begin(), m_jobs.end(), isLater);
        updateWork();
        if (m_manual)
            return;
        if (!m_thread.joinable()) {
            m_thread = std::thread([this] { run(); });
            return;
        }
        if (!m_asleep)
            return;
        m_asleep = false; // one waking is enough
    }
    wakeThread(); // without the lock, which is the first thing that the thread takes
}

void cStationThread::wakeThread()
{
    m_wake.fetch_add(1);
    m_wake.notify_one();
}

void cStationThread::removeGroup(cPortGroupBase* i_group)
{
    std::vector<Job> dropped;
    std::unique_lock lock(m_mutex);
    const auto kept = std::stable_partition(
        m_jobs.begin(), m_jobs.end(), [&](const Job& job) { return job.group != i_group; });
    std::move(kept, m_jobs.end(), std::back_inserter(dropped));
    m_jobs.erase(kept, m_jobs.end());
    std::make_heap(m_jobs.begin(), m_jobs.end(), isLater);
    updateWork();
    if (!isCurrentThread())
        m_jobEnded.wait(lock, [&] { return !m_running || m_runningGroup != i_group; });
}

void cStationThread::setManual(bool i_manual)
{
    const std::lock_guard lock(m_mutex);
    m_manual = i_manual;
}

bool cStationThread::isManual() const
{
    const std::lock_guard lock(m_mutex);
    return m_manual;
}

int cStationThread::getQueuedCount() const
{
    const std::lock_guard lock(m_mutex);
    return int(m_jobs.size());
}

bool cStationThread::runNext()
{
    std::unique_lock lock(m_mutex);
    if (m_jobs.empty())
        return false;
    runFirst(lock);
    return true;
}

void cStationThread::runFirst(std::unique_lock<std::mutex>& io_lock)
{
    std::pop_heap(m_jobs.begin(), m_jobs.end(), isLater);
    Job job = std::move(m_jobs.back());
    m_jobs.pop_back();
    m_running = true;
    m_runningGroup = job.group;
    cRunningJob running {&m_station, m_flow};
    io_lock.unlock();

    cRunningJob* const outer = cRunningJob::current();
    cRunningJob::current() = &running;
    try {
        job.function();
    } catch (...) {
        m_station.reportError(cError(cError::UnknownFault, cError::Processing,
            QStringLiteral("an exception escaped from a job"), m_station.getPathName()));
    }
    job.function = nullptr;
    cRunningJob::current() = outer;

    io_lock.lock();
    m_running = false;
    m_runningGroup = nullptr;
    updateWork();
    m_jobEnded.notify_all();
}

void cStationThread::run()
{
    std::unique_lock lock(m_mutex);
    for (;;) {
        while (!m_quit && m_jobs.empty() && !m_inside) {
            m_asleep = true;
            const int before = m_wake.load();
            lock.unlock();
            m_wake.wait(before);
            lock.lock();
            m_asleep = false;
        }
        if (m_inside) {
            (*m_inside)();
            m_inside = nullptr;
            m_jobEnded.notify_all();
        }
        if (m_quit)
            return;
        if (!m_jobs.empty())
            runFirst(lock);
    }
}

bool cStationThread::isCurrentThread() const
{
    const cRunningJob* job = cRunningJob::current();
    return job && job->station == &m_station;
}

void cStationThread::runInside(const std::function<void()>& i_function)
{
    std::unique_lock lock(m_mutex);
    if (!m_thread.joinable() || m_thread.get_id() == std::this_thread::get_id()) {
        i_function();
        return;
    }
    m_inside = &i_function;
    wakeThread();
    m_jobEnded.wait(lock, [this] { return m_inside == nullptr; });
}
