#include "cPipeline.h"
#include "cPipelineLexer.h"

#include <QRegularExpression>
#include <QSet>
#include <algorithm>
#include <tuple>

namespace host {
namespace {

/** Graphs inside graphs beyond this depth are refused, so that no text can exhaust the stack. */
constexpr int s_deepest = 16;
constexpr int s_mostErrors = 50;

/** What a chain's element looks like, for messages. */
QString describe(const cToken& i_token)
{
    switch (i_token.kind) {
    case cToken::Bang:
        return QStringLiteral("'!'");
    case cToken::Open:
        return QStringLiteral("'{'");
    case cToken::Close:
        return QStringLiteral("'}'");
    case cToken::NewLine:
        return QStringLiteral("the end of the line");
    case cToken::End:
        return QStringLiteral("the end of the text");
    case cToken::Word:
        break;
    }
    return QStringLiteral("'%1'").arg(i_token.word.toString());
}

const QRegularExpression& keyPattern()
{
    static const QRegularExpression s_pattern(
        QStringLiteral("^[A-Za-z_][A-Za-z0-9_-]*([./][A-Za-z0-9_-]+)*$"));
    return s_pattern;
}

const QRegularExpression& referencePattern()
{
    static const QRegularExpression s_pattern(
        QStringLiteral("^([A-Za-z0-9_-]+(?:/[A-Za-z0-9_-]+)*)\\.([A-Za-z0-9_-]*)$"));
    return s_pattern;
}

const QRegularExpression& identifierPattern()
{
    static const QRegularExpression s_pattern(QStringLiteral("^[A-Za-z0-9_-]+(/[A-Za-z0-9_-]+)*$"));
    return s_pattern;
}

/** Splits "key=value"; only a plain '=' after a plain key counts. */
std::optional<cArgument> toArgument(const cWord& i_word)
{
    if (i_word.pieces.isEmpty() || i_word.pieces.first().kind != cWordPiece::Plain)
        return {};
    const cWordPiece& first = i_word.pieces.first();
    const int sign = first.text.indexOf(u'=');
    if (sign < 0 || !keyPattern().match(first.text.left(sign)).hasMatch())
        return {};
    cArgument argument {first.text.left(sign), i_word, i_word.pos};
    cWordPiece& head = argument.value.pieces.first();
    head.text.remove(0, sign + 1);
    head.pos.column += sign + 1; // the key is ASCII: one column each
    argument.value.pos = head.pos;
    if (head.text.isEmpty())
        argument.value.pieces.removeFirst();
    return argument;
}

bool isReference(const cWord& i_word)
{
    return i_word.pieces.size() == 1 && i_word.isPlain()
        && referencePattern().match(i_word.pieces.first().text).hasMatch();
}

/** "b." can only be a reference, even where a main parameter may stand. */
bool isOpenReference(const cWord& i_word)
{
    return isReference(i_word) && i_word.pieces.first().text.endsWith(u'.');
}

class cParser {
public:
    cParser(const QString& i_text, const QString& i_file) : m_file(i_file)
    {
        m_tokens = cPipelineLexer(i_text, i_file, m_result.errors).run();
        for (const cToken& token : qAsConst(m_tokens)) {
            const auto argument = token.kind == cToken::Word ? toArgument(token.word) : std::nullopt;
            if (argument && argument->key == QLatin1String("name"))
                m_names.insert(argument->value.toString());
        }
        m_result.pipeline.file = i_file;
    }

    cParsedPipeline run()
    {
        readScope(m_result.pipeline, 0);
        std::stable_sort(
            m_result.errors.begin(), m_result.errors.end(), [](const cDiagnostic& a, const cDiagnostic& b) {
                return std::tie(a.pos.line, a.pos.column) < std::tie(b.pos.line, b.pos.column);
            });
        m_result.errors = m_result.errors.mid(0, s_mostErrors);
        return std::move(m_result);
    }

private:
    const cToken& peek(int i_ahead = 0) const
    {
        return m_tokens[std::min(m_index + i_ahead, int(m_tokens.size()) - 1)];
    }
    void skipNewLines()
    {
        while (peek().kind == cToken::NewLine)
            ++m_index;
    }
    void error(const cSourcePos& i_pos, const QString& i_message, const QString& i_help = QString())
    {
        m_result.errors.append({m_file, i_pos, i_message, i_help});
    }

    /** Reads up to the '}' of the scope, or to the end of the text. */
    void readScope(cPipeline& io_scope, int i_depth)
    {
        for (;;) {
            skipNewLines();
            const cToken token = peek();
            switch (token.kind) {
            case cToken::End:
                if (i_depth > 0)
                    error(io_scope.pos,
                        QStringLiteral("%1: the graph is not closed, expected '}' before the end")
                            .arg(io_scope.name));
                return;
            case cToken::Close:
                ++m_index;
                if (i_depth > 0)
                    return;
                error(
                    token.getPos(), QStringLiteral("'}' closes nothing, expected 'graph name {' before it"));
                break;
            case cToken::Open:
                ++m_index;
                error(token.getPos(), QStringLiteral("'{' opens nothing, expected 'graph name {'"));
                break;
            default:
                if (isGraphHead())
                    readGraph(io_scope, i_depth);
                else
                    readChain(io_scope);
            }
        }
    }

    bool isGraphHead() const
    {
        return peek().kind == cToken::Word && peek().word.isPlain()
            && peek().word.toString() == QLatin1String("graph") && peek(1).kind == cToken::Word
            && peek(2).kind == cToken::Open;
    }

