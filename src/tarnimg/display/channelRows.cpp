// One of several channels, a vector at a time. Compiled once for every instruction set.
#include "display/channelRows.h"

#include <cstring>

#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "display/channelRows.cpp"
#include <hwy/foreach_target.h>

#include <hwy/highway.h>

HWY_BEFORE_NAMESPACE();
namespace display {
namespace HWY_NAMESPACE {
namespace {

namespace hn = hwy::HWY_NAMESPACE;

template <class T, unsigned Channels>
HWY_INLINE std::size_t takeVectors(const T* i_pixels, T* o_target, std::size_t i_count, unsigned i_channel)
{
    const hn::ScalableTag<T> d;
    const std::size_t lanes = hn::Lanes(d);
    std::size_t x = 0;
    for (; x + lanes <= i_count; x += lanes) {
        hn::Vec<decltype(d)> v[4];
        if constexpr (Channels == 2)
            hn::LoadInterleaved2(d, i_pixels + x * 2, v[0], v[1]);
        else if constexpr (Channels == 3)
            hn::LoadInterleaved3(d, i_pixels + x * 3, v[0], v[1], v[2]);
        else
            hn::LoadInterleaved4(d, i_pixels + x * 4, v[0], v[1], v[2], v[3]);
        hn::StoreU(v[i_channel], d, o_target + x);
    }
    return x;
}

template <class T>
void channelRow(
    const void* i_pixels, void* o_target, std::size_t i_count, unsigned i_channel, unsigned i_channels)
{
    const T* pixels = static_cast<const T*>(i_pixels);
    T* target = static_cast<T*>(o_target);
    std::size_t x = 0;
    if (i_channels == 2)
        x = takeVectors<T, 2>(pixels, target, i_count, i_channel);
    else if (i_channels == 3)
        x = takeVectors<T, 3>(pixels, target, i_count, i_channel);
    else if (i_channels == 4)
        x = takeVectors<T, 4>(pixels, target, i_count, i_channel);
    const char* from = static_cast<const char*>(i_pixels) + i_channel * sizeof(T);
    for (; x < i_count; ++x)
        std::memcpy(
            static_cast<char*>(o_target) + x * sizeof(T), from + x * i_channels * sizeof(T), sizeof(T));
}

} // namespace

const ChannelTable& channels()
{
    static constexpr ChannelTable s_channels {channelRow<std::uint8_t>, channelRow<std::uint16_t>,
        channelRow<std::uint32_t>, channelRow<std::uint64_t>};
    return s_channels;
}

} // namespace HWY_NAMESPACE
} // namespace display
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace display {

HWY_EXPORT(channels);

ChannelRow channelRowFor(unsigned i_channelBytes)
{
    const ChannelTable& table = HWY_DYNAMIC_DISPATCH(channels)();
    switch (i_channelBytes) {
    case 1:
        return table.of1;
    case 2:
        return table.of2;
    case 4:
        return table.of4;
    default:
        return table.of8;
    }
}

} // namespace display
#endif // HWY_ONCE
