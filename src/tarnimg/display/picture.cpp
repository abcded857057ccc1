#include "display/picture.h"

#include "cImgBufPool.h"

#include <tarnimg/cImg.h>
#include <tarnimg/cImgBuf.h>

#include <limits>
#include <new>

namespace display {

namespace {

constexpr unsigned s_wordBytes = 4; // the rows of a QImage begin at words

void giveBack(void* i_buf) { cImgBufPool::instance().release(static_cast<cImgBuf*>(i_buf)); }

/** Entry i is the opaque colour i * i_step. */
QVector<QRgb> ramp(QRgb i_step)
{
    QVector<QRgb> colours(256);
    for (int i = 0; i < colours.size(); ++i)
        colours[i] = 0xFF000000u | QRgb(i) * i_step;
    return colours;
}

} // namespace

QImage newPicture(const QSize& i_size, QImage::Format i_format)
{
    const quint64 bits = quint64(i_size.width()) * unsigned(QImage::toPixelFormat(i_format).bitsPerPixel());
    const quint64 words = (bits + 31) / 32;
    if (i_size.isEmpty() || words * s_wordBytes > quint64(std::numeric_limits<int>::max()))
        return {};
    try {
        cImgBuf* buf
            = cImgBufPool::instance().acquire(unsigned(words), unsigned(i_size.height()), s_wordBytes);
        QImage picture(
            buf->m_data, i_size.width(), i_size.height(), int(buf->m_yPitch), i_format, giveBack, buf);
        if (picture.isNull()) // then nobody will give the memory back
            giveBack(buf);
        return picture;
    } catch (const std::bad_alloc&) {
        return {};
    }
}

QImage newIndexedPicture(const QSize& i_size, const QVector<QRgb>& i_colours)
{
    QImage picture = newPicture(i_size, QImage::Format_Indexed8);
    picture.setColorTable(i_colours);
    return picture;
}

bool fitsIndexed(const cImg& i_image, const QImage& i_picture)
{
    return !i_picture.isNull() && i_picture.size() == i_image.getSize()
        && i_picture.format() == QImage::Format_Indexed8 && i_picture.colorCount() != 0;
}

const QVector<QRgb>& greyRamp()
{
    static const QVector<QRgb> s_ramp = ramp(0x010101);
    return s_ramp;
}

const QVector<QRgb>& redRamp()
{
    static const QVector<QRgb> s_ramp = ramp(0x010000);
    return s_ramp;
}

const QVector<QRgb>& greenRamp()
{
    static const QVector<QRgb> s_ramp = ramp(0x000100);
    return s_ramp;
}

const QVector<QRgb>& blueRamp()
{
    static const QVector<QRgb> s_ramp = ramp(0x000001);
    return s_ramp;
}

} // namespace display
