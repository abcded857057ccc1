#pragma once

#include <QColor>
#include <QPainterPath>
#include <QVector>
#include <tarnbase/c2DLine.h>
#include <tarnbase/c2DPoint.h>
#include <tarnbase/cMatrix.h>

/**
 * The value types whose buffers and ports this library instantiates: apply(T) for each.
 *
 * One list serves the declarations (`extern template`) and the one source with the instances. The
 * declarations repeat the export mark: a type such as QVector<int>, which has none itself, would hide the
 * instance.
 */
#define TARNFLOW_VALUE_TYPES(apply)                                                                          \
    apply(double) apply(float) apply(int) apply(QColor) apply(QPainterPath) apply(c2DPoint<int>)             \
        apply(cMatrix<float>) apply(QVector<int>) apply(QVector<float>) apply(QVector<QVector<int>>)         \
            apply(QVector<c2DPoint<int>>) apply(QVector<c2DLine<float>>)

/**
 * How many buffers the pool of an output of this type holds when nobody says otherwise. Values are small; a
 * library whose values are large specialises this.
 */
template <class T> inline constexpr unsigned int defaultPoolSize = 50000;
