#pragma once

#include "../cFileFormat.h"

/**
 * PNG: grey of 8 and 16 bits without and with alpha (`UInt8`, `UInt16` of 1 and 2 channels), colour of 8 bits
 * (`RGB24`, `RGB32`) and of 16 bits (`UInt16` of 3 and 4 channels). Grey of 1, 2 and 4 bits is read as
 * `UInt8` with the full range, palettes as colour. Gamma and colour profiles are passed over: pixels are the
 * numbers in the file.
 */
class cPngFormat : public cFileFormat {
public:
    cPngFormat();
    cImgIO* clone() const override;
    bool canHold(cImgType::ImageTypes i_type, unsigned i_channels) const override;
    cImg decode(const unsigned char* i_data, std::size_t i_size) const override;
    Kind peek(QIODevice& io_device) const override;

protected:
    void encode(const cImg& i_image, QIODevice& io_device) const override;
};
