#include <tarnimg/cImg.h>

#include "cImgArea.h"
#include "cImgBufPool.h"

#include <tarnbase/c2DPoint.h>
#include <tarnbase/cTracer.h>
#include <tarnimg/cImageTypeFactory.h>
#include <tarnimg/cImgTypeUInt8.h>

#include <QFont>
#include <QImage>
#include <algorithm>
#include <cstring>
#include <limits>
#include <utility>

namespace {

/** Stands in for the descriptor of a type that could not be made. */
class cImgTypeInvalid : public cImgType {
public:
    cImgTypeInvalid() : cImgType(0, Invalid, cDblRange()) {}
    QString pixelToString(const unsigned char*, bool) const override { return {}; }
    QSize getPixelStringSize(const QFont&, bool) const override { return {}; }
    QImage makeDisplayImage(const cImg&) override { return {}; }
    void fill(cImg&, const QVariant&) const override {}
};

bool isVoid(const cImgData* i_data) { return i_data == cImgData::voidRecord(); }

void ref(cImgData* i_data)
{
    if (!isVoid(i_data))
        i_data->ref();
}

void deref(cImgData* i_data)
{
    if (!isVoid(i_data) && i_data->deref())
        delete i_data;
}

} // namespace

cImg::cImg() : m_data(cImgData::voidRecord()) {}

cImg::cImg(cImgType::ImageTypes i_type, unsigned i_width, unsigned i_height, unsigned i_numChannels)
    : m_data(new cImgData(i_type, i_width, i_height, i_numChannels))
{
}

cImg::cImg(cImgType::ImageTypes i_type, unsigned i_width, unsigned i_height, unsigned i_xPitch,
    unsigned i_yPitch, unsigned char* i_buffer, const std::function<void(void*)>& i_deleter,
    unsigned i_numChannels)
    : m_data(new cImgData(i_type, i_width, i_height, i_xPitch, i_yPitch, i_buffer, i_deleter, i_numChannels))
{
}

cImg::cImg(const cImg& i_other) : m_data(i_other.m_data) { ref(m_data); }

cImg::cImg(cImg&& io_other) noexcept : m_data(std::exchange(io_other.m_data, cImgData::voidRecord())) {}

cImg::cImg(const cImg& i_other, bool i_deepCopy, const cRect<int>& i_rect) : m_data(i_other.m_data)
{
    if (isVoid(m_data))
        return;
    if (!i_deepCopy && i_rect == cRect<int>())
        m_data->ref();
    else
        m_data = new cImgData(
            *i_other.m_data, i_deepCopy ? cImgData::CopiedPixels : cImgData::SharedPixels, i_rect);
}

cImg& cImg::operator=(const cImg& i_other) { return *this = cImg(i_other); }

cImg& cImg::operator=(cImg&& io_other) noexcept
{
    std::swap(m_data, io_other.m_data);
    return *this;
}

cImg::~cImg() { deref(m_data); }

void cImg::releaseUnusedMemory() { cImgBufPool::instance().clear(); }

cImg cImg::clone() const { return cImg(*this, true, cRect<int>()); }

cImg cImg::cloneWithoutPixels() const
{
    return isVoid(m_data) ? cImg() : cImg(new cImgData(*m_data, cImgData::NewPixels));
}

void cImg::detachShared() { deref(std::exchange(m_data, new cImgData(*m_data, cImgData::CopiedPixels))); }

void cImg::detachForWriting()
{
    if (!isVoid(m_data)) {
        detach();
        return;
    }
    // The settings of the void image's descriptor are everybody's, too.
    m_data = new cImgData(*m_data, cImgData::SharedPixels);
    m_data->setType(cImageTypeFactory::make<cImgTypeUInt8>(1));
}

const cImgType& cImg::invalidType()
{
    static const auto* s_type = new cImgTypeInvalid; // void images of static storage may ask very late
    return *s_type;
}

QSize cImg::getSize() const
{
    constexpr unsigned most = std::numeric_limits<int>::max();
    return {int(std::min(getWidth(), most)), int(std::min(getHeight(), most))};
}

cRect<int> cImg::getRect() const { return {0, 0, getSize().width(), getSize().height()}; }

bool cImg::isStructOf(const cImg& i_other) const
{
    if (!isValid() || !i_other.isValid())
        return isValid() == i_other.isValid();
    return getWidth() == i_other.getWidth() && getHeight() == i_other.getHeight()
        && getXPitch() == i_other.getXPitch() && getYPitch() == i_other.getYPitch();
}

