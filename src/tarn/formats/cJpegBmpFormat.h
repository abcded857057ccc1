#pragma once

#include "../cFileFormat.h"

#include <QByteArray>

class QImage;
class QSize;

/** What the formats that go through `QImage` share: grey becomes `UInt8`, colour `RGB24`, colour with alpha
 * `RGB32`. */
class cQImageFormat : public cFileFormat {
public:
    cImg decode(const unsigned char* i_data, std::size_t i_size) const override;

protected:
    /** @param i_quality of the writer, -1 for its default */
    cQImageFormat(const QString& i_name, const QString& i_filter, const QByteArray& i_format, int i_quality);
    void encode(const cImg& i_image, QIODevice& io_device) const override;
    bool canHold(cImgType::ImageTypes i_type, unsigned i_channels) const override;
    /**
     * `QImage` takes memory for the size in the header before it decodes, takes a file that was cut, and
     * fills up the rest. So this throws if the bytes are too few for so many pixels, or have no end.
     */
    virtual void checkBytes(const unsigned char* i_data, std::size_t i_size, const QSize& i_pixels) const = 0;

private:
    const QByteArray m_format;
    const int m_quality;
};

/** JPEG of 8 bits. It is lossy by its nature; it is written with quality 95. Holds `UInt8` and `RGB24`. */
class cJpegFormat : public cQImageFormat {
public:
    cJpegFormat();
    cImgIO* clone() const override;

protected:
    void checkBytes(const unsigned char* i_data, std::size_t i_size, const QSize& i_pixels) const override;
};

/** Windows bitmaps. Holds `UInt8` and `RGB24`; files with alpha are read as `RGB32`. */
class cBmpFormat : public cQImageFormat {
public:
    cBmpFormat();
    cImgIO* clone() const override;

protected:
    void checkBytes(const unsigned char* i_data, std::size_t i_size, const QSize& i_pixels) const override;
};
