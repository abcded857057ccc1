#pragma once

#include <tarnimg/cImgTypeRGB.h>

/** Pixels of four bytes: red, green, blue, alpha. */
class TARNIMG_EXPORT cImgTypeRGB32 : public cImgTypeRGB {
    Q_GADGET
public:
    /** The styles. */
    enum Modes {
        Default = 0,
        Red = 1,
        Green = 2,
        Blue = 3,
        Alpha = 4,
        Intensity = 5,
        Hue = 6,
        Value = 7,
        Saturation = 8
    };
    Q_ENUM(Modes)

    cImgTypeRGB32();
    bool convertTo(const cImg& i_source, const cImgType& i_target, cImg& io_result,
        const cMapObj* i_params) const override;
    /** Takes a `cRgba`, or a `cRgb`, which is opaque. */
    void fill(cImg& io_image, const QVariant& i_value) const override;

private:
    void setNumChannels(unsigned i_channels) override;
};
