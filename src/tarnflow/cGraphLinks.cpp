#include <tarnflow/cGraph.h>

#include "graphErrors.h"

#include <tarnflow/cBufferConverterBase.h>
#include <tarnflow/cIPortBase.h>
#include <tarnflow/cOPortBase.h>

#include <algorithm>
#include <map>

using graphErrors::fail;
using graphErrors::quoted;

namespace {
/** "img (image), out (double)" */
template <class Port> QString describe(const QList<Port*>& i_ports)
{
    QStringList texts;
    for (const Port* port : i_ports)
        texts.append(QStringLiteral("%1 (%2)").arg(port->getName(), port->getTypeName()));
    return texts.isEmpty() ? QStringLiteral("nothing") : texts.join(QStringLiteral(", "));
}

template <class Port> QStringList namesOf(const QList<Port*>& i_ports)
{
    QStringList names;
    for (const Port* port : i_ports)
        names.append(port->getName());
    return names;
}

bool isLinked(const cOPortBase* i_from, cIPortBase* i_to) { return i_from->getLinkedPorts().contains(i_to); }

bool canConvert(cOPortBase* i_from, cIPortBase* i_to)
{
    const std::unique_ptr<cBufferConverterBase> converter(i_to->makeBufferConverter(i_from->getTypeID()));
    return converter != nullptr;
}

/** Whether what the sender gives is what the receiver takes, as far as is known before data flows. */
bool fits(cOPortBase* i_from, cIPortBase* i_to)
{
    if (i_from->getTypeID() != i_to->getTypeID())
        return canConvert(i_from, i_to);
    // Boundary ports know nothing by themselves: what counts is what stands behind them.
    for (cOPortBase* sender : i_from->getSender(i_from->getTypeID()))
        for (const auto& [receiver, converter] : i_to->getReceiver(i_to->getTypeID()))
            if (!sender->checkStaticData(receiver) || !receiver->checkStaticData(sender))
                return false;
    return i_from->checkStaticData(i_to) && i_to->checkStaticData(i_from);
}
} // namespace

QList<cOPortBase*> cGraph::findOutports(const QString& i_path, cGraphError* o_error) const
{
    const QString port = i_path.section(QLatin1Char('.'), 1);
    const cDfpNode* node = needNode(i_path.section(QLatin1Char('.'), 0, 0), o_error);
    if (!node)
        return {};
    const QList<cOPortBase*> ports = node->getOutports();
    if (port.isEmpty()) {
        if (ports.isEmpty())
            fail(o_error, i_path, QStringLiteral("has no output"));
        return ports;
    }
    if (cOPortBase* found = node->getOutport(port))
        return {found};
    fail(o_error, i_path, QStringLiteral("there is no output %1").arg(quoted(port)),
        node->getInport(port) ? QStringLiteral("%1 is an input").arg(quoted(port))
                              : graphErrors::suggest(port, namesOf(ports), QStringLiteral("outputs")));
    return {};
}

QList<cIPortBase*> cGraph::findInports(const QString& i_path, cGraphError* o_error) const
{
    const QString port = i_path.section(QLatin1Char('.'), 1);
    const cDfpNode* node = needNode(i_path.section(QLatin1Char('.'), 0, 0), o_error);
    if (!node)
        return {};
    const QList<cIPortBase*> ports = node->getInports();
    if (port.isEmpty()) {
        if (ports.isEmpty())
            fail(o_error, i_path, QStringLiteral("has no input"));
        return ports;
    }
    if (cIPortBase* found = node->getInport(port))
        return {found};
    fail(o_error, i_path, QStringLiteral("there is no input %1").arg(quoted(port)),
        node->getOutport(port) ? QStringLiteral("%1 is an output").arg(quoted(port))
                               : graphErrors::suggest(port, namesOf(ports), QStringLiteral("inputs")));
    return {};
}

bool cGraph::checkFree(cOPortBase* i_from, cIPortBase* i_to, cGraphError* o_error) const
{
    if (!i_to->isConnected() || isLinked(i_from, i_to)) // of the latter `checkLink` knows more to say
        return true;
    return fail(o_error, i_to->getPortPath(),
        QStringLiteral("has a sender already, %1").arg(quoted(i_to->getLinkedPorts().first()->getPortPath())),
        QStringLiteral("unlink that first"));
}

