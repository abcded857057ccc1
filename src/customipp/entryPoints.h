/*
 * The shapes of prototypes.h as definitions. A kernel source includes this last, and then the .def files of its
 * operations; it provides kernels<Op>() for each of them, which picks the kernels of this processor.
 */

#undef CUSTOMIPP_BINARY_SFS
#define CUSTOMIPP_BINARY_SFS(symbol, op, T, channels) \
    IppStatus symbol(const T* pSrc1, int src1Step, const T* pSrc2, int src2Step, T* pDst, int dstStep, \
        IppiSize roiSize, int scaleFactor) \
    { \
        return customipp::runBinary<T>(customipp::kernels##op(), {pSrc1, src1Step}, {pSrc2, src2Step}, \
            {pDst, dstStep}, roiSize, channels, scaleFactor); \
    }

#undef CUSTOMIPP_BINARY_SFS_I
#define CUSTOMIPP_BINARY_SFS_I(symbol, op, T, channels) \
    IppStatus symbol(const T* pSrc, int srcStep, T* pSrcDst, int srcDstStep, IppiSize roiSize, int scaleFactor) \
    { \
        return customipp::runBinary<T>(customipp::kernels##op(), {pSrc, srcStep}, {pSrcDst, srcDstStep}, \
            {pSrcDst, srcDstStep}, roiSize, channels, scaleFactor); \
    }

#undef CUSTOMIPP_BINARY
#define CUSTOMIPP_BINARY(symbol, op, T, channels) \
    IppStatus symbol(const T* pSrc1, int src1Step, const T* pSrc2, int src2Step, T* pDst, int dstStep, \
        IppiSize roiSize) \
    { \
        return customipp::runBinary<T>(customipp::kernels##op(), {pSrc1, src1Step}, {pSrc2, src2Step}, \
            {pDst, dstStep}, roiSize, channels); \
    }

#undef CUSTOMIPP_BINARY_I
#define CUSTOMIPP_BINARY_I(symbol, op, T, channels) \
    IppStatus symbol(const T* pSrc, int srcStep, T* pSrcDst, int srcDstStep, IppiSize roiSize) \
    { \
        return customipp::runBinary<T>(customipp::kernels##op(), {pSrc, srcStep}, {pSrcDst, srcDstStep}, \
            {pSrcDst, srcDstStep}, roiSize, channels); \
    }

#undef CUSTOMIPP_BINARY_STRICT
#define CUSTOMIPP_BINARY_STRICT(symbol, op, T, channels) \
    IppStatus symbol(const T* pSrc1, int src1Step, const T* pSrc2, int src2Step, T* pDst, int dstStep, \
        IppiSize roiSize) \
    { \
        return customipp::runBinaryStrict<T>(customipp::kernels##op(), {pSrc1, src1Step}, {pSrc2, src2Step}, \
            {pDst, dstStep}, roiSize, channels); \
    }

#undef CUSTOMIPP_CONSTANT_SFS
#define CUSTOMIPP_CONSTANT_SFS(symbol, op, T) \
    IppStatus symbol( \
        const T* pSrc, int srcStep, T value, T* pDst, int dstStep, IppiSize roiSize, int scaleFactor) \
    { \
        return customipp::runConstants<T>(customipp::kernels##op(), {pSrc, srcStep}, {&value, 1}, \
            {pDst, dstStep}, roiSize, scaleFactor); \
    }

#undef CUSTOMIPP_CONSTANT_SFS_I
#define CUSTOMIPP_CONSTANT_SFS_I(symbol, op, T) \
    IppStatus symbol(T value, T* pSrcDst, int srcDstStep, IppiSize roiSize, int scaleFactor) \
    { \
        return customipp::runConstants<T>(customipp::kernels##op(), {pSrcDst, srcDstStep}, {&value, 1}, \
            {pSrcDst, srcDstStep}, roiSize, scaleFactor); \
    }

#undef CUSTOMIPP_CONSTANT
#define CUSTOMIPP_CONSTANT(symbol, op, T) \
    IppStatus symbol(const T* pSrc, int srcStep, T value, T* pDst, int dstStep, IppiSize roiSize) \
    { \
        return customipp::runConstants<T>(customipp::kernels##op(), {pSrc, srcStep}, {&value, 1}, \
            {pDst, dstStep}, roiSize); \
    }

