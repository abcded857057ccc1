#pragma once

#include <tarnimg/cImgTypeScalar.h>

/** Pixels with unsigned channels of 16 bits. */
class TARNIMG_EXPORT cImgTypeUInt16 : public cImgTypeScalar<quint16> {
public:
    cImgTypeUInt16();
    bool convertTo(const cImg& i_source, const cImgType& i_target, cImg& io_result,
        const cMapObj* i_params) const override;
};
