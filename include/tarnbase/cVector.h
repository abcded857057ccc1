#pragma once

#include <tarnbase/export.h>

#include <cmath>
#include <initializer_list>
#include <vector>

/** A column of numbers of any length. Reading beyond the end gives 0. */
template <class T> class TARNBASE_EXPORT cVector {
public:
    cVector() = default;
    explicit cVector(unsigned int i_size) : m_values(i_size) {}
    cVector(T i_x, T i_y) : m_values {i_x, i_y} {}
    cVector(std::initializer_list<T> i_values) : m_values(i_values) {}

    unsigned int getSize() const { return static_cast<unsigned int>(m_values.size()); }
    T operator[](unsigned int i_index) const { return i_index < m_values.size() ? m_values[i_index] : T(); }
    /** Writing beyond the end does nothing. */
    void set(unsigned int i_index, T i_value)
    {
        if (i_index < m_values.size())
            m_values[i_index] = i_value;
    }

    /** Euclidean length. */
    double getLength() const
    {
        double sum = 0.0;
        for (const T value : m_values)
            sum += double(value) * double(value);
        return std::sqrt(sum);
    }

    friend bool operator==(const cVector&, const cVector&) = default;

private:
    std::vector<T> m_values;
};
