#pragma once

#include <QObject>
#include <QString>
#include <tarnimg/cImgFunctor.h>
#include <tarnimg/cWorkMemory.h>

/**
 * How well a template fits at each place of an image, by correlation.
 *
 * Inputs: two images of one type, UInt8, UInt16 or Float32 with one channel. The result is a Float32 image of
 * the extent that "mode" names. Outside the image all pixels are 0:
 *
 * - "Full": every place where the two meet; (wa + wb - 1) x (ha + hb - 1), pixel x, y having the template's
 *   last pixel on the image's pixel x, y;
 * - "Valid": the places where the template lies within the image; (wa - wb + 1) x (ha - hb + 1), pixel x, y
 *   having its first pixel on x, y;
 * - "Same": the image's size, pixel x, y having the template's pixel wb / 2, hb / 2 on x, y.
 *
 * "norm": "NormNone" is the sum of the products; "Norm" divides it by the root of both sums of squares;
 * "NormCoefficient" does so with the deviations from both means: 1 is the same picture but for brightness and
 * contrast, -1 its negative, and 0 stands where one of the two has no contrast. Sums of UInt8 are exact, the
 * others as in double precision.
 *
 * The working memory stays between calls.
 */
class TARNIMG_EXPORT cCrossCorrelationFunctor : public cImgFunctor {
    Q_GADGET
public:
    enum ENorm { NormNone = 0, Norm = 256, NormCoefficient = 512 };
    Q_ENUM(ENorm)

    cCrossCorrelationFunctor();
    /** Fails too where the template is larger than the image, in mode "Valid" only. */
    cImg operator()(const cImg& i_image, const cImg& i_template);
    void refreshParams(cObj* i_params) override;

private:
    QString m_mode = QStringLiteral("Full");
    QString m_norm = QStringLiteral("NormNone");
    cWorkMemory m_work;
};
