#pragma once

#include <tarnflow/cBoundary.h>
#include <tarnflow/cOPortBase.h>
#include <tarnflow/valueTypes.h>

template <class T> class cOPort;

/**
 * An output of a subgraph, which stands for output ports inside it. It sends nothing itself: the ports behind
 * it deliver straight to its receivers. It goes away with its last inner link.
 */
template <class T> class TARNFLOW_EXPORT cExport : public cOPort<T> {
public:
    /** @param i_port the first inner port; null for a boundary that is only declared so far. */
    cExport(cOPortBase* i_port, cDfpNode* i_node, const QString& i_name)
        : cOPort<T>(i_node, i_name, defaultPoolSize<T>)
    {
        if (i_port)
            addInner(i_port);
    }

    bool isExport() const override { return true; }
    bool isJustDeclared() const override { return m_justDeclared; }
    bool hasInner(const cPortBase* i_port) const override { return m_boundary.contains(i_port); }
    QList<cPortBase*> getInnerPorts() const override { return m_boundary.getInner(); }
    bool addInner(cPortBase* i_port) override
    {
        m_boundary.add(i_port);
        m_justDeclared = false;
        return true;
    }
    void enableAudit(bool i_enable) override
    {
        m_boundary.enableAudit(i_enable);
        cOPort<T>::enableAudit(i_enable);
    }
    void removeLink(cPortBase* i_port) override
    {
        if (m_boundary.removeLink(i_port))
            delete this;
    }
    QList<cOPortBase*> getSender(const std::type_info& i_type) override
    {
        return m_boundary.getSender(i_type);
    }

private:
    cBoundary m_boundary {this};
    bool m_justDeclared = true;
};

#include <tarnflow/valuePorts.h>
