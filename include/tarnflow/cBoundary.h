#pragma once

#include <QList>
#include <QPair>
#include <tarnflow/export.h>
#include <typeinfo>

class cBufferConverterBase;
class cIPortBase;
class cOPortBase;
class cPortBase;

/** The inner side of a boundary port: the ports inside the subgraph that it stands for. Guarded by
 * cPortBase::linkMutex. */
class TARNFLOW_EXPORT cBoundary {
public:
    explicit cBoundary(cPortBase* i_self) : m_self(i_self) {}
    ~cBoundary();
    cBoundary(const cBoundary&) = delete;
    cBoundary& operator=(const cBoundary&) = delete;

    /** Enters the inner port here and the boundary in the inner port's link list. */
    void add(cPortBase* i_inner);
    bool contains(const cPortBase* i_port) const { return m_inner.contains(const_cast<cPortBase*>(i_port)); }
    const QList<cPortBase*>& getInner() const { return m_inner; }
    void enableAudit(bool i_enable);
    /**
     * Cuts every outer link, and then the link to an inner port, if one is given.
     * @return true when the last inner link has gone: the boundary port has left its node and is to be
     * destroyed.
     */
    bool removeLink(cPortBase* i_port);

    /** The receivers behind an import for values of a type; i_links are looked through for a converter. */
    QList<QPair<cIPortBase*, cBufferConverterBase*>> getReceiver(const std::type_info& i_type) const;
    /** The senders behind an export. */
    QList<cOPortBase*> getSender(const std::type_info& i_type) const;

private:
    cPortBase* m_self;
    QList<cPortBase*> m_inner;
};
