#include "cValuesStation.h"

#include <algorithm>
#include <limits>
#include <tarnbase/cDataRefObj.h>
#include <tarnflow/cOPortBase.h>

cValuesStation::cValuesStation()
{
    m_params[QStringLiteral("path")] = new cDataRefObj<QString>(m_path);
    m_params[QStringLiteral("key")] = new cDataRefObj<QString>(m_key);
    m_params[QStringLiteral("port")] = new cDataRefObj<QString>(m_port);
}

cValuesStation::~cValuesStation() { stop(); }

cStationInfo cValuesStation::getWords()
{
    cStationInfo info;
    info.summary = QStringLiteral("Reads values from a file of JSON lines, each for the frame of its stamp.");
    info.params = {
        {QStringLiteral("path"),
            QStringLiteral("the file, one value in a line, as 'print' writes it; '-' for standard input")},
        {QStringLiteral("key"), QStringLiteral("under which key a line that is an object holds the value")},
        {QStringLiteral("port"), QStringLiteral("read only the lines that have this \"port\"")},
    };
    info.notes = QStringList {
        QStringLiteral("The type is that of the input; without a port the first free input that takes a "
                       "value is meant."),
        QStringLiteral(
            "A line without a stamp has the stamp after the one of the line before, the first one 0: "
            "so values meet the frames of 'files' in their order."),
        QStringLiteral(
            "A frame without a value goes by the last one, where the input keeps it, and is dropped "
            "where every frame needs one."),
    };
    info.mainParam = QStringLiteral("path");
    return info;
}

QString cValuesStation::getExample() const
{
    return QStringLiteral("values gain.jsonl ! m.value   files in/*.png ! m.img   multiplyConstant name=m ! "
                          "save out/{stem}.png");
}

QString cValuesStation::makeValues(QString& o_param)
{
    o_param = QStringLiteral("path");
    if (m_path.isEmpty())
        return QStringLiteral("no file is named, expected a path such as values.jsonl");
    cJsonLines lines;
    const QString problem = lines.read(m_path, m_key, m_port);
    if (!problem.isEmpty())
        return problem;
    m_stamps.clear();
    for (Output& output : m_outputs)
        output.values.clear();
    for (const cJsonLines::Entry& entry : lines.getEntries()) {
        if (m_limit > 0 && entry.stamp >= m_limit)
            break;
        m_stamps.push_back(entry.stamp);
        for (Output& output : m_outputs) {
            cJsonProblem wrong;
            const cValueForm::Value value = output.form->read(entry.value, wrong);
            if (!value)
                return lines.describe(entry, wrong);
            output.values.push_back(value);
        }
    }
    return {};
}

void cValuesStation::rehearse(cHostStation& io_like, qint64 i_stamp)
{
    cValueSource::rehearse(io_like, i_stamp);
    const auto& like = dynamic_cast<const cValuesStation&>(io_like);
    // A value that no frame will meet is none.
    if (!like.m_stamps.empty() && like.m_stamps.front() < like.countFrames())
        m_stamps = {0};
}

void cValuesStation::start(StartReasons i_reason)
{
    m_frames = -1;
    m_nextFrame = 0;
    m_nextValue = 0;
    cValueSource::start(i_reason);
}

bool cValuesStation::produce()
{
    constexpr qint64 none = std::numeric_limits<qint64>::max();
    if (m_frames < 0)
        m_frames = countFrames();
    const qint64 value = m_nextValue < m_stamps.size() ? m_stamps[m_nextValue] : none;
    // What is after the last value waits for none.
    const qint64 frame = m_nextFrame < m_frames && value != none ? m_nextFrame : none;
    const qint64 stamp = std::min(value, frame);
    if (stamp == none)
        return false;
    for (const Output& output : m_outputs) {
        if (value == stamp)
            output.form->send(*output.port, output.values[m_nextValue], stamp);
        output.port->sendFinish(stamp);
    }
    m_nextValue += value == stamp;
    m_nextFrame += frame == stamp;
    return true;
}

#include "moc_cValuesStation.cpp"
