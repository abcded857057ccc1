#pragma once

#include <tarnflow/cStation.h>

/**
 * A station that makes data: while the graph runs, its processing thread calls `produce` again and again,
 * until it says that there is nothing more.
 *
 * After the last call every output announces that it is idle, so that no receiver waits for it.
 */
class TARNFLOW_EXPORT cSourceStation : public cStation {
    Q_OBJECT
public:
    explicit cSourceStation(const QString& i_name = QString());
    ~cSourceStation() override;

    void start(StartReasons i_reason) override;
    void postStart(StartReasons i_reason) override;
    /** A source that is disabled while it runs pauses, and goes on when it is enabled again. */
    void enableChanged(bool i_enabled) override;

    /** Asks the source to end after the step that is under way; what it sent is still processed. Any thread.
     */
    void finish();

protected:
    /**
     * Makes the next frame: sends it on the outputs and announces its stamp with `cOPortBase::sendFinish`.
     * Stamps ascend. Runs on the processing thread under the input mutex. An exception is reported as an
     * error of this station and the source goes on with the next call.
     * @return false when there is nothing more.
     */
    virtual bool produce() = 0;

private:
    void queueStep();
    bool runStep();
    bool runProduce(bool& o_failed);
    void report(int i_level, const QString& i_message);

    std::atomic<bool> m_finish {false};
    std::atomic<bool> m_started {false};
    std::atomic<bool> m_ended {false};
    std::atomic<bool> m_queued {false}; ///< a step waits in the callback queue
    std::atomic<qint64> m_steps {0};
};
