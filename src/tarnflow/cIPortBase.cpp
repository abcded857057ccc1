#include <tarnflow/cIPortBase.h>

#include <tarnflow/cBuffer.h>
#include <tarnflow/cBufferConverterBase.h>
#include <tarnflow/cDfpNode.h>
#include <tarnflow/cOPortBase.h>
#include <tarnflow/cPortGroupBase.h>

#include <algorithm>
#include <chrono>

/** The newest events, in a ring. */
struct cIPortBase::History {
    static constexpr int s_limit = 1024;
    QVector<GraphHistoryEntry> entries;
    int next = 0;
};

cIPortBase::BufferReturner::~BufferReturner() { m_buffer->releaseAndUnrefBufferAtPort(); }

cIPortBase::cIPortBase(cDfpNode* i_node, const QString& i_name) : cPortBase(nullptr, i_name)
{
    if (i_node)
        attach(i_node, i_name);
}

cIPortBase::~cIPortBase() { removeAllLinks(); }

void cIPortBase::init(cDfpNode* i_node, cPortGroupBase* i_group, const QString& i_name)
{
    m_group = i_group;
    attach(i_node, i_name);
}

void cIPortBase::updateHistory(qint64 i_stamp, GraphHistoryEntry::HistoryEntryType i_type)
{
    GraphHistoryEntry entry;
    entry.stamp = i_stamp;
    entry.time = std::chrono::steady_clock::now().time_since_epoch() / std::chrono::nanoseconds(1);
    entry.type = i_type;
    const std::lock_guard lock(m_historyMutex);
    if (!m_history)
        m_history = std::make_unique<History>();
    if (m_history->entries.size() < History::s_limit) {
        m_history->entries.append(entry);
        return;
    }
    m_history->entries[m_history->next] = entry;
    m_history->next = (m_history->next + 1) % History::s_limit;
}

QList<GraphHistoryEntry> cIPortBase::getHistory() const
{
    const std::lock_guard lock(m_historyMutex);
    if (!m_history)
        return {};
    auto entries = m_history->entries;
    std::rotate(entries.begin(), entries.begin() + m_history->next, entries.end());
    return entries.toList();
}

unsigned int cIPortBase::countSenders() const
{
    const quint64 generation = getLinkGeneration();
    const quint64 known = m_senders.load(std::memory_order_relaxed);
    if (known >> 16 == generation)
        return unsigned(known & 0xffff);
    const std::lock_guard lock(linkMutex());
    unsigned int count = 0;
    for (const cPortLink& link : m_links) {
        const cDfpNode* node = link.port->getNode();
        if (node && !node->isEnabled())
            continue;
        if (link.port->isImport())
            count += static_cast<cIPortBase*>(link.port)->countSenders();
        else
            count += unsigned(static_cast<cOPortBase*>(link.port)->getSender(link.port->getTypeID()).size());
    }
    m_senders.store(generation << 16 | std::min(count, 0xffffu), std::memory_order_relaxed);
    return count;
}

bool cIPortBase::receivesData() const { return countSenders() > 0; }

unsigned int cIPortBase::getEnabledChannelCount() const { return countSenders(); }

void cIPortBase::collectConverters(QVector<std::shared_ptr<cBufferConverterBase>>& io_converters) const
{
    for (const cPortLink& link : m_links)
        if (link.converter)
            io_converters.append(link.converter);
    io_converters += m_retired;
}

bool cIPortBase::isInport() const { return true; }

bool cIPortBase::isConnected() const
{
    const std::lock_guard lock(linkMutex());
    return !m_links.isEmpty();
}

void cIPortBase::removeLink(cPortBase* i_port) { removeOneLink(i_port); }

QList<QPair<cIPortBase*, cBufferConverterBase*>> cIPortBase::getReceiver(const std::type_info& i_type)
{
    if (i_type == getTypeID())
        return {{this, nullptr}};
    const std::lock_guard lock(linkMutex());
    if (cBufferConverterBase* converter = findConverter(i_type))
        return {{this, converter}};
    return {};
}

cFates cIPortBase::getFates() const
{
    cFates fates;
    if (m_group)
        fates = m_group->getFates(this);
    const quint64 refused = m_refused.load(std::memory_order_relaxed);
    const quint64 direct = m_direct.load(std::memory_order_relaxed);
    fates.refused += refused;
    fates.used += direct;
    fates.arrived += refused + direct;
    return fates;
}

void cIPortBase::noteRefused() { m_refused.fetch_add(1, std::memory_order_relaxed); }

void cIPortBase::noteDirect() { m_direct.fetch_add(1, std::memory_order_relaxed); }

#include "moc_cIPortBase.cpp"
