#pragma once

#include "move.h"

namespace customipp {

/** Reduces floats to `steps` + 1 bytes, evenly spaced. */
using ReduceBitsKernel = void (*)(const Move& move, int steps);

inline IppStatus checkDithering(
    int noise, IppiDitherType dither, IppStatus illegalNoise, IppStatus illegalDither)
{
    if (noise < 0 || noise > 100)
        return illegalNoise;
    if (dither < ippDitherNone || dither > ippDitherBayer)
        return illegalDither;
    return ippStsNoErr;
}

inline IppStatus runReduceBitsSize(
    IppChannels channels, IppiSize roi, int noise, IppiDitherType dither, int* bufferSize)
{
    if (!bufferSize)
        return ippStsNullPtrErr;
    *bufferSize = 0;
    if (const IppStatus status = checkArguments({}, roi, {}))
        return status;
    if (channels != ippC1)
        return ippStsChannelErr;
    if (const IppStatus status = checkDithering(noise, dither, ippStsDataTypeErr, ippStsDataTypeErr))
        return status;
    *bufferSize = 1;
    return ippStsNoErr;
}

inline IppStatus runReduceBits(ReduceBitsKernel kernel, Rows<const Ipp32f> src, Rows<Ipp8u> dst, IppiSize roi,
    int noise, IppiDitherType dither, int levels)
{
    if (const IppStatus status = checkArguments({src.first, dst.first}, roi, {src.step, dst.step}))
        return status;
    if (const IppStatus status = checkDithering(noise, dither, ippStsNoiseValErr, ippStsDitherTypeErr))
        return status;
    if (levels < 2 || levels > 256)
        return ippStsDitherLevelsErr;
    if (noise != 0 || dither != ippDitherNone)
        return ippStsNotSupportedModeErr;
    kernel({bytesOf(src), bytesOf(dst), areaOf(roi, 1, {{src.step, sizeof(Ipp32f)}, {dst.step, 1}}), 1},
        levels - 1);
    return ippStsNoErr;
}

} // namespace customipp
