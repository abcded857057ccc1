#pragma once

#include <QStringList>
#include <mutex>
#include <tarnbase/cTracer.h>
#include <tarnbase/cTracerManager.h>

/** The trace lines of all threads, without their places in the source, from construction to destruction. */
class TraceLines {
public:
    TraceLines()
        : m_listener(cTracerManager::instance().addListener([this](const cTracerManager::Info& info) {
              const std::lock_guard lock(m_mutex);
              m_lines.append(info.text);
          }))
    {
    }
    ~TraceLines() { cTracerManager::instance().removeListener(m_listener); }
    TraceLines(const TraceLines&) = delete;
    TraceLines& operator=(const TraceLines&) = delete;

    /** What has come since the last call. */
    QStringList take()
    {
        const std::lock_guard lock(m_mutex);
        QStringList lines;
        lines.swap(m_lines);
        return lines;
    }

private:
    std::mutex m_mutex;
    QStringList m_lines;
    int m_listener;
};
