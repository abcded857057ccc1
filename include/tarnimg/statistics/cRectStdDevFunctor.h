#pragma once

#include <tarnbase/cRect.h>
#include <tarnimg/cImgFunctor.h>

/**
 * Standard deviation of the pixels under a rectangle, at every place of an image, from its integral images.
 *
 * Inputs: the integral, SInt32 or Float32 with one channel, and the integral of the squares, Float64 and of
 * the same size, both with a column and a row more than the image (`cSqrIntegralFunctor`). The result is
 * Float32. Its pixel (x, y) is the population deviation under the rectangle moved by (x, y); it is as large
 * as the integral less the rectangle's right and bottom edge.
 *
 * Two things are not what one expects: the rectangle must end before the integral does, or the call fails
 * with the text of ippStsStepErr; and an integral of Float64 is taken, but nothing is computed: the pixels of
 * the result are undefined. A rectangle without pixels, or with an edge left of or above the image, fails
 * with the text of ippStsRectErr.
 */
class TARNIMG_EXPORT cRectStdDevFunctor : public cImgFunctor {
public:
    cRectStdDevFunctor();

    cImg operator()(const cImg& i_integral, const cImg& i_sqrIntegral) const;

    cRect<int> getRect() const { return m_rect; }
    void setRect(const cRect<int>& i_rect) { m_rect = i_rect; }

    /** "rect": the rectangle for the first pixel of the result. */
    void refreshParams(cObj* i_params) override;

private:
    cRect<int> m_rect {0, 0, 10, 10};
};
