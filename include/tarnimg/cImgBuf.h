#pragma once

#include <atomic>
#include <cstdint>
#include <functional>

/**
 * Pixel memory with a use count; a part of `cImg`, of no use by itself.
 *
 * Sizes are pixels, pitches bytes. The buffer holds y pitch * height bytes, which always fit 32 bits.
 */
class cImgBuf {
public:
    /** Own memory, not cleared. Throws std::bad_alloc if there is none or the size does not fit 32 bits. */
    cImgBuf(unsigned i_width, unsigned i_height, unsigned i_pixelSize);
    /** Memory of somebody else; an empty deleter leaves it to its owner. Throws std::bad_alloc as above. */
    cImgBuf(unsigned i_width, unsigned i_height, unsigned i_xPitch, unsigned i_yPitch, unsigned char* i_data,
        const std::function<void(void*)>& i_deleter);
    ~cImgBuf();
    cImgBuf(const cImgBuf&) = delete;
    cImgBuf& operator=(const cImgBuf&) = delete;

    unsigned byteSize() const { return m_yPitch * m_height; }

    unsigned m_width;
    unsigned m_height;
    unsigned char* m_data = nullptr;
    void* m_ownedData = nullptr; ///< What the deleter gets; null if nobody is to free the memory.
    std::function<void(void*)> m_deleter;
    unsigned m_xPitch;
    unsigned m_yPitch;
    bool m_recyclable; ///< May enter the pool. Guarded by the pool's mutex once the buffer is in use.
    std::atomic<std::int32_t> m_useCount {
        1}; ///< The records that point here; 1 for a buffer parked in the pool.
};
