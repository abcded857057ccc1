#include "cPipelineBuilder.h"

#include "cValueSource.h"
#include "hostStations.h"
#include "openPorts.h"

#include <algorithm>
#include <tarnflow/cGraph.h>
#include <tarnflow/cIPortBase.h>
#include <tarnflow/cOPortBase.h>
#include <tarnflow/cStation.h>
#include <tuple>

namespace {

QStringList namesIn(const cGraph& i_graph)
{
    QStringList names;
    const auto nodes = i_graph.getNodes();
    for (const cDfpNode* node : nodes)
        names.append(node->getName());
    return names;
}

template <class Ports> QStringList portNames(const Ports& i_ports)
{
    QStringList names;
    for (const auto* port : i_ports)
        names.append(port->getName());
    return names;
}

/** The keys that can be written on a node: its parameters, and those of its inputs after the port's name. */
QStringList keysOf(const cDfpNode& i_node)
{
    QStringList keys = i_node.getParams().getKeys();
    const auto ports = i_node.getInports();
    for (cIPortBase* port : ports)
        for (const QString& key : port->getParams().getKeys())
            keys.append(port->getName() + u'.' + key);
    return keys;
}

} // namespace

cPipelineBuilder::cPipelineBuilder(cGraph& io_graph, const QMap<QString, QString>& i_variables)
    : m_graph(io_graph),
      m_variables(i_variables)
{
}

void cPipelineBuilder::error(const cSourcePos& i_pos, const QString& i_message, const QString& i_help)
{
    m_errors.append({m_file, i_pos, i_message, i_help});
}

void cPipelineBuilder::error(const cSourcePos& i_pos, const cGraphError& i_error)
{
    error(i_pos, i_error.toString(), i_error.help);
}

bool cPipelineBuilder::build(const cPipeline& i_pipeline)
{
    // With names or links missing, the check would only repeat it.
    if (assemble(i_pipeline))
        checkStations();
    return m_errors.isEmpty();
}

bool cPipelineBuilder::assemble(const cPipeline& i_pipeline)
{
    m_file = i_pipeline.file;
    buildScope({i_pipeline, m_graph, false});
    if (m_errors.isEmpty() && m_graph.getStations().isEmpty())
        error({}, QStringLiteral("the graph is empty, expected at least one station"));
    return m_errors.isEmpty();
}

QList<cDiagnostic> cPipelineBuilder::getErrors() const
{
    QList<cDiagnostic> errors = m_errors;
    std::stable_sort(errors.begin(), errors.end(), [](const cDiagnostic& a, const cDiagnostic& b) {
        return std::tie(a.pos.line, a.pos.column) < std::tie(b.pos.line, b.pos.column);
    });
    return errors;
}

void cPipelineBuilder::report(const QList<cGraphError>& i_errors)
{
    for (const cGraphError& found : i_errors)
        m_errors.append(locate(found));
}

cDiagnostic cPipelineBuilder::locate(const cGraphError& i_error) const
{
    // "node.parameter" if that was written, else the node, else the graph around it.
    QString path = i_error.place;
    while (!path.isEmpty() && !m_places.contains(path)) {
        const int end = std::max(path.lastIndexOf(u'.'), path.lastIndexOf(u'/'));
        path.truncate(std::max(end, 0));
    }
    return {m_file, m_places.value(path), i_error.toString(), i_error.help};
}

QString cPipelineBuilder::resolve(const cWord& i_word)
{
    QString text;
    for (const cWordPiece& piece : i_word.pieces) {
        if (piece.kind != cWordPiece::Variable) {
            text += piece.text;
            continue;
        }
        const auto value = m_variables.constFind(piece.text);
        if (value != m_variables.constEnd()) {
            text += *value;
            continue;
        }
        const QString near = host::nearest(piece.text, m_variables.keys());
        error(piece.pos, QStringLiteral("the variable ${%1} has no value").arg(piece.text),
            near.isEmpty() ? QStringLiteral("give it one with -D %1=...").arg(piece.text)
                           : QStringLiteral("did you mean '%1'?").arg(near));
    }
    return text;
}

void cPipelineBuilder::buildScope(const Scope& i_scope)
{
    buildGraphs(i_scope);
    // References may look ahead: all stations first, then the links.
    std::vector<QList<Place>> chains;
    for (const cChain& chain : i_scope.text.chains) {
        QList<Place> places;
        for (const cElement& element : chain.elements)
            places.append({element.kind == cElement::Station ? buildStation(i_scope, element) : QString(), {},
                element.pos});
        chains.push_back(places);
    }
    for (std::size_t c = 0; c < chains.size(); ++c) {
        QList<Place>& places = chains[c];
        for (int i = 0; i < places.size(); ++i)
            if (i_scope.text.chains[c].elements[i].kind == cElement::Reference)
                places[i] = findReference(i_scope, i_scope.text.chains[c].elements[i]);
        for (int i = 1; i < places.size(); ++i)
            buildLink(i_scope, places[i - 1], places[i]);
    }
}

