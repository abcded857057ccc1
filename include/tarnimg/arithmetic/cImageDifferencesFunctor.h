#pragma once

#include <tarnimg/cImgFunctor.h>

/**
 * Absolute difference of two images, |a - b|: exact on integers, single precision for Float32.
 *
 * Inputs: two images of one type and size, of UInt8, UInt16 or Float32 with one channel, or RGB24.
 */
class TARNIMG_EXPORT cImageDifferencesFunctor : public cImgFunctor {
public:
    cImageDifferencesFunctor();

    cImg operator()(const cImg& i_a, const cImg& i_b) const;
};
