#include "cStreamFormat.h"

#include "fileBytes.h"

#include <QDataStream>
#include <QtEndian>
#include <limits>

namespace {

using host::raise;

void setForm(QDataStream& io_stream)
{
    // The form does not differ between the versions of Qt 5; it is fixed all the same.
    io_stream.setVersion(QDataStream::Qt_5_0);
    io_stream.setByteOrder(QDataStream::BigEndian);
}

} // namespace

cStreamFormat::cStreamFormat() : cFileFormat(QStringLiteral("TIS"), QStringLiteral("*.tis"), Read | Write) {}

cImgIO* cStreamFormat::clone() const { return new cStreamFormat; }

bool cStreamFormat::canHold(cImgType::ImageTypes i_type, unsigned) const
{
    return i_type != cImgType::Invalid;
}

cImg cStreamFormat::decode(const unsigned char* i_data, std::size_t i_size) const
{
    if (i_size > std::size_t(std::numeric_limits<int>::max()))
        raise(QStringLiteral("TIS: the file is too large"));
    quint32 type = 0;
    if (i_size >= sizeof type)
        type = qFromBigEndian<quint32>(i_data);
    if (i_size >= sizeof type && (type < cImgType::RGB24 || type > cImgType::Complex))
        raise(QStringLiteral(
            "TIS: not of this format, expected a pixel type from 1 to 14 at the start, found %1")
                  .arg(type));
    QDataStream stream(QByteArray::fromRawData(reinterpret_cast<const char*>(i_data), int(i_size)));
    setForm(stream);
    cImg image;
    stream >> image;
    if (stream.status() == QDataStream::ReadPastEnd)
        raise(QStringLiteral("TIS: the file ends too early"));
    if (stream.status() != QDataStream::Ok)
        raise(QStringLiteral("TIS: damaged: no image has such a size, range or attributes"));
    if (!image.isValid())
        raise(QStringLiteral("TIS: the image is empty"));
    return image;
}

void cStreamFormat::encode(const cImg& i_image, QIODevice& io_device) const
{
    // A whole image over memory from outside may have gaps between its rows, which the form would take along
    // and a reader not skip.
    const bool gaps = i_image.isCompact() && i_image.getYPitch() != host::rowBytes(i_image);
    QDataStream stream(&io_device);
    setForm(stream);
    stream << (gaps ? i_image.clone() : i_image);
    if (stream.status() != QDataStream::Ok)
        raise(io_device.errorString());
}
