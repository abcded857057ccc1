#include "cPipeline.h"

namespace host {
namespace {

QString quoted(const QString& i_text)
{
    QString text = QStringLiteral("\"");
    for (const QChar c : i_text) {
        if (c == u'\n')
            text += QStringLiteral("\\n");
        else if (c == u'\t')
            text += QStringLiteral("\\t");
        else if (c == u'"' || c == u'\\' || c == u'$')
            text += QStringLiteral("\\") + c;
        else
            text += c;
    }
    return text + u'"';
}

QString print(const cWord& i_word)
{
    QString text;
    for (const cWordPiece& piece : i_word.pieces) {
        if (piece.kind == cWordPiece::Plain)
            text += piece.text;
        else if (piece.kind == cWordPiece::Quoted)
            text += quoted(piece.text);
        else
            text += QStringLiteral("${%1}").arg(piece.text);
    }
    return text;
}

QString print(const cElement& i_element)
{
    if (i_element.kind == cElement::Reference)
        return i_element.node + u'.' + i_element.port;
    QString text = print(i_element.station);
    if (i_element.main)
        text += u' ' + print(*i_element.main);
    for (const cArgument& argument : i_element.arguments)
        text += u' ' + argument.key + u'=' + print(argument.value);
    return text;
}

void print(const cPipeline& i_pipeline, const QString& i_indent, QString& io_text)
{
    for (const cPipeline& graph : i_pipeline.graphs) {
        io_text += i_indent + QStringLiteral("graph ") + graph.name + QStringLiteral(" {\n");
        print(graph, i_indent + QStringLiteral("    "), io_text);
        io_text += i_indent + QStringLiteral("}\n");
    }
    for (const cChain& chain : i_pipeline.chains) {
        QStringList elements;
        for (const cElement& element : chain.elements)
            elements.append(print(element));
        io_text += i_indent + elements.join(QStringLiteral(" ! ")) + u'\n';
    }
}

} // namespace

QString printPipeline(const cPipeline& i_pipeline)
{
    QString text;
    print(i_pipeline, QString(), text);
    return text;
}

} // namespace host
