#include "accumulator.h"

#include <QVariant>

namespace accumulator {

bool prepare(cImg& io_sum, const cImg& i_input)
{
    if (io_sum.isKindOf(cImgType::Float32) && io_sum.getSize() == i_input.getSize()
        && io_sum.getNumChannels() == i_input.getNumChannels())
        return false;
    io_sum = cImg(cImgType::Float32, i_input.getWidth(), i_input.getHeight(), i_input.getNumChannels());
    return true;
}

void clear(cImg& io_sum) { io_sum.getImgType().fill(io_sum, QVariant(0.0f)); }

} // namespace accumulator
