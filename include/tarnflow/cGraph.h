#pragma once

#include <QStringList>
#include <QVariant>
#include <functional>
#include <memory>
#include <tarnflow/cDfpNode.h>
#include <tarnflow/cFates.h>
#include <tarnflow/cGraphError.h>
#include <tarnflow/cStation.h>

class cError;
class cFlow;
class cObj;

/**
 * Stations and subgraphs, the links between their ports, and their common life.
 *
 * A graph is built and changed from one thread. Paths name things in it: "blur", "sub/blur" a node,
 * "blur.img" a port, "blur.maskSize" or "blur.img.delay" a parameter. Functions that can fail return false
 * (or null) and say why in o_error.
 */
class TARNFLOW_EXPORT cGraph : public cDfpNode {
    Q_OBJECT
public:
    /** How far the data has got. */
    enum class EFlow {
        Stopped,
        Running, ///< some thread computes or has a job to do
        Drained, ///< nothing is left to do: every source has ended and every job is done
        Stalled ///< every thread that has a job sleeps for a buffer that nobody can give back
    };

    struct cLink {
        cOPortBase* from;
        cIPortBase* to;
    };

    explicit cGraph(const QString& i_name = QString());
    ~cGraph() override;

    // --- building ---

    /** A new station by its identifier or a unique suffix of it. An empty name becomes the identifier's last
     * part and a number. */
    cStation* addStation(
        const QString& i_id, const QString& i_name = QString(), cGraphError* o_error = nullptr);
    /** Takes over a node that was made elsewhere. On failure the caller keeps it. */
    bool addNode(cDfpNode* i_node, cGraphError* o_error = nullptr);
    /** An empty subgraph. */
    cGraph* addGraph(const QString& i_name, cGraphError* o_error = nullptr);
    /** Removes and deletes a node with its links. Only while stopped. */
    bool removeNode(const QString& i_name, cGraphError* o_error = nullptr);
    bool renameNode(const QString& i_name, const QString& i_newName, cGraphError* o_error = nullptr);
    cDfpNode* findNode(const QString& i_path) const;
    /** In the order in which they were added. */
    QList<cDfpNode*> getNodes() const { return m_nodes; }
    /** All stations here and in subgraphs. */
    QList<cStation*> getStations() const;

    /**
     * Links "node.port" with "node.port". Without ".port": the only, or the first free, port that fits the
     * other side's type. Links may come and go while the graph runs; no delivery over a link is under way any
     * more when `unlink` returns.
     *
     * A named input takes one sender. By the ports themselves it may be given more, which then must announce
     * the same stamps. A port without a node is a tap of the host, and may be linked at any place.
     */
    bool link(const QString& i_from, const QString& i_to, cGraphError* o_error = nullptr);
    bool link(cOPortBase* i_from, cIPortBase* i_to, cGraphError* o_error = nullptr);
    bool unlink(const QString& i_from, const QString& i_to, cGraphError* o_error = nullptr);
    bool unlink(cOPortBase* i_from, cIPortBase* i_to, cGraphError* o_error = nullptr);
    /** The links between nodes of this graph, in the order in which they were made. */
    QList<cLink> getLinks() const;
    /** Told by a boundary port whose inner link has gone; the mutex of the links is held. */
    void linkRemoved(cGraph* i_graph, cPortBase* i_from, cPortBase* i_to);

    /** A port of this graph that stands for a port ("node.port") inside it. */
    cIPortBase* exportInport(const QString& i_inner, const QString& i_name, cGraphError* o_error = nullptr);
    cOPortBase* exportOutport(const QString& i_inner, const QString& i_name, cGraphError* o_error = nullptr);

    // --- parameters ---

    /** The entry of a parameter, or null. */
    cObj* findParam(const QString& i_path, cGraphError* o_error = nullptr) const;
    /**
     * Writes a parameter from its text form: checked first (type, allowed keys, range), then written under
     * the station's input mutex, so that a change falls between two steps.
     */
    bool setParam(const QString& i_path, const QString& i_text, cGraphError* o_error = nullptr);
    bool setParam(const QString& i_path, const QVariant& i_value, cGraphError* o_error = nullptr);
    /** The text form of a parameter's value; a null string if there is no such parameter. */
    QString getParam(const QString& i_path, cGraphError* o_error = nullptr) const;

