// Three channels by a matrix of three rows and four columns.
#include "colorTwist.h"

#include <algorithm>
#include <cmath>

#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "colour/colorTwist.cpp"
#include <hwy/foreach_target.h>
#include <hwy/highway.h>

#include "quarters-inl.h"

HWY_BEFORE_NAMESPACE();
namespace customipp {
namespace HWY_NAMESPACE {
namespace {

/** Added to a float of less than 22 bits this leaves it in the low bits, rounded to nearest with ties to
 * even, in two's complement. */
constexpr float integerWithSignInFloat = 12582912.0f; // 1.5 * 2^23

/** What is known of a matrix. */
enum class Matrix {
    Any,
    Bounded, ///< 16 bits hold each sum
    Linear ///< and there is no fourth column: nothing is added, as adding 0 changes no byte
};

Matrix kindOf(const Ipp32f (*twist)[4])
{
    constexpr double bound = 32000; // there is room for what the sums are rounded by
    bool isShifted = false;
    for (int i = 0; i < 3; ++i) {
        const double factors = std::fabs(double {twist[i][0]}) + std::fabs(double {twist[i][1]})
            + std::fabs(double {twist[i][2]});
        if (!(255 * factors + std::fabs(double {twist[i][3]}) < bound)) // NaN is not less
            return Matrix::Any;
        isShifted = isShifted || twist[i][3] != 0;
    }
    return isShifted ? Matrix::Bounded : Matrix::Linear;
}

template <Matrix Kind> struct Twist {
    float rows[3][4];

    template <size_t Channels, class D> HWY_INLINE Quarters<D> vector(D d, const uint8_t* from) const
    {
        return {quarter(d, loadFloats<Channels, 0>(d, from)), quarter(d, loadFloats<Channels, 1>(d, from)),
            quarter(d, loadFloats<Channels, 2>(d, from)), quarter(d, loadFloats<Channels, 3>(d, from))};
    }

    template <class D, class DF> HWY_INLINE auto quarter(D, Planes<DF> in) const
    {
        const auto [c0, c1, c2] = in;
        const auto first = channel(rows[0], c0, c1, c2), second = channel(rows[1], c0, c1, c2);
        const auto third = channel(rows[2], c0, c1, c2);
        const hn::Repartition<uint32_t, D> d32;
        return hn::BitCast(d32, mergeHalves(limited(mergeHalves(first, third)), limited(second)));
    }

    /** A new channel in the low half of each lane, as an integer with a sign. */
    template <class VF> static HWY_INLINE auto channel(const float (&row)[4], VF c0, VF c1, VF c2)
    {
        const hn::DFromV<VF> df;
        const auto two = hn::Add(hn::Mul(hn::Set(df, row[0]), c0), hn::Mul(hn::Set(df, row[1]), c1));
        auto sum = hn::Add(two, hn::Mul(hn::Set(df, row[2]), c2));
        if constexpr (Kind != Matrix::Linear)
            sum = hn::Add(sum, hn::Set(df, row[3]));
        if constexpr (Kind == Matrix::Any) {
            sum = hn::IfThenElseZero(hn::Gt(sum, hn::Zero(df)), sum); // NaN is not greater
            sum = hn::Min(sum, hn::Set(df, 255.0f));
        }
        const hn::RebindToUnsigned<decltype(df)> d32;
        return hn::BitCast(d32, hn::Add(sum, hn::Set(df, integerWithSignInFloat)));
    }

    /** Halves of lanes limited to bytes: two channels at once, where floats are one. */
    template <class V32> static HWY_INLINE auto limited(V32 v)
    {
        const hn::Repartition<int16_t, hn::DFromV<V32>> d16;
        const hn::RebindToUnsigned<decltype(d16)> du16;
        const auto notLess = hn::Max(hn::BitCast(d16, v), hn::Zero(d16));
        return hn::BitCast(du16, hn::Min(notLess, hn::Set(d16, 255)));
    }

    void pixel(const uint8_t* from, uint8_t* to) const
    {
        const float c0 = from[0], c1 = from[1], c2 = from[2];
        for (int i = 0; i < 3; ++i) {
            const float* row = rows[i];
            const float sum = ((row[0] * c0 + row[1] * c1) + row[2] * c2) + row[3];
            to[i] = uint8_t(!(sum > 0) ? 0.0f : sum >= 255 ? 255.0f : std::nearbyint(sum));
        }
    }
};

template <size_t Channels, Matrix Kind> void twistBy(const Move& move, const Ipp32f (*twist)[4])
{
    Twist<Kind> op;
    for (int i = 0; i < 3; ++i)
        std::copy_n(twist[i], 4, op.rows[i]);
    for (size_t y = 0; y < move.area.height; ++y)
        colourRow<Channels>(
            hn::ScalableTag<uint8_t>(), op, move.src.row(y), move.dst.row(y), move.area.width);
}

template <size_t Channels> void twistPixels(const Move& move, const Ipp32f (*twist)[4])
{
    switch (kindOf(twist)) {
    case Matrix::Any:
        return twistBy<Channels, Matrix::Any>(move, twist);
    case Matrix::Bounded:
        return twistBy<Channels, Matrix::Bounded>(move, twist);
    case Matrix::Linear:
        return twistBy<Channels, Matrix::Linear>(move, twist);
    }
}

constexpr TwistKernels s_kernels {twistPixels<3>, twistPixels<4>};
} // namespace

const TwistKernels& twistKernels() { return s_kernels; }
} // namespace HWY_NAMESPACE
} // namespace customipp
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace customipp {
namespace {
HWY_EXPORT(twistKernels);
const TwistKernels& kernelsColorTwist() { return HWY_DYNAMIC_DISPATCH(twistKernels)(); }
} // namespace
} // namespace customipp
#include "../entryPoints.h"
#include <customipp/colorTwist.def>
#endif // HWY_ONCE
