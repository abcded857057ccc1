#pragma once

#include <tarnimg/cImgFunctor.h>

/**
 * Hue, saturation and value of each pixel, as bytes of an image of the same type.
 *
 * Value is the greatest channel, saturation its distance from the least one by the value, hue the angle from
 * red over green and blue; all are scaled to 0 to 255 and rounded to nearest. Grey has hue and saturation 0.
 * The alpha of RGB32 becomes 255.
 *
 * Inputs: RGB24, RGB32. The work is split into row bands for "numThreads" threads; below 1 as many as the
 * machine has.
 */
class TARNIMG_EXPORT cConvertRGBToHSVFunctor : public cImgFunctor {
public:
    cConvertRGBToHSVFunctor();

    cImg operator()(const cImg& i_image) const;

    int getNumThreads() const { return m_numThreads; }
    void setNumThreads(int i_numThreads) { m_numThreads = i_numThreads; }

    /** "numThreads": number of row bands that are computed at the same time. */
    void refreshParams(cObj* i_params) override;

private:
    int m_numThreads = 1;
};
