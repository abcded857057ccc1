#pragma once

#include <tarnimg/cImg.h>
#include <tarnimg/cImgFunctor.h>

/**
 * Hue of each pixel, as cConvertRGBToHSVFunctor gives it.
 *
 * Inputs: RGB24, RGB32, whose alpha is ignored. The result is UInt8. A working image stays between calls.
 */
class TARNIMG_EXPORT cExtractHueFunctor : public cImgFunctor {
public:
    cExtractHueFunctor();

    cImg operator()(const cImg& i_image);

private:
    cImg m_hsv;
};
