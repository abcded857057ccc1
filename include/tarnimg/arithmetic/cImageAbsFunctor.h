#pragma once

#include <tarnimg/cImgFunctor.h>

/**
 * Absolute value of each pixel.
 *
 * Inputs: SInt16 (the most negative value becomes 32767) or Float32 (clears the sign bit) with one channel.
 * Unsigned images are refused, not passed through.
 */
class TARNIMG_EXPORT cImageAbsFunctor : public cImgFunctor {
public:
    cImageAbsFunctor();

    cImg operator()(const cImg& i_image) const;
};
