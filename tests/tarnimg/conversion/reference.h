#pragma once

#include <cstdint>
#include <optional>
#include <vector>

/**
 * The conversion of pixels written down step by step over whole images, slowly, from its definition. It uses
 * nothing of the library: types have the library's numbers, images are bytes without gaps.
 */
namespace reference {

enum Type { RGB24 = 1, RGB32, UInt8, UInt16, UInt32, SInt8, SInt16, SInt32, SInt64, Float32, Float64 };

inline constexpr Type everyType[]
    = {RGB24, RGB32, UInt8, UInt16, UInt32, SInt8, SInt16, SInt32, SInt64, Float32, Float64};

const char* nameOf(Type i_type);
/** Bytes of a pixel; those with any number of channels have one here. */
int pixelBytes(Type i_type);

/** What the library promises for a pair of types. */
bool isSupported(Type i_source, Type i_target);

struct Image {
    Type type;
    int width;
    int height;
    std::vector<uint8_t> bytes;

    Image(Type i_type, int i_width, int i_height)
        : type(i_type),
          width(i_width),
          height(i_height),
          bytes(size_t(i_width) * i_height * pixelBytes(i_type))
    {
    }
};

struct Range {
    double low;
    double high;
};

enum class Outcome {
    Written, ///< all pixels are defined
    OldPixels, ///< computed from the pixels that the result held before
    Nothing ///< the ranges are refused, with a report, and the result keeps its pixels
};

/** Converts the pixels; the result comes with the pixels that it held before. The pair of types must be
 * supported. */
Outcome convert(const Image& i_source, Image& io_result, Range i_input, Range i_output);

} // namespace reference
