#pragma once

#include <QList>
#include <atomic>
#include <memory>
#include <mutex>
#include <vector>

class cBuffer;
class cFlow;
class cOPortBase;
class cStation;

/**
 * The buffers of one output port. It lives as long as the port or any buffer of it.
 *
 * A buffer that comes back while threads sleep is handed to the one that has slept longest; nobody else
 * wakes.
 */
class cBufferPool {
public:
    explicit cBufferPool(cOPortBase* i_port) : m_port(i_port) {}
    cBufferPool(const cBufferPool&) = delete;
    cBufferPool& operator=(const cBufferPool&) = delete;

    /** A buffer with one reference, or null; i_limit is the port's limit just now. */
    cBuffer* take(int i_limit, bool i_wait);
    /** A buffer beside the pool with one reference; it dies with its last holder. */
    cBuffer* takePrivate();
    /** From whoever gave up the last reference. */
    void giveBack(cBuffer* i_buffer);

    void setExtraRoom(int i_buffers);
    int getExtraRoom() const;
    void setStopped(bool i_stopped);
    int getBufferCount() const;
    int getHeldCount() const;
    bool hasSleepers() const;
    /** The stations whose threads sleep here; null for a thread of somebody else. */
    QList<const cStation*> getSleepers() const;
    /** The port goes: buffers with holders die with their last holder. */
    void close();

private:
    struct Sleeper;

    qint64 room() const { return m_limit > 0 ? qint64(m_limit) + m_extraRoom : 0; }
    cBuffer* create(bool i_pooled);
    void enter(cBuffer* i_buffer);
    void strike(cBuffer* i_buffer);
    /** Gives up the lock for good. */
    cBuffer* sleep(std::unique_lock<std::mutex>& io_lock, const std::shared_ptr<cFlow>& i_portFlow);
    void wakeAll();
    /** Gives a sleeper its buffer. @return what is to be notified, then or later. */
    static std::atomic<int>* wake(Sleeper& io_sleeper, cBuffer* i_buffer);

    cOPortBase* const m_port;
    mutable std::mutex m_mutex; ///< guards everything below
    std::vector<cBuffer*> m_all; ///< each buffer knows its place in here
    std::vector<cBuffer*> m_free;
    std::vector<Sleeper*> m_sleepers; ///< in the order in which they fell asleep
    int m_limit = 0;
    int m_extraRoom = 0;
    int m_count = 0; ///< of the pool, made or being made
    bool m_stopped = false;
    bool m_closed = false;
};

/** What runs on the calling thread, while a station's thread runs a job. */
struct cRunningJob {
    const cStation* station = nullptr;
    std::shared_ptr<cFlow> flow; ///< null for a station without a graph

    /** Null on a thread that runs no job. */
    static cRunningJob*& current();
};
