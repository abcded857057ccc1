// Changes the order of colours on the way. Compiled once for every instruction set.
#include "display/colourOrder.h"

#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "display/colourOrder.cpp"
#include <hwy/foreach_target.h>

#include <hwy/highway.h>

HWY_BEFORE_NAMESPACE();
namespace display {
namespace HWY_NAMESPACE {
namespace {

namespace hn = hwy::HWY_NAMESPACE;

void swapRow(const quint8* i_source, quint8* o_target, std::size_t i_count)
{
    const hn::ScalableTag<std::uint8_t> d;
    alignas(16) static constexpr std::uint8_t places[16]
        = {2, 1, 0, 3, 6, 5, 4, 7, 10, 9, 8, 11, 14, 13, 12, 15};
    const auto order = hn::LoadDup128(d, places);
    const std::size_t bytes = 4 * i_count;
    const std::size_t lanes = hn::Lanes(d);
    std::size_t x = 0;
    for (; x + 4 * lanes <= bytes; x += 4 * lanes) {
        const auto v0 = hn::LoadU(d, i_source + x);
        const auto v1 = hn::LoadU(d, i_source + x + lanes);
        const auto v2 = hn::LoadU(d, i_source + x + 2 * lanes);
        const auto v3 = hn::LoadU(d, i_source + x + 3 * lanes);
        hn::StoreU(hn::TableLookupBytes(v0, order), d, o_target + x);
        hn::StoreU(hn::TableLookupBytes(v1, order), d, o_target + x + lanes);
        hn::StoreU(hn::TableLookupBytes(v2, order), d, o_target + x + 2 * lanes);
        hn::StoreU(hn::TableLookupBytes(v3, order), d, o_target + x + 3 * lanes);
    }
    for (; x < bytes; x += 4)
        for (std::size_t i = 0; i < 4; ++i)
            o_target[x + i] = i_source[x + places[i]];
}

} // namespace
} // namespace HWY_NAMESPACE
} // namespace display
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace display {

namespace {
HWY_EXPORT(swapRow);
} // namespace

void copySwapped(const quint8* i_source, quint8* o_target, std::size_t i_count)
{
    HWY_DYNAMIC_DISPATCH(swapRow)(i_source, o_target, i_count);
}

} // namespace display
#endif // HWY_ONCE
