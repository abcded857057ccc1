#pragma once

#include <QList>
#include <QPair>
#include <functional>
#include <tarnflow/GraphHistoryEntry.h>
#include <tarnflow/cBufferStamp.h>
#include <tarnflow/cFates.h>
#include <tarnflow/cPortBase.h>

class cBuffer;
class cBufferConverterBase;
class cPortGroupBase;

/** An input port: where senders are linked and buffers arrive. */
class TARNFLOW_EXPORT cIPortBase : public cPortBase {
    Q_OBJECT
public:
    cIPortBase(cDfpNode* i_node = nullptr, const QString& i_name = QString());
    ~cIPortBase() override;

    /** Attaches the port to a node and a group and names it. */
    void init(cDfpNode* i_node, cPortGroupBase* i_group, const QString& i_name);
    cPortGroupBase* getGroup() const { return m_group; }

    /** Records an event of a stamp; the newest 1024 are kept. */
    void updateHistory(qint64 i_stamp, GraphHistoryEntry::HistoryEntryType i_type);
    QList<GraphHistoryEntry> getHistory() const;

    /** An enabled sender is linked, directly or through boundary ports. */
    bool receivesData() const;
    unsigned int getEnabledChannelCount() const;

    bool isInport() const override;
    bool isConnected() const override;
    void removeLink(cPortBase* i_port) override;
    /**
     * The receiving ports behind this one for values of a type, each with the converter that its values need
     * (null: none). A plain port is its own receiver.
     */
    virtual QList<QPair<cIPortBase*, cBufferConverterBase*>> getReceiver(const std::type_info& i_type);
    /** Whether a callback takes every buffer as it comes, without a queue. */
    virtual bool hasDirectCallback() const = 0;
    /** Whether the port takes over what is delivered to it; without any callback it does not. */
    virtual bool takesBuffers() const = 0;
    /** A new converter from a value type to the port's, or null if there is none. The link owns it. */
    virtual cBufferConverterBase* makeBufferConverter(const std::type_info& i_from) = 0;
    /** Takes over one reference of each buffer; runs on the sender's thread. */
    virtual void receiveBuffer(
        const QList<cBuffer*>& i_buffers, cBufferConverterBase* i_converter, bool i_audit)
        = 0;

    /** Called for each finished stamp, on the sender's thread: the stamp, and whether the sender has nothing
     * more to come. */
    std::function<void(const cBufferStamp&, bool)> m_finishCallback;

    /** What became of the frames that arrived here. Any thread, any time. */
    cFates getFates() const;
    /** Called by receiveBuffer for a buffer that the port does not take. */
    void noteRefused();
    /** Called by receiveBuffer for a buffer that the direct callback sees. */
    void noteDirect();

protected:
    /** Gives the buffer's reference back at the end of a scope, whatever happens in it. */
    class TARNFLOW_EXPORT BufferReturner {
    public:
        explicit BufferReturner(cBuffer* i_buffer) : m_buffer(i_buffer) {}
        ~BufferReturner();
        BufferReturner(const BufferReturner&) = delete;
        BufferReturner& operator=(const BufferReturner&) = delete;

    private:
        cBuffer* m_buffer;
    };

    cPortGroupBase* m_group = nullptr;

private:
    struct History;
    friend class cOPortBase;
    unsigned int countSenders() const;
    void collectConverters(QVector<std::shared_ptr<cBufferConverterBase>>& io_converters) const;

    std::atomic<quint64> m_refused {0};
    std::atomic<quint64> m_direct {0}; ///< taken by a direct callback
    mutable std::atomic<quint64> m_senders {
        0}; ///< link generation * 2^16 + count of enabled senders, as last computed
    mutable std::mutex m_historyMutex; ///< guards m_history
    std::unique_ptr<History> m_history;
};
