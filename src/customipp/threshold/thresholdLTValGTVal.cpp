// Pixels below one threshold and above another replaced by values.
#include "thresholdLTValGTVal.h"

#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "threshold/thresholdLTValGTVal.cpp"
#include <hwy/foreach_target.h>
#include <hwy/highway.h>

#include "../movers/rows-inl.h"

HWY_BEFORE_NAMESPACE();
namespace customipp {
namespace HWY_NAMESPACE {
namespace {

/** One number for each channel, repeated over a vector that begins with any of the channels. */
template <class T, int Channels> struct Repeated {
    T lanes[HWY_MAX_BYTES / sizeof(T) + Channels];

    explicit Repeated(const T* values)
    {
        constexpr int used = Channels == 4 ? 3 : Channels;
        for (size_t i = 0; i < sizeof(lanes) / sizeof(T); ++i)
            lanes[i] = i % Channels < used ? values[i % Channels] : T(0);
    }
    template <class D> HWY_INLINE hn::Vec<D> at(D d, size_t lane) const
    {
        return loadAnywhere(d, lanes + lane % Channels);
    }
};

template <class T, int Channels> struct Replace {
    Repeated<T, Channels> thresholdLT, valueLT, thresholdGT, valueGT;

    explicit Replace(const TwoLevels<T>& levels)
        : thresholdLT(levels.thresholdLT),
          valueLT(levels.valueLT),
          thresholdGT(levels.thresholdGT),
          valueGT(levels.valueGT)
    {
    }

    /** The result for the vector v that begins at a lane of the row. Comparisons with NaN are false, so it
     * stays. */
    template <class D> HWY_INLINE hn::Vec<D> operator()(D d, hn::Vec<D> v, size_t lane) const
    {
        const auto below = hn::Lt(v, thresholdLT.at(d, lane)), above = hn::Gt(v, thresholdGT.at(d, lane));
        return hn::IfThenElse(below, valueLT.at(d, lane), hn::IfThenElse(above, valueGT.at(d, lane), v));
    }
};

/** Integers whose values are the thresholds. */
template <class T, int Channels> struct Clamp {
    Repeated<T, Channels> least, greatest;

    explicit Clamp(const TwoLevels<T>& levels) : least(levels.thresholdLT), greatest(levels.thresholdGT) {}
    template <class D> HWY_INLINE hn::Vec<D> operator()(D d, hn::Vec<D> v, size_t lane) const
    {
        return hn::Min(hn::Max(v, least.at(d, lane)), greatest.at(d, lane));
    }
};

/** Puts a vector into the row, around the fourth channel that stays. */
template <int Channels, class D> HWY_INLINE void store(D d, hn::Vec<D> v, hn::TFromD<D>* to)
{
    if constexpr (Channels == 4) {
        const auto alpha = hn::BitCast(d, hn::Set(hn::Repartition<uint32_t, D>(), 0xFF000000u));
        v = hn::IfVecThenElse(alpha, hn::LoadU(d, to), v);
    }
    storeAnywhere(v, d, to);
}

/**
 * The source may be the destination, so the last vector, which overlaps its neighbour, is computed before any
 * pixel has changed, and stored last.
 */
template <int Channels, class D, class T, class Op>
HWY_INLINE void thresholdRow(D d, const T* src, T* dst, size_t n, const Op& op)
{
    const size_t step = hn::Lanes(d);
    if (n >= step) {
        const auto last = op(d, loadAnywhere(d, src + n - step), n - step);
        size_t x = 0;
        // After three vectors the channels begin anew, so nothing of this depends on x.
        for (; x + 3 * step <= n; x += 3 * step) {
            const auto a = op(d, loadAnywhere(d, src + x), 0),
                       b = op(d, loadAnywhere(d, src + x + step), step);
            const auto c = op(d, loadAnywhere(d, src + x + 2 * step), 2 * step);
            store<Channels>(d, a, dst + x);
            store<Channels>(d, b, dst + x + step);
            store<Channels>(d, c, dst + x + 2 * step);
        }
        for (; x + step <= n; x += step)
            store<Channels>(d, op(d, loadAnywhere(d, src + x), x), dst + x);
        store<Channels>(d, last, dst + n - step);
    } else if constexpr (hn::MaxLanes(d) > (Channels == 4 ? 4 : 1)) {
        thresholdRow<Channels>(hn::Half<D>(), src, dst, n, op);
    }
}

template <int Channels, class T, class Op> void thresholdRows(const TwoLevelsMove<T>& move, const Op& op)
{
    for (size_t y = 0; y < move.area.height; ++y)
        thresholdRow<Channels>(hn::ScalableTag<T>(), move.src.row(y), move.dst.row(y), move.area.width, op);
}

template <class T, int Channels> void threshold(const TwoLevelsMove<T>& move)
{
    // Not for float: the least of two numbers treats NaN and the sign of 0 differently from processor to
    // processor.
    if (!hwy::IsFloat<T>() && move.levels.isClamp(Channels == 1 ? 1 : 3))
        thresholdRows<Channels>(move, Clamp<T, Channels>(move.levels));
    else
        thresholdRows<Channels>(move, Replace<T, Channels>(move.levels));
}

constexpr ThresholdLTValGTValKernels s_kernels {threshold<uint8_t, 1>, threshold<uint16_t, 1>,
    threshold<int16_t, 1>, threshold<float, 1>, threshold<uint8_t, 3>, threshold<uint8_t, 4>};
} // namespace

const ThresholdLTValGTValKernels& thresholdLTValGTValKernels() { return s_kernels; }
} // namespace HWY_NAMESPACE
} // namespace customipp
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace customipp {
namespace {
HWY_EXPORT(thresholdLTValGTValKernels);
const ThresholdLTValGTValKernels& kernelsThresholdLTValGTVal()
{
    return HWY_DYNAMIC_DISPATCH(thresholdLTValGTValKernels)();
}
} // namespace
} // namespace customipp
#include "../entryPoints.h"
#include <customipp/thresholdLTValGTVal.def>
#endif // HWY_ONCE
