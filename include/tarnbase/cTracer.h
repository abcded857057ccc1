#pragma once

#include <tarnbase/export.h>

#include <QFlags>
#include <QString>
#include <QTextStream>

#include <atomic>
#include <memory>
#include <mutex>

class QIODevice;

/**
 * A channel of the trace. A line is written piece by piece and ended with the place in the source:
 *
 *     cTracer::cerr << "could not read: " << path << cTracer::end();
 *
 * Each thread builds its own line, so that lines of several threads never mix. The end of a line gives it to
 * the listeners of cTracerManager and to the debug log, which by default is standard error, and to the device
 * of the channel, if it has one. All members may be called from any thread.
 */
class TARNBASE_EXPORT cTracer {
public:
    enum ETracerState {
        Enabled = 1, ///< lines are built; without it the pieces are dropped
        ToDevice = 2, ///< lines are written to the device
        ToDebugLog
        = 4 ///< lines are written to the debug log; a host that shows lines itself switches this off
    };

    /** The end of a line, made by end(). */
    struct End {
        const char* file;
        int line;
    };

    /** Ends the line; the defaults are the place of the call. */
    static End end(const char* i_file = __builtin_FILE(), int i_line = __builtin_LINE())
    {
        return {i_file, i_line};
    }

    explicit cTracer(const QString& i_name);
    ~cTracer();
    cTracer(const cTracer&) = delete;
    cTracer& operator=(const cTracer&) = delete;

    /** Failures and warnings. */
    static cTracer cerr;
    /** What a user may want to know. */
    static cTracer cout;

    /** At first all three states are set. */
    QFlags<ETracerState> getState() const { return QFlags<ETracerState>(QFlag(m_state.load())); }
    void setState(QFlags<ETracerState> i_state) { m_state.store(int(i_state)); }
    const QString& getName() const { return m_name; }

    /** Writes whole lines to a device too, in UTF-8. It stays the caller's, and must stay open until null is
     * set. */
    void setDevice(QIODevice* i_device);

    /** Adds a piece to the line of this thread. T is whatever a QTextStream writes. */
    template <class T> cTracer& operator<<(const T& i_piece)
    {
        if (QTextStream* stream = lineOfThread())
            *stream << i_piece;
        return *this;
    }
    /** Text in UTF-8. */
    cTracer& operator<<(const char* i_text);
    /** Ends the line of this thread. */
    cTracer& operator<<(const End& i_end);

private:
    struct Lines;

    // The stream on the line that this thread is building, null if the channel is off. Only this thread uses
    // it.
    QTextStream* lineOfThread();

    // Guards the lines and the devices of all channels.
    static std::mutex s_mutex;

    const QString m_name;
    std::atomic<int> m_state;
    std::unique_ptr<Lines> m_lines;
    QTextStream m_device;
};

Q_DECLARE_OPERATORS_FOR_FLAGS(QFlags<cTracer::ETracerState>)
