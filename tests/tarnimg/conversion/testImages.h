#pragma once

#include "reference.h"

#include <tarnbase/cDataValObj.h>
#include <tarnbase/cMapObj.h>
#include <tarnimg/cImg.h>

#include <cmath>
#include <cstring>
#include <limits>
#include <random>
#include <vector>

/** The library loads its types when it is linked; these helpers turn the reference's images into its own and
 * back. */
namespace testImages {

/** How an image lies in memory. */
enum class Layout { Compact, View, Outside, MisalignedOutside };

inline constexpr Layout everyLayout[]
    = {Layout::Compact, Layout::View, Layout::Outside, Layout::MisalignedOutside};

inline cImgType::ImageTypes libraryType(reference::Type i_type) { return cImgType::ImageTypes(i_type); }

/** An image with the pixels of another, within memory full of 0xA5. */
inline cImg toImage(const reference::Image& i_image, Layout i_layout = Layout::Compact)
{
    const int pixelBytes = reference::pixelBytes(i_image.type);
    const size_t rowBytes = size_t(i_image.width) * pixelBytes;
    const unsigned width = unsigned(i_image.width), height = unsigned(i_image.height);
    cImg image;
    switch (i_layout) {
    case Layout::Compact:
        image = cImg(libraryType(i_image.type), width, height, 1);
        break;
    case Layout::View: {
        cImg parent(libraryType(i_image.type), width + 5, height + 3, 1);
        std::memset(parent.getData(), 0xA5, parent.getFrameSize());
        image = cImg(parent, false, cRect<int>(3, 2, i_image.width, i_image.height));
        break;
    }
    case Layout::Outside:
    case Layout::MisalignedOutside: {
        const size_t shift = i_layout == Layout::MisalignedOutside ? 1 : 0;
        const size_t pitch = rowBytes + (shift ? 3 : 0);
        // The last row ends with the memory, so that a sanitizer sees the first byte too many.
        auto* memory = new unsigned char[shift + pitch * height];
        std::memset(memory, 0xA5, shift + pitch * height);
        image = cImg(
            libraryType(i_image.type), width, height, unsigned(pixelBytes), unsigned(pitch), memory + shift,
            [memory](void*) { delete[] memory; }, 1);
        break;
    }
    }
    for (unsigned y = 0; y < height; ++y)
        std::memcpy(const_cast<unsigned char*>(image.getConstData()) + size_t(y) * image.getYPitch(),
            i_image.bytes.data() + y * rowBytes, rowBytes);
    return image;
}

inline reference::Image fromImage(const cImg& i_image)
{
    reference::Image image(
        reference::Type(i_image.getImgType().getTypeId()), int(i_image.getWidth()), int(i_image.getHeight()));
    const size_t rowBytes = size_t(image.width) * reference::pixelBytes(image.type);
    for (int y = 0; y < image.height; ++y)
        std::memcpy(image.bytes.data() + y * rowBytes,
            i_image.getConstData() + size_t(y) * i_image.getYPitch(), rowBytes);
    return image;
}

template <class T> void fillElements(reference::Image& io_image, std::mt19937& io_random)
{
    using Limits = std::numeric_limits<T>;
    for (size_t i = 0; i < io_image.bytes.size() / sizeof(T); ++i) {
        T value;
        if constexpr (std::is_floating_point_v<T>) {
            static constexpr T s_special[] = {T(0), T(-0.0), T(0.5), T(-0.5), T(1.5), T(-1.5), T(2.5),
                T(-2.5), T(254.5), T(255), T(1e9), T(-1e9), T(1e30), T(-1e30), Limits::infinity(),
                -Limits::infinity(), Limits::quiet_NaN(), Limits::denorm_min(), T(-129.5), T(65535.5)};
            const unsigned choice = io_random() % 64;
            value = choice < std::size(s_special) ? s_special[choice]
                : choice < 48                     ? T(int(io_random() % 2000) - 1000) / T(4)
                                                  : T(std::ldexp(int(io_random() % 200001) - 100000, -16));
        } else {
            const unsigned choice = io_random() % 16;
            value = choice == 0 ? Limits::min()
                : choice == 1   ? Limits::max()
                : choice < 8
                ? T(io_random() % 300) - T(20)
                : T(((unsigned long long)(io_random()) << 32 | io_random()) >> (io_random() % 64));
        }
        std::memcpy(io_image.bytes.data() + i * sizeof(T), &value, sizeof(T));
    }
}

/** Pixels with a fixed seed: extremes, small values, values round halves, and anything. */
inline reference::Image randomImage(reference::Type i_type, int i_width, int i_height, unsigned i_seed = 1)
{
    reference::Image image(i_type, i_width, i_height);
    std::mt19937 random(i_seed * 16 + unsigned(i_type));
    switch (i_type) {
    case reference::UInt16:
        fillElements<uint16_t>(image, random);
        break;
    case reference::UInt32:
        fillElements<uint32_t>(image, random);
        break;
    case reference::SInt16:
        fillElements<int16_t>(image, random);
        break;
    case reference::SInt32:
        fillElements<int32_t>(image, random);
        break;
    case reference::SInt64:
        fillElements<int64_t>(image, random);
        break;
    case reference::Float32:
        fillElements<float>(image, random);
        break;
    case reference::Float64:
        fillElements<double>(image, random);
        break;
    default:
        fillElements<uint8_t>(image, random);
    }
    return image;
}

inline cMapObj rangeParams(reference::Range i_input, reference::Range i_output)
{
    cMapObj params;
    params[QStringLiteral("inputRange")] = new cDataValObj<cDblRange>(cDblRange(i_input.low, i_input.high));
    params[QStringLiteral("outputRange")]
        = new cDataValObj<cDblRange>(cDblRange(i_output.low, i_output.high));
    return params;
}

} // namespace testImages
