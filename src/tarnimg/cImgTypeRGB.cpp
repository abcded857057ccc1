#include <tarnimg/cImgTypeRGB.h>

#include "typeParams.h"

#include <QColor>
#include <QFontMetrics>

cImgTypeRGB::cImgTypeRGB(unsigned i_channels, ImageTypes i_type)
    : cImgType(i_channels, i_type, cDblRange(0.0, 255.0))
{
}

unsigned cImgTypeRGB::getPixelSize() const { return getNumChannels(); }

unsigned cImgTypeRGB::getChannelPixelSize() const { return 1; }

QString cImgTypeRGB::pixelToString(const unsigned char* i_pixel, bool i_hexadecimal) const
{
    const auto text
        = [i_hexadecimal](int i_value) { return QString::number(i_value, i_hexadecimal ? 16 : 10); };
    const QString& style = getStyle();
    if (style == QLatin1String("Hue") || style == QLatin1String("Value")
        || style == QLatin1String("Saturation")) {
        const QColor colour(i_pixel[0], i_pixel[1], i_pixel[2]);
        return QStringLiteral("h:%1 s:%2 v:%3")
            .arg(text(colour.hue()), text(colour.saturation()), text(colour.value()));
    }
    if (getTypeId() == RGB24)
        return QStringLiteral("r:%1 g:%2 b:%3").arg(text(i_pixel[0]), text(i_pixel[1]), text(i_pixel[2]));
    return QStringLiteral("r:%1 g:%2 b:%3 a:%4")
        .arg(text(i_pixel[0]), text(i_pixel[1]), text(i_pixel[2]), text(i_pixel[3]));
}

QSize cImgTypeRGB::getPixelStringSize(const QFont& i_font, bool i_hexadecimal) const
{
    const QString sample = QStringLiteral("r:") + QString::number(255, i_hexadecimal ? 16 : 10);
    const QSize line = QFontMetrics(i_font).boundingRect(sample).size();
    return {line.width() + 5, line.height() * int(getNumChannels())}; // one line for each channel
}

cMapObj cImgTypeRGB::getParams() const
{
    cMapObj params = cImgType::getParams();
    typeParams::write(params, "Brightness", m_brightness);
    typeParams::write(params, "Hue", m_hue);
    typeParams::write(params, "Saturation", m_saturation);
    typeParams::write(params, "Red", m_red);
    typeParams::write(params, "Green", m_green);
    typeParams::write(params, "Blue", m_blue);
    return params;
}

void cImgTypeRGB::setParams(const cMapObj& i_params)
{
    cImgType::setParams(i_params);
    typeParams::read(i_params, "Brightness", m_brightness);
    typeParams::read(i_params, "Hue", m_hue);
    typeParams::read(i_params, "Saturation", m_saturation);
    typeParams::read(i_params, "Red", m_red);
    typeParams::read(i_params, "Green", m_green);
    typeParams::read(i_params, "Blue", m_blue);
}
