#pragma once

#include <functional>
#include <limits>
#include <memory>
#include <mutex>
#include <tarnflow/cBufferT.h>
#include <tarnflow/cOPortBase.h>

template <class T> class cOPort;
template <class T> class cImport;
template <class T> class cExport;

/** What output ports of all value types share. Derived from by cOPort<T>, which adds what is particular to a
 * type. */
template <class T> class TARNFLOW_EXPORT cOPortT : public cOPortBase {
public:
    using SendObserver = std::function<void(const T&, const QString&)>;

    /** Not attached, and without a pool: no buffer is ever given until `init`. */
    cOPortT() : cOPortBase(nullptr, QString(), 0) {}
    cOPortT(cDfpNode* i_node, const QString& i_name, unsigned int i_poolSize)
        : cOPortBase(i_node, i_name, i_poolSize)
    {
    }

    /** Attaches the port, unless it has a node already. A pool size of 0 means no limit. */
    void init(cDfpNode* i_node, const QString& i_name, unsigned int i_poolSize)
    {
        if (getNode())
            return;
        cOPortBase::init(i_node, i_name);
        constexpr auto noLimit = unsigned(std::numeric_limits<int>::max());
        m_poolLimit = int(i_poolSize == 0 || i_poolSize > noLimit ? noLimit : i_poolSize);
    }

    const std::type_info& getTypeID() const override { return typeid(T); }
    cBuffer* createBuffer() override { return new cBufferT<T>(this); }
    /** As getFreeBufferBase. */
    cBufferT<T>* getFreeBuffer(bool i_wait) { return static_cast<cBufferT<T>*>(getFreeBufferBase(i_wait)); }

    /** Sends a value in a buffer of the pool; a value that gets no buffer is counted as lost. */
    void send(const T& i_value, cBufferStamp i_stamp)
    {
        cBufferT<T>* buffer = getFreeBuffer(true);
        if (!buffer) {
            noteLost();
            return;
        }
        buffer->m_value = i_value;
        buffer->setStamp(i_stamp);
        sendBuffer(buffer);
        if (hasObserver())
            callObserver(i_value);
    }

    /**
     * A buffer to write the result in: the given one itself, with one more reference, if the caller is its
     * only holder; otherwise one of the pool with the same value and stamp.
     * @param o_value its value, null if the pool gave no buffer
     */
    cBufferT<T>* getFreeOrDuplicateBuffer(cBufferT<T>* i_buffer, T*& o_value)
    {
        o_value = nullptr;
        cBufferT<T>* result = i_buffer;
        if (i_buffer->getRefCount() == 1) {
            i_buffer->ref();
        } else {
            result = getFreeBuffer(true);
            if (!result) {
                noteLost();
                return nullptr;
            }
            result->m_value = i_buffer->m_value;
            result->setStamp(i_buffer->getStamp());
        }
        o_value = &result->m_value;
        return result;
    }

    /**
     * Sets who is told of each value that `send` sends, with the path of this port; an empty function ends
     * it. The observer counts as somebody who wants data, and runs on the sender's thread. Any thread may set
     * it, at any time; the one that was there may still be running when this returns.
     */
    void setSendObserver(SendObserver i_observer)
    {
        auto observer = i_observer ? std::make_shared<const SendObserver>(std::move(i_observer)) : nullptr;
        const std::lock_guard lock(m_observerMutex);
        m_observer.swap(observer);
        m_observed.store(bool(m_observer), std::memory_order_release);
    }

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

protected:
    void copyValue(cBuffer* i_from, cBuffer* i_to) override
    {
        static_cast<cBufferT<T>*>(i_to)->m_value = static_cast<cBufferT<T>*>(i_from)->m_value;
    }
    bool hasObserver() const override { return m_observed.load(std::memory_order_acquire); }

private:
    void callObserver(const T& i_value)
    {
        std::shared_ptr<const SendObserver> observer;
        {
            const std::lock_guard lock(m_observerMutex);
            observer = m_observer;
        }
        if (observer)
            (*observer)(i_value, getPortPath());
    }

    std::mutex m_observerMutex; ///< guards m_observer
    std::shared_ptr<const SendObserver> m_observer;
    std::atomic<bool> m_observed {false};
};

/** An output port for values of type T. */
template <class T> class TARNFLOW_EXPORT cOPort : public cOPortT<T> {
public:
    using cOPortT<T>::cOPortT;
};

#include <tarnflow/valuePorts.h>
