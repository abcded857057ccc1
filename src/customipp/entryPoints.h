/*
 * The shapes of prototypes.h as definitions. A kernel source includes this last, and then the .def files of
 * its operations; it provides kernels<Op>() for each of them, which picks the kernels of this processor.
 *
 * No source includes the whole customipp.h, so that a new operation compiles nothing but itself; each
 * definition brings its linkage along instead.
 */
#pragma once

#define CUSTOMIPP_ENTRY extern "C" CUSTOMIPP_EXPORT IppStatus

#define CUSTOMIPP_BINARY_SFS(symbol, op, T, channels)                                                        \
    CUSTOMIPP_ENTRY symbol(const T* pSrc1, int src1Step, const T* pSrc2, int src2Step, T* pDst, int dstStep, \
        IppiSize roiSize, int scaleFactor)                                                                   \
    {                                                                                                        \
        return customipp::runBinary<T>(customipp::kernels##op(), {pSrc1, src1Step}, {pSrc2, src2Step},       \
            {pDst, dstStep}, roiSize, channels, scaleFactor);                                                \
    }

#define CUSTOMIPP_BINARY_SFS_I(symbol, op, T, channels)                                                      \
    CUSTOMIPP_ENTRY symbol(                                                                                  \
        const T* pSrc, int srcStep, T* pSrcDst, int srcDstStep, IppiSize roiSize, int scaleFactor)           \
    {                                                                                                        \
        return customipp::runBinary<T>(customipp::kernels##op(), {pSrc, srcStep}, {pSrcDst, srcDstStep},     \
            {pSrcDst, srcDstStep}, roiSize, channels, scaleFactor);                                          \
    }

#define CUSTOMIPP_BINARY(symbol, op, T, channels)                                                            \
    CUSTOMIPP_ENTRY symbol(                                                                                  \
        const T* pSrc1, int src1Step, const T* pSrc2, int src2Step, T* pDst, int dstStep, IppiSize roiSize)  \
    {                                                                                                        \
        return customipp::runBinary<T>(customipp::kernels##op(), {pSrc1, src1Step}, {pSrc2, src2Step},       \
            {pDst, dstStep}, roiSize, channels);                                                             \
    }

#define CUSTOMIPP_BINARY_I(symbol, op, T, channels)                                                          \
    CUSTOMIPP_ENTRY symbol(const T* pSrc, int srcStep, T* pSrcDst, int srcDstStep, IppiSize roiSize)         \
    {                                                                                                        \
        return customipp::runBinary<T>(customipp::kernels##op(), {pSrc, srcStep}, {pSrcDst, srcDstStep},     \
            {pSrcDst, srcDstStep}, roiSize, channels);                                                       \
    }

#define CUSTOMIPP_BINARY_STRICT(symbol, op, T, channels)                                                     \
    CUSTOMIPP_ENTRY symbol(                                                                                  \
        const T* pSrc1, int src1Step, const T* pSrc2, int src2Step, T* pDst, int dstStep, IppiSize roiSize)  \
    {                                                                                                        \
        return customipp::runBinaryStrict<T>(customipp::kernels##op(), {pSrc1, src1Step}, {pSrc2, src2Step}, \
            {pDst, dstStep}, roiSize, channels);                                                             \
    }

