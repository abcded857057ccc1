#include "cImgBufPool.h"

#include <tarnimg/cImgBuf.h>

#include <memory>

namespace {

constexpr quint64 s_limit = 1000000000;

/** Whether the caller was the last to use the buffer. */
bool dropUse(cImgBuf* i_buf) { return i_buf->m_useCount.fetch_sub(1, std::memory_order_acq_rel) == 1; }

} // namespace

cImgBufPool& cImgBufPool::instance()
{
    static auto* s_pool = new cImgBufPool;
    return *s_pool;
}

cImgBuf* cImgBufPool::acquire(unsigned i_width, unsigned i_height, unsigned i_pixelSize)
{
    if (cImgBuf* buf = takeParked(i_width, i_height, i_pixelSize))
        return buf;
    return new cImgBuf(i_width, i_height, i_pixelSize);
}

cImgBuf* cImgBufPool::takeParked(unsigned i_width, unsigned i_height, unsigned i_pixelSize)
{
    // A size beyond 32 bits wraps to the key of another one here, and then the pitches do not match.
    const unsigned key = i_width * i_height * i_pixelSize;
    const quint64 yPitch = quint64(i_width) * i_pixelSize;

    const std::lock_guard lock(m_mutex);
    for (auto it = m_parked.find(key); it != m_parked.end() && it.key() == key; ++it) {
        cImgBuf* buf = it.value();
        if (buf->m_width == i_width && buf->m_height == i_height && buf->m_yPitch == yPitch
            && buf->m_xPitch == i_pixelSize) {
            m_parked.erase(it);
            m_parkedBytes -= key;
            return buf;
        }
    }
    return nullptr;
}

bool cImgBufPool::isWorthParking(const cImgBuf& i_buf) const
{
    // Empty buffers would not count towards the limit.
    return i_buf.m_recyclable && i_buf.m_ownedData && i_buf.byteSize() != 0 && m_parkedBytes < s_limit
        && !m_closed;
}

void cImgBufPool::release(cImgBuf* i_buf)
{
    {
        const std::lock_guard lock(m_mutex);
        const bool lastUser = i_buf->m_useCount.load(std::memory_order_acquire) == 1;
        if (lastUser && isWorthParking(*i_buf)) {
            m_parked.insert(i_buf->byteSize(), i_buf);
            m_parkedBytes += i_buf->byteSize();
            return;
        }
        if (!dropUse(i_buf))
            return;
    }
    delete i_buf; // its deleter is a stranger's code and may well use images
}

void cImgBufPool::abandon(cImgBuf* i_buf)
{
    {
        const std::lock_guard lock(m_mutex);
        i_buf->m_recyclable = false;
        if (!dropUse(i_buf))
            return;
    }
    delete i_buf;
}

void cImgBufPool::clear()
{
    QMultiHash<unsigned, cImgBuf*> parked;
    {
        const std::lock_guard lock(m_mutex);
        parked.swap(m_parked);
        m_parkedBytes = 0;
    }
    qDeleteAll(parked);
}

void cImgBufPool::close()
{
    {
        const std::lock_guard lock(m_mutex);
        m_closed = true;
    }
    clear();
}
