#pragma once

#include "cOutputName.h"
#include "hostStations.h"

#include <atomic>
#include <tarnflow/cStation.h>
#include <tarnimg/imagePortGroups.h>

/**
 * Writes each frame to a file of its own.
 *
 * No frame writes over a file that another frame of the same run wrote, from whatever station, nor over a
 * file that is read: that frame fails instead. A frame is named after the file that its source read for the
 * stamp, whatever name the image carries: of several sources, the one with the most files.
 */
class cSaveStation : public cStation, public cHostStation {
    Q_OBJECT
public:
    cSaveStation();
    ~cSaveStation() override;
    static cStationInfo getWords();

    QList<cGraphError> checkParams() override;
    /** Nothing is written; a pixel type that the format cannot hold is a misfit. */
    void rehearse(cHostStation& io_like, qint64 i_stamp) override;
    void start(StartReasons i_reason) override;

    /** Files written since the start. Any thread. */
    qint64 getWritten() const { return m_written; }

private:
    void process(cBufferT<cImg>* i_buffer);
    cOutputName::Frame describe(const cImg& i_image, const cBuffer& i_buffer) const;

    QString m_path;
    cPortGroup<cImg> m_group;

    bool m_rehearses = false;
    cOutputName m_name;
    QList<cFrameSource*> m_sources; ///< not changed while the graph runs
    qint64 m_arrived = 0;
    std::atomic<qint64> m_written {0};
};
