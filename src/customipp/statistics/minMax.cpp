// The least and the greatest pixel of images, and element of sequences.
#include "minMax.h"

#include <limits>

#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "statistics/minMax.cpp"
#include <hwy/foreach_target.h>
#include <hwy/highway.h>

#include "reduce-inl.h"

HWY_BEFORE_NAMESPACE();
namespace customipp {
namespace HWY_NAMESPACE {
namespace {

/** The least and the greatest so far, lane by lane. A NaN replaces neither. */
template <class T> struct Extremes {
    static constexpr size_t chains = 4;
    static constexpr size_t takesBeforeFlush = neverFlush;
    using D = hn::ScalableTag<T>;
    using V = hn::Vec<D>;
    using Limits = std::numeric_limits<T>;
    V least;
    V greatest;

    HWY_INLINE Extremes()
        : least(hn::Set(D(), Limits::has_infinity ? Limits::infinity() : Limits::max())),
          greatest(hn::Set(D(), Limits::has_infinity ? -Limits::infinity() : Limits::lowest()))
    {
    }
    HWY_INLINE void take(V v) { take(v, v); }
    HWY_INLINE void flush() {}
    HWY_INLINE void join(const Extremes& other) { take(other.least, other.greatest); }

private:
    HWY_INLINE void take(V low, V high)
    {
        least = lesserOf(low, least);
        greatest = greaterOf(high, greatest);
    }
};

/**
 * Lanes as they lie in memory, with the same channel at the same place of every block: for folds that keep
 * their lanes apart. The unit is the lane.
 */
template <class T, int Channels> struct LanesOf {
    using D = hn::ScalableTag<T>;
    static constexpr size_t vectors = Channels == 3 ? 3 : 1;
    static constexpr size_t step = vectors * hn::MaxLanes(D());
    using Memory = T[step];
    const T* row;

    HWY_INLINE explicit LanesOf(const T* from) : row(from) {}
    HWY_INLINE LanesOf(const Operands<T>& operands, size_t y) : row(operands.pixels.row(y)) {}

    HWY_INLINE Block<hn::Vec<D>, vectors> block(size_t x) const
    {
        Block<hn::Vec<D>, vectors> result;
        result.v[0] = hn::LoadU(D(), row + x);
        if constexpr (vectors == 3) {
            result.v[1] = hn::LoadU(D(), row + x + hn::MaxLanes(D()));
            result.v[2] = hn::LoadU(D(), row + x + 2 * hn::MaxLanes(D()));
        }
        return result;
    }
    /** Repeats pixels of the row, as a pixel may count twice. */
    HWY_INLINE LanesOf rest(size_t x, size_t n, Memory& memory) const
    {
        if (n >= step)
            return LanesOf(row + n - step);
        for (size_t filled = 0; filled < step; filled += n - x)
            std::memcpy(memory + filled, row + x, std::min(n - x, step - filled) * sizeof(T));
        return LanesOf(memory);
    }
};

/** Vector number I of the block: its lanes go to their channels. */
template <int Channels, size_t I, class T>
HWY_INLINE void intoChannels(const Extremes<T>& fold, MinMaxResult<T> result)
{
    const hn::ScalableTag<T> d;
    constexpr size_t lanes = hn::MaxLanes(hn::ScalableTag<T>());
    alignas(64) T least[lanes], greatest[lanes];
    hn::Store(fold.least, d, least);
    hn::Store(fold.greatest, d, greatest);
    for (size_t i = 0; i < lanes; ++i) {
        const size_t channel = (I * lanes + i) % Channels;
        const bool first = I == 0 && i < Channels;
        result.least[channel] = first ? least[i] : std::min(result.least[channel], least[i]);
        result.greatest[channel] = first ? greatest[i] : std::max(result.greatest[channel], greatest[i]);
    }
}

template <class T, int Channels> void minMax(const Operands<T>& operands, MinMaxResult<T> result)
{
    Reduction<LanesOf<T, Channels>, Extremes<T>> reduction;
    const Extent pixels = extentOfPixels(operands, Channels, true);
    reduction.takeRows(operands, {pixels.lanes * Channels, pixels.rows});
    reduction.joinSets();
    T least[Channels], greatest[Channels];
    intoChannels<Channels, 0, T>(reduction.folds[0], {least, greatest});
    if constexpr (Channels == 3) {
        intoChannels<Channels, 1, T>(reduction.folds[1], {least, greatest});
        intoChannels<Channels, 2, T>(reduction.folds[2], {least, greatest});
    }
    for (int c = 0; c < Channels; ++c) {
        if constexpr (hwy::IsFloat<T>()) {
            if (least[c] > greatest[c]) // nothing but NaN
                least[c] = greatest[c] = std::numeric_limits<T>::quiet_NaN();
            // Of two zeros the sign would depend on the vectors.
            least[c] += T(0);
            greatest[c] += T(0);
        }
        std::memcpy(result.least + c, least + c, sizeof(T));
        std::memcpy(result.greatest + c, greatest + c, sizeof(T));
    }
}

constexpr MinMaxKernels s_kernels {{minMax<Ipp8u, 1>}, {minMax<Ipp8u, 3>}, {minMax<Ipp8u, 4>},
    {minMax<Ipp16u, 1>}, {minMax<Ipp16s, 1>}, {minMax<Ipp32f, 1>}, {minMax<Ipp32u, 1>}, {minMax<Ipp32s, 1>},
    {minMax<Ipp64f, 1>}};
} // namespace

const MinMaxKernels& minMaxKernels() { return s_kernels; }
} // namespace HWY_NAMESPACE
} // namespace customipp
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace customipp {
namespace {
HWY_EXPORT(minMaxKernels);
const MinMaxKernels& kernelsMinMax() { return HWY_DYNAMIC_DISPATCH(minMaxKernels)(); }
} // namespace
} // namespace customipp
#include "../entryPoints.h"
#include <customipp/minMax.def>
#endif // HWY_ONCE
