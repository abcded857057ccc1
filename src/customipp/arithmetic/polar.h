#pragma once

#include "../movers/move.h"

namespace customipp {

/** An operation with one function. */
struct PolarKernel {
    MoveKernel kernel;

    template <class S, int SrcChannels, class D, int DstChannels> MoveKernel of() const { return kernel; }
};

struct PolarKernels {
    PolarKernel magnitude;
    PolarKernel phase;
};

} // namespace customipp
