#pragma once

#include <tarnimg/cImg.h>

/** What the functors share that sum into a Float32 image which they keep. */
namespace accumulator {

/**
 * Keeps a sum that fits the input's size and channel count, and replaces any other by a new one.
 *
 * @return whether the sum is new; its pixels are undefined then, and what was summed up before is gone.
 */
bool prepare(cImg& io_sum, const cImg& i_input);

/** Sets all pixels to 0; size and type stay. An invalid sum stays invalid. */
void clear(cImg& io_sum);

} // namespace accumulator
