#pragma once

#include <tarnimg/cImgFunctor.h>

/**
 * Smaller pixel of two images, channel by channel, alpha included.
 *
 * Inputs: two images of one type and size, of UInt8, UInt16, SInt16 or Float32 with one channel, RGB24 or
 * RGB32. Where one of two Float32 pixels is no number, the pixel of b stays.
 */
class TARNIMG_EXPORT cMinEveryFunctor : public cImgFunctor {
public:
    cMinEveryFunctor();

    /** A new image with the attributes of b. */
    cImg operator()(const cImg& i_a, const cImg& i_b) const;
};
