// Mean and standard deviation of the population.
#include "meanStdDev.h"

#include <cmath>

#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "statistics/meanStdDev.cpp"
#include <hwy/foreach_target.h>
#include <hwy/highway.h>

#include "folds-inl.h"
#include "sources-inl.h"

HWY_BEFORE_NAMESPACE();
namespace customipp {
namespace HWY_NAMESPACE {
namespace {

/** How many bytes are not 0. */
struct NonZero : Sum<uint8_t> {
    static constexpr size_t chains = 2;

    HWY_INLINE NonZero() {}
    HWY_INLINE void take(hn::Vec<hn::ScalableTag<uint8_t>> v)
    {
        Sum::take(hn::Min(v, hn::Set(hn::ScalableTag<uint8_t>(), 1)));
    }
};

HWY_INLINE size_t countSelected(const uint8_t* mask, size_t n)
{
    Reduction<PlanesOf<uint8_t, 1>, NonZero> reduction;
    reduction.takeRow(PlanesOf<uint8_t, 1>(mask), n);
    reduction.joinSets();
    return static_cast<size_t>(reduction.folds[0].total());
}

// Of integers: both sums are exact.

template <class Source, bool Masked, class T> MeanStdDev ofIntegers(const Operands<T>& operands)
{
    Reduction<Source, Both<Sum<T>, SumOfSquares<T>>> reduction;
    // With a mask row by row, so that a row of the mask is still near when it is counted.
    const Extent extent = extentOfPixels(operands, Source::channels, !Masked);
    size_t n = Masked ? 0 : extent.lanes * extent.rows;
    for (size_t y = 0; y < extent.rows; ++y) {
        reduction.takeRow(Source(operands, y), extent.lanes);
        if constexpr (Masked)
            n += countSelected(operands.mask.row(y), extent.lanes);
    }
    reduction.joinSets();
    if (n == 0)
        return {};
    __extension__ using Wide = unsigned __int128;
    const uint64_t sum = reduction.folds[0].first.total();
    const Wide scatter = Wide {n} * reduction.folds[0].second.total() - Wide {sum} * sum;
    const auto count = static_cast<double>(n);
    return {static_cast<double>(sum) / count, std::sqrt(static_cast<double>(scatter)) / count};
}

// Of floats: piece by piece, each around one of its own pixels. In a piece of n pixels that one is at most
// sqrt(n) deviations from the mean, so that the squares lose less than log2(n) bits of a double's 53.

/** Sums of the deviations from a value, and of their squares. */
struct Deviations {
    static constexpr size_t chains = 1;
    static constexpr size_t takesBeforeFlush = neverFlush;
    using V = hn::Vec<DDouble>;
    V origin, sums, squares;

    HWY_INLINE Deviations() : sums(hn::Zero(DDouble())), squares(hn::Zero(DDouble())) {}
    HWY_INLINE void take(V v)
    {
        const auto deviation = hn::Sub(v, origin);
        sums = hn::Add(sums, deviation);
        squares = hn::Add(squares, hn::Mul(deviation, deviation));
    }
    HWY_INLINE void flush() {}
    HWY_INLINE void join(const Deviations& other)
    {
        sums = hn::Add(sums, other.sums);
        squares = hn::Add(squares, other.squares);
    }
};

/** Number, sum, mean and sum of the squared deviations from it. The mean counts from a pixel of the image, as
 * means far from zero would not tell how far they are apart. */
struct Moments {
    double n = 0;
    double sum = 0;
    double mean = 0;
    double scatter = 0;

