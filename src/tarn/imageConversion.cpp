#include "imageConversion.h"

#include "formats/fileBytes.h"

#include <QMetaEnum>
#include <QStringList>
#include <cstring>
#include <tarnbase/cDataValObj.h>
#include <tarnbase/cMapObj.h>

namespace host {
namespace {

QMetaEnum typeEnum() { return QMetaEnum::fromType<cImgType::ImageTypes>(); }

bool isColour(cImgType::ImageTypes i_type) { return i_type == cImgType::RGB24 || i_type == cImgType::RGB32; }

bool isFloat(cImgType::ImageTypes i_type)
{
    return i_type == cImgType::Float32 || i_type == cImgType::Float64;
}

cImg convertOrFail(const cImg& i_source, cImgType::ImageTypes i_type, const cDblRange& i_range)
{
    cMapObj params;
    params[QStringLiteral("inputRange")] = new cDataValObj<cDblRange>(i_range);
    cImg result;
    if (i_source.convertTo(i_type, result, &params))
        return result;
    const cImg pixel(i_source.getImgType().getTypeId(), 1, 1);
    QStringList targets;
    for (int type = cImgType::RGB24; type <= cImgType::Complex; ++type) {
        cImg converted;
        if (type != pixel.getImgType().getTypeId() && pixel.convertTo(cImgType::ImageTypes(type), converted))
            targets.append(typeName(cImgType::ImageTypes(type)));
    }
    raise(QStringLiteral("%1 does not convert to %2\n").arg(pixel.getImgType().getName(), typeName(i_type))
        + (targets.isEmpty() ? QStringLiteral("it converts to no other type")
                             : QStringLiteral("it converts to %1").arg(targets.join(QStringLiteral(", ")))));
}

/** The same pixels with another type or number of channels; the pixels of a row are as many bytes as before.
 */
cImg regrouped(const cImg& i_image, cImgType::ImageTypes i_type, unsigned i_channels)
{
    const cImg pixel(i_type, 1, 1, i_channels);
    const std::size_t bytes = rowBytes(i_image);
    cImg result(i_type, unsigned(bytes / pixel.getImgType().getPixelSize()), i_image.getHeight(), i_channels);
    for (unsigned y = 0; y < i_image.getHeight(); ++y)
        std::memcpy(result.row<unsigned char>(y), i_image.getRow<unsigned char>(y), bytes);
    result.copyImgAttr(i_image);
    result.setRange(i_image.getRange());
    return result;
}

/** Conversion takes an image for one of a single channel; so it gets each channel's number as a pixel. */
cImg convertChannels(const cImg& i_source, cImgType::ImageTypes i_type, const cDblRange& i_range)
{
    const unsigned channels = i_source.getNumChannels();
    const unsigned needed = i_type == cImgType::RGB24 ? 3 : i_type == cImgType::RGB32 ? 4 : channels;
    if (needed != channels)
        raise(QStringLiteral("%1 with %2 channels does not convert to %3, which has %4")
                  .arg(i_source.getImgType().getName())
                  .arg(channels)
                  .arg(typeName(i_type))
                  .arg(needed));
    const cImg flat = regrouped(i_source, i_source.getImgType().getTypeId(), 1);
    return regrouped(
        convertOrFail(flat, isColour(i_type) ? cImgType::UInt8 : i_type, i_range), i_type, channels);
}

template <class T> quint64 countOutside(const cImg& i_image, const cDblRange& i_range)
{
    const std::size_t count = rowBytes(i_image) / sizeof(T);
    quint64 outside = 0;
    for (unsigned y = 0; y < i_image.getHeight(); ++y) {
        const T* row = i_image.getRow<T>(y);
        for (std::size_t i = 0; i < count; ++i)
            outside += !(double(row[i]) >= i_range.getLow() && double(row[i]) <= i_range.getHigh());
    }
    return outside;
}

quint64 countOutside(const cImg& i_image, const cDblRange& i_range)
{
    switch (i_image.getImgType().getTypeId()) {
    case cImgType::UInt16:
        return countOutside<quint16>(i_image, i_range);
    case cImgType::UInt32:
        return countOutside<quint32>(i_image, i_range);
    case cImgType::SInt8:
        return countOutside<qint8>(i_image, i_range);
    case cImgType::SInt16:
        return countOutside<qint16>(i_image, i_range);
    case cImgType::SInt32:
        return countOutside<qint32>(i_image, i_range);
    case cImgType::SInt64:
        return countOutside<qint64>(i_image, i_range);
    case cImgType::Float32:
        return countOutside<float>(i_image, i_range);
    case cImgType::Float64:
        return countOutside<double>(i_image, i_range);
    default:
        return countOutside<quint8>(i_image, i_range);
    }
}

QString rangeText(const cDblRange& i_range)
{
    return QStringLiteral("%1 to %2").arg(i_range.getLow(), 0, 'g', 10).arg(i_range.getHigh(), 0, 'g', 10);
}

QString describe(const cImg& i_source, cImgType::ImageTypes i_type, const cDblRange& i_range)
{
    const cImgType& type = i_source.getImgType();
    QString text = QStringLiteral("%1 to %2, ").arg(type.getName(), typeName(i_type));
    if (isColour(type.getTypeId()) && !isColour(i_type))
        text += QStringLiteral("colour to grey, ");
    if (isFloat(i_type))
        return text + QStringLiteral("values of %1").arg(rangeText(i_range));
    const cImg pixel(i_type, 1, 1);
    return text + QStringLiteral("%1 onto %2").arg(rangeText(i_range), rangeText(pixel.getRange()));
}

} // namespace

cConvertedImage convertImage(
    const cImg& i_source, cImgType::ImageTypes i_type, const std::optional<cDblRange>& i_range)
{
    const cImgType& type = i_source.getImgType();
    if (type.getTypeId() == i_type && !i_range)
        return {i_source, {}, 0};
    const cDblRange range = i_range.value_or(type.getRange());
    cConvertedImage result;
    const bool pairs = type.getTypeId() >= cImgType::Gradient16;
    if (i_source.getNumChannels() > 1 && !isColour(type.getTypeId()) && !pairs)
        result.image = convertChannels(i_source, i_type, range);
    else
        result.image = convertOrFail(i_source, i_type, range);
    if (pairs)
        return result; // only copied
    result.text = describe(i_source, i_type, range);
    result.outside = countOutside(i_source, range);
    return result;
}

cImgType::ImageTypes typeFromName(const QString& i_name)
{
    for (const QString& name : typeNames())
        if (name.compare(i_name, Qt::CaseInsensitive) == 0)
            return cImgType::ImageTypes(typeEnum().keyToValue(name.toLatin1().constData()));
    return cImgType::Invalid;
}

QString typeName(cImgType::ImageTypes i_type)
{
    return QString::fromLatin1(typeEnum().valueToKey(int(i_type)));
}

QStringList typeNames()
{
    QStringList names;
    for (int type = cImgType::RGB24; type <= cImgType::Complex; ++type)
        names.append(typeName(cImgType::ImageTypes(type)));
    return names;
}

} // namespace host
