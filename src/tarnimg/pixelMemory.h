#pragma once

#include <cstddef>
#include <functional>

/**
 * Memory for pixels, at an address that is a multiple of a power of two.
 *
 * However great the alignment, only the bytes themselves take address space.
 *
 * @param i_bytes above 0
 * @param o_free gives the memory back
 * @throws std::bad_alloc
 */
void* allocatePixels(std::size_t i_bytes, std::size_t i_alignment, std::function<void(void*)>& o_free);
