#pragma once

#include <tarnflow/cBufferT.h>
#include <tarnflow/cIPortQueueBase.h>
#include <tarnflow/cPortHistoryBase.h>

/** The queue of an input for values of type T. All buffers in it hold a T; the rules are those of the base.
 */
template <class T> class cIPortQueue : public cIPortQueueBase {
public:
    /** Appends buffers that have arrived, taking over one reference of each. */
    void append(const QList<cBufferT<T>*>& i_buffers)
    {
        for (cBufferT<T>* buffer : i_buffers)
            data.append(buffer);
        noteArrived(i_buffers.size());
    }
};

/** The history of an input for values of type T, as the process step reads it. */
template <class T> class cPortHistory : public cPortHistoryBase {
public:
    /** What the step sees of this input; null if it gave nothing to the match. */
    cBufferT<T>* getBuffer() const { return static_cast<cBufferT<T>*>(getFirstBuffer()); }
    /** Its value, or a default one. */
    const T& getValue() const
    {
        static const T none {};
        const cBufferT<T>* buffer = getBuffer();
        return buffer ? buffer->getValue() : none;
    }
};
