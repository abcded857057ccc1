#pragma once

#include <QObject>
#include <QString>
#include <tarnimg/cImgFunctor.h>

/**
 * Norm of an image: the sum of the absolute values of its pixels (NormL1), the square root of the sum of
 * their squares (NormL2), or the greatest absolute value (NormInf). Nothing is divided by the number of
 * pixels.
 *
 * Inputs: UInt8, UInt16, SInt16 or Float32 with one channel, RGB24, RGB32.
 */
class TARNIMG_EXPORT cImgNormFunctor : public cImgFunctor {
    Q_GADGET
public:
    enum EMode { NormL1 = 0, NormL2 = 1, NormInf = 2 };
    Q_ENUM(EMode)

    cImgNormFunctor();

    /** The norm of the image; of several channels that of the first one. */
    double operator()(const cImg& i_image) const;

    /**
     * The norm over the pixels whose mask byte is not 0; of RGB24 that of red. SInt16 and RGB32 have no
     * masked norm: the result is 0.
     *
     * Only a UInt8 image is a mask. Anything else, also an image that is not valid, counts as a mask that
     * selects every pixel, whatever it holds. Rows that a lower mask does not have are left out; the result
     * is 0 if the mask is narrower than the image.
     */
    double operator()(const cImg& i_image, const cImg& i_mask) const;

    /** The norm of each channel of an RGB24 or RGB32 image; the array has an element for each. For other
     * types it stays as it is. */
    void operator()(const cImg& i_image, double* o_norms) const;

    void refreshParams(cObj* i_params) override;

private:
    QString m_mode = QStringLiteral("NormL1");
};
