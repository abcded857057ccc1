#pragma once

#include "hostStations.h"

#include <QSet>
#include <QStringList>
#include <atomic>
#include <tarnflow/cSourceStation.h>
#include <tarnimg/cOPortImg.h>

/**
 * Reads image files, one frame each.
 *
 * Frames are stamped 0, 1, 2, ... in the order of the files, with their name, number and count set, and with
 * the attribute "source", the path. A file that cannot be read keeps its stamp, is reported with its path and
 * the reason, and the next one follows. Files are read only if somebody wants the frames.
 */
class cFilesStation : public cSourceStation, public cHostStation, public cFrameSource {
    Q_OBJECT
public:
    cFilesStation();
    ~cFilesStation() override;
    static cStationInfo getWords();

    /** Finds the files. Refuses a pattern that stands for none. */
    QList<cGraphError> checkParams() override;
    /** The frame is what the first few rows and columns of the file show. */
    void rehearse(cHostStation& io_like, qint64 i_stamp) override;
    void start(StartReasons i_reason) override;

    QString getFile(qint64 i_stamp) const override;
    int getFileCount() const override { return m_files.size(); }
    bool reads(const QString& i_absolutePath) const override;
    qint64 getTotal() const override;
    qint64 getDone() const override;
    cImg readAhead(qint64 i_stamp) override;
    void setLimit(qint64 i_frames) override;

protected:
    bool produce() override;

private:
    QString expand();
    cImg read(const QString& i_file);

    QString m_path;
    unsigned m_repeat = 1;
    unsigned m_limit = 0;
    cOPort<cImg> m_out;

    QString m_expanded; ///< the pattern that m_files stands for
    QStringList m_files; ///< not changed while the graph runs
    QSet<QString> m_absolute; ///< the same for `reads`
    std::atomic<qint64> m_done {0};
    cImg m_single; ///< the only file when it is repeated, so that it is read once
    QString m_aheadFile; ///< read before the start
    cImg m_ahead; ///< what is in it, until the run takes it
    QByteArray m_aheadError; ///< why it cannot be read; empty if it can
};
