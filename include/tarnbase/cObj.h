#pragma once

#include <tarnbase/cObjType.h>
#include <tarnbase/export.h>

#include <QFlags>
#include <QObject>
#include <QString>

#include <memory>
#include <typeinfo>

class QTextStream;
class QVariant;
class ObjProxy;
class cObjIter;
class cWriteFormat;

/**
 * An entry of the property tree: a value, or a container of further entries.
 *
 * The base class is an entry without a value and without children: it refuses every write and is equal to
 * nothing. Look-ups never give null: what is not there is voidObject(), on which every operation is safe and
 * without effect.
 *
 * A key may be a path: "AutoRange/Use" is the entry "Use" in the map "AutoRange". So '/' is never part of a
 * key. A path has at most maxDepth parts.
 *
 * There is no lock in the tree: an entry is for one thread at a time. Whoever shares one brings the lock.
 */
class TARNBASE_EXPORT cObj : public QObject {
    Q_OBJECT
public:
    /** Hints for the host, which the tree keeps and copies; only ObjTransient has a meaning of its own. */
    enum EObjFlag {
        ObjReadOnly = 1, ///< to be shown, not to be edited
        ObjHidden = 2, ///< not to be shown
        ObjTransient = 4 ///< left out by write
    };
    Q_DECLARE_FLAGS(ObjFlags, EObjFlag)

    enum ObjMergeFlag {
        MergeKeepExisting = 1, ///< entries that are there already keep their values
        MergeExistingOnly = 2, ///< no entries are added
        MergeAssignOnly = 4 ///< entries keep their types: they take a value, or refuse it
    };
    Q_DECLARE_FLAGS(ObjMergeFlags, ObjMergeFlag)

    /** The greatest depth of a path, and of a tree that can be written and read. */
    static constexpr unsigned int maxDepth = 64;

    ~cObj() override;

    virtual bool isMap() const;
    virtual bool isVector() const;
    virtual bool isContainer() const;
    /** Number of entries directly in this container; 0 for a value. */
    virtual unsigned int getNumEntries() const;
    /** The entry of this container at a place or under a path, voidObject() if there is none. The container
     * keeps it. */
    virtual cObj* getSubObject(unsigned int i_index) const;
    virtual cObj* getSubObject(const QString& i_path) const;
    /**
     * Enters an object, in the place of what was there.
     *
     * With i_own the container takes the object over at once, whatever comes of it: an object that is refused
     * is deleted. Without, the object must outlive its place in the container.
     *
     * @return whether the object was entered. Null, voidObject(), a path through a value and an object that
     * holds this container are refused.
     */
    virtual bool setSubObject(cObj* i_object, unsigned int i_index, bool i_own);
    virtual bool setSubObject(cObj* i_object, const QString& i_path, bool i_own);
    /** A copy with storage of its own; the caller owns it. */
    virtual cObj* clone() const;
    /** Removes all entries of a container. */
    virtual void clear();
    /** Takes the value of another entry. @return whether a value was taken; if not, the old one stays. */
    virtual bool assign(const cObj* i_source);
    /** Appends an object, which the container owns from now on; deleted if it is refused. */
    virtual cObj& operator<<(cObj* i_object);
    virtual bool isEqual(const cObj* i_other) const;
    virtual bool isNotEqual(const cObj* i_other) const;
    /** Takes over the entries of another container, as the flags say. @return false if an entry refused its
     * value. */
    virtual bool merge(const cObj* i_source, QFlags<ObjMergeFlag> i_flags);
    virtual QVariant toVariant() const;
    virtual void fromVariant(const QVariant& i_variant);
    /** Address of the value, null if there is none. */
    virtual void* getData() const;
    /** Place of an entry directly in this container, -1 if it is not there. */
    virtual int indexOf(const cObj* i_child) const;
    /** Key of an entry directly in this container, null if it is not there. */
    virtual QString getKeyOfChild(const cObj* i_child) const;

private:
    friend class cObjIter;
    /** The entry at a place and its key, null past the end. */
    virtual cObj* getIter(unsigned int i_index, QString* o_key) const;

public:
    /** Writes the value into an object of the given type. @return false, and nothing written, if that cannot
     * be done. */
    virtual bool getAs(const std::type_info& i_type, void* o_target) const;
    /** Takes the value from an object of the given type. @return false, and the old value kept, if that
     * cannot be done. */
    virtual bool setFrom(const std::type_info& i_type, const void* i_source);

    /** Reads the value into a variable; the variable stays as it is if the value cannot be read as a T. */
    template <class T> bool getValue(T& o_value) const { return getAs(typeid(T), &o_value); }
    /** Writes a value, with a change notice if it is a new one. */
    template <class T> bool setValue(const T& i_value) { return setFrom(typeid(T), &i_value); }

