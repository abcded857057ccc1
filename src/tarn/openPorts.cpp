#include "openPorts.h"

#include "commands.h"

#include <QStringList>
#include <algorithm>
#include <tarnflow/cGraph.h>
#include <tarnflow/cIPortBase.h>
#include <tarnflow/cOPortBase.h>
#include <tarnimg/cIPortImg.h>

namespace host {
namespace {

bool carriesImages(const cPortBase* i_port) { return i_port->getTypeID() == typeid(cImg); }

QString nodeOf(const QString& i_path) { return i_path.section(u'.', 0, 0); }
QString portOf(const QString& i_path) { return i_path.section(u'.', 1); }

template <class Ports> QString describe(const Ports& i_ports)
{
    QStringList texts;
    for (const auto* port : i_ports)
        texts.append(QStringLiteral("%1 (%2)").arg(
            port->getName(), carriesImages(port) ? QStringLiteral("image") : port->getTypeName()));
    return texts.isEmpty() ? QStringLiteral("none") : texts.join(QStringLiteral(", "));
}

bool openOutput(const cDfpNode& i_from, const cDfpNode& i_to, QString& io_from, QString& io_to,
    cOpenOutputs& io_source, cGraphError& o_error)
{
    const QString name = portOf(io_to);
    const auto inputs = i_to.getInports();
    for (const cIPortBase* input : inputs) {
        if (name.isEmpty() ? input->isConnected() : input->getName() != name)
            continue;
        if (const cOPortBase* output = io_source.openOutput(*input)) {
            io_from += u'.' + output->getName();
            io_to = nodeOf(io_to) + u'.' + input->getName();
            return true;
        }
    }
    o_error = {i_from.getPathName(),
        name.isEmpty() ? QStringLiteral("no free input of %1 takes a value: inputs %2")
                             .arg(i_to.getPathName(), describe(inputs))
                       : QStringLiteral("%1.%2 takes no value, it takes %3")
                             .arg(i_to.getPathName(), name, describeValues(*i_to.getInport(name))),
        dynamic_cast<const cOpenInputs*>(&i_to)
            ? QStringLiteral(
                "the type of a value comes from the input that it is linked with, and this one takes any")
            : QStringLiteral("name an input that takes a value, and is free")};
    return false;
}

bool openInput(const cDfpNode& i_from, const cDfpNode& i_to, QString& io_from, QString& io_to,
    cOpenInputs& io_sink, cGraphError& o_error)
{
    const QString name = portOf(io_from);
    auto outputs = i_from.getOutports();
    // Of several outputs the one that nobody has taken yet.
    std::stable_partition(
        outputs.begin(), outputs.end(), [](const cOPortBase* i_port) { return !i_port->isConnected(); });
    for (const cOPortBase* output : qAsConst(outputs)) {
        if (!name.isEmpty() && output->getName() != name)
            continue;
        if (const cIPortBase* input = io_sink.openInput(*output)) {
            io_from = nodeOf(io_from) + u'.' + output->getName();
            io_to += u'.' + input->getName();
            return true;
        }
    }
    o_error = {i_to.getPathName(),
        QStringLiteral("takes values, not images: outputs of %1: %2")
            .arg(i_from.getPathName(), describe(outputs)),
        QStringLiteral("write images with 'save', as in: %1. ! save out/{stem}.png").arg(nodeOf(io_from))};
    return false;
}

} // namespace

bool openPorts(const cGraph& i_graph, QString& io_from, QString& io_to, cGraphError& o_error)
{
    cDfpNode* from = i_graph.findNode(nodeOf(io_from));
    cDfpNode* to = i_graph.findNode(nodeOf(io_to));
    if (!from || !to)
        return true; // which the link itself reports
    if (auto* source = dynamic_cast<cOpenOutputs*>(from); source && portOf(io_from).isEmpty())
        return openOutput(*from, *to, io_from, io_to, *source, o_error);
    auto* sink = dynamic_cast<cOpenInputs*>(to);
    if (sink && portOf(io_to).isEmpty() && !from->getOutports().isEmpty())
        return openInput(*from, *to, io_from, io_to, *sink, o_error);
    return true;
}

} // namespace host
