#pragma once

#include <QObject>
#include <QString>
#include <tarnimg/cImgFunctor.h>
#include <tarnimg/cWorkMemory.h>

/**
 * How far a template is from an image at each place: the sum of the squared differences.
 *
 * Inputs, result and "mode" are those of cCrossCorrelationFunctor. "norm": "NormNone" is the sum as it is;
 * "Norm" divides it by the root of both sums of squares, which may give more than 1; "NormCoefficient" is not
 * defined for a distance, and fails. Sums of UInt8 are exact, the others as in double precision.
 *
 * The working memory stays between calls.
 */
class TARNIMG_EXPORT cSqrDistanceFunctor : public cImgFunctor {
    Q_GADGET
public:
    enum ENorm { NormNone = 0, Norm = 256, NormCoefficient = 512 };
    Q_ENUM(ENorm)

    cSqrDistanceFunctor();
    /** Fails too where the template is larger than the image, in mode "Valid" only. */
    cImg operator()(const cImg& i_image, const cImg& i_template);
    void refreshParams(cObj* i_params) override;

private:
    QString m_mode = QStringLiteral("Full");
    QString m_norm = QStringLiteral("NormNone");
    cWorkMemory m_work;
};
