#pragma once

#include "../cFileFormat.h"

/**
 * TIS, a file that is nothing but the binary form of one image: what `QDataStream << cImg` writes in its
 * version `Qt_5_0` and in big-endian order.
 *
 * It holds every pixel type with any number of channels, and as the only format all that belongs to an image:
 * its name, range, frame number and count, and attributes. Whatever follows the image in a file is passed
 * over.
 */
class cStreamFormat : public cFileFormat {
public:
    cStreamFormat();
    cImgIO* clone() const override;
    bool canHold(cImgType::ImageTypes i_type, unsigned i_channels) const override;
    cImg decode(const unsigned char* i_data, std::size_t i_size) const override;

protected:
    void encode(const cImg& i_image, QIODevice& io_device) const override;
};
