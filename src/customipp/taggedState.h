#pragma once

#include <customipp/types.h>

#include <cstddef>
#include <cstdint>

namespace customipp {

/** What a table or a histogram begins with, so that one that was made for something else is told apart. */
struct SpecificationTag {
    uint32_t magic;
    IppDataType dataType;
    int channels;

    bool operator==(const SpecificationTag&) const = default;
};

template <class T> inline constexpr IppDataType dataTypeOf = ippUndef;
template <> inline constexpr IppDataType dataTypeOf<Ipp8u> = ipp8u;
template <> inline constexpr IppDataType dataTypeOf<Ipp16u> = ipp16u;
template <> inline constexpr IppDataType dataTypeOf<Ipp16s> = ipp16s;
template <> inline constexpr IppDataType dataTypeOf<Ipp32f> = ipp32f;

/** Memory from a caller may have any alignment: what is asked for, and where in it we begin. */
inline constexpr int64_t memoryAlignment = 64;
inline constexpr int64_t withAlignment(int64_t bytes) { return bytes + memoryAlignment - 1; }
template <class T> T* aligned(void* memory)
{
    const auto address = reinterpret_cast<uintptr_t>(memory);
    return reinterpret_cast<T*>((address + memoryAlignment - 1) / memoryAlignment * memoryAlignment);
}
template <class T> const T* aligned(const void* memory) { return aligned<T>(const_cast<void*>(memory)); }

} // namespace customipp
