#pragma once

#include <tarnimg/cImgTypeScalar.h>

/** Pixels with float channels of 32 bits. The range at the start is -1 to 1. */
class TARNIMG_EXPORT cImgTypeFloat32 : public cImgTypeScalar<float> {
public:
    cImgTypeFloat32();
    bool convertTo(const cImg& i_source, const cImgType& i_target, cImg& io_result,
        const cMapObj* i_params) const override;

protected:
    /**
     * Only of images with one channel. The borders do not count. The ends of a positive quantile are measured
     * from the least pixel: an image from 100 to 200 has its median near 50. The history holds floats,
     * without adding 1. An image without any number leaves the range; infinite pixels leave out the quantile.
     */
    void adjustRange(const cImg& i_image) override;

private:
    cRangeHistory<float> m_floatRangeHistory;
};
