#include "allocations.h"

#include <atomic>
#include <cerrno>
#include <cstdlib>

namespace {

std::array<std::atomic<std::uint64_t>, 4> s_counts;

void note(std::size_t i_bytes)
{
    std::size_t sizeClass = 0;
    while (i_bytes > Allocations::s_limits[sizeClass])
        ++sizeClass;
    s_counts[sizeClass].fetch_add(1, std::memory_order_relaxed);
}

} // namespace

Allocations Allocations::now()
{
    Allocations result;
    for (std::size_t i = 0; i < result.count.size(); ++i)
        result.count[i] = s_counts[i].load(std::memory_order_relaxed);
    return result;
}

Allocations Allocations::operator-(const Allocations& i_other) const
{
    Allocations result;
    for (std::size_t i = 0; i < result.count.size(); ++i)
        result.count[i] = count[i] - i_other.count[i];
    return result;
}

// The C library's own entry points under the names that a replacement forwards to.
extern "C" {
void* __libc_malloc(std::size_t);
void* __libc_calloc(std::size_t, std::size_t);
void* __libc_realloc(void*, std::size_t);
void* __libc_memalign(std::size_t, std::size_t);

void* malloc(std::size_t i_bytes)
{
    note(i_bytes);
    return __libc_malloc(i_bytes);
}

void* calloc(std::size_t i_count, std::size_t i_bytes)
{
    note(i_count * i_bytes);
    return __libc_calloc(i_count, i_bytes);
}

void* realloc(void* i_block, std::size_t i_bytes)
{
    note(i_bytes);
    return __libc_realloc(i_block, i_bytes);
}

void* aligned_alloc(std::size_t i_alignment, std::size_t i_bytes)
{
    note(i_bytes);
    return __libc_memalign(i_alignment, i_bytes);
}

void* memalign(std::size_t i_alignment, std::size_t i_bytes)
{
    note(i_bytes);
    return __libc_memalign(i_alignment, i_bytes);
}

int posix_memalign(void** o_block, std::size_t i_alignment, std::size_t i_bytes)
{
    note(i_bytes);
    *o_block = __libc_memalign(i_alignment, i_bytes);
    return *o_block ? 0 : ENOMEM;
}
}
