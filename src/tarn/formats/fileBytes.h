#pragma once

#include <tarnimg/cImgType.h>

#include <QString>
#include <cstddef>

class QIODevice;
class cImg;

namespace host {

/** @throws std::runtime_error with this message */
[[noreturn]] void raise(const QString& i_message);

/** Bytes of the numbers that a pixel of a type consists of. */
unsigned sampleBytes(cImgType::ImageTypes i_type);
/** Bytes of a row of pixels, without what may lie between rows. */
std::size_t rowBytes(const cImg& i_image);

/** Takes all pixels from bytes that hold them without gaps. */
void takePixels(const unsigned char* i_bytes, cImg& io_image);
/** Writes all pixels without gaps. @throws std::runtime_error if the device takes no more */
void writePixels(const cImg& i_image, QIODevice& io_device);
/** The same for any bytes. */
void writeBytes(const void* i_bytes, std::size_t i_count, QIODevice& io_device);

/** Turns the bytes of each number round, from one byte order to the other. */
void swapBytes(void* io_bytes, std::size_t i_count, unsigned i_sampleBytes);
void swapBytes(cImg& io_image);

} // namespace host
