#pragma once

#include <tarnbase/c2DPoint.h>

/** A line segment in the plane, from its start to its end. */
template <class T> class TARNBASE_EXPORT c2DLine {
public:
    constexpr c2DLine() = default;
    constexpr c2DLine(T i_startX, T i_startY, T i_endX, T i_endY)
        : m_start(i_startX, i_startY),
          m_end(i_endX, i_endY)
    {
    }

    constexpr c2DPoint<T> getStartPoint() const { return m_start; }
    constexpr c2DPoint<T> getEndPoint() const { return m_end; }
    /** The way from start to end, not normalised. */
    cVector<T> getDir() const
    {
        return cVector<T>(m_end.getX() - m_start.getX(), m_end.getY() - m_start.getY());
    }

    friend constexpr bool operator==(const c2DLine&, const c2DLine&) = default;

private:
    c2DPoint<T> m_start;
    c2DPoint<T> m_end;
};

/** Writes "(x,y)-(x,y)". */
TARNBASE_EXPORT QTextStream& operator<<(QTextStream& io_stream, const c2DLine<float>& i_line);

Q_DECLARE_METATYPE(c2DLine<float>)
