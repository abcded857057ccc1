#pragma once

#include "../checks.h"
#include "../movers/move.h"
#include "../rows.h"

#include <customipp/types.h>

#include <tuple>

namespace customipp {

/** Source and blocks; the two images and the two numbers may be null. */
template <class T> struct BlockMinMaxMove {
    Rows<const T> src;
    Area area;
    size_t blockWidth;
    size_t blockHeight;
    Rows<T> least;
    Rows<T> greatest;
    T* leastOfAll;
    T* greatestOfAll;
};
template <class T> using BlockMinMaxKernel = void (*)(const BlockMinMaxMove<T>&);
using BlockMinMaxKernels = std::tuple<BlockMinMaxKernel<Ipp8u>, BlockMinMaxKernel<Ipp16u>,
    BlockMinMaxKernel<Ipp16s>, BlockMinMaxKernel<Ipp32f>>;

template <class T>
IppStatus runBlockMinMax(const BlockMinMaxKernels& kernels, Rows<const T> src, IppiSize size, Rows<T> least,
    Rows<T> greatest, IppiSize block, T* leastOfAll, T* greatestOfAll)
{
    if (const IppStatus status = checkArguments({src.first}, size, {}))
        return status;
    if (block.width < 1 || block.height < 1)
        return ippStsSizeErr;
    const int64_t width = size.width, blocks = (width + block.width - 1) / block.width;
    const auto holds = [](int step, int64_t pixels) { return step >= pixels * int64_t {sizeof(T)}; };
    if (!holds(src.step, width) || (least.first && !holds(least.step, blocks))
        || (greatest.first && !holds(greatest.step, blocks)))
        return ippStsStepErr;
    std::get<BlockMinMaxKernel<T>>(kernels)({src, {size_t(size.width), size_t(size.height)},
        size_t(block.width), size_t(block.height), least, greatest, leastOfAll, greatestOfAll});
    return ippStsNoErr;
}

} // namespace customipp
