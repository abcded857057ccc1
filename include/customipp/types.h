#pragma once

/* Types, status codes and enumerations of the pixel layer, for C and C++. */

#include <stdint.h>

#if defined(_WIN32)
#if defined(customipp_EXPORTS)
#define CUSTOMIPP_EXPORT __declspec(dllexport)
#else
#define CUSTOMIPP_EXPORT __declspec(dllimport)
#endif
#else
#define CUSTOMIPP_EXPORT __attribute__((visibility("default")))
#endif

/* An enumeration holds every int, so that a function can refuse a number it does not know. */
#ifdef __cplusplus
#define CUSTOMIPP_INT_ENUM : int
#else
#define CUSTOMIPP_INT_ENUM
#endif

typedef unsigned char Ipp8u;
typedef signed char Ipp8s;
typedef unsigned short Ipp16u;
typedef short Ipp16s;
typedef unsigned int Ipp32u;
typedef int Ipp32s;
typedef uint64_t Ipp64u;
typedef int64_t Ipp64s;
typedef float Ipp32f;
typedef double Ipp64f;

/** A complex number. */
typedef struct Ipp32fc {
    Ipp32f re, im;
} Ipp32fc;

/** Width and height in pixels. */
typedef struct IppiSize {
    int width, height;
} IppiSize;

typedef struct IppiPoint {
    int x, y;
} IppiPoint;

typedef struct IppiRect {
    int x, y, width, height;
} IppiRect;

/** A line by its distance from the origin and the angle of its normal in radians. */
typedef struct IppPointPolar {
    Ipp32f rho, theta;
} IppPointPolar;

/** An or-ed set of flags: ippAlg..., ippiNorm... and ippiROI.... */
typedef int IppEnum;

#define IPP_MAX_8U 255
#define IPP_MAX_16U 65535
#define IPP_MIN_16S (-32768)
#define IPP_MAX_16S 32767
#define IPP_MIN_32S (-2147483647 - 1)
#define IPP_MAX_32S 2147483647
/** The smallest normal float. */
#define IPP_MINABS_32F 1.175494351e-38f

enum IppStatus CUSTOMIPP_INT_ENUM {
#define CUSTOMIPP_STATUS(value, name, text) name = value,
#include <customipp/status.def>
#undef CUSTOMIPP_STATUS
};
typedef enum IppStatus IppStatus;

enum IppDataType CUSTOMIPP_INT_ENUM {
    ippUndef = -1,
    ipp1u = 0,
    ipp8u = 1,
    ipp8uc = 2,
    ipp8s = 3,
    ipp8sc = 4,
    ipp16u = 5,
    ipp16uc = 6,
    ipp16s = 7,
    ipp16sc = 8,
    ipp32u = 9,
    ipp32uc = 10,
    ipp32s = 11,
    ipp32sc = 12,
    ipp32f = 13,
    ipp32fc = 14,
    ipp64u = 15,
    ipp64uc = 16,
    ipp64s = 17,
    ipp64sc = 18,
    ipp64f = 19,
    ipp64fc = 20
};
typedef enum IppDataType IppDataType;

/** What lies outside an image; a combination of the InMem flags says on which sides pixels lie in memory. */
enum IppiBorderType CUSTOMIPP_INT_ENUM {
    ippBorderConst = 0,
    ippBorderRepl = 1,
    ippBorderWrap = 2,
    ippBorderMirror = 3, /* the edge pixel is not repeated: 2 1 [0 1 2 */
    ippBorderMirrorR = 4, /* the edge pixel is repeated: 1 0 [0 1 2 */
    ippBorderDefault = 5,
    ippBorderTransp = 7,
    ippBorderInMemTop = 16,
    ippBorderInMemBottom = 32,
    ippBorderInMemLeft = 64,
    ippBorderInMemRight = 128,
    ippBorderInMem = 240
};
typedef enum IppiBorderType IppiBorderType;

enum IppiMaskSize CUSTOMIPP_INT_ENUM {
    ippMskSize1x3 = 13,
    ippMskSize1x5 = 15,
    ippMskSize3x1 = 31,
    ippMskSize3x3 = 33,
    ippMskSize5x1 = 51,
    ippMskSize5x5 = 55
};
typedef enum IppiMaskSize IppiMaskSize;

enum IppCmpOp CUSTOMIPP_INT_ENUM {
    ippCmpLess = 0,
    ippCmpLessEq = 1,
    ippCmpEq = 2,
    ippCmpGreaterEq = 3,
    ippCmpGreater = 4
};
typedef enum IppCmpOp IppCmpOp;

enum IppRoundMode CUSTOMIPP_INT_ENUM {
    ippRndZero = 0, /* toward zero */
    ippRndNear = 1, /* to nearest, ties to even */
    ippRndFinancial = 2, /* to nearest, ties away from zero */
    ippRndHintAccurate = 16
};
typedef enum IppRoundMode IppRoundMode;

/** Ignored, whatever its value: there is one way to compute, the accurate one. */
enum IppHintAlgorithm CUSTOMIPP_INT_ENUM { ippAlgHintNone = 0, ippAlgHintFast = 1, ippAlgHintAccurate = 2 };
typedef enum IppHintAlgorithm IppHintAlgorithm;

