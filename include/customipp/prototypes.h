/*
 * One macro for each shape of signature, defined here as the prototype of a function. The rows of the .def
 * files name symbol, operation, pixel type and channels in full. src/customipp/entryPoints.h defines the same
 * macros as the functions, the tests as their cases.
 *
 * Images are a pointer to the first pixel and the distance of the rows in bytes. An I shape works in place.
 */
#pragma once

/* Two images to one, the exact result times 2^-scaleFactor, rounded to nearest (ties to even) and saturated.
 */
#define CUSTOMIPP_BINARY_SFS(symbol, op, T, channels)                                                        \
    CUSTOMIPP_EXPORT IppStatus symbol(const T* pSrc1, int src1Step, const T* pSrc2, int src2Step, T* pDst,   \
        int dstStep, IppiSize roiSize, int scaleFactor);
#define CUSTOMIPP_BINARY_SFS_I(symbol, op, T, channels)                                                      \
    CUSTOMIPP_EXPORT IppStatus symbol(                                                                       \
        const T* pSrc, int srcStep, T* pSrcDst, int srcDstStep, IppiSize roiSize, int scaleFactor);

/* Two images to one. */
#define CUSTOMIPP_BINARY(symbol, op, T, channels)                                                            \
    CUSTOMIPP_EXPORT IppStatus symbol(                                                                       \
        const T* pSrc1, int src1Step, const T* pSrc2, int src2Step, T* pDst, int dstStep, IppiSize roiSize);
#define CUSTOMIPP_BINARY_I(symbol, op, T, channels)                                                          \
    CUSTOMIPP_EXPORT IppStatus symbol(                                                                       \
        const T* pSrc, int srcStep, T* pSrcDst, int srcDstStep, IppiSize roiSize);
/* Two images to one; the steps must hold a row and be multiples of the element size. */
#define CUSTOMIPP_BINARY_STRICT(symbol, op, T, channels) CUSTOMIPP_BINARY(symbol, op, T, channels)

/* An image and one constant. */
#define CUSTOMIPP_CONSTANT_SFS(symbol, op, T)                                                                \
    CUSTOMIPP_EXPORT IppStatus symbol(                                                                       \
        const T* pSrc, int srcStep, T value, T* pDst, int dstStep, IppiSize roiSize, int scaleFactor);
#define CUSTOMIPP_CONSTANT_SFS_I(symbol, op, T)                                                              \
    CUSTOMIPP_EXPORT IppStatus symbol(T value, T* pSrcDst, int srcDstStep, IppiSize roiSize, int scaleFactor);
#define CUSTOMIPP_CONSTANT(symbol, op, T)                                                                    \
    CUSTOMIPP_EXPORT IppStatus symbol(                                                                       \
        const T* pSrc, int srcStep, T value, T* pDst, int dstStep, IppiSize roiSize);
#define CUSTOMIPP_CONSTANT_I(symbol, op, T)                                                                  \
    CUSTOMIPP_EXPORT IppStatus symbol(T value, T* pSrcDst, int srcDstStep, IppiSize roiSize);

/* An image and one constant for each channel. */
#define CUSTOMIPP_CONSTANTS_SFS(symbol, op, T, channels)                                                     \
    CUSTOMIPP_EXPORT IppStatus symbol(const T* pSrc, int srcStep, const T value[channels], T* pDst,          \
        int dstStep, IppiSize roiSize, int scaleFactor);
#define CUSTOMIPP_CONSTANTS_SFS_I(symbol, op, T, channels)                                                   \
    CUSTOMIPP_EXPORT IppStatus symbol(                                                                       \
        const T value[channels], T* pSrcDst, int srcDstStep, IppiSize roiSize, int scaleFactor);
/* Four channels, of which the last keeps what it holds. */
#define CUSTOMIPP_CONSTANTS_AC4_SFS_I(symbol, op, T)                                                         \
    CUSTOMIPP_EXPORT IppStatus symbol(                                                                       \
        const T value[3], T* pSrcDst, int srcDstStep, IppiSize roiSize, int scaleFactor);

/* One image to one of the same type. */
#define CUSTOMIPP_UNARY(symbol, op, T, channels)                                                             \
    CUSTOMIPP_EXPORT IppStatus symbol(const T* pSrc, int srcStep, T* pDst, int dstStep, IppiSize roiSize);
