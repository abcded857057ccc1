#pragma once

#include <cstdint>
#include <hwy/targets.h>
#include <vector>

/** Calls a function once for each instruction set that is compiled in and runs here, the best one first. */
template <class Function> void forEveryTarget(Function&& i_function)
{
    for (const int64_t target : hwy::SupportedAndGeneratedTargets()) {
        hwy::SetSupportedTargetsForTest(target);
        i_function(hwy::TargetName(target));
    }
    hwy::SetSupportedTargetsForTest(0);
}
