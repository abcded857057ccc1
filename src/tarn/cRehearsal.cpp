#include "cRehearsal.h"

#include "cFileFormat.h"
#include "cPipelineBuilder.h"
#include "cValueSource.h"
#include "hostStations.h"
#include "imageConversion.h"

#include <QDeadlineTimer>
#include <QSet>
#include <algorithm>
#include <numeric>
#include <tarnbase/cTracer.h>
#include <tarnflow/cGraph.h>
#include <tarnflow/cIPortBase.h>
#include <tarnflow/cOPortBase.h>
#include <tarnimg/cIPortImg.h>

namespace {

constexpr int s_mostMilliseconds = 1000;

/** No line is traced while it lives. */
class cSilence {
public:
    cSilence()
    {
        for (cTracer* channel : s_channels)
            channel->setState({});
    }
    ~cSilence()
    {
        for (int i = 0; i < 2; ++i)
            s_channels[i]->setState(m_states[i]);
    }
    cSilence(const cSilence&) = delete;
    cSilence& operator=(const cSilence&) = delete;

private:
    static constexpr cTracer* s_channels[] = {&cTracer::cerr, &cTracer::cout};
    const QFlags<cTracer::ETracerState> m_states[2] = {cTracer::cerr.getState(), cTracer::cout.getState()};
};

/** The misfits of places that both lists have, as the first one tells them. */
QList<cGraphError> common(const QList<cGraphError>& i_first, const QList<cGraphError>& i_second)
{
    QList<cGraphError> both;
    std::copy_if(i_first.begin(), i_first.end(), std::back_inserter(both), [&](const cGraphError& i_misfit) {
        return std::any_of(i_second.begin(), i_second.end(),
            [&](const cGraphError& other) { return other.place == i_misfit.place; });
    });
    return both;
}

/** Whether a value comes in that a station computes: that of a few pixels is not the one of the run. */
bool takesComputedValues(const cStation& i_station)
{
    const auto inputs = i_station.getInports();
    return std::any_of(inputs.begin(), inputs.end(), [](const cIPortBase* i_input) {
        const auto senders = i_input->getLinkedPorts();
        return i_input->getTypeID() != typeid(cImg)
            && std::any_of(senders.begin(), senders.end(), [](const cPortBase* i_sender) {
                   return !dynamic_cast<const cValueSource*>(i_sender->getNode());
               });
    });
}

/** Whether the run is bound to meet it too. */
bool isCertain(const cGraphError& i_misfit, const cStation& i_station)
{
    return !host::isAboutParam(i_misfit, i_station) || !takesComputedValues(i_station);
}

/** The first of the types that files with such images can be converted to. */
QString howToConvert(const cImg& i_image, const cSupportedImages& i_taken)
{
    const cImg pixel(i_image, true, {0, 0, 1, 1});
    for (const auto& [type, channels] : i_taken.getList()) {
        try {
            const cImg converted = host::convertImage(pixel, type, {}).image;
            if (i_taken.takes(converted))
                return QStringLiteral("convert the files, as in: tarn convert --type %1 INPUT... OUTPUT")
                    .arg(host::typeName(type));
        } catch (const std::exception&) {
            // Then perhaps to the next.
        }
    }
    return QStringLiteral("take a station for such images, or other files");
}

/** Type and channels of the image in a file; empty if it cannot be read. */
QString kindOf(const QString& i_file)
{
    try {
        return host::peekImage(i_file);
    } catch (const std::exception&) {
        return {};
    }
}

} // namespace

cRehearsal::cRehearsal(
    const cGraph& i_graph, const cPipeline& i_pipeline, const QMap<QString, QString>& i_variables)
    : m_graph(i_graph),
      m_pipeline(i_pipeline),
      m_variables(i_variables)
{
    const auto stations = i_graph.getStations();
    for (cStation* station : stations) {
        const auto outputs = station->getOutports();
        const bool wanted = std::any_of(
            outputs.begin(), outputs.end(), [](const cOPortBase* i_port) { return i_port->isConnected(); });
        if (auto* source = dynamic_cast<cFrameSource*>(station); source && wanted)
            m_sources.push_back(source);
    }
}

