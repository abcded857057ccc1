#include "cRunner.h"

#include "cConsole.h"
#include "cPrintStation.h"
#include "cProgress.h"
#include "cSaveStation.h"
#include "commands.h"
#include "fateTable.h"

#include <QElapsedTimer>
#include <QStringList>
#include <tarnbase/cError.h>
#include <tarnflow/cGraph.h>
#include <tarnflow/cIPortBase.h>
#include <tarnflow/cPortGroupBase.h>
#include <unistd.h>

namespace {

constexpr int s_pollMilliseconds = 50;

} // namespace

QString cRunner::Failure::toString() const
{
    return frame.isEmpty() ? QStringLiteral("%1: %2").arg(node, message)
                           : QStringLiteral("%1: %2: %3").arg(node, frame, message);
}

cRunner::cRunner(cGraph& io_graph, const cRunOptions& i_options, cConsole& io_console)
    : m_graph(io_graph),
      m_options(i_options),
      m_console(io_console)
{
    const auto stations = io_graph.getStations();
    for (cStation* station : stations) {
        if (auto* source = dynamic_cast<cFrameSource*>(station))
            m_sources.append(source);
        if (auto* sink = dynamic_cast<cSaveStation*>(station))
            m_sinks.append(sink);
        if (const auto* printer = dynamic_cast<cPrintStation*>(station))
            m_printing = m_printing || (printer->printsToOutput() && isatty(STDOUT_FILENO));
    }
    // Direct: the frame that failed is known only while its step is under way.
    QObject::connect(
        &m_graph, &cGraph::errorReported, &m_graph, [this](const cError& i_error) { noteFailure(i_error); },
        Qt::DirectConnection);
    QObject::connect(
        &m_graph, &cGraph::stationDied, &m_graph,
        [this](const QString& i_path) {
            const QMutexLocker lock(&m_mutex);
            if (m_dead.isEmpty())
                m_dead = i_path;
        },
        Qt::DirectConnection);
}

cRunner::~cRunner()
{
    m_graph.stop();
    m_graph.disconnect(&m_graph);
}

QString cRunner::frameOf(const cError& i_error) const
{
    const auto* station = dynamic_cast<const cStation*>(m_graph.findNode(i_error.getPath()));
    // A source names its file itself.
    if (!station || station->getPortGroups().isEmpty())
        return {};
    const cBufferStamp stamp = station->getPortGroups().first()->getStamp();
    if (!stamp.isValid())
        return {};
    const QString file = host::nameGivingFile(host::sourcesOf(*station), stamp.getStamp());
    const QString number = QStringLiteral("frame %1").arg(stamp.getStamp());
    return file.isEmpty() ? number : QStringLiteral("%1 (%2)").arg(file, number);
}

void cRunner::noteFailure(const cError& i_error)
{
    QString message = i_error.getMessage();
    if (message.isEmpty())
        message = QStringLiteral("an unknown exception");
    const Failure failure {i_error.getPath(), frameOf(i_error), message};
    {
        const QMutexLocker lock(&m_mutex);
        m_failures.append(failure);
    }
    if (m_options.verbose)
        m_console.writeLine(QStringLiteral("error: ") + failure.toString());
}

int cRunner::countFailures() const
{
    const QMutexLocker lock(&m_mutex);
    return m_failures.size();
}

qint64 cRunner::getDone() const
{
    qint64 done = 0;
    for (const cFrameSource* source : m_sources)
        done += source->getDone();
    return done;
}

qint64 cRunner::getTotal() const
{
    qint64 total = 0;
    for (const cFrameSource* source : m_sources)
        total += source->getTotal();
    return total;
}

EExit cRunner::run(const std::function<int()>& i_interrupts)
{
    QElapsedTimer timer;
    timer.start();
    QList<cGraphError> problems;
    if (!m_graph.launch(&problems)) {
        for (const cGraphError& problem : qAsConst(problems)) {
            m_console.writeLine(QStringLiteral("error: ") + problem.toString());
            if (!problem.help.isEmpty())
                m_console.writeLine(QStringLiteral("  help: ") + problem.help);
        }
        return EExit::BadUsage;
    }
    cProgress progress(m_console);
    EExit exit = watch(i_interrupts, progress);
    progress.finish();
    // Before the stop, which discards what still waits.
    QList<cPortFates> fates = m_graph.getFates();
    m_graph.stop();
    if (exit != EExit::Good)
        fates = m_graph.getFates();
    report(timer.elapsed(), fates);
    if (exit == EExit::Good && (countFailures() > 0 || isSomethingLost(fates)))
        exit = EExit::SomeFailed;
    return exit;
}

