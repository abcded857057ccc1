#pragma once

#include <QObject>
#include <QString>
#include <tarnimg/cImgFunctor.h>

/**
 * Norm of the difference of two images: the sum of the absolute differences of their pixels (NormL1), the
 * square root of the sum of the squared differences (NormL2), or the greatest absolute difference (NormInf).
 * Differences are exact, not limited to the pixel type.
 *
 * Inputs: two images of one type and size, UInt8, UInt16, SInt16 or Float32 with one channel, RGB24, RGB32.
 * Of several channels the result is that of the first one.
 */
class TARNIMG_EXPORT cImgNormDiffFunctor : public cImgFunctor {
    Q_GADGET
public:
    enum EMode { NormL1 = 0, NormL2 = 1, NormInf = 2 };
    Q_ENUM(EMode)

    cImgNormDiffFunctor();

    double operator()(const cImg& i_a, const cImg& i_b) const;

    void refreshParams(cObj* i_params) override;

private:
    QString m_mode = QStringLiteral("NormL1");
};
