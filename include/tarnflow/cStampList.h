#pragma once

#include <cstddef>
#include <tarnflow/cBufferStamp.h>
#include <tarnflow/export.h>
#include <vector>

/**
 * The stamps that the sender of one input has announced as finished and that no match has used up.
 *
 * Ascending as long as none comes late. An invalid stamp is a marker: the flow begins anew there. The memory
 * stays between uses, so that a steady stream of stamps allocates nothing.
 */
class TARNFLOW_EXPORT cStampList {
public:
    bool isEmpty() const { return m_first == m_stamps.size(); }
    int getCount() const { return int(m_stamps.size() - m_first); }
    /** Place 0 is the front. */
    const cBufferStamp& operator[](int i_place) const { return m_stamps[m_first + std::size_t(i_place)]; }
    const cBufferStamp& getFirst() const { return m_stamps[m_first]; }
    /** The greatest one: a late stamp never goes to the end. */
    const cBufferStamp& getLast() const { return m_stamps.back(); }
    bool hasMarker() const { return m_markers > 0; }

    /**
     * Enters a stamp: at the end if it is not late. A late one goes in front of the last entry that is at or
     * before it, or to the front if there is none: the entry at the front itself is not looked at. So a late
     * 20 turns 5, 10, 30 into 5, 20, 10, 30, and 10, 30 into 20, 10, 30.
     */
    void insert(const cBufferStamp& i_stamp);
    /** Removes entries from the front for as long as they are at or before a stamp. */
    void removeUpTo(const cBufferStamp& i_stamp);
    /** Removes every marker, wherever a late stamp has pushed it. */
    void removeMarkers();
    void clear();

private:
    void insertAt(std::size_t i_place, const cBufferStamp& i_stamp);

    std::vector<cBufferStamp> m_stamps; // what is in use begins at m_first
    std::size_t m_first = 0;
    std::size_t m_markers = 0;
};
