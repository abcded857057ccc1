#pragma once

#include <tarnimg/cImgFunctor.h>

/**
 * Product of a colour image and a constant for each colour.
 *
 * Inputs: RGB24 or RGB32. The constants act as f / 2^s with f = trunc(constant * 2^s) and one s for all
 * three: the greatest that one of them needs, which is the least that makes it an integer, or the greatest
 * that keeps it below 2^8, and at least 1 for a fraction. The product is rounded to nearest, ties to even,
 * and saturated. The fourth channel is multiplied by 2^s / 2^s.
 *
 * Each f is one byte, and what exceeds it is cut: beside a constant of 0.1, which needs s = 11, a constant of
 * 1 comes to a factor of 0, and so does the fourth channel's.
 */
class TARNIMG_EXPORT cMultiplyConstantWithImageRGBFunctor : public cImgFunctor {
public:
    cMultiplyConstantWithImageRGBFunctor();

    cImg operator()(const cImg& i_image) const;
    /** In place. */
    void operator()(cImg& io_image) const;

    double getConstantRed() const { return m_constantRed; }
    double getConstantGreen() const { return m_constantGreen; }
    double getConstantBlue() const { return m_constantBlue; }
    void setConstantRed(double i_constant) { m_constantRed = i_constant; }
    void setConstantGreen(double i_constant) { m_constantGreen = i_constant; }
    void setConstantBlue(double i_constant) { m_constantBlue = i_constant; }

    /** "constantRed", "constantGreen", "constantBlue": the factors. */
    void refreshParams(cObj* i_params) override;

private:
    double m_constantRed = 1.0;
    double m_constantGreen = 1.0;
    double m_constantBlue = 1.0;
};
