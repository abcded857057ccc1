#pragma once

#include <gtest/gtest.h>

#include <cstddef>
#include <cstdint>
#include <cstring>
#include <limits>
#include <random>
#include <string>
#include <type_traits>
#include <vector>

/**
 * How an image lies in memory. The step is the row's bytes plus the padding, which may be odd, or negative
 * for rows that overlap; the offset shifts the first pixel from a 64-byte boundary.
 */
struct Layout {
    int padding = 0;
    size_t offset = 0;
};

/** The layouts that every pixel function must take: dense, padded, odd steps, unaligned starts. */
inline const std::vector<Layout>& everyLayout()
{
    static const std::vector<Layout> s_layouts {{0, 0}, {0, 3}, {7, 1}, {64, 0}, {13, 64 - 5}};
    return s_layouts;
}

/**
 * An image for tests of the pixel layer: rows of lanes (a lane is one channel of one pixel), at any address
 * and step. All bytes around and between the rows are canaries. Pixels go through memcpy, so that no
 * alignment is assumed.
 */
template <class T> class Plane {
public:
    Plane(int i_lanes, int i_rows, Layout i_layout = {})
        : m_lanes(i_lanes),
          m_rows(i_rows),
          m_step(int(i_lanes * int(sizeof(T))) + i_layout.padding),
          m_bytes(s_frame + 64 + i_layout.offset + size_t(m_step) * size_t(i_rows - 1) + rowBytes() + s_frame)
    {
        for (size_t i = 0; i < m_bytes.size(); ++i)
            m_bytes[i] = canary(i);
        const size_t misaligned = reinterpret_cast<uintptr_t>(m_bytes.data()) % 64;
        m_start = s_frame + (64 - misaligned) % 64 + i_layout.offset;
    }
    // The place of the pixels within the block depends on its address.
    Plane(const Plane&) = delete;
    Plane& operator=(const Plane&) = delete;

    T* data() { return reinterpret_cast<T*>(m_bytes.data() + m_start); }
    const T* data() const { return reinterpret_cast<const T*>(m_bytes.data() + m_start); }
    int step() const { return m_step; }
    int lanes() const { return m_lanes; }
    int rows() const { return m_rows; }

    T get(int i_lane, int i_row) const
    {
        T value;
        std::memcpy(&value, m_bytes.data() + place(i_lane, i_row), sizeof(T));
        return value;
    }
    void set(int i_lane, int i_row, T i_value)
    {
        std::memcpy(m_bytes.data() + place(i_lane, i_row), &i_value, sizeof(T));
    }

    /** Sets lane after lane, row after row, to what the function returns. */
    template <class Function> void fill(Function&& i_next)
    {
        for (int y = 0; y < m_rows; ++y)
            for (int x = 0; x < m_lanes; ++x)
                set(x, y, i_next());
    }
    /** The pixels of another plane of the same size; its step and place may differ. */
    void copyFrom(const Plane& i_other)
    {
        for (int y = 0; y < m_rows; ++y)
            for (int x = 0; x < m_lanes; ++x)
                set(x, y, i_other.get(x, y));
    }

    /** Whether every byte that belongs to no pixel is as it was; reports the first that is not. */
    ::testing::AssertionResult frameIsIntact() const
    {
        std::vector<bool> owned(m_bytes.size());
        for (int y = 0; y < m_rows; ++y)
            for (size_t i = 0; i < rowBytes(); ++i)
                owned[place(0, y) + i] = true;
        for (size_t i = 0; i < m_bytes.size(); ++i)
            if (!owned[i] && m_bytes[i] != canary(i))
                return ::testing::AssertionFailure() << "byte " << ptrdiff_t(i) - ptrdiff_t(m_start)
                                                     << " from the first pixel was written (rows of "
                                                     << rowBytes() << " bytes, step " << m_step << ")";
        return ::testing::AssertionSuccess();
    }

private:
    static constexpr size_t s_frame = 128;

    static uint8_t canary(size_t i_index) { return uint8_t(0xA5 ^ (i_index * 37)); }
    size_t rowBytes() const { return size_t(m_lanes) * sizeof(T); }
    size_t place(int i_lane, int i_row) const
    {
        return m_start + size_t(m_step) * size_t(i_row) + size_t(i_lane) * sizeof(T);
    }

    int m_lanes;
    int m_rows;
    int m_step;
    std::vector<uint8_t> m_bytes;
    size_t m_start;
};

/** Fixed-seed values of a pixel type: the extremes and small values often, else anything in range. */
template <class T> class PixelSource {
public:
    explicit PixelSource(unsigned i_seed = 1) : m_random(i_seed) {}
    T operator()()
    {
        const unsigned bits = unsigned(m_random());
        if constexpr (std::is_floating_point_v<T>) {
            static constexpr T s_special[] = {T(0), T(-0.0), T(1), T(-1), T(0.5), T(255), T(65536), T(1e-30)};
            if (bits % 8 == 0)
                return s_special[bits / 8 % 8];
            return T(double(int64_t(m_random()) - 0x80000000LL) / 65536.0);
        } else {
            static constexpr T s_special[] = {T(0), T(1), T(2), T(3), std::numeric_limits<T>::max(),
                std::numeric_limits<T>::min(), T(std::numeric_limits<T>::max() - 1), T(-1)};
            if (bits % 4 == 0)
                return s_special[bits / 4 % 8];
            return T(m_random());
        }
    }

private:
    std::mt19937 m_random;
};

/** Equal as pixels: the same bits, or both not a number. */
template <class T> bool samePixel(T i_left, T i_right)
{
    if constexpr (std::is_floating_point_v<T>)
        if (i_left != i_left && i_right != i_right)
            return true;
    return std::memcmp(&i_left, &i_right, sizeof(T)) == 0;
}

/** Whether two planes hold the same pixels; reports place and values of the first five differences. */
template <class T>::testing::AssertionResult samePixels(const Plane<T>& i_actual, const Plane<T>& i_expected)
{
    std::string text;
    int count = 0;
    for (int y = 0; y < i_expected.rows(); ++y)
        for (int x = 0; x < i_expected.lanes(); ++x)
            if (const T actual = i_actual.get(x, y), expected = i_expected.get(x, y);
                !samePixel(actual, expected) && ++count <= 5)
                text += "\n  lane " + std::to_string(x) + ", row " + std::to_string(y) + ": is "
                    + std::to_string(actual) + ", should be " + std::to_string(expected);
    if (!count)
        return ::testing::AssertionSuccess();
    return ::testing::AssertionFailure()
        << count << " of " << i_expected.lanes() * i_expected.rows() << " lanes differ" << text;
}

/** The row lengths and heights of every pixel test, round the widths of the vectors. */
inline const std::vector<int>& everyWidth()
{
    static const std::vector<int> s_widths {1, 2, 3, 15, 16, 17, 31, 33, 63, 64, 65, 130};
    return s_widths;
}
inline const std::vector<int>& everyHeight()
{
    static const std::vector<int> s_heights {1, 2, 5};
    return s_heights;
}