bool cGraph::link(const QString& i_from, const QString& i_to, cGraphError* o_error)
{
    QList<cOPortBase*> from = findOutports(i_from, o_error);
    if (from.isEmpty())
        return false;
    const QList<cIPortBase*> to = findInports(i_to, o_error);
    if (to.isEmpty())
        return false;
    if (from.size() == 1 && to.size() == 1)
        return checkFree(from.first(), to.first(), o_error) && link(from.first(), to.first(), o_error);

    std::stable_partition(
        from.begin(), from.end(), [](const cOPortBase* port) { return !port->isConnected(); });
    for (const bool converted : {false, true})
        for (cOPortBase* output : qAsConst(from))
            for (cIPortBase* input : to)
                if (!input->isConnected() && (output->getTypeID() != input->getTypeID()) == converted
                    && fits(output, input))
                    return link(output, input, o_error);

    const bool allTaken
        = std::all_of(to.begin(), to.end(), [](const cIPortBase* port) { return port->isConnected(); });
    if (allTaken)
        return fail(o_error, i_to, QStringLiteral("every input is linked already"),
            QStringLiteral("name the input, and unlink what it is linked with"));
    return fail(o_error, i_to,
        QStringLiteral("no free input takes what %1 gives: inputs %2, outputs %3")
            .arg(quoted(i_from), describe(to), describe(from)),
        QStringLiteral("name the ports, as in \"a.out\" and \"b.in\""));
}

bool cGraph::isInside(const cPortBase* i_port) const
{
    for (const cDfpNode* node = i_port->getNode(); node; node = node->getGraph())
        if (node->getGraph() == this)
            return true;
    return false;
}

bool cGraph::checkLink(cOPortBase* i_from, cIPortBase* i_to, cGraphError* o_error) const
{
    const QString from = i_from->getPortPath();
    const QString to = i_to->getPortPath();
    const cDfpNode* sender = i_from->getNode();
    const cDfpNode* receiver = i_to->getNode();
    // A port without a node is a tap of the host: it may look at any place.
    if ((sender && !isInside(i_from)) || (receiver && !isInside(i_to)))
        return fail(o_error, to,
            QStringLiteral("%1 and %2 are not both in this graph").arg(quoted(from), quoted(to)));
    if (sender && receiver && sender->getGraph() != receiver->getGraph())
        return fail(o_error, to, QStringLiteral("a link cannot cross the boundary of a subgraph"),
            QStringLiteral("give the subgraph a port of its own and link that"));
    if (sender && sender == receiver)
        return fail(o_error, to, QStringLiteral("a node cannot feed itself"));
    if (isLinked(i_from, i_to))
        return fail(o_error, to, QStringLiteral("is linked with %1 already").arg(quoted(from)));
    if (i_from->getTypeID() != i_to->getTypeID() && !canConvert(i_from, i_to))
        return fail(o_error, to,
            QStringLiteral("takes %1, but %2 gives %3, and nothing converts the one into the other")
                .arg(i_to->getTypeName(), quoted(from), i_from->getTypeName()));
    if (!fits(i_from, i_to))
        return fail(o_error, to, QStringLiteral("takes nothing of what %1 gives").arg(quoted(from)),
            QStringLiteral("put a converter in between"));
    return true;
}

bool cGraph::link(cOPortBase* i_from, cIPortBase* i_to, cGraphError* o_error)
{
    if (!i_from || !i_to)
        return fail(o_error, QString(), QStringLiteral("a link needs an output and an input"));
    if (!checkLink(i_from, i_to, o_error))
        return false;
    std::shared_ptr<cBufferConverterBase> converter;
    if (i_from->getTypeID() != i_to->getTypeID()) {
        converter.reset(i_to->makeBufferConverter(i_from->getTypeID()));
        cPortBase* pool = converter->getPool();
        pool->m_name = i_from->getPortPath() + QStringLiteral(" to ") + i_to->getPortPath();
    }
    cPortBase::linkPorts(i_from, i_to, std::move(converter));
    getRoot()->updateRooms();
    return true;
}

bool cGraph::unlink(const QString& i_from, const QString& i_to, cGraphError* o_error)
{
    const QList<cOPortBase*> from = findOutports(i_from, o_error);
    if (from.isEmpty())
        return false;
    const QList<cIPortBase*> to = findInports(i_to, o_error);
    if (to.isEmpty())
        return false;
    for (cOPortBase* output : from)
        for (cIPortBase* input : to)
            if (isLinked(output, input))
                return unlink(output, input, o_error);
    return fail(o_error, i_to, QStringLiteral("is not linked with %1").arg(quoted(i_from)));
}

bool cGraph::unlink(cOPortBase* i_from, cIPortBase* i_to, cGraphError* o_error)
{
    if (!i_from || !i_to || !isLinked(i_from, i_to))
        return fail(o_error, i_to ? i_to->getPortPath() : QString(), QStringLiteral("there is no such link"));
    QList<cOPortBase*> senders;
    std::shared_ptr<cBufferConverterBase> converter;
    {
        const std::lock_guard lock(cPortBase::linkMutex());
        senders = i_from->getSender(i_from->getTypeID());
        for (const cPortLink& link : qAsConst(i_to->m_links))
            if (link.port == i_from)
                converter = link.converter;
        cPortBase::unlinkPorts(i_from, i_to);
    }
    if (converter)
        converter->getPool()->setStopped(true); // else a sender that sleeps there would be waited for
    for (cOPortBase* sender : qAsConst(senders))
        sender->waitForDeliveries();
    getRoot()->updateRooms();
    return true;
}

