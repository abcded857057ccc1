#include <tarnimg/cImgBuf.h>

#include "pixelMemory.h"

#include <tarnbase/cTracer.h>

#include <algorithm>
#include <cstddef>
#include <limits>
#include <new>

namespace {

unsigned checked32(quint64 i_bytes)
{
    if (i_bytes > std::numeric_limits<unsigned>::max())
        throw std::bad_alloc();
    return unsigned(i_bytes);
}

/** Grows with the pixel in an odd way, on which callers rely; never less than vector code likes. */
std::size_t alignmentFor(unsigned i_pixelSize)
{
    constexpr std::size_t cacheLine = 64;
    return std::max(cacheLine, std::size_t(1) << ((i_pixelSize - 1) % 32));
}

} // namespace

cImgBuf::cImgBuf(unsigned i_width, unsigned i_height, unsigned i_pixelSize)
    : m_width(i_width),
      m_height(i_height),
      m_xPitch(std::max(i_pixelSize, 1u)),
      m_yPitch(checked32(quint64(m_xPitch) * i_width)),
      m_recyclable(true)
{
    const unsigned bytes = checked32(quint64(m_yPitch) * i_height);
    if (bytes == 0)
        cTracer::cerr << "Warning: cImgBuf allocation with size=0, please check memory allocation."
                      << cTracer::end();
    m_ownedData = allocatePixels(std::max(bytes, 1u), alignmentFor(m_xPitch), m_deleter);
    m_data = static_cast<unsigned char*>(m_ownedData);
}

cImgBuf::cImgBuf(unsigned i_width, unsigned i_height, unsigned i_xPitch, unsigned i_yPitch,
    unsigned char* i_data, const std::function<void(void*)>& i_deleter)
    : m_width(i_width),
      m_height(i_height),
      m_data(i_data),
      m_deleter(i_deleter),
      m_xPitch(std::max(i_xPitch, 1u)),
      m_yPitch(std::max(i_yPitch, checked32(quint64(m_xPitch) * i_width))),
      m_recyclable(false)
{
    checked32(quint64(m_yPitch) * i_height);
    if (m_deleter)
        m_ownedData = i_data;
}

cImgBuf::~cImgBuf()
{
    if (m_ownedData && m_deleter)
        m_deleter(m_ownedData);
}
