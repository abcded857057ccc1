#pragma once

#include <tarnimg/cImg.h>
#include <tarnimg/cImgFunctor.h>

/**
 * Running sum of products: each call adds the product of its images to a Float32 sum that the functor keeps.
 *
 * Inputs: two images of one type and size, of UInt8, UInt16 or Float32 with one channel. Product and sum are
 * rounded to single precision, nothing is saturated or normalised.
 *
 * A new sum is not cleared: it starts with whatever its memory held. Call `reset` after the first image, and
 * after each change of size, to begin from zero.
 */
class TARNIMG_EXPORT cAddProductImageFunctor : public cImgFunctor {
public:
    cAddProductImageFunctor();

    /** The sum so far. It shares its pixels with the functor until the next call and is not changed by that.
     */
    cImg operator()(const cImg& i_a, const cImg& i_b);
    /** Sets the sum to zero. Before the first call there is no sum, and nothing happens. */
    void reset();

private:
    cImg m_sum;
};
