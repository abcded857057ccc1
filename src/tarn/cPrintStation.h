#pragma once

#include "hostStations.h"
#include "openPorts.h"

#include <QFile>
#include <QMutex>
#include <map>
#include <tarnflow/cStation.h>
#include <tarnflow/cStationInfo.h>
#include <utility>
#include <vector>

class cBuffer;
class cBufferStamp;
class cPrintPort;

/**
 * Writes values as JSON lines, from any number of outputs of any types:
 *
 *     {"stamp":3,"file":"in/a.png","port":"m.mean","value":127.25}
 *
 * The lines come in the order of their stamps, those of one stamp in the order of the links, however the
 * threads run: a line is written when every sender has finished its stamp. A value becomes text when it
 * arrives, so that its buffer goes back at once.
 */
class cPrintStation : public cStation, public cHostStation, public cOpenInputs {
    Q_OBJECT
public:
    cPrintStation();
    ~cPrintStation() override;
    static cStationInfo getWords();

    cIPortBase* openInput(const cOPortBase& i_sender) override;
    QList<cGraphError> checkParams() override;
    /** Nothing is written. */
    void rehearse(cHostStation& io_like, qint64 i_stamp) override;
    QString getExample() const override;
    void start(StartReasons i_reason) override;
    /** Writes what has arrived and waits for others. */
    void stop() override;

    /** Whether the lines go to standard output. */
    bool printsToOutput() const { return m_path.isEmpty() || m_path == QLatin1String("-"); }

private:
    friend class cPrintPort;
    void take(cPrintPort& io_port, cBuffer& i_buffer);
    void openFile(); ///< with m_mutex held
    void finish(cPrintPort& io_port, const cBufferStamp& i_stamp, bool i_idle);
    /** Writes the lines up to a stamp; what went wrong, if it is new. With m_mutex held. */
    QString writeUpTo(qint64 i_stamp);
    /** Tells the graph of a problem, if there is one. Without m_mutex. */
    void report(const QString& i_problem);
    /** Whether the file is nobody else's. */
    QList<cGraphError> checkFile() const;

    QString m_path;
    bool m_rehearses = false;
    std::vector<cPrintPort*> m_ports; ///< in the order of the links; not changed while the graph runs

    QMutex m_mutex; ///< guards what follows, and the state of the ports
    std::multimap<std::pair<qint64, std::size_t>, QByteArray> m_lines; ///< by stamp, then by port
    QFile m_file;
    bool m_failed = false; ///< the file; said once
};
