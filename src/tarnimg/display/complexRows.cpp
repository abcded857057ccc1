// Steps from complex numbers to colours, a vector at a time. Compiled once for every instruction set; all
// give the same bytes.
#include "display/complexRows.h"

#include <cmath>
#include <limits>

#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "display/complexRows.cpp"
#include <hwy/foreach_target.h>

#include <hwy/highway.h>

HWY_BEFORE_NAMESPACE();
namespace display {
namespace HWY_NAMESPACE {
namespace {

namespace hn = hwy::HWY_NAMESPACE;

/** Calls an operation with whole vectors and then with single elements. */
template <class T, class Op> HWY_INLINE void forEach(std::size_t i_count, const Op& i_op)
{
    const hn::ScalableTag<T> d;
    const hn::CappedTag<T, 1> one;
    std::size_t x = 0;
    for (; x + hn::Lanes(d) <= i_count; x += hn::Lanes(d))
        i_op(d, x);
    for (; x < i_count; ++x)
        i_op(one, x);
}

struct DropInfinities {
    Ipp32f* values;

    template <class D> HWY_INLINE void operator()(D d, std::size_t x) const
    {
        const auto v = hn::LoadU(d, values + x);
        const auto isInfinite = hn::Eq(hn::Abs(v), hn::Set(d, std::numeric_limits<float>::infinity()));
        hn::StoreU(hn::IfThenZeroElse(isInfinite, v), d, values + x);
    }
};

void dropInfinities(Ipp32f* io_values, std::size_t i_count)
{
    forEach<float>(i_count, DropInfinities {io_values});
}

void combine(
    const Ipp32f* i_real, const Ipp32f* i_imaginary, Ipp32f i_factor, Ipp32fc* o_numbers, std::size_t i_count)
{
    const hn::ScalableTag<float> d;
    const auto factor = hn::Set(d, i_factor);
    std::size_t x = 0;
    for (; x + hn::Lanes(d) <= i_count; x += hn::Lanes(d))
        hn::StoreInterleaved2(hn::Mul(hn::LoadU(d, i_real + x), factor),
            hn::Mul(hn::LoadU(d, i_imaginary + x), factor), d, &o_numbers[x].re);
    for (; x < i_count; ++x)
        o_numbers[x] = {i_real[x] * i_factor, i_imaginary[x] * i_factor};
}

struct ColourIndices {
    const Ipp32f* magnitudes;
    const Ipp32f* phases;
    double scale;
    qint32* indices;

    template <class D> HWY_INLINE void operator()(D d, std::size_t x) const
    {
        const hn::Rebind<float, D> df;
        const hn::Rebind<std::int32_t, D> d32;
        constexpr double degrees = 180.0 / 3.14159265358979323846;
        constexpr double unit = 8192.0;
        const auto amount = hn::Div(hn::PromoteTo(d, hn::LoadU(df, magnitudes + x)), hn::Set(d, scale));
        auto angle = hn::Mul(hn::PromoteTo(d, hn::LoadU(df, phases + x)), hn::Set(d, degrees));
        angle = hn::Mul(hn::Round(hn::Mul(angle, hn::Set(d, unit))), hn::Set(d, 1.0 / unit));
        const auto turn = hn::Set(d, 360.0);
        angle = hn::Add(angle, hn::IfThenElseZero(hn::Lt(angle, hn::Zero(d)), turn));
        const auto isNumber = hn::And(hn::Eq(amount, amount), hn::Eq(angle, angle));
        const auto value = hn::Trunc(hn::Min(hn::Abs(amount), hn::Set(d, 255.0)));
        const auto index = hn::Add(hn::Mul(hn::Trunc(angle), hn::Set(d, 256.0)), value);
        const auto checked = hn::IfThenElse(isNumber, index, hn::Set(d, double(ComplexRowTable::s_noColour)));
        hn::StoreU(hn::DemoteTo(d32, checked), d32, reinterpret_cast<std::int32_t*>(indices + x));
    }
};

void colourIndices(const Ipp32f* i_magnitudes, const Ipp32f* i_phases, double i_scale, qint32* o_indices,
    std::size_t i_count)
{
    forEach<double>(i_count, ColourIndices {i_magnitudes, i_phases, i_scale, o_indices});
}

} // namespace

const ComplexRowTable& complexRows()
{
    static constexpr ComplexRowTable s_rows {dropInfinities, combine, colourIndices};
    return s_rows;
}

} // namespace HWY_NAMESPACE
} // namespace display
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace display {

HWY_EXPORT(complexRows);

const ComplexRowTable& complexRowTable() { return HWY_DYNAMIC_DISPATCH(complexRows)(); }

} // namespace display
#endif // HWY_ONCE
