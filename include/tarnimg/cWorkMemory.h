#pragma once

#include <cstddef>
#include <memory>

/**
 * The working memory of a functor, kept between its calls: a stream of images of one size allocates it once.
 * Small requests stay inside the object. Its content has no meaning, so a copy begins empty.
 */
class cWorkMemory {
public:
    cWorkMemory() = default;
    cWorkMemory(const cWorkMemory&) {}
    cWorkMemory& operator=(const cWorkMemory&) { return *this; } // NOLINT(bugprone-unhandled-self-assignment)

    /** At least so many bytes, at any address; valid until the next call. Throws std::bad_alloc. */
    unsigned char* grow(std::size_t i_bytes)
    {
        if (i_bytes > m_size) {
            m_heap.reset(); // both need not live at once
            m_size = sizeof(m_inline);
            m_heap.reset(new unsigned char[i_bytes]);
            m_size = i_bytes;
        }
        return m_heap ? m_heap.get() : m_inline;
    }
    std::size_t size() const { return m_size; }

private:
    unsigned char m_inline[256];
    std::unique_ptr<unsigned char[]> m_heap;
    std::size_t m_size = sizeof(m_inline);
};
