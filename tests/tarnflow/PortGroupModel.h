#pragma once

#include <QString>
#include <QStringList>
#include <QtGlobal>
#include <functional>
#include <limits>
#include <map>
#include <vector>

/**
 * The rule by which a port group matches its inputs, plain and slow: lists are searched from end to end, and
 * every frame is a record that is never deleted. It shares no code with the library; the tests compare both
 * after every event.
 */
class PortGroupModel {
public:
    static constexpr qint64 invalid = std::numeric_limits<qint64>::min();

    struct Stamp {
        qint64 value = invalid;
        qint64 time = 0;
    };
    enum class Fate { Waiting, Used, Unseen, Incomplete, Gated, Lost, Failed, Ignored, Discarded };
    /** What the process step does with a frame. */
    enum class Step { Use, Gate, Lose, Ignore, ThrowError, ThrowFault, ThrowUnknown };

    struct Frame {
        int id = 0;
        int port = 0;
        int sender = 0;
        Stamp stamp;
        Fate fate = Fate::Waiting;
        bool heldOutside = false; ///< somebody else holds the buffer too
        bool isPrivate = false; ///< the group holds a copy of its own, so the sender's pool misses nothing
        bool inGroup = true; ///< the group holds the buffer
    };
    struct Queue {
        std::vector<Frame*> data;
        std::vector<Stamp> stamps;
        std::vector<std::vector<Frame*>> history;
        bool required = true;
        bool master = false;
        bool idle = false;
        bool reportDrops = true;
        unsigned delay = 0;
        unsigned senders = 1; ///< that are linked and enabled
        int arrived = 0;
    };

    PortGroupModel(int i_ports, bool i_perBuffer);
    PortGroupModel(const PortGroupModel&) = delete;

    // --- events ---
    void data(int i_port, const std::vector<Frame>& i_frames);
    void finish(int i_port, Stamp i_stamp, bool i_idle);
    void removeSender(int i_sender); ///< -1: all
    void reset();
    /**
     * Runs the first job of the callback queue; false if there is none. The n-th call of the process step
     * acts as the n-th element of i_steps says.
     */
    bool runJob(const std::vector<Step>& i_steps);

    // --- what is to be seen ---
    std::vector<Queue> queues;
    bool discards = false; ///< the mode
    bool dead = false;
    Stamp current;
    /** What happens while the next call of the step runs; forgotten then. */
    std::function<void()> duringStep;
    /** Calls of the step, drops, finish notices and failures since it was last cleared, in order. */
    QStringList log;
    std::map<int, Frame> frames;

    int count(int i_port, Fate i_fate) const;
    /** How many buffers of a sender's pool are with the group or with others. */
    int heldOf(int i_sender) const;
    int jobCount() const { return int(m_jobs.size()); }

private:
    struct Job {
        qint64 order;
        int generation;
        bool isMatch;
    };

    void search();
    void dispatch();
    void queueJob(qint64 i_order, bool i_isMatch);
    void drop(Stamp i_candidate);
    void sendFinish();
    bool isExhausted() const;
    void runMatch(const std::vector<Step>& i_steps);
    void setFate(Frame& io_frame, Fate i_fate);
    void releaseSetAside();

    bool m_perBuffer;
    bool m_ready = true;
    Stamp m_previous;
    qint64 m_newestAnnounced = invalid;
    int m_generation = 0;
    std::vector<Job> m_jobs;
    std::vector<Frame*> m_setAside;
};
