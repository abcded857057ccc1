#pragma once

#include <cstddef>
#include <tarnflow/cBufferStamp.h>
#include <tarnflow/cFates.h>
#include <tarnflow/export.h>
#include <vector>

class cBuffer;

/**
 * What one input of a port group gave to the last matches: one entry for each match, the oldest first. The
 * process step looks at the first entry; an input with a delay holds back further ones.
 *
 * Guarded by the group's mutex, but for the step that is under way: nobody changes the history meanwhile. The
 * history owns one reference of each buffer. Entries are used again, so that a steady flow allocates nothing.
 */
class TARNFLOW_EXPORT cPortHistoryBase {
public:
    using Buffers = std::vector<cBuffer*>;

    cPortHistoryBase() = default;
    cPortHistoryBase(const cPortHistoryBase&) = delete;
    cPortHistoryBase& operator=(const cPortHistoryBase&) = delete;

    std::size_t getLength() const { return m_length; }
    /** The buffers of the oldest match; empty if there is none. */
    const Buffers& getFirstEntry() const;
    /** The first of them; null if there is none. */
    cBuffer* getFirstBuffer() const;
    /** How many buffers have no fate yet. */
    quint64 getWaiting() const;

    /** A new empty entry at the end, to be filled. */
    Buffers& append();
    /**
     * Moves the stamps of all buffers forward. A buffer that somebody else holds too is replaced by a private
     * copy, as its stamp is not ours alone.
     */
    void moveStamps(const cBufferStamp& i_difference);
    /**
     * Gives the buffers of the first entry their fates, unless an earlier match did so: those that the step
     * saw as it counted them, the others i_unseen.
     */
    void account(const cFates& i_seen, quint64 cFates::*i_unseen, cFates& io_fates);
    /** Sets how many matches the step looks back. The match under way goes by what was set before its step.
     */
    void setDelay(std::size_t i_matches) { m_delay = i_matches; }
    /** Gives back the first entry if there are more than the delay says. */
    void trim();
    /** Removes all entries and hands their buffers over; those without a fate are counted as discarded. */
    void takeAll(Buffers& io_taken, cFates& io_fates);

private:
    struct Entry {
        Buffers buffers;
        bool accounted = false;
    };
    std::vector<Entry> m_entries; // the first m_length ones are in use
    std::size_t m_length = 0;
    std::size_t m_delay = 0;
};
