#pragma once

#include <customipp/types.h>

#include <cstddef>
#include <type_traits>

namespace customipp {

/** An image as the caller describes it: first pixel and distance of the rows in bytes, both without any
 * alignment. */
template <class T> struct Rows {
    T* first;
    int step;

    T* row(size_t y) const
    {
        using Byte = std::conditional_t<std::is_const_v<T>, const char, char>;
        return reinterpret_cast<T*>(reinterpret_cast<Byte*>(first) + static_cast<ptrdiff_t>(y) * step);
    }
};

/** What a row loop walks over: rows of lanes, a lane being one channel of one pixel. */
struct Extent {
    size_t lanes;
    size_t rows;
};

/**
 * The extent of a region, as one long row when every image is without padding. A step shorter than a row is
 * left as it is: there the rows overlap and are done one after the other.
 */
template <class... T> Extent extentOf(IppiSize size, int channels, const Rows<T>&... images)
{
    const size_t lanes = static_cast<size_t>(size.width) * static_cast<size_t>(channels);
    const size_t rows = static_cast<size_t>(size.height);
    if (((static_cast<size_t>(images.step) == lanes * sizeof(T)) && ...))
        return {lanes * rows, 1};
    return {lanes, rows};
}

} // namespace customipp
