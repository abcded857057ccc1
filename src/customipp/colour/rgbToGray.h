#pragma once

#include "../movers/move.h"

namespace customipp {

struct RGBToGrayKernels {
    MoveKernel fromThree;
    MoveKernel fromFour;

    template <class S, int SrcChannels, class D, int DstChannels> MoveKernel of() const
    {
        return SrcChannels == 3 ? fromThree : fromFour;
    }
};

} // namespace customipp
