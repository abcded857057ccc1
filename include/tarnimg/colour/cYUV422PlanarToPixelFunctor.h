#pragma once

#include <tarnimg/cImgFunctor.h>

/**
 * Packed YUV 4:2:2 of planes Y, U and V.
 *
 * Y has twice the width of U and V. The result is a UInt8 image of Y's width w and twice its height. The 2 w
 * bytes Y0 U0 Y1 V0 ... of row k of the planes begin with row k of the result, one row after the other: so
 * the next row replaces the second half, and what no row reaches is 0.
 *
 * Inputs: three UInt8 images with one channel.
 */
class TARNIMG_EXPORT cYUV422PlanarToPixelFunctor : public cImgFunctor {
public:
    cYUV422PlanarToPixelFunctor();

    cImg operator()(const cImg& i_y, const cImg& i_u, const cImg& i_v) const;
};
