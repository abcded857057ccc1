#pragma once

#include <tarnbase/cObj.h>

#include <QHash>

#include <vector>

class MapObjProxy;

/**
 * A container of entries under keys, in the order in which they were entered.
 *
 * It owns the entries that were handed over to it. A copy has copies of all entries, each with storage of its
 * own; moving hands over the entries themselves and leaves an empty map. Signal connections stay with the
 * object.
 */
class TARNBASE_EXPORT cMapObj : public cObj {
    Q_OBJECT
public:
    cMapObj();
    cMapObj(const cMapObj& i_other);
    cMapObj(cMapObj&& io_other) noexcept;
    ~cMapObj() override;
    /** Replaces all entries by copies; entries bound to outside variables are lost. To keep them use merge.
     */
    cMapObj& operator=(const cMapObj& i_other);
    cMapObj& operator=(cMapObj&& io_other); // NOLINT(*-noexcept-move-constructor): tells its observers

    bool isMap() const override;
    bool isContainer() const override;
    unsigned int getNumEntries() const override;
    cObj* getSubObject(unsigned int i_index) const override;
    cObj* getSubObject(const QString& i_path) const override;
    /** Replaces the entry at a place, which must exist; the key stays. */
    bool setSubObject(cObj* i_object, unsigned int i_index, bool i_own) override;
    /** Maps on the way that are missing are made. */
    bool setSubObject(cObj* i_object, const QString& i_path, bool i_own) override;
    cObj* clone() const override;
    void clear() override;
    /** Becomes a copy of another map, as operator= does; anything else is refused. */
    bool assign(const cObj* i_source) override;
    /** Enters an object under the first free number. */
    cObj& operator<<(cObj* i_object) override;
    /** Equal maps have the same keys, in any order, with equal entries. */
    bool isEqual(const cObj* i_other) const override;
    bool isNotEqual(const cObj* i_other) const override;
    /**
     * Takes over the entries of another map: new ones as copies, values by assignment, maps entry by entry.
     *
     * Without flags an entry of another type is replaced by a copy of the source's, unless it is bound to an
     * outside variable: that one converts the value, or refuses it.
     */
    bool merge(const cObj* i_source, QFlags<ObjMergeFlag> i_flags) override;
    bool merge(const cMapObj& i_source, QFlags<ObjMergeFlag> i_flags = {});
    /** A QVariantMap. */
    QVariant toVariant() const override;
    /** Gives the values of a QVariantMap to the entries of the same keys. */
    void fromVariant(const QVariant& i_variant) override;
    int indexOf(const cObj* i_child) const override;
    QString getKeyOfChild(const cObj* i_child) const override;

    /** Access by path; assigning an object to it enters the object, and the map takes it over. */
    MapObjProxy operator[](const QString& i_path);
    using cObj::operator[];
    ObjProxy operator[](const QString& i_path) const { return cObj::operator[](i_path); }

    /** The keys of the entries directly in this map, in order. */
    QStringList getKeys() const;

protected:
    void removeSubObject(const QString& i_key) override;

private:
    struct Entry {
        QString key;
        cObj* object;
        bool owned;
    };

    cObj* getIter(unsigned int i_index, QString* o_key) const override;
    cObj* find(const QString& i_key) const;
    bool enter(cObj* i_object, const QString& i_key, bool i_own);
    static void release(const Entry& i_entry);
    void copyEntries(const cMapObj& i_other);
    void deleteEntries();

    std::vector<Entry> m_entries;
    QHash<QString, unsigned int> m_places; // of the keys in m_entries
};

/** What cMapObj::operator[] gives: the entry under a path, and the place to enter one. */
class TARNBASE_EXPORT MapObjProxy {
public:
    ~MapObjProxy();
    MapObjProxy(const MapObjProxy&) = delete;
    MapObjProxy& operator=(const MapObjProxy&) = delete;

    /** Enters an object, which the map takes over; null removes the entry. */
    MapObjProxy& operator=(cObj* i_object);
    /** The entry, cObj::voidObject() if there is none. */
    cObj* operator->() const;
    cObj& operator*() const { return *operator->(); }
    cObj* get() const { return operator->(); }

private:
    friend class cMapObj;
    MapObjProxy(cMapObj& i_map, const QString& i_path);

    cMapObj& m_map;
    QString m_path;
};
