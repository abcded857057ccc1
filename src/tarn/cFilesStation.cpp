#include "cFilesStation.h"

#include "cFileFormat.h"
#include "filePatterns.h"

#include <QFileInfo>
#include <QTextStream>
#include <algorithm>
#include <cstdio>
#include <limits>
#include <stdexcept>
#include <tarnbase/cDataRefObj.h>
#include <tarnbase/cDataValObj.h>

namespace {

/** Room for the masks and blocks that people use, and no work worth mentioning. */
constexpr int s_rehearsedSide = 64;

} // namespace

cFilesStation::cFilesStation() : m_out(this, QStringLiteral("img"), defaultPoolSize<cImg>)
{
    m_params[QStringLiteral("path")] = new cDataRefObj<QString>(m_path);
    m_params[QStringLiteral("repeat")] = new cDataRefObj<unsigned>(m_repeat);
    m_params[QStringLiteral("limit")] = new cDataRefObj<unsigned>(m_limit);
}

cFilesStation::~cFilesStation() { stop(); }

cStationInfo cFilesStation::getWords()
{
    cStationInfo info;
    info.summary = QStringLiteral("Reads image files: names, folders and patterns, in natural order.");
    info.params = {
        {QStringLiteral("path"),
            QStringLiteral("a file, a folder, a pattern with *, ? and [...], several of these separated by "
                           "',', or '-' for "
                           "a list of files on standard input")},
        {QStringLiteral("repeat"), QStringLiteral("how many times the list is gone through")},
        {QStringLiteral("limit"),
            QStringLiteral("the most frames, 0 for no limit; files that cannot be read count")},
    };
    info.notes = QStringList {
        QStringLiteral(
            "Frames are stamped 0, 1, 2, ...: frames of two sources meet by their place in the list."),
        QStringLiteral("A file that cannot be read is reported and passed over; its stamp stays empty."),
    };
    info.mainParam = QStringLiteral("path");
    return info;
}

QString cFilesStation::expand()
{
    if (!m_files.isEmpty() && m_expanded == m_path)
        return {};
    host::cExpansion expansion;
    if (m_path == QLatin1String("-")) {
        QTextStream input(stdin);
        input.setCodec("UTF-8");
        expansion.files = host::readFileList(input);
        if (expansion.files.isEmpty())
            expansion.error = QStringLiteral("no file is named on standard input, expected one in each line");
    } else {
        expansion = host::expandPattern(m_path);
    }
    m_files = expansion.files;
    m_expanded = m_path;
    m_absolute.clear();
    for (const QString& file : qAsConst(m_files))
        m_absolute.insert(QFileInfo(file).absoluteFilePath());
    return expansion.error;
}

QList<cGraphError> cFilesStation::checkParams()
{
    QList<cGraphError> errors;
    const QString error = expand();
    if (!error.isEmpty())
        errors.append({getPathName() + QStringLiteral(".path"), error, {}});
    if (m_repeat == 0)
        errors.append(
            {getPathName() + QStringLiteral(".repeat"), QStringLiteral("expected 1 or more, found 0"),
                QStringLiteral("leave it out to read the list once")});
    return errors;
}

void cFilesStation::rehearse(cHostStation& io_like, qint64 i_stamp)
{
    auto& like = dynamic_cast<cFilesStation&>(io_like);
    const bool wanted = i_stamp < like.getTotal() && m_out.isConnected();
    const cImg image = wanted ? like.readAhead(i_stamp) : cImg();
    m_files = QStringList {like.getFile(i_stamp)};
    m_expanded = m_path;
    m_repeat = image.isValid() ? 1 : 0;
    m_limit = 0;
    if (!image.isValid())
        return;
    m_aheadFile = m_files.first();
    m_ahead = cImg(image, true, {0, 0, s_rehearsedSide, s_rehearsedSide});
}

void cFilesStation::start(StartReasons i_reason)
{
    expand();
    if (!i_reason.testFlag(EStartReason::Restart))
        m_done = 0;
    m_single = cImg();
    cSourceStation::start(i_reason);
}

QString cFilesStation::getFile(qint64 i_stamp) const
{
    return i_stamp >= 0 && i_stamp < getTotal() ? m_files[int(i_stamp % m_files.size())] : QString();
}

bool cFilesStation::reads(const QString& i_absolutePath) const { return m_absolute.contains(i_absolutePath); }

qint64 cFilesStation::getTotal() const
{
    const qint64 all = qint64(m_files.size()) * m_repeat;
    return m_limit ? std::min<qint64>(all, m_limit) : all;
}

qint64 cFilesStation::getDone() const { return m_done; }

cImg cFilesStation::readAhead(qint64 i_stamp)
{
    const QString file = getFile(i_stamp);
    if (file != m_aheadFile) {
        m_aheadFile = file;
        m_ahead = cImg();
        m_aheadError.clear();
        try {
            if (!file.isEmpty())
                m_ahead = host::readImage(file);
        } catch (const std::exception& error) {
            m_aheadError = error.what();
        }
    }
    return m_ahead;
}

cImg cFilesStation::read(const QString& i_file)
{
    if (m_single.isValid())
        return m_single;
    const bool isAhead = i_file == m_aheadFile;
    if (isAhead && !m_aheadError.isEmpty())
        throw std::runtime_error(m_aheadError.toStdString());
    cImg image = isAhead ? m_ahead : host::readImage(i_file);
    if (isAhead) {
        m_ahead = cImg();
        m_aheadFile.clear();
    }
    if (m_files.size() == 1 && m_repeat > 1)
        m_single = image;
    return image;
}

void cFilesStation::setLimit(qint64 i_frames)
{
    const auto limit = unsigned(std::min<qint64>(i_frames, std::numeric_limits<unsigned>::max()));
    m_limit = m_limit && limit ? std::min(m_limit, limit) : std::max(m_limit, limit);
}

bool cFilesStation::produce()
{
    const qint64 stamp = m_done;
    if (stamp >= getTotal())
        return false;
    const QString file = getFile(stamp);
    try {
        if (m_out.requestsData()) {
            cImg image = read(file);
            image.setName(QFileInfo(file).completeBaseName());
            image.setFrameIndex(unsigned(stamp));
            image.setNumFrames(unsigned(getTotal()));
            image.setImgAttr(QStringLiteral("source"), new cDataValObj<QString>(file));
            m_out.send(image, cBufferStamp(stamp));
        }
    } catch (const std::exception& error) {
        ++m_done;
        m_out.sendFinish(cBufferStamp(stamp));
        throw std::runtime_error(QStringLiteral("%1: %2")
                                     .arg(file, QString::fromLocal8Bit(error.what()))
                                     .toLocal8Bit()
                                     .toStdString());
    }
    ++m_done;
    m_out.sendFinish(cBufferStamp(stamp));
    return true;
}
