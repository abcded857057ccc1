#include "cPrintStation.h"

#include "cValueForm.h"
#include "cValuesStation.h"

#include <QDir>
#include <QFileInfo>
#include <algorithm>
#include <cstdio>
#include <limits>
#include <tarnbase/cDataRefObj.h>
#include <tarnbase/cError.h>
#include <tarnflow/cBuffer.h>
#include <tarnflow/cGraph.h>
#include <tarnflow/cIPortBase.h>
#include <tarnflow/cOPortBase.h>
#include <tarnimg/cImg.h>

/** The input for one sender, of the sender's type. */
class cPrintPort : public cIPortBase {
public:
    cPrintPort(
        cPrintStation* i_station, const QString& i_name, const cOPortBase& i_sender, std::size_t i_index)
        : cIPortBase(i_station, i_name),
          index(i_index),
          sender(i_sender.getNode()),
          path(host::jsonString(i_sender.getPortPath())),
          m_station(*i_station),
          m_type(i_sender.getTypeID()),
          m_form(cValueForm::find(m_type))
    {
        m_finishCallback
            = [this](const cBufferStamp& i_stamp, bool i_idle) { m_station.finish(*this, i_stamp, i_idle); };
    }

    const std::type_info& getTypeID() const override { return m_type; }
    bool hasDirectCallback() const override { return true; }
    bool takesBuffers() const override { return true; }
    // The port stands for one link and has no life without it.
    cOPortBase* makeOutport(cDfpNode*, const QString&) override { return nullptr; }
    cIPortBase* makeExport(cIPortBase*, cDfpNode*, const QString&) override { return nullptr; }
    cOPortBase* makeExport(cOPortBase*, cDfpNode*, const QString&) override { return nullptr; }
    cBufferConverterBase* makeBufferConverter(const std::type_info&) override { return nullptr; }

    void receiveBuffer(const QList<cBuffer*>& i_buffers, cBufferConverterBase*, bool i_audit) override
    {
        for (cBuffer* buffer : i_buffers) {
            const BufferReturner returner(buffer);
            if (i_audit && isAudit())
                buffer->audit(this, buffer->getStamp(), buffer->getAuditText());
            noteDirect();
            m_station.take(*this, *buffer);
        }
    }

    /** A type without a form of its own is written as the text that an audit would show. */
    void write(cBuffer& i_buffer, QByteArray& io_json) const
    {
        if (m_form)
            m_form->write(i_buffer.getData(), io_json);
        else
            io_json += host::jsonString(i_buffer.getAuditText());
    }

    const std::size_t index;
    const cDfpNode* const sender;
    const QByteArray path; ///< of the sender's port, as JSON

    // Guarded by the station's mutex.
    qint64 finished = cBufferStamp::s_invalid; ///< nothing comes any more up to this stamp
    bool idle = false;
    QList<cFrameSource*> sources; ///< of the sender; not changed while the graph runs

private:
    cPrintStation& m_station;
    const std::type_info& m_type;
    const cValueForm* const m_form;
};

cPrintStation::cPrintStation() { m_params[QStringLiteral("path")] = new cDataRefObj<QString>(m_path); }

cPrintStation::~cPrintStation() { stop(); }

cStationInfo cPrintStation::getWords()
{
    cStationInfo info;
    info.summary = QStringLiteral("Writes numbers, points, colours and all other values as JSON lines.");
    info.params
        = {{QStringLiteral("path"), QStringLiteral("the file; without one the lines go to standard output")}};
    info.notes = QStringList {
        QStringLiteral("Takes any number of links: m.mean ! p.   m.stdDev ! p.   print name=p"),
        QStringLiteral("A line is {\"stamp\":3,\"file\":\"in/a.png\",\"port\":\"m.mean\",\"value\":127.25}; "
                       "the file is that of the frame, and left out where there is none."),
        QStringLiteral(
            "Lines come in the order of their stamps, those of one stamp in the order of the links."),
        QStringLiteral("Numbers read back to the same bits; \"nan\", \"inf\" and \"-inf\" are texts."),
    };
    info.mainParam = QStringLiteral("path");
    return info;
}

QString cPrintStation::getExample() const
{
    return QStringLiteral("files in/*.png ! meanStdDev name=m   m.mean ! print");
}

cIPortBase* cPrintStation::openInput(const cOPortBase& i_sender)
{
    if (i_sender.getTypeID() == typeid(cImg))
        return nullptr;
    const std::size_t index = m_ports.size();
    m_ports.push_back(new cPrintPort(this, QStringLiteral("in%1").arg(index + 1), i_sender, index));
    return m_ports.back();
}

QList<cGraphError> cPrintStation::checkParams()
{
    if (m_ports.empty())
        return {{getPathName(), QStringLiteral("is linked with nothing"),
            QStringLiteral("link an output that gives values with it, as in: m.mean ! print")}};
    if (QFileInfo(m_path).isDir())
        return {{getPathName() + QStringLiteral(".path"),
            QStringLiteral("expected a file, found the folder '%1'").arg(m_path),
            QStringLiteral("put a name behind it, such as %1/values.jsonl").arg(m_path)}};
    return checkFile();
}

