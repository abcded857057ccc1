#pragma once

#include <tarnimg/cImg.h>
#include <tarnimg/cImgFunctor.h>

/**
 * Running sum of squares: each call adds the square of its image to a Float32 sum that the functor keeps.
 *
 * Inputs: UInt8, UInt16 or Float32 with one channel. Product and sum are rounded to single precision, nothing
 * is saturated or normalised. An image of another size starts a new sum from zero; the pixel type may change
 * from call to call.
 */
class TARNIMG_EXPORT cAddSquareImageFunctor : public cImgFunctor {
public:
    cAddSquareImageFunctor();

    /** The sum so far. It shares its pixels with the functor until the next call and is not changed by that.
     */
    cImg operator()(const cImg& i_image);
    /** Sets the sum to zero. Before the first call there is no sum, and nothing happens. */
    void reset();

private:
    cImg m_sum;
};
