#pragma once

#include <tarnimg/cImgFunctor.h>

/**
 * RGB24 of a frame in packed YUV 4:2:2.
 *
 * A frame row of w pixels has 2 w bytes, Y0 U0 Y1 V0 Y2 U1 Y3 V1 ..., which stand in two rows of a UInt8
 * image of width w. So an image of height h gives a result of height h / 2; a last odd row is lost. Red is Y
 * + 1.140 V, green Y - 0.394 U - 0.581 V, blue Y + 2.032 U, with 128 taken from U and V before, rounded and
 * limited to 0 to 255.
 *
 * Inputs: UInt8 with one channel. With an odd width the last pixel shares U and V with the two before it;
 * with a width of 1 there is no V, and the result is black. A height of 1 gives the void image.
 */
class TARNIMG_EXPORT cConvertYUVToRGBFunctor : public cImgFunctor {
public:
    cConvertYUVToRGBFunctor();

    cImg operator()(const cImg& i_image) const;
};
