#pragma once

#include <QList>
#include <QString>
#include <atomic>
#include <memory>
#include <tarnflow/cBufferStamp.h>
#include <tarnflow/export.h>
#include <typeinfo>

class cBufferPool;
class cOPortBase;
class cPortBase;

/**
 * A stamped, reference-counted parcel on the pool of an output port. Whoever holds one counts as a holder and
 * gives its reference back exactly once; the last one returns the buffer to its pool, with the value left in
 * place.
 */
class TARNFLOW_EXPORT cBuffer {
public:
    explicit cBuffer(cOPortBase* i_parent);
    virtual ~cBuffer();
    cBuffer(const cBuffer&) = delete;
    cBuffer& operator=(const cBuffer&) = delete;

    /** The value as text, for audits and queue listings. */
    virtual QString getAuditText() const = 0;
    /** Called when the buffer goes back to its pool. */
    virtual void recycled() {}
    virtual void* getData() = 0;
    virtual const std::type_info& getTypeInfo() const = 0;

    cBufferStamp getStamp() const;
    void setStamp(const cBufferStamp& i_stamp);
    /** The port whose pool it belongs to; null when that has been destroyed meanwhile. */
    cOPortBase* getParentPort() const { return m_parent.load(std::memory_order_acquire); }

    /** Takes one more reference. */
    bool ref();
    /** The number of holders; 1 means that the caller is the only one. */
    int getRefCount() const { return m_refCount.load(std::memory_order_acquire); }
    /** Gives one reference back to the parent's pool. */
    void releaseAndUnrefBufferAtPort();
    /** Records the buffer's passage at a port. */
    void audit(cPortBase* i_port, const cBufferStamp& i_stamp, const QString& i_text);

    /** This buffer as a list of one, made once, so that a delivery allocates nothing. */
    const QList<cBuffer*>& asList() const { return m_asList; }

protected:
    friend class cBufferPool;
    friend class cOPortBase;
    std::atomic<int> m_refCount {0};

private:
    std::atomic<cOPortBase*> m_parent; ///< null when the port has gone before its buffer
    const std::shared_ptr<cBufferPool> m_pool;
    // Both fields may be read by one receiver while another moves a stamp it holds alone.
    std::atomic<qint64> m_stamp {cBufferStamp::s_invalid};
    std::atomic<qint64> m_time {0};
    static constexpr std::size_t s_nowhere = ~std::size_t(0);
    std::size_t m_place = s_nowhere; ///< in the pool's list, guarded by the pool
    bool m_pooled = false; ///< false: it dies with its last holder
    const QList<cBuffer*> m_asList;
};
