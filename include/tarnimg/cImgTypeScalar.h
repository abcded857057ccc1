#pragma once

#include <tarnimg/cImgType.h>

/**
 * What the types with any number of equal channels share; `T` is the type of a channel.
 *
 * Channels lie interleaved within a pixel. The styles are "Channel 0", "Channel 1", ...: texts and displays
 * show the channel of the present style.
 */
template <class T> class TARNIMG_EXPORT cImgTypeScalar : public cImgType {
public:
    QString pixelToString(const unsigned char* i_pixel, bool i_hexadecimal) const override;
    QSize getPixelStringSize(const QFont& i_font, bool i_hexadecimal) const override;
    /** Black is the range's low end, white its high end; `SInt64` alone shows the low byte of the distance
     * from the low end. */
    QImage makeDisplayImage(const cImg& i_image) override;
    /** Takes what converts to a number; the value goes into every channel. */
    void fill(cImg& io_image, const QVariant& i_value) const override;

protected:
    explicit cImgTypeScalar(ImageTypes i_type, const cDblRange& i_maxRange);
};

extern template class cImgTypeScalar<quint8>;
extern template class cImgTypeScalar<quint16>;
extern template class cImgTypeScalar<quint32>;
extern template class cImgTypeScalar<qint8>;
extern template class cImgTypeScalar<qint16>;
extern template class cImgTypeScalar<qint32>;
extern template class cImgTypeScalar<qint64>;
extern template class cImgTypeScalar<float>;
extern template class cImgTypeScalar<double>;
