#include <tarnflow/cGraph.h>

#include "graphErrors.h"

#include <tarnflow/cBufferConverterBase.h>
#include <tarnflow/cIPortBase.h>
#include <tarnflow/cOPortBase.h>
#include <tarnflow/cPortGroupBase.h>

#include <QHash>
#include <QSet>
#include <algorithm>
#include <limits>

namespace {
/** Senders behind an input, through boundary ports, of enabled nodes or not. */
bool hasSender(const cIPortBase* i_port)
{
    const QList<cPortBase*> far = i_port->getLinkedPorts();
    return std::any_of(far.begin(), far.end(), [](const cPortBase* port) {
        return port->isImport() ? hasSender(static_cast<const cIPortBase*>(port)) : true;
    });
}

QList<cStation*> successorsOf(const cStation* i_station)
{
    QList<cStation*> successors;
    for (cOPortBase* output : i_station->getOutports())
        for (const auto& [input, converter] : output->getReceiver())
            if (auto* station = dynamic_cast<cStation*>(input->getNode()))
                if (!successors.contains(station))
                    successors.append(station);
    return successors;
}

quint64 delayOf(cIPortBase* i_port)
{
    return i_port->getGroup() ? i_port->getGroup()->getQueueParams(i_port).delay : 0;
}

/** Walks the inputs in which the buffers of one pool can wait. */
class RoomCounter {
public:
    /** The sum of the delays of these inputs. */
    quint64 count(cOPortBase* i_output)
    {
        m_type = &i_output->getTypeID();
        followOutput(i_output);
        return m_sum;
    }
    quint64 count(cIPortBase* i_input)
    {
        m_type = &i_input->getTypeID();
        followInput(i_input);
        return m_sum;
    }

private:
    void followOutput(cOPortBase* i_output)
    {
        if (m_seen.contains(i_output))
            return;
        m_seen.insert(i_output);
        for (const auto& [input, converter] : i_output->getReceiver())
            if (!converter) // behind a converter there are buffers of the converter's own pool
                followInput(input);
    }

    void followInput(cIPortBase* i_input)
    {
        if (m_seen.contains(i_input))
            return;
        m_seen.insert(i_input);
        m_sum += delayOf(i_input);
        // A station that works in place passes on the buffer itself.
        if (i_input->getNode())
            for (cOPortBase* output : i_input->getNode()->getOutports())
                if (output->getTypeID() == *m_type)
                    followOutput(output);
    }

    const std::type_info* m_type = nullptr;
    QSet<const cPortBase*> m_seen;
    quint64 m_sum = 0;
};

int toRoom(quint64 i_sum) { return int(std::min<quint64>(i_sum, std::numeric_limits<int>::max())); }
} // namespace

QList<cGraphError> cGraph::check() const
{
    QList<cGraphError> errors;
    if (getStations().isEmpty())
        errors.append({getName(), QStringLiteral("the graph has no stations"), QString()});
    checkInputs(errors);
    checkCycles(errors);
    checkReadiness(errors);
    return errors;
}

void cGraph::checkInputs(QList<cGraphError>& io_errors) const
{
    for (const cStation* station : getStations()) {
        if (!station->isEnabled())
            continue;
        for (const cPortGroupBase* group : station->getPortGroups())
            for (cIPortBase* port : group->getPorts())
                if (group->getQueueParams(port).required && !hasSender(port))
                    io_errors.append({port->getPortPath(),
                        QStringLiteral("the input is required, but nothing is linked with it"),
                        QStringLiteral("link an output of type %1 with it").arg(port->getTypeName())});
    }
}

void cGraph::checkCycles(QList<cGraphError>& io_errors) const
{
    enum class EVisit { New, OnPath, Done };
    QHash<const cStation*, EVisit> visits;
    for (cStation* start : getStations()) {
        struct Step {
            cStation* station;
            QList<cStation*> successors;
        };
        if (visits.value(start, EVisit::New) != EVisit::New)
            continue;
        visits[start] = EVisit::OnPath;
        std::vector<Step> path {{start, successorsOf(start)}};
        while (!path.empty()) {
            if (path.back().successors.isEmpty()) {
                visits[path.back().station] = EVisit::Done;
                path.pop_back();
                continue;
            }
            cStation* next = path.back().successors.takeFirst();
            const EVisit visit = visits.value(next, EVisit::New);
            if (visit == EVisit::New) {
                visits[next] = EVisit::OnPath;
                path.push_back({next, successorsOf(next)});
            } else if (visit == EVisit::OnPath) {
                QStringList circle;
                const auto first = std::find_if(
                    path.begin(), path.end(), [&](const Step& step) { return step.station == next; });
                for (auto step = first; step != path.end(); ++step)
                    circle.append(step->station->getPathName());
                circle.append(next->getPathName());
                io_errors.append({next->getPathName(),
                    QStringLiteral("the links go in a circle: %1").arg(circle.join(QStringLiteral(" -> "))),
                    QStringLiteral("take one of these links away")});
            }
        }
    }
}

void cGraph::checkReadiness(QList<cGraphError>& io_errors) const
{
    for (cStation* station : getStations())
        if (station->isEnabled() && !station->canStart())
            io_errors.append(
                {station->getPathName(), QStringLiteral("the station is not ready to start"), QString()});
}

void cGraph::updateRooms()
{
    const std::lock_guard lock(cPortBase::linkMutex());
    for (const cStation* station : getStations()) {
        for (cOPortBase* output : station->getOutports()) {
            output->setExtraRoom(toRoom(RoomCounter().count(output)));
            for (const auto& [input, converter] : output->getReceiver())
                if (converter)
                    converter->getPool()->setExtraRoom(toRoom(RoomCounter().count(input)));
        }
    }
}

QStringList cGraph::describeWaits() const
{
    QStringList lines;
    const auto describe = [&](const cOPortBase* i_pool, const QString& i_receivers) {
        for (const cStation* sleeper : i_pool->getSleepers())
            lines.append(
                QStringLiteral("%1 waits for a buffer of %2: %3 of %4 are held; receivers: %5")
                    .arg(sleeper ? sleeper->getPathName() : QStringLiteral("the host"), i_pool->getPortPath())
                    .arg(i_pool->getHeldCount())
                    .arg(qint64(i_pool->getPoolLimit()) + i_pool->getExtraRoom())
                    .arg(i_receivers));
    };
    const auto holding = [](cIPortBase* i_input) {
        const int waiting = i_input->getGroup() ? i_input->getGroup()->getDataCount(i_input) : 0;
        return QStringLiteral("%1 (%2 waiting)").arg(i_input->getPortPath()).arg(waiting);
    };
    for (const cStation* station : getStations()) {
        for (cOPortBase* output : station->getOutports()) {
            QStringList receivers;
            for (const auto& [input, converter] : output->getReceiver()) {
                receivers.append(holding(input));
                if (converter)
                    describe(converter->getPool(), holding(input));
            }
            describe(output, receivers.join(QStringLiteral(", ")));
        }
    }
    return lines;
}
