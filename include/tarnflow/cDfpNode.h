#pragma once

#include <QFlags>
#include <QList>
#include <QObject>
#include <QString>
#include <atomic>
#include <tarnbase/cMapObj.h>
#include <tarnflow/export.h>

class cGraph;
class cIPortBase;
class cOPortBase;
class cPortBase;

/** Why a node is started. The numbers are fixed. */
enum class EStartReason {
    Start = 1, ///< a fresh run
    Restart = 2 ///< a restart that keeps queued state
};
Q_DECLARE_FLAGS(StartReasons, EStartReason)

/**
 * A node of the data flow: a station or a graph.
 *
 * Owns its parameter map. Ports register themselves here when they are attached; they are members of the
 * derived class or of its port groups, or are made dynamically and then owned by the node: what is still
 * registered when the node is destroyed is deleted.
 *
 * Lifecycle: initialize, canStart, start, postStart, (running), stop, destroy. The graph calls it, from one
 * thread.
 */
class TARNFLOW_EXPORT cDfpNode : public QObject {
    Q_OBJECT
public:
    explicit cDfpNode(const QString& i_name);
    ~cDfpNode() override;

    virtual void initialize(const cMapObj& i_params);
    virtual bool canStart();
    virtual void start(StartReasons i_reason);
    virtual void postStart(StartReasons i_reason);
    virtual void stop();
    virtual void destroy();
    virtual bool isProject() const;
    virtual bool isGraph() const;
    virtual bool isStation() const;
    virtual cIPortBase* getInport(const QString& i_name) const;
    virtual cOPortBase* getOutport(const QString& i_name) const;
    /** The name made fit for a node: letters, digits, '_' and '-'; empty if nothing is left. */
    virtual QString checkName(const QString& i_name);

    /** The node takes part in the flow: itself and every graph around it are enabled. */
    bool isEnabled() const;
    virtual void setEnabled(bool i_enabled);

    QString getName() const;
    /** Names from the outermost graph that has a name down to this node, separated by '/'. */
    QString getPathName() const;
    cGraph* getGraph() const;

    cMapObj& getParams() { return m_params; }
    const cMapObj& getParams() const { return m_params; }

    /** All ports in the order in which they were attached. */
    QList<cIPortBase*> getInports() const;
    QList<cOPortBase*> getOutports() const;

    /** Called by a port when it is attached and when it goes. */
    void addPort(cPortBase* i_port);
    void removePort(cPortBase* i_port);

protected:
    cMapObj m_params;

private:
    friend class cGraph;
    QString m_name;
    cGraph* m_graph = nullptr;
    std::atomic<bool> m_enabled {true};
    QList<cIPortBase*> m_inports;
    QList<cOPortBase*> m_outports;
};

Q_DECLARE_OPERATORS_FOR_FLAGS(StartReasons)
