// How the types with any number of channels are shown: the channel of the style, its range as grey values.
#include "display/picture.h"
#include "display/rendering.h"

#include <tarnimg/cImgTypeUInt8.h>

#include <algorithm>
#include <limits>
#include <type_traits>

namespace {

using conversion::Program;

/** Subtracts the low end and multiplies by a constant with a power of two as scale, saturated. */
template <class T> void addIntegerChain(Program& io_program, const cDblRange& i_range)
{
    conversion::addSubtract<T>(io_program, 1, display::toGrey(i_range));
    conversion::addStretch<T>(io_program, 1, display::toGrey(i_range));
}

/** How the elements of a type become bytes. */
template <class T> void addGreyValues(display::Rendering& io_rendering, const cDblRange& i_range)
{
    // 32 signed bits are truncated, all other integers rounded.
    constexpr auto rounding
        = std::is_same_v<T, qint32> ? display::Rounding::Truncated : display::Rounding::HalvesUp;
    io_rendering.addScale<T>(display::IntegerScale(
        i_range, rounding, std::numeric_limits<std::make_unsigned_t<T>>::digits, std::is_signed_v<T>));
}

template <> void addGreyValues<double>(display::Rendering& io_rendering, const cDblRange& i_range)
{
    io_rendering.addScale(display::DoubleScale(i_range));
}

template <> void addGreyValues<float>(display::Rendering& io_rendering, const cDblRange& i_range)
{
    io_rendering.addScale(display::Float32Scale(display::toGrey(i_range)));
}

template <> void addGreyValues<quint8>(display::Rendering& io_rendering, const cDblRange& i_range)
{
    addIntegerChain<Ipp8u>(io_rendering.steps(), i_range);
    if (io_rendering.steps().isEmpty())
        conversion::addMove(io_rendering.steps(), 1, ippiCopy_8u_C1R);
}

/** Stretched to a byte's values in 16 bits; what exceeds them saturates. */
template <> void addGreyValues<quint16>(display::Rendering& io_rendering, const cDblRange& i_range)
{
    const display::WordScale scale(display::toGrey(i_range));
    if (scale.usable) {
        io_rendering.addScale(scale);
        return;
    }
    addIntegerChain<Ipp16u>(io_rendering.steps(), i_range);
    conversion::addMove(io_rendering.steps(), 1, ippiConvert_16u8u_C1R);
}

/** From black to a colour; null for black, which stands for grey. */
QVector<QRgb> rampTo(const QColor& i_colour)
{
    const qreal parts[] = {i_colour.redF(), i_colour.greenF(), i_colour.blueF()};
    if (std::none_of(std::begin(parts), std::end(parts), [](qreal part) { return part > 0.0; }))
        return {};
    QVector<QRgb> ramp(256);
    for (int i = 0; i < ramp.size(); ++i)
        ramp[i] = qRgb(int(i * parts[0]), int(i * parts[1]), int(i * parts[2]));
    return ramp;
}

} // namespace

template <class T> QImage cImgTypeScalar<T>::makeDisplayImage(const cImg& i_image)
{
    if (!i_image.isKindOf(getTypeId()))
        return {};
    adjustRange(i_image);
    QImage out;
    makeDisplayImageHelper(i_image, out);
    out = display::checkedPicture(std::move(out));
    display::Rendering rendering(i_image);
    const unsigned channels = i_image.getNumChannels();
    if (channels > 1)
        rendering.addChannel(std::min(getStyleID(), channels - 1), channels, sizeof(T));
    addGreyValues<T>(rendering, getRange());
    rendering.run(out);
    applyGamma(out);
    return out;
}

QImage cImgTypeUInt8::makeDisplayImage(const cImg& i_image)
{
    QImage out = cImgTypeScalar::makeDisplayImage(i_image);
    const QVector<QRgb> colours = rampTo(m_colorize);
    if (!out.isNull() && !colours.isEmpty())
        out.setColorTable(colours);
    return out;
}

template QImage cImgTypeScalar<quint8>::makeDisplayImage(const cImg&);
template QImage cImgTypeScalar<quint16>::makeDisplayImage(const cImg&);
template QImage cImgTypeScalar<quint32>::makeDisplayImage(const cImg&);
template QImage cImgTypeScalar<qint8>::makeDisplayImage(const cImg&);
template QImage cImgTypeScalar<qint16>::makeDisplayImage(const cImg&);
template QImage cImgTypeScalar<qint32>::makeDisplayImage(const cImg&);
template QImage cImgTypeScalar<qint64>::makeDisplayImage(const cImg&);
template QImage cImgTypeScalar<float>::makeDisplayImage(const cImg&);
template QImage cImgTypeScalar<double>::makeDisplayImage(const cImg&);
