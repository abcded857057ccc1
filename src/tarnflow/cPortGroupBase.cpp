#include <tarnflow/cPortGroupBase.h>

#include <algorithm>
#include <tarnbase/cError.h>
#include <tarnflow/cBuffer.h>
#include <tarnflow/cIPortBase.h>
#include <tarnflow/cOPortBase.h>

cPortGroupBase::cPortGroupBase(cStation* i_station)
    : m_inputMutex(&i_station->getInputMutex()),
      m_station(i_station)
{
    m_station->addPortGroup(this); // which listens to exceptionRaised
}

cPortGroupBase::~cPortGroupBase() { m_station->removePortGroup(this); }

void cPortGroupBase::addInput(
    cIPortBase& io_port, cIPortQueueBase& io_queue, cPortHistoryBase& io_history, const QString& i_name)
{
    io_port.init(m_station, this, i_name);
    io_queue.bind(&io_port, i_name);
    io_port.m_finishCallback = [this, &io_queue](const cBufferStamp& i_stamp, bool i_idle) {
        receiveFinish(io_queue, i_stamp, i_idle);
    };
    m_inputs.append({&io_queue, &io_history});
}

// --- queries ---

const cPortGroupBase::Input* cPortGroupBase::findInput(const cIPortBase* i_port) const
{
    const auto input = std::find_if(m_inputs.cbegin(), m_inputs.cend(),
        [&](const Input& i_input) { return i_port && i_input.queue->name == i_port->getName(); });
    return input == m_inputs.cend() ? nullptr : &*input;
}

QString cPortGroupBase::getPortNames() const
{
    QStringList names;
    for (const Input& input : m_inputs)
        names.prepend(input.queue->name);
    return names.join(QLatin1Char(':'));
}

QList<cIPortBase*> cPortGroupBase::getPorts() const
{
    QList<cIPortBase*> ports;
    for (const Input& input : m_inputs)
        ports.append(input.queue->port);
    return ports;
}

QList<QPair<cBufferStamp, QString>> cPortGroupBase::getQueueContents(cIPortBase* i_port)
{
    QList<QPair<cBufferStamp, QString>> contents;
    if (const Input* input = findInput(i_port)) {
        const QMutexLocker lock(&m_groupMutex);
        for (const cBuffer* buffer : qAsConst(input->queue->data))
            contents.append({buffer->getStamp(), buffer->getAuditText()});
    }
    return contents;
}

const cPortQueueParams& cPortGroupBase::getQueueParams(cIPortBase* i_port) const
{
    static const cPortQueueParams unknown;
    const Input* input = findInput(i_port);
    return input ? *input->queue : unknown;
}

int cPortGroupBase::getDataCount(cIPortBase* i_port) const
{
    const Input* input = findInput(i_port);
    const QMutexLocker lock(&m_groupMutex);
    return input ? input->queue->data.size() : -1;
}

int cPortGroupBase::getStampCount(cIPortBase* i_port) const
{
    const Input* input = findInput(i_port);
    const QMutexLocker lock(&m_groupMutex);
    return input ? input->queue->stamps.getCount() : -1;
}

qint64 cPortGroupBase::getOldestData(cIPortBase* i_port) const
{
    const Input* input = findInput(i_port);
    return input ? input->queue->oldestData.load() : cBufferStamp::s_invalid;
}

qint64 cPortGroupBase::getNewestData(cIPortBase* i_port) const
{
    const Input* input = findInput(i_port);
    return input ? input->queue->newestData.load() : cBufferStamp::s_invalid;
}

qint64 cPortGroupBase::getOldestStamp(cIPortBase* i_port) const
{
    const Input* input = findInput(i_port);
    return input ? input->queue->oldestStamp.load() : cBufferStamp::s_invalid;
}

qint64 cPortGroupBase::getNewestStamp(cIPortBase* i_port) const
{
    const Input* input = findInput(i_port);
    return input ? input->queue->newestStamp.load() : cBufferStamp::s_invalid;
}

cFates cPortGroupBase::getFates(const cIPortBase* i_port) const
{
    const Input* input = findInput(i_port);
    if (!input)
        return {};
    const QMutexLocker lock(&m_groupMutex);
    cFates fates = input->queue->fates;
    fates.waiting = quint64(input->queue->data.size()) + input->history->getWaiting();
    return fates;
}

// --- the station's side ---

bool cPortGroupBase::enableDropping() { return !m_dropping.exchange(true); }

