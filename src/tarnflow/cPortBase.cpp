#include <tarnflow/cPortBase.h>

#include <tarnbase/cObjType.h>
#include <tarnflow/cBufferConverterBase.h>
#include <tarnflow/cDfpNode.h>
#include <tarnflow/cIPortBase.h>
#include <tarnflow/cOPortBase.h>

#include <QSet>
#include <algorithm>
#include <chrono>
#include <cstdlib>
#include <cxxabi.h>

namespace {
constexpr int s_auditLimit = 256;

bool eraseLink(
    QVector<cPortLink>& io_links, const cPortBase* i_port, std::shared_ptr<cBufferConverterBase>& o_converter)
{
    const auto found = std::find_if(
        io_links.begin(), io_links.end(), [&](const cPortLink& link) { return link.port == i_port; });
    if (found == io_links.end())
        return false;
    if (found->converter)
        o_converter = found->converter;
    io_links.erase(found);
    return true;
}
} // namespace

std::atomic<quint64> cPortBase::s_generation {1};

std::recursive_mutex& cPortBase::linkMutex()
{
    static std::recursive_mutex s_mutex;
    return s_mutex;
}

void cPortBase::linksChanged() { s_generation.fetch_add(1, std::memory_order_acq_rel); }

cPortBase::cPortBase(cDfpNode* i_node, const QString& i_name) : m_name(i_name)
{
    if (i_node)
        attach(i_node, i_name);
}

cPortBase::~cPortBase()
{
    if (m_node)
        m_node->removePort(this);
}

void cPortBase::removeOneLink(cPortBase* i_port)
{
    const std::lock_guard lock(linkMutex());
    if (i_port->hasInner(this))
        i_port->removeLink(this);
    else
        unlinkPorts(this, i_port);
}

void cPortBase::removeAllLinks()
{
    const std::lock_guard lock(linkMutex());
    while (!m_links.isEmpty())
        removeOneLink(m_links.first().port);
}

void cPortBase::attach(cDfpNode* i_node, const QString& i_name)
{
    m_node = i_node;
    m_name = i_name;
    m_params.setObjectName(i_name);
    if (m_node)
        m_node->addPort(this);
}

QString cPortBase::getPortPath() const
{
    return m_node ? m_node->getPathName() + QLatin1Char('.') + m_name : m_name;
}

void cPortBase::addAuditRecord(const cBufferStamp& i_stamp, const QString& i_text)
{
    const qint64 now = std::chrono::steady_clock::now().time_since_epoch() / std::chrono::nanoseconds(1);
    const std::lock_guard lock(m_auditMutex);
    if (m_auditRecords.size() >= s_auditLimit)
        m_auditRecords.removeFirst();
    m_auditRecords.append({i_stamp, now, i_text});
}

QList<cAuditRecord> cPortBase::getAuditRecords() const
{
    const std::lock_guard lock(m_auditMutex);
    return m_auditRecords;
}

void cPortBase::linkPorts(
    cPortBase* i_from, cPortBase* i_to, std::shared_ptr<cBufferConverterBase> i_converter)
{
    static quint64 s_serial = 0;
    const std::lock_guard lock(linkMutex());
    ++s_serial;
    i_from->m_links.append({i_to, nullptr, s_serial});
    i_to->m_links.append({i_from, std::move(i_converter), s_serial});
    linksChanged();
}

bool cPortBase::unlinkPorts(cPortBase* i_a, cPortBase* i_b)
{
    const std::lock_guard lock(linkMutex());
    std::shared_ptr<cBufferConverterBase> converter;
    cPortBase* receiver = i_a->isInport() ? i_a : i_b;
    const bool atA = eraseLink(i_a->m_links, i_b, converter);
    const bool atB = eraseLink(i_b->m_links, i_a, converter);
    if (!atA && !atB)
        return false;
    // Buffers that a converter made may wait in the receiver's queue; their port must be there until they
    // have come back.
    auto& retired = receiver->m_retired;
    retired.erase(std::remove_if(retired.begin(), retired.end(),
                      [](const auto& old) { return old->getPool()->getHeldCount() == 0; }),
        retired.end());
    if (converter)
        retired.append(converter);
    linksChanged();
    return true;
}

void cPortBase::removeChannels()
{
    QSet<cOPortBase*> senders;
    {
        const std::lock_guard lock(linkMutex());
        const auto addSenders = [&](cPortBase* i_port) {
            if (auto* out = dynamic_cast<cOPortBase*>(i_port))
                for (cOPortBase* sender : out->getSender(out->getTypeID()))
                    senders.insert(sender);
        };
        addSenders(this);
        for (const cPortLink& link : qAsConst(m_links))
            addSenders(link.port);
        removeAllLinks();
    }
    for (cOPortBase* sender : senders)
        sender->waitForDeliveries();
}

QList<cPortBase*> cPortBase::getLinkedPorts() const
{
    const std::lock_guard lock(linkMutex());
    QList<cPortBase*> ports;
    for (const cPortLink& link : m_links)
        ports.append(link.port);
    return ports;
}

cBufferConverterBase* cPortBase::findConverter(const std::type_info& i_type) const
{
    for (const cPortLink& link : m_links)
        if (link.converter && link.converter->getTypeInfoSrc() == i_type)
            return link.converter.get();
    return nullptr;
}

QString cPortBase::getTypeName() const { return getTypeName(getTypeID()); }

QString cPortBase::getTypeName(const std::type_info& i_type)
{
    const cObjType* known = cObjType::findType(i_type);
    if (known->getTypeInfo() && *known->getTypeInfo() == i_type)
        return known->getName();
    int status = -1;
    const std::unique_ptr<char, void (*)(void*)> name(
        abi::__cxa_demangle(i_type.name(), nullptr, nullptr, &status), std::free);
    return QString::fromLatin1(status == 0 ? name.get() : i_type.name());
}

bool cPortBase::checkStaticData(const cPortBase* i_other) { return getTypeID() == i_other->getTypeID(); }

void cPortBase::enableAudit(bool i_enable) { m_audit = i_enable; }

bool cPortBase::isExport() const { return false; }
bool cPortBase::isImport() const { return false; }
bool cPortBase::isInport() const { return false; }
bool cPortBase::isOutport() const { return false; }
bool cPortBase::isJustDeclared() const { return false; }
QString cPortBase::getTooltip() const { return QString(); }
QList<cPortBase*> cPortBase::getInnerPorts() const { return {}; }
bool cPortBase::hasInner(const cPortBase*) const { return false; }
bool cPortBase::addInner(cPortBase*) { return false; }

#include "moc_cPortBase.cpp"
