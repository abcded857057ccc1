#include "npyHeader.h"

#include "fileBytes.h"

#include <QtEndian>
#include <cstring>
#include <limits>
#include <optional>

namespace {

constexpr char s_magic[] = "\x93NUMPY";
constexpr std::size_t s_magicBytes = 6;
constexpr int s_alignment = 64;

[[noreturn]] void fail(const QString& i_message) { host::raise(QStringLiteral("NPY: ") + i_message); }

/** Goes through the dictionary, which is a literal of Python. */
class cLiteral {
public:
    explicit cLiteral(const QByteArray& i_text) : m_text(i_text) {}

    bool take(char i_char)
    {
        skipBlanks();
        if (m_place >= m_text.size() || m_text[m_place] != i_char)
            return false;
        ++m_place;
        return true;
    }
    void expect(char i_char)
    {
        if (!take(i_char))
            damaged(QStringLiteral("'%1'").arg(QLatin1Char(i_char)));
    }
    QByteArray takeString()
    {
        const char quote = take('\'') ? '\'' : '"';
        if (quote == '"')
            expect('"');
        const int end = m_text.indexOf(quote, m_place);
        if (end < 0)
            damaged(QStringLiteral("a closing quote"));
        const QByteArray text = m_text.mid(m_place, end - m_place);
        m_place = end + 1;
        return text;
    }
    bool takeTruth()
    {
        skipBlanks();
        for (const bool truth : {false, true}) {
            const QByteArray word = truth ? QByteArrayLiteral("True") : QByteArrayLiteral("False");
            if (m_text.mid(m_place, word.size()) == word) {
                m_place += word.size();
                return truth;
            }
        }
        damaged(QStringLiteral("True or False"));
    }
    quint64 takeNumber()
    {
        skipBlanks();
        const int begin = m_place;
        while (m_place < m_text.size() && m_text[m_place] >= '0' && m_text[m_place] <= '9')
            ++m_place;
        bool good = false;
        const quint64 number = m_text.mid(begin, m_place - begin).toULongLong(&good);
        if (!good)
            damaged(QStringLiteral("a number"));
        if (m_place < m_text.size() && m_text[m_place] == 'L') // a long number of Python 2
            ++m_place;
        return number;
    }
    [[noreturn]] void damaged(const QString& i_expected) const
    {
        fail(
            QStringLiteral("the header is damaged at its byte %1, expected %2").arg(m_place).arg(i_expected));
    }

private:
    void skipBlanks()
    {
        while (m_place < m_text.size() && std::strchr(" \t\r\n", m_text[m_place]) && m_text[m_place])
            ++m_place;
    }

    const QByteArray m_text;
    int m_place = 0;
};

NpyHeader::Field makeField(const QByteArray& i_name, const QByteArray& i_type)
{
    const bool ordered = !i_type.isEmpty() && std::strchr("<>|=", i_type[0]);
    NpyHeader::Field field {i_name, ordered ? i_type[0] : '=', i_type.mid(ordered ? 1 : 0)};
    if (field.order == '=')
        field.order = Q_BYTE_ORDER == Q_LITTLE_ENDIAN ? '<' : '>';
    return field;
}

std::vector<NpyHeader::Field> takeFields(cLiteral& io_literal)
{
    if (!io_literal.take('['))
        return {makeField({}, io_literal.takeString())};
    std::vector<NpyHeader::Field> fields;
    while (!io_literal.take(']')) {
        io_literal.expect('(');
        const QByteArray name = io_literal.takeString();
        io_literal.expect(',');
        fields.push_back(makeField(name, io_literal.takeString()));
        io_literal.take(',');
        if (!io_literal.take(')'))
            fail(QStringLiteral("fields that are arrays or records themselves are not supported"));
        if (!io_literal.take(',')) {
            io_literal.expect(']');
            break;
        }
    }
    return fields;
}

std::vector<quint64> takeShape(cLiteral& io_literal)
{
    std::vector<quint64> shape;
    io_literal.expect('(');
    while (!io_literal.take(')')) {
        shape.push_back(io_literal.takeNumber());
        if (!io_literal.take(',')) {
            io_literal.expect(')');
            break;
        }
    }
    return shape;
}

void parseDictionary(const QByteArray& i_text, NpyHeader& o_header)
{
    cLiteral literal(i_text);
    bool hasType = false, hasOrder = false, hasShape = false;
    literal.expect('{');
    while (!literal.take('}')) {
        const QByteArray key = literal.takeString();
        literal.expect(':');
        if (key == "descr") {
            o_header.fields = takeFields(literal);
            hasType = true;
        } else if (key == "fortran_order") {
            o_header.fortranOrder = literal.takeTruth();
            hasOrder = true;
        } else if (key == "shape") {
            o_header.shape = takeShape(literal);
            hasShape = true;
        } else {
            fail(QStringLiteral(
                "unknown entry in the header, expected descr, fortran_order and shape, found '%1'")
                     .arg(QString::fromUtf8(key)));
        }
        if (!literal.take(',')) {
            literal.expect('}');
            break;
        }
    }
    if (!hasType || !hasOrder || !hasShape)
        fail(QStringLiteral("the header lacks one of descr, fortran_order and shape"));
}

} // namespace

