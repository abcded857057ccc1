#include "display/byteTables.h"

#include <tarnimg/checkIPPStatus.h>

#include <algorithm>
#include <numeric>

namespace display {

namespace {

IppChannels channelsOf(std::size_t i_count) { return i_count == 1 ? ippC1 : i_count == 3 ? ippC3 : ippC4; }

} // namespace

ByteTables::ByteTables(std::initializer_list<const int*> i_values, const int* i_levels)
    : m_channels(int(i_values.size()))
{
    const IppChannels channels = channelsOf(i_values.size());
    const IppiSize anySize {1, 1};
    const Ipp32s* values[4] = {};
    std::copy(i_values.begin(), i_values.end(), values);
    const Ipp32s* levels[4] = {i_levels, i_levels, i_levels, i_levels};
    int counts[4] = {256, 256, 256, 256};
    int size = 0;
    checkIPPStatus(ippiLUT_GetSize(ippNearest, ipp8u, channels, anySize, counts, &size));
    m_specification.resize(size);
    checkIPPStatus(ippiLUT_Init_8u(ippNearest, channels, anySize, values, levels, counts, specification()));
}

void ByteTables::map(Ipp8u* io_pixels, int i_step, IppiSize i_size) const
{
    const auto run = m_channels == 1 ? ippiLUT_8u_C1IR : m_channels == 3 ? ippiLUT_8u_C3IR : ippiLUT_8u_C4IR;
    checkIPPStatus(run(io_pixels, i_step, i_size, specification()));
}

QVector<int> everyByte()
{
    QVector<int> bytes(256);
    std::iota(bytes.begin(), bytes.end(), 0);
    return bytes;
}

} // namespace display