void cPipelineBuilder::buildGraphs(const Scope& i_scope)
{
    for (const cPipeline& text : i_scope.text.graphs) {
        cGraphError problem;
        if (text.name == QLatin1String("in") || text.name == QLatin1String("out")) {
            error(text.pos,
                QStringLiteral("'%1' stands for a graph's own ports and names nothing else").arg(text.name));
        } else if (cGraph* graph = i_scope.graph.addGraph(text.name, &problem)) {
            m_places.insert(graph->getPathName(), text.pos);
            buildScope({text, *graph, true});
        } else {
            error(text.pos, problem);
        }
    }
}

QString cPipelineBuilder::findIdentifier(const cElement& i_element, const QString& i_text)
{
    const QStringList found = cStation::resolveIdentifier(i_text);
    if (found.size() == 1)
        return found.first();
    if (found.isEmpty())
        error(i_element.pos,
            QStringLiteral("unknown station, expected an identifier or the unique end of one, found '%1'")
                .arg(i_text),
            host::suggest(i_text, cStation::getIdentifiers()));
    else
        error(i_element.pos,
            QStringLiteral("the station '%1' is ambiguous, expected one of: %2")
                .arg(i_text, found.join(QStringLiteral(", "))),
            QStringLiteral("write more of the identifier"));
    return {};
}

QString cPipelineBuilder::buildStation(const Scope& i_scope, const cElement& i_element)
{
    const auto hasName = [](const cArgument& i_argument) { return i_argument.key == QLatin1String("name"); };
    const auto named = std::find_if(i_element.arguments.begin(), i_element.arguments.end(), hasName);
    const QString name = named == i_element.arguments.end() ? QString() : resolve(named->value);
    const cSourcePos namePos = named == i_element.arguments.end() ? i_element.pos : named->pos;
    const bool reserved = name == QLatin1String("in") || name == QLatin1String("out");
    if (i_scope.inner && reserved)
        error(
            namePos, QStringLiteral("'%1' stands for a graph's own ports and names nothing else").arg(name));
    if (named != i_element.arguments.end() && name.isEmpty())
        error(namePos, QStringLiteral("a station's name is empty, expected letters, digits, '_' and '-'"));

    const int errors = m_errors.size();
    const QString text = resolve(i_element.station);
    if (m_errors.size() > errors)
        return {};
    const QString identifier = findIdentifier(i_element, text);
    if (identifier.isEmpty())
        return {};
    cGraphError problem;
    cStation* station = i_scope.graph.addStation(identifier, name, &problem);
    if (!station) {
        error(namePos, problem);
        return {};
    }
    m_places.insert(station->getPathName(), i_element.pos);
    writeParams(i_scope, i_element, identifier, *station);
    return station->getName();
}

void cPipelineBuilder::writeParams(
    const Scope& i_scope, const cElement& i_element, const QString& i_identifier, cDfpNode& i_node)
{
    if (i_element.main) {
        const QString key = cStation::getInfo(i_identifier).mainParam;
        if (key.isEmpty())
            error(i_element.main->pos,
                QStringLiteral("%1: the station has no main parameter, expected '!' or key=value, found '%2'")
                    .arg(i_node.getPathName(), i_element.main->toString()),
                QStringLiteral("begin another chain on a line of its own"));
        else
            writeParam(i_scope, i_node, key, *i_element.main, i_element.main->pos);
    }
    for (const cArgument& argument : i_element.arguments)
        if (argument.key != QLatin1String("name"))
            writeParam(i_scope, i_node, argument.key, argument.value, argument.pos);
}

void cPipelineBuilder::writeParam(const Scope& i_scope, const cDfpNode& i_node, const QString& i_key,
    const cWord& i_value, const cSourcePos& i_pos)
{
    const int errors = m_errors.size();
    const QString text = resolve(i_value);
    if (m_errors.size() > errors)
        return;
    m_places.insert(i_node.getPathName() + u'.' + i_key, i_pos);
    const QString path = i_node.getName() + u'.' + i_key;
    cGraphError problem;
    if (!i_scope.graph.findParam(path, &problem)) {
        error(i_pos, QStringLiteral("%1: unknown parameter, found '%2'").arg(i_node.getPathName(), i_key),
            keysOf(i_node).isEmpty() ? QStringLiteral("the station has no parameters")
                                     : host::suggest(i_key, keysOf(i_node)));
        return;
    }
    if (!i_scope.graph.setParam(path, text, &problem))
        error(i_pos, problem);
}

