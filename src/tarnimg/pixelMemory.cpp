#include "pixelMemory.h"

#include <cstdint>
#include <cstdlib>
#include <new>
#include <sys/mman.h>
#include <unistd.h>

namespace {

/** Up to here the allocator's own way wastes less than the pages that it takes anyhow. */
constexpr std::size_t s_greatAlignment = 1 << 16;

std::size_t roundedUp(std::size_t i_value, std::size_t i_unit)
{
    return (i_value + i_unit - 1) / i_unit * i_unit;
}

/**
 * The allocator would keep as much address space as the alignment beside each piece, here gigabytes. So
 * reserve that much, which costs nothing, and give back all but the aligned pages. One page behind them stays
 * closed: who writes past the pixels shall not meet other memory.
 */
unsigned char* mapAligned(std::size_t i_bytes, std::size_t i_alignment, std::size_t i_page)
{
    const std::size_t reserved = i_bytes + i_page + i_alignment;
    void* reserve = mmap(nullptr, reserved, PROT_NONE, MAP_PRIVATE | MAP_ANONYMOUS | MAP_NORESERVE, -1, 0);
    if (reserve == MAP_FAILED)
        throw std::bad_alloc();
    auto* begin = static_cast<unsigned char*>(reserve);
    const std::size_t before = roundedUp(reinterpret_cast<std::uintptr_t>(begin), i_alignment)
        - reinterpret_cast<std::uintptr_t>(begin);
    unsigned char* pixels = begin + before;
    unsigned char* end = pixels + i_bytes + i_page;
    if (before)
        munmap(begin, before);
    if (end != begin + reserved)
        munmap(end, std::size_t(begin + reserved - end));
    if (mprotect(pixels, i_bytes, PROT_READ | PROT_WRITE) != 0) {
        munmap(pixels, i_bytes + i_page);
        throw std::bad_alloc();
    }
    return pixels;
}

} // namespace

void* allocatePixels(std::size_t i_bytes, std::size_t i_alignment, std::function<void(void*)>& o_free)
{
    if (i_alignment <= s_greatAlignment) {
        void* pixels = nullptr;
        if (posix_memalign(&pixels, i_alignment, i_bytes) != 0)
            throw std::bad_alloc();
        o_free = std::free;
        return pixels;
    }
    const auto page = std::size_t(sysconf(_SC_PAGESIZE));
    const std::size_t bytes = roundedUp(i_bytes, page);
    o_free = [all = bytes + page](void* i_pixels) { munmap(i_pixels, all); };
    return mapAligned(bytes, i_alignment, page);
}
