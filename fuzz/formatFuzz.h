// What the fuzz targets of the file formats share.
#pragma once

#include <QBuffer>
#include <cFileFormat.h>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <stdexcept>
#include <tarnbase/cTracer.h>

/**
 * Whatever bytes come as a file: it is read or refused with a reason, without great memory. What was read is
 * written by one of our formats and read back: the same structure, and to the bit unless the format is lossy.
 */
inline int fuzzFormat(
    const cFileFormat& i_format, const std::uint8_t* i_data, std::size_t i_size, bool i_isLossy = false)
{
    cTracer::cerr.setState({});
    cImg image;
    try {
        image = i_format.decode(i_data, i_size);
    } catch (const std::runtime_error& error) {
        if (!*error.what())
            std::abort();
        return 0;
    }
    if (!image.isValid())
        std::abort();
    if (!i_format.canHold(image.getImgType().getTypeId(), image.getNumChannels()))
        return 0;
    QBuffer buffer;
    buffer.open(QIODevice::ReadWrite);
    i_format.write(buffer, image);
    const cImg same = i_format.decode(
        reinterpret_cast<const unsigned char*>(buffer.data().constData()), std::size_t(buffer.size()));
    if (same.getImgType() != image.getImgType() || same.getNumChannels() != image.getNumChannels()
        || !same.isStructOf(image))
        std::abort();
    if (i_isLossy)
        return 0;
    for (unsigned y = 0; y < image.getHeight(); ++y)
        if (std::memcmp(same.getRow<unsigned char>(y), image.getRow<unsigned char>(y), image.getYPitch())
            != 0)
            std::abort();
    return 0;
}
