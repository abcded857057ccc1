#include <tarnimg/cImgTypeRGB24.h>

#include "enumKeys.h"
#include "fillPixels.h"

#include <customipp/customipp.h>
#include <tarnbase/cRgb.h>
#include <tarnbase/cRgba.h>
#include <tarnimg/cImg.h>

#include <QVariant>

cImgTypeRGB24::cImgTypeRGB24() : cImgTypeRGB(3, RGB24) {}

void cImgTypeRGB24::setNumChannels(unsigned)
{
    static const QStringList s_styles = enumKeys<Modes>();
    setFixedChannels(3, s_styles);
}

void cImgTypeRGB24::fill(cImg& io_image, const QVariant& i_value) const
{
    if (!io_image.isKindOf(RGB24))
        return;
    cRgb value;
    if (i_value.userType() == qMetaTypeId<cRgb>()) {
        value = i_value.value<cRgb>();
    } else if (i_value.userType() == qMetaTypeId<cRgba>()) {
        const auto rgba = i_value.value<cRgba>();
        value = cRgb(rgba.getRed(), rgba.getGreen(), rgba.getBlue());
    } else {
        return;
    }
    auto* to = io_image.getData();
    const Ipp8u bytes[] = {value.getRed(), value.getGreen(), value.getBlue()};
    const IppiSize size {int(io_image.getWidth()), int(io_image.getHeight())};
    if (io_image.getXPitch() != 3
        || ippiSet_8u_C3R(bytes, to, int(io_image.getYPitch()), size) != ippStsNoErr)
        fillPixels(io_image, value);
}

#include "moc_cImgTypeRGB24.cpp"
