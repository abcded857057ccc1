#pragma once

#include <tarnbase/export.h>

#include <QDateTime>
#include <QString>

#include <functional>

/**
 * Hands each line of the trace to the listeners.
 *
 * All members may be called from any thread.
 */
class TARNBASE_EXPORT cTracerManager {
public:
    /** One line of the trace. */
    struct Info {
        QString location; ///< " file (line)" of the statement that ended the line
        QString text;
        QString channel; ///< name of the channel
        bool enabled = false; ///< the three states of the channel, as cTracer::ETracerState has them
        bool toDevice = false;
        bool toDebugLog = false;
        QDateTime time;
    };

    static cTracerManager& instance();

    /** Gives a line to all listeners, on this thread. */
    void fireNewText(const Info& i_info);

    /**
     * Adds a listener, which is called with each line until it is removed.
     *
     * It is called on the thread that traces, for one line at a time, under a lock of its own and no other.
     * It may trace itself: such lines go to no listener. It must not wait for a thread that traces. What it
     * throws is dropped.
     *
     * @return the number for removeListener
     */
    int addListener(std::function<void(const Info&)> i_listener);
    /** Removes a listener. It is not called any more once this returns, unless this is called by the listener
     * itself. */
    void removeListener(int i_id);

private:
    cTracerManager();
    ~cTracerManager();
    cTracerManager(const cTracerManager&) = delete;
    cTracerManager& operator=(const cTracerManager&) = delete;

    struct Listeners;
    Listeners& m_listeners;
};
