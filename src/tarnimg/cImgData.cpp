#include <tarnimg/cImgData.h>

#include "cImgArea.h"
#include "cImgBufPool.h"

#include <tarnbase/cTracer.h>
#include <tarnimg/cImageTypeFactory.h>
#include <tarnimg/cImgTypeUInt8.h>

#include <algorithm>
#include <cstring>
#include <new>
#include <stdexcept>

namespace {

void report(const std::bad_alloc& i_error)
{
    cTracer::cerr << i_error.what() << ": while creating cImg" << cTracer::end();
}

/** Copies the pixels of a view to a compact buffer of the view's size. */
void copyCompact(const cImgBuf& i_from, unsigned i_offset, cImgBuf& o_to)
{
    const std::size_t rowBytes = o_to.m_yPitch;
    const unsigned char* from = i_from.m_data + i_offset;
    unsigned char* to = o_to.m_data;
    if (i_from.m_xPitch != o_to.m_xPitch) { // memory from outside with gaps between its pixels
        for (unsigned y = 0; y < o_to.m_height; ++y)
            for (unsigned x = 0; x < o_to.m_width; ++x)
                std::memcpy(to + y * rowBytes + std::size_t(x) * o_to.m_xPitch,
                    from + std::size_t(y) * i_from.m_yPitch + std::size_t(x) * i_from.m_xPitch,
                    o_to.m_xPitch);
    } else if (i_from.byteSize() == o_to.byteSize()) {
        std::memcpy(to, from, o_to.byteSize());
    } else {
        for (unsigned y = 0; y < o_to.m_height; ++y)
            std::memcpy(to + y * rowBytes, from + std::size_t(y) * i_from.m_yPitch, rowBytes);
    }
}

} // namespace

cImgData* cImgData::voidRecord()
{
    // Never destroyed: images with static storage point here until the very end of the process.
    static auto* s_void = new cImgData(VoidTag {});
    return s_void;
}

cImgData::cImgData(VoidTag) : m_name(QStringLiteral("Unnamed")), m_numFrames(0)
{
    // Not by the registry, which may still be empty when somebody's static image is made.
    setType(cImageTypeFactory::make<cImgTypeUInt8>(1));
}

cImgData::cImgData(cImgType::ImageTypes i_type, unsigned i_width, unsigned i_height, unsigned i_numChannels)
try : m_width(i_width), m_height(i_height) {
    setType(cImageTypeFactory::create(i_type, i_numChannels));
    if (m_type)
        m_buf = cImgBufPool::instance().acquire(i_width, i_height, m_type->getPixelSize());
    else if (i_type != cImgType::Invalid)
        cTracer::cerr << "ERROR: could not find image type." << cTracer::end();
} catch (const std::bad_alloc& error) {
    report(error);
}

cImgData::cImgData(cImgType::ImageTypes i_type, unsigned i_width, unsigned i_height, unsigned i_xPitch,
    unsigned i_yPitch, unsigned char* i_data, const std::function<void(void*)>& i_deleter,
    unsigned i_numChannels)
try : m_width(i_width), m_height(i_height) {
    setType(cImageTypeFactory::create(i_type, i_numChannels));
    if (!i_data)
        throw std::runtime_error("An image must not have an empty image buffer!");
    if (!m_type)
        throw std::runtime_error("Could not find image type.");
    // Pixels never overlap, so that rows of whole pixels lie within the memory.
    const unsigned xPitch = std::max(i_xPitch, m_type->getPixelSize());
    m_buf = new cImgBuf(i_width, i_height, xPitch, i_yPitch, i_data, i_deleter);
} catch (const std::bad_alloc& error) {
    report(error);
}

