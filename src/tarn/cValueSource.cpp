#include "cValueSource.h"

#include <algorithm>
#include <tarnflow/cIPortBase.h>
#include <tarnflow/cOPortBase.h>
#include <tarnflow/cPortGroupBase.h>

cValueSource::~cValueSource() { stop(); }

bool cValueSource::Output::isRequired() const
{
    const auto receivers = port->getReceiver();
    return std::any_of(receivers.cbegin(), receivers.cend(), [](const auto& i_receiver) {
        cIPortBase* input = i_receiver.first;
        return input->getGroup() && input->getGroup()->getQueueParams(input).required;
    });
}

cOPortBase* cValueSource::openOutput(const cIPortBase& i_receiver)
{
    const cValueForm* form = cValueForm::find(i_receiver.getTypeID());
    if (!form)
        return nullptr;
    const auto found = std::find_if(
        m_outputs.begin(), m_outputs.end(), [&](const Output& i_output) { return i_output.form == form; });
    if (found != m_outputs.end())
        return found->port;
    const QString name
        = m_outputs.empty() ? QStringLiteral("value") : QStringLiteral("value%1").arg(m_outputs.size() + 1);
    m_outputs.push_back({form->makeOutput(this, name), form, {}});
    return m_outputs.back().port;
}

QList<cGraphError> cValueSource::checkParams()
{
    if (m_outputs.empty())
        return {{getPathName(), QStringLiteral("is linked with nothing"),
            QStringLiteral("link it with the input of a station, as in: %1").arg(getExample())}};
    QString param;
    const QString problem = makeValues(param);
    if (problem.isEmpty())
        return {};
    return {{getPathName() + u'.' + param, problem, {}}};
}

void cValueSource::rehearse(cHostStation& io_like, qint64)
{
    const auto& like = dynamic_cast<const cValueSource&>(io_like);
    for (std::size_t i = 0; i < m_outputs.size(); ++i)
        if (!like.m_outputs[i].values.empty())
            m_outputs[i].values = {like.m_outputs[i].values.front()};
}

qint64 cValueSource::countFrames() const
{
    qint64 frames = 0;
    for (const Output& output : m_outputs) {
        const auto links = output.port->getLinkedPorts();
        for (const cPortBase* input : links)
            for (const cFrameSource* source : host::sourcesOf(*input->getNode()))
                frames = std::max(frames, source->getTotal());
    }
    return frames;
}

#include "moc_cValueSource.cpp"
