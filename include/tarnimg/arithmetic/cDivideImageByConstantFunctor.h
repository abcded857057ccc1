#pragma once

#include <tarnimg/cImgFunctor.h>

/**
 * Quotient of an image and a constant: pixel / constant.
 *
 * Inputs: UInt8, UInt16, SInt16 or Float32 with one channel, which are divided by "constant", RGB24 and
 * RGB32, which are divided by a constant for each colour. Float32 is divided in single precision.
 *
 * On integers the constant acts as d / 2^s with d = trunc(constant * 2^s), where s is the least that makes
 * this exact, or the greatest with constant * 2^s below 2^8, and at least 1 for a fraction. d is cut to the
 * pixel's width. Colours share one s, the greatest that one of them needs, and the fourth channel is divided
 * by 2^s / 2^s; their d are bytes. The quotient is rounded to nearest, ties to even, and saturated.
 *
 * A d of 0 fails: the whole image is refused, and in place it keeps its pixels. That is so for a constant of
 * 0, and on RGB32 for every colour that needs an s above 7, because 2^s is no byte then.
 */
class TARNIMG_EXPORT cDivideImageByConstantFunctor : public cImgFunctor {
public:
    cDivideImageByConstantFunctor();

    cImg operator()(const cImg& i_image) const;
    /** In place. */
    void operator()(cImg& io_image) const;

    double getConstant() const { return m_constant; }
    double getConstantRed() const { return m_constantRed; }
    double getConstantGreen() const { return m_constantGreen; }
    double getConstantBlue() const { return m_constantBlue; }
    void setConstant(double i_constant) { m_constant = i_constant; }
    void setConstantRed(double i_constant) { m_constantRed = i_constant; }
    void setConstantGreen(double i_constant) { m_constantGreen = i_constant; }
    void setConstantBlue(double i_constant) { m_constantBlue = i_constant; }

    /** "constant", "constantRed", "constantGreen", "constantBlue": the divisors. */
    void refreshParams(cObj* i_params) override;

private:
    double m_constant = 1.0;
    double m_constantRed = 1.0;
    double m_constantGreen = 1.0;
    double m_constantBlue = 1.0;
};
