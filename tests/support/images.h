#pragma once

#include <gtest/gtest.h>

#include <cmath>
#include <cstddef>
#include <cstring>
#include <initializer_list>
#include <ostream>
#include <random>
#include <string>
#include <tarnimg/cImg.h>

/** An image whose pixels a function of x and y gives; its result is a whole pixel of the type. */
template <class Function>
cImg generateImage(cImgType::ImageTypes i_type, unsigned i_width, unsigned i_height, Function&& i_pixelAt)
{
    cImg image(i_type, i_width, i_height);
    for (unsigned y = 0; y < i_height; ++y)
        for (unsigned x = 0; x < i_width; ++x)
            image.setPixel(x, y, i_pixelAt(x, y));
    return image;
}

/** An image from its rows; `T` is a whole pixel, or with several channels one channel: `{{r, g, b, r, g, b},
 * ...}`. */
template <class T>
cImg makeImage(cImgType::ImageTypes i_type, std::initializer_list<std::initializer_list<T>> i_rows,
    unsigned i_channels = 1)
{
    const cImg layout(i_type, 1, 1, i_channels);
    const unsigned perPixel = unsigned(layout.getImgType().getPixelSize() / sizeof(T));
    cImg image(i_type, unsigned(i_rows.begin()->size()) / perPixel, unsigned(i_rows.size()), i_channels);
    unsigned y = 0;
    for (const auto& row : i_rows)
        std::memcpy(image.row<T>(y++), row.begin(), row.size() * sizeof(T));
    return image;
}

/** An image of random bytes; the same for the same seed. Floats are numbers from -1000 to 1000. */
inline cImg makeRandomImage(cImgType::ImageTypes i_type, unsigned i_width, unsigned i_height,
    unsigned i_channels = 1, unsigned i_seed = 1)
{
    std::mt19937 random(i_seed);
    std::uniform_real_distribution<double> number(-1000.0, 1000.0);
    cImg image(i_type, i_width, i_height, i_channels);
    const std::size_t rowBytes = std::size_t(image.getImgType().getPixelSize()) * i_width;
    for (unsigned y = 0; y < i_height; ++y) {
        unsigned char* row = image.getData() + std::size_t(y) * image.getYPitch();
        if (i_type == cImgType::Float64)
            for (std::size_t i = 0; i < rowBytes / sizeof(double); ++i)
                reinterpret_cast<double*>(row)[i] = number(random);
        else if (i_type == cImgType::Float32 || i_type == cImgType::Complex)
            for (std::size_t i = 0; i < rowBytes / sizeof(float); ++i)
                reinterpret_cast<float*>(row)[i] = float(number(random));
        else
            for (std::size_t i = 0; i < rowBytes; ++i)
                row[i] = static_cast<unsigned char>(random());
    }
    return image;
}

/** Leaves memory of other bytes to the next image of this type and size, so that pixels show that nobody
 * wrote. */
inline void soilNextImage(
    cImgType::ImageTypes i_type, unsigned i_width, unsigned i_height, unsigned i_channels = 1)
{
    cImg image(i_type, i_width, i_height, i_channels);
    std::memset(image.getData(), 0xA5, image.getFrameSize());
}

