#pragma once

#include "../movers/move.h"

#include <type_traits>

namespace customipp {

/** Thresholds and values of each of `Channels` channels. */
template <class T> struct TwoLevels {
    const T* thresholdLT;
    const T* valueLT;
    const T* thresholdGT;
    const T* valueGT;

    /** Whether pixels beyond a threshold become that threshold. */
    bool isClamp(int channels) const
    {
        for (int c = 0; c < channels; ++c)
            if (valueLT[c] != thresholdLT[c] || valueGT[c] != thresholdGT[c])
                return false;
        return true;
    }
};

template <class T> struct TwoLevelsMove {
    Rows<const T> src;
    Rows<T> dst;
    Area area; ///< width in lanes
    TwoLevels<T> levels;
};
template <class T> using TwoLevelsKernel = void (*)(const TwoLevelsMove<T>&);

struct ThresholdLTValGTValKernels {
    TwoLevelsKernel<Ipp8u> of8u;
    TwoLevelsKernel<Ipp16u> of16u;
    TwoLevelsKernel<Ipp16s> of16s;
    TwoLevelsKernel<Ipp32f> of32f;
    TwoLevelsKernel<Ipp8u> of8uC3;
    TwoLevelsKernel<Ipp8u> of8uAC4;

    template <class T, int Channels> TwoLevelsKernel<T> of() const
    {
        if constexpr (Channels == 3)
            return of8uC3;
        else if constexpr (Channels == 4)
            return of8uAC4;
        else if constexpr (std::is_same_v<T, Ipp8u>)
            return of8u;
        else if constexpr (std::is_same_v<T, Ipp16u>)
            return of16u;
        else if constexpr (std::is_same_v<T, Ipp16s>)
            return of16s;
        else
            return of32f;
    }
};

/** Four channels are three with a fourth that stays. */
template <class T, int Channels>
IppStatus runTwoLevels(const ThresholdLTValGTValKernels& kernels, Rows<const T> src, Rows<T> dst,
    IppiSize roi, const TwoLevels<T>& levels)
{
    if (const IppStatus status = checkArguments(
            {src.first, dst.first, levels.thresholdLT, levels.valueLT, levels.thresholdGT, levels.valueGT},
            roi, {src.step, dst.step}))
        return status;
    for (int c = 0; c < (Channels == 1 ? 1 : 3); ++c)
        if (levels.thresholdLT[c] > levels.thresholdGT[c])
            return ippStsThresholdErr;
    const Area area = areaOf(roi, Channels, {{src.step, sizeof(T)}, {dst.step, sizeof(T)}});
    kernels.of<T, Channels>()({src, dst, area, levels});
    return ippStsNoErr;
}

} // namespace customipp
