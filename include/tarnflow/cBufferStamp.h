#pragma once

#include <QMetaType>
#include <QtGlobal>
#include <limits>

/**
 * The stamp by which frames of different inputs are matched.
 *
 * Two 64-bit fields: the stamp value, which orders and identifies, and a time, which the source may set
 * (nanoseconds, its own epoch) and which travels along. Comparisons look at the stamp value alone. A default
 * stamp is invalid; an invalid stamp in a finish notice is a reset marker.
 */
class cBufferStamp {
public:
    static constexpr qint64 s_invalid = std::numeric_limits<qint64>::min();

    constexpr cBufferStamp() = default;
    constexpr cBufferStamp(qint64 i_stamp) : m_stamp(i_stamp) {}
    constexpr cBufferStamp(qint64 i_stamp, qint64 i_time) : m_stamp(i_stamp), m_time(i_time) {}

    constexpr qint64 getStamp() const { return m_stamp; }
    constexpr qint64 getTime() const { return m_time; }
    constexpr bool isValid() const { return m_stamp != s_invalid; }

    friend constexpr bool operator==(const cBufferStamp& a, const cBufferStamp& b)
    {
        return a.m_stamp == b.m_stamp;
    }
    friend constexpr bool operator!=(const cBufferStamp& a, const cBufferStamp& b)
    {
        return a.m_stamp != b.m_stamp;
    }
    friend constexpr bool operator<(const cBufferStamp& a, const cBufferStamp& b)
    {
        return a.m_stamp < b.m_stamp;
    }
    friend constexpr bool operator<=(const cBufferStamp& a, const cBufferStamp& b)
    {
        return a.m_stamp <= b.m_stamp;
    }
    friend constexpr bool operator>=(const cBufferStamp& a, const cBufferStamp& b)
    {
        return a.m_stamp >= b.m_stamp;
    }

    /** The difference of both fields, modulo 2^64. */
    constexpr cBufferStamp operator-(const cBufferStamp& i_other) const
    {
        return {qint64(quint64(m_stamp) - quint64(i_other.m_stamp)),
            qint64(quint64(m_time) - quint64(i_other.m_time))};
    }

    /** This stamp moved forward by a difference, each field separately, modulo 2^64. */
    constexpr cBufferStamp movedBy(const cBufferStamp& i_difference) const
    {
        return {qint64(quint64(m_stamp) + quint64(i_difference.m_stamp)),
            qint64(quint64(m_time) + quint64(i_difference.m_time))};
    }

private:
    qint64 m_stamp = s_invalid;
    qint64 m_time = 0;
};

Q_DECLARE_METATYPE(cBufferStamp)
