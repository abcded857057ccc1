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

/** A matrix. Many have no fourth column: then nothing is added, as adding 0 changes no byte. */
template <bool IsShifted> struct Twist {
    float rows[3][4];

    template <class D> HWY_INLINE Quarters<D> vector(D d, Planes<D> in) const
    {
        return inFloats(d, *this, in);
    }

    template <class DF, class VF>
    HWY_INLINE void operator()(DF df, VF c0, VF c1, VF c2, VF& r0, VF& r1, VF& r2) const
    {
        r0 = channel(df, rows[0], c0, c1, c2);
        r1 = channel(df, rows[1], c0, c1, c2);
        r2 = channel(df, rows[2], c0, c1, c2);
    }

    template <class DF, class VF>
    static HWY_INLINE VF channel(DF df, const float (&row)[4], VF c0, VF c1, VF c2)
    {
        const auto two = hn::Add(hn::Mul(hn::Set(df, row[0]), c0), hn::Mul(hn::Set(df, row[1]), c1));
        auto sum = hn::Add(two, hn::Mul(hn::Set(df, row[2]), c2));
        if constexpr (IsShifted)
            sum = hn::Add(sum, hn::Set(df, row[3]));
        const auto positive = hn::IfThenElseZero(hn::Gt(sum, hn::Zero(df)), sum); // NaN is not greater
        return hn::Add(hn::Min(positive, hn::Set(df, 255.0f)), hn::Set(df, integerInFloat));
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

template <size_t Channels, bool IsShifted> void twistBy(const Move& move, const Ipp32f (*twist)[4])
{
    Twist<IsShifted> op;
    for (int i = 0; i < 3; ++i)
        std::copy_n(twist[i], 4, op.rows[i]);
    for (size_t y = 0; y < move.area.height; ++y)
        colourRow<Channels>(
            hn::ScalableTag<uint8_t>(), op, move.src.row(y), move.dst.row(y), move.area.width);
}

template <size_t Channels> void twistPixels(const Move& move, const Ipp32f (*twist)[4])
{
    if (twist[0][3] == 0 && twist[1][3] == 0 && twist[2][3] == 0)
        twistBy<Channels, false>(move, twist);
    else
        twistBy<Channels, true>(move, twist);
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
