// Grey values from integers of 64 bits, a vector at a time. Compiled once for every instruction set; all give
// the same bytes.
#include "display/integerRows.h"

#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "display/integer64Rows.cpp"
#include <hwy/foreach_target.h>

#include <hwy/highway.h>

#include "conversion/batches-inl.h"
#include "display/definedRow-inl.h"

HWY_BEFORE_NAMESPACE();
namespace display {
namespace HWY_NAMESPACE {
namespace {

namespace hn = hwy::HWY_NAMESPACE;

/** 64 bits: the low byte of the truncated distance. */
struct Distance64 {
    double low;
    std::int64_t first, last;

    template <class D64> HWY_INLINE void operator()(D64 d, const qint64* i_source, quint8* o_target) const
    {
        const hn::RebindToSigned<D64> d64;
        const auto v = hn::LoadU(d64, reinterpret_cast<const std::int64_t*>(i_source));
        const auto away = hn::Trunc(hn::Sub(hn::ConvertTo(d, v), hn::Set(d, low)));
        const auto times = hn::Floor(hn::Mul(away, hn::Set(d, 1.0 / 256.0)));
        auto grey = hn::Sub(away, hn::Mul(times, hn::Set(d, 256.0))); // exact
        grey = hn::IfThenElse(hn::RebindMask(d, hn::Lt(v, hn::Set(d64, last))), grey, hn::Set(d, 255.0));
        grey = hn::IfThenElseZero(hn::RebindMask(d, hn::Gt(v, hn::Set(d64, first))), grey);
        storeAsBytes(d, grey, o_target);
    }
};

/** The same where the truncated distance is that of whole numbers. */
struct WholeDistance64 {
    std::int64_t origin, first, last;

    template <class D64> HWY_INLINE auto grey(D64, const qint64* i_source) const
    {
        const hn::RebindToSigned<D64> d64;
        const hn::RebindToUnsigned<D64> bits;
        const auto v = hn::LoadU(d64, reinterpret_cast<const std::int64_t*>(i_source));
        const auto away = hn::Sub(v, hn::Set(d64, origin));
        const auto upTo255 = hn::IfThenElse(hn::Lt(v, hn::Set(d64, last)), away, hn::Set(d64, 255));
        return hn::BitCast(bits, hn::IfThenElseZero(hn::Gt(v, hn::Set(d64, first)), upTo255));
    }

    template <class D64> HWY_INLINE void operator()(D64 d, const qint64* i_source, quint8* o_target) const
    {
        const hn::Rebind<std::uint8_t, D64> bytes;
        hn::StoreU(hn::TruncateTo(bytes, grey(d, i_source)), bytes, o_target);
    }

    template <class DU64> HWY_INLINE void storeFour(DU64 d, const qint64* i_source, quint8* o_target) const
    {
        const hn::Repartition<std::uint32_t, DU64> d32;
        const std::size_t lanes = hn::Lanes(d);
        const auto low = [d32](auto i_high, auto i_low) HWY_ATTR {
            return hn::ConcatEven(d32, hn::BitCast(d32, i_high), hn::BitCast(d32, i_low));
        };
        conversion::HWY_NAMESPACE::storeLowBits(low(grey(d, i_source + lanes), grey(d, i_source)),
            low(grey(d, i_source + 3 * lanes), grey(d, i_source + 2 * lanes)), o_target);
    }
};

void row64(const qint64* i_source, quint8* o_target, std::size_t i_count, const IntegerScale& i_scale)
{
    if (!i_scale.whole.usable) {
        definedRow(i_source, o_target, i_count, Distance64 {i_scale.low, i_scale.first, i_scale.last});
        return;
    }
    const WholeDistance64 distance {i_scale.whole.origin, i_scale.first, i_scale.last};
    const hn::ScalableTag<std::uint64_t> d;
    const std::size_t batch = 4 * hn::Lanes(d);
    std::size_t x = 0;
    for (; x + batch <= i_count; x += batch)
        distance.storeFour(d, i_source + x, o_target + x);
    definedRow(i_source + x, o_target + x, i_count - x, distance);
}

} // namespace

Integer64Row integer64() { return row64; }

} // namespace HWY_NAMESPACE
} // namespace display
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace display {

HWY_EXPORT(integer64);

Integer64Row integer64Row() { return HWY_DYNAMIC_DISPATCH(integer64)(); }

} // namespace display
#endif // HWY_ONCE
