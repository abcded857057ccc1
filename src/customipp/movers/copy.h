#pragma once

#include "move.h"

namespace customipp {

struct CopyKernels {
    MoveKernel bytes;

    template <class S, int SrcChannels, class D, int DstChannels> MoveKernel of() const
    {
        static_assert(sizeof(S) == sizeof(D) && SrcChannels == DstChannels);
        return bytes;
    }
};

} // namespace customipp