#undef CUSTOMIPP_CONSTANT_I
#define CUSTOMIPP_CONSTANT_I(symbol, op, T) \
    IppStatus symbol(T value, T* pSrcDst, int srcDstStep, IppiSize roiSize) \
    { \
        return customipp::runConstants<T>(customipp::kernels##op(), {pSrcDst, srcDstStep}, {&value, 1}, \
            {pSrcDst, srcDstStep}, roiSize); \
    }

#undef CUSTOMIPP_CONSTANTS_SFS
#define CUSTOMIPP_CONSTANTS_SFS(symbol, op, T, channels) \
    IppStatus symbol(const T* pSrc, int srcStep, const T value[channels], T* pDst, int dstStep, \
        IppiSize roiSize, int scaleFactor) \
    { \
        return customipp::runConstants<T>(customipp::kernels##op(), {pSrc, srcStep}, {value, channels}, \
            {pDst, dstStep}, roiSize, scaleFactor); \
    }

#undef CUSTOMIPP_CONSTANTS_SFS_I
#define CUSTOMIPP_CONSTANTS_SFS_I(symbol, op, T, channels) \
    IppStatus symbol( \
        const T value[channels], T* pSrcDst, int srcDstStep, IppiSize roiSize, int scaleFactor) \
    { \
        return customipp::runConstants<T>(customipp::kernels##op(), {pSrcDst, srcDstStep}, {value, channels}, \
            {pSrcDst, srcDstStep}, roiSize, scaleFactor); \
    }

#undef CUSTOMIPP_CONSTANTS_AC4_SFS_I
#define CUSTOMIPP_CONSTANTS_AC4_SFS_I(symbol, op, T) \
    IppStatus symbol(const T value[3], T* pSrcDst, int srcDstStep, IppiSize roiSize, int scaleFactor) \
    { \
        return customipp::runConstantsKeepingAlpha<T>(customipp::kernels##op(), {pSrcDst, srcDstStep}, value, \
            roiSize, scaleFactor); \
    }

#undef CUSTOMIPP_UNARY
#define CUSTOMIPP_UNARY(symbol, op, T, channels) \
    IppStatus symbol(const T* pSrc, int srcStep, T* pDst, int dstStep, IppiSize roiSize) \
    { \
        return customipp::runUnary<T>( \
            customipp::kernels##op(), {pSrc, srcStep}, {pDst, dstStep}, roiSize, channels); \
    }

#undef CUSTOMIPP_UNARY_I
#define CUSTOMIPP_UNARY_I(symbol, op, T, channels) \
    IppStatus symbol(T* pSrcDst, int srcDstStep, IppiSize roiSize) \
    { \
        return customipp::runUnary<T>( \
            customipp::kernels##op(), {pSrcDst, srcDstStep}, {pSrcDst, srcDstStep}, roiSize, channels); \
    }

#undef CUSTOMIPP_ACCUMULATE_BINARY
#define CUSTOMIPP_ACCUMULATE_BINARY(symbol, op, T) \
    IppStatus symbol(const T* pSrc1, int src1Step, const T* pSrc2, int src2Step, Ipp32f* pSrcDst, \
        int srcDstStep, IppiSize roiSize) \
    { \
        return customipp::runAccumulate<T>(customipp::kernels##op(), {pSrc1, src1Step}, {pSrc2, src2Step}, \
            {pSrcDst, srcDstStep}, roiSize); \
    }

#undef CUSTOMIPP_ACCUMULATE_UNARY
#define CUSTOMIPP_ACCUMULATE_UNARY(symbol, op, T) \
    IppStatus symbol(const T* pSrc, int srcStep, Ipp32f* pSrcDst, int srcDstStep, IppiSize roiSize) \
    { \
        return customipp::runAccumulate<T>(customipp::kernels##op(), {pSrc, srcStep}, {pSrc, srcStep}, \
            {pSrcDst, srcDstStep}, roiSize); \
    }
