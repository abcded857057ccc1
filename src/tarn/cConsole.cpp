#include "cConsole.h"

namespace {

/** To the first column, and the line wiped. */
const QString& wipe()
{
    static const QString s_wipe = QStringLiteral("\r\033[K");
    return s_wipe;
}

} // namespace

cConsole::cConsole(std::FILE* i_file, bool i_terminal) : m_file(i_file), m_terminal(i_terminal) {}

void cConsole::put(const QString& i_text)
{
    const QByteArray bytes = i_text.toUtf8();
    std::fwrite(bytes.constData(), 1, std::size_t(bytes.size()), m_file);
    std::fflush(m_file);
}

void cConsole::writeLine(const QString& i_text)
{
    const QMutexLocker lock(&m_mutex);
    if (m_progress.isEmpty())
        put(i_text + u'\n');
    else
        put(wipe() + i_text + u'\n' + m_progress);
}

void cConsole::setProgress(const QString& i_text)
{
    const QMutexLocker lock(&m_mutex);
    if (!m_terminal || i_text == m_progress)
        return;
    m_progress = i_text;
    put(wipe() + i_text);
}