enum IppiAxis CUSTOMIPP_INT_ENUM {
    ippAxsHorizontal = 0,
    ippAxsVertical = 1,
    ippAxsBoth = 2,
    ippAxs45 = 3,
    ippAxs135 = 4
};
typedef enum IppiAxis IppiAxis;

enum IppiNorm CUSTOMIPP_INT_ENUM { ippiNormInf = 0, ippiNormL1 = 1, ippiNormL2 = 2, ippiNormFM = 3 };
typedef enum IppiNorm IppiNorm;

enum IppNormType CUSTOMIPP_INT_ENUM { ippNormInf = 1, ippNormL1 = 2, ippNormL2 = 4 };
typedef enum IppNormType IppNormType;

enum IppiInterpolationType CUSTOMIPP_INT_ENUM {
    ippHahn = 0,
    ippNearest = 1,
    ippLinear = 2,
    ippCubic = 6,
    ippSuper = 8,
    ippLanczos = 16
};
typedef enum IppiInterpolationType IppiInterpolationType;

/* Interpolation of remap; the smooth edge is or-ed on. */
enum CUSTOMIPP_INT_ENUM {
    IPPI_INTER_NN = 1,
    IPPI_INTER_LINEAR = 2,
    IPPI_INTER_CUBIC = 4,
    IPPI_INTER_CUBIC2P_BSPLINE = 5,
    IPPI_INTER_CUBIC2P_CATMULLROM = 6,
    IPPI_INTER_CUBIC2P_B05C03 = 7,
    IPPI_INTER_SUPER = 8,
    IPPI_INTER_LANCZOS = 16,
    IPPI_SMOOTH_EDGE = -2147483647 - 1 /* bit 31 */
};

enum IppiWarpDirection CUSTOMIPP_INT_ENUM { ippWarpForward = 0, ippWarpBackward = 1 };
typedef enum IppiWarpDirection IppiWarpDirection;

/* Which direction of a Fourier transform divides, and by what. */
enum CUSTOMIPP_INT_ENUM {
    IPP_FFT_DIV_FWD_BY_N = 1,
    IPP_FFT_DIV_INV_BY_N = 2,
    IPP_FFT_DIV_BY_SQRTN = 4,
    IPP_FFT_NODIV_BY_ANY = 8
};

enum IppiDifferentialKernel CUSTOMIPP_INT_ENUM {
    ippFilterSobelVert = 0,
    ippFilterSobelHoriz = 1,
    ippFilterSobel = 2,
    ippFilterScharrVert = 3,
    ippFilterScharrHoriz = 4,
    ippFilterScharr = 5,
    ippFilterCentralDiffVert = 6,
    ippFilterCentralDiffHoriz = 7,
    ippFilterCentralDiff = 8
};
typedef enum IppiDifferentialKernel IppiDifferentialKernel;

/** The colours of the first two pixels of the first two rows of a sensor. */
enum IppiBayerGrid CUSTOMIPP_INT_ENUM {
    ippiBayerBGGR = 0,
    ippiBayerRGGB = 1,
    ippiBayerGBRG = 2,
    ippiBayerGRBG = 3
};
typedef enum IppiBayerGrid IppiBayerGrid;

/* Parts of the algorithm type of correlation and distance; one of each group is or-ed. */
enum CUSTOMIPP_INT_ENUM {
    ippAlgAuto = 0,
    ippAlgDirect = 1,
    ippAlgFFT = 2,
    ippAlgMask = 0xFF,
    ippiNormNone = 0,
    ippiNorm = 0x100,
    ippiNormCoefficient = 0x200,
    ippiNormMask = 0xFF00,
    ippiROIFull = 0,
    ippiROIValid = 0x10000,
    ippiROISame = 0x20000,
    ippiROIMask = 0xFF0000
};

enum CUSTOMIPP_INT_ENUM {
    IPP_SEGMENT_QUEUE = 1,
    IPP_SEGMENT_DISTANCE = 2,
    IPP_SEGMENT_BORDER_4 = 64,
    IPP_SEGMENT_BORDER_8 = 128
};

enum CUSTOMIPP_INT_ENUM {
    IPP_FASTN_ORIENTATION = 1,
    IPP_FASTN_NMS = 2,
    IPP_FASTN_CIRCLE = 4,
    IPP_FASTN_SCORE_MODE0 = 32
};

enum CUSTOMIPP_INT_ENUM { IPP_INPAINT_TELEA = 0, IPP_INPAINT_NS = 1 };

enum IppiDitherType CUSTOMIPP_INT_ENUM {
    ippDitherNone = 0,
    ippDitherFS = 1,
    ippDitherJJN = 2,
    ippDitherStucki = 3,
    ippDitherBayer = 4
};
typedef enum IppiDitherType IppiDitherType;

enum IppChannels CUSTOMIPP_INT_ENUM {
    ippC0 = 0,
    ippC1 = 1,
    ippC2 = 2,
    ippC3 = 3,
    ippC4 = 4,
    ippP2 = 5,
    ippP3 = 6,
    ippP4 = 7,
    ippAC1 = 8,
    ippAC4 = 9,
    ippA0C4 = 10,
    ippAP4 = 11
};
typedef enum IppChannels IppChannels;

/* What an Init function prepares in memory of the size that its query gives. */
typedef struct IppiHistogramSpec IppiHistogramSpec;
typedef struct IppiLUT_Spec IppiLUT_Spec;
