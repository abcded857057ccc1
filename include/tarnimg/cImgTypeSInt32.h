#pragma once

#include <tarnimg/cImgTypeScalar.h>

/** Pixels with signed channels of 32 bits. */
class TARNIMG_EXPORT cImgTypeSInt32 : public cImgTypeScalar<qint32> {
public:
    cImgTypeSInt32();
    bool convertTo(const cImg& i_source, const cImgType& i_target, cImg& io_result,
        const cMapObj* i_params) const override;

protected:
    /**
     * Neither borders nor quantile count. Of a view, and of several channels, as many consecutive values are
     * read as there are pixels. Without a history the range is announced with every frame, changed or not.
     */
    void adjustRange(const cImg& i_image) override;
};
