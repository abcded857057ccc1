#include <tarnflow/cBoundary.h>

#include <tarnflow/cBufferConverterBase.h>
#include <tarnflow/cDfpNode.h>
#include <tarnflow/cGraph.h>
#include <tarnflow/cIPortBase.h>
#include <tarnflow/cOPortBase.h>

#include <algorithm>

namespace {
bool isEnabled(const cPortBase* i_port) { return !i_port->getNode() || i_port->getNode()->isEnabled(); }
} // namespace

cBoundary::~cBoundary()
{
    const std::lock_guard lock(cPortBase::linkMutex());
    while (!m_inner.isEmpty())
        cPortBase::unlinkPorts(m_self, m_inner.takeLast());
}

void cBoundary::add(cPortBase* i_inner)
{
    const std::lock_guard lock(cPortBase::linkMutex());
    m_inner.append(i_inner);
    // The serial only orders an inner port's list; the boundary's own list holds what is outside.
    i_inner->m_links.append({m_self, nullptr, 0});
    cPortBase::linksChanged();
}

void cBoundary::enableAudit(bool i_enable)
{
    const std::lock_guard lock(cPortBase::linkMutex());
    for (cPortBase* inner : m_inner)
        inner->enableAudit(i_enable);
}

bool cBoundary::removeLink(cPortBase* i_port)
{
    const std::lock_guard lock(cPortBase::linkMutex());
    // Each call takes the far end out of the list; it may go away itself, being a boundary that has lost its
    // last inner link.
    while (!m_self->m_links.isEmpty())
        m_self->m_links.first().port->removeLink(m_self);
    if (!i_port)
        return false;
    if (m_inner.removeOne(i_port))
        cPortBase::unlinkPorts(m_self, i_port);
    if (auto* graph = dynamic_cast<cGraph*>(m_self->getNode()))
        graph->linkRemoved(graph, m_self->isInport() ? m_self : i_port, m_self->isInport() ? i_port : m_self);
    if (!m_inner.isEmpty())
        return false;
    m_self->removeChannels();
    if (m_self->getNode())
        m_self->getNode()->removePort(m_self);
    return true;
}

QList<QPair<cIPortBase*, cBufferConverterBase*>> cBoundary::getReceiver(const std::type_info& i_type) const
{
    const std::lock_guard lock(cPortBase::linkMutex());
    const bool converts = i_type != m_self->getTypeID();
    QList<QPair<cIPortBase*, cBufferConverterBase*>> receivers;
    for (cPortBase* port : m_inner) {
        auto* inner = static_cast<cIPortBase*>(port);
        if (!isEnabled(inner))
            continue;
        if (!converts) {
            receivers += inner->getReceiver(i_type);
        } else if (cBufferConverterBase* converter = m_self->findConverter(i_type)) {
            // What comes out of the converter is of this boundary's type.
            for (const auto& [receiver, none] : inner->getReceiver(m_self->getTypeID()))
                receivers.append({receiver, converter});
        }
    }
    return receivers;
}

QList<cOPortBase*> cBoundary::getSender(const std::type_info& i_type) const
{
    const std::lock_guard lock(cPortBase::linkMutex());
    QList<cOPortBase*> senders;
    if (i_type != m_self->getTypeID() && !m_self->findConverter(i_type))
        return senders;
    for (cPortBase* port : m_inner)
        if (isEnabled(port))
            senders += static_cast<cOPortBase*>(port)->getSender(port->getTypeID());
    return senders;
}
