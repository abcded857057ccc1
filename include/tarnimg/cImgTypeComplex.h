#pragma once

#include <tarnbase/cComplex.h>
#include <tarnimg/cImgType.h>

/** Pixels of two floats: real, imaginary. There is no greatest range, so that the range is always 0 to 0. */
class TARNIMG_EXPORT cImgTypeComplex : public cImgType {
public:
    cImgTypeComplex();
    bool convertTo(const cImg& i_source, const cImgType& i_target, cImg& io_result,
        const cMapObj* i_params) const override;
    unsigned getPixelSize() const override;
    unsigned getChannelPixelSize() const override;
    QString pixelToString(const unsigned char* i_pixel, bool i_hexadecimal) const override;
    QSize getPixelStringSize(const QFont& i_font, bool i_hexadecimal) const override;
    /**
     * By default hue is the angle and value the magnitude, as a share of the greatest in the left half of the
     * image; the other styles stretch one component over all grey values. "useLog" takes logarithms first,
     * "moveCenter" puts the four quadrants of a spectrum in order.
     */
    QImage makeDisplayImage(const cImg& i_image) override;
    cMapObj getParams() const override;
    void setParams(const cMapObj& i_params) override;
    /** Takes a `cFltComplex`. */
    void fill(cImg& io_image, const QVariant& i_value) const override;

private:
    void setNumChannels(unsigned i_channels) override;

    bool m_useLog = true;
    double m_factor = 1.0;
    bool m_moveCenter = true;
};
