#pragma once

#include <QMultiHash>
#include <QtGlobal>
#include <mutex>

class cImgBuf;

/**
 * The pixel memory that waits for the next image of its shape; one pool for the process.
 *
 * A graph allocates the same few frame sizes over and over. Parked buffers are found by their byte size,
 * width, height and pitches. Once about 1e9 bytes are parked nothing more is, and nothing is thrown out
 * either.
 *
 * All members may be called from any thread. Nothing is allocated, copied or freed under the lock.
 */
class cImgBufPool {
public:
    /** Never destroyed, so that images with static storage may outlive the library's own statics. */
    static cImgBufPool& instance();

    /** A parked buffer, or a new one. Throws std::bad_alloc. */
    cImgBuf* acquire(unsigned i_width, unsigned i_height, unsigned i_pixelSize);
    /** One record lets go of the buffer; the last one parks or deletes it. */
    void release(cImgBuf* i_buf);
    /** The same, but the buffer will never be parked, whoever is the last. */
    void abandon(cImgBuf* i_buf);
    /** Frees all that is parked. */
    void clear();
    /** Frees all that is parked and parks nothing from now on: the library is about to go. */
    void close();

private:
    cImgBuf* takeParked(unsigned i_width, unsigned i_height, unsigned i_pixelSize);
    /** The lock must be held. */
    bool isWorthParking(const cImgBuf& i_buf) const;

    std::mutex m_mutex; // guards all below, and cImgBuf::m_recyclable
    QMultiHash<unsigned, cImgBuf*> m_parked;
    quint64 m_parkedBytes = 0;
    bool m_closed = false;
};