namespace imageSupport {

template <class T> std::string channelsText(const unsigned char* i_pixel, unsigned i_size)
{
    std::string text;
    for (unsigned i = 0; i < i_size; i += unsigned(sizeof(T))) {
        T value;
        std::memcpy(&value, i_pixel + i, sizeof(T));
        text += (i ? ", " : "") + std::to_string(value);
    }
    return "(" + text + ")";
}

/** All channels of a pixel. */
inline std::string pixelText(const cImgType& i_type, const unsigned char* i_pixel)
{
    const unsigned size = i_type.getPixelSize();
    switch (i_type.getTypeId()) {
    case cImgType::UInt16:
        return channelsText<quint16>(i_pixel, size);
    case cImgType::UInt32:
        return channelsText<quint32>(i_pixel, size);
    case cImgType::SInt8:
        return channelsText<qint8>(i_pixel, size);
    case cImgType::SInt16:
    case cImgType::Gradient16:
        return channelsText<qint16>(i_pixel, size);
    case cImgType::SInt32:
    case cImgType::Gradient32:
        return channelsText<qint32>(i_pixel, size);
    case cImgType::SInt64:
        return channelsText<qint64>(i_pixel, size);
    case cImgType::Float32:
    case cImgType::Complex:
        return channelsText<float>(i_pixel, size);
    case cImgType::Float64:
        return channelsText<double>(i_pixel, size);
    default:
        return channelsText<quint8>(i_pixel, size);
    }
}

template <class T> bool sameChannels(const unsigned char* i_a, const unsigned char* i_b, unsigned i_size)
{
    for (unsigned i = 0; i < i_size; i += unsigned(sizeof(T))) {
        T a, b;
        std::memcpy(&a, i_a + i, sizeof(T));
        std::memcpy(&b, i_b + i, sizeof(T));
        if (std::memcmp(&a, &b, sizeof(T)) != 0 && !(std::isnan(a) && std::isnan(b)))
            return false;
    }
    return true;
}

/** Equal bit for bit; any two NaN are equal. */
inline bool samePixel(const cImgType& i_type, const unsigned char* i_a, const unsigned char* i_b)
{
    const unsigned size = i_type.getPixelSize();
    switch (i_type.getTypeId()) {
    case cImgType::Float32:
    case cImgType::Complex:
        return sameChannels<float>(i_a, i_b, size);
    case cImgType::Float64:
        return sameChannels<double>(i_a, i_b, size);
    default:
        return std::memcmp(i_a, i_b, size) == 0;
    }
}

inline std::string structureText(const cImg& i_image)
{
    return i_image.getImgType().getName().toStdString() + "/" + std::to_string(i_image.getNumChannels()) + " "
        + std::to_string(i_image.getWidth()) + "x" + std::to_string(i_image.getHeight());
}

} // namespace imageSupport

/**
 * Whether two images have the same type, channels, size and pixels; pitches do not count, and two invalid
 * images are the same. Reports place and values of the first five differences.
 */
inline ::testing::AssertionResult samePixels(const cImg& i_actual, const cImg& i_expected)
{
    using namespace imageSupport;
    if (!i_actual.isValid() && !i_expected.isValid())
        return ::testing::AssertionSuccess();
    if (!i_actual.isValid() || !i_expected.isValid() || structureText(i_actual) != structureText(i_expected))
        return ::testing::AssertionFailure()
            << "image is " << structureText(i_actual) << ", should be " << structureText(i_expected);
    const cImgType& type = i_expected.getImgType();
    std::string differences;
    std::size_t count = 0;
    for (unsigned y = 0; y < i_expected.getHeight(); ++y) {
        const unsigned char* actual = i_actual.getConstData() + std::size_t(y) * i_actual.getYPitch();
        const unsigned char* expected = i_expected.getConstData() + std::size_t(y) * i_expected.getYPitch();
        for (unsigned x = 0; x < i_expected.getWidth(); ++x) {
            if (!samePixel(type, actual, expected) && ++count <= 5)
                differences += "\n  (" + std::to_string(x) + ", " + std::to_string(y) + ") is "
                    + pixelText(type, actual) + ", should be " + pixelText(type, expected);
            actual += i_actual.getXPitch();
            expected += i_expected.getXPitch();
        }
    }
    if (!count)
        return ::testing::AssertionSuccess();
    return ::testing::AssertionFailure() << count << " pixels differ" << differences;
}

/** How GoogleTest prints an image. */
inline void PrintTo(const cImg& i_image, std::ostream* o_stream)
{
    *o_stream << imageSupport::structureText(i_image);
}
