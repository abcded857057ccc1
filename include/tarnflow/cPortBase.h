#pragma once

#include <QList>
#include <QObject>
#include <QString>
#include <QVector>
#include <atomic>
#include <memory>
#include <mutex>
#include <tarnbase/cMapObj.h>
#include <tarnflow/cBufferStamp.h>
#include <tarnflow/export.h>
#include <typeinfo>

class cBufferConverterBase;
class cDfpNode;
class cIPortBase;
class cOPortBase;
class cPortBase;

/** One end of a link. */
struct cPortLink {
    cPortBase* port = nullptr; ///< the far end
    std::shared_ptr<cBufferConverterBase> converter; ///< on the receiver's end, if the value types differ
    quint64 serial = 0; ///< ascends in the order in which links are made, the same at both ends
};

/** A buffer's passage at a port. */
struct cAuditRecord {
    cBufferStamp stamp;
    qint64 time = 0; ///< nanoseconds of the steady clock
    QString text; ///< the value's text form
};

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
    /** Keeps a record of a buffer's passage; the newest 256 are kept. Any thread. */
    void addAuditRecord(const cBufferStamp& i_stamp, const QString& i_text);
    QList<cAuditRecord> getAuditRecords() const;
    /** Forgets the port's links; the far ends are told. Deliveries over these links have ended when it
     * returns. */
    void removeChannels();
    /** The far ends of the port's links, in the order in which they were made. */
    QList<cPortBase*> getLinkedPorts() const;

    virtual bool isExport() const;
    virtual bool isImport() const;
    virtual bool isInport() const;
    virtual bool isOutport() const;
    /** The type of the values that travel through the port. */
    virtual const std::type_info& getTypeID() const = 0;
    /** The name of that type, for people. */
    QString getTypeName() const;
    static QString getTypeName(const std::type_info& i_type);
    virtual QString getTooltip() const;
    virtual bool isConnected() const = 0;
    /** A new output port of the same value type, which the caller (the node) owns. */
    virtual cOPortBase* makeOutport(cDfpNode* i_node, const QString& i_name) = 0;
    /** A boundary port of a subgraph for a port inside it. */
    virtual cIPortBase* makeExport(cIPortBase* i_port, cDfpNode* i_node, const QString& i_name) = 0;
    virtual cOPortBase* makeExport(cOPortBase* i_port, cDfpNode* i_node, const QString& i_name) = 0;
    /** Cuts the link with another port, at both ends. */
    virtual void removeLink(cPortBase* i_port) = 0;
    virtual bool isJustDeclared() const;
    virtual void enableAudit(bool i_enable);
    /**
     * Whether a link with the other port can carry data at all, as far as it is known before any data flows.
     * The default compares the value types; whether a value converter helps is the graph's question.
     */
    virtual bool checkStaticData(const cPortBase* i_other);

    /** Of a boundary port: the ports inside that it stands for. */
    virtual QList<cPortBase*> getInnerPorts() const;
    virtual bool hasInner(const cPortBase* i_port) const;
    /** Lets a boundary port stand for one more port inside; false for a port that is no boundary. */
    virtual bool addInner(cPortBase* i_port);

    /** Guards all links and the tree of nodes. No callback runs under it, and no other mutex of a port or
     * group is taken. */
    static std::recursive_mutex& linkMutex();
    /** Counts the changes of links, boundaries and enabled flags, in all graphs. */
    static quint64 getLinkGeneration() { return s_generation.load(std::memory_order_acquire); }
    static void linksChanged();

protected:
    friend class cBoundary;
    friend class cGraph;
    /** Enters each port in the other's list. */
    static void linkPorts(
        cPortBase* i_from, cPortBase* i_to, std::shared_ptr<cBufferConverterBase> i_converter);
    /** Takes each port from the other's list; false if they were not linked. */
    static bool unlinkPorts(cPortBase* i_a, cPortBase* i_b);
    void attach(cDfpNode* i_node, const QString& i_name);
    /** What `removeLink` and the destructors do: cuts links at both ends, without waiting for deliveries
     * under way. */
    void removeOneLink(cPortBase* i_port);
    void removeAllLinks();
    /** The converter that some link brings for values of a type, or null. */
    cBufferConverterBase* findConverter(const std::type_info& i_type) const;

    QString m_description;
    std::atomic<bool> m_collectHistory {false};
    std::atomic<bool> m_audit {false};
    QVector<cPortLink> m_links; ///< guarded by linkMutex

    /** Converters of links that have gone, until no buffer of theirs is held any more; guarded by linkMutex.
     */
    QVector<std::shared_ptr<cBufferConverterBase>> m_retired;

private:
    friend class cDfpNode;
    static std::atomic<quint64> s_generation;

    cDfpNode* m_node = nullptr;
    QString m_name;
    cMapObj m_params;
    cMapObj m_defaultParams;
    mutable std::mutex m_auditMutex; ///< guards m_auditRecords
    QList<cAuditRecord> m_auditRecords;
};