    void join(const Moments& piece)
    {
        const double both = n + piece.n, between = piece.mean - mean;
        scatter += piece.scatter + between * between * (n * piece.n / both);
        mean += between * (piece.n / both);
        sum += piece.sum;
        n = both;
    }
};

template <bool Masked> struct Piece {
    const float* pixels;
    const uint8_t* mask;
    size_t length;

    HWY_INLINE size_t count() const { return Masked ? countSelected(mask, length) : length; }

    /** A pixel that counts; there is one. Not a number, nor infinite, it would hide what it is. */
    HWY_INLINE float origin() const
    {
        const hn::ScalableTag<uint8_t> d;
        size_t i = 0;
        if constexpr (Masked) {
            while (
                length - i > hn::MaxLanes(d) && hn::AllTrue(d, hn::Eq(hn::LoadU(d, mask + i), hn::Zero(d))))
                i += hn::MaxLanes(d);
            while (mask[i] == 0)
                ++i;
        }
        float value;
        std::memcpy(&value, pixels + i, sizeof(float));
        return std::isfinite(value) ? value : 0;
    }

    HWY_INLINE Moments moments(size_t selected, float middle, double zero) const
    {
        using Source = DoublesOf<Masked>;
        Reduction<Source, Deviations> reduction;
        for (size_t i = 0; i < reduction.sets * Source::vectors; ++i)
            reduction.folds[i].origin = hn::Set(DDouble(), double {middle});
        reduction.takeRow(Source(pixels, mask, middle), length);
        reduction.joinVectors();
        const auto n = static_cast<double>(selected);
        const double sum = totalInHalves(DDouble(), reduction.folds[0].sums);
        const double scatter = totalInHalves(DDouble(), reduction.folds[0].squares) - sum * sum / n;
        return {n, n * double {middle} + sum, double {middle} - zero + sum / n, scatter < 0 ? 0 : scatter};
    }
};

template <bool Masked> MeanStdDev ofFloats(const Operands<Ipp32f>& operands)
{
    constexpr size_t longest = 4096;
    const Extent extent = extentOfPixels(operands, 1, false);
    Moments moments;
    double zero = 0;
    for (size_t y = 0; y < extent.rows; ++y)
        for (size_t x = 0; x < extent.lanes; x += longest) {
            const Piece<Masked> piece {operands.pixels.row(y) + x,
                Masked ? operands.mask.row(y) + x : nullptr, std::min(longest, extent.lanes - x)};
            if (const size_t n = piece.count()) {
                const float middle = piece.origin();
                if (moments.n == 0)
                    zero = double {middle};
                moments.join(piece.moments(n, middle, zero));
            }
        }
    if (moments.n == 0)
        return {};
    return {moments.sum / moments.n, std::sqrt(moments.scatter / moments.n)};
}

template <class T> constexpr MeanStdDevRun<T> s_image = ofIntegers<PlanesOf<T, 1>, false, T>;
template <class T> constexpr MeanStdDevRun<T> s_masked = ofIntegers<Selected<T, PlanesOf<T, 1>>, true, T>;
template <int C> constexpr MeanStdDevRun<Ipp8u> s_channel = ofIntegers<ChannelOf<Ipp8u, C>, false, Ipp8u>;
template <int C>
constexpr MeanStdDevRun<Ipp8u> s_maskedChannel
    = ofIntegers<Selected<Ipp8u, ChannelOf<Ipp8u, C>>, true, Ipp8u>;

constexpr MeanStdDevKernels s_kernels {{{s_image<Ipp8u>}, {s_image<Ipp16u>}, {ofFloats<false>}},
    {{s_masked<Ipp8u>}, {s_masked<Ipp16u>}, {ofFloats<true>}}, {s_channel<0>, s_channel<1>, s_channel<2>},
    {s_maskedChannel<0>, s_maskedChannel<1>, s_maskedChannel<2>}};
} // namespace

const MeanStdDevKernels& meanStdDevKernels() { return s_kernels; }
} // namespace HWY_NAMESPACE
} // namespace customipp
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace customipp {
namespace {
HWY_EXPORT(meanStdDevKernels);
const MeanStdDevKernels& kernelsMeanStdDev() { return HWY_DYNAMIC_DISPATCH(meanStdDevKernels)(); }
} // namespace
} // namespace customipp
#include "../entryPoints.h"
#include <customipp/meanStdDev.def>
#endif // HWY_ONCE
