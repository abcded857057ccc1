#pragma once

#include "../checks.h"
#include "../movers/move.h"
#include "../rows.h"

#include <customipp/types.h>

#include <tuple>

namespace customipp {

/** The integrals, from the rectangle's corners for the first pixel on, and the deviations. */
template <class S> struct RectStdDevMove {
    Rows<const S> sums;
    Rows<const Ipp64f> squares;
    Rows<Ipp32f> dst;
    Area area;
    size_t rectWidth;
    size_t rectHeight;
};
template <class S> using RectStdDevKernel = void (*)(const RectStdDevMove<S>&);
using RectStdDevKernels = std::tuple<RectStdDevKernel<Ipp32s>, RectStdDevKernel<Ipp32f>>;

/** The image from one of its pixels on. */
template <class T> Rows<T> rowsFrom(Rows<T> rows, int x, int y)
{
    return {rows.row(size_t(y)) + x, rows.step};
}

template <class S>
IppStatus runRectStdDev(const RectStdDevKernels& kernels, Rows<const S> sums, Rows<const Ipp64f> squares,
    Rows<Ipp32f> dst, IppiSize roi, IppiRect rect)
{
    if (const IppStatus status = checkArguments({sums.first, squares.first, dst.first}, roi, {}))
        return status;
    if (rect.width < 1 || rect.height < 1 || rect.x < 0 || rect.y < 0)
        return ippStsRectErr;
    const int64_t columns = int64_t {roi.width} + rect.x + rect.width;
    if (const IppStatus status = checkRowSteps({{sums.step, columns, sizeof(S)},
            {squares.step, columns, sizeof(Ipp64f)}, {dst.step, int64_t {roi.width}, sizeof(Ipp32f)}}))
        return status;
    std::get<RectStdDevKernel<S>>(kernels)({rowsFrom(sums, rect.x, rect.y), rowsFrom(squares, rect.x, rect.y),
        dst, {size_t(roi.width), size_t(roi.height)}, size_t(rect.width), size_t(rect.height)});
    return ippStsNoErr;
}

} // namespace customipp