#define CUSTOMIPP_UNARY_I(symbol, op, T, channels)                                                           \
    CUSTOMIPP_EXPORT IppStatus symbol(T* pSrcDst, int srcDstStep, IppiSize roiSize);

/* Two images, or one, into an accumulator of floats. */
#define CUSTOMIPP_ACCUMULATE_BINARY(symbol, op, T)                                                           \
    CUSTOMIPP_EXPORT IppStatus symbol(const T* pSrc1, int src1Step, const T* pSrc2, int src2Step,            \
        Ipp32f* pSrcDst, int srcDstStep, IppiSize roiSize);
#define CUSTOMIPP_ACCUMULATE_UNARY(symbol, op, T)                                                            \
    CUSTOMIPP_EXPORT IppStatus symbol(                                                                       \
        const T* pSrc, int srcStep, Ipp32f* pSrcDst, int srcDstStep, IppiSize roiSize);

/* One image to another of other channels or of another type. */
#define CUSTOMIPP_MOVE(symbol, op, S, srcChannels, D, dstChannels)                                           \
    CUSTOMIPP_EXPORT IppStatus symbol(const S* pSrc, int srcStep, D* pDst, int dstStep, IppiSize roiSize);
/* The same with a rounding mode. */
#define CUSTOMIPP_MOVE_ROUNDED(symbol, op, S, D)                                                             \
    CUSTOMIPP_EXPORT IppStatus symbol(                                                                       \
        const S* pSrc, int srcStep, D* pDst, int dstStep, IppiSize roiSize, IppRoundMode roundMode);
/* One image to one of the same type, where a mask with a byte for each pixel is not 0. */
#define CUSTOMIPP_MOVE_MASKED(symbol, op, T, channels)                                                       \
    CUSTOMIPP_EXPORT IppStatus symbol(const T* pSrc, int srcStep, T* pDst, int dstStep, IppiSize roiSize,    \
        const Ipp8u* pMask, int maskStep);

/* One value for every pixel, for every channel, or for one channel of several. */
#define CUSTOMIPP_FILL(symbol, op, T)                                                                        \
    CUSTOMIPP_EXPORT IppStatus symbol(T value, T* pDst, int dstStep, IppiSize roiSize);
#define CUSTOMIPP_FILL_PIXEL(symbol, op, T, channels)                                                        \
    CUSTOMIPP_EXPORT IppStatus symbol(const T value[channels], T* pDst, int dstStep, IppiSize roiSize);
#define CUSTOMIPP_FILL_CHANNEL(symbol, op, T, channels)                                                      \
    CUSTOMIPP_EXPORT IppStatus symbol(T value, T* pDst, int dstStep, IppiSize roiSize);

/* Channels that change places. */
#define CUSTOMIPP_SWAP_CHANNELS_I(symbol, op, T, channels)                                                   \
    CUSTOMIPP_EXPORT IppStatus symbol(                                                                       \
        T* pSrcDst, int srcDstStep, IppiSize roiSize, const int dstOrder[channels]);

/* Three channels by a matrix, with four channels keeping what the last one holds. */
#define CUSTOMIPP_TWIST(symbol, op, T, channels)                                                             \
    CUSTOMIPP_EXPORT IppStatus symbol(                                                                       \
        const T* pSrc, int srcStep, T* pDst, int dstStep, IppiSize roiSize, const Ipp32f twist[3][4]);

/* Two images to one by a key, which is a pixel of one channel or of several. */
#define CUSTOMIPP_COLOUR_KEY(symbol, op, T)                                                                  \
    CUSTOMIPP_EXPORT IppStatus symbol(const T* pSrc1, int src1Step, const T* pSrc2, int src2Step, T* pDst,   \
        int dstStep, IppiSize roiSize, T colorKey);
#define CUSTOMIPP_COLOUR_KEYS(symbol, op, T, channels)                                                       \
    CUSTOMIPP_EXPORT IppStatus symbol(const T* pSrc1, int src1Step, const T* pSrc2, int src2Step, T* pDst,   \
        int dstStep, IppiSize roiSize, T colorKey[channels]);

/* A packed image to three planes, and three planes to a packed image. */
#define CUSTOMIPP_PACKED_TO_PLANES(symbol, op, T)                                                            \
    CUSTOMIPP_EXPORT IppStatus symbol(                                                                       \
        const T* pSrc, int srcStep, T* pDst[3], int dstStep[3], IppiSize roiSize);
