#pragma once

#include <tarnbase/cTracer.h>
#include <tarnbase/cTracerManager.h>

#include <QStringList>

#include <vector>

/** Keeps the lines of a channel from the debug log while it lives. */
class QuietChannel {
public:
    explicit QuietChannel(cTracer& io_channel) : m_channel(io_channel), m_state(io_channel.getState())
    {
        m_channel.setState(cTracer::Enabled | cTracer::ToDevice);
    }
    ~QuietChannel() { m_channel.setState(m_state); }
    QuietChannel(const QuietChannel&) = delete;
    QuietChannel& operator=(const QuietChannel&) = delete;

private:
    cTracer& m_channel;
    const QFlags<cTracer::ETracerState> m_state;
};

/** Keeps the lines of the trace while it lives. */
class TraceCapture {
public:
    TraceCapture()
        : m_listener(cTracerManager::instance().addListener(
            [this](const cTracerManager::Info& i_info) { m_lines.push_back(i_info); }))
    {
    }
    ~TraceCapture() { cTracerManager::instance().removeListener(m_listener); }
    TraceCapture(const TraceCapture&) = delete;
    TraceCapture& operator=(const TraceCapture&) = delete;

    /** To be read when no other thread traces. */
    const std::vector<cTracerManager::Info>& lines() const { return m_lines; }
    QStringList texts() const
    {
        QStringList texts;
        for (const cTracerManager::Info& line : m_lines)
            texts.append(line.text);
        return texts;
    }

private:
    std::vector<cTracerManager::Info> m_lines; // written by the listener, one call at a time
    int m_listener;
};
