#include "cFlow.h"

#include <chrono>

cGraph::EFlow cFlow::stateOf(quint64 i_word)
{
    constexpr quint64 mask = s_asleep - 1;
    const quint64 busy = i_word & mask;
    const quint64 asleep = (i_word >> 21) & mask;
    const quint64 asleepOutside = (i_word >> 42) & mask;
    if ((i_word & s_running) == 0)
        return cGraph::EFlow::Stopped;
    if (busy != asleep)
        return cGraph::EFlow::Running;
    return busy + asleepOutside > 0 ? cGraph::EFlow::Stalled : cGraph::EFlow::Drained;
}

void cFlow::change(quint64 i_difference)
{
    const quint64 word = m_word.fetch_add(i_difference) + i_difference;
    // A waiter enters itself before it looks at the word, so that one of the two sees the other.
    if (m_waiters.load() > 0 && stateOf(word) != cGraph::EFlow::Running) {
        const std::lock_guard lock(m_mutex);
        m_changed.notify_all();
    }
}

void cFlow::setRunning(bool i_running)
{
    if (i_running)
        m_word.fetch_or(s_running);
    else
        m_word.fetch_and(~s_running);
    const std::lock_guard lock(m_mutex);
    m_changed.notify_all();
}

cGraph::EFlow cFlow::waitWhileRunning(int i_milliseconds)
{
    cGraph::EFlow state = getState();
    const auto isSettled = [&] {
        state = getState();
        return state != cGraph::EFlow::Running;
    };
    m_waiters.fetch_add(1);
    {
        std::unique_lock lock(m_mutex);
        if (i_milliseconds < 0)
            m_changed.wait(lock, isSettled);
        else
            m_changed.wait_for(lock, std::chrono::milliseconds(i_milliseconds), isSettled);
    }
    m_waiters.fetch_sub(1);
    return state;
}
