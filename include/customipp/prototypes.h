/*
 * One macro for each shape of signature, defined here as the prototype of a function. The rows of the .def files name
 * symbol, operation, pixel type and channels in full. src/customipp/entryPoints.h defines the same macros as the
 * functions, the tests as their cases.
 *
 * Images are a pointer to the first pixel and the distance of the rows in bytes. An I shape works in place.
 */
#pragma once

/* Two images to one, the exact result times 2^-scaleFactor, rounded to nearest (ties to even) and saturated. */
#define CUSTOMIPP_BINARY_SFS(symbol, op, T, channels) \
    CUSTOMIPP_EXPORT IppStatus symbol(const T* pSrc1, int src1Step, const T* pSrc2, int src2Step, T* pDst, \
        int dstStep, IppiSize roiSize, int scaleFactor);
#define CUSTOMIPP_BINARY_SFS_I(symbol, op, T, channels) \
    CUSTOMIPP_EXPORT IppStatus symbol( \
        const T* pSrc, int srcStep, T* pSrcDst, int srcDstStep, IppiSize roiSize, int scaleFactor);

/* Two images to one. */
#define CUSTOMIPP_BINARY(symbol, op, T, channels) \
    CUSTOMIPP_EXPORT IppStatus symbol(const T* pSrc1, int src1Step, const T* pSrc2, int src2Step, T* pDst, \
        int dstStep, IppiSize roiSize);
#define CUSTOMIPP_BINARY_I(symbol, op, T, channels) \
    CUSTOMIPP_EXPORT IppStatus symbol( \
        const T* pSrc, int srcStep, T* pSrcDst, int srcDstStep, IppiSize roiSize);
/* Two images to one; the steps must hold a row and be multiples of the element size. */
#define CUSTOMIPP_BINARY_STRICT(symbol, op, T, channels) CUSTOMIPP_BINARY(symbol, op, T, channels)

/* An image and one constant. */
#define CUSTOMIPP_CONSTANT_SFS(symbol, op, T) \
    CUSTOMIPP_EXPORT IppStatus symbol(const T* pSrc, int srcStep, T value, T* pDst, int dstStep, \
        IppiSize roiSize, int scaleFactor);
#define CUSTOMIPP_CONSTANT_SFS_I(symbol, op, T) \
    CUSTOMIPP_EXPORT IppStatus symbol( \
        T value, T* pSrcDst, int srcDstStep, IppiSize roiSize, int scaleFactor);
#define CUSTOMIPP_CONSTANT(symbol, op, T) \
    CUSTOMIPP_EXPORT IppStatus symbol( \
        const T* pSrc, int srcStep, T value, T* pDst, int dstStep, IppiSize roiSize);
#define CUSTOMIPP_CONSTANT_I(symbol, op, T) \
    CUSTOMIPP_EXPORT IppStatus symbol(T value, T* pSrcDst, int srcDstStep, IppiSize roiSize);

/* An image and one constant for each channel. */
#define CUSTOMIPP_CONSTANTS_SFS(symbol, op, T, channels) \
    CUSTOMIPP_EXPORT IppStatus symbol(const T* pSrc, int srcStep, const T value[channels], T* pDst, \
        int dstStep, IppiSize roiSize, int scaleFactor);
#define CUSTOMIPP_CONSTANTS_SFS_I(symbol, op, T, channels) \
    CUSTOMIPP_EXPORT IppStatus symbol( \
        const T value[channels], T* pSrcDst, int srcDstStep, IppiSize roiSize, int scaleFactor);
/* Four channels, of which the last keeps what it holds. */
#define CUSTOMIPP_CONSTANTS_AC4_SFS_I(symbol, op, T) \
    CUSTOMIPP_EXPORT IppStatus symbol( \
        const T value[3], T* pSrcDst, int srcDstStep, IppiSize roiSize, int scaleFactor);

/* One image to one of the same type. */
#define CUSTOMIPP_UNARY(symbol, op, T, channels) \
    CUSTOMIPP_EXPORT IppStatus symbol(const T* pSrc, int srcStep, T* pDst, int dstStep, IppiSize roiSize);
#define CUSTOMIPP_UNARY_I(symbol, op, T, channels) \
    CUSTOMIPP_EXPORT IppStatus symbol(T* pSrcDst, int srcDstStep, IppiSize roiSize);

/* Two images, or one, into an accumulator of floats. */
#define CUSTOMIPP_ACCUMULATE_BINARY(symbol, op, T) \
    CUSTOMIPP_EXPORT IppStatus symbol(const T* pSrc1, int src1Step, const T* pSrc2, int src2Step, \
        Ipp32f* pSrcDst, int srcDstStep, IppiSize roiSize);
#define CUSTOMIPP_ACCUMULATE_UNARY(symbol, op, T) \
    CUSTOMIPP_EXPORT IppStatus symbol( \
        const T* pSrc, int srcStep, Ipp32f* pSrcDst, int srcDstStep, IppiSize roiSize);
