#pragma once

#include "../checks.h"
#include "../rows.h"

#include <customipp/types.h>

#include <cstddef>

/**
 * How well a small image, the pattern, fits at each place of another: correlation and squared distance.
 *
 * The results are computed tile by tile. For each tile the products of pattern and source are summed, either
 * directly or by Fourier transforms, then the sums over the windows of the source that the norm needs, and
 * from both the results. Everything between the pixels and the result is double, or exact integers.
 *
 * Accuracy: as if computed in double and rounded to float once. Of 8-bit pixels, correlation and squared
 * distance are the exact integers, rounded. Otherwise a correlation is exact to 2^-22 sqrt(Rxx Rtt), a
 * distance to 2^-22 (Rxx + Rtt), with Rxx, Rtt the sums of squares of window and pattern, and a normalised
 * value v to 2e-6 max(1, |v|). A float that is not finite makes the windows that contain it undefined, and
 * when the work is done by transforms those near it.
 */
namespace customipp {

enum class Measure { CrossCorr, SqrDistance };
enum class MatchNorm { None, Norm, Coefficient };

/** What is asked for. The window of the result at x, y begins at the source's x - originX, y - originY. */
struct MatchProblem {
    IppiSize source, pattern, result;
    int originX, originY;
    MatchNorm norm;
    Measure measure;
};

/**
 * The work by its sizes and flags, in the order: sizes, steps as far as the caller names them, flags.
 * @param steps of source, pattern and result with their bytes of a pixel; empty in a size query.
 */
IppStatus makeMatchProblem(IppiSize source, IppiSize pattern, IppEnum algType, Measure measure,
    std::initializer_list<StepOf> steps, MatchProblem& problem);

/** How the products are summed. */
enum class MatchMethod {
    Pairs, ///< directly, 8-bit pixels two at a time in integers
    Direct, ///< directly, in double
    Spectrum ///< by Fourier transforms of tiles that overlap
};

/** A place in the work memory, in bytes. */
using Offset = size_t;

/**
 * How it is done; by the sizes alone, so that every machine takes the same way. Strides and lengths count
 * elements; the rows of all planes begin on 64-byte boundaries.
 */
struct MatchPlan {
    MatchMethod method;
    int tileWidth, tileHeight; ///< results of a tile
    int spanWidth, spanHeight; ///< pixels of the source under a tile; with Spectrum, the lengths of the
                               ///< transforms
    size_t stride; ///< of the planes that hold a span

    Offset window; ///< double plane: the pixels of the span
    Offset pairs; ///< uint32_t plane: each pixel with its right neighbour above it
    Offset pattern; ///< double, or pairs of pixels as uint32_t, row after row without padding
    Offset products; ///< double plane of the stride: the sums of a tile
    Offset sums, squares; ///< double planes: sums over the windows
    Offset columns; ///< working memory of the sums, 2 parts of columnsSize numbers
    size_t columnsSize;
    Offset row; ///< one row of results
    Offset spectrum, patternSpectrum, batch, scratch, tablesX, tablesY;
    size_t spectrumSize;

    size_t bytes; ///< of all, and room to begin on a boundary
};

MatchPlan makeMatchPlan(const MatchProblem& problem, bool eightBit);

/** The work memory for any pixel type. */
IppStatus matchBufferSize(
    Measure measure, IppiSize source, IppiSize pattern, IppEnum algType, int* bufferSize);

template <class T> struct MatchTask {
    MatchProblem problem;
    Rows<const T> source, pattern;
    Rows<Ipp32f> result;
    Ipp8u* buffer;
};
template <class T> using MatchKernel = void (*)(const MatchTask<T>&);

struct MatchKernels {
    MatchKernel<Ipp8u> of8u;
    MatchKernel<Ipp16u> of16u;
    MatchKernel<Ipp32f> of32f;

    MatchKernel<Ipp8u> kernel(Ipp8u) const { return of8u; }
    MatchKernel<Ipp16u> kernel(Ipp16u) const { return of16u; }
    MatchKernel<Ipp32f> kernel(Ipp32f) const { return of32f; }
};

template <class T>
IppStatus runMatch(const MatchKernels& kernels, Measure measure, Rows<const T> source, IppiSize sourceSize,
    Rows<const T> pattern, IppiSize patternSize, Rows<Ipp32f> result, IppEnum algType, Ipp8u* buffer)
{
    if (!source.first || !pattern.first || !result.first || !buffer)
        return ippStsNullPtrErr;
    MatchTask<T> task {{}, source, pattern, result, buffer};
    if (const IppStatus status = makeMatchProblem(sourceSize, patternSize, algType, measure,
            {{source.step, sizeof(T), sizeof(T)}, {pattern.step, sizeof(T), sizeof(T)},
                {result.step, sizeof(Ipp32f), sizeof(Ipp32f)}},
            task.problem))
        return status;
    kernels.kernel(T())(task);
    return ippStsNoErr;
}

} // namespace customipp
