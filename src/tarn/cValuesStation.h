#pragma once

#include "cJsonLines.h"
#include "cValueSource.h"

#include <tarnflow/cStationInfo.h>

/**
 * Values from a file of JSON lines, each for the frame of its stamp.
 *
 * The whole file is read and checked before the run. All frames of the run are announced too, so that those
 * without a value need not wait for one; after the last value nothing waits for this source any more.
 */
class cValuesStation : public cValueSource {
    Q_OBJECT
public:
    cValuesStation();
    ~cValuesStation() override;
    static cStationInfo getWords();
    QString getExample() const override;
    void start(StartReasons i_reason) override;
    void rehearse(cHostStation& io_like, qint64 i_stamp) override;

    const QString& getPath() const { return m_path; }

protected:
    QString makeValues(QString& o_param) override;
    bool produce() override;

private:
    QString m_path;
    QString m_key = QStringLiteral("value");
    QString m_port;

    std::vector<qint64> m_stamps; ///< of the values, ascending
    qint64 m_frames = -1; ///< -1 until the first step
    qint64 m_nextFrame = 0;
    std::size_t m_nextValue = 0;
};
