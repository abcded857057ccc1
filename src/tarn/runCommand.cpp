#include "cConsole.h"
#include "cGraphInput.h"
#include "cOptions.h"
#include "cRunner.h"
#include "commands.h"

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
    return cOptions(cGraphInput::options()
        + QList<cOptions::Spec> {
            {QStringLiteral("--on-error"), QStringLiteral("skip|stop"),
                QStringLiteral("after a frame has failed: go on (the default), or read no more")},
            {QStringLiteral("--stats"), QString(),
                QStringLiteral("what became of all frames, and the times of the stations")},
            {QStringLiteral("--quiet"), QString(), QStringLiteral("no progress, no summary: failures only"),
                QStringLiteral("-q")},
            {QStringLiteral("--verbose"), QString(), QStringLiteral("failures as they happen, and the trace"),
                QStringLiteral("-v")},
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

} // namespace

EExit runCommand(const QStringList& i_words)
{
    cOptions options = makeOptions();
    if (const auto end = readWords(s_name, i_words, options, usage))
        return *end;
    cGraphInput input;
    const QString problem = input.read(options, s_name);
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
    cConsole console(stderr, isatty(STDERR_FILENO));
    const cTraceScope trace(console, chosen.verbose);
    cGraph graph;
    if (!input.build(graph, console))
        return EExit::BadUsage;
    cRunner runner(graph, chosen, console);
    const cInterruptScope interrupts;
    return runner.run([] { return s_interrupts.load(); });
}

} // namespace host