#define CUSTOMIPP_CONSTANT_SFS(symbol, op, T)                                                                \
    CUSTOMIPP_ENTRY symbol(                                                                                  \
        const T* pSrc, int srcStep, T value, T* pDst, int dstStep, IppiSize roiSize, int scaleFactor)        \
    {                                                                                                        \
        return customipp::runConstants<T>(                                                                   \
            customipp::kernels##op(), {pSrc, srcStep}, {&value, 1}, {pDst, dstStep}, roiSize, scaleFactor);  \
    }

#define CUSTOMIPP_CONSTANT_SFS_I(symbol, op, T)                                                              \
    CUSTOMIPP_ENTRY symbol(T value, T* pSrcDst, int srcDstStep, IppiSize roiSize, int scaleFactor)           \
    {                                                                                                        \
        return customipp::runConstants<T>(customipp::kernels##op(), {pSrcDst, srcDstStep}, {&value, 1},      \
            {pSrcDst, srcDstStep}, roiSize, scaleFactor);                                                    \
    }

#define CUSTOMIPP_CONSTANT(symbol, op, T)                                                                    \
    CUSTOMIPP_ENTRY symbol(const T* pSrc, int srcStep, T value, T* pDst, int dstStep, IppiSize roiSize)      \
    {                                                                                                        \
        return customipp::runConstants<T>(                                                                   \
            customipp::kernels##op(), {pSrc, srcStep}, {&value, 1}, {pDst, dstStep}, roiSize);               \
    }

#define CUSTOMIPP_CONSTANT_I(symbol, op, T)                                                                  \
    CUSTOMIPP_ENTRY symbol(T value, T* pSrcDst, int srcDstStep, IppiSize roiSize)                            \
    {                                                                                                        \
        return customipp::runConstants<T>(                                                                   \
            customipp::kernels##op(), {pSrcDst, srcDstStep}, {&value, 1}, {pSrcDst, srcDstStep}, roiSize);   \
    }

#define CUSTOMIPP_CONSTANTS_SFS(symbol, op, T, channels)                                                     \
    CUSTOMIPP_ENTRY symbol(const T* pSrc, int srcStep, const T value[channels], T* pDst, int dstStep,        \
        IppiSize roiSize, int scaleFactor)                                                                   \
    {                                                                                                        \
        return customipp::runConstants<T>(customipp::kernels##op(), {pSrc, srcStep}, {value, channels},      \
            {pDst, dstStep}, roiSize, scaleFactor);                                                          \
    }

#define CUSTOMIPP_CONSTANTS_SFS_I(symbol, op, T, channels)                                                   \
    CUSTOMIPP_ENTRY symbol(                                                                                  \
        const T value[channels], T* pSrcDst, int srcDstStep, IppiSize roiSize, int scaleFactor)              \
    {                                                                                                        \
        return customipp::runConstants<T>(customipp::kernels##op(), {pSrcDst, srcDstStep},                   \
            {value, channels}, {pSrcDst, srcDstStep}, roiSize, scaleFactor);                                 \
    }

#define CUSTOMIPP_CONSTANTS_AC4_SFS_I(symbol, op, T)                                                         \
    CUSTOMIPP_ENTRY symbol(const T value[3], T* pSrcDst, int srcDstStep, IppiSize roiSize, int scaleFactor)  \
    {                                                                                                        \
        return customipp::runConstantsKeepingAlpha<T>(                                                       \
            customipp::kernels##op(), {pSrcDst, srcDstStep}, value, roiSize, scaleFactor);                   \
    }

#define CUSTOMIPP_UNARY(symbol, op, T, channels)                                                             \
    CUSTOMIPP_ENTRY symbol(const T* pSrc, int srcStep, T* pDst, int dstStep, IppiSize roiSize)               \
    {                                                                                                        \
        return customipp::runUnary<T>(                                                                       \
            customipp::kernels##op(), {pSrc, srcStep}, {pDst, dstStep}, roiSize, channels);                  \
    }

#define CUSTOMIPP_UNARY_I(symbol, op, T, channels)                                                           \
    CUSTOMIPP_ENTRY symbol(T* pSrcDst, int srcDstStep, IppiSize roiSize)                                     \
    {                                                                                                        \
        return customipp::runUnary<T>(                                                                       \
            customipp::kernels##op(), {pSrcDst, srcDstStep}, {pSrcDst, srcDstStep}, roiSize, channels);      \
    }

#define CUSTOMIPP_ACCUMULATE_BINARY(symbol, op, T)                                                           \
    CUSTOMIPP_ENTRY symbol(const T* pSrc1, int src1Step, const T* pSrc2, int src2Step, Ipp32f* pSrcDst,      \
        int srcDstStep, IppiSize roiSize)                                                                    \
    {                                                                                                        \
        return customipp::runAccumulate<T>(                                                                  \
            customipp::kernels##op(), {pSrc1, src1Step}, {pSrc2, src2Step}, {pSrcDst, srcDstStep}, roiSize); \
    }

#define CUSTOMIPP_ACCUMULATE_UNARY(symbol, op, T)                                                            \
    CUSTOMIPP_ENTRY symbol(const T* pSrc, int srcStep, Ipp32f* pSrcDst, int srcDstStep, IppiSize roiSize)    \
    {                                                                                                        \
        return customipp::runAccumulate<T>(                                                                  \
            customipp::kernels##op(), {pSrc, srcStep}, {pSrc, srcStep}, {pSrcDst, srcDstStep}, roiSize);     \
    }

#define CUSTOMIPP_MOVE(symbol, op, S, srcChannels, D, dstChannels)                                           \
    CUSTOMIPP_ENTRY symbol(const S* pSrc, int srcStep, D* pDst, int dstStep, IppiSize roiSize)               \
    {                                                                                                        \
        return customipp::runMove<S, srcChannels, D, dstChannels>(                                           \
            customipp::kernels##op(), {pSrc, srcStep}, {pDst, dstStep}, roiSize);                            \
    }

#define CUSTOMIPP_MOVE_ROUNDED(symbol, op, S, D)                                                             \
    CUSTOMIPP_ENTRY symbol(                                                                                  \
        const S* pSrc, int srcStep, D* pDst, int dstStep, IppiSize roiSize, IppRoundMode roundMode)          \
    {                                                                                                        \
        return customipp::runRounded<D>(                                                                     \
            customipp::kernels##op(), {pSrc, srcStep}, {pDst, dstStep}, roiSize, roundMode);                 \
    }

#define CUSTOMIPP_MOVE_MASKED(symbol, op, T, channels)                                                       \
    CUSTOMIPP_ENTRY symbol(const T* pSrc, int srcStep, T* pDst, int dstStep, IppiSize roiSize,               \
        const Ipp8u* pMask, int maskStep)                                                                    \
    {                                                                                                        \
        return customipp::runMasked<T, channels>(                                                            \
            customipp::kernels##op(), {pSrc, srcStep}, {pDst, dstStep}, roiSize, {pMask, maskStep});         \
    }

#define CUSTOMIPP_FILL(symbol, op, T)                                                                        \
    CUSTOMIPP_ENTRY symbol(T value, T* pDst, int dstStep, IppiSize roiSize)                                  \
    {                                                                                                        \
        return customipp::runFill<T, 1>(customipp::kernels##op(), &value, {pDst, dstStep}, roiSize);         \
    }

#define CUSTOMIPP_FILL_PIXEL(symbol, op, T, channels)                                                        \
    CUSTOMIPP_ENTRY symbol(const T value[channels], T* pDst, int dstStep, IppiSize roiSize)                  \
    {                                                                                                        \
        return customipp::runFill<T, channels>(customipp::kernels##op(), value, {pDst, dstStep}, roiSize);   \
    }

#define CUSTOMIPP_FILL_CHANNEL(symbol, op, T, channels)                                                      \
    CUSTOMIPP_ENTRY symbol(T value, T* pDst, int dstStep, IppiSize roiSize)                                  \
    {                                                                                                        \
        return customipp::runFillChannel<T, channels>(                                                       \
            customipp::kernels##op(), value, {pDst, dstStep}, roiSize);                                      \
    }

#define CUSTOMIPP_SWAP_CHANNELS_I(symbol, op, T, channels)                                                   \
    CUSTOMIPP_ENTRY symbol(T* pSrcDst, int srcDstStep, IppiSize roiSize, const int dstOrder[channels])       \
    {                                                                                                        \
        return customipp::runSwapChannels(                                                                   \
            customipp::kernels##op(), {pSrcDst, srcDstStep}, roiSize, dstOrder);                             \
    }

#define CUSTOMIPP_TWO_LEVELS(symbol, op, T)                                                                  \
    CUSTOMIPP_ENTRY symbol(const T* pSrc, int srcStep, T* pDst, int dstStep, IppiSize roiSize,               \
        T thresholdLT, T valueLT, T thresholdGT, T valueGT)                                                  \
    {                                                                                                        \
        return customipp::runTwoLevels<T, 1>(customipp::kernels##op(), {pSrc, srcStep}, {pDst, dstStep},     \
            roiSize, {&thresholdLT, &valueLT, &thresholdGT, &valueGT});                                      \
    }

#define CUSTOMIPP_TWO_LEVELS_CHANNELS(symbol, op, T, channels)                                               \
    CUSTOMIPP_ENTRY symbol(const T* pSrc, int srcStep, T* pDst, int dstStep, IppiSize roiSize,               \
        const T thresholdLT[3], const T valueLT[3], const T thresholdGT[3], const T valueGT[3])              \
    {                                                                                                        \
        return customipp::runTwoLevels<T, channels>(customipp::kernels##op(), {pSrc, srcStep},               \
            {pDst, dstStep}, roiSize, {thresholdLT, valueLT, thresholdGT, valueGT});                         \
    }

#define CUSTOMIPP_MIN_MAX(symbol, op, T, channels)                                                           \
    CUSTOMIPP_ENTRY symbol(const T* pSrc, int srcStep, IppiSize roiSize, T pMin[channels], T pMax[channels]) \
    {                                                                                                        \
        return customipp::runMinMax<T, channels>(                                                            \
            customipp::kernels##op(), {pSrc, srcStep}, roiSize, {pMin, pMax});                               \
    }

#define CUSTOMIPP_NORM(symbol, op, T, channels)                                                              \
    CUSTOMIPP_ENTRY symbol(const T* pSrc, int srcStep, IppiSize roiSize, Ipp64f value[channels])             \
    {                                                                                                        \
        return customipp::runNorm<T, channels>(                                                              \
            customipp::kernels##op(), {{pSrc, srcStep}, {}, {}, roiSize}, value);                            \
    }

#define CUSTOMIPP_NORM_HINT(symbol, op, T, channels)                                                         \
    CUSTOMIPP_ENTRY symbol(const T* pSrc, int srcStep, IppiSize roiSize, Ipp64f* value, IppHintAlgorithm)    \
    {                                                                                                        \
        return customipp::runNorm<T, channels>(                                                              \
            customipp::kernels##op(), {{pSrc, srcStep}, {}, {}, roiSize}, value);                            \
    }

#define CUSTOMIPP_NORM_MASKED(symbol, op, T)                                                                 \
    CUSTOMIPP_ENTRY symbol(                                                                                  \
        const T* pSrc, int srcStep, const Ipp8u* pMask, int maskStep, IppiSize roiSize, Ipp64f* pNorm)       \
    {                                                                                                        \
        return customipp::runNormMasked<T>(                                                                  \
            customipp::kernels##op(), {{pSrc, srcStep}, {}, {pMask, maskStep}, roiSize}, pNorm);             \
    }

#define CUSTOMIPP_NORM_MASKED_CHANNEL(symbol, op, T)                                                         \
    CUSTOMIPP_ENTRY symbol(const T* pSrc, int srcStep, const Ipp8u* pMask, int maskStep, IppiSize roiSize,   \
        int coi, Ipp64f* pNorm)                                                                              \
    {                                                                                                        \
        return customipp::runNormMaskedChannel<T>(                                                           \
            customipp::kernels##op(), {{pSrc, srcStep}, {}, {pMask, maskStep}, roiSize}, coi, pNorm);        \
    }

#define CUSTOMIPP_NORM_DIFF(symbol, op, T, channels)                                                         \
    CUSTOMIPP_ENTRY symbol(const T* pSrc1, int src1Step, const T* pSrc2, int src2Step, IppiSize roiSize,     \
        Ipp64f value[channels])                                                                              \
    {                                                                                                        \
        return customipp::runNormDiff<T, channels>(                                                          \
            customipp::kernels##op(), {{pSrc1, src1Step}, {pSrc2, src2Step}, {}, roiSize}, value);           \
    }

#define CUSTOMIPP_NORM_DIFF_HINT(symbol, op, T, channels)                                                    \
    CUSTOMIPP_ENTRY symbol(const T* pSrc1, int src1Step, const T* pSrc2, int src2Step, IppiSize roiSize,     \
        Ipp64f* value, IppHintAlgorithm)                                                                     \
    {                                                                                                        \
        return customipp::runNormDiff<T, channels>(                                                          \
            customipp::kernels##op(), {{pSrc1, src1Step}, {pSrc2, src2Step}, {}, roiSize}, value);           \
    }

#define CUSTOMIPP_MEAN_STD_DEV(symbol, op, T)                                                                \
    CUSTOMIPP_ENTRY symbol(const T* pSrc, int srcStep, IppiSize roiSize, Ipp64f* pMean, Ipp64f* pStdDev)     \
    {                                                                                                        \
        return customipp::runMeanStdDev<T>(                                                                  \
            customipp::kernels##op(), {{pSrc, srcStep}, {}, {}, roiSize}, {pMean, pStdDev});                 \
    }

#define CUSTOMIPP_MEAN_STD_DEV_CHANNEL(symbol, op, T)                                                        \
    CUSTOMIPP_ENTRY symbol(                                                                                  \
        const T* pSrc, int srcStep, IppiSize roiSize, int coi, Ipp64f* pMean, Ipp64f* pStdDev)               \
    {                                                                                                        \
        return customipp::runMeanStdDevChannel<T>(                                                           \
            customipp::kernels##op(), {{pSrc, srcStep}, {}, {}, roiSize}, coi, {pMean, pStdDev});            \
    }

#define CUSTOMIPP_MEAN_STD_DEV_MASKED(symbol, op, T)                                                         \
    CUSTOMIPP_ENTRY symbol(const T* pSrc, int srcStep, const Ipp8u* pMask, int maskStep, IppiSize roiSize,   \
        Ipp64f* pMean, Ipp64f* pStdDev)                                                                      \
    {                                                                                                        \
        return customipp::runMeanStdDevMasked<T>(                                                            \
            customipp::kernels##op(), {{pSrc, srcStep}, {}, {pMask, maskStep}, roiSize}, {pMean, pStdDev});  \
    }

#define CUSTOMIPP_MEAN_STD_DEV_MASKED_CHANNEL(symbol, op, T)                                                 \
    CUSTOMIPP_ENTRY symbol(const T* pSrc, int srcStep, const Ipp8u* pMask, int maskStep, IppiSize roiSize,   \
        int coi, Ipp64f* pMean, Ipp64f* pStdDev)                                                             \
    {                                                                                                        \
        return customipp::runMeanStdDevMaskedChannel<T>(customipp::kernels##op(),                            \
            {{pSrc, srcStep}, {}, {pMask, maskStep}, roiSize}, coi, {pMean, pStdDev});                       \
    }

#define CUSTOMIPP_COUNT_IN_RANGE(symbol, op, T)                                                              \
    CUSTOMIPP_ENTRY symbol(                                                                                  \
        const T* pSrc, int srcStep, IppiSize roiSize, int* counts, T lowerBound, T upperBound)               \
    {                                                                                                        \
        return customipp::runCountInRange<T, 1>(customipp::kernels##op(),                                    \
            {{pSrc, srcStep}, {}, {}, roiSize}, counts, {&lowerBound, &upperBound});                         \
    }

#define CUSTOMIPP_COUNT_IN_RANGE_CHANNELS(symbol, op, T, channels)                                           \
    CUSTOMIPP_ENTRY symbol(const T* pSrc, int srcStep, IppiSize roiSize, int counts[channels],               \
        T lowerBound[channels], T upperBound[channels])                                                      \
    {                                                                                                        \
        return customipp::runCountInRange<T, channels>(                                                      \
            customipp::kernels##op(), {{pSrc, srcStep}, {}, {}, roiSize}, counts, {lowerBound, upperBound}); \
    }

#define CUSTOMIPP_TWIST(symbol, op, T, channels)                                                             \
    CUSTOMIPP_ENTRY symbol(                                                                                  \
        const T* pSrc, int srcStep, T* pDst, int dstStep, IppiSize roiSize, const Ipp32f twist[3][4])        \
    {                                                                                                        \
        return customipp::runTwist<channels>(                                                                \
            customipp::kernels##op(), {pSrc, srcStep}, {pDst, dstStep}, roiSize, twist);                     \
    }

#define CUSTOMIPP_COLOUR_KEY(symbol, op, T)                                                                  \
    CUSTOMIPP_ENTRY symbol(const T* pSrc1, int src1Step, const T* pSrc2, int src2Step, T* pDst, int dstStep, \
        IppiSize roiSize, T colorKey)                                                                        \
    {                                                                                                        \
        return customipp::runColourKey<T, 1>(customipp::kernels##op(), {pSrc1, src1Step}, {pSrc2, src2Step}, \
            {pDst, dstStep}, roiSize, &colorKey);                                                            \
    }

#define CUSTOMIPP_COLOUR_KEYS(symbol, op, T, channels)                                                       \
    CUSTOMIPP_ENTRY symbol(const T* pSrc1, int src1Step, const T* pSrc2, int src2Step, T* pDst, int dstStep, \
        IppiSize roiSize, T colorKey[channels])                                                              \
    {                                                                                                        \
        return customipp::runColourKey<T, channels>(customipp::kernels##op(), {pSrc1, src1Step},             \
            {pSrc2, src2Step}, {pDst, dstStep}, roiSize, colorKey);                                          \
    }

#define CUSTOMIPP_PACKED_TO_PLANES(symbol, op, T)                                                            \
    CUSTOMIPP_ENTRY symbol(const T* pSrc, int srcStep, T* pDst[3], int dstStep[3], IppiSize roiSize)         \
    {                                                                                                        \
        return customipp::runToPlanes(customipp::kernels##op(), {pSrc, srcStep}, pDst, dstStep, roiSize);    \
    }

#define CUSTOMIPP_PLANES_TO_PACKED(symbol, op, T)                                                            \
    CUSTOMIPP_ENTRY symbol(const T* pSrc[3], int srcStep[3], T* pDst, int dstStep, IppiSize roiSize)         \
    {                                                                                                        \
        return customipp::runToPacked(customipp::kernels##op(), pSrc, srcStep, {pDst, dstStep}, roiSize);    \
    }

#define CUSTOMIPP_INTEGRAL(symbol, op, S, D)                                                                 \
    CUSTOMIPP_ENTRY symbol(const S* pSrc, int srcStep, D* pDst, int dstStep, IppiSize srcRoiSize)            \
    {                                                                                                        \
        return customipp::runIntegral<S, D>(                                                                 \
            customipp::kernels##op(), {pSrc, srcStep}, {pDst, dstStep}, srcRoiSize);                         \
    }

#define CUSTOMIPP_INTEGRAL_OFFSET(symbol, op, S, D)                                                          \
    CUSTOMIPP_ENTRY symbol(const S* pSrc, int srcStep, D* pDst, int dstStep, IppiSize srcRoiSize, D val)     \
    {                                                                                                        \
        return customipp::runIntegral<S, D>(                                                                 \
            customipp::kernels##op(), {pSrc, srcStep}, {pDst, dstStep}, srcRoiSize, val);                    \
    }

#define CUSTOMIPP_SQR_INTEGRAL(symbol, op, S, D, Q)                                                          \
    CUSTOMIPP_ENTRY symbol(const S* pSrc, int srcStep, D* pDst, int dstStep, Q* pSqr, int sqrStep,           \
        IppiSize roiSize, D val, Q valSqr)                                                                   \
    {                                                                                                        \
        return customipp::runSqrIntegral<S, D, Q>(customipp::kernels##op(), {pSrc, srcStep},                 \
            {pDst, dstStep}, {pSqr, sqrStep}, roiSize, val, valSqr);                                         \
    }

#define CUSTOMIPP_RECT_STD_DEV(symbol, op, S, Q, D)                                                          \
    CUSTOMIPP_ENTRY symbol(const S* pSrc, int srcStep, const Q* pSqr, int sqrStep, D* pDst, int dstStep,     \
        IppiSize roiSize, IppiRect rect)                                                                     \
    {                                                                                                        \
        return customipp::runRectStdDev<S>(                                                                  \
            customipp::kernels##op(), {pSrc, srcStep}, {pSqr, sqrStep}, {pDst, dstStep}, roiSize, rect);     \
    }

#define CUSTOMIPP_BLOCK_MIN_MAX(symbol, op, T)                                                               \
    CUSTOMIPP_ENTRY symbol(const T* pSrc, int srcStep, IppiSize srcSize, T* pDstMin, int dstMinStep,         \
        T* pDstMax, int dstMaxStep, IppiSize blockSize, T* pGlobalMin, T* pGlobalMax)                        \
    {                                                                                                        \
        return customipp::runBlockMinMax<T>(customipp::kernels##op(), {pSrc, srcStep}, srcSize,              \
            {pDstMin, dstMinStep}, {pDstMax, dstMaxStep}, blockSize, pGlobalMin, pGlobalMax);                \
    }

#define CUSTOMIPP_FIND_PEAKS_SIZE(symbol, op)                                                                \
    CUSTOMIPP_ENTRY symbol(int roiWidth, int* pBufferSize)                                                   \
    {                                                                                                        \
        return customipp::sizeOfFindPeaks(roiWidth, pBufferSize);                                            \
    }

#define CUSTOMIPP_FIND_PEAKS(symbol, op, T)                                                                  \
    CUSTOMIPP_ENTRY symbol(const T* pSrc, int srcStep, IppiSize roiSize, T threshold, IppiPoint* pPeak,      \
        int maxPeakCount, int* pPeakCount, IppiNorm norm, int border, Ipp8u* pBuffer)                        \
    {                                                                                                        \
        return customipp::runFindPeaks<T>(customipp::kernels##op(), {pSrc, srcStep}, roiSize, threshold,     \
            pPeak, maxPeakCount, pPeakCount, norm, border, pBuffer);                                         \
    }

#define CUSTOMIPP_SIGNAL_COPY(symbol, op, T)                                                                 \
    CUSTOMIPP_ENTRY symbol(const T* pSrc, T* pDst, int len)                                                  \
    {                                                                                                        \
        return customipp::runSignalCopy(pSrc, pDst, len);                                                    \
    }

#define CUSTOMIPP_SIGNAL_CONVERT_SFS(symbol, op, S, D)                                                       \
    CUSTOMIPP_ENTRY symbol(const S* pSrc, D* pDst, int len, IppRoundMode rndMode, int scaleFactor)           \
    {                                                                                                        \
        return customipp::runSignalConvert(customipp::kernels##op(), pSrc, pDst, len, rndMode, scaleFactor); \
    }

#define CUSTOMIPP_SIGNAL_MIN_MAX(symbol, op, T)                                                              \
    CUSTOMIPP_ENTRY symbol(const T* pSrc, int len, T* pMin, T* pMax)                                         \
    {                                                                                                        \
        return customipp::runSignalMinMax<T>(customipp::kernels##op(), pSrc, len, {pMin, pMax});             \
    }

#define CUSTOMIPP_REDUCE_BITS_SIZE(symbol)                                                                   \
    CUSTOMIPP_ENTRY symbol(                                                                                  \
        IppChannels ippChan, IppiSize roiSize, int noise, IppiDitherType dtype, int* pBufferSize)            \
    {                                                                                                        \
        return customipp::runReduceBitsSize(ippChan, roiSize, noise, dtype, pBufferSize);                    \
    }

#define CUSTOMIPP_REDUCE_BITS(symbol, op, S, D)                                                              \
    CUSTOMIPP_ENTRY symbol(const S* pSrc, int srcStep, D* pDst, int dstStep, IppiSize roiSize, int noise,    \
        IppiDitherType dtype, int levels, Ipp8u*)                                                            \
    {                                                                                                        \
        return customipp::runReduceBits(                                                                     \
            customipp::kernels##op(), {pSrc, srcStep}, {pDst, dstStep}, roiSize, noise, dtype, levels);      \
    }

#define CUSTOMIPP_LUT_SIZE(symbol)                                                                           \
    CUSTOMIPP_ENTRY symbol(IppiInterpolationType interpolation, IppDataType dataType, IppChannels channels,  \
        IppiSize roiSize, const int nLevels[], int* pSpecSize)                                               \
    {                                                                                                        \
        return customipp::runLutSize(interpolation, dataType, channels, roiSize, nLevels, pSpecSize);        \
    }

#define CUSTOMIPP_LUT_INIT(symbol, T, L)                                                                     \
    CUSTOMIPP_ENTRY symbol(IppiInterpolationType interpolation, IppChannels channels, IppiSize roiSize,      \
        const L* pValues[], const L* pLevels[], int nLevels[], IppiLUT_Spec* pSpec)                          \
    {                                                                                                        \
        return customipp::runLutInit<T>(interpolation, channels, roiSize, pValues, pLevels, nLevels, pSpec); \
    }

#define CUSTOMIPP_LUT(symbol, op, T, channels)                                                               \
    CUSTOMIPP_ENTRY symbol(                                                                                  \
        const T* pSrc, int srcStep, T* pDst, int dstStep, IppiSize roiSize, IppiLUT_Spec* pSpec)             \
    {                                                                                                        \
        return customipp::runLut<T, channels>(                                                               \
            customipp::kernels##op(), {pSrc, srcStep}, {pDst, dstStep}, roiSize, pSpec);                     \
    }

#define CUSTOMIPP_LUT_I(symbol, op, T, channels)                                                             \
    CUSTOMIPP_ENTRY symbol(T* pSrcDst, int srcDstStep, IppiSize roiSize, IppiLUT_Spec* pSpec)                \
    {                                                                                                        \
        return customipp::runLut<T, channels>(                                                               \
            customipp::kernels##op(), {pSrcDst, srcDstStep}, {pSrcDst, srcDstStep}, roiSize, pSpec);         \
    }

#define CUSTOMIPP_HISTOGRAM_SIZE(symbol)                                                                     \
    CUSTOMIPP_ENTRY symbol(IppDataType dataType, IppiSize roiSize, const int nLevels[], int numChannels,     \
        int, int* pSpecSize, int* pBufferSize)                                                               \
    {                                                                                                        \
        return customipp::runHistogramSize(dataType, roiSize, nLevels, numChannels, pSpecSize, pBufferSize); \
    }

#define CUSTOMIPP_HISTOGRAM_INIT(symbol)                                                                     \
    CUSTOMIPP_ENTRY symbol(IppDataType dataType, Ipp32f lowerLevel[], Ipp32f upperLevel[], int nLevels[],    \
        int numChannels, IppiHistogramSpec* pSpec)                                                           \
    {                                                                                                        \
        return customipp::runHistogramInit(dataType, lowerLevel, upperLevel, nLevels, numChannels, pSpec);   \
    }

#define CUSTOMIPP_HISTOGRAM_LEVELS(symbol)                                                                   \
    CUSTOMIPP_ENTRY symbol(const IppiHistogramSpec* pSpec, Ipp32f* pLevels[])                                \
    {                                                                                                        \
        return customipp::runHistogramLevels(pSpec, pLevels);                                                \
    }

#define CUSTOMIPP_HISTOGRAM(symbol, op, T)                                                                   \
    CUSTOMIPP_ENTRY symbol(const T* pSrc, int srcStep, IppiSize roiSize, Ipp32u* pHist,                      \
        const IppiHistogramSpec* pSpec, Ipp8u* pBuffer)                                                      \
    {                                                                                                        \
        return customipp::runHistogram<T>(                                                                   \
            customipp::kernels##op(), {pSrc, srcStep}, roiSize, pHist, pSpec, pBuffer);                      \
    }

#define CUSTOMIPP_MATCH_SIZE(symbol, op)                                                                     \
    CUSTOMIPP_ENTRY symbol(IppiSize srcRoiSize, IppiSize tplRoiSize, IppEnum algType, int* pBufferSize)      \
    {                                                                                                        \
        return customipp::matchBufferSize(                                                                   \
            customipp::Measure::op, srcRoiSize, tplRoiSize, algType, pBufferSize);                           \
    }

#define CUSTOMIPP_MATCH(symbol, op, T)                                                                       \
    CUSTOMIPP_ENTRY symbol(const T* pSrc, int srcStep, IppiSize srcRoiSize, const T* pTpl, int tplStep,      \
        IppiSize tplRoiSize, Ipp32f* pDst, int dstStep, IppEnum algType, Ipp8u* pBuffer)                     \
    {                                                                                                        \
        return customipp::runMatch<T>(customipp::kernelsMatch(), customipp::Measure::op, {pSrc, srcStep},    \
            srcRoiSize, {pTpl, tplStep}, tplRoiSize, {pDst, dstStep}, algType, pBuffer);                     \
    }