    void readGraph(cPipeline& io_scope, int i_depth)
    {
        cPipeline graph;
        graph.file = m_file;
        graph.pos = peek(1).getPos();
        graph.name = peek(1).word.toString();
        static const QRegularExpression s_name(QStringLiteral("^[A-Za-z0-9_-]+$"));
        if (!peek(1).word.isPlain() || !s_name.match(graph.name).hasMatch())
            error(graph.pos,
                QStringLiteral("a graph's name is of letters, digits, '_' and '-', found '%1'")
                    .arg(graph.name));
        m_index += 3;
        if (i_depth == s_deepest) {
            error(graph.pos,
                QStringLiteral("%1: graphs are nested deeper than %2").arg(graph.name).arg(s_deepest));
            m_index = m_tokens.size() - 1; // what follows is as deep, and would only repeat this
            return;
        }
        readScope(graph, i_depth + 1);
        io_scope.graphs.push_back(std::move(graph));
    }

    void readChain(cPipeline& io_scope)
    {
        cChain chain;
        if (peek().kind == cToken::Bang)
            error(peek().getPos(),
                QStringLiteral("a chain begins with '!', expected a station or a reference before it"));
        else
            readElement(chain);
        for (;;) {
            int ahead = 0;
            while (peek(ahead).kind == cToken::NewLine)
                ++ahead;
            if (peek(ahead).kind != cToken::Bang)
                break;
            m_index += ahead + 1;
            const cToken bang = m_tokens[m_index - 1];
            skipNewLines();
            if (peek().kind == cToken::Word)
                readElement(chain);
            else
                error(bang.getPos(),
                    QStringLiteral("expected a station or a reference after '!', found %1")
                        .arg(describe(peek())));
        }
        checkReferences(chain);
        if (!chain.elements.isEmpty())
            io_scope.chains.push_back(std::move(chain));
    }

    void readElement(cChain& io_chain)
    {
        const cWord word = peek().word;
        ++m_index;
        cElement element;
        element.pos = word.pos;
        if (const auto argument = toArgument(word)) {
            error(word.pos,
                QStringLiteral("a parameter needs its station before it on the same line, found '%1'")
                    .arg(word.toString()));
            return;
        }
        if (isReference(word)) {
            const auto match = referencePattern().match(word.pieces.first().text);
            element.kind = cElement::Reference;
            element.node = match.captured(1);
            element.port = match.captured(2);
            refuseArguments(word);
        } else {
            element.station = word;
            checkIdentifier(word);
            readArguments(element);
        }
        io_chain.elements.append(element);
    }

    void checkIdentifier(const cWord& i_word)
    {
        bool good = !i_word.pieces.isEmpty();
        // With a variable in it the name is known, and checked, when the graph is built.
        if (i_word.isPlain())
            good = identifierPattern().match(i_word.toString()).hasMatch();
        if (good)
            return;
        const bool bang = i_word.toString().contains(u'!');
        error(i_word.pos,
            QStringLiteral("expected a station, a reference 'name.' or 'name.port', or '!', found '%1'")
                .arg(i_word.toString()),
            bang ? QStringLiteral("put blanks round '!'") : QString());
    }

    /** "m.mean" is no file where a station of the name m stands in the text. */
    bool isMainParameter(const cWord& i_word) const
    {
        if (toArgument(i_word) || isOpenReference(i_word))
            return false;
        return !isReference(i_word)
            || !m_names.contains(
                i_word.pieces.first().text.section(QRegularExpression(QStringLiteral("[./]")), 0, 0));
    }

    /** A main parameter directly after the identifier, then all "key=value" that follow. */
    void readArguments(cElement& io_element)
    {
        if (peek().kind == cToken::Word && isMainParameter(peek().word)) {
            io_element.main = peek().word;
            ++m_index;
        }
        QSet<QString> keys;
        while (peek().kind == cToken::Word) {
            const auto argument = toArgument(peek().word);
            if (!argument)
                return;
            if (keys.contains(argument->key))
                error(argument->pos,
                    QStringLiteral("%1: '%2' is given twice")
                        .arg(io_element.station.toString(), argument->key));
            else
                io_element.arguments.append(*argument);
            keys.insert(argument->key);
            ++m_index;
        }
    }

    void refuseArguments(const cWord& i_reference)
    {
        while (peek().kind == cToken::Word && toArgument(peek().word)) {
            error(peek().getPos(),
                QStringLiteral("a reference takes no parameters, found '%1' after '%2'")
                    .arg(peek().word.toString(), i_reference.toString()),
                QStringLiteral("write the parameter where the station is named"));
            ++m_index;
        }
    }

    void checkReferences(const cChain& i_chain)
    {
        for (int i = 0; i < i_chain.elements.size(); ++i) {
            const cElement& element = i_chain.elements[i];
            if (element.kind != cElement::Reference)
                continue;
            const QString text = element.node + u'.' + element.port;
            if (i_chain.elements.size() == 1)
                error(element.pos,
                    QStringLiteral("'%1' stands alone, expected '!' and what it is linked with").arg(text));
            else if (i > 0 && i + 1 < i_chain.elements.size())
                error(element.pos,
                    QStringLiteral("'%1' stands inside a chain, a reference begins or ends one").arg(text),
                    QStringLiteral("end the chain here and begin another with '%1.'").arg(element.node));
        }
    }

    const QString m_file;
    QList<cToken> m_tokens;
    QSet<QString> m_names; ///< that the text gives to stations, in whatever graph
    int m_index = 0;
    cParsedPipeline m_result;
};

} // namespace

cParsedPipeline parsePipeline(const QString& i_text, const QString& i_file)
{
    return cParser(i_text, i_file).run();
}

} // namespace host
