#pragma once

#include "../cFileFormat.h"

/**
 * PFM, the portable map of floats: `Float32` of 1 and 3 channels, bottom row first. Either byte order is
 * read; files are written in the processor's byte order. The scale in the header only tells the byte order:
 * pixels are the numbers in the file.
 */
class cPfmFormat : public cFileFormat {
public:
    cPfmFormat();
    cImgIO* clone() const override;
    bool canHold(cImgType::ImageTypes i_type, unsigned i_channels) const override;
    cImg decode(const unsigned char* i_data, std::size_t i_size) const override;

protected:
    void encode(const cImg& i_image, QIODevice& io_device) const override;
};
