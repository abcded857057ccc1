#include "quantiles.h"

#include "frame/ippImages.h"

#include <algorithm>
#include <customipp/customipp.h>
#include <numeric>
#include <tarnimg/checkIPPStatus.h>

namespace {

/** One form of the histogram. Values are floats, as its levels are. */
struct Histogram {
    IppDataType dataType;
    int levels;
    float low;
    float high;
    IppStatus (*count)(const cImg& i_image, Ipp32u* o_counts, const IppiHistogramSpec* i_spec, Ipp8u* i_work);
};

template <auto Function> struct Count;

template <class T, IppStatus (*Function)(const T*, int, IppiSize, Ipp32u*, const IppiHistogramSpec*, Ipp8u*)>
struct Count<Function> {
    static IppStatus call(
        const cImg& i_image, Ipp32u* o_counts, const IppiHistogramSpec* i_spec, Ipp8u* i_work)
    {
        return Function(frame::pixels<T>(i_image), frame::stepOf(i_image), frame::sizeOf(i_image), o_counts,
            i_spec, i_work);
    }
};

/** Counts the luminance. The grey image is recycled, like every image. */
template <auto ToGray> struct CountLuminance {
    static IppStatus call(
        const cImg& i_image, Ipp32u* o_counts, const IppiHistogramSpec* i_spec, Ipp8u* i_work)
    {
        cImg gray(cImgType::UInt8, i_image.getWidth(), i_image.getHeight());
        const IppStatus status = frame::Unary<ToGray>::call(i_image, gray);
        return status != ippStsNoErr ? status
                                     : Count<ippiHistogram_8u_C1R>::call(gray, o_counts, i_spec, i_work);
    }
};

struct Row {
    cImgType::ImageTypes type;
    Histogram histogram;
};

constexpr Row s_rows[] = {
    {cImgType::UInt8, {ipp8u, 256, 0, 255, Count<ippiHistogram_8u_C1R>::call}},
    {cImgType::UInt16, {ipp16u, 65536, 0, 65535, Count<ippiHistogram_16u_C1R>::call}},
    {cImgType::SInt16, {ipp16s, 65536, -32768, 32767, Count<ippiHistogram_16s_C1R>::call}},
    {cImgType::RGB24, {ipp8u, 256, 0, 255, CountLuminance<ippiRGBToGray_8u_C3C1R>::call}},
    // One level less: bin 0 holds two values, and every other bin k the value k + 1.
    {cImgType::RGB32, {ipp8u, 255, 0, 255, CountLuminance<ippiRGBToGray_8u_AC4C1R>::call}},
};

/** The bins of the cuts, and the first level. */
quantiles::Bins cutImage(
    const cImg& i_image, Histogram i_histogram, double i_quantile, quantiles::Work& io_work, float& o_first)
{
    int specSize = 0, workSize = 0;
    checkIPPStatus(ippiHistogramGetBufferSize(
        i_histogram.dataType, frame::sizeOf(i_image), &i_histogram.levels, 1, 1, &specSize, &workSize));
    QVarLengthArray<unsigned char, 2048> specMemory(specSize);
    auto* spec = reinterpret_cast<IppiHistogramSpec*>(specMemory.data());
    checkIPPStatus(ippiHistogramUniformInit(
        i_histogram.dataType, &i_histogram.low, &i_histogram.high, &i_histogram.levels, 1, spec));
    QVarLengthArray<Ipp32f, 256> levels(i_histogram.levels);
    Ipp32f* list = levels.data();
    checkIPPStatus(ippiHistogramGetLevels(spec, &list));
    o_first = levels[0];

    QVarLengthArray<Ipp32u, 256> counts(i_histogram.levels);
    if (io_work.size() < workSize)
        io_work.resize(workSize);
    checkIPPStatus(i_histogram.count(i_image, counts.data(), spec, io_work.data()));
    return quantiles::cut(counts.constData(), i_histogram.levels - 1, i_quantile);
}

/** The bin at which the running count exceeds a target. */
int walk(const Ipp32u* i_counts, int i_bins, double i_target)
{
    // No count comes beyond 2^33, so what is farther away needs no place of its own, nor does what is no
    // number.
    constexpr double beyond = 0x1p33;
    auto rest = qint64(i_target > -beyond ? std::min(i_target, beyond) : -beyond);
    int bin = 0;
    for (; rest >= 0 && bin < i_bins; ++bin)
        rest -= i_counts[bin];
    return bin - 1;
}

} // namespace

quantiles::Bins quantiles::cut(const Ipp32u* i_counts, int i_bins, double i_quantile)
{
    const Ipp32u total = std::accumulate(i_counts, i_counts + i_bins, Ipp32u(0));
    return {walk(i_counts, i_bins, total * i_quantile), walk(i_counts, i_bins, (1.0 - i_quantile) * total)};
}

bool quantiles::ofIntegers(
    const cImg& i_image, double i_quantile, Work& io_work, double& o_low, double& o_high)
{
    const auto* row = std::find_if(std::begin(s_rows), std::end(s_rows),
        [&](const Row& candidate) { return candidate.type == i_image.getImgType().getTypeId(); });
    if (row == std::end(s_rows))
        return false;
    float first = 0;
    const Bins bins = cutImage(i_image, row->histogram, i_quantile, io_work, first);
    o_low = bins.low + int(first);
    o_high = bins.high + int(first);
    return true;
}

void quantiles::ofFloats(const cImg& i_image, float i_min, float i_max, double i_quantile, Work& io_work,
    double& o_low, double& o_high)
{
    constexpr int levels = 65536;
    float first = 0;
    const Bins bins = cutImage(i_image, {ipp32f, levels, i_min, i_max, Count<ippiHistogram_32f_C1R>::call},
        i_quantile, io_work, first);
    const double width = double(i_max - i_min) * (1.0 / levels);
    o_low = bins.low * width;
    o_high = bins.high * width;
}
