#pragma once

#include <QColor>
#include <tarnimg/cImgFunctor.h>

/**
 * Number of pixels whose red lies between that of two colours, both included; the same for green and for
 * blue. Each channel is counted on its own.
 *
 * Input: RGB24. It fails if a channel of the lower bound lies above that of the upper one.
 */
class TARNIMG_EXPORT cCountInRangeRGBFunctor : public cImgFunctor {
public:
    cCountInRangeRGBFunctor();

    /** @param o_counts three elements: red, green, blue */
    void operator()(const cImg& i_image, int* const o_counts) const;

    void refreshParams(cObj* i_params) override;

private:
    QColor m_lowerBound {Qt::black};
    QColor m_upperBound {Qt::white};
};
