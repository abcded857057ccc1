#pragma once

#include <QtGlobal>
#include <cstddef>

namespace display {

using ChannelRow = void (*)(
    const void* i_pixels, void* o_target, std::size_t i_count, unsigned i_channel, unsigned i_channels);

/** One channel of interleaved ones, by the bytes of a channel; the rows may begin at any byte. */
struct ChannelTable {
    ChannelRow of1;
    ChannelRow of2;
    ChannelRow of4;
    ChannelRow of8;
};

/** The row function for the processor. @param i_channelBytes 1, 2, 4 or 8 */
ChannelRow channelRowFor(unsigned i_channelBytes);

} // namespace display
