/**
 * The pixel layer: functions on pixels in memory, for C and C++.
 *
 * An image is a pointer to its first pixel and a step, the distance in bytes between the starts of two rows;
 * neither needs any alignment. A function reads and writes the pixels of its region and no other byte. It
 * returns a status: negative for an error, with nothing written, positive for a warning, with everything
 * written. Null pointers are tested first, then sizes, steps, and the other arguments in their order; the
 * first failing test decides.
 *
 * All functions are reentrant, start no thread, and give the same bytes on every processor.
 */
#pragma once

#include <customipp/types.h>

#ifdef __cplusplus
extern "C" {
#endif

/** The text for a status; never null, in static storage. An unknown number has a text of its own. */
CUSTOMIPP_EXPORT const char* ippGetStatusString(IppStatus stsCode);

/**
 * Memory on a 64-byte boundary, rounded up to a multiple of 64 bytes, of undefined content.
 * Null when length is negative or no memory is left; never null for length 0. Free it with ippFree or
 * ippsFree.
 */
CUSTOMIPP_EXPORT void* ippMalloc(int length);
/** The same memory as bytes. */
CUSTOMIPP_EXPORT Ipp8u* ippsMalloc_8u(int len);
/** Releases what ippMalloc or ippsMalloc_8u gave; null is allowed. */
CUSTOMIPP_EXPORT void ippFree(void* ptr);
/** As ippFree. */
CUSTOMIPP_EXPORT void ippsFree(void* ptr);

#include <customipp/prototypes.h>

#include <customipp/abs.def>
#include <customipp/absDiff.def>
#include <customipp/add.def>
#include <customipp/addC.def>
#include <customipp/addProduct.def>
#include <customipp/addSquare.def>
#include <customipp/blockMinMax.def>
#include <customipp/colorTwist.def>
#include <customipp/compColorKey.def>
#include <customipp/convert.def>
#include <customipp/copy.def>
#include <customipp/copyChannel.def>
#include <customipp/copyMasked.def>
#include <customipp/countInRange.def>
#include <customipp/crossCorrNorm.def>
#include <customipp/div.def>
#include <customipp/divC.def>
#include <customipp/dup.def>
#include <customipp/findPeaks.def>
#include <customipp/histogram.def>
#include <customipp/hsvToRGB.def>
#include <customipp/integral.def>
#include <customipp/ln.def>
#include <customipp/lut.def>
#include <customipp/maxEvery.def>
#include <customipp/meanStdDev.def>
#include <customipp/minEvery.def>
#include <customipp/minMax.def>
#include <customipp/mul.def>
#include <customipp/mulC.def>
#include <customipp/norm.def>
#include <customipp/normDiff.def>
#include <customipp/polar.def>
#include <customipp/rectStdDev.def>
#include <customipp/reduceBits.def>
#include <customipp/rgbToGray.def>
#include <customipp/rgbToHSV.def>
#include <customipp/set.def>
#include <customipp/signal.def>
#include <customipp/sqrDistanceNorm.def>
#include <customipp/sqrIntegral.def>
#include <customipp/sub.def>
#include <customipp/subC.def>
#include <customipp/swapChannels.def>
#include <customipp/thresholdLTValGTVal.def>
#include <customipp/ycbcr422.def>
#include <customipp/yuv422ToRGB.def>

#ifdef __cplusplus
}
#endif
