#pragma once

#include <tarnbase/export.h>

#include <QMetaType>

class QTextStream;

/**
 * A closed interval from low to high. As a parameter, 0 to 0 means that no range is set.
 */
template <class T> class TARNBASE_EXPORT cRange {
public:
    constexpr cRange() = default;

    /** The smaller of the two values becomes the low one, whatever their order. */
    constexpr cRange(T i_a, T i_b) : m_low(i_b < i_a ? i_b : i_a), m_high(i_b < i_a ? i_a : i_b) {}

    constexpr T getLow() const { return m_low; }
    constexpr T getHigh() const { return m_high; }
    constexpr T getLength() const { return m_high - m_low; }

    /** The range is 0 to 0, that is, not set. */
    constexpr bool isEmpty() const { return m_low == T() && m_high == T(); }
    constexpr bool contains(T i_value) const { return m_low <= i_value && i_value <= m_high; }

    friend constexpr bool operator==(const cRange&, const cRange&) = default;

private:
    T m_low {};
    T m_high {};
};

using cDblRange = cRange<double>;

/** Writes "low,high". */
TARNBASE_EXPORT QTextStream& operator<<(QTextStream& io_stream, const cRange<double>& i_range);

Q_DECLARE_METATYPE(cRange<double>)
