#pragma once

#include <QString>
#include <optional>
#include <tarnbase/cRange.h>

class cOptions;

namespace host {

/**
 * Reads `--range LOW,HIGH`; without it the range stays as it is.
 *
 * @return what is wrong, empty if nothing is
 */
QString readRangeOption(const cOptions& i_options, std::optional<cDblRange>& io_range);

} // namespace host
