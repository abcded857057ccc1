#pragma once

#include <QString>
#include <tarnflow/cGraphError.h>

class cGraph;
class cIPortBase;
class cOPortBase;

/** A station whose outputs come with its links: each has the type that its receiver takes. */
class cOpenOutputs {
public:
    virtual ~cOpenOutputs() = default;
    /** An output for a receiver; null if the receiver takes nothing that the station can give. */
    virtual cOPortBase* openOutput(const cIPortBase& i_receiver) = 0;
};

/** A station whose inputs come with its links, one for each sender. */
class cOpenInputs {
public:
    virtual ~cOpenInputs() = default;
    /** An input for a sender; null if the station does not take what it sends. */
    virtual cIPortBase* openInput(const cOPortBase& i_sender) = 0;
};

namespace host {

/**
 * Prepares a link of which one end may be such a station: opens its port and completes both paths ("node" or
 * "node.port"), which stay as they are for other stations.
 *
 * @return false, with the error, if no port fits
 */
bool openPorts(const cGraph& i_graph, QString& io_from, QString& io_to, cGraphError& o_error);

} // namespace host
