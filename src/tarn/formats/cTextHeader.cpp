#include "cTextHeader.h"

#include "fileBytes.h"

#include <cmath>
#include <cstring>

namespace {

bool isBlank(unsigned char i_char)
{
    return i_char == ' ' || (i_char >= '\t' && i_char <= '\r'); // with the vertical tab and the form feed
}

constexpr std::size_t s_longestWord = 64;

} // namespace

cTextHeader::cTextHeader(const char* i_format, const unsigned char* i_data, std::size_t i_size)
    : m_format(i_format),
      m_data(i_data),
      m_size(i_size)
{
}

void cTextHeader::fail(const QString& i_message) const
{
    host::raise(QString::fromLatin1(m_format) + QStringLiteral(": ") + i_message);
}

void cTextHeader::skipBlanks()
{
    while (!atEnd() && (isBlank(m_data[m_place]) || m_data[m_place] == '#')) {
        if (m_data[m_place] == '#')
            while (!atEnd() && m_data[m_place] != '\n')
                ++m_place;
        else
            ++m_place;
    }
}

bool cTextHeader::take(const char* i_text)
{
    const std::size_t length = std::strlen(i_text);
    if (restSize() < length || std::memcmp(rest(), i_text, length) != 0)
        return false;
    m_place += length;
    return true;
}

QByteArray cTextHeader::takeWord(const char* i_what)
{
    skipBlanks();
    const std::size_t begin = m_place;
    while (!atEnd() && !isBlank(m_data[m_place]) && m_place - begin < s_longestWord)
        ++m_place;
    if (begin == m_place)
        fail(QStringLiteral("the file ends before %1").arg(QString::fromLatin1(i_what)));
    return QByteArray(reinterpret_cast<const char*>(m_data) + begin, int(m_place - begin));
}

quint64 cTextHeader::takeNumber(const char* i_what)
{
    skipBlanks();
    constexpr quint64 most = Q_UINT64_C(1) << 40; // beyond any number of a header or a pixel
    quint64 number = 0;
    const std::size_t begin = m_place;
    for (; !atEnd() && m_data[m_place] >= '0' && m_data[m_place] <= '9'; ++m_place)
        if (number <= most)
            number = 10 * number + (m_data[m_place] - '0');
    const bool parted = atEnd() || isBlank(m_data[m_place]) || m_data[m_place] == '#';
    if (begin == m_place || !parted || number > most) {
        m_place = begin;
        fail(QStringLiteral("%1 is no number, found '%2'")
                 .arg(QString::fromLatin1(i_what), QString::fromLatin1(takeWord(i_what))));
    }
    return number;
}

double cTextHeader::takeReal(const char* i_what)
{
    const QByteArray word = takeWord(i_what);
    bool good = false;
    const double number = word.toDouble(&good);
    if (!good || !std::isfinite(number) || number == 0.0)
        fail(QStringLiteral("%1 is no number other than 0, found '%2'")
                 .arg(QString::fromLatin1(i_what), QString::fromLatin1(word)));
    return number;
}

QByteArray cTextHeader::takeLine()
{
    const std::size_t begin = m_place;
    while (!atEnd() && m_data[m_place] != '\n')
        ++m_place;
    return QByteArray(reinterpret_cast<const char*>(m_data) + begin, int(m_place - begin)).trimmed();
}

void cTextHeader::takeEnd()
{
    if (atEnd() || !isBlank(m_data[m_place]))
        fail(QStringLiteral("the header does not end"));
    ++m_place;
}

unsigned cTextHeader::takeBit()
{
    skipBlanks();
    if (atEnd() || (m_data[m_place] != '0' && m_data[m_place] != '1'))
        fail(QStringLiteral("a pixel is neither 0 nor 1"));
    return unsigned(m_data[m_place++] - '0');
}