cImgData::cImgData(const cImgData& i_other, EPixels i_pixels, const cRect<int>& i_rect)
try : m_type(i_other.m_type), m_typeOwner(i_other.m_typeOwner), m_attributes(i_other.m_attributes),
    m_width(i_other.m_width), m_height(i_other.m_height), m_name(i_other.m_name),
    m_numFrames(i_other.m_numFrames), m_frameIndex(i_other.m_frameIndex),
    m_bufferOffset(i_other.m_bufferOffset), m_notCompact(i_other.m_notCompact) {
    if (i_other.m_transform)
        m_transform.reset(i_other.m_transform->clone());
    cImgBuf* buf = i_other.m_buf;
    if (!i_rect.isEmpty()) {
        const auto area = cImgArea::within(i_rect, m_width, m_height);
        if (buf)
            m_bufferOffset += unsigned(area.top) * buf->m_yPitch + unsigned(area.left) * buf->m_xPitch;
        m_width = unsigned(area.width);
        m_height = unsigned(area.height);
        m_notCompact = m_notCompact || i_pixels == SharedPixels;
    }
    if (!buf)
        return;
    if (i_pixels == SharedPixels) {
        buf->m_useCount.fetch_add(1, std::memory_order_relaxed);
        m_buf = buf;
        return;
    }
    m_buf = cImgBufPool::instance().acquire(m_width, m_height, pixelSize());
    if (i_pixels == CopiedPixels)
        copyCompact(*buf, m_bufferOffset, *m_buf);
    m_bufferOffset = 0;
} catch (const std::bad_alloc& error) {
    report(error);
}

cImgData::~cImgData()
{
    if (m_buf)
        cImgBufPool::instance().release(m_buf);
}

void cImgData::setType(cImgType* i_type)
{
    m_typeOwner.reset(i_type);
    m_type = i_type;
}

void cImgData::replaceBuffer(unsigned i_width, unsigned i_height)
{
    cImgBuf* buf = nullptr;
    try {
        if (m_type)
            buf = cImgBufPool::instance().acquire(i_width, i_height, pixelSize());
    } catch (const std::bad_alloc& error) {
        report(error);
        throw;
    }
    if (m_buf)
        cImgBufPool::instance().abandon(m_buf);
    m_buf = buf;
    m_width = i_width;
    m_height = i_height;
    m_bufferOffset = 0;
    m_notCompact = false;
}

void cImgData::copyPixels(const cImgData& i_source, const cImgArea& i_from, const cImgArea& i_to)
{
    const qint64 columns = std::min(i_from.width, i_to.width);
    const qint64 rows = std::min(i_from.height, i_to.height);
    const unsigned char* from = i_source.pixel(unsigned(i_from.left), unsigned(i_from.top));
    unsigned char* to = pixel(unsigned(i_to.left), unsigned(i_to.top));
    const unsigned char* sourceEnd = i_source.m_buf->m_data + i_source.m_buf->byteSize();

    // With gaps between pixels (memory from outside) each pixel is a block of its own, otherwise each row is.
    const std::size_t pixelBytes = pixelSize();
    const std::size_t sourcePixelBytes = i_source.pixelSize();
    const bool gaps = m_buf->m_xPitch != pixelBytes || i_source.m_buf->m_xPitch != sourcePixelBytes;
    const qint64 blocks = gaps ? columns : 1;
    const std::size_t blockBytes
        = gaps ? std::min(pixelBytes, sourcePixelBytes) : pixelBytes * std::size_t(columns);
    const bool backwards
        = std::less<const unsigned char*>()(from, to); // both may be views of the same pixels

    for (qint64 i = 0; i < rows; ++i) {
        const qint64 y = backwards ? rows - 1 - i : i;
        for (qint64 k = 0; k < blocks; ++k) {
            const qint64 x = backwards ? blocks - 1 - k : k;
            const unsigned char* block = from + y * i_source.m_buf->m_yPitch + x * i_source.m_buf->m_xPitch;
            // A source of fewer channels ends before the last row of this image's pixels is full.
            const auto left = std::size_t(sourceEnd - block);
            std::memmove(to + y * m_buf->m_yPitch + x * m_buf->m_xPitch, block, std::min(blockBytes, left));
        }
    }
}
