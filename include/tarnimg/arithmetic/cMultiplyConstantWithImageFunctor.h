#pragma once

#include <tarnimg/cImgFunctor.h>

/**
 * Product of an image and a constant.
 *
 * Inputs: UInt8, UInt16, SInt16 or Float32 with one channel. Float32 is multiplied in single precision. On
 * integers the constant acts as f / 2^s with f = trunc(constant * 2^s), where s is the least that makes this
 * exact, or the greatest with constant * 2^s below 2^8 (UInt8) or 2^16 (UInt16, SInt16), and at least 1 for a
 * fraction. The product is rounded to nearest, ties to even, and saturated. So 0.5 is exact, and 1.3 acts as
 * 166 / 128 = 1.296875 on UInt8. A negative constant is truncated to an integer.
 *
 * f is cut to the pixel's width: on UInt8 300 acts as 44, and 200.5 (f = 401, s = 1) as 145 / 2. On SInt16 an
 * f above 32767 turns negative, and a fraction that 15 bits do not hold always comes to one: 1.3 acts as
 * -0.7.
 */
class TARNIMG_EXPORT cMultiplyConstantWithImageFunctor : public cImgFunctor {
public:
    cMultiplyConstantWithImageFunctor();

    cImg operator()(const cImg& i_image) const;
    /** In place. */
    void operator()(cImg& io_image) const;

    float getConstant() const { return m_constant; }
    void setConstant(float i_constant) { m_constant = i_constant; }

    /** "constant": the factor. */
    void refreshParams(cObj* i_params) override;

private:
    float m_constant = 1.0f;
};
