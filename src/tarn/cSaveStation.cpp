#include "cSaveStation.h"

#include "cFileFormat.h"

#include <QFileInfo>
#include <QHash>
#include <QMutex>
#include <algorithm>
#include <stdexcept>
#include <tarnbase/cDataRefObj.h>
#include <tarnflow/cOPortBase.h>
#include <tarnflow/cStepScope.h>

namespace {

[[noreturn]] void fail(const QString& i_message)
{
    throw std::runtime_error(i_message.toLocal8Bit().toStdString());
}

/** The files that stations write in this run: each has one frame of one station. */
class cWrittenFiles {
public:
    static cWrittenFiles& instance()
    {
        static cWrittenFiles s_files;
        return s_files;
    }

    /** Whether the file is free, and now the frame's; if not, o_frame names the frame that has it. */
    bool claim(const QString& i_path, const cSaveStation* i_station, qint64 i_stamp, QString& o_frame)
    {
        const QMutexLocker lock(&m_mutex);
        const auto found = m_files.constFind(i_path);
        if (found != m_files.constEnd()) {
            o_frame = QStringLiteral("frame %1 of %2").arg(found->stamp).arg(found->station->getPathName());
            return false;
        }
        m_files.insert(i_path, {i_station, i_stamp});
        return true;
    }

    void release(const cSaveStation* i_station)
    {
        const QMutexLocker lock(&m_mutex);
        for (auto it = m_files.begin(); it != m_files.end();) {
            if (it->station == i_station)
                it = m_files.erase(it);
            else
                ++it;
        }
    }

private:
    struct Owner {
        const cSaveStation* station;
        qint64 stamp;
    };
    QMutex m_mutex; ///< guards m_files
    QHash<QString, Owner> m_files;
};

} // namespace

cSaveStation::cSaveStation() : m_group(this, &cSaveStation::process, QStringLiteral("img"))
{
    m_params[QStringLiteral("path")] = new cDataRefObj<QString>(m_path);
}

cSaveStation::~cSaveStation()
{
    stop();
    cWrittenFiles::instance().release(this);
}

cStationInfo cSaveStation::getWords()
{
    cStationInfo info;
    info.summary = QStringLiteral("Writes each frame to a file; the extension chooses the format.");
    info.params = {{QStringLiteral("path"),
        QStringLiteral("the file, with {stem} (the input's name), {index} (the frame's number, from "
                       "0000), {stamp} and {port}; "
                       "{{ and }} are braces")}};
    info.notes = QStringList {
        QStringLiteral(
            "A pixel type that the format cannot hold is refused, never narrowed; TIFF holds every type."),
        QStringLiteral("Two frames never write the same file, and no file that is read is written over: the "
                       "frame fails."),
        QStringLiteral("{stem} is the name of the frame's own input; of several, of the one with the most "
                       "files, then of the first."),
        QStringLiteral(
            "Missing folders are made. A file from an earlier run is replaced when the new one is complete."),
    };
    info.mainParam = QStringLiteral("path");
    return info;
}

QList<cGraphError> cSaveStation::checkParams()
{
    const QString place = getPathName() + QStringLiteral(".path");
    if (m_path.isEmpty())
        return {{place, QStringLiteral("no file is named, expected a path such as out/{stem}.png"), {}}};
    const QString error = m_name.set(m_path);
    if (!error.isEmpty())
        return {{place, error, {}}};
    if (!host::canWrite(m_path)) {
        const QString extension = QFileInfo(m_path).suffix();
        return {{place,
            QStringLiteral("unknown file format, expected one of the extensions %1, found %2")
                .arg(host::writableExtensions().join(QStringLiteral(", ")),
                    extension.isEmpty() ? QStringLiteral("none") : QStringLiteral("'.%1'").arg(extension)),
            {}}};
    }
    qint64 frames = 0;
    for (const cFrameSource* source : host::sourcesOf(*this))
        frames = std::max(frames, source->getTotal());
    if (frames > 1 && !m_name.isVarying())
        return {{place, QStringLiteral("%1 frames would write the one file '%2'").arg(frames).arg(m_path),
            QStringLiteral("put {stem} or {index} into the name")}};
    return {};
}

void cSaveStation::rehearse(cHostStation&, qint64) { m_rehearses = true; }

void cSaveStation::start(StartReasons i_reason)
{
    const QString error = m_name.set(m_path);
    Q_UNUSED(error) // a path that was never right makes every frame fail with a message
    m_sources = host::sourcesOf(*this);
    if (!i_reason.testFlag(EStartReason::Restart)) {
        cWrittenFiles::instance().release(this);
        m_arrived = 0;
        m_written = 0;
    }
    cStation::start(i_reason);
}

cOutputName::Frame cSaveStation::describe(const cImg& i_image, const cBuffer& i_buffer) const
{
    cOutputName::Frame frame;
    frame.stamp = i_buffer.getStamp().getStamp();
    if (i_buffer.getParentPort())
        frame.port = i_buffer.getParentPort()->getName();
    const QString file = host::nameGivingFile(m_sources, frame.stamp);
    frame.stem = file.isEmpty() ? i_image.getName() : QFileInfo(file).completeBaseName();
    frame.index = quint64(file.isEmpty() ? m_arrived : frame.stamp);
    return frame;
}

void cSaveStation::process(cBufferT<cImg>* i_buffer)
{
    const cImg image = i_buffer->getValue();
    if (!image.isValid()) {
        cStepScope::noteIgnored();
        return;
    }
    if (m_rehearses) {
        const QString problem = host::whyNotHeld(m_path, image);
        if (!problem.isEmpty())
            cStepScope::noteMisfit({QStringLiteral("path"), problem,
                QStringLiteral(
                    "name a file of one of these formats, or let images of another type come in")});
        return;
    }
    const cOutputName::Frame frame = describe(image, *i_buffer);
    ++m_arrived;
    const QString path = m_name.make(frame);
    const QString absolute = QFileInfo(path).absoluteFilePath();
    for (const cFrameSource* source : qAsConst(m_sources))
        if (source->reads(absolute))
            fail(QStringLiteral("%1: the file is an input of this run and is not written over").arg(path));
    QString other;
    if (!cWrittenFiles::instance().claim(absolute, this, frame.stamp, other))
        fail(QStringLiteral("%1: the file was written by %2 already").arg(path, other));
    try {
        host::writeImage(path, image);
    } catch (const std::exception& error) {
        fail(QStringLiteral("%1: %2").arg(path, QString::fromLocal8Bit(error.what())));
    }
    ++m_written;
}
