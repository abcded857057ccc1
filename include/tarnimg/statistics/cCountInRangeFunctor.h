#pragma once

#include <tarnimg/cImgFunctor.h>

/**
 * Number of pixels whose value lies between two bounds, both included.
 *
 * Inputs: UInt8 or Float32 with one channel. On UInt8 the bounds are truncated toward zero to integers and
 * cut to eight bits: 256 means 0. It fails if the lower bound lies above the upper one, as the pixel type
 * holds them. What is not a number is never counted.
 */
class TARNIMG_EXPORT cCountInRangeFunctor : public cImgFunctor {
public:
    cCountInRangeFunctor();

    int operator()(const cImg& i_image) const;

    void refreshParams(cObj* i_params) override;

private:
    float m_lowerBound = 0;
    float m_upperBound = 255.0f;
};
