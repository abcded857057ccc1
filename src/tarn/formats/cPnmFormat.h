#pragma once

#include "../cFileFormat.h"

/**
 * The portable maps: grey (PGM), colour (PPM), either of them (PNM), with any number of channels (PAM);
 * bitmaps (PBM) are read only.
 *
 * What is in a file counts, not its name: each of these extensions reads all kinds, plain and binary. Samples
 * of up to 255 become `UInt8`, `RGB24` or `RGB32`, greater ones `UInt16`, and they are the numbers in the
 * file: one whose greatest value is 4095 gives `UInt16` with the range 0 to 4095. Bitmaps become `UInt8`,
 * black 0 and white 255. Of several pictures in a file the first is read.
 *
 * Written are 8 and 16 bits, binary, with the greatest value 255 or 65535. A PAM names its kind for grey, for
 * `RGB24` and `RGB32`, and for `UInt16` of 2 to 4 channels; without a name its channels are read as channels.
 */
class cPnmFormat : public cFileFormat {
public:
    enum EKind { Pbm, Pgm, Ppm, Pnm, Pam };
    explicit cPnmFormat(EKind i_kind);
    cImgIO* clone() const override;
    bool canHold(cImgType::ImageTypes i_type, unsigned i_channels) const override;
    cImg decode(const unsigned char* i_data, std::size_t i_size) const override;
    Kind peek(QIODevice& io_device) const override;

protected:
    void encode(const cImg& i_image, QIODevice& io_device) const override;

private:
    const EKind m_kind;
};
