#pragma once

#include <QList>
#include <QPair>
#include <condition_variable>
#include <memory>
#include <mutex>
#include <tarnflow/cBufferStamp.h>
#include <tarnflow/cFates.h>
#include <tarnflow/cPortBase.h>
#include <vector>

class cBuffer;
class cBufferConverterBase;
class cBufferPool;
class cIPortBase;
class cStation;

/**
 * An output port: a pool of buffers and the receivers they go to.
 *
 * The pool holds at most `getPoolLimit()` buffers, and room for what delayed inputs behind this port hold
 * back. A sender that waits for a buffer sleeps until a holder gives one back or the graph stops.
 */
class TARNFLOW_EXPORT cOPortBase : public cPortBase {
    Q_OBJECT
public:
    cOPortBase(cDfpNode* i_node, const QString& i_name, unsigned int i_poolSize);
    ~cOPortBase() override;

    void init(cDfpNode* i_node, const QString& i_name);

    /** Some receiver, tap or observer wants data now: the gate of each process step. */
    bool requestsData() const;

    /**
     * A free buffer with one reference for the caller. With i_wait it sleeps at the limit; null when the port
     * was stopped meanwhile, or at the limit without i_wait.
     */
    cBuffer* getFreeBufferBase(bool i_wait);
    /** Delivers to all receivers on the caller's thread; the caller's reference passes on. */
    void sendBuffer(cBuffer* i_buffer);
    /** Gives a reference back, from a holder of a buffer of this port. */
    void releaseAndUnrefBuffer(cBuffer* i_buffer);
    /**
     * Tells all receivers that this stamp is finished.
     * @param i_idle nothing more comes from here until data comes again: receivers need not wait for this
     * port.
     */
    void sendFinish(const cBufferStamp& i_stamp, bool i_idle = false);
    /** Announces that nothing more comes from here for now, with the newest stamp that was announced before.
     */
    void sendIdle();
    /**
     * A private buffer with the value and stamp of another of this port, with one reference for the caller.
     * It counts for no pool and dies with its last holder.
     */
    cBuffer* makePrivateCopy(cBuffer* i_buffer);

    /** A new buffer on this port, which belongs to no pool yet. */
    virtual cBuffer* createBuffer() = 0;

    int getPoolLimit() const { return m_poolLimit; }
    /** Room beyond the limit, for receivers that hold buffers back. */
    void setExtraRoom(int i_buffers);
    int getExtraRoom() const;
    /** Buffers made so far, and how many of them are with holders. */
    int getBufferCount() const;
    int getHeldCount() const;
    /** From now on nobody sleeps for a buffer of this port or of a link's converter (true), or they may again
     * (false). */
    void setStopped(bool i_stopped);
    /** Whether a thread sleeps for a buffer of this port just now. */
    bool isBlocked() const;
    /** The stations whose threads sleep for a buffer of this port; null for a thread of somebody else. */
    QList<const cStation*> getSleepers() const;

    bool isOutport() const override;
    bool isConnected() const override;
    void removeLink(cPortBase* i_port) override;
    /** All receiving ports, through boundary ports, of enabled nodes. */
    virtual QList<QPair<cIPortBase*, cBufferConverterBase*>> getReceiver();
    /** The sending ports behind this one for values of a type. A plain port is its own sender. */
    virtual QList<cOPortBase*> getSender(const std::type_info& i_type);

    /** Frames sent, and results that found no buffer. */
    cFates getFates() const;
    void noteLost();

    /** Waits until no delivery is under way that began before the last change of links, this thread's own
     * ones excepted. */
    void waitForDeliveries();

protected:
    /** The same value in another buffer of this port's type. */
    virtual void copyValue(cBuffer* i_from, cBuffer* i_to) = 0;
    /** Whether somebody looks at what is sent, though no receiver is linked. */
    virtual bool hasObserver() const;

    int m_poolLimit = 0;

private:
    friend class cBuffer;
    struct Receivers;
    class Delivery;

    /** With m_receiversMutex held. */
    Receivers& currentReceivers();
    /** Of all links, through boundary ports. With linkMutex held. */
    void collectConverters(QVector<std::shared_ptr<cBufferConverterBase>>& io_converters) const;

    const std::shared_ptr<cBufferPool> m_pool; ///< outlives the port as long as somebody holds a buffer of it
    mutable std::mutex m_receiversMutex; ///< guards m_receivers, m_outdated and their use counts
    std::condition_variable m_deliveryEnded;
    std::shared_ptr<Receivers> m_receivers; ///< as of some link generation; replaced, never changed
    std::vector<std::shared_ptr<Receivers>> m_outdated; ///< still in use by deliveries
    std::atomic<quint64> m_sent {0};
    std::atomic<quint64> m_lost {0};
    std::atomic<qint64> m_lastStamp {cBufferStamp::s_invalid}; ///< the newest stamp announced
};
