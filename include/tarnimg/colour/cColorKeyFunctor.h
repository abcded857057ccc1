#pragma once

#include <QColor>
#include <tarnimg/cImgFunctor.h>

/**
 * The pixels of the first image, and those of the second where the first has the colour of a key.
 *
 * Inputs: two images of one type and size, of UInt8 or UInt16 with one channel, RGB24 or RGB32. The key of a
 * grey image is cut to its 8 or 16 bits. On RGB32 the alpha must be that of the key, too.
 */
class TARNIMG_EXPORT cColorKeyFunctor : public cImgFunctor {
public:
    cColorKeyFunctor();

    cImg operator()(const cImg& i_a, const cImg& i_b) const;

    const QColor& getColorKeyRGB() const { return m_colorKeyRGB; }
    void setColorKeyRGB(const QColor& i_key) { m_colorKeyRGB = i_key; }
    unsigned getColorKeyGray() const { return m_colorKeyGray; }
    void setColorKeyGray(unsigned i_key) { m_colorKeyGray = i_key; }

    /** "colorKeyRGB" and "colorKeyGray": the keys of colour and of grey images. */
    void refreshParams(cObj* i_params) override;

private:
    QColor m_colorKeyRGB {Qt::black};
    unsigned int m_colorKeyGray = 0;
};
