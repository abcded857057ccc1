#include <tarnflow/cGraph.h>

#include "cFlow.h"
#include "graphErrors.h"

#include <tarnflow/cIPortBase.h>
#include <tarnflow/cOPortBase.h>
#include <tarnflow/cSourceStation.h>

#include <exception>

using graphErrors::fail;
using graphErrors::quoted;

namespace {
/** A node that could not be started. */
struct StartFailure {
    QString place;
    QString message;
};

template <class Step> void startEach(const QList<cDfpNode*>& i_nodes, Step i_step)
{
    for (cDfpNode* node : i_nodes) {
        try {
            i_step(node);
        } catch (const std::exception& exception) {
            throw StartFailure {node->getPathName(), QString::fromLocal8Bit(exception.what())};
        }
    }
}
} // namespace

std::shared_ptr<cFlow> flowOf(const cDfpNode* i_node)
{
    const std::lock_guard lock(cPortBase::linkMutex());
    const cGraph* graph = i_node ? i_node->getGraph() : nullptr;
    if (!graph && i_node && i_node->isGraph())
        graph = static_cast<const cGraph*>(i_node);
    while (graph && graph->getGraph())
        graph = graph->getGraph();
    return graph ? graph->m_flow : nullptr;
}

cGraph::cGraph(const QString& i_name) : cDfpNode(i_name), m_flow(std::make_shared<cFlow>()) {}

cGraph::~cGraph()
{
    if (isRunning())
        cGraph::stop();
    while (!m_nodes.isEmpty())
        delete m_nodes.takeLast();
}

bool cGraph::isGraph() const { return true; }

// --- building ---

QString cGraph::freeName(const QString& i_stem) const
{
    for (int number = 1;; ++number) {
        QString name = i_stem + QString::number(number);
        if (!findNode(name))
            return name;
    }
}

bool cGraph::checkNewName(const QString& i_name, cGraphError* o_error) const
{
    const QString fit = const_cast<cGraph*>(this)->checkName(i_name);
    if (i_name.isEmpty() || fit != i_name)
        return fail(o_error, i_name,
            QStringLiteral("the name of a node has letters, digits, '_' and '-' only"),
            fit.isEmpty() ? QString() : QStringLiteral("call it %1").arg(quoted(fit)));
    if (findNode(i_name))
        return fail(o_error, i_name, QStringLiteral("there is a node of this name already"),
            QStringLiteral("give each node a name of its own"));
    return true;
}

void cGraph::adopt(cDfpNode* i_node)
{
    const std::lock_guard lock(cPortBase::linkMutex());
    i_node->m_graph = this;
    m_nodes.append(i_node);
    cPortBase::linksChanged();
}

cStation* cGraph::addStation(const QString& i_id, const QString& i_name, cGraphError* o_error)
{
    const QStringList found = cStation::resolveIdentifier(i_id);
    if (found.isEmpty()) {
        QStringList known = cStation::getIdentifiers();
        if (!i_id.contains(QLatin1Char('/')))
            for (QString& id : known)
                id = id.section(QLatin1Char('/'), -1);
        fail(o_error, i_id, QStringLiteral("there is no station %1").arg(quoted(i_id)),
            graphErrors::suggest(i_id, known, QStringLiteral("stations")));
        return nullptr;
    }
    if (found.size() > 1) {
        fail(o_error, i_id,
            QStringLiteral("%1 names several stations: %2")
                .arg(quoted(i_id), found.join(QStringLiteral(", "))),
            QStringLiteral("write as much of the path as makes it unique"));
        return nullptr;
    }
    const QString name
        = i_name.isEmpty() ? freeName(checkName(found.first().section(QLatin1Char('/'), -1))) : i_name;
    if (!checkNewName(name, o_error))
        return nullptr;
    std::unique_ptr<cStation> station;
    try {
        station.reset(cStation::create(found.first()));
    } catch (const std::exception& exception) {
        fail(o_error, name,
            QStringLiteral("cannot be made: %1").arg(QString::fromLocal8Bit(exception.what())));
        return nullptr;
    }
    if (!station) {
        fail(o_error, name, QStringLiteral("cannot be made"));
        return nullptr;
    }
    station->m_name = name;
    adopt(station.get());
    return station.release();
}