bool cImg::checkTypes(const QList<cImgType::ImageTypes>& i_types) const
{
    return i_types.isEmpty() || i_types.contains(getImgType().getTypeId());
}

bool cImg::operator==(const cImg& i_other) const
{
    if (!isValid() || getImgType() != i_other.getImgType() || !isStructOf(i_other))
        return false;
    const unsigned bytes = std::min(m_data->bytesFromStart(), i_other.m_data->bytesFromStart());
    return std::memcmp(getConstData(), i_other.getConstData(), std::min(getFrameSize(), bytes)) == 0;
}

cImgType& cImg::imgType()
{
    if (isVoid(m_data))
        detachForWriting();
    return m_data->m_type ? *m_data->m_type : const_cast<cImgType&>(invalidType());
}

void cImg::setName(const QString& i_name)
{
    detachForWriting();
    m_data->m_name = i_name;
}

void cImg::setNumFrames(unsigned i_count)
{
    detachForWriting();
    m_data->m_numFrames = i_count;
}

void cImg::setFrameIndex(unsigned i_index)
{
    detachForWriting();
    m_data->m_frameIndex = i_index;
}

void cImg::setBufferOffset(unsigned i_bytes)
{
    detachForWriting();
    quint64 end = i_bytes;
    if (getWidth() && getHeight())
        end += quint64(getHeight() - 1) * getYPitch() + quint64(getWidth()) * getXPitch();
    if (end <= getFrameSize())
        m_data->m_bufferOffset = i_bytes;
    else
        cTracer::cerr << "The offset " << i_bytes << " would move pixels of " << getName()
                      << " out of their buffer." << cTracer::end();
}

void cImg::setTransform(const cTransform* i_transform)
{
    if (i_transform == getTransform())
        return; // also if that one belongs to a record that is shared and parted from below
    detachForWriting();
    m_data->m_transform.reset(i_transform);
}

void cImg::setRange(double i_low, double i_high) { setRange(cDblRange(i_low, i_high)); }

void cImg::setRange(const cDblRange& i_range)
{
    detachForWriting();
    if (m_data->m_type)
        m_data->m_type->setRange(i_range);
}

void cImg::setImgAttr(const QString& i_key, cObj* i_value)
{
    detachForWriting();
    m_data->m_attributes[i_key] = i_value;
}

const cObj* cImg::getImgAttr(const QString& i_key) const { return m_data->m_attributes.getSubObject(i_key); }

cObj* cImg::getImgAttr(const QString& i_key)
{
    detach();
    return m_data->m_attributes.getSubObject(i_key);
}

void cImg::copyImgAttr(const cImg& i_source)
{
    if (i_source.m_data == m_data)
        return;
    detachForWriting();
    const cImgData& source = *i_source.m_data;
    m_data->m_attributes.merge(source.m_attributes);
    m_data->m_name = source.m_name;
    m_data->m_frameIndex = source.m_frameIndex;
    m_data->m_numFrames = source.m_numFrames;
}

void cImg::resize(unsigned i_width, unsigned i_height)
{
    detachForWriting();
    if (i_width != getWidth() || i_height != getHeight())
        m_data->replaceBuffer(i_width, i_height);
}

void cImg::setImgType(cImgType::ImageTypes i_type)
{
    if (isKindOf(i_type)) {
        detach();
        m_data->setType(cImageTypeFactory::create(i_type, getNumChannels()));
    } else {
        *this = cImg(i_type, getWidth(), getHeight(), 1);
    }
}

void cImg::copyFrom(const cImg& i_source) { copyFrom(i_source, c2DPoint<int>()); }

void cImg::copyFrom(const cImg& i_source, const c2DPoint<int>& i_destPoint)
{
    copyArea(i_source, cImgArea::whole(i_source.getWidth(), i_source.getHeight()), i_destPoint);
}

void cImg::copyFrom(const cImg& i_source, const cRect<int>& i_sourceRect, const c2DPoint<int>& i_destPoint)
{
    copyArea(
        i_source, cImgArea::within(i_sourceRect, i_source.getWidth(), i_source.getHeight()), i_destPoint);
}

void cImg::copyArea(const cImg& i_source, const cImgArea& i_area, const c2DPoint<int>& i_destPoint)
{
    if (!isValid() || !i_source.isValid() || i_source.getImgType() != getImgType())
        return;
    detach();
    const qint64 left = i_destPoint.getX();
    const qint64 top = i_destPoint.getY();
    const auto room
        = cImgArea::within(left, top, left + getWidth(), top + getHeight(), getWidth(), getHeight());
    m_data->copyPixels(*i_source.m_data, i_area, room);
}
