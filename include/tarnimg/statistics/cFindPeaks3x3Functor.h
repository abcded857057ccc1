#pragma once

#include <QString>
#include <QVector>
#include <tarnbase/c2DPoint.h>
#include <tarnimg/cImgFunctor.h>

/**
 * Pixels that are above a threshold and greater than each of their neighbours.
 *
 * Inputs: Float32 or SInt32 with one channel. Peaks come row by row and from the left, and no more than
 * `maxPeaks`: the search ends with the last one that fits. Equal neighbours are no peaks, and neither is NaN
 * or what lies beside it. On SInt32 the threshold is truncated toward zero and cut to 32 bits.
 */
class TARNIMG_EXPORT cFindPeaks3x3Functor : public cImgFunctor {
    Q_GADGET
public:
    /** The neighbours that count: all eight, or the four that share a side. */
    enum ENorm { NormInf = 0, NormL1 = 1 };
    Q_ENUM(ENorm)

    cFindPeaks3x3Functor();

    /** Fails with the text "maxPeaks must be > 0 and norm must be < 2." if no peak is wanted. */
    QVector<c2DPoint<int>> operator()(const cImg& i_image) const;

    float getThreshold() const { return m_threshold; }
    void setThreshold(float i_threshold) { m_threshold = i_threshold; }
    unsigned getMaxPeaks() const { return m_maxPeaks; }
    void setMaxPeaks(unsigned i_maxPeaks) { m_maxPeaks = i_maxPeaks; }
    unsigned getBorder() const { return m_border; }
    /** So many rows and columns on each side have no peaks; with 0 neighbours outside do not count. */
    void setBorder(unsigned i_border) { m_border = i_border; }
    const QString& getNorm() const { return m_norm; }
    /** The key of an `ENorm`. */
    void setNorm(const QString& i_norm) { m_norm = i_norm; }

    /** "threshold", "maxPeaks", "border" and "norm". */
    void refreshParams(cObj* i_params) override;

private:
    float m_threshold = 0.0f;
    unsigned m_maxPeaks = 10;
    unsigned m_border = 1;
    QString m_norm = QStringLiteral("NormInf");
};
