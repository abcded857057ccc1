#include "fileBytes.h"

#include <tarnimg/cImg.h>

#include <QIODevice>
#include <QtEndian>
#include <cstring>
#include <stdexcept>

namespace host {

void raise(const QString& i_message) { throw std::runtime_error(i_message.toLocal8Bit().toStdString()); }

unsigned sampleBytes(cImgType::ImageTypes i_type)
{
    switch (i_type) {
    case cImgType::UInt16:
    case cImgType::SInt16:
    case cImgType::Gradient16:
        return 2;
    case cImgType::UInt32:
    case cImgType::SInt32:
    case cImgType::Float32:
    case cImgType::Gradient32:
    case cImgType::Complex:
        return 4;
    case cImgType::SInt64:
    case cImgType::Float64:
        return 8;
    default:
        return 1;
    }
}

std::size_t rowBytes(const cImg& i_image)
{
    return std::size_t(i_image.getWidth()) * i_image.getImgType().getPixelSize();
}

void takePixels(const unsigned char* i_bytes, cImg& io_image)
{
    const std::size_t row = rowBytes(io_image);
    unsigned char* pixels = io_image.getData();
    if (io_image.getYPitch() == row) {
        std::memcpy(pixels, i_bytes, row * io_image.getHeight());
        return;
    }
    for (std::size_t y = 0; y < io_image.getHeight(); ++y)
        std::memcpy(pixels + y * io_image.getYPitch(), i_bytes + y * row, row);
}

void writeBytes(const void* i_bytes, std::size_t i_count, QIODevice& io_device)
{
    if (io_device.write(static_cast<const char*>(i_bytes), qint64(i_count)) != qint64(i_count))
        raise(io_device.errorString());
}

void writePixels(const cImg& i_image, QIODevice& io_device)
{
    const std::size_t row = rowBytes(i_image);
    const unsigned char* pixels = i_image.getConstData();
    if (i_image.getYPitch() == row) {
        writeBytes(pixels, row * i_image.getHeight(), io_device);
        return;
    }
    for (std::size_t y = 0; y < i_image.getHeight(); ++y)
        writeBytes(pixels + y * i_image.getYPitch(), row, io_device);
}

void swapBytes(void* io_bytes, std::size_t i_count, unsigned i_sampleBytes)
{
    const auto count = qsizetype(i_count / i_sampleBytes);
    switch (i_sampleBytes) {
    case 2:
        qbswap<2>(io_bytes, count, io_bytes);
        break;
    case 4:
        qbswap<4>(io_bytes, count, io_bytes);
        break;
    case 8:
        qbswap<8>(io_bytes, count, io_bytes);
        break;
    default:
        break; // bytes have no order
    }
}

void swapBytes(cImg& io_image)
{
    const unsigned size = sampleBytes(io_image.getImgType().getTypeId());
    for (unsigned y = 0; y < io_image.getHeight(); ++y)
        swapBytes(io_image.row<unsigned char>(y), rowBytes(io_image), size);
}

} // namespace host
