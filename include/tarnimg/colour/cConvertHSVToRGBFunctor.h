#pragma once

#include <tarnimg/cImgFunctor.h>

/**
 * Red, green and blue of hue, saturation and value as cConvertRGBToHSVFunctor gives them, in an image of the
 * same type.
 *
 * Hue 255 means 0. There and back, the greatest and the least channel of a colour are kept; the one between
 * them can err by up to 3. The alpha of RGB32 becomes 255.
 *
 * Inputs: RGB24, RGB32. The work is split into row bands for "numThreads" threads; below 1 as many as the
 * machine has.
 */
class TARNIMG_EXPORT cConvertHSVToRGBFunctor : public cImgFunctor {
public:
    cConvertHSVToRGBFunctor();

    cImg operator()(const cImg& i_image) const;

    int getNumThreads() const { return m_numThreads; }
    void setNumThreads(int i_numThreads) { m_numThreads = i_numThreads; }

    /** "numThreads": number of row bands that are computed at the same time. */
    void refreshParams(cObj* i_params) override;

private:
    int m_numThreads = 1;
};
