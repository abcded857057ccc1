#include "cJpegBmpFormat.h"

#include "fileBytes.h"

#include <QBuffer>
#include <QImage>
#include <QImageReader>
#include <QImageWriter>
#include <QSize>
#include <QVector>
#include <QtEndian>
#include <algorithm>
#include <cstdlib>
#include <limits>

namespace {

using host::raise;

constexpr int s_jpegQuality = 95;

/** A `QImage` on the pixels of an image, which must outlive it. Nothing is copied. */
QImage wrap(const cImg& i_image)
{
    const bool grey = i_image.isKindOf(cImgType::UInt8);
    QImage image(i_image.getConstData(), int(i_image.getWidth()), int(i_image.getHeight()),
        int(i_image.getYPitch()), grey ? QImage::Format_Indexed8 : QImage::Format_RGB888);
    if (grey) {
        QVector<QRgb> ramp(256);
        for (int i = 0; i < 256; ++i)
            ramp[i] = qRgb(i, i, i);
        image.setColorTable(ramp);
    }
    return image;
}

quint64 pixelsOf(const QSize& i_size) { return quint64(i_size.width()) * quint64(i_size.height()); }

} // namespace

cQImageFormat::cQImageFormat(
    const QString& i_name, const QString& i_filter, const QByteArray& i_format, int i_quality)
    : cFileFormat(i_name, i_filter, Read | Write),
      m_format(i_format),
      m_quality(i_quality)
{
}

bool cQImageFormat::canHold(cImgType::ImageTypes i_type, unsigned i_channels) const
{
    return i_type == cImgType::RGB24 || (i_type == cImgType::UInt8 && i_channels == 1);
}

cImg cQImageFormat::decode(const unsigned char* i_data, std::size_t i_size) const
{
    if (i_size > std::size_t(std::numeric_limits<int>::max()))
        raise(QStringLiteral("the file is too large"));
    QByteArray bytes = QByteArray::fromRawData(reinterpret_cast<const char*>(i_data), int(i_size));
    QBuffer buffer(&bytes);
    QImageReader reader(&buffer, m_format);
    reader.setAutoDetectImageFormat(false);
    reader.setAutoTransform(false);
    const QSize size = reader.size();
    if (!size.isValid() || size.isEmpty())
        raise(QStringLiteral("%1: damaged, or not of this format").arg(getName()));
    // QImage keeps colour in four bytes while it decodes.
    checkSize(quint64(size.width()), quint64(size.height()), 4);
    checkBytes(i_data, i_size, size);
    QImage image;
    if (!reader.read(&image))
        raise(QStringLiteral("%1: %2").arg(getName(), reader.errorString()));
    if (image.depth() <= 8 && image.allGray())
        image = image.convertToFormat(QImage::Format_Grayscale8);
    else if (!image.hasAlphaChannel())
        image = image.convertToFormat(QImage::Format_RGB888);
    return cImg::fromQImage(image);
}

void cQImageFormat::encode(const cImg& i_image, QIODevice& io_device) const
{
    if (i_image.getWidth() > unsigned(std::numeric_limits<int>::max())
        || i_image.getHeight() > unsigned(std::numeric_limits<int>::max()))
        raise(QStringLiteral("%1: a side is too long").arg(getName()));
    QImageWriter writer(&io_device, m_format);
    if (m_quality >= 0)
        writer.setQuality(m_quality);
    if (!writer.write(wrap(i_image)))
        raise(QStringLiteral("%1: %2").arg(getName(), writer.errorString()));
}

cJpegFormat::cJpegFormat()
    : cQImageFormat(
        QStringLiteral("JPEG"), QStringLiteral("*.jpg *.jpeg"), QByteArrayLiteral("jpeg"), s_jpegQuality)
{
}

cImgIO* cJpegFormat::clone() const { return new cJpegFormat; }

void cJpegFormat::checkBytes(const unsigned char* i_data, std::size_t i_size, const QSize& i_pixels) const
{
    // A block of 8x8 samples takes a bit at the least. Of each 64 pixels there is a block, or of each 128, if
    // no component has the full resolution in both directions.
    checkRatio(pixelsOf(i_pixels), i_size, 1024);
    // From marker to marker; pictures within the first segments have ends of their own.
    std::size_t place = 2;
    while (place + 1 < i_size) {
        const unsigned code = i_data[place + 1];
        const bool isMarker = i_data[place] == 0xff && code != 0x00 && code != 0xff;
        if (!isMarker || (code >= 0xd0 && code <= 0xd8) || code == 0x01) { // compressed bytes, or alone
            ++place;
            continue;
        }
        if (code == 0xd9)
            return;
        if (place + 3 >= i_size)
            break;
        place += 2 + qFromBigEndian<quint16>(i_data + place + 2);
    }
    raise(QStringLiteral("JPEG: the file ends too early"));
}

cBmpFormat::cBmpFormat()
    : cQImageFormat(QStringLiteral("BMP"), QStringLiteral("*.bmp"), QByteArrayLiteral("bmp"), -1)
{
}

cImgIO* cBmpFormat::clone() const { return new cBmpFormat; }

void cBmpFormat::checkBytes(const unsigned char* i_data, std::size_t i_size, const QSize& i_pixels) const
{
    constexpr std::size_t header = 14, oldHeader = 12, usualHeader = 40;
    if (i_size < header + oldHeader)
        raise(QStringLiteral("BMP: the file ends within the header"));
    const quint64 offset = qFromLittleEndian<quint32>(i_data + 10);
    const quint32 length = qFromLittleEndian<quint32>(i_data + header);
    const bool old = length == oldHeader;
    // Qt takes any other for an old one, and its size from other places.
    if (!old && length != usualHeader && length != 64 && length != 108 && length != 124)
        raise(QStringLiteral("BMP: an unknown header of %1 bytes").arg(length));
    if (!old && i_size < header + usualHeader)
        raise(QStringLiteral("BMP: the file ends within the header"));
    const auto at
        = [i_data](std::size_t i_place) { return qint64(qFromLittleEndian<qint32>(i_data + i_place)); };
    const quint64 width = old ? qFromLittleEndian<quint16>(i_data + 18) : quint64(std::abs(at(18)));
    const quint64 height = old ? qFromLittleEndian<quint16>(i_data + 20) : quint64(std::abs(at(22)));
    const quint64 bits = qFromLittleEndian<quint16>(i_data + (old ? 24 : 28));
    const quint32 coding = old ? 0 : quint32(at(30));
    const bool isRunLength = coding == 1 || coding == 2;
    // Of run lengths only the header tells how many bytes there are, if it does.
    const quint64 rows = (width * bits + 31) / 32 * 4 * (height - 1) + (width * bits + 7) / 8;
    checkLength(isRunLength ? quint32(at(34)) : rows, i_size - std::min<quint64>(offset, i_size));
    if (isRunLength) // two bytes are a run of 255 at the most; there is room for rows that are skipped
        checkRatio(pixelsOf(i_pixels), i_size, 1024);
}
