#include "cConsole.h"
#include "cOptions.h"
#include "cPipelineBuilder.h"
#include "cRunner.h"
#include "commands.h"

#include <QFile>
#include <QMap>
#include <QRegularExpression>
#include <atomic>
#include <csignal>
#include <tarnbase/cTracerManager.h>
#include <tarnflow/cGraph.h>
#include <unistd.h>

namespace host {
namespace {

const QString s_name = QStringLiteral("run");

cOptions makeOptions()
{
    return cOptions({
        {QStringLiteral("-e"), QStringLiteral("TEXT"),
            QStringLiteral("the graph itself; several are read as lines")},
        {QStringLiteral("-D"), QStringLiteral("KEY=VALUE"),
            QStringLiteral("the value of ${KEY} in the graph")},
        {QStringLiteral("--limit"), QStringLiteral("N"),
            QStringLiteral("the most frames that each source reads")},
        {QStringLiteral("--on-error"), QStringLiteral("skip|stop"),
            QStringLiteral("after a frame has failed: go on (the default), or read no more")},
        {QStringLiteral("--stats"), QString(),
            QStringLiteral("what became of all frames, and the times of the stations")},
        {QStringLiteral("--quiet"), QString(), QStringLiteral("no progress, no summary: failures only"),
            QStringLiteral("-q")},
        {QStringLiteral("--verbose"), QString(), QStringLiteral("failures as they happen, and the trace"),
            QStringLiteral("-v")},
        {QStringLiteral("--help"), QString(), QStringLiteral("this text"), QStringLiteral("-h")},
    });
}

QString usage(const cOptions& i_options)
{
    return QStringLiteral("usage: tarn run [options] FILE\n"
                          "       tarn run [options] -e TEXT\n\n")
        + i_options.usage()
        + QStringLiteral(
            "\nA graph is stations linked by '!':\n"
            "  files in/*.png ! abs ! save out/{stem}.png\n"
            "with key=value after a station, name=x to name it, and x. or x.port to refer to it:\n"
            "  files a/*.png ! d.img1   files b/*.png ! d.img2   difference name=d ! save out/{index}.png\n"
            "In a file every line is one such chain, or several; '#' begins a comment, and a line that "
            "starts or ends\n"
            "with '!' goes on with the one before or after it.\n\n"
            "exit codes: 0 all good, 1 some inputs failed, 2 bad graph or usage, 3 stalled, 4 a station "
            "died,\n"
            "130 interrupted (Ctrl-C finishes what is in flight, twice stops at once)\n");
}

std::atomic<int> s_interrupts {0};
static_assert(std::atomic<int>::is_always_lock_free, "a signal's handler touches it");

void countInterrupt(int)
{
    // Whatever hangs after the second one: the third ends the process.
    if (++s_interrupts >= 2)
        std::signal(SIGINT, SIG_DFL);
}

/** Counts Ctrl-C while it lives. */
class cInterruptScope {
public:
    cInterruptScope()
    {
        s_interrupts = 0;
        struct sigaction action = {};
        action.sa_handler = countInterrupt;
        action.sa_flags = SA_RESTART;
        sigaction(SIGINT, &action, &m_before);
    }
    ~cInterruptScope() { sigaction(SIGINT, &m_before, nullptr); }
    cInterruptScope(const cInterruptScope&) = delete;
    cInterruptScope& operator=(const cInterruptScope&) = delete;

private:
    struct sigaction m_before = {};
};

/** Shows the lines of the trace while it lives. */
class cTraceScope {
public:
    cTraceScope(cConsole& io_console, bool i_show)
    {
        if (i_show)
            m_listener
                = cTracerManager::instance().addListener([&io_console](const cTracerManager::Info& i_info) {
                      io_console.writeLine(QStringLiteral("trace: ") + i_info.text.trimmed());
                  });
    }
    ~cTraceScope()
    {
        if (m_listener >= 0)
            cTracerManager::instance().removeListener(m_listener);
    }
    cTraceScope(const cTraceScope&) = delete;
    cTraceScope& operator=(const cTraceScope&) = delete;

private:
    int m_listener = -1;
};

/** The graph's text and what messages call it, or what is wrong. */
struct Source {
    QString text;
    QString name;
    QString error;
};

Source readSource(const cOptions& i_options)
{
    const QStringList lines = i_options.getAll(QStringLiteral("-e"));
    const QStringList& files = i_options.getRest();
    if (!lines.isEmpty()) {
        if (!files.isEmpty())
            return {{}, {},
                QStringLiteral("a graph is given by -e, and there is '%1' besides\n").arg(files.first())
                    + QStringLiteral("quote the whole graph: -e 'files in/*.png ! ...'")};
        return {lines.join(u'\n'), QStringLiteral("-e"), {}};
    }
    if (files.size() != 1)
        return {{}, {},
            files.isEmpty()
                ? QStringLiteral("no graph, expected a file or -e 'text'\n'tarn run --help' tells more")
                : QStringLiteral("expected one graph file, found %1").arg(files.size())};
    QFile file(files.first());
    if (!file.open(QIODevice::ReadOnly))
        return {{}, {}, QStringLiteral("%1: %2").arg(files.first(), file.errorString())};
    constexpr qint64 most = 16 << 20;
    const QByteArray bytes = file.read(most + 1);
    if (bytes.size() > most)
        return {{}, {}, QStringLiteral("%1: a graph is a text of 16 MiB at the most").arg(files.first())};
    return {QString::fromUtf8(bytes), files.first(), {}};
}

QString readVariables(const QStringList& i_definitions, QMap<QString, QString>& o_variables)
{
    static const QRegularExpression s_key(QStringLiteral("^[A-Za-z_][A-Za-z0-9_]*$"));
    for (const QString& definition : i_definitions) {
        const int sign = definition.indexOf(u'=');
        if (sign < 0 || !s_key.match(definition.left(sign)).hasMatch())
            return QStringLiteral("-D expects KEY=VALUE, found '%1'").arg(definition);
        o_variables.insert(definition.left(sign), definition.mid(sign + 1));
    }
    return {};
}

/** Writes all errors, each with its place. */
EExit refuseGraph(cConsole& io_console, const QList<cDiagnostic>& i_errors)
{
    for (const cDiagnostic& error : i_errors)
        io_console.writeLine(error.toString());
    return EExit::BadUsage;
}

} // namespace

EExit runCommand(const QStringList& i_words)
{
    cOptions options = makeOptions();
    QString problem = options.parse(i_words);
    if (!problem.isEmpty())
        return refuse(s_name, problem);
    if (options.has(QStringLiteral("--help"))) {
        print(usage(options));
        return EExit::Good;
    }
    QMap<QString, QString> variables;
    problem = readVariables(options.getAll(QStringLiteral("-D")), variables);
    if (!problem.isEmpty())
        return refuse(s_name, problem);
    cRunOptions chosen;
    chosen.stats = options.has(QStringLiteral("--stats"));
    chosen.quiet = options.has(QStringLiteral("--quiet"));
    chosen.verbose = options.has(QStringLiteral("--verbose"));
    if (options.has(QStringLiteral("--on-error"))) {
        const QString word = options.get(QStringLiteral("--on-error"));
        chosen.stopOnError = word == QLatin1String("stop");
        if (!chosen.stopOnError && word != QLatin1String("skip"))
            return refuse(s_name, QStringLiteral("--on-error expects skip or stop, found '%1'").arg(word));
    }
    qint64 limit = 0;
    if (options.has(QStringLiteral("--limit"))) {
        bool good = false;
        limit = options.get(QStringLiteral("--limit")).toLongLong(&good);
        if (!good || limit < 1)
            return refuse(s_name,
                QStringLiteral("--limit expects a number above 0, found '%1'")
                    .arg(options.get(QStringLiteral("--limit"))));
    }
    const Source source = readSource(options);
    if (!source.error.isEmpty())
        return refuse(s_name, source.error);

    cConsole console(stderr, isatty(STDERR_FILENO));
    const cTraceScope trace(console, chosen.verbose);
    const cParsedPipeline parsed = parsePipeline(source.text, source.name);
    if (!parsed.errors.isEmpty())
        return refuseGraph(console, parsed.errors);
    cGraph graph;
    cPipelineBuilder builder(graph, variables);
    builder.setLimit(limit);
    if (!builder.build(parsed.pipeline))
        return refuseGraph(console, builder.getErrors());
    cRunner runner(graph, chosen, console);
    const cInterruptScope interrupts;
    return runner.run([] { return s_interrupts.load(); });
}

} // namespace host
