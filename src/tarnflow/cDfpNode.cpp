#include <tarnflow/cDfpNode.h>

#include <tarnflow/cGraph.h>
#include <tarnflow/cIPortBase.h>
#include <tarnflow/cOPortBase.h>

#include <algorithm>

cDfpNode::cDfpNode(const QString& i_name) : m_name(i_name) {}

cDfpNode::~cDfpNode()
{
    // The ports that are members have gone by now. What is left was made dynamically, and a boundary port can
    // take another one with it.
    while (!m_inports.isEmpty())
        delete m_inports.last();
    while (!m_outports.isEmpty())
        delete m_outports.last();
}

void cDfpNode::initialize(const cMapObj& i_params)
{
    m_params.merge(i_params, cObj::MergeExistingOnly | cObj::MergeAssignOnly);
}

bool cDfpNode::canStart() { return true; }
void cDfpNode::start(StartReasons) {}
void cDfpNode::postStart(StartReasons) {}
void cDfpNode::stop() {}
void cDfpNode::destroy() {}
bool cDfpNode::isProject() const { return false; }
bool cDfpNode::isGraph() const { return false; }
bool cDfpNode::isStation() const { return false; }

cIPortBase* cDfpNode::getInport(const QString& i_name) const
{
    const std::lock_guard lock(cPortBase::linkMutex());
    for (cIPortBase* port : m_inports)
        if (port->getName() == i_name)
            return port;
    return nullptr;
}

cOPortBase* cDfpNode::getOutport(const QString& i_name) const
{
    const std::lock_guard lock(cPortBase::linkMutex());
    for (cOPortBase* port : m_outports)
        if (port->getName() == i_name)
            return port;
    return nullptr;
}

QString cDfpNode::checkName(const QString& i_name)
{
    QString name;
    for (const QChar character : i_name)
        if (character.isLetterOrNumber() || character == QLatin1Char('_') || character == QLatin1Char('-'))
            name += character;
    return name;
}

bool cDfpNode::isEnabled() const
{
    for (const cDfpNode* node = this; node; node = node->m_graph)
        if (!node->m_enabled.load(std::memory_order_acquire))
            return false;
    return true;
}

void cDfpNode::setEnabled(bool i_enabled)
{
    const std::lock_guard lock(cPortBase::linkMutex());
    m_enabled.store(i_enabled, std::memory_order_release);
    cPortBase::linksChanged();
}

QString cDfpNode::getName() const
{
    const std::lock_guard lock(cPortBase::linkMutex());
    return m_name;
}

QString cDfpNode::getPathName() const
{
    const std::lock_guard lock(cPortBase::linkMutex());
    QString path = m_name;
    for (const cDfpNode* node = m_graph; node; node = node->m_graph)
        if (!node->m_name.isEmpty())
            path = node->m_name + QLatin1Char('/') + path;
    return path;
}

cGraph* cDfpNode::getGraph() const { return m_graph; }

QList<cIPortBase*> cDfpNode::getInports() const
{
    const std::lock_guard lock(cPortBase::linkMutex());
    return m_inports;
}

QList<cOPortBase*> cDfpNode::getOutports() const
{
    const std::lock_guard lock(cPortBase::linkMutex());
    return m_outports;
}

void cDfpNode::addPort(cPortBase* i_port)
{
    const std::lock_guard lock(cPortBase::linkMutex());
    if (auto* inport = dynamic_cast<cIPortBase*>(i_port))
        m_inports.append(inport);
    else if (auto* outport = dynamic_cast<cOPortBase*>(i_port))
        m_outports.append(outport);
}

void cDfpNode::removePort(cPortBase* i_port)
{
    // Called from the port's destructor too, when it is nothing more than a cPortBase: so no casts to what it
    // was.
    const std::lock_guard lock(cPortBase::linkMutex());
    const auto isPort = [&](cPortBase* port) { return port == i_port; };
    m_inports.erase(std::remove_if(m_inports.begin(), m_inports.end(), isPort), m_inports.end());
    m_outports.erase(std::remove_if(m_outports.begin(), m_outports.end(), isPort), m_outports.end());
}

#include "moc_cDfpNode.cpp"
