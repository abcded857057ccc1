#pragma once

#include <QPainterPath>
#include <QPolygonF>
#include <QTextStream>
#include <QVector>
#include <tarnbase/c2DLine.h>
#include <tarnbase/c2DPoint.h>
#include <tarnbase/cColour.h>
#include <tarnbase/cMatrix.h>

/**
 * The text form of a value that travels through ports, for audits and queue listings.
 *
 * The general form is what `operator<<` of QTextStream writes. A library whose value types have another one
 * specialises this template beside the type.
 */
template <class T> struct cValueText {
    static void write(QTextStream& io_stream, const T& i_value) { io_stream << i_value; }
};

/** The elements separated by ", "; a vector of vectors is written as one row of elements. */
template <class T> struct cValueText<QVector<T>> {
    static void write(QTextStream& io_stream, const QVector<T>& i_values)
    {
        const char* separator = "";
        for (const T& value : i_values) {
            io_stream << separator;
            cValueText<T>::write(io_stream, value);
            separator = ", ";
        }
    }
};

/** Row count, column count and the elements row by row, separated by ", ". */
template <class T> struct cValueText<cMatrix<T>> {
    static void write(QTextStream& io_stream, const cMatrix<T>& i_matrix)
    {
        io_stream << i_matrix.getRowCount() << ", " << i_matrix.getColumnCount();
        const T* element = i_matrix.data();
        for (std::size_t left = i_matrix.getElementCount(); left > 0; --left)
            io_stream << ", " << *element++;
    }
};

/** "(x:y)" for each point of the path's fill polygon, with nothing between the points. */
template <> struct cValueText<QPainterPath> {
    static void write(QTextStream& io_stream, const QPainterPath& i_path)
    {
        const QPolygonF polygon = i_path.toFillPolygon();
        for (const QPointF& point : polygon)
            io_stream << "(" << point.x() << ":" << point.y() << ")";
    }
};