    // --- running ---

    /** What keeps the graph from working: required inputs without a sender, cycles, stations that refuse to
     * start. */
    QList<cGraphError> check() const;
    /** Checks, initialises and starts everything; on failure nothing runs and o_errors says why. */
    bool launch(QList<cGraphError>* o_errors = nullptr);
    /** Stops and starts again with the reason `Restart`. */
    bool relaunch(QList<cGraphError>* o_errors = nullptr);
    /** Ends every source after its current step; what is in flight is still processed. */
    void finishSources();
    bool isRunning() const;

    EFlow getFlow() const;
    /** Sleeps until the flow is drained, stalled or stopped, or the time is over; returns the flow then. -1:
     * no limit. */
    EFlow waitForFlow(int i_milliseconds = -1);
    /** Who waits for whom, one line for each thread that sleeps for a buffer. */
    QStringList describeWaits() const;

    /** The fates of all frames at all ports of all stations. Any time. */
    QList<cPortFates> getFates() const;

    void initialize(const cMapObj& i_params) override;
    bool canStart() override;
    void start(StartReasons i_reason) override;
    void postStart(StartReasons i_reason) override;
    /** Returns whatever is blocked: sleepers are woken, queued jobs dropped, queues reset. */
    void stop() override;
    void destroy() override;
    bool isGraph() const override;
    void setEnabled(bool i_enabled) override;

Q_SIGNALS:
    /** A station failed on a frame. Emitted on that station's thread. */
    void errorReported(const cError& i_error);
    /** A station can compute no further step. Emitted on that station's thread. */
    void stationDied(const QString& i_path);

private:
    friend std::shared_ptr<cFlow> flowOf(const cDfpNode* i_node);

    // Building. Errors go to o_error, if it is not null.
    QString freeName(const QString& i_stem) const;
    bool checkNewName(const QString& i_name, cGraphError* o_error) const;
    void adopt(cDfpNode* i_node);
    /** The node of a path; complains about one that is not there. */
    cDfpNode* needNode(const QString& i_path, cGraphError* o_error) const;
    /** Every node here and in subgraphs, graphs before what is in them. */
    QList<cDfpNode*> getAllNodes() const;

    // Links.
    QList<cOPortBase*> findOutports(const QString& i_path, cGraphError* o_error) const;
    QList<cIPortBase*> findInports(const QString& i_path, cGraphError* o_error) const;
    bool isInside(const cPortBase* i_port) const;
    bool checkFree(cOPortBase* i_from, cIPortBase* i_to, cGraphError* o_error) const;
    bool checkLink(cOPortBase* i_from, cIPortBase* i_to, cGraphError* o_error) const;
    cPortBase* findInner(const QString& i_inner, bool i_out, cGraphError* o_error) const;
    bool checkExport(const cPortBase* i_inner, const QString& i_name, cGraphError* o_error) const;

    // Parameters.
    struct cPlace;
    bool findPlace(const QString& i_path, cPlace& o_place, cGraphError* o_error) const;
    bool writeParam(
        const QString& i_path, const std::function<bool(cObj&, QString*)>& i_write, cGraphError* o_error);

    EFlow getFlowOfRoot() const;

    // Checking and running.
    void checkInputs(QList<cGraphError>& io_errors) const;
    void checkCycles(QList<cGraphError>& io_errors) const;
    void checkReadiness(QList<cGraphError>& io_errors) const;
    bool run(StartReasons i_reason, QList<cGraphError>* o_errors);
    /** The outermost graph around this one. */
    cGraph* getRoot();
    /** Gives each pool room for what delayed inputs hold back. */
    void updateRooms();

    QList<cDfpNode*> m_nodes;
    const std::shared_ptr<cFlow> m_flow;
};
