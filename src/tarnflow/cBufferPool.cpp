#include "cBufferPool.h"

#include "cFlow.h"

#include <tarnflow/cBuffer.h>
#include <tarnflow/cOPortBase.h>

struct cBufferPool::Sleeper {
    std::atomic<int> awake {0}; ///< the last thing that is written on waking: then the sleeper may be gone
    cBuffer* buffer = nullptr; ///< handed over on waking; null means: look again
    const cStation* station = nullptr;
    cFlow* flow = nullptr;
    cFlow::EThread thread = cFlow::EThread::Outside;
};

cRunningJob*& cRunningJob::current()
{
    thread_local cRunningJob* s_current = nullptr;
    return s_current;
}

cBuffer* cBufferPool::take(int i_limit, bool i_wait)
{
    std::shared_ptr<cFlow> portFlow;
    bool flowKnown = cRunningJob::current() != nullptr;
    std::unique_lock lock(m_mutex);
    m_limit = i_limit;
    for (;;) {
        if (!m_free.empty()) {
            cBuffer* buffer = m_free.back();
            m_free.pop_back();
            buffer->m_refCount.store(1, std::memory_order_relaxed);
            return buffer;
        }
        if (m_count < room()) {
            ++m_count;
            lock.unlock();
            return create(true);
        }
        if (!i_wait || m_stopped || room() == 0)
            return nullptr;
        if (!flowKnown) {
            // The way from a node to its flow takes the mutex of the links, under which pools are asked for
            // their counts.
            lock.unlock();
            portFlow = flowOf(m_port->getNode());
            flowKnown = true;
            lock.lock();
            continue;
        }
        if (cBuffer* buffer = sleep(lock, portFlow))
            return buffer;
        lock.lock();
    }
}

cBuffer* cBufferPool::sleep(std::unique_lock<std::mutex>& io_lock, const std::shared_ptr<cFlow>& i_portFlow)
{
    Sleeper self;
    if (const cRunningJob* job = cRunningJob::current()) {
        self.station = job->station;
        self.flow = job->flow.get();
        self.thread = cFlow::EThread::Station;
    } else {
        self.flow = i_portFlow.get();
    }
    m_sleepers.push_back(&self);
    if (self.flow)
        self.flow->fallAsleep(self.thread);
    io_lock.unlock();
    self.awake.wait(0);
    return self.buffer;
}

std::atomic<int>* cBufferPool::wake(Sleeper& io_sleeper, cBuffer* i_buffer)
{
    if (io_sleeper.flow)
        io_sleeper.flow->wakeUp(io_sleeper.thread);
    io_sleeper.buffer = i_buffer;
    std::atomic<int>* const awake = &io_sleeper.awake;
    awake->store(1);
    return awake;
}

void cBufferPool::wakeAll()
{
    for (Sleeper* sleeper : m_sleepers)
        wake(*sleeper, nullptr)->notify_one();
    m_sleepers.clear();
}

cBuffer* cBufferPool::create(bool i_pooled)
{
    cBuffer* buffer = nullptr;
    try {
        buffer = m_port->createBuffer();
        buffer->m_refCount.store(1, std::memory_order_relaxed);
        buffer->m_pooled = i_pooled;
        const std::lock_guard lock(m_mutex);
        enter(buffer);
        return buffer;
    } catch (...) {
        delete buffer;
        if (i_pooled) {
            const std::lock_guard lock(m_mutex);
            --m_count;
        }
        throw;
    }
}

cBuffer* cBufferPool::takePrivate() { return create(false); }

void cBufferPool::enter(cBuffer* i_buffer)
{
    m_all.push_back(i_buffer);
    i_buffer->m_place = m_all.size() - 1;
    if (m_free.capacity() < m_all.size())
        m_free.reserve(m_all.capacity());
}

void cBufferPool::strike(cBuffer* i_buffer)
{
    if (i_buffer->m_place == cBuffer::s_nowhere)
        return;
    cBuffer* last = m_all.back();
    m_all[i_buffer->m_place] = last;
    last->m_place = i_buffer->m_place;
    m_all.pop_back();
    i_buffer->m_place = cBuffer::s_nowhere;
}

void cBufferPool::giveBack(cBuffer* i_buffer)
{
    {
        std::unique_lock lock(m_mutex);
        const bool pooled = i_buffer->m_pooled && !m_closed;
        if (pooled && !m_sleepers.empty() && m_count <= room()) {
            Sleeper* sleeper = m_sleepers.front();
            m_sleepers.erase(m_sleepers.begin());
            i_buffer->m_refCount.store(1, std::memory_order_relaxed);
            std::atomic<int>* const awake = wake(*sleeper, i_buffer);
            lock.unlock();
            awake->notify_one(); // an address for the system, no more: the sleeper may have left already
            return;
        }
        if (pooled && m_count <= room()) {
            m_free.push_back(i_buffer); // has room: `enter` saw to it
            return;
        }
        if (i_buffer->m_pooled)
            --m_count;
        strike(i_buffer);
    }
    delete i_buffer;
}

void cBufferPool::setExtraRoom(int i_buffers)
{
    const std::lock_guard lock(m_mutex);
    if (i_buffers > m_extraRoom)
        wakeAll();
    m_extraRoom = i_buffers;
}

int cBufferPool::getExtraRoom() const
{
    const std::lock_guard lock(m_mutex);
    return m_extraRoom;
}

void cBufferPool::setStopped(bool i_stopped)
{
    const std::lock_guard lock(m_mutex);
    m_stopped = i_stopped;
    if (i_stopped)
        wakeAll();
}

int cBufferPool::getBufferCount() const
{
    const std::lock_guard lock(m_mutex);
    return m_count;
}

int cBufferPool::getHeldCount() const
{
    const std::lock_guard lock(m_mutex);
    return m_count - int(m_free.size());
}

bool cBufferPool::hasSleepers() const
{
    const std::lock_guard lock(m_mutex);
    return !m_sleepers.empty();
}

QList<const cStation*> cBufferPool::getSleepers() const
{
    const std::lock_guard lock(m_mutex);
    QList<const cStation*> stations;
    for (const Sleeper* sleeper : m_sleepers)
        stations.append(sleeper->station);
    return stations;
}

void cBufferPool::close()
{
    std::vector<cBuffer*> unused;
    {
        const std::lock_guard lock(m_mutex);
        m_closed = true;
        m_stopped = true;
        wakeAll();
        unused.swap(m_free);
        m_count -= int(unused.size());
        for (cBuffer* buffer : unused)
            strike(buffer);
        for (cBuffer* buffer : m_all)
            buffer->m_parent.store(nullptr, std::memory_order_release);
    }
    for (cBuffer* buffer : unused)
        delete buffer;
}
