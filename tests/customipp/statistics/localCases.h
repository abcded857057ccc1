#pragma once

#include "support/FencedMemory.h"
#include "support/Plane.h"

#include <customipp/customipp.h>

#include <string>

/** What the tests of the local measures share: sizes, and layouts whose steps fit every element. */
namespace local {

inline const std::vector<Layout>& everyEvenLayout()
{
    static const std::vector<Layout> s_layouts {{0, 0}, {8, 3}, {64, 60}};
    return s_layouts;
}

/** Calls a function for all sizes and layouts. */
template <class Function> void forEveryGeometry(Function&& i_function)
{
    for (const int width : everyWidth())
        for (const int height : everyHeight())
            for (const Layout& layout : everyEvenLayout()) {
                SCOPED_TRACE(std::to_string(width) + " x " + std::to_string(height) + ", padding "
                    + std::to_string(layout.padding));
                i_function(IppiSize {width, height}, layout);
            }
}

inline constexpr FencedMemory::Side s_sides[] = {FencedMemory::AgainstEnd, FencedMemory::AgainstStart};

} // namespace local
