#include "cConstantStation.h"

#include <algorithm>
#include <tarnbase/cDataRefObj.h>
#include <tarnflow/cOPortBase.h>

cConstantStation::cConstantStation()
{
    m_params[QStringLiteral("value")] = new cDataRefObj<QString>(m_value);
}

cConstantStation::~cConstantStation() { stop(); }

cStationInfo cConstantStation::getWords()
{
    cStationInfo info;
    info.summary = QStringLiteral("Gives one value to the inputs that it is linked with, for every frame.");
    info.params = {{QStringLiteral("value"),
        QStringLiteral("what the input takes: 2.5, #ff8000, 3,4 for a point, or JSON such as [1,2,3]")}};
    info.notes = QStringList {
        QStringLiteral("The type is that of the input; without a port the first free input that takes a "
                       "value is meant."),
        QStringLiteral("It may be linked with several inputs, also of different types."),
    };
    info.mainParam = QStringLiteral("value");
    return info;
}

QString cConstantStation::getExample() const
{
    return QStringLiteral(
        "constant 2.5 ! m.value   files in/*.png ! m.img   multiplyConstant name=m ! save out/{stem}.png");
}

QString cConstantStation::makeValues(QString& o_param)
{
    o_param = QStringLiteral("value");
    for (Output& output : m_outputs) {
        QString problem;
        const cValueForm::Value value = output.form->readText(m_value, problem);
        if (!value)
            return problem;
        output.values = {value};
    }
    return {};
}

void cConstantStation::start(StartReasons i_reason)
{
    m_frames = -1;
    m_next = 0;
    cValueSource::start(i_reason);
}

bool cConstantStation::produce()
{
    const bool anyRequired = std::any_of(
        m_outputs.begin(), m_outputs.end(), [](const Output& i_output) { return i_output.isRequired(); });
    if (m_next == 0) {
        m_frames = countFrames();
        // Before every frame. Where nothing else is to come, the end of this source announces that too.
        const cBufferStamp first(cBufferStamp::s_invalid + 1);
        for (const Output& output : m_outputs) {
            if (output.isRequired())
                continue;
            output.form->send(*output.port, output.values.front(), first);
            output.port->sendFinish(first, anyRequired);
        }
    }
    for (const Output& output : m_outputs) {
        if (!output.isRequired())
            continue;
        output.form->send(*output.port, output.values.front(), m_next);
        output.port->sendFinish(m_next);
    }
    return anyRequired && ++m_next < m_frames;
}

#include "moc_cConstantStation.cpp"
