#pragma once

#include <QSize>
#include <tarnimg/cImgFunctor.h>

class QVariant;

/**
 * Least and greatest pixel of each block of an image, and of the whole image.
 *
 * Inputs: UInt8, UInt16, SInt16 or Float32 with one channel. Blocks begin at the top left; the last of a row
 * or column may be partial. The results have a pixel for each block and the type of the input. NaN is passed
 * over; a block of nothing but NaN gives NaN, and a zero is a positive one.
 *
 * A block without width or height fails with the text "blockSize must be > 0.".
 */
class TARNIMG_EXPORT cBlockMinMaxFunctor : public cImgFunctor {
public:
    cBlockMinMaxFunctor();

    /**
     * Either image may be null and is not made then; on a failure both stay as they are. The extremes of the
     * whole image come in the metatype of the pixels: UChar, UShort, Short or Float.
     */
    void operator()(const cImg& i_image, cImg* o_localMin, cImg* o_localMax, QVariant& o_globalMin,
        QVariant& o_globalMax) const;

    QSize getBlockSize() const { return m_blockSize; }
    void setBlockSize(const QSize& i_blockSize) { m_blockSize = i_blockSize; }

    /** "blockSize": width and height of a block. */
    void refreshParams(cObj* i_params) override;

private:
    QSize m_blockSize {3, 3};
};
