#pragma once

#include <tarnimg/cImgFunctor.h>

/**
 * Integral images of the pixels and of their squares, as `cRectStdDevFunctor` takes them.
 *
 * Input: UInt8 with one channel. Both results have a column and a row more than the input, see
 * `cIntegralFunctor`. The sums are SInt32, which wrap, or in float mode Float32; those of the squares are
 * Float64.
 */
class TARNIMG_EXPORT cSqrIntegralFunctor : public cImgFunctor {
public:
    cSqrIntegralFunctor();

    /** Replaces both results; on a failure they stay as they are. */
    void operator()(const cImg& i_image, cImg& o_integral, cImg& o_sqrIntegral) const;

    float getOffset() const { return m_offset; }
    /** Added to each sum; truncated toward zero and cut to 32 bits unless in float mode. */
    void setOffset(float i_offset) { m_offset = i_offset; }
    double getOffsetSqr() const { return m_offsetSqr; }
    /** Added to each sum of squares. */
    void setOffsetSqr(double i_offset) { m_offsetSqr = i_offset; }
    bool isFloatMode() const { return m_floatMode; }
    void setFloatMode(bool i_floatMode) { m_floatMode = i_floatMode; }

    /** "offset", "offsetSqr" and "floatMode". */
    void refreshParams(cObj* i_params) override;

private:
    float m_offset = 0.0f;
    double m_offsetSqr = 0.0;
    bool m_floatMode = false;
};