    const cObjType& getObjType() const { return *m_type; }
    /** Name of the type in text forms, such as "double" or "range". */
    QString getTypeName() const;

    void setFlags(QFlags<EObjFlag> i_flags);
    QFlags<EObjFlag> getFlags() const { return m_flags; }

    /** How the value is shown to people, null if nothing special was set. */
    const cWriteFormat* getFormat() const;
    void setFormat(const cWriteFormat& i_format);

    /** The value as text; numbers in the entry's format if it has one and i_formatted is set. */
    QString toString(bool i_formatted) const;
    /** The value as the text that setFromText reads back without loss. Empty for a container. */
    QString toText() const;
    /**
     * Reads the value from a text such as "0.5", "true", "5,5", "0,255" or "#ff8000".
     *
     * A text outside the allowed keys of the entry (getChoices) is refused. If false, the old value stays,
     * and o_error, if given, says what was expected and what was found.
     */
    bool setFromText(const QString& i_text, QString* o_error = nullptr);

    /** Gives flags, format, allowed keys and meta-data to another entry, as copies. */
    void copyProps(cObj& o_target) const;

    /** Attaches the allowed keys, a list of strings; takes ownership. */
    void setEnumeration(cObj* i_keys);
    /** The allowed keys, voidObject() if there are none. */
    cObj* getEnumeration() const;
    /** Attaches further data to an entry, such as "max"; takes ownership. Null removes what is there. */
    void setMetaData(const QString& i_key, cObj* i_data);
    /** voidObject() if there is none of this key. */
    cObj* getMetaData(const QString& i_key) const;
    QStringList getMetaDataKeys() const;
    /** The allowed keys: the enumeration, or else the meta-datum "choice". Empty means that everything is
     * allowed. */
    QStringList getChoices() const;

    /** Emits changed(). */
    void fireChangedSignal();
    /**
     * Connects changed() to a slot given by SLOT(); a null receiver is passed over.
     *
     * With i_recursive all entries that are below this one now are connected too.
     */
    void connectChangedSignal(
        const QObject* i_receiver, const char* i_slot, bool i_recursive, Qt::ConnectionType i_type);

    /** The null object of the tree. One for the process; never deleted, never entered into a container. */
    static cObj* voidObject();
    bool isVoid() const { return this == voidObject(); }
    /** There is an entry under this path. */
    bool contains(const QString& i_path) const { return !getSubObject(i_path)->isVoid(); }

    /** Access by path; see ObjProxy. */
    ObjProxy operator[](const QString& i_path) const;
    /** Removes an entry, or a whole group of entries if the path names a map. */
    void remove(const QString& i_path);

    /**
     * Writes the entry as text: values with their types, maps with all that is below them.
     *
     * Meta-data and allowed keys belong to the declaration of an entry and are not written.
     *
     * @return false, with a report on the error trace, if something has no text form (it is left out), if the
     * tree is deeper than maxDepth, or if the stream failed.
     */
    bool write(QTextStream& io_stream) const;
    /**
     * Reads what write has written, up to its end, so that several trees can stand in one stream.
     *
     * The text is read as a whole first: if it is damaged, the place is reported on the error trace, and
     * nothing changes. Entries that are here already take the new values (assign); a value that its entry
     * refuses is reported, and the others are taken all the same. Entries that are not here are added with
     * the types in the text.
     *
     * @return true if all was read and taken
     */
    bool readStream(QTextStream& io_stream);

Q_SIGNALS:
    /** The value, or the list of entries, has changed. */
    void changed();

protected:
    explicit cObj(const cObjType* i_type);

    /** Marks an entry whose value belongs to somebody else, so that the entry must never be replaced by
     * another. */
    void setBound(bool i_bound) { m_bound = i_bound; }

    /** Takes out the entry under a key of this container; the base class has none. */
    virtual void removeSubObject(const QString& i_key);

private:
    friend class cMapObj;
    struct Extra;
    Extra& extra();

    const cObjType* m_type;
    std::unique_ptr<Extra> m_extra; // most entries have none
    QFlags<EObjFlag> m_flags;
    bool m_bound = false;
};

Q_DECLARE_OPERATORS_FOR_FLAGS(cObj::ObjFlags)
Q_DECLARE_OPERATORS_FOR_FLAGS(cObj::ObjMergeFlags)

/** An entry found by path; what is not there is cObj::voidObject(). */
class TARNBASE_EXPORT ObjProxy {
public:
    explicit ObjProxy(cObj* i_object) : m_object(i_object) {}
    cObj* operator->() const { return m_object; }
    cObj& operator*() const { return *m_object; }
    cObj* get() const { return m_object; }

private:
    cObj* m_object;
};

inline ObjProxy cObj::operator[](const QString& i_path) const { return ObjProxy(getSubObject(i_path)); }
