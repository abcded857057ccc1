#pragma once

#include <tarnimg/cImgType.h>

#include <QMetaType>
#include <QPair>

/**
 * What both gradient types share; `T` is the pixel, a pair of dx and dy.
 *
 * The range is that of 16 bits for both.
 */
template <class T> class TARNIMG_EXPORT cImgTypeGradient : public cImgType {
public:
    bool convertTo(const cImg& i_source, const cImgType& i_target, cImg& io_result,
        const cMapObj* i_params) const override;
    unsigned getPixelSize() const override;
    QString pixelToString(const unsigned char* i_pixel, bool i_hexadecimal) const override;
    QSize getPixelStringSize(const QFont& i_font, bool i_hexadecimal) const override;
    /**
     * One component, the magnitude, 64 directions in four steps of magnitude, or the direction's projection
     * on "angle" (in degrees; "absolute" shows its amount). "factor" has no effect.
     */
    QImage makeDisplayImage(const cImg& i_image) override;
    /**
     * Dx or Dy, by the style, as an indexed picture: the range's low end is black, its high end white. Null
     * for an image of another type.
     */
    virtual void makeComponentImage(const cImg& i_image, QImage& io_out);
    cMapObj getParams() const override;
    void setParams(const cMapObj& i_params) override;
    /** Takes a `T`. */
    void fill(cImg& io_image, const QVariant& i_value) const override;

protected:
    explicit cImgTypeGradient(ImageTypes i_type);

private:
    void setNumChannels(unsigned i_channels) override;

    double m_factor = 1.0;
    bool m_absolute = true;
    double m_angle = 0.0;
};

extern template class TARNIMG_EXPORT cImgTypeGradient<QPair<short, short>>;
extern template class TARNIMG_EXPORT cImgTypeGradient<QPair<int, int>>;
