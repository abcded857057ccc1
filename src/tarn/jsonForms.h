#pragma once

#include "cValueForm.h"

#include <QColor>
#include <QJsonArray>
#include <QPainterPath>
#include <QVector>
#include <tarnbase/c2DLine.h>
#include <tarnbase/c2DPoint.h>
#include <tarnbase/cMatrix.h>

/**
 * The JSON form of each type. `write` appends it; `read` gives false, and tells what was expected, for JSON
 * of another form.
 */
namespace jsonForms {

void write(double i_value, QByteArray& io_json);
void write(float i_value, QByteArray& io_json);
void write(int i_value, QByteArray& io_json);
void write(const QColor& i_value, QByteArray& io_json);
void write(const c2DPoint<int>& i_value, QByteArray& io_json);
void write(const c2DPoint<float>& i_value, QByteArray& io_json);
void write(const c2DLine<float>& i_value, QByteArray& io_json);
void write(const cMatrix<float>& i_value, QByteArray& io_json);
void write(const QPainterPath& i_value, QByteArray& io_json);

bool read(const QJsonValue& i_json, double& o_value, cJsonProblem& o_problem);
bool read(const QJsonValue& i_json, float& o_value, cJsonProblem& o_problem);
bool read(const QJsonValue& i_json, int& o_value, cJsonProblem& o_problem);
bool read(const QJsonValue& i_json, QColor& o_value, cJsonProblem& o_problem);
bool read(const QJsonValue& i_json, c2DPoint<int>& o_value, cJsonProblem& o_problem);
bool read(const QJsonValue& i_json, c2DPoint<float>& o_value, cJsonProblem& o_problem);
bool read(const QJsonValue& i_json, c2DLine<float>& o_value, cJsonProblem& o_problem);
bool read(const QJsonValue& i_json, cMatrix<float>& o_value, cJsonProblem& o_problem);
bool read(const QJsonValue& i_json, QPainterPath& o_value, cJsonProblem& o_problem);

template <class T> void write(const QVector<T>& i_values, QByteArray& io_json);
template <class T> bool read(const QJsonValue& i_json, QVector<T>& o_values, cJsonProblem& o_problem);

/** Notes what was expected. @return false */
bool refuse(const QJsonValue& i_json, const QString& i_expected, cJsonProblem& o_problem);

template <class T> void write(const QVector<T>& i_values, QByteArray& io_json)
{
    const char* separator = "[";
    for (const T& value : i_values) {
        io_json += separator;
        write(value, io_json);
        separator = ",";
    }
    io_json += i_values.isEmpty() ? "[]" : "]";
}

/** Reads an element of an array; a problem in it gets its index. */
template <class T>
bool readElement(const QJsonArray& i_array, int i_index, T& o_value, cJsonProblem& o_problem)
{
    if (read(i_array[i_index], o_value, o_problem))
        return true;
    o_problem.path.prepend(i_index);
    return false;
}

template <class T> bool read(const QJsonValue& i_json, QVector<T>& o_values, cJsonProblem& o_problem)
{
    if (!i_json.isArray())
        return refuse(i_json, QStringLiteral("an array"), o_problem);
    const QJsonArray array = i_json.toArray();
    o_values.resize(array.size());
    for (int i = 0; i < array.size(); ++i)
        if (!readElement(array, i, o_values[i], o_problem))
            return false;
    return true;
}

} // namespace jsonForms
