#pragma once

#include <cstddef>

/**
 * Fourier transforms of any length, many at once: the engine below everything that works with spectra.
 *
 * A batch is a sequence of complex numbers in each of `batchLanes<T>` lanes, a lane being a row or a column
 * of an image. Element n of a batch is one cache line of real parts, one number for each lane, and then one
 * of imaginary parts. Lanes do not meet, so nothing is shuffled, and the bytes of a lane are the same
 * whatever the width of the vectors.
 *
 * forward: X(k) = sum of x(n) exp(-2 pi i k n / length); backward: the same with +. Neither divides.
 *
 * A length whose prime factors are 2, 3 and 5 costs about 5 log2(length) operations for each element; another
 * prime factor costs twice its own size for each element.
 */
namespace customipp {

template <class T> inline constexpr size_t batchLanes = 64 / sizeof(T);

/** The numbers of type T that a batch of a length holds. */
template <class T> constexpr size_t batchSize(size_t length) { return length * 2 * batchLanes<T>; }

/** How one length is done. It owns nothing: the factors of the stages lie where they were put. */
template <class T> struct FourierPlan {
    static constexpr int maxStages = 32;

    int length;
    int stages;
    int radices[maxStages]; ///< of the stages, in their order
    const T* twiddles;
};

/** The numbers of type T that the tables for a length take. */
template <class T> size_t fourierTableSize(int length);

/** Fills the tables for a length; they must outlive the plan. The same on every processor. */
template <class T> FourierPlan<T> makeFourierPlan(int length, T* tables);

/** The plan for tables that were filled before. */
template <class T> FourierPlan<T> fourierPlanAt(int length, const T* tables);

/** Cosine and sine of 2 pi numerator / denominator, 0 <= numerator < denominator; the same on every
 * processor. */
struct UnitRoot {
    double re, im;
};
UnitRoot unitRoot(int numerator, int denominator);

enum class Direction { Forward, Backward };

/**
 * Transforms a batch. Both it and the scratch batch are changed; the result lies in the one that is returned:
 * in the batch itself after an even number of stages, else in the scratch. Both begin on a 64-byte boundary.
 */
template <class T>
using FourierKernel = T* (*)(const FourierPlan<T>& plan, Direction direction, T* batch, T* scratch);

struct FourierKernels {
    FourierKernel<float> of32f;
    FourierKernel<double> of64f;
};

/** The kernels for this processor. Kernels of other sources call fourierKernels() of their own target. */
const FourierKernels& kernelsFourier();

} // namespace customipp
