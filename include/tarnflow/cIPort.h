#pragma once

#include <functional>
#include <tarnbase/cTypeConverterBase.h>
#include <tarnflow/cBufferConverterBase.h>
#include <tarnflow/cBufferT.h>
#include <tarnflow/cIPortBase.h>

template <class T> class cOPort;
template <class T> class cImport;
template <class T> class cExport;
template <class T> class cBufferConverter;

/**
 * What input ports of all value types share. Derived from by cIPort<T>, which adds what is particular to a
 * type.
 *
 * A port hands buffers either to its list callback (a queue, which takes over the references) or to its
 * direct callback (which only looks: the port gives the reference back when the callback returns). The direct
 * callback goes first. A port without a callback takes nothing. Callbacks are set before the port is linked;
 * they run on the sender's thread.
 */
template <class T> class TARNFLOW_EXPORT cIPortT : public cIPortBase {
public:
    using ListCallback = std::function<void(const QList<cBufferT<T>*>&)>;
    using DirectCallback = std::function<void(cBufferT<T>*)>;

    explicit cIPortT(cDfpNode* i_node = nullptr, const QString& i_name = QString())
        : cIPortBase(i_node, i_name)
    {
    }

    void setListCallback(ListCallback i_callback) { m_listCallback = std::move(i_callback); }
    void setDirectCallback(DirectCallback i_callback) { m_directCallback = std::move(i_callback); }

    const std::type_info& getTypeID() const override { return typeid(T); }
    bool hasDirectCallback() const override { return bool(m_directCallback); }
    bool takesBuffers() const override { return m_directCallback || m_listCallback; }

    cOPortBase* makeOutport(cDfpNode* i_node, const QString& i_name) override
    {
        return new cOPort<T>(i_node, i_name, defaultPoolSize<T>);
    }
    cIPortBase* makeExport(cIPortBase* i_port, cDfpNode* i_node, const QString& i_name) override
    {
        return new cImport<T>(i_port, i_node, i_name);
    }
    cOPortBase* makeExport(cOPortBase* i_port, cDfpNode* i_node, const QString& i_name) override
    {
        return new cExport<T>(i_port, i_node, i_name);
    }
    cBufferConverterBase* makeBufferConverter(const std::type_info& i_from) override
    {
        const cTypeConverterBase* converter = cTypeConverterBase::getTypeConverter(i_from, typeid(T));
        return converter ? new cBufferConverter<T>(converter) : nullptr;
    }

    void receiveBuffer(
        const QList<cBuffer*>& i_buffers, cBufferConverterBase* i_converter, bool i_audit) override
    {
        if (i_buffers.size() == 1) {
            if (cBufferT<T>* accepted = receiveOne(i_buffers.first(), i_converter, i_audit))
                m_listCallback(accepted->asTypedList());
            return;
        }
        QList<cBufferT<T>*> accepted;
        accepted.reserve(i_buffers.size());
        for (cBuffer* buffer : i_buffers)
            if (cBufferT<T>* typed = receiveOne(buffer, i_converter, i_audit))
                accepted.append(typed);
        if (!accepted.isEmpty())
            m_listCallback(accepted);
    }

    ListCallback m_listCallback;
    DirectCallback m_directCallback;

protected:
    /** Whether the port takes this value; a port that refuses one says so on the trace. */
    virtual bool checkDynamicData(const T&) { return true; }

private:
    /** The buffer for the list callback; null if the buffer went another way. */
    cBufferT<T>* receiveOne(cBuffer* i_buffer, cBufferConverterBase* i_converter, bool i_audit)
    {
        if (collectHistory())
            updateHistory(i_buffer->getStamp().getStamp(), GraphHistoryEntry::Arrived);
        if (!takesBuffers())
            return nullptr;
        if (i_audit && isAudit())
            i_buffer->audit(this, i_buffer->getStamp(), i_buffer->getAuditText());
        if (i_converter)
            i_buffer = i_converter->convert(i_buffer);
        auto* typed = static_cast<cBufferT<T>*>(i_buffer);
        if (!typed) {
            noteRefused();
            return nullptr;
        }
        if (m_directCallback) {
            noteDirect();
            const BufferReturner returner(typed);
            m_directCallback(typed);
            return nullptr;
        }
        if (checkDynamicData(typed->m_value))
            return typed;
        noteRefused();
        typed->releaseAndUnrefBufferAtPort();
        return nullptr;
    }
};

/** An input port for values of type T. */
template <class T> class TARNFLOW_EXPORT cIPort : public cIPortT<T> {
public:
    using cIPortT<T>::cIPortT;
};

#include <tarnflow/valuePorts.h>
