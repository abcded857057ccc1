#include "cPipelineLexer.h"

namespace {

bool isBlank(QChar c) { return c == u' ' || c == u'\t' || c == u'\r'; }

bool isNameStart(QChar c) { return (c >= u'a' && c <= u'z') || (c >= u'A' && c <= u'Z') || c == u'_'; }

bool isNameChar(QChar c) { return isNameStart(c) || (c >= u'0' && c <= u'9'); }

/** Adds text to the last piece if it is of the same kind and grows, else begins a piece. */
void append(cWord& io_word, cWordPiece::EKind i_kind, QChar c, const cSourcePos& i_pos)
{
    if (io_word.pieces.isEmpty() || io_word.pieces.last().kind != i_kind)
        io_word.pieces.append({i_kind, QString(), i_pos});
    io_word.pieces.last().text.append(c);
}

} // namespace

cPipelineLexer::cPipelineLexer(const QString& i_text, const QString& i_file, QList<cDiagnostic>& io_errors)
    : m_text(i_text),
      m_file(i_file),
      m_errors(io_errors)
{
    if (m_text.startsWith(QChar::ByteOrderMark))
        m_index = 1;
}

QChar cPipelineLexer::peek(int i_ahead) const
{
    const int index = m_index + i_ahead;
    return index < m_text.size() ? m_text[index] : QChar();
}

void cPipelineLexer::advance()
{
    const QChar c = m_text[m_index++];
    if (c == u'\n') {
        ++m_pos.line;
        m_pos.column = 1;
    } else if (!c.isLowSurrogate()) {
        ++m_pos.column;
    }
}

void cPipelineLexer::error(const cSourcePos& i_pos, const QString& i_message, const QString& i_help)
{
    m_errors.append({m_file, i_pos, i_message, i_help});
}

QList<cToken> cPipelineLexer::run()
{
    QList<cToken> tokens;
    while (m_index < m_text.size()) {
        const QChar c = peek();
        if (isBlank(c)) {
            advance();
        } else if (c == u'\n') {
            tokens.append({cToken::NewLine, {{}, m_pos}});
            advance();
        } else if (c == u'#') {
            skipComment();
        } else if (c < u' ' || c == QChar(0x7f)) {
            error(m_pos,
                QStringLiteral("a graph is text, found the control character 0x%1")
                    .arg(c.unicode(), 2, 16, QChar(u'0')));
            advance();
        } else {
            tokens.append(readWord());
        }
    }
    tokens.append({cToken::End, {{}, m_pos}});
    return tokens;
}

void cPipelineLexer::skipComment()
{
    while (m_index < m_text.size() && peek() != u'\n')
        advance();
}

cToken cPipelineLexer::readWord()
{
    cWord word;
    word.pos = m_pos;
    while (m_index < m_text.size()) {
        const QChar c = peek();
        if (isBlank(c) || c < u' ' || c == QChar(0x7f))
            break;
        if (c == u'"') {
            readDoubleQuotes(word);
        } else if (c == u'\'') {
            readSingleQuotes(word);
        } else if (c == u'$' && peek(1) == u'{') {
            readVariable(word);
        } else {
            append(word, cWordPiece::Plain, c, m_pos);
            advance();
        }
    }
    cToken::EKind kind = cToken::Word;
    if (word.pieces.size() == 1 && word.isPlain()) {
        const QString& text = word.pieces.first().text;
        if (text == QLatin1String("!"))
            kind = cToken::Bang;
        else if (text == QLatin1String("{"))
            kind = cToken::Open;
        else if (text == QLatin1String("}"))
            kind = cToken::Close;
    }
    return {kind, word};
}

void cPipelineLexer::readDoubleQuotes(cWord& io_word)
{
    const cSourcePos begin = m_pos;
    advance();
    // Even "" is a piece: it is how an empty value is written.
    io_word.pieces.append({cWordPiece::Quoted, QString(), begin});
    while (m_index < m_text.size() && peek() != u'\n') {
        const QChar c = peek();
        if (c == u'"') {
            advance();
            return;
        }
        if (c == u'$' && peek(1) == u'{') {
            readVariable(io_word);
        } else if (c == u'\\') {
            const cSourcePos escape = m_pos;
            advance();
            const QChar code = peek();
            if (code == u'"' || code == u'\\' || code == u'$')
                append(io_word, cWordPiece::Quoted, code, escape);
            else if (code == u'n')
                append(io_word, cWordPiece::Quoted, u'\n', escape);
            else if (code == u't')
                append(io_word, cWordPiece::Quoted, u'\t', escape);
            else if (m_index == m_text.size() || code == u'\n')
                break;
            else
                error(escape,
                    QStringLiteral("unknown escape, expected \\\", \\\\, \\$, \\n or \\t, found \\%1")
                        .arg(code),
                    QStringLiteral("write \\\\ for a backslash, or use '...', where nothing is special"));
            advance();
        } else {
            append(io_word, cWordPiece::Quoted, c, m_pos);
            advance();
        }
    }
    error(begin, QStringLiteral("a text in quotes is not closed, expected \" before the end of the line"));
}

void cPipelineLexer::readSingleQuotes(cWord& io_word)
{
    const cSourcePos begin = m_pos;
    advance();
    io_word.pieces.append({cWordPiece::Quoted, QString(), begin});
    while (m_index < m_text.size() && peek() != u'\n') {
        const QChar c = peek();
        if (c == u'\'') {
            advance();
            return;
        }
        append(io_word, cWordPiece::Quoted, c, m_pos);
        advance();
    }
    error(begin, QStringLiteral("a text in quotes is not closed, expected ' before the end of the line"));
}

void cPipelineLexer::readVariable(cWord& io_word)
{
    const cSourcePos begin = m_pos;
    advance();
    advance();
    QString name;
    while (isNameChar(peek())) {
        name.append(peek());
        advance();
    }
    if (peek() != u'}' || name.isEmpty() || !isNameStart(name[0])) {
        error(begin, QStringLiteral("bad variable, expected ${name} of letters, digits and '_'"),
            QStringLiteral("write '${' in single quotes if it is meant as it stands"));
        return;
    }
    advance();
    io_word.pieces.append({cWordPiece::Variable, name, begin});
}
