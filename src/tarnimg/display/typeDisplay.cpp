// What all pixel types share of their display: the indexed picture, the scratch, the gamma.
#include "display/byteTables.h"
#include "display/picture.h"

#include <tarnimg/cImg.h>
#include <tarnimg/cImgType.h>

#include <algorithm>
#include <cmath>

void cImgType::makeDisplayImageHelper(const cImg& i_image, QImage& io_out) const
{
    if (!display::fitsIndexed(i_image, io_out))
        io_out = display::newIndexedPicture(i_image.getSize(), display::greyRamp());
}

void cImgType::makeDisplayImageHelperIPP(const cImg& i_image, QImage& io_out) const
{
    makeDisplayImageHelper(i_image, io_out);
    displayScratch(i_image.getImgType().getTypeId(), i_image.getWidth(), i_image.getHeight());
}

cImg& cImgType::displayScratch(ImageTypes i_type, unsigned i_width, unsigned i_height) const
{
    if (!m_displayScratch)
        m_displayScratch = std::make_unique<cImg>();
    cImg& scratch = *m_displayScratch;
    if (!scratch.isKindOf(i_type) || scratch.getWidth() != i_width || scratch.getHeight() != i_height) {
        scratch = cImg(); // back to the pool first: the next one may be the same memory
        scratch = cImg(i_type, i_width, i_height, 1);
    }
    return scratch;
}

void cImgType::applyGamma(QImage& io_out)
{
    if (m_useAutoRange || m_gamma == 1.0 || !(m_gamma > 0.0) || io_out.isNull())
        return;
    if (m_gammaOutput.isEmpty() || m_gammaTableDirty) {
        m_gammaInput = display::everyByte();
        m_gammaOutput.resize(m_gammaInput.size());
        for (int i = 0; i < m_gammaOutput.size(); ++i)
            m_gammaOutput[i] = int(std::min(255.0, std::pow(i / 256.0, 1.0 / m_gamma) * 256.0));
        m_gammaTableDirty = false;
    }
    // One table for all bytes of a pixel: how many make a pixel does not matter.
    const display::ByteTables tables({m_gammaOutput.constData()}, m_gammaInput.constData());
    const IppiSize bytes {io_out.width() * io_out.depth() / 8, io_out.height()};
    tables.map(io_out.bits(), io_out.bytesPerLine(), bytes);
}
