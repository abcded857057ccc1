#pragma once

#include <QString>
#include <QtGlobal>
#include <tarnflow/export.h>

/**
 * What became of the frames that arrived at one input port since the graph was built.
 *
 * Every frame has one fate: at any time arrived == getSum().
 */
struct TARNFLOW_EXPORT cFates {
    quint64 arrived = 0;
    quint64 used = 0; ///< a process step took it and ended well
    quint64 unseen = 0; ///< matched together with an older one, which the step saw in its place
    quint64 incomplete = 0; ///< dropped: a required partner did not come for its stamp
    quint64 refused = 0; ///< the port does not take this type of data
    quint64 gated = 0; ///< no step was computed, since nobody wanted a result
    quint64 lost = 0; ///< the step had a result, but got no buffer to send it in
    quint64 failed = 0; ///< the step ended with an exception
    quint64 ignored = 0; ///< the step passed it over (an invalid image)
    quint64 discarded = 0; ///< released by a reset, a stop or the removal of its sender
    quint64 waiting = 0; ///< still in the queue, or in the match that is under way

    quint64 getSum() const
    {
        return used + unseen + incomplete + refused + gated + lost + failed + ignored + discarded + waiting;
    }
    cFates& operator+=(const cFates& i_other)
    {
        arrived += i_other.arrived;
        used += i_other.used;
        unseen += i_other.unseen;
        incomplete += i_other.incomplete;
        refused += i_other.refused;
        gated += i_other.gated;
        lost += i_other.lost;
        failed += i_other.failed;
        ignored += i_other.ignored;
        discarded += i_other.discarded;
        waiting += i_other.waiting;
        return *this;
    }
    /** Whether every frame that arrived was used. */
    bool isAllUsed() const { return arrived == used; }
};

/** The fates of one port with its place in the graph; of an output port only `arrived` (sent) and `lost` are
 * counted. */
struct TARNFLOW_EXPORT cPortFates {
    QString node; ///< path of the node
    QString port;
    bool output = false;
    cFates fates;
};
