#include <tarnflow/cStation.h>

#include "cFlow.h"
#include "cStationThread.h"

#include <tarnbase/cError.h>
#include <tarnflow/cGraph.h>
#include <tarnflow/cOPortBase.h>
#include <tarnflow/cPortGroupBase.h>

#include <algorithm>

cStation::cStation() : cStation(QString()) {}

cStation::cStation(const QString& i_name)
    : cDfpNode(i_name),
      m_thread(std::make_unique<cStationThread>(*this))
{
}

cStation::~cStation()
{
    m_thread->close();
    m_thread->waitUntilIdle();
    revive();
}

QString cStation::getIdentifier() const { return m_identifier; }

void cStation::add2CallbackQueue(std::function<bool()>&& i_function, cPortGroupBase* i_group, qint64 i_stamp)
{
    m_thread->add(std::move(i_function), i_group, i_stamp);
}

bool cStation::isStation() const { return true; }

void cStation::setEnabled(bool i_enabled)
{
    cDfpNode::setEnabled(i_enabled);
    enableChanged(isEnabled());
}

QWidget* cStation::getView() const { return nullptr; }

void cStation::enableChanged(bool) {}

void cStation::start(StartReasons)
{
    revive();
    {
        const QMutexLocker lock(&m_misfitMutex);
        m_misfits.clear();
    }
    // What came while the station stood still belongs to no run.
    for (cPortGroupBase* group : getPortGroups())
        group->reset();
    for (cOPortBase* port : getOutports())
        port->setStopped(false);
    m_thread->open(flowOf(this));
}

void cStation::halt()
{
    m_thread->close();
    for (cOPortBase* port : getOutports())
        port->setStopped(true);
}

void cStation::stop()
{
    halt();
    m_thread->waitUntilIdle();
    for (cPortGroupBase* group : getPortGroups())
        group->reset();
}

bool cStation::isDead() const { return m_dead.load(std::memory_order_acquire); }

void cStation::markDead()
{
    m_dead.store(true, std::memory_order_release);
    const QString path = getPathName();
    for (cGraph* graph = getGraph(); graph; graph = graph->getGraph()) {
        try {
            Q_EMIT graph->stationDied(path);
        } catch (...) {
            // A listener's own trouble.
        }
    }
}

void cStation::revive()
{
    if (!isDead())
        return;
    // The thread that has locked the mutex unlocks it, as far as it is ours.
    m_thread->runInside([this] { m_inputMutex.unlock(); });
    m_dead.store(false, std::memory_order_release);
}

void cStation::reportError(const cError& i_error)
{
    for (cGraph* graph = getGraph(); graph; graph = graph->getGraph()) {
        try {
            Q_EMIT graph->errorReported(i_error);
        } catch (...) {
            // A listener's own trouble.
        }
    }
}

void cStation::noteMisfit(const cGraphError& i_misfit)
{
    const QMutexLocker lock(&m_misfitMutex);
    const auto isSame = [&](const cGraphError& known) { return known.place == i_misfit.place; };
    if (std::none_of(m_misfits.cbegin(), m_misfits.cend(), isSame))
        m_misfits.append(i_misfit);
}

QList<cGraphError> cStation::getMisfits() const
{
    QList<cGraphError> misfits;
    {
        const QMutexLocker lock(&m_misfitMutex);
        misfits = m_misfits;
    }
    const QString path = getPathName();
    for (cGraphError& misfit : misfits)
        misfit.place = misfit.place.isEmpty() ? path : path + QLatin1Char('.') + misfit.place;
    return misfits;
}

void cStation::setManual(bool i_manual) { m_thread->setManual(i_manual); }

bool cStation::isManual() const { return m_thread->isManual(); }

bool cStation::runNextJob() { return m_thread->runNext(); }

int cStation::getQueuedJobCount() const { return m_thread->getQueuedCount(); }

QList<cPortGroupBase*> cStation::getPortGroups() const { return m_groups; }

void cStation::addPortGroup(cPortGroupBase* i_group)
{
    m_groups.append(i_group);
    connect(i_group, &cPortGroupBase::exceptionRaised, this, &cStation::reportError, Qt::DirectConnection);
}

void cStation::removePortGroup(cPortGroupBase* i_group)
{
    m_groups.removeOne(i_group);
    m_thread->removeGroup(i_group);
}

#include "moc_cStation.cpp"
