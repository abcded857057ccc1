#pragma once

#include <QList>
#include <QtGlobal>
#include <cmath>
#include <limits>
#include <type_traits>

/**
 * The ranges of the last frames, of which an automatic range takes the mean.
 *
 * Values are kept as T: of int their fractions are lost. The sum of floats is a whole number too, cut after
 * each step, so fractional ranges are drawn towards whole numbers. What int cannot hold counts as its limit.
 */
template <class T> class cRangeHistory {
public:
    struct Limits {
        double low;
        double high; ///< Below low if a quantile was above one half.
    };

    unsigned getCount() const { return unsigned(m_lows.size()); }

    /**
     * Adds a range and gives the mean of all that are kept. If they become more than i_most, the oldest one
     * goes, and only that: after i_most was lowered the list keeps its length.
     */
    Limits add(const Limits& i_range, unsigned i_most)
    {
        m_lows.append(entry(i_range.low));
        m_highs.append(entry(i_range.high));
        if (getCount() > i_most) {
            m_lows.removeFirst();
            m_highs.removeFirst();
        }
        return {double(sum(m_lows)) / getCount(), double(sum(m_highs)) / getCount()};
    }

private:
    static int toInt(double i_value)
    {
        if (!(i_value > std::numeric_limits<int>::min()))
            return std::isnan(i_value) ? 0 : std::numeric_limits<int>::min();
        return i_value < std::numeric_limits<int>::max() ? int(i_value) : std::numeric_limits<int>::max();
    }
    static T entry(double i_value)
    {
        if constexpr (std::is_integral_v<T>)
            return toInt(i_value);
        else
            return T(i_value);
    }
    static qint64 sum(const QList<T>& i_values)
    {
        qint64 sum = 0;
        for (const T value : i_values) {
            if constexpr (std::is_integral_v<T>)
                sum += value;
            else
                sum = toInt(double(T(sum) + value));
        }
        return sum;
    }

    QList<T> m_lows;
    QList<T> m_highs;
};
