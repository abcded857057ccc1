#pragma once

#include <tarnflow/cBoundary.h>
#include <tarnflow/cIPortBase.h>

template <class T> class cIPort;

/**
 * An input of a subgraph, which stands for input ports inside it. It holds no data: senders deliver straight
 * to the ports behind it. It goes away with its last inner link.
 */
template <class T> class TARNFLOW_EXPORT cImport : public cIPort<T> {
public:
    /** @param i_port the first inner port; null for a boundary that is only declared so far. */
    cImport(cIPortBase* i_port, cDfpNode* i_node, const QString& i_name) : cIPort<T>(i_node, i_name)
    {
        if (i_port)
            addInner(i_port);
    }

    bool isImport() const override { return true; }
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
        cIPort<T>::enableAudit(i_enable);
    }
    void removeLink(cPortBase* i_port) override
    {
        if (m_boundary.removeLink(i_port))
            delete this;
    }
    QList<QPair<cIPortBase*, cBufferConverterBase*>> getReceiver(const std::type_info& i_type) override
    {
        return m_boundary.getReceiver(i_type);
    }

private:
    cBoundary m_boundary {this};
    bool m_justDeclared = true;
};

#include <tarnflow/valuePorts.h>
