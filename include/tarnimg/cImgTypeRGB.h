#pragma once

#include <tarnimg/cImgType.h>

/** What both RGB types share: the factors of a display's colour correction. */
class TARNIMG_EXPORT cImgTypeRGB : public cImgType {
public:
    unsigned getChannelPixelSize() const override;
    QString pixelToString(const unsigned char* i_pixel, bool i_hexadecimal) const override;
    QSize getPixelStringSize(const QFont& i_font, bool i_hexadecimal) const override;
    /** The colours, or one component as an indexed picture. The factors of the colour correction act on the
     * colours alone. */
    QImage makeDisplayImage(const cImg& i_image) override;
    cMapObj getParams() const override;
    void setParams(const cMapObj& i_params) override;
    unsigned getPixelSize() const override;

protected:
    cImgTypeRGB(unsigned i_channels, ImageTypes i_type);

    double m_brightness = 1.0;
    double m_hue = 1.0;
    double m_saturation = 1.0;
    double m_red = 1.0;
    double m_green = 1.0;
    double m_blue = 1.0;
};
