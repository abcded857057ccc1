#include <tarnimg/cImgTypeRGB32.h>

#include "enumKeys.h"
#include "fillPixels.h"

#include <customipp/customipp.h>
#include <tarnbase/cRgb.h>
#include <tarnbase/cRgba.h>
#include <tarnimg/cImg.h>

#include <QVariant>

cImgTypeRGB32::cImgTypeRGB32() : cImgTypeRGB(4, RGB32) {}

void cImgTypeRGB32::setNumChannels(unsigned)
{
    static const QStringList s_styles = enumKeys<Modes>();
    setFixedChannels(4, s_styles);
}

void cImgTypeRGB32::fill(cImg& io_image, const QVariant& i_value) const
{
    if (!io_image.isKindOf(RGB32))
        return;
    cRgba value;
    if (i_value.userType() == qMetaTypeId<cRgba>()) {
        value = i_value.value<cRgba>();
    } else if (i_value.userType() == qMetaTypeId<cRgb>()) {
        const auto rgb = i_value.value<cRgb>();
        value = cRgba(rgb.getRed(), rgb.getGreen(), rgb.getBlue());
    } else {
        return;
    }
    auto* to = io_image.getData();
    const Ipp8u bytes[] = {value.getRed(), value.getGreen(), value.getBlue(), value.getAlpha()};
    const IppiSize size {int(io_image.getWidth()), int(io_image.getHeight())};
    if (io_image.getXPitch() != 4
        || ippiSet_8u_C4R(bytes, to, int(io_image.getYPitch()), size) != ippStsNoErr)
        fillPixels(io_image, value);
}

#include "moc_cImgTypeRGB32.cpp"
