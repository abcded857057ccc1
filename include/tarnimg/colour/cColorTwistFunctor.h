#pragma once

#include <tarnbase/cMatrix.h>
#include <tarnimg/cImgFunctor.h>

/**
 * Red, green and blue of each pixel by a matrix of three rows and four columns: the new channel i is the sum
 * of the three channels with the first three factors of row i, and the fourth number of the row, in single
 * precision, rounded to nearest and limited to 0 to 255.
 *
 * Inputs: RGB24, RGB32, whose alpha becomes 255. The result has the type of the input. Any other form of
 * matrix fails.
 */
class TARNIMG_EXPORT cColorTwistFunctor : public cImgFunctor {
public:
    cColorTwistFunctor();

    cImg operator()(const cImg& i_image) const;

    const cMatrix<float>& getTwist() const { return m_twist; }
    void setTwist(const cMatrix<float>& i_twist) { m_twist = i_twist; }

    /** "twist": the matrix. */
    void refreshParams(cObj* i_params) override;

private:
    cMatrix<float> m_twist {3, 4};
};
