// The norms, over whatever source. Compiled once for every target.

#if defined(CUSTOMIPP_STATISTICS_NORM_INL_H) == defined(HWY_TARGET_TOGGLE)
#ifdef CUSTOMIPP_STATISTICS_NORM_INL_H
#undef CUSTOMIPP_STATISTICS_NORM_INL_H
#else
#define CUSTOMIPP_STATISTICS_NORM_INL_H
#endif

#include "folds-inl.h"
#include "norm.h"
#include "sources-inl.h"

#include <cmath>

HWY_BEFORE_NAMESPACE();
namespace customipp {
namespace HWY_NAMESPACE {
namespace {

struct NormInf {
    template <class T> using Fold = Greatest<T>;
    static constexpr bool takesRoot = false;
};

struct NormL1 {
    template <class T> using Fold = Sum<T>;
    static constexpr bool takesRoot = false;
};

struct NormL2 {
    template <class T> using Fold = SumOfSquares<T>;
    static constexpr bool takesRoot = true;
};

template <class Norm, class Source, class T> void norm(const Operands<T>& operands, double* values)
{
    using Lane = hn::TFromV<std::decay_t<decltype(std::declval<Source>().block(0).v[0])>>;
    constexpr bool areDoubles = hwy::IsFloat<Lane>();
    Reduction<Source, typename Norm::template Fold<Lane>> reduction;
    reduction.takeRows(operands, extentOfPixels(operands, Source::channels, !areDoubles));
    reduction.joinSets();
    if constexpr (areDoubles)
        reduction.joinVectors();
    constexpr size_t results = areDoubles ? 1 : Source::vectors;
    for (size_t i = 0; i < results; ++i) {
        const auto total = static_cast<double>(reduction.folds[i].total());
        const double value = Norm::takesRoot ? std::sqrt(total) : total;
        std::memcpy(values + i, &value, sizeof(double));
    }
}

} // namespace
} // namespace HWY_NAMESPACE
} // namespace customipp
HWY_AFTER_NAMESPACE();

#endif // per-target include guard