cPipelineBuilder::Place cPipelineBuilder::findReference(const Scope& i_scope, const cElement& i_element)
{
    const QString& node = i_element.node;
    if (i_scope.inner && (node == QLatin1String("in") || node == QLatin1String("out")))
        return {i_element.port, node, i_element.pos};
    const cDfpNode* found = i_scope.graph.findNode(node);
    if (!found) {
        error(i_element.pos, QStringLiteral("unknown station, found '%1.'").arg(node),
            host::suggest(node, namesIn(i_scope.graph)));
        return {{}, {}, i_element.pos};
    }
    if (i_element.port.isEmpty())
        return {node, {}, i_element.pos};
    if (!found->getInport(i_element.port) && !found->getOutport(i_element.port)) {
        const QStringList ports = portNames(found->getInports()) + portNames(found->getOutports());
        error(i_element.pos,
            QStringLiteral("%1: unknown port, found '%2'").arg(found->getPathName(), i_element.port),
            host::suggest(i_element.port, ports));
        return {{}, {}, i_element.pos};
    }
    return {node + u'.' + i_element.port, {}, i_element.pos};
}

void cPipelineBuilder::buildLink(const Scope& i_scope, const Place& i_from, const Place& i_to)
{
    const bool missing = (i_from.path.isEmpty() && i_from.boundary.isEmpty())
        || (i_to.path.isEmpty() && i_to.boundary.isEmpty());
    if (missing)
        return; // reported already
    cGraphError problem;
    if (i_from.boundary.isEmpty() && i_to.boundary.isEmpty()) {
        QString from = i_from.path;
        QString to = i_to.path;
        if (!host::openPorts(i_scope.graph, from, to, problem) || !i_scope.graph.link(from, to, &problem))
            error(i_to.pos, problem);
        return;
    }
    const bool inward = i_from.boundary == QLatin1String("in") && i_to.boundary.isEmpty();
    const bool outward = i_to.boundary == QLatin1String("out") && i_from.boundary.isEmpty();
    if (!inward && !outward) {
        error(i_to.pos,
            QStringLiteral(
                "a chain begins with 'in.' and ends with 'out.', found the reverse, or both at once"));
        return;
    }
    const Place& own = inward ? i_from : i_to;
    const Place& inner = inward ? i_to : i_from;
    // Without a name the graph's port is called like the one inside; without a port it is the first that is
    // free.
    const int dot = inner.path.lastIndexOf(u'.');
    const QString nodePath = inner.path.left(dot < 0 ? inner.path.size() : dot);
    const cDfpNode* node = i_scope.graph.findNode(nodePath);
    QString port = dot < 0 ? QString() : inner.path.mid(dot + 1);
    if (port.isEmpty() && inward) {
        const auto ports = node->getInports();
        const auto free = std::find_if(
            ports.begin(), ports.end(), [](const cIPortBase* i_port) { return !i_port->isConnected(); });
        port = free == ports.end() ? QString() : (*free)->getName();
    } else if (port.isEmpty() && !node->getOutports().isEmpty()) {
        port = node->getOutports().first()->getName();
    }
    if (port.isEmpty()) {
        error(inner.pos,
            QStringLiteral("%1: no port is free for the graph's own port").arg(node->getPathName()));
        return;
    }
    const QString path = nodePath + u'.' + port;
    const QString name = own.path.isEmpty() ? port : own.path;
    const bool done = inward ? i_scope.graph.exportInport(path, name, &problem) != nullptr
                             : i_scope.graph.exportOutport(path, name, &problem) != nullptr;
    if (!done)
        error(own.pos, problem);
}

void cPipelineBuilder::checkStations()
{
    QList<cGraphError> problems = m_graph.check();
    // Sources first: others ask them how many frames will come.
    const auto stations = m_graph.getStations();
    for (cStation* station : stations)
        if (auto* source = dynamic_cast<cFrameSource*>(station)) {
            if (m_limit > 0)
                source->setLimit(m_limit);
            if (auto* own = dynamic_cast<cHostStation*>(station))
                problems += own->checkParams();
        }
    for (cStation* station : stations)
        if (auto* source = dynamic_cast<cValueSource*>(station))
            source->setLimit(m_limit);
    for (cStation* station : stations)
        if (auto* own = dynamic_cast<cHostStation*>(station); own && !dynamic_cast<cFrameSource*>(station))
            problems += own->checkParams();
    report(problems);
}
