// The bridge between images and QImage, and image files.

#include <tarnimg/cImg.h>

#include "display/colourOrder.h"
#include "display/picture.h"

#include <tarnbase/cTracer.h>
#include <tarnimg/cImgIO.h>

#include <QImage>
#include <algorithm>
#include <cstring>

namespace {

QImage emptyLike(const cImg& i_image, QImage::Format i_format)
{
    return i_format == QImage::Format_Indexed8
        ? display::newIndexedPicture(i_image.getSize(), display::greyRamp())
        : display::newPicture(i_image.getSize(), i_format);
}

/** Copies the bytes of all rows. */
QImage copyOf(const cImg& i_image, QImage::Format i_format)
{
    QImage out = emptyLike(i_image, i_format);
    const std::size_t rowBytes = std::size_t(i_image.getWidth()) * (out.depth() / 8);
    for (int y = 0; y < out.height(); ++y)
        std::memcpy(out.scanLine(y), i_image.getRow<unsigned char>(unsigned(y)), rowBytes);
    return out;
}

/** Rows of one width; where none has a gap behind it they are one long row. */
void copySwapped(
    const uchar* i_source, std::size_t i_sourceStep, uchar* o_target, std::size_t i_targetStep, QSize i_size)
{
    auto width = std::size_t(i_size.width()), height = std::size_t(i_size.height());
    if (i_sourceStep == 4 * width && i_targetStep == 4 * width) {
        width *= height;
        height = 1;
    }
    for (std::size_t y = 0; y < height; ++y)
        display::copySwapped(i_source + y * i_sourceStep, o_target + y * i_targetStep, width);
}

QImage swappedCopyOf(const cImg& i_image)
{
    QImage out = emptyLike(i_image, QImage::Format_ARGB32);
    if (!out.isNull())
        copySwapped(i_image.getConstData(), i_image.getYPitch(), out.bits(), std::size_t(out.bytesPerLine()),
            out.size());
    return out;
}

QImage saturated(const cImg& i_image)
{
    QImage out = emptyLike(i_image, QImage::Format_Indexed8);
    for (int y = 0; y < out.height(); ++y) {
        const auto* from = i_image.getRow<quint16>(unsigned(y));
        uchar* to = out.scanLine(y);
        for (int x = 0; x < out.width(); ++x)
            to[x] = uchar(std::min<quint16>(from[x], 255));
    }
    return out;
}

/** An image of the size of a QImage, with the first bytes of each of its rows. */
cImg copyOf(const QImage& i_image, cImgType::ImageTypes i_type)
{
    cImg out(i_type, unsigned(i_image.width()), unsigned(i_image.height()));
    for (int y = 0; y < i_image.height(); ++y)
        std::memcpy(out.row<unsigned char>(unsigned(y)), i_image.constScanLine(y), out.getYPitch());
    return out;
}

/** An image with alpha of a QImage of 32 bits. */
cImg swappedCopyOf(const QImage& i_image)
{
    cImg out(cImgType::RGB32, unsigned(i_image.width()), unsigned(i_image.height()));
    copySwapped(i_image.constBits(), std::size_t(i_image.bytesPerLine()), out.getData(), out.getYPitch(),
        i_image.size());
    return out;
}

} // namespace

QImage cImg::toQImage() const
{
    if (!isValid())
        return {};
    if (getXPitch() != getImgType().getPixelSize())
        return clone().toQImage(); // memory from outside with gaps between its pixels
    switch (getImgType().getTypeId()) {
    case cImgType::RGB24:
        return copyOf(*this, QImage::Format_RGB888);
    case cImgType::RGB32:
        return swappedCopyOf(*this);
    case cImgType::UInt8:
        return copyOf(*this, QImage::Format_Indexed8);
    case cImgType::UInt16:
        return saturated(*this);
    default:
        return {};
    }
}

cImg cImg::fromQImage(const QImage& i_image)
{
    if (i_image.isNull())
        return {};
    switch (i_image.format()) {
    case QImage::Format_Indexed8:
    case QImage::Format_Grayscale8:
        return i_image.isGrayscale() ? copyOf(i_image, cImgType::UInt8)
                                     : fromQImage(i_image.convertToFormat(QImage::Format_RGB888));
    case QImage::Format_RGB888:
        return copyOf(i_image, cImgType::RGB24);
    default: {
        const QImage argb = i_image.convertToFormat(QImage::Format_ARGB32);
        if (argb.isNull())
            return {};
        return swappedCopyOf(argb);
    }
    }
}

cImg cImg::openImg(const QString& i_path)
{
    cImg image;
    if (const auto handler = cImgIO::findReadHandler(i_path))
        image = handler->openImg(i_path, cMapObj());
    if (!image.isValid())
        cTracer::cerr << "could not read: " << i_path << cTracer::end();
    return image;
}

bool cImg::writeImg(const QString& i_path) const
{
    const auto handler = cImgIO::findSaveHandler(i_path);
    return handler && handler->writeImg(i_path, *this, nullptr);
}
