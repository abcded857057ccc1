#pragma once

#include "support/FencedMemory.h"
#include "support/Plane.h"

#include <customipp/customipp.h>

#include <string>
#include <vector>

/** Images of all sizes and layouts for functions that reduce an image to numbers. */
namespace reduction {

inline std::string nameOf(const char* i_symbol, IppiSize i_size)
{
    return std::string(i_symbol) + " " + std::to_string(i_size.width) + " x " + std::to_string(i_size.height);
}

/** Calls a function for all sizes and layouts, with a number that counts the calls. */
template <class Function> void forEveryGeometry(Function&& i_function)
{
    unsigned count = 0;
    for (const int width : everyWidth())
        for (const int height : everyHeight())
            for (const Layout& layout : everyLayout())
                i_function(IppiSize {width, height}, layout, count++);
}

/** Beside those of everyWidth: longer than any block of vectors that is taken at once. */
inline const std::vector<int>& everyLongWidth()
{
    static const std::vector<int> s_widths {255, 256, 257, 383, 384, 385, 511, 767, 768, 770, 1025};
    return s_widths;
}

/** One row of an image that touches a page which nobody may read, at either end. */
template <class T> class FencedRow {
public:
    FencedRow(int i_lanes, FencedMemory::Side i_side) : m_memory(size_t(i_lanes) * sizeof(T), i_side) {}
    const T* data() { return reinterpret_cast<const T*>(m_memory.data()); }
    void set(int i_lane, T i_value) { m_memory.set<T>(size_t(i_lane), i_value); }
    T get(int i_lane) const { return m_memory.get<T>(size_t(i_lane)); }

private:
    FencedMemory m_memory;
};

inline constexpr FencedMemory::Side s_sides[] = {FencedMemory::AgainstEnd, FencedMemory::AgainstStart};

} // namespace reduction
