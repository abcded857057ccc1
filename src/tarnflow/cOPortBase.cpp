#include <tarnflow/cOPortBase.h>

#include "cBufferPool.h"

#include <tarnbase/cTracer.h>
#include <tarnflow/cBuffer.h>
#include <tarnflow/cBufferConverterBase.h>
#include <tarnflow/cDfpNode.h>
#include <tarnflow/cIPortBase.h>
#include <tarnflow/cStepScope.h>

#include <algorithm>

/** Who gets what the port sends, as of some link generation. */
struct cOPortBase::Receivers {
    struct Receiver {
        cIPortBase* port;
        cBufferConverterBase* converter;
        std::shared_ptr<cBufferConverterBase> keeper; ///< keeps it as long as a delivery may use it
    };
    quint64 generation = 0;
    std::vector<Receiver> list;
    int users = 0; ///< deliveries under way, guarded by the port's m_receiversMutex
};

/** One delivery under way: holds on to the receivers of the moment at which it began. No lock is held
 * meanwhile. */
class cOPortBase::Delivery {
public:
    explicit Delivery(cOPortBase& io_port) : m_port(io_port), m_outer(s_innermost)
    {
        {
            const std::lock_guard lock(m_port.m_receiversMutex);
            m_receivers = &m_port.currentReceivers();
            ++m_receivers->users;
        }
        s_innermost = this;
    }

    ~Delivery()
    {
        s_innermost = m_outer;
        const std::lock_guard lock(m_port.m_receiversMutex);
        if (--m_receivers->users > 0 || m_receivers == m_port.m_receivers.get())
            return;
        auto& outdated = m_port.m_outdated;
        outdated.erase(std::find_if(
            outdated.begin(), outdated.end(), [&](const auto& old) { return old.get() == m_receivers; }));
        m_port.m_deliveryEnded.notify_all();
    }

    Delivery(const Delivery&) = delete;
    Delivery& operator=(const Delivery&) = delete;

    const std::vector<Receivers::Receiver>& receivers() const { return m_receivers->list; }

    /** How many deliveries to these receivers the calling thread itself has under way. */
    static int countOwn(const Receivers* i_receivers)
    {
        int count = 0;
        for (const Delivery* delivery = s_innermost; delivery; delivery = delivery->m_outer)
            count += delivery->m_receivers == i_receivers;
        return count;
    }

private:
    static thread_local Delivery* s_innermost;

    cOPortBase& m_port;
    Receivers* m_receivers;
    Delivery* m_outer;
};

thread_local cOPortBase::Delivery* cOPortBase::Delivery::s_innermost = nullptr;

cOPortBase::cOPortBase(cDfpNode* i_node, const QString& i_name, unsigned int i_poolSize)
    : cPortBase(nullptr, i_name),
      m_poolLimit(int(std::min(i_poolSize, 0x7fffffffu))),
      m_pool(std::make_shared<cBufferPool>(this))
{
    if (i_node)
        attach(i_node, i_name);
}

cOPortBase::~cOPortBase()
{
    removeAllLinks();
    m_pool->close();
}

void cOPortBase::init(cDfpNode* i_node, const QString& i_name) { attach(i_node, i_name); }

cOPortBase::Receivers& cOPortBase::currentReceivers()
{
    if (m_receivers && m_receivers->generation == getLinkGeneration())
        return *m_receivers;
    if (m_receivers && m_receivers->users > 0)
        m_outdated.push_back(m_receivers);
    auto receivers = std::make_shared<Receivers>();
    {
        const std::lock_guard lock(linkMutex());
        receivers->generation = getLinkGeneration();
        for (const auto& [port, converter] : getReceiver())
            receivers->list.push_back(
                {port, converter, converter ? converter->weak_from_this().lock() : nullptr});
    }
    m_receivers = std::move(receivers);
    return *m_receivers;
}

void cOPortBase::waitForDeliveries()
{
    std::unique_lock lock(m_receiversMutex);
    currentReceivers();
    m_deliveryEnded.wait(lock, [&] {
        return std::all_of(m_outdated.begin(), m_outdated.end(),
            [](const auto& old) { return old->users <= Delivery::countOwn(old.get()); });
    });
}

bool cOPortBase::requestsData() const
{
    bool wanted = hasObserver();
    if (!wanted) {
        const std::lock_guard lock(m_receiversMutex);
        wanted = !const_cast<cOPortBase*>(this)->currentReceivers().list.empty();
    }
    cStepScope::noteRequest(wanted);
    return wanted;
}

cBuffer* cOPortBase::getFreeBufferBase(bool i_wait) { return m_pool->take(m_poolLimit, i_wait); }

