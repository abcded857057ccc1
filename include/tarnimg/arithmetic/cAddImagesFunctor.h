#pragma once

#include <tarnimg/cImgFunctor.h>

/**
 * Sum of two images, saturated to the range of the pixel type; single precision for Float32.
 *
 * Inputs: two images of one type and size, of UInt8, UInt16, SInt16 or Float32 with one channel, RGB24 or
 * RGB32.
 */
class TARNIMG_EXPORT cAddImagesFunctor : public cImgFunctor {
public:
    cAddImagesFunctor();

    /** a + b. */
    cImg operator()(const cImg& i_a, const cImg& i_b) const;
    /** b becomes b + a. */
    void operator()(const cImg& i_a, cImg& io_b) const;
};