#define CUSTOMIPP_PLANES_TO_PACKED(symbol, op, T)                                                            \
    CUSTOMIPP_EXPORT IppStatus symbol(                                                                       \
        const T* pSrc[3], int srcStep[3], T* pDst, int dstStep, IppiSize roiSize);

/* Two thresholds with a value for each, the same for all pixels or for each of three channels. */
#define CUSTOMIPP_TWO_LEVELS(symbol, op, T)                                                                  \
    CUSTOMIPP_EXPORT IppStatus symbol(const T* pSrc, int srcStep, T* pDst, int dstStep, IppiSize roiSize,    \
        T thresholdLT, T valueLT, T thresholdGT, T valueGT);
#define CUSTOMIPP_TWO_LEVELS_CHANNELS(symbol, op, T, channels)                                               \
    CUSTOMIPP_EXPORT IppStatus symbol(const T* pSrc, int srcStep, T* pDst, int dstStep, IppiSize roiSize,    \
        const T thresholdLT[3], const T valueLT[3], const T thresholdGT[3], const T valueGT[3]);

/* The least and the greatest pixel of an image, for each of its channels. */
#define CUSTOMIPP_MIN_MAX(symbol, op, T, channels)                                                           \
    CUSTOMIPP_EXPORT IppStatus symbol(                                                                       \
        const T* pSrc, int srcStep, IppiSize roiSize, T pMin[channels], T pMax[channels]);
/* Sums over all that lies above and to the left; of the squares, too. */
#define CUSTOMIPP_INTEGRAL(symbol, op, S, D)                                                                 \
    CUSTOMIPP_EXPORT IppStatus symbol(const S* pSrc, int srcStep, D* pDst, int dstStep, IppiSize srcRoiSize);
#define CUSTOMIPP_INTEGRAL_OFFSET(symbol, op, S, D)                                                          \
    CUSTOMIPP_EXPORT IppStatus symbol(                                                                       \
        const S* pSrc, int srcStep, D* pDst, int dstStep, IppiSize srcRoiSize, D val);
#define CUSTOMIPP_SQR_INTEGRAL(symbol, op, S, D, Q)                                                          \
    CUSTOMIPP_EXPORT IppStatus symbol(const S* pSrc, int srcStep, D* pDst, int dstStep, Q* pSqr,             \
        int sqrStep, IppiSize roiSize, D val, Q valSqr);

/* Deviation under a rectangle, from integrals. */
#define CUSTOMIPP_RECT_STD_DEV(symbol, op, S, Q, D)                                                          \
    CUSTOMIPP_EXPORT IppStatus symbol(const S* pSrc, int srcStep, const Q* pSqr, int sqrStep, D* pDst,       \
        int dstStep, IppiSize roiSize, IppiRect rect);
/* Least and greatest pixel of each block and of all. */
#define CUSTOMIPP_BLOCK_MIN_MAX(symbol, op, T)                                                               \
    CUSTOMIPP_EXPORT IppStatus symbol(const T* pSrc, int srcStep, IppiSize srcSize, T* pDstMin,              \
        int dstMinStep, T* pDstMax, int dstMaxStep, IppiSize blockSize, T* pGlobalMin, T* pGlobalMax);
/* Pixels above their neighbours, with the memory for the search. */
#define CUSTOMIPP_FIND_PEAKS_SIZE(symbol, op)                                                                \
    CUSTOMIPP_EXPORT IppStatus symbol(int roiWidth, int* pBufferSize);
#define CUSTOMIPP_FIND_PEAKS(symbol, op, T)                                                                  \
    CUSTOMIPP_EXPORT IppStatus symbol(const T* pSrc, int srcStep, IppiSize roiSize, T threshold,             \
        IppiPoint* pPeak, int maxPeakCount, int* pPeakCount, IppiNorm norm, int border, Ipp8u* pBuffer);

/* Norms: an element for each channel; one channel of three, counted from 1; of the pixels of a mask. */
#define CUSTOMIPP_NORM(symbol, op, T, channels)                                                              \
    CUSTOMIPP_EXPORT IppStatus symbol(const T* pSrc, int srcStep, IppiSize roiSize, Ipp64f value[channels]);
