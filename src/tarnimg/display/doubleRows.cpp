// Grey values from doubles, a vector at a time. Compiled once for every instruction set; all give the same
// bytes.
#include "display/doubleRows.h"

#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "display/doubleRows.cpp"
#include <hwy/foreach_target.h>

#include <hwy/highway.h>

#include "conversion/mapGuess-inl.h"
#include "display/definedRow-inl.h"

HWY_BEFORE_NAMESPACE();
namespace display {
namespace HWY_NAMESPACE {
namespace {

namespace hn = hwy::HWY_NAMESPACE;

struct DoubleDefinition {
    DoubleScale scale;

    template <class D64> HWY_INLINE void operator()(D64 d, const double* i_source, quint8* o_target) const
    {
        const auto low = hn::Set(d, scale.low);
        const auto high = hn::Set(d, scale.high);
        auto v = hn::LoadU(d, i_source);
        v = hn::IfThenElse(hn::Gt(v, high), high, v); // NaN stays
        v = hn::IfThenElse(hn::Lt(v, low), low, v);
        const auto grey = hn::Div(hn::Mul(hn::Sub(v, low), hn::Set(d, 255.0)), hn::Set(d, scale.width));
        const auto rounded = hn::Trunc(hn::Add(grey, hn::Set(d, 0.5)));
        storeAsBytes(
            d, hn::IfThenElse(hn::Gt(rounded, hn::Set(d, 255.0)), hn::Set(d, 255.0), rounded), o_target);
    }
};

void row(const double* i_source, quint8* o_target, std::size_t i_count, const DoubleScale& i_scale)
{
    using conversion::HWY_NAMESPACE::mapByGuess;
    const DoubleDefinition definition {i_scale};
    const conversion::LinearMap map = i_scale.map; // stays in registers: no store can reach it
    const hn::ScalableTag<double> d;
    const std::size_t batch = conversion::HWY_NAMESPACE::guessedAtOnce(d);
    std::size_t x = 0;
    if (map.guess.usable)
        for (; x + batch <= i_count; x += batch)
            if (!mapByGuess(d, i_source + x, o_target + x, map))
                definedRow(i_source + x, o_target + x, batch, definition);
    definedRow(i_source + x, o_target + x, i_count - x, definition);
}

} // namespace

DoubleRow doubles() { return row; }

} // namespace HWY_NAMESPACE
} // namespace display
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace display {

HWY_EXPORT(doubles);

DoubleRow doubleRow() { return HWY_DYNAMIC_DISPATCH(doubles)(); }

DoubleScale::DoubleScale(const cDblRange& i_range)
    : low(i_range.getLow()),
      high(i_range.getHigh()),
      width(i_range.getLength()),
      map(i_range, cDblRange(0.0, 255.0), conversion::ElementType::of<double>(),
          conversion::ElementType::of<quint8>())
{
}

} // namespace display
#endif // HWY_ONCE
