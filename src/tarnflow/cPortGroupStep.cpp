// What a port group does on the station's thread: the process step, its failures, and the end of a match.
#include <tarnflow/cPortGroupBase.h>

#include <exception>
#include <tarnbase/cError.h>
#include <tarnbase/cTracer.h>
#include <tarnflow/SEHException.h>
#include <tarnflow/cIPortBase.h>
#include <tarnflow/cStepScope.h>

namespace {
quint64 cFates::*fateOf(cStepScope::EOutcome i_outcome)
{
    switch (i_outcome) {
    case cStepScope::EOutcome::Gated:
        return &cFates::gated;
    case cStepScope::EOutcome::Lost:
        return &cFates::lost;
    case cStepScope::EOutcome::Ignored:
        return &cFates::ignored;
    case cStepScope::EOutcome::Used:
        break;
    }
    return &cFates::used;
}
} // namespace

bool cPortGroupBase::runMatch(quint64 i_generation)
{
    if (!beginStep(i_generation))
        return false;
    cFates seen;
    bool succeeded = false;
    // The input mutex of a dead station stays locked, by this very thread: no further step starts, and
    // nothing waits for it.
    const bool dead = m_station->isDead();
    if (dead)
        readDelays();
    else
        succeeded = runLockedStep(seen);
    sendFinish(isExhaustedNow());
    endMatch(seen, dead ? &cFates::discarded : &cFates::unseen);
    return succeeded;
}

bool cPortGroupBase::beginStep(quint64 i_generation)
{
    const QMutexLocker lock(&m_groupMutex);
    if (i_generation != m_generation)
        return false;
    m_state = EState::InStep;
    return true;
}

bool cPortGroupBase::isExhaustedNow() const
{
    const QMutexLocker lock(&m_groupMutex);
    return isExhausted();
}

bool cPortGroupBase::runLockedStep(cFates& io_seen)
{
    cIPortBase& firstPort = *m_inputs.front().queue->port;
    const bool collect = firstPort.collectHistory();
    const qint64 stamp = m_currentStamp.getStamp();
    if (collect)
        firstPort.updateHistory(stamp, GraphHistoryEntry::WaitsForMutex);
    m_inputMutex->lock();
    if (collect)
        firstPort.updateHistory(stamp, GraphHistoryEntry::HasMutex);
    readDelays();
    try {
        runStep(io_seen);
        if (collect)
            firstPort.updateHistory(stamp, GraphHistoryEntry::Finished);
        m_inputMutex->unlock();
        return true;
    } catch (const std::exception& exception) {
        m_inputMutex->unlock();
        const char* what = exception.what();
        report(cError::StepFailed, what ? QString::fromLocal8Bit(what) : QStringLiteral("Unknown exception"));
    } catch (const SEHException& exception) {
        m_inputMutex->unlock();
        report(cError::SystemFault, exception.what());
    } catch (...) {
        // Nobody knows what state the station is in: the mutex stays locked, so that nothing touches it
        // again.
        report(cError::UnknownFault, QString());
        m_station->markDead();
    }
    return false;
}

void cPortGroupBase::readDelays()
{
    // Parameters are written under the input mutex only, so this is the place to read them.
    for (const Input& input : m_inputs)
        input.history->setDelay(input.queue->delay);
}

void cPortGroupBase::runStep(cFates& io_seen)
{
    if (m_callback)
        runWatched(io_seen, m_callback);
    else if (m_indexedCallback)
        runWatched(io_seen, [this] { m_indexedCallback(m_inputs.front().queue->index); });
}

void cPortGroupBase::runWatched(cFates& io_seen, const std::function<void()>& i_call)
{
    const cStepScope scope(m_station);
    ++io_seen.failed; // until the call has returned
    m_watch.start();
    i_call();
    addExecutionTime(m_watch.elapsed());
    --io_seen.failed;
    ++(io_seen.*fateOf(scope.getOutcome()));
}

void cPortGroupBase::report(int i_level, const QString& i_message) noexcept
try {
    const cError error(cError::ErrorLevel(i_level), cError::Processing, i_message, m_station->getPathName());
    cTracer::cerr << error << cTracer::end();
    emitException(error);
} catch (...) {
    // Without memory for the report the failure is still counted.
}

void cPortGroupBase::endMatch(const cFates& i_seen, quint64 cFates::*i_unseen)
{
    const QMutexLocker lock(&m_groupMutex);
    for (const Input& input : m_inputs)
        input.history->account(i_seen, i_unseen, input.queue->fates);
    m_state = EState::Ready;
    applyPostponed();
    for (const Input& input : m_inputs)
        input.history->trim();
    findMatch();
}
