#include "jsonForms.h"

#include <charconv>
#include <cmath>
#include <limits>
#include <tarnbase/cDataValObj.h>

namespace jsonForms {
namespace {

template <class T> void writeNumber(T i_value, QByteArray& io_json)
{
    if (std::isnan(i_value)) {
        io_json += "\"nan\"";
    } else if (std::isinf(i_value)) {
        io_json += i_value < 0 ? "\"-inf\"" : "\"inf\"";
    } else if (i_value == 0) {
        // Most readers take -0 for an integer, which has no sign.
        io_json += std::signbit(i_value) ? "-0.0" : "0";
    } else {
        char text[32];
        io_json.append(text, int(std::to_chars(text, text + sizeof text, i_value).ptr - text));
    }
}

template <class T> bool readNumber(const QJsonValue& i_json, T& o_value, cJsonProblem& o_problem)
{
    if (i_json.isDouble()) {
        const double value = i_json.toDouble();
        o_value = T(value);
        if (std::isfinite(o_value))
            return true;
        return refuse(i_json, QStringLiteral("a number of single precision"), o_problem);
    }
    const QString word = i_json.toString();
    constexpr T infinity = std::numeric_limits<T>::infinity();
    if (word == QLatin1String("nan"))
        o_value = std::numeric_limits<T>::quiet_NaN();
    else if (word == QLatin1String("inf"))
        o_value = infinity;
    else if (word == QLatin1String("-inf"))
        o_value = -infinity;
    else
        return refuse(i_json, QStringLiteral("a number, \"nan\", \"inf\" or \"-inf\""), o_problem);
    return true;
}

template <class T> void writePoint(const c2DPoint<T>& i_value, QByteArray& io_json)
{
    io_json += '[';
    write(i_value.getX(), io_json);
    io_json += ',';
    write(i_value.getY(), io_json);
    io_json += ']';
}

template <class T> bool readPoint(const QJsonValue& i_json, c2DPoint<T>& o_value, cJsonProblem& o_problem)
{
    const QJsonArray array = i_json.toArray();
    if (array.size() != 2)
        return refuse(i_json, QStringLiteral("a point, [x, y]"), o_problem);
    T x, y;
    if (!readElement(array, 0, x, o_problem) || !readElement(array, 1, y, o_problem))
        return false;
    o_value = c2DPoint<T>(x, y);
    return true;
}

/** The coordinates of a path's element behind its letter. */
bool readPoints(const QJsonArray& i_array, QPointF* o_points, int i_count, cJsonProblem& o_problem)
{
    for (int i = 0; i < i_count; ++i) {
        double x, y;
        if (!readElement(i_array, 2 * i + 1, x, o_problem) || !readElement(i_array, 2 * i + 2, y, o_problem))
            return false;
        o_points[i] = QPointF(x, y);
    }
    return true;
}

bool readPathElement(const QJsonValue& i_json, QPainterPath& io_path, cJsonProblem& o_problem)
{
    const QJsonArray array = i_json.toArray();
    const QString letter = array.at(0).toString();
    QPointF points[3];
    if (letter == QLatin1String("M") && array.size() == 3) {
        if (!readPoints(array, points, 1, o_problem))
            return false;
        io_path.moveTo(points[0]);
    } else if (letter == QLatin1String("L") && array.size() == 3) {
        if (!readPoints(array, points, 1, o_problem))
            return false;
        io_path.lineTo(points[0]);
    } else if (letter == QLatin1String("C") && array.size() == 7) {
        if (!readPoints(array, points, 3, o_problem))
            return false;
        io_path.cubicTo(points[0], points[1], points[2]);
    } else {
        return refuse(
            i_json, QStringLiteral("[\"M\", x, y], [\"L\", x, y] or [\"C\", x, y, x, y, x, y]"), o_problem);
    }
    return true;
}

} // namespace

bool refuse(const QJsonValue& i_json, const QString& i_expected, cJsonProblem& o_problem)
{
    o_problem = {{}, i_expected, i_json};
    return false;
}

void write(double i_value, QByteArray& io_json) { writeNumber(i_value, io_json); }
void write(float i_value, QByteArray& io_json) { writeNumber(i_value, io_json); }
void write(int i_value, QByteArray& io_json) { io_json += QByteArray::number(i_value); }

void write(const QColor& i_value, QByteArray& io_json)
{
    io_json += i_value.isValid() ? host::jsonString(cDataValObj<QColor>(i_value, 0).toText())
                                 : QByteArrayLiteral("null");
}

void write(const c2DPoint<int>& i_value, QByteArray& io_json) { writePoint(i_value, io_json); }
void write(const c2DPoint<float>& i_value, QByteArray& io_json) { writePoint(i_value, io_json); }

void write(const c2DLine<float>& i_value, QByteArray& io_json)
{
    write(QVector<c2DPoint<float>> {i_value.getStartPoint(), i_value.getEndPoint()}, io_json);
}

void write(const cMatrix<float>& i_value, QByteArray& io_json)
{
    QVector<QVector<float>> rows(int(i_value.getRowCount()));
    const float* element = i_value.data();
    for (QVector<float>& row : rows) {
        row.resize(int(i_value.getColumnCount()));
        for (float& value : row)
            value = *element++;
    }
    write(rows, io_json);
}

void write(const QPainterPath& i_value, QByteArray& io_json)
{
    const char* separator = "[";
    const auto writePoint = [&](const QPainterPath::Element& element) {
        io_json += ',';
        write(element.x, io_json);
        io_json += ',';
        write(element.y, io_json);
    };
    for (int i = 0; i < i_value.elementCount(); ++i) {
        const QPainterPath::Element element = i_value.elementAt(i);
        io_json += separator;
        io_json += element.isMoveTo() ? "[\"M\"" : element.isLineTo() ? "[\"L\"" : "[\"C\"";
        writePoint(element);
        if (element.isCurveTo()) {
            writePoint(i_value.elementAt(++i));
            writePoint(i_value.elementAt(++i));
        }
        io_json += ']';
        separator = ",";
    }
    io_json += i_value.isEmpty() ? "[]" : "]";
}

bool read(const QJsonValue& i_json, double& o_value, cJsonProblem& o_problem)
{
    return readNumber(i_json, o_value, o_problem);
}

bool read(const QJsonValue& i_json, float& o_value, cJsonProblem& o_problem)
{
    return readNumber(i_json, o_value, o_problem);
}

bool read(const QJsonValue& i_json, int& o_value, cJsonProblem& o_problem)
{
    const double value = i_json.toDouble(0.5);
    constexpr int least = std::numeric_limits<int>::min();
    constexpr int most = std::numeric_limits<int>::max();
    if (value != std::floor(value) || value < least || value > most)
        return refuse(i_json, QStringLiteral("an integer from %1 to %2").arg(least).arg(most), o_problem);
    o_value = int(value);
    return true;
}

bool read(const QJsonValue& i_json, QColor& o_value, cJsonProblem& o_problem)
{
    o_value = QColor();
    if (i_json.isNull())
        return true;
    cDataValObj<QColor> colour(QColor(), 0);
    if (!i_json.isString() || !colour.setFromText(i_json.toString()))
        return refuse(i_json, QStringLiteral("a colour such as \"#ff8000\" or \"red\", or null"), o_problem);
    o_value = *static_cast<const QColor*>(colour.getData());
    return true;
}

bool read(const QJsonValue& i_json, c2DPoint<int>& o_value, cJsonProblem& o_problem)
{
    return readPoint(i_json, o_value, o_problem);
}

bool read(const QJsonValue& i_json, c2DPoint<float>& o_value, cJsonProblem& o_problem)
{
    return readPoint(i_json, o_value, o_problem);
}

bool read(const QJsonValue& i_json, c2DLine<float>& o_value, cJsonProblem& o_problem)
{
    const QJsonArray array = i_json.toArray();
    if (array.size() != 2)
        return refuse(i_json, QStringLiteral("a line, [[x, y], [x, y]]"), o_problem);
    c2DPoint<float> start, end;
    if (!readElement(array, 0, start, o_problem) || !readElement(array, 1, end, o_problem))
        return false;
    o_value = c2DLine<float>(start.getX(), start.getY(), end.getX(), end.getY());
    return true;
}

bool read(const QJsonValue& i_json, cMatrix<float>& o_value, cJsonProblem& o_problem)
{
    QVector<QVector<float>> rows;
    if (!read(i_json, rows, o_problem))
        return false;
    const int columns = rows.isEmpty() ? 0 : rows.first().size();
    cMatrix<float> matrix(unsigned(rows.size()), unsigned(columns));
    float* element = matrix.data();
    for (int i = 0; i < rows.size(); ++i) {
        if (rows[i].size() != columns) {
            o_problem = {{i}, QStringLiteral("a row of %1 numbers, as the first one").arg(columns),
                i_json.toArray().at(i)};
            return false;
        }
        element = std::copy(rows[i].cbegin(), rows[i].cend(), element);
    }
    o_value = matrix;
    return true;
}

bool read(const QJsonValue& i_json, QPainterPath& o_value, cJsonProblem& o_problem)
{
    if (!i_json.isArray())
        return refuse(i_json, QStringLiteral("an array"), o_problem);
    const QJsonArray array = i_json.toArray();
    o_value = QPainterPath();
    for (int i = 0; i < array.size(); ++i) {
        if (readPathElement(array[i], o_value, o_problem))
            continue;
        o_problem.path.prepend(i);
        return false;
    }
    return true;
}

} // namespace jsonForms
