// Histograms.
#include "histogram.h"

#include <limits>

#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "tables/histogram.cpp"
#include <hwy/foreach_target.h>
#include <hwy/highway.h>

#include "../movers/rows-inl.h"

HWY_BEFORE_NAMESPACE();
namespace customipp {
namespace HWY_NAMESPACE {
namespace {

// --- integers: every value is counted, then the values of each bin are summed ---

template <class T> inline constexpr int64_t leastOf = std::numeric_limits<T>::lowest();

/** All pixels by their values, from the least value on. Eight bytes of pixels are read at once. */
template <class T, size_t Sets> HWY_INLINE void countValues(const HistogramCall<T>& call)
{
    constexpr size_t counters = size_t {1} << (8 * sizeof(T));
    constexpr size_t together = 8 / sizeof(T), bits = 8 * sizeof(T);
    constexpr uint64_t mask = (uint64_t {1} << bits) - 1;
    // Turns the values of a signed type into their distance from the least one.
    constexpr uint64_t flip = uint64_t(leastOf<T>) & mask;
    uint32_t* const all = call.counters;
    for (size_t y = 0; y < call.extent.rows; ++y) {
        const T* row = call.pixels.row(y);
        size_t x = 0;
        for (; x + together <= call.extent.lanes; x += together) {
            uint64_t word;
            hwy::CopyBytes<8>(row + x, &word);
            for (size_t i = 0; i < together; ++i)
                ++all[i % Sets * counters + ((word >> (bits * i) & mask) ^ flip)];
        }
        for (; x < call.extent.lanes; ++x) {
            T pixel;
            hwy::CopyBytes<sizeof(T)>(row + x, &pixel);
            ++all[size_t(pixel - leastOf<T>)];
        }
    }
}

/** Where the first value at or above a level is counted. */
template <class T> size_t placeOf(float level)
{
    constexpr float end = float(std::numeric_limits<T>::max()) + 1;
    return size_t(int64_t(std::ceil(std::clamp(level, float(leastOf<T>), end))) - leastOf<T>);
}

/** The counters of all values, from those of some sets of counters. */
template <class T, size_t Sets> void countBySets(const HistogramCall<T>& call)
{
    constexpr size_t counters = size_t {1} << (8 * sizeof(T));
    std::fill_n(call.counters, Sets * counters, 0u);
    countValues<T, Sets>(call);
    for (size_t set = 1; set < Sets; ++set)
        for (size_t i = 0; i < counters; ++i)
            call.counters[i] += call.counters[set * counters + i];
}

/**
 * The counters of all bytes, from those of all pairs of bytes: a processor adds to one counter at a time,
 * which takes two pixels here. Neighbours are often alike, so most counters that are in use share few lines.
 */
void countByPairs(const HistogramCall<uint8_t>& call)
{
    uint32_t *const values = call.counters, *const pairs = values + 256;
    std::fill_n(values, 256 + bytePairs, 0u);
    for (size_t y = 0; y < call.extent.rows; ++y) {
        const uint8_t* row = call.pixels.row(y);
        size_t x = 0;
        for (; x + 8 <= call.extent.lanes; x += 8) {
            uint64_t word;
            hwy::CopyBytes<8>(row + x, &word);
            for (size_t i = 0; i < 4; ++i)
                ++pairs[word >> (16 * i) & 0xFFFF];
        }
        for (; x < call.extent.lanes; ++x)
            ++values[row[x]];
    }
    for (size_t upper = 0; upper < 256; ++upper) {
        const uint32_t* const ofUpper = pairs + 256 * upper;
        uint32_t sum = 0;
        for (size_t lower = 0; lower < 256; ++lower) {
            values[lower] += ofUpper[lower];
            sum += ofUpper[lower];
        }
        values[upper] += sum;
    }
}

/** Sums the counters of the values of each bin. */
template <class T> void sumBins(const HistogramCall<T>& call)
{
    const float* const levels = call.specification.levels();
    size_t from = placeOf<T>(levels[0]);
    for (int bin = 0; bin < call.specification.bins(); ++bin) {
        const size_t to = placeOf<T>(levels[bin + 1]);
        uint32_t sum = 0;
        for (; from < to; ++from)
            sum += call.counters[from];
        call.histogram[bin] = sum;
    }
}

template <class T> void histogramOfIntegers(const HistogramCall<T>& call)
{
    const size_t pixels = call.extent.lanes * call.extent.rows;
    // More counters than pixels are not worth clearing.
    if constexpr (sizeof(T) == 1) {
        if (pixels < 8 * bytePairs)
            countBySets<T, 8>(call);
        else
            countByPairs(call);
    } else if (pixels < 65536) {
        countBySets<T, 1>(call);
    } else {
        countBySets<T, 2>(call);
    }
    sumBins(call);
}

// --- floats ---

/** What is known of the levels: pixels at t = (pixel - low) * scale lie near level t. */
struct Ruler {
    const float* levels;
    int count;
    double low, scale;
    /** No level k lies farther from t = k than this, by the rounding of the level and of t. */
    double tolerance;

