#include "display/rendering.h"

#include "display/channelRows.h"

#include <QImage>
#include <utility>

namespace display {

namespace {

/** The image, or a compact copy if there are gaps between its pixels, which the steps know nothing of. */
cImg withoutGaps(const cImg& i_image)
{
    return i_image.getXPitch() == i_image.getImgType().getPixelSize() ? i_image : i_image.clone();
}

} // namespace

Rendering::Rendering(const cImg& i_image)
    : m_image(withoutGaps(i_image)),
      m_program(m_image, m_image.getXPitch())
{
}

void Rendering::addChannel(unsigned i_channel, unsigned i_channels, unsigned i_channelBytes)
{
    addRows<quint8, quint8>(int(i_channelBytes),
        [row = channelRowFor(i_channelBytes), i_channel, i_channels](const quint8* i_source, quint8* o_target,
            std::size_t i_count) { row(i_source, o_target, i_count, i_channel, i_channels); });
}

void Rendering::addScale(const DoubleScale& i_scale)
{
    addRows<double, quint8>(1, [i_scale](const double* i_source, quint8* o_target, std::size_t i_count) {
        doubleRow()(i_source, o_target, i_count, i_scale);
    });
}

void Rendering::addScale(const Float32Scale& i_scale)
{
    addRows<float, quint8>(1, [i_scale](const float* i_source, quint8* o_target, std::size_t i_count) {
        chainTable().floats(i_source, o_target, i_count, i_scale);
    });
}

void Rendering::addScale(const WordScale& i_scale)
{
    addRows<quint16, quint8>(1, [i_scale](const quint16* i_source, quint8* o_target, std::size_t i_count) {
        chainTable().words(i_source, o_target, i_count, i_scale);
    });
}

void Rendering::run(QImage& io_picture) const
{
    m_program.run(conversion::TargetRows {io_picture.bits(), io_picture.bytesPerLine()});
}

conversion::Ranges toGrey(const cDblRange& i_range) { return {i_range, cDblRange(0.0, 255.0)}; }

QImage checkedPicture(QImage&& i_picture)
{
    if (i_picture.isNull())
        qBadAlloc();
    return std::move(i_picture);
}

} // namespace display
