#pragma once

#include <tarnimg/cImgTypeScalar.h>

/** Pixels with signed channels of 8 bits. */
class TARNIMG_EXPORT cImgTypeSInt8 : public cImgTypeScalar<qint8> {
public:
    cImgTypeSInt8();
    bool convertTo(const cImg& i_source, const cImgType& i_target, cImg& io_result,
        const cMapObj* i_params) const override;
};
