#pragma once

#include "../cFileFormat.h"

/**
 * TIFF: the format that holds every pixel type. Integers of 8 to 64 bits and floats of 32 and 64 bits with
 * any number of channels, `RGB24`, `RGB32`, `Complex` and both gradients, the last as pairs of integers.
 *
 * Also read: grey of 1, 2 and 4 bits, white-is-zero grey, palettes and YCbCr (as `RGB24`), tiles, separate
 * planes, either byte order, all compressions that libtiff has. Of a file with several pages the first is
 * read, and the image's number of frames is that of the pages. Files are written uncompressed.
 */
class cTiffFormat : public cFileFormat {
public:
    cTiffFormat();
    cImgIO* clone() const override;
    bool canHold(cImgType::ImageTypes i_type, unsigned i_channels) const override;
    cImg decode(const unsigned char* i_data, std::size_t i_size) const override;
    Kind peek(QIODevice& io_device) const override;
    unsigned countPages(const cImg& i_image) const override { return i_image.getNumFrames(); }

protected:
    void encode(const cImg& i_image, QIODevice& io_device) const override;
};
