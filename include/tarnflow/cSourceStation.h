#pragma once

#include <tarnflow/cStation.h>

/**
 * A station that makes data: while the graph runs, its processing thread calls `produce` again and again, until it says
 * that there is nothing more.
 *
 * After the last call every output announces that it is idle, so that no receiver waits for it.
 */
class TARNFLOW_EXPORT cSourceStation : public cStation {
    Q_OBJECT
public:
    explicit cSourceStation(const QString& i_name = QString());
    ~cSourceStation() override;

    void postStart(StartReasons i_reason) override;

    /** Asks the source to end after the step that is under way; what it sent is still processed. Any thread. */
    void finish();

protected:
    /**
     * Makes the next frame: sends it on the outputs and announces its stamp with `cOPortBase::sendFinish`. Stamps ascend.
     * Runs on the processing thread under the input mutex. An exception is reported as an error of this station and the
     * source goes on with the next call.
     * @return false when there is nothing more.
     */
    virtual bool produce() = 0;

private:
    void queueStep();
    bool runStep();
    std::atomic<bool> m_finish{false};
    qint64 m_steps = 0;
};
