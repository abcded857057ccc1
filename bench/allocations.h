#pragma once

#include <array>
#include <cstddef>
#include <cstdint>

/** Heap allocations of the whole process, counted by size. The benchmark program replaces malloc to count
 * them. */
struct Allocations {
    /** The upper ends of the classes in bytes; the last class has none. */
    static constexpr std::array<std::size_t, 4> s_limits = {64, 1024, 65536, SIZE_MAX};
    static constexpr std::array<const char*, 4> s_names = {"to 64 bytes", "to 1 KiB", "to 64 KiB", "larger"};

    std::array<std::uint64_t, 4> count {};

    static Allocations now();
    Allocations operator-(const Allocations& i_other) const;
};
