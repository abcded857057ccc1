#include <tarnflow/cBuffer.h>

#include "cBufferPool.h"

#include <tarnflow/cOPortBase.h>

cBuffer::cBuffer(cOPortBase* i_parent)
    : m_parent(i_parent),
      m_pool(i_parent ? i_parent->m_pool : nullptr),
      m_asList({this})
{
}

cBuffer::~cBuffer() = default;

cBufferStamp cBuffer::getStamp() const
{
    return {m_stamp.load(std::memory_order_relaxed), m_time.load(std::memory_order_relaxed)};
}

void cBuffer::setStamp(const cBufferStamp& i_stamp)
{
    m_stamp.store(i_stamp.getStamp(), std::memory_order_relaxed);
    m_time.store(i_stamp.getTime(), std::memory_order_relaxed);
}

bool cBuffer::ref()
{
    m_refCount.fetch_add(1, std::memory_order_relaxed);
    return true;
}

void cBuffer::releaseAndUnrefBufferAtPort()
{
    const int before = m_refCount.fetch_sub(1, std::memory_order_acq_rel);
    Q_ASSERT(before > 0);
    if (before != 1)
        return;
    recycled();
    if (m_pool)
        m_pool->giveBack(this);
    else
        delete this;
}

void cBuffer::audit(cPortBase* i_port, const cBufferStamp& i_stamp, const QString& i_text)
{
    i_port->addAuditRecord(i_stamp, i_text);
}