QByteArray NpyHeader::typeText() const
{
    QByteArray text;
    for (const Field& field : fields) {
        const QByteArray type = '\'' + QByteArray(1, field.order) + field.type + '\'';
        if (field.name.isEmpty())
            return type;
        text += (text.isEmpty() ? "('" : ", ('") + field.name + "', " + type + ')';
    }
    return '[' + text + ']';
}

QByteArray NpyHeader::shapeText() const
{
    QByteArray text;
    for (const quint64 size : shape)
        text += (text.isEmpty() ? QByteArray() : QByteArrayLiteral(", ")) + QByteArray::number(size);
    return '(' + text + (shape.size() == 1 ? ",)" : ")");
}

namespace host {

NpyHeader parseNpyHeader(const unsigned char* i_data, std::size_t i_size)
{
    if (i_size < s_magicBytes + 2 || std::memcmp(i_data, s_magic, s_magicBytes) != 0)
        fail(QStringLiteral("not of this format"));
    const unsigned version = i_data[s_magicBytes];
    if (version < 1 || version > 3)
        fail(QStringLiteral("version %1 is not supported, expected 1 to 3").arg(version));
    const std::size_t lengthBytes = version == 1 ? 2 : 4;
    const std::size_t begin = s_magicBytes + 2 + lengthBytes;
    if (i_size < begin)
        fail(QStringLiteral("the file ends within the header"));
    const unsigned char* place = i_data + s_magicBytes + 2;
    const std::size_t length
        = version == 1 ? qFromLittleEndian<quint16>(place) : qFromLittleEndian<quint32>(place);
    if (length > i_size - begin || length > std::size_t(std::numeric_limits<int>::max()))
        fail(QStringLiteral("the file ends within the header"));
    NpyHeader header;
    header.dataOffset = begin + length;
    parseDictionary(QByteArray(reinterpret_cast<const char*>(i_data) + begin, int(length)), header);
    return header;
}

QByteArray makeNpyHeader(const NpyHeader& i_header)
{
    QByteArray text = "{'descr': " + i_header.typeText() + ", 'fortran_order': "
        + (i_header.fortranOrder ? "True" : "False") + ", 'shape': " + i_header.shapeText() + ", }";
    constexpr int before = int(s_magicBytes) + 4;
    const int total = (before + text.size() + 1 + s_alignment - 1) / s_alignment * s_alignment;
    text += QByteArray(total - before - text.size() - 1, ' ') + '\n';
    QByteArray length(2, '\0');
    qToLittleEndian<quint16>(quint16(text.size()), length.data());
    return QByteArray(s_magic, int(s_magicBytes)) + '\x01' + '\0' + length + text;
}

} // namespace host
