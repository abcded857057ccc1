#pragma once

#include <tarnbase/export.h>

#include <QString>

class cObj;

/**
 * Walks the entries directly in a container, in their order.
 *
 *     for (cObjIter entry(map); entry.isValid(); ++entry)
 *         show(entry.getKey(), entry->toText());
 *
 * The container must live as long as its iterator. Entries may be added and removed meanwhile; the iterator
 * then counts places, so that an entry can be passed over or met twice.
 */
class TARNBASE_EXPORT cObjIter {
public:
    explicit cObjIter(const cObj& i_container);
    explicit cObjIter(const cObj* i_container);
    ~cObjIter();

    /** There is an entry at this place. */
    bool isValid() const { return m_entry != nullptr; }
    cObjIter& operator++();

    /** The entry; cObj::voidObject() past the end. */
    cObj* operator->() const;
    cObj& operator*() const { return *operator->(); }
    const QString& getKey() const { return m_key; }

private:
    void fetch();

    const cObj* m_container;
    cObj* m_entry = nullptr;
    unsigned int m_index = 0;
    QString m_key;
};
