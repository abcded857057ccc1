#include <tarnflow/cPortHistoryBase.h>

#include <algorithm>
#include <tarnflow/cBuffer.h>
#include <tarnflow/cOPortBase.h>

const cPortHistoryBase::Buffers& cPortHistoryBase::getFirstEntry() const
{
    static const Buffers none;
    return m_length > 0 ? m_entries.front().buffers : none;
}

cBuffer* cPortHistoryBase::getFirstBuffer() const
{
    const Buffers& seen = getFirstEntry();
    return seen.empty() ? nullptr : seen.front();
}

quint64 cPortHistoryBase::getWaiting() const
{
    quint64 waiting = 0;
    for (std::size_t i = 0; i < m_length; ++i)
        if (!m_entries[i].accounted)
            waiting += m_entries[i].buffers.size();
    return waiting;
}

cPortHistoryBase::Buffers& cPortHistoryBase::append()
{
    if (m_length == m_entries.size())
        m_entries.emplace_back();
    return m_entries[m_length++].buffers;
}

void cPortHistoryBase::moveStamps(const cBufferStamp& i_difference)
{
    for (std::size_t i = 0; i < m_length; ++i) {
        for (cBuffer*& buffer : m_entries[i].buffers) {
            if (buffer->getRefCount() > 1) {
                cBuffer* const shared = buffer;
                cOPortBase* const parent = shared->getParentPort();
                if (!parent)
                    continue; // the sender is gone, so this is the last match that sees it
                buffer = parent->makePrivateCopy(shared);
                shared->releaseAndUnrefBufferAtPort();
            }
            buffer->setStamp(buffer->getStamp().movedBy(i_difference));
        }
    }
}

void cPortHistoryBase::account(const cFates& i_seen, quint64 cFates::*i_unseen, cFates& io_fates)
{
    if (m_length == 0 || m_entries.front().accounted)
        return;
    Entry& entry = m_entries.front();
    entry.accounted = true;
    if (entry.buffers.empty())
        return;
    io_fates += i_seen;
    io_fates.*i_unseen += entry.buffers.size() - i_seen.getSum();
}

void cPortHistoryBase::trim()
{
    if (m_length <= m_delay)
        return;
    Entry& oldest = m_entries.front();
    for (cBuffer* buffer : oldest.buffers)
        buffer->releaseAndUnrefBufferAtPort();
    oldest.buffers.clear();
    oldest.accounted = false;
    std::rotate(m_entries.begin(), m_entries.begin() + 1, m_entries.begin() + std::ptrdiff_t(m_length));
    --m_length;
}

void cPortHistoryBase::takeAll(Buffers& io_taken, cFates& io_fates)
{
    io_fates.discarded += getWaiting();
    for (std::size_t i = 0; i < m_length; ++i) {
        Entry& entry = m_entries[i];
        io_taken.insert(io_taken.end(), entry.buffers.begin(), entry.buffers.end());
        entry.buffers.clear();
        entry.accounted = false;
    }
    m_length = 0;
}
