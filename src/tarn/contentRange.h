#pragma once

#include <optional>
#include <tarnbase/cRange.h>

class cImg;

namespace host {

/**
 * The range of an image's values over all channels but alpha, without a share of them at either end.
 *
 * The ends are values of the image: of n values in order, the least and the greatest trunc(n * i_quantile)
 * are left out. Of floats only finite values count. It takes a copy of the values.
 *
 * The descriptors' own automatic ranges are for viewers: they know no extremes of some types, take the first
 * channel only (red of colours), and measure the quantile of floats from 0.
 *
 * @param i_quantile from 0, which keeps least and greatest value, to below 0.5
 * @return nothing if no value counts, or for complex numbers and gradients
 */
std::optional<cDblRange> contentRange(const cImg& i_image, double i_quantile);

} // namespace host