#define CUSTOMIPP_NORM_HINT(symbol, op, T, channels)                                                         \
    CUSTOMIPP_EXPORT IppStatus symbol(                                                                       \
        const T* pSrc, int srcStep, IppiSize roiSize, Ipp64f* value, IppHintAlgorithm hint);
#define CUSTOMIPP_NORM_MASKED(symbol, op, T)                                                                 \
    CUSTOMIPP_EXPORT IppStatus symbol(                                                                       \
        const T* pSrc, int srcStep, const Ipp8u* pMask, int maskStep, IppiSize roiSize, Ipp64f* pNorm);
#define CUSTOMIPP_NORM_MASKED_CHANNEL(symbol, op, T)                                                         \
    CUSTOMIPP_EXPORT IppStatus symbol(const T* pSrc, int srcStep, const Ipp8u* pMask, int maskStep,          \
        IppiSize roiSize, int coi, Ipp64f* pNorm);
#define CUSTOMIPP_NORM_DIFF(symbol, op, T, channels)                                                         \
    CUSTOMIPP_EXPORT IppStatus symbol(const T* pSrc1, int src1Step, const T* pSrc2, int src2Step,            \
        IppiSize roiSize, Ipp64f value[channels]);
#define CUSTOMIPP_NORM_DIFF_HINT(symbol, op, T, channels)                                                    \
    CUSTOMIPP_EXPORT IppStatus symbol(const T* pSrc1, int src1Step, const T* pSrc2, int src2Step,            \
        IppiSize roiSize, Ipp64f* value, IppHintAlgorithm hint);

/* Mean and standard deviation: of all pixels or those of a mask; of one channel of three, counted from 1. */
#define CUSTOMIPP_MEAN_STD_DEV(symbol, op, T)                                                                \
    CUSTOMIPP_EXPORT IppStatus symbol(                                                                       \
        const T* pSrc, int srcStep, IppiSize roiSize, Ipp64f* pMean, Ipp64f* pStdDev);
#define CUSTOMIPP_MEAN_STD_DEV_CHANNEL(symbol, op, T)                                                        \
    CUSTOMIPP_EXPORT IppStatus symbol(                                                                       \
        const T* pSrc, int srcStep, IppiSize roiSize, int coi, Ipp64f* pMean, Ipp64f* pStdDev);
#define CUSTOMIPP_MEAN_STD_DEV_MASKED(symbol, op, T)                                                         \
    CUSTOMIPP_EXPORT IppStatus symbol(const T* pSrc, int srcStep, const Ipp8u* pMask, int maskStep,          \
        IppiSize roiSize, Ipp64f* pMean, Ipp64f* pStdDev);
#define CUSTOMIPP_MEAN_STD_DEV_MASKED_CHANNEL(symbol, op, T)                                                 \
    CUSTOMIPP_EXPORT IppStatus symbol(const T* pSrc, int srcStep, const Ipp8u* pMask, int maskStep,          \
        IppiSize roiSize, int coi, Ipp64f* pMean, Ipp64f* pStdDev);

/* How many pixels lie in a range, both ends included; a count and a range for each channel. */
#define CUSTOMIPP_COUNT_IN_RANGE(symbol, op, T)                                                              \
    CUSTOMIPP_EXPORT IppStatus symbol(                                                                       \
        const T* pSrc, int srcStep, IppiSize roiSize, int* counts, T lowerBound, T upperBound);
#define CUSTOMIPP_COUNT_IN_RANGE_CHANNELS(symbol, op, T, channels)                                           \
    CUSTOMIPP_EXPORT IppStatus symbol(const T* pSrc, int srcStep, IppiSize roiSize, int counts[channels],    \
        T lowerBound[channels], T upperBound[channels]);

/* A sequence to another, the same or converted with a scale factor; the least and greatest element of one. */
#define CUSTOMIPP_SIGNAL_COPY(symbol, op, T)                                                                 \
    CUSTOMIPP_EXPORT IppStatus symbol(const T* pSrc, T* pDst, int len);
#define CUSTOMIPP_SIGNAL_CONVERT_SFS(symbol, op, S, D)                                                       \
    CUSTOMIPP_EXPORT IppStatus symbol(const S* pSrc, D* pDst, int len, IppRoundMode rndMode, int scaleFactor);
