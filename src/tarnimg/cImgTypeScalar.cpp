#include <tarnimg/cImgTypeScalar.h>

#include <customipp/customipp.h>
#include <tarnimg/cImg.h>

#include <QFontMetrics>
#include <QVariant>
#include <cstring>
#include <limits>
#include <type_traits>

namespace {

QString toText(double i_value) { return QString::number(i_value, 'f', 5); }

template <class T> QString toText(T i_value, bool i_hexadecimal)
{
    if constexpr (std::is_floating_point_v<T>)
        return toText(double(i_value));
    else
        return QString::number(i_value, i_hexadecimal ? 16 : 10);
}

/** A value with a long text. */
template <class T> constexpr T sample()
{
    if constexpr (std::is_floating_point_v<T>)
        return -32768;
    else
        return std::is_signed_v<T> ? std::numeric_limits<T>::min() : std::numeric_limits<T>::max();
}

IppStatus set(quint8 i_value, quint8* o_to, int i_step, IppiSize i_size)
{
    return ippiSet_8u_C1R(i_value, o_to, i_step, i_size);
}

IppStatus set(quint16 i_value, quint16* o_to, int i_step, IppiSize i_size)
{
    return ippiSet_16u_C1R(i_value, o_to, i_step, i_size);
}

IppStatus set(qint16 i_value, qint16* o_to, int i_step, IppiSize i_size)
{
    return ippiSet_16s_C1R(i_value, o_to, i_step, i_size);
}

IppStatus set(qint32 i_value, qint32* o_to, int i_step, IppiSize i_size)
{
    return ippiSet_32s_C1R(i_value, o_to, i_step, i_size);
}

IppStatus set(float i_value, float* o_to, int i_step, IppiSize i_size)
{
    return ippiSet_32f_C1R(i_value, o_to, i_step, i_size);
}

// The pixel layer has no forms of their own for these two; the bits are the same.
IppStatus set(qint8 i_value, qint8* o_to, int i_step, IppiSize i_size)
{
    return set(quint8(i_value), reinterpret_cast<quint8*>(o_to), i_step, i_size);
}

IppStatus set(quint32 i_value, quint32* o_to, int i_step, IppiSize i_size)
{
    return set(qint32(i_value), reinterpret_cast<qint32*>(o_to), i_step, i_size);
}

/** Whether the pixel layer has filled an image of one channel. */
template <class T> bool fillFast(cImg& io_image, T i_value)
{
    if constexpr (requires(T * to) { set(i_value, to, 0, IppiSize()); }) {
        auto* to = reinterpret_cast<T*>(io_image.getData());
        const IppiSize size {int(io_image.getWidth()), int(io_image.getHeight())};
        return io_image.getXPitch() == sizeof(T)
            && set(i_value, to, int(io_image.getYPitch()), size) == ippStsNoErr;
    } else {
        return false;
    }
}

} // namespace

template <class T>
cImgTypeScalar<T>::cImgTypeScalar(ImageTypes i_type, const cDblRange& i_maxRange)
    : cImgType(sizeof(T), i_type, i_maxRange)
{
}

template <class T>
QString cImgTypeScalar<T>::pixelToString(const unsigned char* i_pixel, bool i_hexadecimal) const
{
    T value;
    std::memcpy(&value, i_pixel + std::size_t(getStyleID()) * sizeof(T), sizeof(T));
    return toText(value, i_hexadecimal);
}

template <class T> QSize cImgTypeScalar<T>::getPixelStringSize(const QFont& i_font, bool i_hexadecimal) const
{
    return QFontMetrics(i_font).boundingRect(toText(sample<T>(), i_hexadecimal)).size();
}

template <class T> void cImgTypeScalar<T>::fill(cImg& io_image, const QVariant& i_value) const
{
    QVariant converted = i_value;
    if (!converted.convert(qMetaTypeId<T>()) || !io_image.isKindOf(getTypeId()))
        return;
    const T value = converted.value<T>();
    const unsigned channels = io_image.getNumChannels();
    if (channels == 1 && fillFast(io_image, value))
        return;
    unsigned char* row = io_image.getData();
    for (unsigned y = 0; y < io_image.getHeight(); ++y, row += io_image.getYPitch()) {
        unsigned char* pixel = row;
        for (unsigned x = 0; x < io_image.getWidth(); ++x, pixel += io_image.getXPitch())
            for (unsigned channel = 0; channel < channels; ++channel)
                std::memcpy(pixel + channel * sizeof(T), &value, sizeof(T));
    }
}

template class cImgTypeScalar<quint8>;
template class cImgTypeScalar<quint16>;
template class cImgTypeScalar<quint32>;
template class cImgTypeScalar<qint8>;
template class cImgTypeScalar<qint16>;
template class cImgTypeScalar<qint32>;
template class cImgTypeScalar<qint64>;
template class cImgTypeScalar<float>;
template class cImgTypeScalar<double>;