bool cGraph::addNode(cDfpNode* i_node, cGraphError* o_error)
{
    if (!i_node || i_node == this || i_node->getGraph())
        return fail(o_error, QString(), QStringLiteral("only a node that is in no graph can be added"));
    for (const cDfpNode* graph = this; graph; graph = graph->getGraph())
        if (graph == i_node)
            return fail(o_error, i_node->getName(), QStringLiteral("a graph cannot be inside itself"));
    const QString name = i_node->getName().isEmpty() ? freeName(QStringLiteral("node")) : i_node->getName();
    if (!checkNewName(name, o_error))
        return false;
    i_node->m_name = name;
    adopt(i_node);
    return true;
}

cGraph* cGraph::addGraph(const QString& i_name, cGraphError* o_error)
{
    const QString name = i_name.isEmpty() ? freeName(QStringLiteral("graph")) : i_name;
    if (!checkNewName(name, o_error))
        return nullptr;
    auto* graph = new cGraph(name);
    adopt(graph);
    return graph;
}

bool cGraph::removeNode(const QString& i_name, cGraphError* o_error)
{
    cDfpNode* node = needNode(i_name, o_error);
    if (!node)
        return false;
    if (node->getGraph() != this)
        return node->getGraph()->removeNode(node->getName(), o_error);
    if (getRoot()->isRunning())
        return fail(o_error, i_name, QStringLiteral("a node cannot be removed while the graph runs"),
            QStringLiteral("stop the graph first"));
    {
        const std::lock_guard lock(cPortBase::linkMutex());
        m_nodes.removeOne(node);
        cPortBase::linksChanged();
    }
    delete node;
    return true;
}

bool cGraph::renameNode(const QString& i_name, const QString& i_newName, cGraphError* o_error)
{
    cDfpNode* node = needNode(i_name, o_error);
    if (!node)
        return false;
    if (node->getGraph() != this)
        return node->getGraph()->renameNode(node->getName(), i_newName, o_error);
    if (node->getName() == i_newName)
        return true;
    if (!checkNewName(i_newName, o_error))
        return false;
    const std::lock_guard lock(cPortBase::linkMutex());
    node->m_name = i_newName;
    return true;
}

cDfpNode* cGraph::findNode(const QString& i_path) const
{
    const QString name = i_path.section(QLatin1Char('/'), 0, 0);
    const QString rest = i_path.section(QLatin1Char('/'), 1);
    for (cDfpNode* node : m_nodes) {
        if (node->getName() != name)
            continue;
        if (!i_path.contains(QLatin1Char('/')))
            return node;
        return node->isGraph() ? static_cast<cGraph*>(node)->findNode(rest) : nullptr;
    }
    return nullptr;
}

cDfpNode* cGraph::needNode(const QString& i_path, cGraphError* o_error) const
{
    if (cDfpNode* node = findNode(i_path))
        return node;
    QStringList known;
    for (const cDfpNode* node : getAllNodes())
        known.append(node->getPathName());
    // Paths are given from here, not from the outermost name.
    const QString own = getPathName();
    if (!own.isEmpty())
        for (QString& path : known)
            path.remove(0, own.size() + 1);
    fail(o_error, i_path, QStringLiteral("there is no node %1").arg(quoted(i_path)),
        graphErrors::suggest(i_path, known, QStringLiteral("nodes")));
    return nullptr;
}

QList<cDfpNode*> cGraph::getAllNodes() const
{
    QList<cDfpNode*> nodes;
    for (cDfpNode* node : m_nodes) {
        nodes.append(node);
        if (node->isGraph())
            nodes += static_cast<cGraph*>(node)->getAllNodes();
    }
    return nodes;
}

