#pragma once

#include "../cFileFormat.h"

/**
 * NPY, the array file of numerical Python: what `numpy.load` reads and `numpy.save` writes.
 *
 * | Array | Pixel type |
 * |---|---|
 * | `(h, w)` or `(h, w, c)` of integers and floats | the type of these numbers, with c channels |
 * | `(h, w, 3)` and `(h, w, 4)` of 8 unsigned bits | `RGB24` and `RGB32` |
 * | `(h, w)` of `complex64` | `Complex` |
 * | `(h, w)` of records `dx`, `dy` of 16 or 32 bits | `Gradient16`, `Gradient32` |
 * | `(h, w)` or `(h, w, c)` of truths | read as `UInt8` of 0 and 255 |
 *
 * So `UInt8` of 3 and 4 channels cannot be told from colour and is refused. Either byte order and either
 * order of the axes is read; files are written in the processor's byte order and row by row.
 */
class cNpyFormat : public cFileFormat {
public:
    cNpyFormat();
    cImgIO* clone() const override;
    bool canHold(cImgType::ImageTypes i_type, unsigned i_channels) const override;
    cImg decode(const unsigned char* i_data, std::size_t i_size) const override;
    Kind peek(QIODevice& io_device) const override;

protected:
    void encode(const cImg& i_image, QIODevice& io_device) const override;
};
