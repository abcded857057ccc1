#pragma once

#include <tarnimg/cImgTypeScalar.h>

/** Pixels with signed channels of 16 bits. */
class TARNIMG_EXPORT cImgTypeSInt16 : public cImgTypeScalar<qint16> {
public:
    cImgTypeSInt16();
    bool convertTo(const cImg& i_source, const cImgType& i_target, cImg& io_result,
        const cMapObj* i_params) const override;
};
