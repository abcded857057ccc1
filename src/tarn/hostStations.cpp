#include "hostStations.h"

#include "cConstantStation.h"
#include "cFilesStation.h"
#include "cPrintStation.h"
#include "cSaveStation.h"
#include "cValuesStation.h"

#include <QSet>
#include <tarnflow/cGraph.h>
#include <tarnflow/cIPortBase.h>
#include <tarnflow/cOPortBase.h>

namespace host {
namespace {

/** A walk against the links. Through a subgraph all its stations count, whichever boundary port the way
 * takes. */
class cWalk {
public:
    void visit(const cDfpNode* i_node)
    {
        if (m_seen.contains(i_node))
            return;
        m_seen.insert(i_node);
        if (auto* source = dynamic_cast<cFrameSource*>(const_cast<cDfpNode*>(i_node)))
            found.append(source);
        if (const auto* graph = dynamic_cast<const cGraph*>(i_node)) {
            const auto stations = graph->getStations();
            for (const cStation* station : stations)
                visit(station);
        }
        visitSenders(i_node);
    }

    QList<cFrameSource*> found;

private:
    void visitSenders(const cDfpNode* i_node)
    {
        const cGraph* around = i_node->getGraph();
        if (!around)
            return;
        const auto links = around->getLinks();
        const auto inports = i_node->getInports();
        for (const cIPortBase* port : inports)
            for (const cGraph::cLink& link : links)
                if (link.to == port)
                    visit(link.from->getNode());
        // What comes in through the boundary of the graph around.
        if (!m_left.contains(around)) {
            m_left.insert(around);
            visitSenders(around);
        }
    }

    QSet<const cDfpNode*> m_seen;
    QSet<const cDfpNode*> m_left; ///< graphs that the walk has left through their boundary
};

} // namespace

QList<cFrameSource*> sourcesOf(const cDfpNode& i_node)
{
    cWalk walk;
    walk.visit(&i_node);
    return walk.found;
}

QString nameGivingFile(const QList<cFrameSource*>& i_sources, qint64 i_stamp)
{
    QString file;
    int most = 0;
    for (const cFrameSource* source : i_sources) {
        const QString own = source->getFile(i_stamp);
        if (!own.isEmpty() && source->getFileCount() > most) {
            most = source->getFileCount();
            file = own;
        }
    }
    return file;
}

QString nameWithin(const cGraphError& i_misfit, const cStation& i_station)
{
    return i_misfit.place.mid(i_station.getPathName().size() + 1);
}

bool isAboutParam(const cGraphError& i_misfit, const cStation& i_station)
{
    const QString name = nameWithin(i_misfit, i_station);
    return !name.isEmpty() && !i_station.getInport(name);
}

void registerStations()
{
    static const bool s_done = [] {
        cStation::registercStation(
            QStringLiteral("host/constant"), []() -> cStation* { return new cConstantStation; },
            cConstantStation::getWords());
        cStation::registercStation(
            QStringLiteral("host/files"), []() -> cStation* { return new cFilesStation; },
            cFilesStation::getWords());
        cStation::registercStation(
            QStringLiteral("host/print"), []() -> cStation* { return new cPrintStation; },
            cPrintStation::getWords());
        cStation::registercStation(
            QStringLiteral("host/save"), []() -> cStation* { return new cSaveStation; },
            cSaveStation::getWords());
        cStation::registercStation(
            QStringLiteral("host/values"), []() -> cStation* { return new cValuesStation; },
            cValuesStation::getWords());
        return true;
    }();
    Q_UNUSED(s_done)
}

} // namespace host
