#pragma once

#include <tarnimg/cImgTypeScalar.h>

/** Pixels with float channels of 64 bits. The range at the start is -1 to 1. */
class TARNIMG_EXPORT cImgTypeFloat64 : public cImgTypeScalar<double> {
public:
    cImgTypeFloat64();
    bool convertTo(const cImg& i_source, const cImgType& i_target, cImg& io_result,
        const cMapObj* i_params) const override;

protected:
    /**
     * Only of images with one channel. Neither borders nor quantile count. Of a view as many consecutive
     * values are read as it has pixels, whatever lies between its rows. The history holds doubles, without
     * adding 1.
     */
    void adjustRange(const cImg& i_image) override;

private:
    cRangeHistory<double> m_doubleRangeHistory;
};
