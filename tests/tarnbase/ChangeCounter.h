#pragma once

#include <tarnbase/cObj.h>

/** Counts the change notices of entries. */
class ChangeCounter {
public:
    explicit ChangeCounter(const cObj& i_object)
    {
        QObject::connect(&i_object, &cObj::changed, &m_context, [this] { ++m_count; });
    }
    int count() const { return m_count; }

private:
    int m_count = 0;
    QObject m_context; // ends the connections with the counter
};
