#pragma once

#include "move.h"

namespace customipp {

/** The kernels of one instruction set that change the number of channels. */
struct ChannelKernels {
    MoveKernel extract[2][3]; ///< one of 3 or 4 channels; of 1, 2 or 4 bytes
    MoveKernel insert[2]; ///< a byte into one of 3 or 4 channels
    MoveKernel threeToFour;
    MoveKernel fourToThree;

    template <class S, int SrcChannels, class D, int DstChannels> MoveKernel of() const
    {
        static_assert(sizeof(S) == sizeof(D));
        if constexpr (SrcChannels == 1)
            return insert[DstChannels - 3];
        else if constexpr (DstChannels == 1)
            return extract[SrcChannels - 3][sizeof(S) / 2];
        else
            return SrcChannels == 3 ? threeToFour : fourToThree;
    }
};

} // namespace customipp
