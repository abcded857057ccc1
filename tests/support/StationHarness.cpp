#include <support/StationHarness.h>

#include <tarnflow/cIPortBase.h>
#include <typeinfo>

namespace {
QString named(const char* i_name) { return QString::fromLatin1(i_name); }
} // namespace

/** An input of whatever type the output has to which it is linked; it keeps a copy of all that comes. */
class StationHarness::Receiver : public cIPortBase {
public:
    Receiver(cDfpNode* i_node, const cOPortBase* i_output, StationHarness& io_harness)
        : cIPortBase(i_node, i_output->getName()),
          m_type(i_output->getTypeID()),
          m_harness(io_harness)
    {
        m_finishCallback = [this](const cBufferStamp& i_stamp, bool i_idle) {
            m_harness.note({getName(), i_stamp.getStamp(), i_idle});
        };
    }

    const std::type_info& getTypeID() const override { return m_type; }
    bool hasDirectCallback() const override { return true; }
    bool takesBuffers() const override { return true; }
    cOPortBase* makeOutport(cDfpNode*, const QString&) override { return nullptr; }
    cIPortBase* makeExport(cIPortBase*, cDfpNode*, const QString&) override { return nullptr; }
    cOPortBase* makeExport(cOPortBase*, cDfpNode*, const QString&) override { return nullptr; }
    cBufferConverterBase* makeBufferConverter(const std::type_info&) override { return nullptr; }
    void receiveBuffer(const QList<cBuffer*>& i_buffers, cBufferConverterBase*, bool) override
    {
        for (cBuffer* buffer : i_buffers) {
            m_harness.record(getName(), buffer);
            buffer->releaseAndUnrefBufferAtPort();
        }
    }

private:
    const std::type_info& m_type;
    StationHarness& m_harness;
};

StationHarness::StationHarness(cStation* i_station, const QStringList& i_unconnected)
    : m_station(i_station),
      m_feeder(new cStation(QStringLiteral("feeder"))),
      m_collector(new cStation(QStringLiteral("collector")))
{
    m_station->setManual(true);
    for (cStation* node : {m_feeder, m_station, m_collector})
        m_graph.addNode(node);
    for (cIPortBase* input : m_station->getInports()) {
        cOPortBase* feeding = input->makeOutport(m_feeder, input->getName());
        m_senders[input->getName()] = feeding;
        if (!i_unconnected.contains(input->getName()))
            linkOrThrow(feeding, input);
    }
    for (cOPortBase* output : m_station->getOutports())
        if (!i_unconnected.contains(output->getName()))
            linkOrThrow(output, new Receiver(m_collector, output, *this));
    for (cPortGroupBase* group : m_station->getPortGroups()) {
        group->getPorts().first()->setCollectHistory(true);
        QObject::connect(
            group, &cPortGroupBase::exceptionRaised, group,
            [this](const cError& i_error) { m_errors.append(i_error); }, Qt::DirectConnection);
    }
    m_station->start(EStartReason::Start);
}

StationHarness::~StationHarness()
{
    m_station->stop();
    for (cPortGroupBase* group : m_station->getPortGroups())
        group->disconnect();
}

cIPortBase* StationHarness::inport(const char* i_name) const
{
    cIPortBase* port = m_station->getInport(named(i_name));
    if (!port)
        throw std::logic_error(std::string("no input ") + i_name);
    return port;
}

cOPortBase* StationHarness::outport(const char* i_name) const
{
    cOPortBase* port = m_station->getOutport(named(i_name));
    if (!port)
        throw std::logic_error(std::string("no output ") + i_name);
    return port;
}

cOPortBase* StationHarness::sender(const char* i_input) const
{
    return m_senders.at(inport(i_input)->getName());
}

cOPortBase* StationHarness::addSender(const char* i_input)
{
    cIPortBase* input = inport(i_input);
    const QString name = QStringLiteral("%1_%2").arg(input->getName()).arg(++m_furtherSenders);
    cOPortBase* added = input->makeOutport(m_feeder, name);
    linkOrThrow(added, input);
    return added;
}

void StationHarness::connectInput(const char* i_input) { linkOrThrow(sender(i_input), inport(i_input)); }

void StationHarness::disconnectInput(const char* i_input)
{
    cGraphError error;
    if (!m_graph.unlink(sender(i_input), inport(i_input), &error))
        throw std::logic_error(error.toString().toStdString());
}

void StationHarness::linkOrThrow(cOPortBase* i_from, cIPortBase* i_to)
{
    cGraphError error;
    if (!m_graph.link(i_from, i_to, &error))
        throw std::logic_error(error.toString().toStdString());
}

void StationHarness::finish(const char* i_input, cBufferStamp i_stamp, bool i_idle)
{
    sender(i_input)->sendFinish(i_stamp, i_idle);
}

bool StationHarness::runStep() { return m_station->runNextJob(); }

int StationHarness::runAll()
{
    int count = 0;
    while (runStep())
        ++count;
    return count;
}

void StationHarness::record(const QString& i_output, cBuffer* i_buffer)
{
    m_outputs.append({i_output, i_buffer->getStamp(), i_buffer->getAuditText()});
    m_received[i_output].emplace_back(i_buffer->getParentPort()->makePrivateCopy(i_buffer));
}

void StationHarness::note(const Finish& i_notice)
{
    m_finishes.append(i_notice);
    if (onFinish)
        onFinish(i_notice);
}

QList<qint64> StationHarness::matches() const
{
    QList<qint64> stamps;
    for (cPortGroupBase* group : m_station->getPortGroups())
        for (const GraphHistoryEntry& entry : group->getPorts().first()->getHistory())
            if (entry.type == GraphHistoryEntry::HasMutex)
                stamps.append(entry.stamp);
    return stamps;
}

QList<qint64> StationHarness::stamps(const char* i_output) const
{
    QList<qint64> stamps;
    for (const Output& output : m_outputs)
        if (output.port == named(i_output))
            stamps.append(output.stamp.getStamp());
    return stamps;
}

QList<qint64> StationHarness::finished(const char* i_output) const
{
    QList<qint64> stamps;
    for (const Finish& notice : m_finishes)
        if (notice.port == named(i_output))
            stamps.append(notice.stamp);
    return stamps;
}

cFates StationHarness::fates(const char* i_input) const { return inport(i_input)->getFates(); }

void StationHarness::clearRecords()
{
    m_trace.take();
    m_outputs.clear();
    m_received.clear();
    m_finishes.clear();
    m_errors.clear();
}
