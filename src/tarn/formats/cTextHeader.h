#pragma once

#include <QByteArray>
#include <QString>
#include <cstddef>

/**
 * Goes through the words and numbers at the start of a portable map, of any kind: words are parted by blanks
 * and line ends, and '#' makes the rest of a line a comment.
 *
 * Whatever is not as expected throws a std::runtime_error that begins with the format's name.
 */
class cTextHeader {
public:
    cTextHeader(const char* i_format, const unsigned char* i_data, std::size_t i_size);

    /** Takes the text if it stands here. */
    bool take(const char* i_text);
    QByteArray takeWord(const char* i_what);
    quint64 takeNumber(const char* i_what);
    /** A number other than 0, as floats are written. */
    double takeReal(const char* i_what);
    /** The rest of the line, without blanks round it. */
    QByteArray takeLine();
    /** The one blank or line end that parts the header from the pixels. */
    void takeEnd();
    /** One digit, 0 or 1, whether blanks stand before it or not. */
    unsigned takeBit();

    const unsigned char* rest() const { return m_data + m_place; }
    std::size_t restSize() const { return m_size - m_place; }

    [[noreturn]] void fail(const QString& i_message) const;

private:
    bool atEnd() const { return m_place >= m_size; }
    void skipBlanks();

    const char* m_format;
    const unsigned char* m_data;
    std::size_t m_size;
    std::size_t m_place = 0;
};
