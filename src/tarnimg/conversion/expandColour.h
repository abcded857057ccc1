#pragma once

#include <customipp/types.h>

#include <cstddef>

namespace conversion {

/** Rows of pixels that become red, green, blue and an alpha of 255, each written once. Source and target lie
 * apart. */
struct ColourExpanders {
    using Row = void (*)(const Ipp8u* i_source, Ipp8u* o_target, std::size_t i_pixels);
    Row fromGrey;
    Row fromRgb24;
};

const ColourExpanders& colourExpanders();

} // namespace conversion
