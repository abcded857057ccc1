#pragma once

#include <ostream>
#include <tarnbase/cRange.h>

/** How GoogleTest prints a range. */
inline void PrintTo(const cDblRange& i_range, std::ostream* o_stream)
{
    *o_stream << i_range.getLow() << " to " << i_range.getHigh();
}
