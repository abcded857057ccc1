// The texts of values as they stand in traces and audits, for people: numbers as the stream writes them.
#include "textForm.h"

#include <tarnbase/c2DLine.h>
#include <tarnbase/cColour.h>

#include <QTextStream>

namespace {

template <class T> QTextStream& writePoint(QTextStream& io_stream, const c2DPoint<T>& i_point)
{
    return io_stream << '(' << i_point.getX() << ',' << i_point.getY() << ')';
}

template <class E> QTextStream& writeMatrix(QTextStream& io_stream, const cMatrix<E>& i_matrix)
{
    io_stream << i_matrix.getRowCount() << ", " << i_matrix.getColumnCount();
    const E* const values = i_matrix.data();
    for (std::size_t i = 0; i < i_matrix.getElementCount(); ++i)
        io_stream << ", " << values[i];
    return io_stream;
}

} // namespace

QTextStream& operator<<(QTextStream& io_stream, const QColor& i_colour)
{
    return io_stream << textForm::toText(i_colour);
}

QTextStream& operator<<(QTextStream& io_stream, const cRange<double>& i_range)
{
    return io_stream << i_range.getLow() << ',' << i_range.getHigh();
}

QTextStream& operator<<(QTextStream& io_stream, const cRect<int>& i_rect)
{
    return io_stream << i_rect.getLeft() << ',' << i_rect.getTop() << ',' << i_rect.getWidth() << ','
                     << i_rect.getHeight();
}

QTextStream& operator<<(QTextStream& io_stream, const c2DPoint<int>& i_point)
{
    return writePoint(io_stream, i_point);
}
QTextStream& operator<<(QTextStream& io_stream, const c2DPoint<float>& i_point)
{
    return writePoint(io_stream, i_point);
}
QTextStream& operator<<(QTextStream& io_stream, const c2DPoint<double>& i_point)
{
    return writePoint(io_stream, i_point);
}

QTextStream& operator<<(QTextStream& io_stream, const c2DLine<float>& i_line)
{
    return io_stream << i_line.getStartPoint() << '-' << i_line.getEndPoint();
}

QTextStream& operator<<(QTextStream& io_stream, const cMatrix<int>& i_matrix)
{
    return writeMatrix(io_stream, i_matrix);
}
QTextStream& operator<<(QTextStream& io_stream, const cMatrix<float>& i_matrix)
{
    return writeMatrix(io_stream, i_matrix);
}
QTextStream& operator<<(QTextStream& io_stream, const cMatrix<double>& i_matrix)
{
    return writeMatrix(io_stream, i_matrix);
}
