#pragma once

#include <tarnbase/cMapObj.h>
#include <tarnbase/cRect.h>
#include <tarnbase/cTransform.h>
#include <tarnimg/cImgBuf.h>
#include <tarnimg/cImgType.h>

#include <QSharedPointer>
#include <QString>
#include <atomic>
#include <cstdint>
#include <memory>

struct cImgArea;

/**
 * The record behind one or several handles of class `cImg`; a part of it, of no use by itself.
 *
 * A record without a descriptor (its type could not be made) has no buffer either. A record with a descriptor
 * has a buffer, unless it is the void record or a copy of that.
 */
class cImgData {
public:
    /** The one record of all images without content. It is neither counted nor changed nor freed. */
    static cImgData* voidRecord();

    cImgData(cImgType::ImageTypes i_type, unsigned i_width, unsigned i_height, unsigned i_numChannels);
    cImgData(cImgType::ImageTypes i_type, unsigned i_width, unsigned i_height, unsigned i_xPitch,
        unsigned i_yPitch, unsigned char* i_data, const std::function<void(void*)>& i_deleter,
        unsigned i_numChannels);
    /** What a copy of a record does about the pixels. */
    enum EPixels {
        SharedPixels, ///< a view into those of the other record
        CopiedPixels, ///< compact copies
        NewPixels ///< compact memory of undefined content
    };
    /** All of another record, or the part of it within a rectangle that is not empty. */
    cImgData(const cImgData& i_other, EPixels i_pixels, const cRect<int>& i_rect = cRect<int>());
    ~cImgData();
    cImgData& operator=(const cImgData&) = delete;

    void ref() { m_refCount.fetch_add(1, std::memory_order_relaxed); }
    /** Whether the last reference has gone. */
    bool deref() { return m_refCount.fetch_sub(1, std::memory_order_acq_rel) == 1; }
    bool isShared() const { return m_refCount.load(std::memory_order_acquire) > 1; }

    void setType(cImgType* i_type);
    /** New pixels with undefined content. Throws std::bad_alloc, and then nothing has changed. */
    void replaceBuffer(unsigned i_width, unsigned i_height);
    /**
     * Copies what both areas have, by this record's pixel size; both lie within their images, and both
     * records have pixels.
     */
    void copyPixels(const cImgData& i_source, const cImgArea& i_from, const cImgArea& i_to);
    unsigned pixelSize() const { return m_type ? m_type->getPixelSize() : 0; }
    /** Bytes of the buffer from the view's first pixel on. */
    unsigned bytesFromStart() const { return m_buf ? m_buf->byteSize() - m_bufferOffset : 0; }
    unsigned char* pixel(unsigned i_x, unsigned i_y) const
    {
        return m_buf->m_data + m_bufferOffset + std::size_t(i_x) * m_buf->m_xPitch
            + std::size_t(i_y) * m_buf->m_yPitch;
    }

    std::atomic<std::int32_t> m_refCount {1};
    cImgType* m_type = nullptr; ///< What `m_typeOwner` holds; null if the type could not be made.
    QSharedPointer<cImgType> m_typeOwner;
    cImgBuf* m_buf = nullptr;
    cMapObj m_attributes;
    unsigned m_width = 0;
    unsigned m_height = 0;
    QString m_name;
    unsigned m_numFrames = 1;
    unsigned m_frameIndex = 0;
    unsigned m_bufferOffset = 0; ///< Bytes from the start of the buffer to pixel (0,0).
    bool m_notCompact = false;
    std::unique_ptr<const cTransform> m_transform;

private:
    struct VoidTag {};
    explicit cImgData(VoidTag);
};
