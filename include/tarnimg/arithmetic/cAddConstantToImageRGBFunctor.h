#pragma once

#include <QColor>
#include <tarnimg/cImgFunctor.h>

/**
 * Sum of a colour image and a colour, saturated.
 *
 * Inputs: RGB24 or RGB32. Red, green and blue of the constant are added to the channels 0, 1 and 2; the
 * fourth channel stays as it is. An invalid colour reads as black.
 */
class TARNIMG_EXPORT cAddConstantToImageRGBFunctor : public cImgFunctor {
public:
    cAddConstantToImageRGBFunctor();

    cImg operator()(const cImg& i_image) const;
    /** In place. */
    void operator()(cImg& io_image) const;

    const QColor& getConstant() const { return m_constant; }
    void setConstant(const QColor& i_constant) { m_constant = i_constant; }

    /** "constant": the summand. */
    void refreshParams(cObj* i_params) override;

private:
    QColor m_constant;
};
