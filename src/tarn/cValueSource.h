#pragma once

#include "cValueForm.h"
#include "hostStations.h"
#include "openPorts.h"

#include <tarnflow/cSourceStation.h>
#include <vector>

/** A source of values for the inputs of other stations, in the type that each input takes. */
class cValueSource : public cSourceStation, public cHostStation, public cOpenOutputs {
    Q_OBJECT
public:
    ~cValueSource() override;

    cOPortBase* openOutput(const cIPortBase& i_receiver) override;
    /** Makes the values of each output. Refuses a station that is linked with nothing. */
    QList<cGraphError> checkParams() override;
    /** Keeps the first value. */
    void rehearse(cHostStation& io_like, qint64 i_stamp) override;
    /** No value has this stamp or a later one; 0: no limit. Before the graph starts. */
    void setLimit(qint64 i_frames) { m_limit = i_frames; }

protected:
    struct Output {
        cOPortBase* port;
        const cValueForm* form;
        std::vector<cValueForm::Value> values;
        /** A receiver needs a value for each of its frames; others keep the last one. */
        bool isRequired() const;
    };

    cValueSource() = default;
    /** Fills the values of all outputs; what is wrong with the parameter o_param, or nothing. */
    virtual QString makeValues(QString& o_param) = 0;
    /** How many frames will come to the stations that the values go to; stamped from 0 on. */
    qint64 countFrames() const;

    std::vector<Output> m_outputs;
    qint64 m_limit = 0;
};
