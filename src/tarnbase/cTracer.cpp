#include <tarnbase/cTracer.h>

#include <tarnbase/cTracerManager.h>

#include <QDebug>

#include <cstring>
#include <thread>
#include <unordered_map>

namespace {

struct Line {
    QString text;
    QTextStream stream {&text};
};

QString baseName(const char* i_file)
{
    const char* const slash = std::strrchr(i_file, '/');
    return QString::fromUtf8(slash != nullptr ? slash + 1 : i_file);
}

} // namespace

// The lines that are being built. They hang on the channel and not on the thread, so that static objects can
// still trace when the thread's own storage is gone.
struct cTracer::Lines {
    std::unordered_map<std::thread::id, std::unique_ptr<Line>> ofThread; // guarded by s_mutex
};

std::mutex cTracer::s_mutex;
cTracer cTracer::cerr(QStringLiteral("cerr"));
cTracer cTracer::cout(QStringLiteral("cout"));

cTracer::cTracer(const QString& i_name)
    : m_name(i_name),
      m_state(Enabled | ToDevice | ToDebugLog),
      m_lines(std::make_unique<Lines>())
{
    m_device.setCodec("UTF-8");
}

cTracer::~cTracer() = default;

void cTracer::setDevice(QIODevice* i_device)
{
    const std::lock_guard lock(s_mutex);
    m_device.flush();
    m_device.setDevice(i_device);
    m_device.setCodec("UTF-8");
}

QTextStream* cTracer::lineOfThread()
{
    if (!getState().testFlag(Enabled))
        return nullptr;
    const std::lock_guard lock(s_mutex);
    std::unique_ptr<Line>& line = m_lines->ofThread[std::this_thread::get_id()];
    if (!line)
        line = std::make_unique<Line>();
    return &line->stream;
}

cTracer& cTracer::operator<<(const char* i_text)
{
    if (QTextStream* stream = lineOfThread())
        *stream << QString::fromUtf8(i_text);
    return *this;
}

cTracer& cTracer::operator<<(const End& i_end)
{
    std::unique_ptr<Line> line;
    QDateTime now;
    {
        const std::lock_guard lock(s_mutex);
        now = QDateTime::currentDateTime();
        const auto entry = m_lines->ofThread.find(std::this_thread::get_id());
        if (entry != m_lines->ofThread.end()) {
            line = std::move(entry->second);
            m_lines->ofThread.erase(entry);
        }
    }
    const QString text = line ? line->text : QString();
    const QFlags<ETracerState> state = getState();
    if (state.testFlag(Enabled)) {
        const QString location = QLatin1Char(' ') + baseName(i_end.file) + QLatin1String(" (")
            + QString::number(i_end.line) + QLatin1Char(')');
        // Listeners and message handlers are foreign code: none of our locks is held.
        cTracerManager::instance().fireNewText(
            {location, text, m_name, true, state.testFlag(ToDevice), state.testFlag(ToDebugLog), now});
        if (state.testFlag(ToDebugLog))
            QMessageLogger(i_end.file, i_end.line, nullptr).debug().noquote().nospace() << text;
    }
    if (state.testFlag(ToDevice)) {
        const std::lock_guard lock(s_mutex);
        if (m_device.device() != nullptr) {
            m_device << text << '\n';
            m_device.flush();
        }
    }
    return *this;
}
