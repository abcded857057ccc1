#include <tarnimg/cImgTypeGradient.h>

#include "fillPixels.h"
#include "typeParams.h"

#include <tarnimg/cImg.h>
#include <tarnimg/cImgTypeGradI16.h>
#include <tarnimg/cImgTypeGradI32.h>

#include <QFontMetrics>
#include <QVariant>
#include <cstring>

template <class T>
cImgTypeGradient<T>::cImgTypeGradient(ImageTypes i_type)
    : cImgType(sizeof(T), i_type, cDblRange(-32768.0, 32767.0))
{
}

template <class T> void cImgTypeGradient<T>::setNumChannels(unsigned)
{
    static const QStringList s_styles {QStringLiteral("Dx"), QStringLiteral("Dy"), QStringLiteral("Absolute"),
        QStringLiteral("AbsoluteAndDirection"), QStringLiteral("ProjectionOfDirection")};
    setFixedChannels(2, s_styles);
}

template <class T> unsigned cImgTypeGradient<T>::getPixelSize() const { return sizeof(T); }

template <class T>
QString cImgTypeGradient<T>::pixelToString(const unsigned char* i_pixel, bool i_hexadecimal) const
{
    typename T::first_type components[2];
    std::memcpy(components, i_pixel, sizeof(components));
    const int base = i_hexadecimal ? 16 : 10;
    return QStringLiteral("dx:%1 dy:%2")
        .arg(QString::number(components[0], base), QString::number(components[1], base));
}

template <class T>
QSize cImgTypeGradient<T>::getPixelStringSize(const QFont& i_font, bool i_hexadecimal) const
{
    const QString sample = QStringLiteral("dx:") + QString::number(-32768, i_hexadecimal ? 16 : 10);
    const QSize line = QFontMetrics(i_font).boundingRect(sample).size();
    return {line.width() + 5, line.height() * 2};
}

template <class T> cMapObj cImgTypeGradient<T>::getParams() const
{
    cMapObj params = cImgType::getParams();
    params.remove(QStringLiteral("AutoRange"));
    typeParams::write(params, "factor", m_factor);
    typeParams::write(params, "absolute", m_absolute);
    typeParams::write(params, "angle", m_angle);
    return params;
}

template <class T> void cImgTypeGradient<T>::setParams(const cMapObj& i_params)
{
    cImgType::setParams(i_params);
    typeParams::read(i_params, "factor", m_factor);
    typeParams::read(i_params, "absolute", m_absolute);
    typeParams::read(i_params, "angle", m_angle);
}

template <class T> void cImgTypeGradient<T>::fill(cImg& io_image, const QVariant& i_value) const
{
    if (i_value.userType() == qMetaTypeId<T>() && io_image.isKindOf(getTypeId()))
        fillPixels(io_image, i_value.value<T>());
}

template class cImgTypeGradient<QPair<short, short>>;
template class cImgTypeGradient<QPair<int, int>>;

cImgTypeGradI16::cImgTypeGradI16() : cImgTypeGradient(Gradient16) {}

cImgTypeGradI32::cImgTypeGradI32() : cImgTypeGradient(Gradient32) {}
