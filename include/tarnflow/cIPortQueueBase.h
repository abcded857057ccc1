#pragma once

#include <QList>
#include <QString>
#include <atomic>
#include <tarnbase/cMapObj.h>
#include <tarnflow/cFates.h>
#include <tarnflow/cStampList.h>
#include <tarnflow/export.h>

class cBuffer;
class cIPortBase;
class cOPortBase;

/** How a port group treats one of its inputs. Set by the station's constructor, before the graph runs. */
struct TARNFLOW_EXPORT cPortQueueParams {
    QString name; ///< of the port
    bool required = true; ///< a match needs a buffer of this input
    int index = -1; ///< given to callbacks that ask for it
    bool master = false; ///< this input's stamps alone say which match is next
    unsigned int delay = 0; ///< the step sees what came so many matches ago; the port's parameter "delay"
    bool reportDrops = true; ///< a line on the trace for each dropped buffer
    cMapObj options;
};

/**
 * The queue of one input of a port group, whatever the type of its values: what has arrived and what the
 * sender has announced as finished.
 *
 * Everything but the four atomics is guarded by the group's mutex. The queue owns one reference of each
 * buffer in `data`.
 */
class TARNFLOW_EXPORT cIPortQueueBase : public cPortQueueParams {
public:
    cIPortQueueBase() = default;
    cIPortQueueBase(const cIPortQueueBase&) = delete;
    cIPortQueueBase& operator=(const cIPortQueueBase&) = delete;

    QList<cBuffer*> data; ///< arrived and not used yet, in order of arrival
    cStampList stamps;
    cIPortBase* port = nullptr;
    bool senderIdle = false; ///< nobody need wait for this input until data comes again

    // The stamp values of the ends of both lists, the invalid value for an empty one; read without a lock.
    std::atomic<qint64> newestData {cBufferStamp::s_invalid};
    std::atomic<qint64> oldestData {cBufferStamp::s_invalid};
    std::atomic<qint64> newestStamp {cBufferStamp::s_invalid};
    std::atomic<qint64> oldestStamp {cBufferStamp::s_invalid};

    cFates fates; ///< `waiting` is not kept here: it follows from the lists

    /** Takes the queue into use for a port, whose parameter "delay" is bound to it. */
    void bind(cIPortBase* i_port, const QString& i_name);

    /** To be called after buffers were appended to `data`. */
    void noteArrived(int i_count);
    void noteFinished(const cBufferStamp& i_stamp, bool i_idle);

    /** Nothing more can come that belongs to this stamp or to an earlier one. */
    bool isFinishedUpTo(const cBufferStamp& i_stamp) const;
    /** Holds what a match with this stamp needs of this input. */
    bool suffices(const cBufferStamp& i_stamp) const;
    /** Nothing is left here, and nothing is to be expected. */
    bool isExhausted() const;

    /** Removes the stamps that a match uses up; the invalid stamp uses up all markers. */
    void useUpStamps(const cBufferStamp& i_stamp);
    /**
     * Hands over the buffers at or before a stamp. From a single sender those at the front of the queue, as
     * far as there is none in between that is later; from several senders all of them, in the order of their
     * stamps.
     */
    void takeUpTo(const cBufferStamp& i_stamp, std::vector<cBuffer*>& io_taken);
    /** Gives back the buffers at or before a stamp, wherever they stand, with a line for each. */
    void dropUpTo(const cBufferStamp& i_stamp, quint64 cFates::*i_fate);
    /** Forgets stamps and idleness. `data` has been emptied before. */
    void forget();

private:
    void updateDataEnds();
    void updateStampEnds();
    void reportDrop(const cBuffer& i_buffer, const cBufferStamp& i_stamp) const;
};
