#pragma once

#include <tarnimg/cImgTypeRGB.h>

/** Pixels of three bytes: red, green, blue. */
class TARNIMG_EXPORT cImgTypeRGB24 : public cImgTypeRGB {
    Q_GADGET
public:
    /** The styles. */
    enum Modes {
        Default = 0,
        Red = 1,
        Green = 2,
        Blue = 3,
        Intensity = 4,
        Hue = 5,
        Value = 6,
        Saturation = 7
    };
    Q_ENUM(Modes)

    cImgTypeRGB24();
    bool convertTo(const cImg& i_source, const cImgType& i_target, cImg& io_result,
        const cMapObj* i_params) const override;
    /** Takes a `cRgb` or `cRgba`. */
    void fill(cImg& io_image, const QVariant& i_value) const override;

private:
    void setNumChannels(unsigned i_channels) override;
};
