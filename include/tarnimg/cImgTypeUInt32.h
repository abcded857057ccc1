#pragma once

#include <tarnimg/cImgTypeScalar.h>

/** Pixels with unsigned channels of 32 bits. */
class TARNIMG_EXPORT cImgTypeUInt32 : public cImgTypeScalar<quint32> {
public:
    cImgTypeUInt32();
    bool convertTo(const cImg& i_source, const cImgType& i_target, cImg& io_result,
        const cMapObj* i_params) const override;
};
