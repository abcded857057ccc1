#include "cProgress.h"

#include "cConsole.h"

#include <QString>
#include <algorithm>
#include <cmath>

namespace {

QString timeText(double i_seconds)
{
    const auto seconds = qint64(std::ceil(std::min(i_seconds, 1e9)));
    if (seconds < 60)
        return QStringLiteral("%1 s").arg(seconds);
    if (seconds < 3600)
        return QStringLiteral("%1 min %2 s").arg(seconds / 60).arg(seconds % 60);
    return QStringLiteral("%1 h %2 min").arg(seconds / 3600).arg(seconds % 3600 / 60);
}

} // namespace

cProgress::cProgress(cConsole& io_console) : m_console(io_console), m_last(0) {}

QString cProgress::format(qint64 i_now, qint64 i_done, qint64 i_total, qint64 i_failed)
{
    QString text = QStringLiteral("%1/%2 frames").arg(i_done).arg(i_total);
    if (i_now > 0 && i_done > 0) {
        const double rate = double(i_done) * 1000 / double(i_now);
        text += QStringLiteral(", %1/s").arg(rate, 0, 'f', 1);
        if (i_done < i_total)
            text += QStringLiteral(", %1 left").arg(timeText(double(i_total - i_done) / rate));
    }
    if (i_failed > 0)
        text += QStringLiteral(", %1 failed").arg(i_failed);
    return text;
}

void cProgress::update(qint64 i_now, qint64 i_done, qint64 i_total, qint64 i_failed)
{
    const bool terminal = m_console.isTerminal();
    if (i_now - m_last < (terminal ? s_redraw : s_interval))
        return;
    m_last = i_now;
    const QString text = format(i_now, i_done, i_total, i_failed);
    if (terminal)
        m_console.setProgress(text);
    else
        m_console.writeLine(text);
}

void cProgress::finish() { m_console.setProgress(QString()); }