void cOPortBase::sendBuffer(cBuffer* i_buffer)
{
    if (!i_buffer)
        return;
    m_sent.fetch_add(1, std::memory_order_relaxed);
    cStepScope::noteSent();
    const cStepScope::Suspension suspension;
    const Delivery delivery(*this);
    // Each taker gets a reference before the first one is called: none can find itself the only holder too
    // early. The caller's reference is the last taker's, who can then work in place.
    const auto takers = std::count_if(delivery.receivers().begin(), delivery.receivers().end(),
        [](const Receivers::Receiver& receiver) { return receiver.port->takesBuffers(); });
    for (auto more = takers; more > 1; --more)
        i_buffer->ref();
    // Who takes nothing may still keep a history, and needs a buffer that is there.
    if (takers < qint64(delivery.receivers().size()))
        i_buffer->ref();
    for (const Receivers::Receiver& receiver : delivery.receivers()) {
        try {
            receiver.port->receiveBuffer(i_buffer->asList(), receiver.converter, true);
        } catch (...) {
            cTracer::cerr << receiver.port->getPortPath() << ": an exception escaped from a receiver"
                          << cTracer::end();
        }
    }
    if (takers < qint64(delivery.receivers().size()))
        i_buffer->releaseAndUnrefBufferAtPort();
    if (takers == 0)
        i_buffer->releaseAndUnrefBufferAtPort();
}

void cOPortBase::releaseAndUnrefBuffer(cBuffer* i_buffer)
{
    if (i_buffer)
        i_buffer->releaseAndUnrefBufferAtPort();
}

void cOPortBase::sendFinish(const cBufferStamp& i_stamp, bool i_idle)
{
    if (i_stamp.isValid())
        m_lastStamp.store(i_stamp.getStamp(), std::memory_order_relaxed);
    const cStepScope::Suspension suspension;
    const Delivery delivery(*this);
    for (const Receivers::Receiver& receiver : delivery.receivers()) {
        if (!receiver.port->m_finishCallback)
            continue;
        try {
            receiver.port->m_finishCallback(i_stamp, i_idle);
        } catch (...) {
            cTracer::cerr << receiver.port->getPortPath() << ": an exception escaped from a receiver"
                          << cTracer::end();
        }
    }
}

void cOPortBase::sendIdle() { sendFinish(cBufferStamp(m_lastStamp.load(std::memory_order_relaxed)), true); }

cBuffer* cOPortBase::makePrivateCopy(cBuffer* i_buffer)
{
    cBuffer* copy = m_pool->takePrivate();
    copyValue(i_buffer, copy);
    copy->setStamp(i_buffer->getStamp());
    return copy;
}

void cOPortBase::setExtraRoom(int i_buffers) { m_pool->setExtraRoom(std::max(i_buffers, 0)); }

int cOPortBase::getExtraRoom() const { return m_pool->getExtraRoom(); }

int cOPortBase::getBufferCount() const { return m_pool->getBufferCount(); }

int cOPortBase::getHeldCount() const { return m_pool->getHeldCount(); }

void cOPortBase::setStopped(bool i_stopped)
{
    m_pool->setStopped(i_stopped);
    // A sender sleeps in the pool of a link's converter just as well.
    QVector<std::shared_ptr<cBufferConverterBase>> converters;
    {
        const std::lock_guard lock(linkMutex());
        collectConverters(converters);
    }
    for (const auto& converter : converters)
        converter->getPool()->setStopped(i_stopped);
}

void cOPortBase::collectConverters(QVector<std::shared_ptr<cBufferConverterBase>>& io_converters) const
{
    for (const cPortLink& link : m_links) {
        if (link.port->isExport())
            static_cast<const cOPortBase*>(link.port)->collectConverters(io_converters);
        else if (link.port->isInport())
            static_cast<const cIPortBase*>(link.port)->collectConverters(io_converters);
    }
}

bool cOPortBase::isBlocked() const { return m_pool->hasSleepers(); }

QList<const cStation*> cOPortBase::getSleepers() const { return m_pool->getSleepers(); }

bool cOPortBase::isOutport() const { return true; }

bool cOPortBase::isConnected() const
{
    const std::lock_guard lock(linkMutex());
    return !m_links.isEmpty();
}

void cOPortBase::removeLink(cPortBase* i_port) { removeOneLink(i_port); }

QList<QPair<cIPortBase*, cBufferConverterBase*>> cOPortBase::getReceiver()
{
    const std::lock_guard lock(linkMutex());
    QList<QPair<cIPortBase*, cBufferConverterBase*>> receivers;
    for (const cPortLink& link : m_links) {
        if (link.port->getNode() && !link.port->getNode()->isEnabled())
            continue;
        if (link.port->isExport())
            receivers += static_cast<cOPortBase*>(link.port)->getReceiver();
        else
            receivers += static_cast<cIPortBase*>(link.port)->getReceiver(getTypeID());
    }
    return receivers;
}

QList<cOPortBase*> cOPortBase::getSender(const std::type_info& i_type)
{
    if (i_type == getTypeID())
        return {this};
    const std::lock_guard lock(linkMutex());
    return findConverter(i_type) ? QList<cOPortBase*> {this} : QList<cOPortBase*>();
}

bool cOPortBase::hasObserver() const { return false; }

cFates cOPortBase::getFates() const
{
    cFates fates;
    fates.arrived = m_sent.load(std::memory_order_relaxed);
    fates.lost = m_lost.load(std::memory_order_relaxed);
    return fates;
}

void cOPortBase::noteLost()
{
    m_lost.fetch_add(1, std::memory_order_relaxed);
    cStepScope::noteLost();
}

#include "moc_cOPortBase.cpp"
