#include "cGraphInput.h"

#include "cConsole.h"
#include "cPipelineBuilder.h"
#include "cRehearsal.h"

#include <QFile>
#include <QRegularExpression>
#include <tarnflow/cGraph.h>

QList<cOptions::Spec> cGraphInput::options()
{
    return {
        {QStringLiteral("-e"), QStringLiteral("TEXT"),
            QStringLiteral("the graph itself; several are read as lines")},
        {QStringLiteral("-D"), QStringLiteral("KEY=VALUE"),
            QStringLiteral("the value of ${KEY} in the graph")},
        {QStringLiteral("--limit"), QStringLiteral("N"),
            QStringLiteral("the most frames that each source reads")},
    };
}

QString cGraphInput::read(const cOptions& i_options, const QString& i_command)
{
    const QString problem = readVariables(i_options.getAll(QStringLiteral("-D")));
    if (!problem.isEmpty())
        return problem;
    if (i_options.has(QStringLiteral("--limit"))) {
        const QString limit = i_options.get(QStringLiteral("--limit"));
        bool good = false;
        m_limit = limit.toLongLong(&good);
        if (!good || m_limit < 1)
            return QStringLiteral("--limit expects a number above 0, found '%1'").arg(limit);
    }
    return readText(i_options, i_command);
}

QString cGraphInput::readVariables(const QStringList& i_definitions)
{
    static const QRegularExpression s_key(QStringLiteral("^[A-Za-z_][A-Za-z0-9_]*$"));
    for (const QString& definition : i_definitions) {
        const int sign = definition.indexOf(u'=');
        if (sign < 0 || !s_key.match(definition.left(sign)).hasMatch())
            return QStringLiteral("-D expects KEY=VALUE, found '%1'").arg(definition);
        m_variables.insert(definition.left(sign), definition.mid(sign + 1));
    }
    return {};
}

QString cGraphInput::readText(const cOptions& i_options, const QString& i_command)
{
    const QStringList lines = i_options.getAll(QStringLiteral("-e"));
    const QStringList& files = i_options.getRest();
    if (!lines.isEmpty()) {
        if (!files.isEmpty())
            return QStringLiteral("a graph is given by -e, and there is '%1' besides\n").arg(files.first())
                + QStringLiteral("quote the whole graph: -e 'files in/*.png ! ...'");
        m_text = lines.join(u'\n');
        m_name = QStringLiteral("-e");
        return {};
    }
    if (files.isEmpty())
        return QStringLiteral("no graph, expected a file or -e 'text'\n'tarn %1 --help' tells more")
            .arg(i_command);
    if (files.size() > 1)
        return QStringLiteral("expected one graph file, found %1").arg(files.size());
    m_name = files.first();
    QFile file(m_name);
    if (!file.open(QIODevice::ReadOnly))
        return QStringLiteral("%1: %2").arg(m_name, file.errorString());
    constexpr qint64 most = 16 << 20;
    const QByteArray bytes = file.read(most + 1);
    if (bytes.size() > most)
        return QStringLiteral("%1: a graph is a text of 16 MiB at the most").arg(m_name);
    m_text = QString::fromUtf8(bytes);
    return {};
}

bool cGraphInput::build(cGraph& io_graph, cConsole& io_console) const
{
    const cParsedPipeline parsed = host::parsePipeline(m_text, m_name);
    QList<cDiagnostic> errors = parsed.errors;
    if (errors.isEmpty()) {
        cPipelineBuilder builder(io_graph, m_variables);
        builder.setLimit(m_limit);
        if (builder.build(parsed.pipeline))
            builder.report(cRehearsal(io_graph, parsed.pipeline, m_variables).run());
        errors = builder.getErrors();
    }
    for (const cDiagnostic& error : qAsConst(errors))
        io_console.writeLine(error.toString());
    return errors.isEmpty();
}
