#include "textForm.h"

#include <QDataStream>
#include <QVarLengthArray>

#include <charconv>
#include <cmath>
#include <limits>
#include <type_traits>
#include <vector>

namespace {

template <class T> constexpr bool isReal = std::is_floating_point_v<T>;

template <class T> QString numberText(T i_value)
{
    if constexpr (isReal<T>)
        if (std::isnan(i_value))
            return QStringLiteral("nan"); // without a sign, which no platform promises
    char text[32];
    const auto end = std::to_chars(text, text + sizeof(text), i_value).ptr;
    return QString::fromLatin1(text, int(end - text));
}

// The whole text, blanks at its ends aside, is one number within the range of T.
template <class T> bool readNumber(QStringView i_text, T& o_value)
{
    const QStringView trimmed = i_text.trimmed();
    QVarLengthArray<char, 64> text(int(trimmed.size()));
    for (int i = 0; i < text.size(); ++i)
        text[i] = trimmed[i].unicode() < 128 ? char(trimmed[i].unicode()) : '?';
    const char* begin = text.data();
    const char* const end = begin + text.size();

    const bool plus = begin != end && *begin == '+';
    if (plus)
        ++begin;
    if (begin == end || (plus && *begin == '-'))
        return false;

    if constexpr (isReal<T>) {
        T value {};
        const auto result = std::from_chars(begin, end, value);
        if (result.ec != std::errc() || result.ptr != end)
            return false;
        o_value = value;
        return true;
    } else {
        const bool negative = *begin == '-';
        const char* digits = begin + (negative ? 1 : 0);
        const bool hexadecimal
            = end - digits > 2 && digits[0] == '0' && (digits[1] == 'x' || digits[1] == 'X');
        if (hexadecimal)
            digits += 2;
        quint64 magnitude = 0;
        const auto result = std::from_chars(digits, end, magnitude, hexadecimal ? 16 : 10);
        if (digits == end || result.ec != std::errc() || result.ptr != end)
            return false;
        if (magnitude > (quint64(1) << 32))
            return false;
        const qint64 value = negative ? -qint64(magnitude) : qint64(magnitude);
        if (value < qint64(std::numeric_limits<T>::min()) || value > qint64(std::numeric_limits<T>::max()))
            return false;
        o_value = T(value);
        return true;
    }
}

template <class T> QString expectedNumber()
{
    const QString limits = QLatin1String(" from ") + numberText(std::numeric_limits<T>::lowest())
        + QLatin1String(" to ") + numberText(std::numeric_limits<T>::max());
    return (isReal<T> ? QLatin1String("a number") : QLatin1String("an integer")) + limits;
}

bool fail(QString* o_error, const QString& i_expected, QStringView i_text)
{
    if (o_error != nullptr)
        *o_error = textForm::complaint(i_expected, i_text);
    return false;
}

template <class T> bool numberFromText(const QString& i_text, T& o_value, QString* o_error)
{
    return readNumber(QStringView(i_text), o_value) || fail(o_error, expectedNumber<T>(), i_text);
}

// The next part of a list, up to a separator or the end; io_rest keeps what follows, null after the last
// part.
QStringView nextPart(QStringView& io_rest, QChar i_separator)
{
    for (int i = 0; i < io_rest.size(); ++i) {
        if (io_rest[i] == i_separator) {
            const QStringView part = io_rest.left(i);
            io_rest = io_rest.mid(i + 1);
            return part;
        }
    }
    const QStringView part = io_rest;
    io_rest = QStringView();
    return part;
}

// Exactly count numbers between separators.
template <class T> bool readNumbers(QStringView i_text, QChar i_separator, int i_count, T* o_values)
{
    QStringView rest = i_text;
    for (int i = 0; i < i_count; ++i) {
        if (rest.isNull() || !readNumber(nextPart(rest, i_separator), o_values[i]))
            return false;
    }
    return rest.isNull();
}

template <class T> QString joined(std::initializer_list<T> i_values, QChar i_separator)
{
    QString text;
    for (const T value : i_values) {
        if (!text.isEmpty())
            text += i_separator;
        text += numberText(value);
    }
    return text;
}

constexpr QLatin1Char s_comma(',');

// An empty matrix still has a row and a column count: "3x0:".
template <class E> QString matrixText(const cMatrix<E>& i_matrix)
{
    if (i_matrix.isEmpty())
        return numberText(i_matrix.getRowCount()) + QLatin1Char('x') + numberText(i_matrix.getColumnCount())
            + QLatin1Char(':');
    QString text;
    const E* value = i_matrix.data();
    for (unsigned int row = 0; row < i_matrix.getRowCount(); ++row) {
        for (unsigned int column = 0; column < i_matrix.getColumnCount(); ++column) {
            if (column > 0)
                text += s_comma;
            else if (row > 0)
                text += QLatin1Char(';');
            text += numberText(*value++);
        }
    }
    return text;
}

template <class E> bool readMatrix(QStringView i_text, cMatrix<E>& o_matrix)
{
    QStringView rest = i_text;
    const QStringView sizes = nextPart(rest, QLatin1Char(':'));
    unsigned int declared[2] = {0, 0};
    const bool isDeclared = !rest.isNull();
    if (isDeclared && !readNumbers(sizes, QLatin1Char('x'), 2, declared))
        return false;

    std::vector<E> values;
    unsigned int rows = 0;
    unsigned int columns = 0;
    QStringView body = isDeclared ? rest : i_text;
    if (body.trimmed().isEmpty())
        body = QStringView();
    while (!body.isNull()) {
        QStringView row = nextPart(body, QLatin1Char(';'));
        unsigned int count = 0;
        do {
            E value {};
            if (!readNumber(nextPart(row, s_comma), value))
                return false;
            values.push_back(value);
            ++count;
        } while (!row.isNull());
        if (rows++ == 0)
            columns = count;
        else if (count != columns)
            return false;
    }
    if (isDeclared && values.empty() && quint64(declared[0]) * declared[1] == 0) {
        o_matrix = cMatrix<E>(declared[0], declared[1]);
        return true;
    }
    if (isDeclared && (declared[0] != rows || declared[1] != columns))
        return false;
    o_matrix = cMatrix<E>(rows, columns, values.data());
    return true;
}

template <class E> bool matrixFromText(const QString& i_text, cMatrix<E>& o_value, QString* o_error)
{
    return readMatrix(QStringView(i_text), o_value)
        || fail(o_error,
            QLatin1String("rows of equal length such as 1,2,3;4,5,6, each element ") + expectedNumber<E>(),
            i_text);
}

// What a QColor holds: its kind of components and their 16 bits each, alpha first.
struct ColourParts {
    qint8 spec = 0;
    quint16 values[5] = {};
};
constexpr const char* s_colourSpecs[] = {"invalid", "rgb", "hsv", "cmyk", "hsl", "extendedRgb"};

ColourParts partsOf(const QColor& i_colour)
{
    QByteArray bytes;
    QDataStream out(&bytes, QIODevice::WriteOnly);
    out.setVersion(QDataStream::Qt_5_15);
    out << i_colour;
    QDataStream in(bytes);
    ColourParts parts;
    in >> parts.spec;
    for (quint16& value : parts.values)
        in >> value;
    return parts;
}

QColor colourOf(const ColourParts& i_parts)
{
    QByteArray bytes;
    QDataStream out(&bytes, QIODevice::WriteOnly);
    out << i_parts.spec;
    for (const quint16 value : i_parts.values)
        out << value;
    QDataStream in(bytes);
    in.setVersion(QDataStream::Qt_5_15);
    QColor colour;
    in >> colour;
    return colour;
}

bool isEightBit(const ColourParts& i_parts)
{
    for (int i = 0; i < 4; ++i)
        if (i_parts.values[i] % 0x101 != 0)
            return false;
    return i_parts.spec == QColor::Rgb && i_parts.values[4] == 0;
}

// "hsv(65535,12000,65535,65535,0)": a colour that has more than eight bits, or no red, green and blue at all.
bool readColourParts(QStringView i_text, QColor& o_colour)
{
    const QStringView text = i_text.trimmed();
    for (qint8 spec = 1; spec < qint8(std::size(s_colourSpecs)); ++spec) {
        const QLatin1String name(s_colourSpecs[spec]);
        if (!text.startsWith(name) || text.size() < name.size() + 2)
            continue;
        const QStringView rest = text.mid(name.size());
        ColourParts parts;
        parts.spec = spec;
        if (rest.front() != QLatin1Char('(') || rest.back() != QLatin1Char(')')
            || !readNumbers(rest.mid(1, rest.size() - 2), s_comma, 5, parts.values))
            continue;
        const bool hasHue = spec == QColor::Hsv || spec == QColor::Hsl;
        if (hasHue && parts.values[1] > 36000 && parts.values[1] != 65535)
            return false;
        o_colour = colourOf(parts);
        return true;
    }
    return false;
}

bool isBareListElement(const QString& i_element)
{
    for (const QChar c : i_element) {
        const ushort code = c.unicode();
        const bool plain = (code >= 'a' && code <= 'z') || (code >= 'A' && code <= 'Z')
            || (code >= '0' && code <= '9') || code == '_' || code == '.' || code == '/' || code == ':'
            || code == '+' || code == '-';
        if (!plain)
            return false;
    }
    return !i_element.isEmpty();
}

bool readList(QStringView i_text, QStringList& o_list)
{
    QStringList list;
    if (i_text.trimmed().isEmpty()) {
        o_list = list;
        return true;
    }
    int position = 0;
    const int size = int(i_text.size());
    const auto skipBlanks = [&] {
        while (position < size && i_text[position].isSpace())
            ++position;
    };
    for (;;) {
        skipBlanks();
        QString element;
        if (position < size && i_text[position] == QLatin1Char('"')) {
            if (!textForm::unquote(i_text, position, element))
                return false;
            skipBlanks();
        } else {
            const int start = position;
            while (position < size && i_text[position] != s_comma)
                ++position;
            element = i_text.mid(start, position - start).trimmed().toString();
        }
        list.append(element);
        if (position == size)
            break;
        if (i_text[position++] != s_comma)
            return false;
    }
    o_list = list;
    return true;
}

} // namespace

