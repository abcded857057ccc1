#pragma once

#include <tarnimg/cImgTypeScalar.h>

#include <QColor>

/** Pixels with unsigned channels of 8 bits. "Colorize" is the colour of a display's white; black means grey.
 */
class TARNIMG_EXPORT cImgTypeUInt8 : public cImgTypeScalar<quint8> {
public:
    cImgTypeUInt8();
    bool convertTo(const cImg& i_source, const cImgType& i_target, cImg& io_result,
        const cMapObj* i_params) const override;
    QImage makeDisplayImage(const cImg& i_image) override;
    cMapObj getParams() const override;
    void setParams(const cMapObj& i_params) override;

private:
    QColor m_colorize = Qt::black;
};