QList<cGraphError> cRehearsal::run()
{
    const cSilence silence;
    QDeadlineTimer deadline(s_mostMilliseconds);
    QList<cGraphError> misfits;
    QSet<QString> tried;
    const auto isTried = [&](const QString& i_kinds) { return i_kinds.isNull() || tried.contains(i_kinds); };
    const qint64 stamps = countStamps();
    for (qint64 stamp = 0; stamp < stamps; ++stamp) {
        if (deadline.hasExpired())
            return {};
        // The first frame is read for the run anyway. Of the others there may be many: their headers will do.
        if ((!tried.isEmpty() && isTried(kindsOf(stamp))) || !readAhead(stamp))
            continue;
        const QList<cGraphError> found = rehearse(stamp);
        misfits = tried.isEmpty() ? found : common(misfits, found);
        if (misfits.isEmpty())
            return {};
        if (tried.isEmpty())
            deadline.setRemainingTime(s_mostMilliseconds);
        tried.insert(kindsOf(stamp));
    }
    return misfits;
}

qint64 cRehearsal::countStamps() const
{
    qint64 stamps = 1, most = 1;
    for (const cFrameSource* source : m_sources)
        most = std::max(most, source->getTotal());
    for (const cFrameSource* source : m_sources)
        stamps = std::min(most, std::lcm(stamps, qint64(source->getFileCount())));
    return stamps;
}

QString cRehearsal::kindsOf(qint64 i_stamp)
{
    QString kinds = QStringLiteral("");
    for (const cFrameSource* source : m_sources) {
        const QString file = source->getFile(i_stamp);
        if (!file.isEmpty()) {
            if (!m_kinds.contains(file))
                m_kinds.insert(file, kindOf(file));
            if (m_kinds[file].isEmpty())
                return {};
            kinds += m_kinds[file];
        }
        kinds += u';';
    }
    return kinds;
}

bool cRehearsal::readAhead(qint64 i_stamp)
{
    for (cFrameSource* source : m_sources) {
        if (i_stamp >= source->getTotal())
            continue;
        const cImg image = source->readAhead(i_stamp);
        if (!image.isValid())
            return false;
        m_kinds.insert(source->getFile(i_stamp), cSupportedImages::describe(image));
    }
    return true;
}

QList<cGraphError> cRehearsal::rehearse(qint64 i_stamp) const
{
    cGraph graph;
    if (!cPipelineBuilder(graph, m_variables).assemble(m_pipeline))
        return {};
    const auto stations = graph.getStations();
    for (cStation* station : stations)
        if (auto* own = dynamic_cast<cHostStation*>(station))
            own->rehearse(dynamic_cast<cHostStation&>(*m_graph.findNode(station->getPathName())), i_stamp);
    if (!graph.launch())
        return {};
    graph.waitForFlow(s_mostMilliseconds);
    graph.stop();
    QList<cGraphError> misfits;
    for (const cStation* station : stations) {
        const auto own = station->getMisfits();
        for (const cGraphError& misfit : own)
            if (isCertain(misfit, *station))
                misfits.append(explain(misfit, *station, i_stamp));
    }
    return misfits;
}

cGraphError cRehearsal::explain(const cGraphError& i_misfit, const cStation& i_station, qint64 i_stamp) const
{
    cGraphError misfit = i_misfit;
    const cDfpNode* node = m_graph.findNode(i_station.getPathName());
    const auto* port
        = dynamic_cast<const cIPort<cImg>*>(node->getInport(host::nameWithin(i_misfit, i_station)));
    const auto senders = port ? port->getLinkedPorts() : QList<cPortBase*>();
    cDfpNode* sender = senders.isEmpty() ? nullptr : senders.first()->getNode();
    const QString file = host::nameGivingFile(host::sourcesOf(sender ? *sender : *node), i_stamp);
    if (!file.isEmpty())
        misfit.message += QStringLiteral(" (frame of %1)").arg(file);
    if (!misfit.help.isEmpty())
        return misfit;
    if (!sender)
        misfit.help = QStringLiteral("let images of one type meet; 'tarn convert --type' converts files");
    else if (auto* source = dynamic_cast<cFrameSource*>(sender))
        misfit.help = howToConvert(source->readAhead(i_stamp), port->getSupportedImages());
    else
        misfit.help = QStringLiteral("they come from %1: put a station between that gives what is expected")
                          .arg(senders.first()->getPortPath());
    return misfit;
}
