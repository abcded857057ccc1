#pragma once

#include <tarnflow/export.h>

class cStation;
struct cGraphError;

/**
 * Watches one process step on the thread that runs it, so that the frame's fate can be told afterwards.
 *
 * A port group opens a scope around each step. Output ports and stations note what happens through the static
 * functions, which do nothing on a thread that runs no step.
 */
class TARNFLOW_EXPORT cStepScope {
public:
    enum class EOutcome {
        Used,
        Gated, ///< nobody wanted a result, and none was sent
        Lost, ///< a result found no buffer
        Ignored ///< the step passed the frame over
    };

    /** For as long as it lives, what happens on this thread is not of the step: receivers are being called.
     */
    class TARNFLOW_EXPORT Suspension {
    public:
        Suspension();
        ~Suspension();
        Suspension(const Suspension&) = delete;
        Suspension& operator=(const Suspension&) = delete;

    private:
        cStepScope* m_suspended;
    };

    /** @param i_station whose step it is */
    explicit cStepScope(cStation* i_station = nullptr);
    ~cStepScope();
    cStepScope(const cStepScope&) = delete;
    cStepScope& operator=(const cStepScope&) = delete;

    EOutcome getOutcome() const;

    /** An output was asked whether anybody wants data. */
    static void noteRequest(bool i_wanted);
    /** A buffer went out. */
    static void noteSent();
    /** A result found no buffer. */
    static void noteLost();
    /** The step passes the frame over. */
    static void noteIgnored();
    /** What the step got does not fit the station, see cStation::noteMisfit. */
    static void noteMisfit(const cGraphError& i_misfit);

private:
    cStepScope* m_outer;
    cStation* const m_station;
    bool m_asked = false;
    bool m_wanted = false;
    bool m_sent = false;
    bool m_lost = false;
    bool m_ignored = false;
};
