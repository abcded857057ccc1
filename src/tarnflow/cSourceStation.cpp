#include <tarnflow/cSourceStation.h>

#include <tarnbase/cError.h>
#include <tarnbase/cTracer.h>
#include <tarnflow/SEHException.h>
#include <tarnflow/cOPortBase.h>

#include <exception>

cSourceStation::cSourceStation(const QString& i_name) : cStation(i_name) {}

cSourceStation::~cSourceStation() = default;

void cSourceStation::start(StartReasons i_reason)
{
    m_finish = false;
    m_ended = false;
    m_queued = false;
    m_started = false;
    cStation::start(i_reason);
}

void cSourceStation::postStart(StartReasons)
{
    m_started = true;
    queueStep();
}

void cSourceStation::finish()
{
    m_finish = true;
    if (m_started && !m_ended)
        queueStep(); // a source that pauses has no step that would notice
}

void cSourceStation::enableChanged(bool i_enabled)
{
    if (i_enabled && m_started && !m_ended)
        queueStep();
}

void cSourceStation::queueStep()
{
    if (!m_queued.exchange(true))
        add2CallbackQueue([this] { return runStep(); }, nullptr, m_steps++);
}

bool cSourceStation::runStep()
{
    m_queued = false;
    if (m_ended || isDead())
        return m_ended;
    bool more = !m_finish;
    bool failed = false;
    if (more && !isEnabled())
        return true; // goes on when it is enabled again
    if (more)
        more = runProduce(failed);
    if (isDead())
        return false;
    if (more && !m_finish) {
        queueStep();
        return !failed;
    }
    m_ended = true;
    for (cOPortBase* port : getOutports())
        port->sendIdle();
    return !failed;
}

bool cSourceStation::runProduce(bool& o_failed)
{
    bool more = true;
    getInputMutex().lock();
    try {
        more = produce();
        getInputMutex().unlock();
        return more;
    } catch (const std::exception& exception) {
        getInputMutex().unlock();
        const char* text = exception.what();
        report(cError::StepFailed, text ? QString::fromLocal8Bit(text) : QStringLiteral("Unknown exception"));
    } catch (const SEHException& exception) {
        getInputMutex().unlock();
        report(cError::SystemFault, exception.what());
    } catch (...) {
        // Nobody knows in which state the source is: its mutex stays locked, and no step follows.
        markDead();
        report(cError::UnknownFault, QString());
    }
    o_failed = true;
    return true;
}

void cSourceStation::report(int i_level, const QString& i_message)
{
    const cError error(cError::ErrorLevel(i_level), cError::Processing, i_message, getPathName());
    cTracer::cerr << error << cTracer::end();
    reportError(error);
}

#include "moc_cSourceStation.cpp"
