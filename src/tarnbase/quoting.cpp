#include "textForm.h"

namespace {

// Printable text stands as it is. Halves of a surrogate pair are printable only together.
bool isPrintable(QStringView i_text, int i_index)
{
    const QChar c = i_text[i_index];
    if (c.isHighSurrogate())
        return i_index + 1 < i_text.size() && i_text[i_index + 1].isLowSurrogate()
            && QChar::isPrint(QChar::surrogateToUcs4(c, i_text[i_index + 1]));
    if (c.isLowSurrogate())
        return i_index > 0 && i_text[i_index - 1].isHighSurrogate()
            && QChar::isPrint(QChar::surrogateToUcs4(i_text[i_index - 1], c));
    return c.isPrint();
}

bool readEscape(QStringView i_text, int& io_position, QString& io_value)
{
    if (io_position >= i_text.size())
        return false;
    switch (i_text[io_position++].unicode()) {
    case '"':
        io_value += QLatin1Char('"');
        return true;
    case '\\':
        io_value += QLatin1Char('\\');
        return true;
    case 'n':
        io_value += QLatin1Char('\n');
        return true;
    case 'r':
        io_value += QLatin1Char('\r');
        return true;
    case 't':
        io_value += QLatin1Char('\t');
        return true;
    case 'u': {
        if (i_text.size() - io_position < 4)
            return false;
        unsigned int code = 0;
        for (int digit = 0; digit < 4; ++digit) {
            const ushort c = i_text[io_position++].unicode();
            if (c >= '0' && c <= '9')
                code = code * 16 + (c - '0');
            else if (c >= 'a' && c <= 'f')
                code = code * 16 + (c - 'a' + 10);
            else if (c >= 'A' && c <= 'F')
                code = code * 16 + (c - 'A' + 10);
            else
                return false;
        }
        io_value += QChar(ushort(code));
        return true;
    }
    default:
        return false;
    }
}

} // namespace

QString textForm::quote(QStringView i_text)
{
    QString result;
    result.reserve(i_text.size() + 2);
    result += QLatin1Char('"');
    for (int i = 0; i < i_text.size(); ++i) {
        const QChar c = i_text[i];
        if (c == QLatin1Char('"') || c == QLatin1Char('\\'))
            result += QLatin1Char('\\'), result += c;
        else if (c == QLatin1Char('\n'))
            result += QLatin1String("\\n");
        else if (c == QLatin1Char('\r'))
            result += QLatin1String("\\r");
        else if (c == QLatin1Char('\t'))
            result += QLatin1String("\\t");
        else if (isPrintable(i_text, i))
            result += c;
        else
            result += QLatin1String("\\u")
                + QString::number(c.unicode(), 16).rightJustified(4, QLatin1Char('0'));
    }
    result += QLatin1Char('"');
    return result;
}

bool textForm::unquote(QStringView i_text, int& io_position, QString& o_value)
{
    if (io_position >= i_text.size() || i_text[io_position] != QLatin1Char('"'))
        return false;
    QString value;
    for (int position = io_position + 1; position < i_text.size();) {
        const QChar c = i_text[position++];
        if (c == QLatin1Char('"')) {
            io_position = position;
            o_value = value;
            return true;
        }
        if (c != QLatin1Char('\\'))
            value += c;
        else if (!readEscape(i_text, position, value))
            return false;
    }
    return false;
}

QString textForm::complaint(const QString& i_expected, QStringView i_found)
{
    constexpr int longest = 60;
    const QString found
        = i_found.size() > longest ? quote(i_found.left(longest)) + QLatin1String("...") : quote(i_found);
    return QLatin1String("expected ") + i_expected + QLatin1String(", found ") + found;
}
