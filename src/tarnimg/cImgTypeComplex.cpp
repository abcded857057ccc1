#include <tarnimg/cImgTypeComplex.h>

#include "fillPixels.h"
#include "typeParams.h"

#include <tarnimg/cImg.h>

#include <QFontMetrics>
#include <QVariant>
#include <cstring>

cImgTypeComplex::cImgTypeComplex() : cImgType(sizeof(cFltComplex), Complex, cDblRange()) {}

void cImgTypeComplex::setNumChannels(unsigned)
{
    static const QStringList s_styles {QStringLiteral("Default"), QStringLiteral("Imaginary"),
        QStringLiteral("Real"), QStringLiteral("Magnitude"), QStringLiteral("Phase")};
    setFixedChannels(2, s_styles);
}

unsigned cImgTypeComplex::getPixelSize() const { return sizeof(cFltComplex); }

unsigned cImgTypeComplex::getChannelPixelSize() const { return sizeof(float); }

QString cImgTypeComplex::pixelToString(const unsigned char* i_pixel, bool) const
{
    cFltComplex value;
    std::memcpy(&value, i_pixel, sizeof(value));
    return QStringLiteral("Re:%1 Im:%2")
        .arg(QString::number(double(value.getReal()), 'f', 3),
            QString::number(double(value.getImaginary()), 'f', 3));
}

QSize cImgTypeComplex::getPixelStringSize(const QFont& i_font, bool) const
{
    const QSize line = QFontMetrics(i_font).boundingRect(QStringLiteral("Re:10000.000 Im:10000.000")).size();
    return {line.width(), line.height() * 3};
}

cMapObj cImgTypeComplex::getParams() const
{
    cMapObj params = cImgType::getParams();
    params.remove(QStringLiteral("AutoRange"));
    typeParams::write(params, "useLog", m_useLog);
    typeParams::write(params, "factor", m_factor);
    typeParams::write(params, "moveCenter", m_moveCenter);
    return params;
}

void cImgTypeComplex::setParams(const cMapObj& i_params)
{
    cImgType::setParams(i_params);
    typeParams::read(i_params, "useLog", m_useLog);
    typeParams::read(i_params, "factor", m_factor);
    typeParams::read(i_params, "moveCenter", m_moveCenter);
}

void cImgTypeComplex::fill(cImg& io_image, const QVariant& i_value) const
{
    if (i_value.userType() == qMetaTypeId<cFltComplex>() && io_image.isKindOf(Complex))
        fillPixels(io_image, i_value.value<cFltComplex>());
}
