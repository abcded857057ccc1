#pragma once

#include <tarnimg/cImgFunctor.h>

/**
 * Integral image: the sum of all pixels above and to the left.
 *
 * Inputs: UInt8, SInt32 or Float32 with one channel. The result has a column and a row more than the input;
 * the first ones hold the offset, and pixel (x, y) the offset and the sum over the first x columns of the
 * first y rows. It is SInt32, with sums that wrap, or in float mode Float32 with exact sums that are rounded
 * once. Of a Float32 input it always is Float32, summed in double precision, without an offset.
 *
 * SInt32 is not summed as what it is: the bytes at the beginning of each row, as many as it has pixels, count
 * as pixels of 8 bits.
 */
class TARNIMG_EXPORT cIntegralFunctor : public cImgFunctor {
public:
    cIntegralFunctor();

    cImg operator()(const cImg& i_image) const;

    float getOffset() const { return m_offset; }
    /** Added to each sum; truncated toward zero and cut to 32 bits unless in float mode. */
    void setOffset(float i_offset) { m_offset = i_offset; }
    bool isFloatMode() const { return m_floatMode; }
    void setFloatMode(bool i_floatMode) { m_floatMode = i_floatMode; }

    /** "offset" and "floatMode". */
    void refreshParams(cObj* i_params) override;

private:
    float m_offset = 0.0f;
    bool m_floatMode = false;
};
