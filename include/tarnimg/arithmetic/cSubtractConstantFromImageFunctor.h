#pragma once

#include <tarnimg/cImgFunctor.h>

/**
 * Difference of an image and a constant: pixel - constant.
 *
 * Inputs: UInt8, UInt16, SInt16 or Float32 with one channel. On integers the constant is truncated toward
 * zero and cut to the pixel's width (1.9 acts as 1, on UInt8 300 as 44), and the difference is saturated.
 * Float32 is subtracted in single precision.
 *
 * RGB24 and RGB32 are accepted too, but nothing is computed for them: the pixels of a new image are
 * undefined, and in place the image stays as it is. For colour images there is
 * cSubtractConstantFromImageRGBFunctor.
 */
class TARNIMG_EXPORT cSubtractConstantFromImageFunctor : public cImgFunctor {
public:
    cSubtractConstantFromImageFunctor();

    cImg operator()(const cImg& i_image) const;
    /** In place. */
    void operator()(cImg& io_image) const;

    double getConstant() const { return m_constant; }
    void setConstant(double i_constant) { m_constant = i_constant; }

    /** "constant": the subtrahend. */
    void refreshParams(cObj* i_params) override;

private:
    double m_constant = 0.0;
};