QList<cStation*> cGraph::getStations() const
{
    QList<cStation*> stations;
    for (cDfpNode* node : getAllNodes())
        if (node->isStation())
            stations.append(static_cast<cStation*>(node));
    return stations;
}

cGraph* cGraph::getRoot()
{
    cGraph* root = this;
    while (root->getGraph())
        root = root->getGraph();
    return root;
}

void cGraph::setEnabled(bool i_enabled)
{
    cDfpNode::setEnabled(i_enabled);
    for (cStation* station : getStations())
        station->enableChanged(station->isEnabled());
}

// --- running ---

void cGraph::initialize(const cMapObj& i_params)
{
    cDfpNode::initialize(i_params);
    startEach(m_nodes, [](cDfpNode* node) { node->initialize(cMapObj()); });
}

bool cGraph::canStart()
{
    for (cDfpNode* node : qAsConst(m_nodes))
        if (!node->canStart())
            return false;
    return true;
}

void cGraph::start(StartReasons i_reason)
{
    startEach(m_nodes, [i_reason](cDfpNode* node) { node->start(i_reason); });
}

void cGraph::postStart(StartReasons i_reason)
{
    startEach(m_nodes, [i_reason](cDfpNode* node) { node->postStart(i_reason); });
}

void cGraph::stop()
{
    // First nobody sleeps any more and no job follows, anywhere; then each station can be waited for.
    const QList<cStation*> stations = getStations();
    for (cStation* station : stations)
        station->halt();
    for (cDfpNode* node : qAsConst(m_nodes))
        node->stop();
    m_flow->setRunning(false);
}

void cGraph::destroy()
{
    for (cDfpNode* node : qAsConst(m_nodes))
        node->destroy();
}

bool cGraph::launch(QList<cGraphError>* o_errors) { return run(EStartReason::Start, o_errors); }

bool cGraph::relaunch(QList<cGraphError>* o_errors)
{
    stop();
    return run(EStartReason::Restart, o_errors);
}

bool cGraph::run(StartReasons i_reason, QList<cGraphError>* o_errors)
{
    QList<cGraphError> errors;
    if (getGraph())
        errors.append({getPathName(), QStringLiteral("is inside another graph"),
            QStringLiteral("launch the outermost graph")});
    else if (isRunning())
        errors.append({getName(), QStringLiteral("the graph runs already"), QString()});
    else
        errors = check();
    if (errors.isEmpty()) {
        try {
            initialize(cMapObj());
            updateRooms();
            m_flow->setRunning(true);
            start(i_reason);
            postStart(i_reason);
        } catch (const StartFailure& failure) {
            stop();
            errors.append(
                {failure.place, QStringLiteral("cannot be started: %1").arg(failure.message), QString()});
        }
    }
    if (o_errors)
        *o_errors = errors;
    return errors.isEmpty();
}

void cGraph::finishSources()
{
    for (cStation* station : getStations())
        if (auto* source = dynamic_cast<cSourceStation*>(station))
            source->finish();
}

bool cGraph::isRunning() const { return m_flow->isRunning(); }

cGraph::EFlow cGraph::getFlow() const { return m_flow->getState(); }

cGraph::EFlow cGraph::waitForFlow(int i_milliseconds) { return m_flow->waitWhileRunning(i_milliseconds); }

QList<cPortFates> cGraph::getFates() const
{
    QList<cPortFates> fates;
    for (const cStation* station : getStations()) {
        const QString path = station->getPathName();
        for (const cIPortBase* port : station->getInports())
            fates.append({path, port->getName(), false, port->getFates()});
        for (const cOPortBase* port : station->getOutports())
            fates.append({path, port->getName(), true, port->getFates()});
    }
    return fates;
}

#include "moc_cGraph.cpp"