void cPortGroupBase::addExecutionTime(qint64 i_nanoseconds)
{
    m_executionTime += i_nanoseconds;
    ++m_executions;
}

qint64 cPortGroupBase::getExecutionTime() const { return m_executionTime; }

quint64 cPortGroupBase::getExecutionCount() const { return m_executions; }

void cPortGroupBase::emitException(const cError& i_error) noexcept
try {
    Q_EMIT exceptionRaised(i_error);
} catch (...) {
    // A listener's failure is its own.
}

void cPortGroupBase::registerOutPorts(const QList<cOPortBase*>& i_ports)
{
    m_outPorts = i_ports;
    m_outPortsGiven = true;
}

QList<cOPortBase*> cPortGroupBase::getOutPorts() const
{
    return m_outPortsGiven ? m_outPorts : m_station->getOutports();
}

// --- emptying the queues ---

void cPortGroupBase::removeSender(cOPortBase* i_sender)
{
    const QMutexLocker lock(&m_groupMutex);
    const bool noneSetAside = m_setAside.empty();
    emptyQueues(i_sender);
    if (m_state == EState::InStep)
        m_postponedSenders.push_back(i_sender);
    else
        emptyHistories(i_sender);
    giveBackSetAside(i_sender);
    queueGiveBack(noneSetAside);
}

void cPortGroupBase::reset()
{
    const QMutexLocker lock(&m_groupMutex);
    emptyQueues(nullptr);
    giveBackSetAside(nullptr);
    m_dropping = false;
    if (m_state == EState::InStep) {
        m_postponedSenders.push_back(nullptr);
        m_postponedReset = true;
        return;
    }
    emptyHistories(nullptr);
    forgetStamps();
}

void cPortGroupBase::releaseEverything()
{
    const QMutexLocker lock(&m_groupMutex);
    emptyQueues(nullptr);
    emptyHistories(nullptr);
    giveBackSetAside(nullptr);
    m_inputs.clear();
}

void cPortGroupBase::emptyQueues(const cOPortBase* i_sender)
{
    for (const Input& input : m_inputs) {
        cIPortQueueBase& queue = *input.queue;
        queue.fates.discarded += quint64(queue.data.size());
        for (cBuffer* buffer : qAsConst(queue.data))
            giveBackOrSetAside(buffer, i_sender);
        queue.data.clear();
        queue.forget();
    }
}

void cPortGroupBase::emptyHistories(const cOPortBase* i_sender)
{
    cPortHistoryBase::Buffers taken;
    for (const Input& input : m_inputs)
        input.history->takeAll(taken, input.queue->fates);
    for (cBuffer* buffer : taken)
        giveBackOrSetAside(buffer, i_sender);
}

void cPortGroupBase::giveBackOrSetAside(cBuffer* i_buffer, const cOPortBase* i_sender)
{
    if (!i_sender || i_buffer->getParentPort() == i_sender)
        i_buffer->releaseAndUnrefBufferAtPort();
    else
        m_setAside.push_back(i_buffer);
}

void cPortGroupBase::giveBackSetAside(const cOPortBase* i_sender)
{
    const auto giveBack = [&](cBuffer* i_buffer) {
        if (i_sender && i_buffer->getParentPort() != i_sender)
            return false;
        i_buffer->releaseAndUnrefBufferAtPort();
        return true;
    };
    m_setAside.erase(std::remove_if(m_setAside.begin(), m_setAside.end(), giveBack), m_setAside.end());
}

void cPortGroupBase::queueGiveBack(bool i_noneBefore)
{
    if (!i_noneBefore || m_setAside.empty())
        return;
    const auto giveBack = [this] {
        const QMutexLocker lock(&m_groupMutex);
        giveBackSetAside(nullptr);
        return true;
    };
    m_station->add2CallbackQueue(giveBack, this, cBufferStamp::s_invalid);
}

void cPortGroupBase::applyPostponed()
{
    const bool noneSetAside = m_setAside.empty();
    for (const cOPortBase* sender : m_postponedSenders) {
        emptyHistories(sender);
        giveBackSetAside(sender);
    }
    m_postponedSenders.clear();
    queueGiveBack(noneSetAside);
    if (m_postponedReset)
        forgetStamps();
    m_postponedReset = false;
}

void cPortGroupBase::forgetStamps()
{
    m_currentStamp = cBufferStamp();
    m_previousStamp = cBufferStamp();
    m_state = EState::Ready;
    ++m_generation;
}

#include "moc_cPortGroupBase.cpp"
