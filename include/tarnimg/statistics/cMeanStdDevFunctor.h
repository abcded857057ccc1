#pragma once

#include <tarnimg/cImgFunctor.h>

/**
 * Mean and standard deviation of the pixels, as those of a whole population: the squared deviations are
 * divided by the number of pixels.
 *
 * Inputs: UInt8, UInt16 or Float32 with one channel; RGB24, of which the parameter "channelOfInterest" (1 to
 * 3) picks a channel.
 */
class TARNIMG_EXPORT cMeanStdDevFunctor : public cImgFunctor {
public:
    cMeanStdDevFunctor();

    void operator()(const cImg& i_image, double& o_mean, double& o_stdDev) const;

    /**
     * Over the pixels whose mask byte is not 0; both results are 0 if there is none. The mask is a valid
     * image of any type, whose rows are read as one byte for each pixel of the image; it fails if they are
     * shorter than that. Rows of the image that a lower mask does not have are left out.
     */
    void operator()(const cImg& i_image, const cImg& i_mask, double& o_mean, double& o_stdDev) const;

    void refreshParams(cObj* i_params) override;

private:
    unsigned int m_channelOfInterest = 1;
};