EExit cRunner::watch(const std::function<int()>& i_interrupts, cProgress& io_progress)
{
    QElapsedTimer timer;
    timer.start();
    bool draining = false;
    EExit exit = EExit::Good;
    for (;;) {
        const cGraph::EFlow flow = m_graph.waitForFlow(s_pollMilliseconds);
        {
            const QMutexLocker lock(&m_mutex);
            if (!m_dead.isEmpty()) {
                m_console.writeLine(QStringLiteral("error: %1: the station died, the run ends").arg(m_dead));
                return EExit::Died;
            }
        }
        const int interrupts = i_interrupts();
        if (interrupts >= 2) {
            m_console.writeLine(QStringLiteral("stopped: what was in flight is discarded"));
            return EExit::Interrupted;
        }
        if (interrupts == 1 && exit != EExit::Interrupted) {
            exit = EExit::Interrupted;
            m_graph.finishSources();
            m_console.writeLine(
                QStringLiteral("interrupted: finishing what is in flight; once more stops at once"));
        }
        if (m_options.stopOnError && !draining && countFailures() > 0) {
            draining = true;
            m_graph.finishSources();
        }
        if (flow == cGraph::EFlow::Stalled) {
            m_console.writeLine(QStringLiteral("error: nothing moves any more:"));
            const auto waits = m_graph.describeWaits();
            for (const QString& wait : waits)
                m_console.writeLine(QStringLiteral("  ") + wait);
            return EExit::Stalled;
        }
        if (flow != cGraph::EFlow::Running)
            return exit;
        if (!m_options.quiet && !m_printing)
            io_progress.update(timer.elapsed(), getDone(), getTotal(), countFailures());
    }
}

bool cRunner::isSomethingLost(const QList<cPortFates>& i_fates) const
{
    for (const cPortFates& port : i_fates)
        if (port.fates.refused > 0 || port.fates.lost > 0)
            return true;
    return false;
}

void cRunner::report(qint64 i_milliseconds, const QList<cPortFates>& i_fates)
{
    const QMutexLocker lock(&m_mutex);
    if (m_options.stats || (host::isAnyUnused(i_fates) && !m_options.quiet))
        m_console.writeLine(host::fateTable(i_fates, m_options.stats));
    reportRefused(i_fates);
    reportCutParams();
    if (m_options.stats)
        reportTimes();
    if (!m_failures.isEmpty()) {
        m_console.writeLine(QStringLiteral("failed:"));
        for (const Failure& failure : qAsConst(m_failures))
            m_console.writeLine(QStringLiteral("  ") + failure.toString());
    }
    if (m_options.quiet)
        return;
    qint64 written = 0;
    for (const cSaveStation* sink : qAsConst(m_sinks))
        written += sink->getWritten();
    const qint64 done = getDone();
    const double seconds = double(i_milliseconds) / 1000;
    m_console.writeLine(QStringLiteral("%1 of %2 frames in %3 s (%4/s), %5 files written, %6 failed")
                            .arg(done)
                            .arg(getTotal())
                            .arg(seconds, 0, 'f', 2)
                            .arg(seconds > 0 ? double(done) / seconds : 0.0, 0, 'f', 1)
                            .arg(written)
                            .arg(m_failures.size()));
}

void cRunner::reportRefused(const QList<cPortFates>& i_fates)
{
    for (const cPortFates& port : i_fates) {
        if (port.output || port.fates.refused == 0)
            continue;
        const cDfpNode* node = m_graph.findNode(port.node);
        const cIPortBase* input = node ? node->getInport(port.port) : nullptr;
        if (input)
            m_console.writeLine(QStringLiteral("%1.%2 refused %3 frames: it takes %4")
                                    .arg(port.node, port.port)
                                    .arg(port.fates.refused)
                                    .arg(host::describeValues(*input)));
    }
}

void cRunner::reportCutParams()
{
    const auto stations = m_graph.getStations();
    for (const cStation* station : stations) {
        const auto misfits = station->getMisfits();
        for (const cGraphError& misfit : misfits) {
            // Ports have refused what does not fit them, and steps have failed: both are told already.
            if (host::isAboutParam(misfit, *station))
                m_console.writeLine(QStringLiteral("warning: ") + misfit.toString());
        }
    }
}

void cRunner::reportTimes()
{
    QStringList lines;
    const auto stations = m_graph.getStations();
    for (const cStation* station : stations) {
        quint64 steps = 0;
        qint64 nanoseconds = 0;
        const auto groups = station->getPortGroups();
        for (const cPortGroupBase* group : groups) {
            steps += group->getExecutionCount();
            nanoseconds += group->getExecutionTime();
        }
        if (steps > 0)
            lines.append(QStringLiteral("%1  %2 steps, %3 ms each")
                             .arg(station->getPathName())
                             .arg(steps)
                             .arg(double(nanoseconds) / 1e6 / double(steps), 0, 'f', 3));
    }
    if (!lines.isEmpty())
        m_console.writeLine(lines.join(u'\n'));
}
