// How a port group finds its matches and hands them to the callback queue.
#include <tarnflow/cPortGroupBase.h>

#include <algorithm>
#include <tarnflow/cIPortBase.h>
#include <tarnflow/cOPortBase.h>

void cPortGroupBase::receiveFinish(cIPortQueueBase& io_queue, const cBufferStamp& i_stamp, bool i_idle)
{
    const QMutexLocker lock(&m_groupMutex);
    io_queue.noteFinished(i_stamp, i_idle);
    findMatch();
}

void cPortGroupBase::findMatch()
{
    const bool discarding = m_mode == Discard;
    if (m_state != EState::Ready && !discarding)
        return;
    for (;;) {
        const bool marker = std::any_of(m_inputs.cbegin(), m_inputs.cend(),
            [](const Input& i_input) { return i_input.queue->stamps.hasMarker(); });
        cBufferStamp candidate;
        if (!marker && !findCandidate(candidate))
            return;
        bool complete = true;
        for (const Input& input : m_inputs) {
            input.queue->useUpStamps(candidate);
            complete = complete && input.queue->suffices(candidate);
        }
        if (!discarding) {
            m_previousStamp = m_currentStamp;
            m_currentStamp = candidate;
            if (complete) {
                dispatch();
                return;
            }
        }
        if (marker) {
            // Nobody is told of a marker; but where nothing more comes, those behind need not wait.
            if (!discarding && isExhausted())
                sendIdle();
            continue;
        }
        for (const Input& input : m_inputs)
            input.queue->dropUpTo(candidate, discarding ? &cFates::discarded : &cFates::incomplete);
        if (!discarding)
            sendFinish(isExhausted());
    }
}

bool cPortGroupBase::findCandidate(cBufferStamp& o_candidate) const
{
    const auto master = std::find_if(m_inputs.cbegin(), m_inputs.cend(),
        [](const Input& i_input) { return i_input.queue->master && !i_input.queue->stamps.isEmpty(); });
    if (master != m_inputs.cend()) {
        o_candidate = master->queue->stamps.getFirst();
    } else {
        for (const Input& input : m_inputs) {
            const cIPortQueueBase& queue = *input.queue;
            if (queue.stamps.isEmpty()) {
                if (!queue.senderIdle && queue.port->receivesData())
                    return false;
            } else if (o_candidate < queue.stamps.getFirst()) {
                o_candidate = queue.stamps.getFirst();
            }
        }
        // All senders are idle, or gone.
        if (!o_candidate.isValid())
            return false;
    }
    return std::all_of(m_inputs.cbegin(), m_inputs.cend(),
        [&](const Input& i_input) { return i_input.queue->isFinishedUpTo(o_candidate); });
}

void cPortGroupBase::dispatch()
{
    if (m_previousStamp.isValid()) {
        const cBufferStamp difference = m_currentStamp - m_previousStamp;
        if (difference.getStamp() != 0 || difference.getTime() != 0)
            for (const Input& input : m_inputs)
                input.history->moveStamps(difference);
    }
    for (const Input& input : m_inputs)
        input.queue->takeUpTo(m_currentStamp, input.history->append());
    enableDropping();
    m_state = EState::Scheduled;
    m_station->add2CallbackQueue(
        [this, generation = m_generation] { return runMatch(generation); }, this, m_currentStamp.getStamp());
}

bool cPortGroupBase::isExhausted() const
{
    const auto exhausted = [](const Input& i_input) { return i_input.queue->isExhausted(); };
    const auto idle = [](const Input& i_input) { return i_input.queue->senderIdle; };
    return std::any_of(m_inputs.cbegin(), m_inputs.cend(), idle)
        && std::all_of(m_inputs.cbegin(), m_inputs.cend(), exhausted);
}

void cPortGroupBase::sendIdle() const
{
    const QList<cOPortBase*> ports = getOutPorts();
    for (cOPortBase* port : ports)
        port->sendIdle();
}

void cPortGroupBase::sendFinish(bool i_idle) const
{
    const QList<cOPortBase*> ports = getOutPorts();
    for (cOPortBase* port : ports)
        port->sendFinish(m_currentStamp, i_idle);
}
