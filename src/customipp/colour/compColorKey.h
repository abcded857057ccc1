#pragma once

#include "../movers/move.h"

namespace customipp {

/** Pixels of one image, and in their place those of another where they are equal to a key. */
struct Keying {
    Rows<const uint8_t> first;
    Rows<const uint8_t> second;
    Rows<uint8_t> dst;
    Area area;
    const uint8_t* key; ///< a pixel
};
using KeyKernel = void (*)(const Keying&);

struct CompColorKeyKernels {
    KeyKernel ofBytes[4]; ///< for pixels of 1 to 4 bytes

    template <class T, int Channels> KeyKernel of() const { return ofBytes[sizeof(T) * Channels - 1]; }
};

template <class T, int Channels>
IppStatus runColourKey(const CompColorKeyKernels& kernels, Rows<const T> first, Rows<const T> second,
    Rows<T> dst, IppiSize roi, const T* key)
{
    if (const IppStatus status = checkArguments(
            {first.first, second.first, dst.first, key}, roi, {first.step, second.step, dst.step}))
        return status;
    constexpr size_t bytes = sizeof(T) * Channels;
    const Area area = areaOf(roi, 1, {{first.step, bytes}, {second.step, bytes}, {dst.step, bytes}});
    kernels.of<T, Channels>()(
        {bytesOf(first), bytesOf(second), bytesOf(dst), area, reinterpret_cast<const uint8_t*>(key)});
    return ippStsNoErr;
}

} // namespace customipp
