#pragma once

#include "move.h"

namespace customipp {

/** A move with a byte for each pixel that says whether it goes. */
struct MaskedMove {
    Rows<const uint8_t> src;
    Rows<uint8_t> dst;
    Rows<const uint8_t> mask;
    Area area;
};
using MaskedMoveKernel = void (*)(const MaskedMove&);

struct CopyMaskedKernels {
    MaskedMoveKernel ofBytes[4]; ///< for pixels of 1 to 4 bytes
};

template <class T, int Channels>
IppStatus runMasked(
    const CopyMaskedKernels& kernels, Rows<const T> src, Rows<T> dst, IppiSize roi, Rows<const Ipp8u> mask)
{
    if (const IppStatus status
        = checkArguments({src.first, dst.first, mask.first}, roi, {src.step, dst.step, mask.step}))
        return status;
    constexpr size_t bytes = sizeof(T) * Channels;
    kernels.ofBytes[bytes - 1]({bytesOf(src), bytesOf(dst), mask,
        areaOf(roi, 1, {{src.step, bytes}, {dst.step, bytes}, {mask.step, 1}})});
    return ippStsNoErr;
}

} // namespace customipp
