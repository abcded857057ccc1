#pragma once

#include <tarnimg/cImgFunctor.h>

/**
 * Cyan, magenta, yellow and black of each pixel, as floats from 0 to 1.
 *
 * With R, G and B divided by 255 and M the greatest of them, black is K = 1 - M, and with n = 1 - K the
 * others are (n - R) / n, (n - G) / n, (n - B) / n. Black pixels have n = 0 and give NaN, NaN, NaN, 1. An
 * alpha is ignored.
 *
 * Inputs: RGB24, RGB32. The result is Float32 with 4 channels and the range 0 to 1. The work is split into
 * row bands for "numThreads" threads; below 1 as many as the machine has.
 *
 * Rows are taken as if they touched each other, from the first pixel of each band on: views whose rows are
 * apart should be cloned before.
 */
class TARNIMG_EXPORT cConvertRGBToCMYKFunctor : public cImgFunctor {
public:
    cConvertRGBToCMYKFunctor();

    cImg operator()(const cImg& i_image) const;

    int getNumThreads() const { return m_numThreads; }
    void setNumThreads(int i_numThreads) { m_numThreads = i_numThreads; }

    /** "numThreads": number of row bands that are computed at the same time. */
    void refreshParams(cObj* i_params) override;

private:
    int m_numThreads = 1;
};
