#pragma once

#include <customipp/types.h>

namespace colour {

/**
 * Pixels of red, green, blue, three or four bytes each, to cyan, magenta, yellow and black. Rows are taken as
 * if they touched each other: the steps play no part. The status is always 0.
 */
IppStatus cmykOfThree(
    const Ipp8u* i_source, int i_sourceStep, Ipp32f* o_result, int i_resultStep, IppiSize i_size);
IppStatus cmykOfFour(
    const Ipp8u* i_source, int i_sourceStep, Ipp32f* o_result, int i_resultStep, IppiSize i_size);

} // namespace colour