    explicit Ruler(const HistogramSpecification& specification)
        : levels(specification.levels()),
          count(specification.count),
          low(levels[0]),
          scale((count - 1) / (double {levels[count - 1]} - low))
    {
        const double greatest = std::max(std::fabs(low), std::fabs(double {levels[count - 1]}));
        tolerance = (greatest * 0x1.0001p-24 + 0x1p-149) * scale + count * 0x1p-50;
    }

    /** The bin of a pixel, or the counter behind the last bin, which nobody reads. */
    int binOf(float pixel) const
    {
        if (!(pixel >= levels[0] && pixel < levels[count - 1]))
            return count - 1;
        return int(std::upper_bound(levels, levels + count, pixel) - levels) - 1;
    }
};

/**
 * The bins of a vector of pixels. Where no pixel is near a level, t tells the bin. Otherwise the nearest
 * level is the only one that needs a look: images of whole numbers often lie on levels, all of their pixels.
 */
template <class D> HWY_INLINE void binsOf(D dd, const float* pixels, const Ruler& ruler, int32_t* bins)
{
    const hn::Rebind<float, D> df;
    const hn::Rebind<int32_t, D> di;
    const auto v = loadAnywhere(df, pixels);
    const auto isInside = hn::And(
        hn::Ge(v, hn::Set(df, ruler.levels[0])), hn::Lt(v, hn::Set(df, ruler.levels[ruler.count - 1])));
    const auto inside = hn::IfThenElse(isInside, v, hn::Inf(df));
    const auto t = hn::Min(
        hn::Mul(hn::Sub(hn::PromoteTo(dd, inside), hn::Set(dd, ruler.low)), hn::Set(dd, ruler.scale)),
        hn::Set(dd, ruler.count - 1.0));
    const auto nearest = hn::Round(t);
    const auto isNear = hn::Le(hn::Abs(hn::Sub(t, nearest)), hn::Set(dd, ruler.tolerance));
    if (hn::AllFalse(dd, isNear)) {
        hn::StoreU(hn::DemoteTo(di, hn::Floor(t)), di, bins);
        return;
    }
    HWY_ALIGN float values[hn::MaxLanes(D())];
    hn::StoreU(inside, df, values);
    hn::StoreU(hn::DemoteTo(di, nearest), di, bins);
    for (size_t i = 0; i < hn::Lanes(dd); ++i)
        bins[i] -= values[i] < ruler.levels[bins[i]];
}

void histogramOfFloats(const HistogramCall<float>& call)
{
    const hn::ScalableTag<double> dd;
    const size_t step = hn::Lanes(dd);
    const Ruler ruler(call.specification);
    const size_t counters = size_t(ruler.count);
    std::fill_n(call.counters, 2 * counters, 0u);
    uint32_t* const sets[2] = {call.counters, call.counters + counters};
    const bool isRegular = ruler.tolerance < 0.25;
    for (size_t y = 0; y < call.extent.rows; ++y) {
        const float* row = call.pixels.row(y);
        size_t x = 0;
        for (; isRegular && x + step <= call.extent.lanes; x += step) {
            HWY_ALIGN int32_t bins[hn::MaxLanes(dd)];
            binsOf(dd, row + x, ruler, bins);
            for (size_t i = 0; i < step; ++i)
                ++sets[i % 2][bins[i]];
        }
        for (; x < call.extent.lanes; ++x) {
            float pixel;
            hwy::CopyBytes<sizeof(pixel)>(row + x, &pixel);
            ++sets[x % 2][ruler.binOf(pixel)];
        }
    }
    for (size_t bin = 0; bin + 1 < counters; ++bin)
        call.histogram[bin] = sets[0][bin] + sets[1][bin];
}

constexpr HistogramKernels s_kernels {
    histogramOfIntegers<Ipp8u>, histogramOfIntegers<Ipp16u>, histogramOfIntegers<Ipp16s>, histogramOfFloats};
} // namespace

const HistogramKernels& histogramKernels() { return s_kernels; }
} // namespace HWY_NAMESPACE
} // namespace customipp
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace customipp {
namespace {
HWY_EXPORT(histogramKernels);
const HistogramKernels& kernelsHistogram() { return HWY_DYNAMIC_DISPATCH(histogramKernels)(); }
} // namespace
} // namespace customipp
#include "../entryPoints.h"
#include <customipp/histogram.def>
#endif // HWY_ONCE