namespace textForm {

QString toText(bool i_value) { return i_value ? QStringLiteral("true") : QStringLiteral("false"); }
QString toText(int i_value) { return numberText(i_value); }
QString toText(unsigned int i_value) { return numberText(i_value); }
QString toText(unsigned char i_value) { return numberText(unsigned(i_value)); }
QString toText(unsigned short i_value) { return numberText(unsigned(i_value)); }
QString toText(float i_value) { return numberText(i_value); }
QString toText(double i_value) { return numberText(i_value); }
QString toText(const QString& i_value) { return i_value; }

QString toText(const QStringList& i_value)
{
    QStringList elements;
    elements.reserve(i_value.size());
    for (const QString& element : i_value)
        elements.append(isBareListElement(element) ? element : quote(element));
    return elements.join(s_comma);
}

QString toText(const QColor& i_value)
{
    if (!i_value.isValid())
        return QString::fromLatin1(s_colourSpecs[0]);
    const ColourParts parts = partsOf(i_value);
    if (isEightBit(parts))
        return i_value.name(i_value.alpha() == 255 ? QColor::HexRgb : QColor::HexArgb);
    QString text = QString::fromLatin1(s_colourSpecs[parts.spec]) + QLatin1Char('(');
    for (const quint16 value : parts.values)
        text += numberText(unsigned(value)) + s_comma;
    text.back() = QLatin1Char(')');
    return text;
}

QString toText(const QSize& i_value) { return joined({i_value.width(), i_value.height()}, QLatin1Char('x')); }

QString toText(const c2DPoint<int>& i_value) { return joined({i_value.getX(), i_value.getY()}, s_comma); }

QString toText(const cRect<int>& i_value)
{
    return joined({i_value.getLeft(), i_value.getTop(), i_value.getWidth(), i_value.getHeight()}, s_comma);
}

QString toText(const cRange<double>& i_value)
{
    return joined({i_value.getLow(), i_value.getHigh()}, s_comma);
}
QString toText(const cMatrix<int>& i_value) { return matrixText(i_value); }
QString toText(const cMatrix<float>& i_value) { return matrixText(i_value); }

bool fromText(const QString& i_text, bool& o_value, QString* o_error)
{
    const QString word = i_text.trimmed().toLower();
    for (const char* yes : {"true", "yes", "on", "1"}) {
        if (word == QLatin1String(yes)) {
            o_value = true;
            return true;
        }
    }
    for (const char* no : {"false", "no", "off", "0"}) {
        if (word == QLatin1String(no)) {
            o_value = false;
            return true;
        }
    }
    return fail(o_error, QStringLiteral("true or false"), i_text);
}

bool fromText(const QString& i_text, int& o_value, QString* o_error)
{
    return numberFromText(i_text, o_value, o_error);
}
bool fromText(const QString& i_text, unsigned int& o_value, QString* o_error)
{
    return numberFromText(i_text, o_value, o_error);
}
bool fromText(const QString& i_text, unsigned char& o_value, QString* o_error)
{
    return numberFromText(i_text, o_value, o_error);
}
bool fromText(const QString& i_text, unsigned short& o_value, QString* o_error)
{
    return numberFromText(i_text, o_value, o_error);
}
bool fromText(const QString& i_text, float& o_value, QString* o_error)
{
    return numberFromText(i_text, o_value, o_error);
}
bool fromText(const QString& i_text, double& o_value, QString* o_error)
{
    return numberFromText(i_text, o_value, o_error);
}

bool fromText(const QString& i_text, QString& o_value, QString*)
{
    o_value = i_text;
    return true;
}

bool fromText(const QString& i_text, QStringList& o_value, QString* o_error)
{
    return readList(i_text, o_value) || fail(o_error, QStringLiteral("a list such as a,b,\"c, d\""), i_text);
}

bool fromText(const QString& i_text, QColor& o_value, QString* o_error)
{
    const QString name = i_text.trimmed();
    if (name == QLatin1String(s_colourSpecs[0])) {
        o_value = QColor();
        return true;
    }
    if (readColourParts(name, o_value))
        return true;
    if (!QColor::isValidColor(name))
        return fail(o_error, QStringLiteral("a colour such as #ff8000, #80ff8000 or orange"), i_text);
    o_value.setNamedColor(name);
    return true;
}

bool fromText(const QString& i_text, QSize& o_value, QString* o_error)
{
    int sides[2];
    if (!readNumbers(QStringView(i_text), QLatin1Char('x'), 2, sides)
        && !readNumbers(QStringView(i_text), s_comma, 2, sides))
        return fail(o_error, QStringLiteral("width and height such as 640x480"), i_text);
    o_value = QSize(sides[0], sides[1]);
    return true;
}

bool fromText(const QString& i_text, c2DPoint<int>& o_value, QString* o_error)
{
    int numbers[2];
    if (!readNumbers(QStringView(i_text), s_comma, 2, numbers))
        return fail(o_error, QStringLiteral("two integers such as 5,5"), i_text);
    o_value = c2DPoint<int>(numbers[0], numbers[1]);
    return true;
}

bool fromText(const QString& i_text, cRect<int>& o_value, QString* o_error)
{
    int numbers[4];
    if (!readNumbers(QStringView(i_text), s_comma, 4, numbers))
        return fail(o_error, QStringLiteral("left, top, width and height such as 0,0,10,10"), i_text);
    o_value = cRect<int>(numbers[0], numbers[1], numbers[2], numbers[3]);
    return true;
}

bool fromText(const QString& i_text, cRange<double>& o_value, QString* o_error)
{
    double numbers[2];
    if (!readNumbers(QStringView(i_text), s_comma, 2, numbers))
        return fail(o_error, QStringLiteral("low and high such as 0,255"), i_text);
    o_value = cRange<double>(numbers[0], numbers[1]);
    return true;
}

bool fromText(const QString& i_text, cMatrix<int>& o_value, QString* o_error)
{
    return matrixFromText(i_text, o_value, o_error);
}
bool fromText(const QString& i_text, cMatrix<float>& o_value, QString* o_error)
{
    return matrixFromText(i_text, o_value, o_error);
}

} // namespace textForm
