#pragma once

#include <tarnimg/cImgTypeScalar.h>

/** Pixels with float channels of 32 bits. The range at the start is -1 to 1. */
class TARNIMG_EXPORT cImgTypeFloat32 : public cImgTypeScalar<float> {
public:
    cImgTypeFloat32();
    bool convertTo(const cImg& i_source, const cImgType& i_target, cImg& io_result,
        const cMapObj* i_params) const override;
};
