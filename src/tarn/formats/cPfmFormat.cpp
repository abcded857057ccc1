#include "cPfmFormat.h"

#include "cTextHeader.h"
#include "fileBytes.h"

#include <QIODevice>
#include <cstring>

cPfmFormat::cPfmFormat() : cFileFormat(QStringLiteral("PFM"), QStringLiteral("*.pfm"), Read | Write) {}

cImgIO* cPfmFormat::clone() const { return new cPfmFormat; }

bool cPfmFormat::canHold(cImgType::ImageTypes i_type, unsigned i_channels) const
{
    return i_type == cImgType::Float32 && (i_channels == 1 || i_channels == 3);
}

cImg cPfmFormat::decode(const unsigned char* i_data, std::size_t i_size) const
{
    cTextHeader text("PFM", i_data, i_size);
    const bool colour = text.take("PF");
    if (!colour && !text.take("Pf"))
        text.fail(QStringLiteral("not of this format, expected PF or Pf at the start"));
    text.takeEnd();
    const quint64 width = text.takeNumber("the width");
    const quint64 height = text.takeNumber("the height");
    const bool lowFirst = text.takeReal("the scale") < 0.0;
    text.takeEnd();
    const unsigned channels = colour ? 3 : 1;
    checkSize(width, height, channels * sizeof(float));
    checkLength(width * height * channels * sizeof(float), text.restSize());

    cImg image(cImgType::Float32, unsigned(width), unsigned(height), channels);
    const std::size_t row = host::rowBytes(image);
    for (unsigned y = 0; y < image.getHeight(); ++y)
        std::memcpy(image.row<unsigned char>(y), text.rest() + (image.getHeight() - 1 - y) * row, row);
    if (lowFirst != (Q_BYTE_ORDER == Q_LITTLE_ENDIAN))
        host::swapBytes(image);
    return image;
}

void cPfmFormat::encode(const cImg& i_image, QIODevice& io_device) const
{
    const QByteArray header = (i_image.getNumChannels() == 3 ? "PF\n" : "Pf\n")
        + QByteArray::number(i_image.getWidth()) + ' ' + QByteArray::number(i_image.getHeight())
        + (Q_BYTE_ORDER == Q_LITTLE_ENDIAN ? "\n-1.0\n" : "\n1.0\n");
    host::writeBytes(header.constData(), std::size_t(header.size()), io_device);
    for (unsigned y = i_image.getHeight(); y-- > 0;)
        host::writeBytes(i_image.getRow<unsigned char>(y), host::rowBytes(i_image), io_device);
}
