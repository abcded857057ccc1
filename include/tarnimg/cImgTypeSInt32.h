#pragma once

#include <tarnimg/cImgTypeScalar.h>

/** Pixels with signed channels of 32 bits. */
class TARNIMG_EXPORT cImgTypeSInt32 : public cImgTypeScalar<qint32> {
public:
    cImgTypeSInt32();
    bool convertTo(const cImg& i_source, const cImgType& i_target, cImg& io_result,
        const cMapObj* i_params) const override;
};
