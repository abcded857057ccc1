#include <customipp/customipp.h>

#include <cstdlib>

namespace {
constexpr size_t s_alignment = 64;
} // namespace

void* ippMalloc(int length)
{
    if (length < 0)
        return nullptr;
    const size_t blocks = (static_cast<size_t>(length) + s_alignment - 1) / s_alignment;
    return std::aligned_alloc(s_alignment, (blocks ? blocks : 1) * s_alignment);
}

Ipp8u* ippsMalloc_8u(int len) { return static_cast<Ipp8u*>(ippMalloc(len)); }

void ippFree(void* ptr) { std::free(ptr); }

void ippsFree(void* ptr) { std::free(ptr); }
