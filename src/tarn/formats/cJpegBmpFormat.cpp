#include "cJpegBmpFormat.h"

#include "fileBytes.h"

#include <QBuffer>
#include <QImage>
#include <QImageReader>
#include <QImageWriter>
#include <QVector>
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

cBmpFormat::cBmpFormat()
    : cQImageFormat(QStringLiteral("BMP"), QStringLiteral("*.bmp"), QByteArrayLiteral("bmp"), -1)
{
}

cImgIO* cBmpFormat::clone() const { return new cBmpFormat; }
