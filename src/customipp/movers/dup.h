#pragma once

#include "move.h"

namespace customipp {

struct DupKernels {
    MoveKernel toThree;
    MoveKernel toFour;

    template <class S, int SrcChannels, class D, int DstChannels> MoveKernel of() const
    {
        return DstChannels == 3 ? toThree : toFour;
    }
};

} // namespace customipp
