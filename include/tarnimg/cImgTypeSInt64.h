#pragma once

#include <tarnimg/cImgTypeScalar.h>

/** Pixels with signed channels of 64 bits. The ends of the range are the limits as doubles. */
class TARNIMG_EXPORT cImgTypeSInt64 : public cImgTypeScalar<qint64> {
public:
    cImgTypeSInt64();
    bool convertTo(const cImg& i_source, const cImgType& i_target, cImg& io_result,
        const cMapObj* i_params) const override;
};
