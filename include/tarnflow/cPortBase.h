#pragma once

#include <QObject>
#include <QString>
#include <atomic>
#include <tarnbase/cMapObj.h>
#include <tarnflow/export.h>
#include <typeinfo>

class cDfpNode;
class cIPortBase;
class cOPortBase;

/** What input and output ports share: a place in a node, a name, parameters, and the link check. */
class TARNFLOW_EXPORT cPortBase : public QObject {
    Q_OBJECT
public:
    cPortBase(cDfpNode* i_node, const QString& i_name);
    ~cPortBase() override;

    const QString& getName() const { return m_name; }
    /** Path of the node, '.', name of the port. */
    QString getPortPath() const;
    cDfpNode* getNode() const { return m_node; }
    cMapObj& getParams() { return m_params; }
    cMapObj& getDefaultParams() { return m_defaultParams; }
    QString getDescription() const { return m_description; }
    void setDescription(const QString& i_text) { m_description = i_text; }

    bool isAudit() const { return m_audit; }
    bool collectHistory() const { return m_collectHistory; }
    void setCollectHistory(bool i_collect) { m_collectHistory = i_collect; }
    /** Forgets the port's links; the far ends are told. */
    void removeChannels();

    virtual bool isExport() const;
    virtual bool isImport() const;
    virtual bool isInport() const;
    virtual bool isOutport() const;
    /** The type of the values that travel through the port. */
    virtual const std::type_info& getTypeID() const = 0;
    virtual QString getTooltip() const;
    virtual bool isConnected() const = 0;
    /** A new output port of the same value type, which the caller (the node) owns. */
    virtual cOPortBase* makeOutport(cDfpNode* i_node, const QString& i_name) = 0;
    /** A boundary port of a subgraph for a port inside it. */
    virtual cIPortBase* makeExport(cIPortBase* i_port, cDfpNode* i_node, const QString& i_name) = 0;
    virtual cOPortBase* makeExport(cOPortBase* i_port, cDfpNode* i_node, const QString& i_name) = 0;
    virtual void removeLink(cPortBase* i_port) = 0;
    virtual bool isJustDeclared() const;
    virtual void enableAudit(bool i_enable);
    /**
     * Whether a link with the other port can carry data at all, as far as it is known before any data flows. The default
     * compares the value types; whether a value converter helps is the graph's question.
     */
    virtual bool checkStaticData(const cPortBase* i_other);

protected:
    void attach(cDfpNode* i_node, const QString& i_name);

    QString m_description;
    std::atomic<bool> m_collectHistory{false};
    std::atomic<bool> m_audit{false};

private:
    friend class cDfpNode;
    cDfpNode* m_node = nullptr;
    QString m_name;
    cMapObj m_params;
    cMapObj m_defaultParams;
};
