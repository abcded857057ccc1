#pragma once

#include <QVarLengthArray>
#include <customipp/types.h>

class cImg;

/** The range that is left when a fraction of the darkest and of the brightest pixels is cut off. */
namespace quantiles {

/** Memory for counters, kept from call to call. */
using Work = QVarLengthArray<unsigned char, 256>;

/** The bins in which the cuts lie. */
struct Bins {
    int low;
    int high;
};

/**
 * The low end is the first bin up to which more than the fraction i_quantile of all pixels lie, the high end
 * likewise with 1 - i_quantile. So above one half low is the greater one. A quantile of 1 or more gives the
 * last bin as the low end, and one that is so far above 1 that a whole pixel is missing at the other end, -1
 * as the high end.
 */
Bins cut(const Ipp32u* i_counts, int i_bins, double i_quantile);

/**
 * The cuts of an image in pixel values. Images of UInt8, UInt16 and SInt16 are taken by their first bytes of
 * each row, as many elements as the image is wide; of RGB24 and RGB32 the luminance counts.
 *
 * @return false, with no effect, for types that have no histogram
 */
bool ofIntegers(const cImg& i_image, double i_quantile, Work& io_work, double& o_low, double& o_high);

/**
 * The cuts of a Float32 image with one channel whose least and greatest pixel are given: finite ones, with a
 * finite distance. They are measured from the least pixel: an image from 100 to 200 has its median near 50.
 */
void ofFloats(const cImg& i_image, float i_min, float i_max, double i_quantile, Work& io_work, double& o_low,
    double& o_high);

} // namespace quantiles
