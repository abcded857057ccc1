#pragma once

#include <tarnimg/cImgFunctor.h>

/**
 * Planes Y, U and V of packed YUV 4:2:2.
 *
 * The source is a UInt8 image of width w and height h; y becomes w by h / 2, u and v w / 2 by h / 2. Row k of
 * the result is taken from the 2 w bytes, Y0 U0 Y1 V0 ..., that begin with row k of the source: so
 * neighbouring rows of the result share bytes, and the lower half of the source is read in its first row
 * only.
 *
 * Inputs: UInt8 with one channel. An odd width fails.
 */
class TARNIMG_EXPORT cYUV422PixelToPlanarFunctor : public cImgFunctor {
public:
    cYUV422PixelToPlanarFunctor();

    void operator()(const cImg& i_source, cImg& o_y, cImg& o_u, cImg& o_v) const;
};
