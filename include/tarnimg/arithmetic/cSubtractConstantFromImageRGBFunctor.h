#pragma once

#include <QColor>
#include <tarnimg/cImgFunctor.h>

/**
 * Difference of a colour image and a colour, pixel - constant, saturated.
 *
 * Inputs: RGB24 or RGB32. Red, green and blue of the constant are subtracted from the channels 0, 1 and 2;
 * the fourth channel stays as it is. An invalid colour reads as black.
 */
class TARNIMG_EXPORT cSubtractConstantFromImageRGBFunctor : public cImgFunctor {
public:
    cSubtractConstantFromImageRGBFunctor();

    cImg operator()(const cImg& i_image) const;
    /** In place. */
    void operator()(cImg& io_image) const;

    const QColor& getConstant() const { return m_constant; }
    void setConstant(const QColor& i_constant) { m_constant = i_constant; }

    /** "constant": the subtrahend. */
    void refreshParams(cObj* i_params) override;

private:
    QColor m_constant;
};
