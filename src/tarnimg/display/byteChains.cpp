// The chains of steps that make grey values of floats and of 16 unsigned bits, in one pass. Compiled once for
// every instruction set; all give the same bytes.
#include "display/byteChains.h"

#include <algorithm>
#include <cmath>
#include <cstring>

#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "display/byteChains.cpp"
#include <hwy/foreach_target.h>

#include <hwy/highway.h>

#include "display/packBytes-inl.h"

HWY_BEFORE_NAMESPACE();
namespace display {
namespace HWY_NAMESPACE {
namespace {

namespace hn = hwy::HWY_NAMESPACE;

/** The vectors' grey values in the low 16 of 32 bits. */
struct Float32Chain {
    Float32Scale scale;

    template <class D32> HWY_INLINE auto operator()(D32 d32, const float* i_source) const
    {
        const hn::Rebind<float, D32> d;
        const auto lifted = hn::Sub(hn::LoadU(d, i_source), hn::Set(d, scale.low));
        auto grey = hn::Mul(lifted, hn::Set(d, scale.factor));
        grey = hn::IfThenElseZero(hn::Gt(grey, hn::Zero(d)), grey); // nor is NaN greater
        // At 2^23 the unit of a float is 1: the sum is rounded to whole numbers, ties to even.
        const auto sum = hn::Add(hn::Min(grey, hn::Set(d, 255.0f)), hn::Set(d, 0x1p23f));
        return hn::BitCast(d32, sum);
    }
};

struct WordChain {
    WordScale scale;

    template <class D32> HWY_INLINE auto operator()(D32 d32, const quint16* i_source) const
    {
        const hn::Rebind<std::uint16_t, D32> d16;
        const hn::RebindToUnsigned<D32> du32;
        const auto lifted = hn::SaturatedSub(hn::LoadU(d16, i_source), hn::Set(d16, scale.low));
        const auto limited = hn::PromoteTo(du32, hn::Min(lifted, hn::Set(d16, scale.greatest)));
        const auto product = hn::Mul(limited, hn::Set(du32, scale.multiplier));
        const auto odd
            = hn::And(hn::ShiftRightSame(product, scale.scale), hn::Set(du32, 1u)); // ties go up from it
        const auto belowHalf = hn::Set(du32, (1u << (scale.scale - 1)) - 1u);
        const auto grey = hn::ShiftRightSame(hn::Add(product, hn::Add(belowHalf, odd)), scale.scale);
        return hn::BitCast(d32, hn::Min(grey, hn::Set(du32, 255u)));
    }
};

/** Calls a chain with four vectors at a time, and with single elements at the end. */
template <class T, class Chain>
HWY_INLINE void chainRow(const T* i_source, quint8* o_target, std::size_t i_count, const Chain& i_chain)
{
    const Chain chain = i_chain; // stays in registers: no store can reach it
    const PackOrder order;
    const hn::ScalableTag<std::int32_t> d;
    const hn::ScalableTag<std::uint8_t> bytes;
    const hn::CappedTag<std::int32_t, 1> one;
    const std::size_t lanes = hn::Lanes(d);
    std::size_t x = 0;
    for (; x + 4 * lanes <= i_count; x += 4 * lanes) {
        const T* source = i_source + x;
        hn::StoreU(packBytes(chain(d, source), chain(d, source + lanes), chain(d, source + 2 * lanes),
                       chain(d, source + 3 * lanes), order),
            bytes, o_target + x);
    }
    for (; x < i_count; ++x) {
        T element; // at an aligned place
        std::memcpy(&element, static_cast<const void*>(i_source + x), sizeof element);
        o_target[x] = quint8(hn::GetLane(chain(one, &element)));
    }
}

void floatRow(const float* i_source, quint8* o_target, std::size_t i_count, const Float32Scale& i_scale)
{
    chainRow(i_source, o_target, i_count, Float32Chain {i_scale});
}

void wordRow(const quint16* i_source, quint8* o_target, std::size_t i_count, const WordScale& i_scale)
{
    chainRow(i_source, o_target, i_count, WordChain {i_scale});
}

} // namespace

const ChainTable& chains()
{
    static constexpr ChainTable s_chains {floatRow, wordRow};
    return s_chains;
}

} // namespace HWY_NAMESPACE
} // namespace display
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace display {

HWY_EXPORT(chains);

const ChainTable& chainTable() { return HWY_DYNAMIC_DISPATCH(chains)(); }

Float32Scale::Float32Scale(const conversion::Ranges& i_ranges)
    : low(float(i_ranges.input.getLow())),
      factor(float(i_ranges.factor()))
{
}

WordScale::WordScale(const conversion::Ranges& i_ranges)
    : low(conversion::cut<Ipp16u>(i_ranges.input.getLow()))
{
    const conversion::Stretch<Ipp16u> stretch(i_ranges);
    multiplier = stretch.multiplier;
    scale = stretch.scale;
    usable = scale >= 1 && scale <= 24 && multiplier != 0 && stretch.offset == 0;
    greatest
        = usable ? quint16(std::min((quint64(255) << scale) / multiplier + 1, quint64(65535))) : quint16(0);
}

} // namespace display
#endif // HWY_ONCE
