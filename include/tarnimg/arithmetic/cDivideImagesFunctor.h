#pragma once

#include <tarnimg/cImgFunctor.h>

/**
 * Quotient of two images, rounded to the nearest integer (halves to even) and saturated; single precision for
 * Float32.
 *
 * A zero among the divisors is a failure: the call throws, whatever the pixel type.
 *
 * Inputs: two images of one type and size, of UInt8, UInt16, SInt16 or Float32 with one channel, RGB24 or
 * RGB32.
 */
class TARNIMG_EXPORT cDivideImagesFunctor : public cImgFunctor {
public:
    cDivideImagesFunctor();

    /** b / a: the first image is the divisor. */
    cImg operator()(const cImg& i_a, const cImg& i_b) const;
    /** b becomes b / a; after a zero divisor it holds what was computed. */
    void operator()(const cImg& i_a, cImg& io_b) const;
};
