#pragma once

#include "cValueSource.h"

#include <tarnflow/cStationInfo.h>

/**
 * One value that is there for every frame.
 *
 * An input that keeps the last value gets it once, before its first frame. An input that needs a value for
 * each of its frames gets it for every frame of the run.
 */
class cConstantStation : public cValueSource {
    Q_OBJECT
public:
    cConstantStation();
    ~cConstantStation() override;
    static cStationInfo getWords();
    QString getExample() const override;
    void start(StartReasons i_reason) override;

protected:
    QString makeValues(QString& o_param) override;
    bool produce() override;

private:
    QString m_value;
    qint64 m_frames = 0;
    qint64 m_next = 0;
};
