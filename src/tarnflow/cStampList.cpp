#include <tarnflow/cStampList.h>

#include <algorithm>

void cStampList::insert(const cBufferStamp& i_stamp)
{
    std::size_t place = m_stamps.size();
    if (!isEmpty() && i_stamp < getLast()) {
        do
            --place;
        while (place > m_first && i_stamp < m_stamps[place]);
    }
    insertAt(place, i_stamp);
    m_markers += !i_stamp.isValid();
}

void cStampList::insertAt(std::size_t i_place, const cBufferStamp& i_stamp)
{
    if (i_place == m_first && m_first > 0) {
        m_stamps[--m_first] = i_stamp;
        return;
    }
    // Rather than grow, use the room in front once it is half of all: so each stamp is moved once on average.
    if (m_stamps.size() == m_stamps.capacity() && m_first >= m_stamps.size() - m_first) {
        m_stamps.erase(m_stamps.begin(), m_stamps.begin() + std::ptrdiff_t(m_first));
        i_place -= m_first;
        m_first = 0;
    }
    m_stamps.insert(m_stamps.begin() + std::ptrdiff_t(i_place), i_stamp);
}

void cStampList::removeUpTo(const cBufferStamp& i_stamp)
{
    while (!isEmpty() && getFirst() <= i_stamp) {
        m_markers -= !getFirst().isValid();
        ++m_first;
    }
    if (isEmpty())
        clear();
}

void cStampList::removeMarkers()
{
    if (!hasMarker())
        return;
    const auto isMarker = [](const cBufferStamp& i_stamp) { return !i_stamp.isValid(); };
    m_stamps.erase(
        std::remove_if(m_stamps.begin() + std::ptrdiff_t(m_first), m_stamps.end(), isMarker), m_stamps.end());
    m_markers = 0;
}

void cStampList::clear()
{
    m_stamps.clear();
    m_first = 0;
    m_markers = 0;
}
