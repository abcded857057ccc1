#pragma once

#include <tarnimg/cImgFunctor.h>

/**
 * Sum of an image and a constant.
 *
 * Inputs: UInt8, UInt16, SInt16 or Float32 with one channel. On integers the constant is truncated toward
 * zero and cut to the pixel's width (1.9 acts as 1, on UInt8 300 as 44), and the sum is saturated. Float32 is
 * added in single precision.
 */
class TARNIMG_EXPORT cAddConstantToImageFunctor : public cImgFunctor {
public:
    cAddConstantToImageFunctor();

    cImg operator()(const cImg& i_image) const;
    /** In place. */
    void operator()(cImg& io_image) const;

    float getConstant() const { return m_constant; }
    void setConstant(float i_constant) { m_constant = i_constant; }

    /** "constant": the summand. */
    void refreshParams(cObj* i_params) override;

private:
    float m_constant = 0.0f;
};