QList<cGraphError> cPrintStation::checkFile() const
{
    if (printsToOutput() || !getGraph())
        return {};
    const QString file = QFileInfo(m_path).absoluteFilePath();
    const auto isSame = [&](const QString& i_path) { return QFileInfo(i_path).absoluteFilePath() == file; };
    const cGraph* root = getGraph();
    while (root->getGraph())
        root = root->getGraph();
    const auto stations = root->getStations();
    for (const cStation* station : stations) {
        const auto* reader = dynamic_cast<const cValuesStation*>(station);
        const auto* printer = dynamic_cast<const cPrintStation*>(station);
        if (reader && isSame(reader->getPath()))
            return {{getPathName() + QStringLiteral(".path"),
                QStringLiteral("'%1' is read by %2 and is not written over")
                    .arg(m_path, reader->getPathName()),
                {}}};
        if (printer && printer != this && !printer->printsToOutput() && isSame(printer->m_path))
            return {{getPathName() + QStringLiteral(".path"),
                QStringLiteral("'%1' is written by %2 too").arg(m_path, printer->getPathName()),
                QStringLiteral("link all values with one of the two")}};
    }
    return {};
}

void cPrintStation::rehearse(cHostStation&, qint64) { m_rehearses = true; }

void cPrintStation::start(StartReasons i_reason)
{
    {
        const QMutexLocker lock(&m_mutex);
        for (cPrintPort* port : m_ports) {
            port->finished = cBufferStamp::s_invalid;
            port->idle = false;
            port->sources = host::sourcesOf(*port->sender);
        }
        m_lines.clear();
        m_failed = false;
        m_file.close();
        openFile();
    }
    cStation::start(i_reason);
}

void cPrintStation::openFile()
{
    if (m_rehearses)
        return;
    if (printsToOutput()) {
        m_file.open(stdout, QIODevice::WriteOnly);
        return;
    }
    // What goes wrong here is said when the first line is written.
    QDir().mkpath(QFileInfo(m_path).path());
    m_file.setFileName(m_path);
    m_file.open(QIODevice::WriteOnly | QIODevice::Truncate);
}

void cPrintStation::stop()
{
    QString problem;
    {
        const QMutexLocker lock(&m_mutex);
        problem = writeUpTo(std::numeric_limits<qint64>::max());
        m_file.close();
    }
    report(problem);
    cStation::stop();
}

void cPrintStation::take(cPrintPort& io_port, cBuffer& i_buffer)
{
    if (m_rehearses)
        return;
    const qint64 stamp = i_buffer.getStamp().getStamp();
    QByteArray line = "{\"stamp\":" + QByteArray::number(stamp);
    const QString file = host::nameGivingFile(io_port.sources, stamp);
    if (!file.isEmpty())
        line += ",\"file\":" + host::jsonString(file);
    line += ",\"port\":" + io_port.path + ",\"value\":";
    io_port.write(i_buffer, line);
    line += "}\n";
    const QMutexLocker lock(&m_mutex);
    io_port.idle = false;
    m_lines.emplace(std::pair(stamp, io_port.index), line);
}

void cPrintStation::finish(cPrintPort& io_port, const cBufferStamp& i_stamp, bool i_idle)
{
    constexpr qint64 all = std::numeric_limits<qint64>::max();
    QString problem;
    {
        const QMutexLocker lock(&m_mutex);
        io_port.idle = i_idle;
        qint64 everywhere = all;
        if (i_stamp.isValid()) {
            io_port.finished = std::max(io_port.finished, i_stamp.getStamp());
            for (const cPrintPort* port : m_ports)
                if (!port->idle && port->receivesData())
                    everywhere = std::min(everywhere, port->finished);
        } else {
            // A reset: the stamps begin anew, and what came before it goes first.
            io_port.finished = cBufferStamp::s_invalid;
        }
        problem = writeUpTo(everywhere);
    }
    report(problem);
}

QString cPrintStation::writeUpTo(qint64 i_stamp)
{
    const auto end = m_lines.upper_bound({i_stamp, std::numeric_limits<std::size_t>::max()});
    if (end == m_lines.begin())
        return {};
    QByteArray text;
    for (auto line = m_lines.begin(); line != end; ++line)
        text += line->second;
    m_lines.erase(m_lines.begin(), end);
    if (m_failed || (m_file.isOpen() && m_file.write(text) == text.size() && m_file.flush()))
        return {};
    m_failed = true;
    return QStringLiteral("%1: %2").arg(
        printsToOutput() ? QStringLiteral("standard output") : m_path, m_file.errorString());
}

void cPrintStation::report(const QString& i_problem)
{
    if (!i_problem.isEmpty())
        reportError(cError(cError::StepFailed, cError::Processing, i_problem, getPathName()));
}

#include "moc_cPrintStation.cpp"
