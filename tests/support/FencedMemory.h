#pragma once

#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <sys/mman.h>
#include <unistd.h>

/**
 * Bytes with a page before and a page behind that nobody may touch: a read or a write beyond either end stops
 * the test. They lie against the page behind, or, on request, against the page before.
 */
class FencedMemory {
public:
    enum Side { AgainstEnd, AgainstStart };

    FencedMemory(size_t i_bytes, Side i_side)
        : m_page(size_t(sysconf(_SC_PAGESIZE))),
          m_inner((i_bytes + m_page - 1) / m_page * m_page)
    {
        void* mapped
            = mmap(nullptr, m_inner + 2 * m_page, PROT_READ | PROT_WRITE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0);
        if (mapped == MAP_FAILED)
            std::abort();
        m_mapped = static_cast<uint8_t*>(mapped);
        if (mprotect(m_mapped, m_page, PROT_NONE) != 0
            || mprotect(m_mapped + m_page + m_inner, m_page, PROT_NONE) != 0)
            std::abort();
        m_data = m_mapped + m_page + (i_side == AgainstEnd ? m_inner - i_bytes : 0);
    }
    ~FencedMemory() { munmap(m_mapped, m_inner + 2 * m_page); }
    FencedMemory(const FencedMemory&) = delete;
    FencedMemory& operator=(const FencedMemory&) = delete;

    uint8_t* data() { return m_data; }

    /** Element number i_index of a sequence that need not be aligned. */
    template <class T> T get(size_t i_index) const
    {
        T value;
        std::memcpy(&value, m_data + i_index * sizeof(T), sizeof(T));
        return value;
    }
    template <class T> void set(size_t i_index, T i_value)
    {
        std::memcpy(m_data + i_index * sizeof(T), &i_value, sizeof(T));
    }

private:
    size_t m_page;
    size_t m_inner;
    uint8_t* m_mapped;
    uint8_t* m_data;
};
