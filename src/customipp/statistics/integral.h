#pragma once

#include "../checks.h"
#include "../movers/move.h"
#include "../rows.h"

#include <customipp/types.h>

#include <cmath>
#include <cstdlib>
#include <memory>
#include <type_traits>

namespace customipp {

/** One image and the sums over all that lies above and to the left of each corner of its pixels. */
template <class S, class D> struct IntegralMove {
    Rows<const S> src;
    Rows<D> dst;
    Area area; ///< of the source
    D offset;
    void* above; ///< room for a row of sums of up to 8 bytes and a vector, on a 64-byte boundary
};
template <class S, class D> using IntegralKernel = void (*)(const IntegralMove<S, D>&);

struct IntegralKernels {
    IntegralKernel<Ipp8u, Ipp32s> to32s;
    IntegralKernel<Ipp8u, Ipp32f> to32f;
    IntegralKernel<Ipp8u, Ipp32f> to32fBelow32Bits; ///< for sums, offset included, that are such integers
    IntegralKernel<Ipp8u, Ipp32f> to32fBelow31Bits;
    IntegralKernel<Ipp8u, Ipp64f> ofSquares;
    IntegralKernel<Ipp32f, Ipp32f> ofFloats;

    template <class S, class D> IntegralKernel<S, D> of(IppiSize roi, D offset) const
    {
        if constexpr (std::is_same_v<S, Ipp32f>)
            return ofFloats;
        else if constexpr (std::is_same_v<D, Ipp32s>)
            return to32s;
        else if constexpr (std::is_same_v<D, Ipp64f>)
            return ofSquares;
        else
            return floatsFor(roi, offset);
    }

private:
    IntegralKernel<Ipp8u, Ipp32f> floatsFor(IppiSize roi, Ipp32f offset) const
    {
        const double greatest = double {offset} + 255.0 * roi.width * roi.height;
        if (!(offset >= 0) || offset != std::trunc(offset) || greatest >= 4294967296.0)
            return to32f;
        return greatest < 2147483648.0 ? to32fBelow31Bits : to32fBelow32Bits;
    }
};

template <class S, class D>
IppStatus runIntegralKernel(
    IntegralKernel<S, D> kernel, Rows<const S> src, Rows<D> dst, IppiSize roi, D offset)
{
    constexpr size_t greatestVector = 64;
    const Area area {size_t(roi.width), size_t(roi.height)};
    const size_t bytes = area.width * sizeof(double) + 8 * greatestVector;
    const std::unique_ptr<void, decltype(&std::free)> above(
        std::aligned_alloc(64, (bytes + 63) / 64 * 64), &std::free);
    if (!above)
        return ippStsMemAllocErr;
    kernel({src, dst, area, offset, above.get()});
    return ippStsNoErr;
}

template <class S, class D>
IppStatus runIntegral(
    const IntegralKernels& kernels, Rows<const S> src, Rows<D> dst, IppiSize roi, D offset = {})
{
    if (const IppStatus status = checkArguments({src.first, dst.first}, roi, {src.step, dst.step}))
        return status;
    if (const IppStatus status = checkRowSteps(
            {{src.step, int64_t {roi.width}, sizeof(S)}, {dst.step, int64_t {roi.width} + 1, sizeof(D)}}))
        return status;
    return runIntegralKernel(kernels.of<S, D>(roi, offset), src, dst, roi, offset);
}

/** The sums, and then those of the squares. */
template <class S, class D, class Q>
IppStatus runSqrIntegral(const IntegralKernels& kernels, Rows<const S> src, Rows<D> dst, Rows<Q> squares,
    IppiSize roi, D offset, Q squaresOffset)
{
    if (const IppStatus status
        = checkArguments({src.first, dst.first, squares.first}, roi, {src.step, dst.step, squares.step}))
        return status;
    const int64_t width = roi.width;
    if (const IppStatus status = checkRowSteps({{src.step, width, sizeof(S)},
            {dst.step, width + 1, sizeof(D)}, {squares.step, width + 1, sizeof(Q)}}))
        return status;
    if (const IppStatus status
        = runIntegralKernel(kernels.of<S, Q>(roi, squaresOffset), src, squares, roi, squaresOffset))
        return status;
    return runIntegralKernel(kernels.of<S, D>(roi, offset), src, dst, roi, offset);
}

} // namespace customipp
