#pragma once

#include "../checks.h"

#include <customipp/types.h>

#include <algorithm>
#include <cmath>
#include <cstring>

namespace customipp {

/** Converts n elements, each times `scale`. */
using SignalConvertKernel = void (*)(const Ipp32f* src, Ipp32s* dst, size_t n, double scale);

struct SignalKernels {
    SignalConvertKernel convertByMode[3];
};

inline IppStatus checkSignal(std::initializer_list<const void*> pointers, int len)
{
    return checkArguments(pointers, {len, 1}, {});
}

template <class T> IppStatus runSignalCopy(const T* src, T* dst, int len)
{
    const IppStatus status = checkSignal({src, dst}, len);
    if (status == ippStsNoErr)
        std::memcpy(dst, src, size_t(len) * sizeof(T));
    return status;
}

inline IppStatus runSignalConvert(
    const SignalKernels& kernels, const Ipp32f* src, Ipp32s* dst, int len, IppRoundMode mode, int scaleFactor)
{
    if (const IppStatus status = checkSignal({src, dst}, len))
        return status;
    const int rounding = mode & ~ippRndHintAccurate;
    if (rounding < ippRndZero || rounding > ippRndFinancial)
        return ippStsRoundModeNotSupportedErr;
    // Beyond this every float is far below one half, or 0, or far out of range; up to it the product is
    // exact.
    const int bounded = std::clamp(scaleFactor, -300, 300);
    kernels.convertByMode[rounding](src, dst, size_t(len), std::ldexp(1.0, -bounded));
    return ippStsNoErr;
}

} // namespace customipp