QList<cGraph::cLink> cGraph::getLinks() const
{
    const std::lock_guard lock(cPortBase::linkMutex());
    std::map<quint64, cLink> links;
    for (const cDfpNode* node : m_nodes)
        for (cOPortBase* from : node->getOutports())
            for (const cPortLink& link : qAsConst(from->m_links))
                if (link.port->isInport() && link.port->getNode() && link.port->getNode()->getGraph() == this)
                    links[link.serial] = {from, static_cast<cIPortBase*>(link.port)};
    QList<cLink> inOrder;
    for (const auto& entry : links)
        inOrder.append(entry.second);
    return inOrder;
}

void cGraph::linkRemoved(cGraph*, cPortBase*, cPortBase*) { cPortBase::linksChanged(); }

// --- boundaries ---

cPortBase* cGraph::findInner(const QString& i_inner, bool i_out, cGraphError* o_error) const
{
    cPortBase* inner = nullptr;
    int count = 0;
    if (i_out) {
        const QList<cOPortBase*> ports = findOutports(i_inner, o_error);
        count = ports.size();
        inner = ports.value(0);
    } else {
        const QList<cIPortBase*> ports = findInports(i_inner, o_error);
        count = ports.size();
        inner = ports.value(0);
    }
    if (count > 1) {
        fail(o_error, i_inner, QStringLiteral("has several ports"),
            QStringLiteral("name the port, as in \"node.port\""));
        return nullptr;
    }
    if (inner && inner->getNode()->getGraph() != this) {
        fail(o_error, i_inner, QStringLiteral("is not directly in this graph"),
            QStringLiteral("export it from the graph that it is in first"));
        return nullptr;
    }
    return inner;
}

bool cGraph::checkExport(const cPortBase* i_inner, const QString& i_name, cGraphError* o_error) const
{
    const cPortBase* same
        = i_inner->isInport() ? static_cast<cPortBase*>(getInport(i_name)) : getOutport(i_name);
    const cPortBase* other
        = i_inner->isInport() ? static_cast<cPortBase*>(getOutport(i_name)) : getInport(i_name);
    if (i_name.isEmpty() || const_cast<cGraph*>(this)->checkName(i_name) != i_name)
        return fail(
            o_error, i_name, QStringLiteral("the name of a port has letters, digits, '_' and '-' only"));
    if (other)
        return fail(o_error, i_name, QStringLiteral("the graph has another port of this name"));
    if (same && same->getTypeID() != i_inner->getTypeID())
        return fail(o_error, i_name,
            QStringLiteral("is of type %1, but %2 is of type %3")
                .arg(same->getTypeName(), quoted(i_inner->getPortPath()), i_inner->getTypeName()));
    if (same && same->hasInner(i_inner))
        return fail(
            o_error, i_name, QStringLiteral("stands for %1 already").arg(quoted(i_inner->getPortPath())));
    if (i_inner->isInport() && i_inner->isConnected())
        return fail(o_error, i_inner->getPortPath(), QStringLiteral("has a sender already"),
            QStringLiteral("unlink that first"));
    return true;
}

cIPortBase* cGraph::exportInport(const QString& i_inner, const QString& i_name, cGraphError* o_error)
{
    auto* inner = static_cast<cIPortBase*>(findInner(i_inner, false, o_error));
    if (!inner)
        return nullptr;
    const QString name = i_name.isEmpty() ? inner->getName() : i_name;
    if (!checkExport(inner, name, o_error))
        return nullptr;
    cIPortBase* boundary = getInport(name);
    if (boundary)
        boundary->addInner(inner);
    else
        boundary = inner->makeExport(inner, this, name);
    getRoot()->updateRooms();
    return boundary;
}

cOPortBase* cGraph::exportOutport(const QString& i_inner, const QString& i_name, cGraphError* o_error)
{
    auto* inner = static_cast<cOPortBase*>(findInner(i_inner, true, o_error));
    if (!inner)
        return nullptr;
    const QString name = i_name.isEmpty() ? inner->getName() : i_name;
    if (!checkExport(inner, name, o_error))
        return nullptr;
    if (getOutport(name)) {
        fail(o_error, name, QStringLiteral("the graph has an output of this name already"),
            QStringLiteral("receivers take one sender each"));
        return nullptr;
    }
    cOPortBase* boundary = inner->makeExport(inner, this, name);
    getRoot()->updateRooms();
    return boundary;
}
