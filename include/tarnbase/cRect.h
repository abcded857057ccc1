#pragma once

#include <tarnbase/export.h>

#include <QMetaType>

#include <algorithm>
#include <limits>

class QTextStream;

/**
 * A rectangle of pixels: it holds the columns from left up to, but without, left + width, and rows likewise.
 *
 * Any four numbers may be stored; a rectangle whose width or height is not positive holds no pixel. Edges are
 * computed in 64 bits, and a result beyond the numbers of T is cut to them, so that nothing overflows.
 */
template <class T> class TARNBASE_EXPORT cRect {
    static_assert(std::numeric_limits<T>::is_integer && sizeof(T) <= 4);

public:
    constexpr cRect() = default;
    constexpr cRect(T i_left, T i_top, T i_width, T i_height)
        : m_left(i_left),
          m_top(i_top),
          m_width(i_width),
          m_height(i_height)
    {
    }

    constexpr T getLeft() const { return m_left; }
    constexpr T getTop() const { return m_top; }
    constexpr T getWidth() const { return m_width; }
    constexpr T getHeight() const { return m_height; }

    /** First column right of the rectangle. */
    constexpr qint64 getRight() const { return qint64(m_left) + m_width; }
    /** First row below the rectangle. */
    constexpr qint64 getBottom() const { return qint64(m_top) + m_height; }

    constexpr bool isEmpty() const { return m_width <= 0 || m_height <= 0; }
    constexpr bool isValid() const { return !isEmpty(); }
    constexpr bool contains(T i_x, T i_y) const
    {
        return i_x >= m_left && i_x < getRight() && i_y >= m_top && i_y < getBottom();
    }

    /** The common pixels; the default rectangle if there are none. */
    friend constexpr cRect operator&(const cRect& i_a, const cRect& i_b)
    {
        if (i_a.isEmpty() || i_b.isEmpty())
            return {};
        const cRect common = fromEdges(std::max(i_a.m_left, i_b.m_left), std::max(i_a.m_top, i_b.m_top),
            std::min(i_a.getRight(), i_b.getRight()), std::min(i_a.getBottom(), i_b.getBottom()));
        return common.isEmpty() ? cRect() : common;
    }
    constexpr cRect& operator&=(const cRect& i_other) { return *this = *this & i_other; }

    /** The smallest rectangle that holds both; an empty one adds nothing. */
    constexpr cRect unite(const cRect& i_other) const
    {
        if (isEmpty())
            return i_other.isEmpty() ? cRect() : i_other;
        if (i_other.isEmpty())
            return *this;
        return fromEdges(std::min(m_left, i_other.m_left), std::min(m_top, i_other.m_top),
            std::max(getRight(), i_other.getRight()), std::max(getBottom(), i_other.getBottom()));
    }

    constexpr cRect translated(T i_dx, T i_dy) const
    {
        return cRect(clamp(qint64(m_left) + i_dx), clamp(qint64(m_top) + i_dy), m_width, m_height);
    }

    friend constexpr bool operator==(const cRect&, const cRect&) = default;

private:
    static constexpr T clamp(qint64 i_value)
    {
        return T(std::clamp<qint64>(i_value, std::numeric_limits<T>::min(), std::numeric_limits<T>::max()));
    }
    static constexpr cRect fromEdges(T i_left, T i_top, qint64 i_right, qint64 i_bottom)
    {
        return cRect(i_left, i_top, clamp(i_right - i_left), clamp(i_bottom - i_top));
    }

    T m_left {};
    T m_top {};
    T m_width {};
    T m_height {};
};

/** Writes "left,top,width,height". */
TARNBASE_EXPORT QTextStream& operator<<(QTextStream& io_stream, const cRect<int>& i_rect);

Q_DECLARE_METATYPE(cRect<int>)
