#include "reference.h"

#include <algorithm>
#include <cmath>
#include <cstring>
#include <limits>
#include <type_traits>

namespace reference {

namespace {

template <class T> T load(const Image& i_image, size_t i_index)
{
    T value;
    std::memcpy(&value, i_image.bytes.data() + i_index * sizeof(T), sizeof(T));
    return value;
}

template <class T> void store(Image& io_image, size_t i_index, T i_value)
{
    std::memcpy(io_image.bytes.data() + i_index * sizeof(T), &i_value, sizeof(T));
}

size_t pixelCount(const Image& i_image) { return size_t(i_image.width) * i_image.height; }

/** Calls a generic lambda with a value of the element type. */
template <class Function> void withElement(Type i_type, Function&& i_function)
{
    switch (i_type) {
    case UInt8:
        return i_function(uint8_t());
    case UInt16:
        return i_function(uint16_t());
    case UInt32:
        return i_function(uint32_t());
    case SInt8:
        return i_function(int8_t());
    case SInt16:
        return i_function(int16_t());
    case SInt32:
        return i_function(int32_t());
    case SInt64:
        return i_function(int64_t());
    case Float32:
        return i_function(float());
    default:
        return i_function(double());
    }
}

// ---- The generic conversion

/** The low bits of a whole number; what is not finite is 0. */
template <class T> T lowBits(double i_whole)
{
    if (!std::isfinite(i_whole))
        return 0;
    if constexpr (sizeof(T) == 8) {
        if (i_whole >= 9223372036854775808.0)
            return std::numeric_limits<T>::max();
        return i_whole < -9223372036854775808.0 ? std::numeric_limits<T>::min() : T(i_whole);
    } else {
        double rest = std::fmod(i_whole, 4294967296.0);
        if (rest < 0)
            rest += 4294967296.0;
        return T(uint32_t(rest));
    }
}

template <class D> D narrowed(double w)
{
    if constexpr (std::is_floating_point_v<D>) {
        return D(w);
    } else {
        if (w >= 0)
            return lowBits<D>(std::trunc(w + 0.5));
        const double t = std::trunc(w - 1.0);
        return lowBits<D>(std::trunc(w - t + 0.5) + t);
    }
}

Outcome generic(const Image& i_source, Image& io_result, Range i_input, Range i_output)
{
    const double a = i_input.low, b = i_input.high, c = i_output.low, d = i_output.high;
    if (b - a == 0 || d - c == 0)
        return Outcome::Nothing;
    const double f = (d - c) / (b - a);
    withElement(i_source.type, [&](auto source) {
        withElement(io_result.type, [&](auto target) {
            for (size_t i = 0; i < pixelCount(i_source); ++i) {
                double v = double(load<decltype(source)>(i_source, i));
                if (v > b)
                    v = b;
                if (a >= v)
                    v = a;
                store(io_result, i, narrowed<decltype(target)>((v - a) * f + c));
            }
        });
    });
    return Outcome::Written;
}

// ---- The integer steps

template <class T> long cut(double i_value) { return long(lowBits<T>(std::trunc(i_value))); }

/** Value / 2^scale, rounded to nearest, ties to even, limited to T. */
template <class T> T scaled(long long i_value, int i_scale)
{
    long long quotient = i_value;
    if (i_scale >= 40) { // products of 16 bits
        quotient = 0;
    } else if (i_scale > 0) {
        const long long divisor = 1LL << i_scale;
        quotient = i_value / divisor;
        const long long twiceRest = 2 * (i_value % divisor);
        if (twiceRest > divisor || (twiceRest == divisor && quotient % 2 != 0))
            ++quotient;
    }
    const long long greatest = std::numeric_limits<T>::max();
    return T(quotient < 0 ? 0 : quotient > greatest ? greatest : quotient);
}

/** Limits; false if the cut ends are out of order, with nothing done. */
template <class T> bool limit(Image& io_image, Range i_range)
{
    const long low = cut<T>(i_range.low), high = cut<T>(i_range.high);
    if (low > high)
        return false;
    for (size_t i = 0; i < io_image.bytes.size() / sizeof(T); ++i) {
        const long v = load<T>(io_image, i);
        store(io_image, i, T(v < low ? low : v > high ? high : v));
    }
    return true;
}

bool isLimiting(Range i_input, double i_greatest)
{
    return !(i_input.low == 0 && i_input.high >= i_greatest);
}

template <class T> void subtract(Image& io_image, double i_low)
{
    if (i_low != 0)
        for (size_t i = 0; i < io_image.bytes.size() / sizeof(T); ++i)
            store(io_image, i, scaled<T>(load<T>(io_image, i) - cut<T>(i_low), 0));
}

/** Multiply and add; of four-byte pixels the fourth byte is left out. */
template <class T> void stretch(Image& io_image, Range i_input, Range i_output)
{
    const bool hasAlpha = io_image.type == RGB32;
    const double f = (i_output.high - i_output.low) / (i_input.high - i_input.low);
    const double L = sizeof(T) == 1 ? 128 : 32768;
    double m = 1;
    int k = 0;
    while (f > 0 && L > m * f) {
        m *= 2;
        ++k;
    }
    const long constant = cut<T>(m * f), offset = cut<T>(i_output.low);
    for (size_t i = 0; i < io_image.bytes.size() / sizeof(T); ++i) {
        if (hasAlpha && i % 4 == 3)
            continue;
        if (f != 1)
            store(io_image, i, scaled<T>((long long)(load<T>(io_image, i)) * constant, k));
        if (i_output.low != 0)
            store(io_image, i, scaled<T>(load<T>(io_image, i) + offset, 0));
    }
}

/** The limited copy of a source; the source as it is if its ends are refused. */
template <class T> Image limitedCopy(const Image& i_source, Range i_input)
{
    Image copy = i_source;
    if (isLimiting(i_input, std::numeric_limits<T>::max()))
        limit<T>(copy, i_input);
    return copy;
}

template <class T> Outcome sameType(const Image& i_source, Image& io_result, Range i_input, Range i_output)
{
    Outcome outcome = Outcome::Written;
    if (isLimiting(i_input, std::numeric_limits<T>::max())) {
        Image limited = i_source;
        if (limit<T>(limited, i_input))
            io_result.bytes = limited.bytes;
        else
            outcome = Outcome::OldPixels;
        if (io_result.type == RGB32)
            for (size_t i = 0; i < pixelCount(io_result); ++i)
                io_result.bytes[4 * i + 3] = i_source.bytes[3];
    } else {
        io_result.bytes = i_source.bytes;
    }
    if (i_input.low != 0) {
        const Image before = io_result;
        subtract<T>(io_result, i_input.low);
        if (io_result.type == RGB32)
            for (size_t i = 3; i < io_result.bytes.size(); i += 4)
                io_result.bytes[i] = before.bytes[i];
    }
    stretch<T>(io_result, i_input, i_output);
    return outcome;
}

// ---- Colours

void greyToColour(const Image& i_source, Image& io_result, Range i_input, Range i_output)
{
    const Image grey = limitedCopy<uint8_t>(i_source, i_input);
    const int channels = pixelBytes(io_result.type);
    for (size_t i = 0; i < pixelCount(grey); ++i)
        for (int k = 0; k < channels; ++k)
            io_result.bytes[channels * i + k] = grey.bytes[i];
    subtract<uint8_t>(io_result, i_input.low);
    stretch<uint8_t>(io_result, i_input, i_output);
    for (size_t i = 0; channels == 4 && i < pixelCount(grey); ++i)
        io_result.bytes[4 * i + 3] = 255;
}

/** Limiting has no effect between the two colour types. */
void colourToColour(const Image& i_source, Image& io_result, Range i_input, Range i_output)
{
    const int from = pixelBytes(i_source.type), to = pixelBytes(io_result.type);
    for (size_t i = 0; i < pixelCount(i_source); ++i)
        for (int k = 0; k < 3; ++k)
            io_result.bytes[to * i + k] = i_source.bytes[from * i + k];
    subtract<uint8_t>(io_result, i_input.low);
    stretch<uint8_t>(io_result, i_input, i_output);
    for (size_t i = 0; to == 4 && i < pixelCount(i_source); ++i)
        io_result.bytes[4 * i + 3] = 255;
}

/** Runs over four bytes of each pixel of each row, one row after the other, also where a pixel has three. */
void subtractFromFourBytes(Image& io_image, double i_low)
{
    const size_t pitch = size_t(io_image.width) * pixelBytes(io_image.type);
    std::vector<uint8_t> memory((size_t(io_image.height) + 1) * pitch + 4); // with room behind the last row
    std::memcpy(memory.data(), io_image.bytes.data(), io_image.bytes.size());
    for (int y = 0; y < io_image.height; ++y)
        for (size_t i = 0; i < 4 * size_t(io_image.width); ++i) {
            uint8_t& byte = memory[y * pitch + i];
            byte = scaled<uint8_t>(byte - cut<uint8_t>(i_low), 0);
        }
    std::memcpy(io_image.bytes.data(), memory.data(), io_image.bytes.size());
}

void colourToGrey(const Image& i_source, Image& io_result, Range i_input, Range i_output)
{
    Image copy = limitedCopy<uint8_t>(i_source, i_input);
    if (i_input.low != 0)
        subtractFromFourBytes(copy, i_input.low);
    const int channels = pixelBytes(copy.type);
    for (size_t i = 0; i < pixelCount(copy); ++i) {
        const uint8_t* p = copy.bytes.data() + channels * i;
        io_result.bytes[i] = uint8_t((299 * p[0] + 587 * p[1] + 114 * p[2]) / 1000);
    }
    stretch<uint8_t>(io_result, i_input, i_output);
}

// ---- Between 8 and 16 bits

void widen(const Image& i_source, Image& io_result, Range i_input, Range i_output)
{
    const Image copy = limitedCopy<uint8_t>(i_source, i_input);
    for (size_t i = 0; i < pixelCount(copy); ++i)
        store<uint16_t>(io_result, i, copy.bytes[i]);
    subtract<uint16_t>(io_result, i_input.low);
    stretch<uint16_t>(io_result, i_input, i_output);
}

void narrow(const Image& i_source, Image& io_result, Range i_input, Range i_output)
{
    Image copy = limitedCopy<uint16_t>(i_source, i_input);
    subtract<uint16_t>(copy, i_input.low);
    stretch<uint16_t>(copy, i_input, i_output);
    for (size_t i = 0; i < pixelCount(copy); ++i)
        io_result.bytes[i] = uint8_t(std::min<int>(load<uint16_t>(copy, i), 255));
}

// ---- Floats

template <class T> void toFloat(const Image& i_source, Image& io_result, Range i_input, Range i_output)
{
    const Image copy = limitedCopy<T>(i_source, i_input);
    for (size_t i = 0; i < pixelCount(copy); ++i) {
        float v = load<T>(copy, i);
        if (i_input.low != 0)
            v = v - float(i_input.low);
        v = v * float((i_output.high - i_output.low) / (i_input.high - i_input.low));
        if (i_output.low != 0)
            v = v + float(i_output.low);
        store(io_result, i, v);
    }
}

float fromFloatStretched(float v, Range i_input, Range i_output)
{
    const float low = float(i_input.low), high = float(i_input.high);
    v = v < low ? low : v > high ? high : v;
    if (i_input.low != 0)
        v = v - low;
    const float divisor = float((i_input.high - i_input.low) / (i_output.high - i_output.low));
    if (divisor != 0)
        v = v / divisor;
    if (i_output.low != 0)
        v = v + float(i_output.low);
    return v;
}

/** To nearest, ties to even, limited; NaN becomes the least value. */
template <class D> D roundedFloat(float v)
{
    constexpr double least = std::numeric_limits<D>::min(), greatest = std::numeric_limits<D>::max();
    if (!(v > least))
        return D(least);
    if (v > greatest)
        return D(greatest);
    const double below = std::floor(double(v)), rest = double(v) - below;
    const bool up = rest > 0.5 || (rest == 0.5 && std::fmod(below, 2.0) != 0);
    return D(up ? below + 1 : below);
}

void fromFloat(const Image& i_source, Image& io_result, Range i_input, Range i_output)
{
    for (size_t i = 0; i < pixelCount(i_source); ++i) {
        const float v = fromFloatStretched(load<float>(i_source, i), i_input, i_output);
        switch (io_result.type) {
        case UInt8:
            store(io_result, i, roundedFloat<uint8_t>(v));
            break;
        case UInt16:
            store(io_result, i, roundedFloat<uint16_t>(v));
            break;
        case SInt8:
            store(io_result, i, roundedFloat<int8_t>(v));
            break;
        case SInt16:
            store(io_result, i, roundedFloat<int16_t>(v));
            break;
        default:
            store(io_result, i, v);
        }
    }
}

bool isColour(Type i_type) { return i_type == RGB24 || i_type == RGB32; }

} // namespace

const char* nameOf(Type i_type)
{
    static constexpr const char* s_names[] = {"", "RGB24", "RGB32", "UInt8", "UInt16", "UInt32", "SInt8",
        "SInt16", "SInt32", "SInt64", "Float32", "Float64"};
    return s_names[i_type];
}

int pixelBytes(Type i_type)
{
    static constexpr int s_bytes[] = {0, 3, 4, 1, 2, 4, 1, 2, 4, 8, 4, 8};
    return s_bytes[i_type];
}

bool isSupported(Type i_source, Type i_target)
{
    if (i_source == SInt64 || i_target == SInt64)
        return i_source == i_target;
    return !(i_source == UInt8 && i_target == UInt32);
}

Outcome convert(const Image& i_source, Image& io_result, Range i_input, Range i_output)
{
    const Type from = i_source.type, to = io_result.type;
    if (isColour(from) && !isColour(to) && to != UInt8) {
        Image grey(UInt8, i_source.width, i_source.height);
        convert(i_source, grey, i_input, i_input);
        return convert(grey, io_result, i_input, i_output);
    }
    if (isColour(to) && !isColour(from) && from != UInt8) {
        Image grey(UInt8, i_source.width, i_source.height);
        if (convert(i_source, grey, i_input, {0, 255}) == Outcome::Nothing)
            return Outcome::Nothing;
        return convert(grey, io_result, {0, 255}, i_output);
    }
    if (isColour(from) || isColour(to)) {
        if (from == to)
            return sameType<uint8_t>(i_source, io_result, i_input, i_output);
        if (from == UInt8)
            greyToColour(i_source, io_result, i_input, i_output);
        else if (to == UInt8)
            colourToGrey(i_source, io_result, i_input, i_output);
        else
            colourToColour(i_source, io_result, i_input, i_output);
        return Outcome::Written;
    }
    if (from == UInt8 && to == UInt8)
        return sameType<uint8_t>(i_source, io_result, i_input, i_output);
    if (from == UInt16 && to == UInt16)
        return sameType<uint16_t>(i_source, io_result, i_input, i_output);
    if (from == UInt8 && to == UInt16)
        widen(i_source, io_result, i_input, i_output);
    else if (from == UInt16 && to == UInt8)
        narrow(i_source, io_result, i_input, i_output);
    else if (from == UInt8 && to == Float32)
        toFloat<uint8_t>(i_source, io_result, i_input, i_output);
    else if (from == UInt16 && to == Float32)
        toFloat<uint16_t>(i_source, io_result, i_input, i_output);
    else if (from == Float32 && (to == UInt8 || to == UInt16 || to == SInt8 || to == SInt16 || to == Float32))
        fromFloat(i_source, io_result, i_input, i_output);
    else
        return generic(i_source, io_result, i_input, i_output);
    return Outcome::Written;
}

} // namespace reference
