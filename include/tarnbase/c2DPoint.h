#pragma once

#include <tarnbase/cVector.h>
#include <tarnbase/export.h>

#include <QMetaType>

class QTextStream;

/** A point or a size in the plane. */
template <class T> class TARNBASE_EXPORT c2DPoint {
public:
    constexpr c2DPoint() = default;
    constexpr c2DPoint(T i_x, T i_y) : m_x(i_x), m_y(i_y) {}
    /** The first two numbers of the vector; a missing one is 0. */
    explicit c2DPoint(const cVector<T>& i_vector) : m_x(i_vector[0]), m_y(i_vector[1]) {}

    constexpr T getX() const { return m_x; }
    constexpr T getY() const { return m_y; }
    constexpr void setX(T i_x) { m_x = i_x; }
    constexpr void setY(T i_y) { m_y = i_y; }

    friend constexpr bool operator==(const c2DPoint&, const c2DPoint&) = default;

private:
    T m_x {};
    T m_y {};
};

/** Write "(x,y)". */
TARNBASE_EXPORT QTextStream& operator<<(QTextStream& io_stream, const c2DPoint<int>& i_point);
TARNBASE_EXPORT QTextStream& operator<<(QTextStream& io_stream, const c2DPoint<float>& i_point);
TARNBASE_EXPORT QTextStream& operator<<(QTextStream& io_stream, const c2DPoint<double>& i_point);

Q_DECLARE_METATYPE(c2DPoint<int>)
Q_DECLARE_METATYPE(c2DPoint<float>)
Q_DECLARE_METATYPE(c2DPoint<double>)