#define CUSTOMIPP_SIGNAL_MIN_MAX(symbol, op, T)                                                              \
    CUSTOMIPP_EXPORT IppStatus symbol(const T* pSrc, int len, T* pMin, T* pMax);

/* Floats as bytes of a few levels, with the size of the work memory before. */
#define CUSTOMIPP_REDUCE_BITS_SIZE(symbol)                                                                   \
    CUSTOMIPP_EXPORT IppStatus symbol(                                                                       \
        IppChannels ippChan, IppiSize roiSize, int noise, IppiDitherType dtype, int* pBufferSize);
#define CUSTOMIPP_REDUCE_BITS(symbol, op, S, D)                                                              \
    CUSTOMIPP_EXPORT IppStatus symbol(const S* pSrc, int srcStep, D* pDst, int dstStep, IppiSize roiSize,    \
        int noise, IppiDitherType dtype, int levels, Ipp8u* pBuffer);

/* Pixels through a table: the size of the spec structure, its making, and its use. L is the type of levels
 * and values.
 */
#define CUSTOMIPP_LUT_SIZE(symbol)                                                                           \
    CUSTOMIPP_EXPORT IppStatus symbol(IppiInterpolationType interpolation, IppDataType dataType,             \
        IppChannels channels, IppiSize roiSize, const int nLevels[], int* pSpecSize);
#define CUSTOMIPP_LUT_INIT(symbol, T, L)                                                                     \
    CUSTOMIPP_EXPORT IppStatus symbol(IppiInterpolationType interpolation, IppChannels channels,             \
        IppiSize roiSize, const L* pValues[], const L* pLevels[], int nLevels[], IppiLUT_Spec* pSpec);
#define CUSTOMIPP_LUT(symbol, op, T, channels)                                                               \
    CUSTOMIPP_EXPORT IppStatus symbol(                                                                       \
        const T* pSrc, int srcStep, T* pDst, int dstStep, IppiSize roiSize, IppiLUT_Spec* pSpec);
#define CUSTOMIPP_LUT_I(symbol, op, T, channels)                                                             \
    CUSTOMIPP_EXPORT IppStatus symbol(T* pSrcDst, int srcDstStep, IppiSize roiSize, IppiLUT_Spec* pSpec);

/* Histograms: the sizes of specification and work memory, the making, the levels, and the counting. */
#define CUSTOMIPP_HISTOGRAM_SIZE(symbol)                                                                     \
    CUSTOMIPP_EXPORT IppStatus symbol(IppDataType dataType, IppiSize roiSize, const int nLevels[],           \
        int numChannels, int uniform, int* pSpecSize, int* pBufferSize);
#define CUSTOMIPP_HISTOGRAM_INIT(symbol)                                                                     \
    CUSTOMIPP_EXPORT IppStatus symbol(IppDataType dataType, Ipp32f lowerLevel[], Ipp32f upperLevel[],        \
        int nLevels[], int numChannels, IppiHistogramSpec* pSpec);
#define CUSTOMIPP_HISTOGRAM_LEVELS(symbol)                                                                   \
    CUSTOMIPP_EXPORT IppStatus symbol(const IppiHistogramSpec* pSpec, Ipp32f* pLevels[]);
#define CUSTOMIPP_HISTOGRAM(symbol, op, T)                                                                   \
    CUSTOMIPP_EXPORT IppStatus symbol(const T* pSrc, int srcStep, IppiSize roiSize, Ipp32u* pHist,           \
        const IppiHistogramSpec* pSpec, Ipp8u* pBuffer);
/* A template at every place of a source, and the bytes of the work memory that this takes. */
#define CUSTOMIPP_MATCH_SIZE(symbol, op)                                                                     \
    CUSTOMIPP_EXPORT IppStatus symbol(                                                                       \
        IppiSize srcRoiSize, IppiSize tplRoiSize, IppEnum algType, int* pBufferSize);
#define CUSTOMIPP_MATCH(symbol, op, T)                                                                       \
    CUSTOMIPP_EXPORT IppStatus symbol(const T* pSrc, int srcStep, IppiSize srcRoiSize, const T* pTpl,        \
        int tplStep, IppiSize tplRoiSize, Ipp32f* pDst, int dstStep, IppEnum algType, Ipp8u* pBuffer);
