#pragma once

#include <tarnbase/export.h>

#include <QString>

#include <typeinfo>

class cObj;

/**
 * What the property tree knows of a value type: its name, how an entry of it is made, and its text form.
 *
 * The types of this library are always registered. Another library registers its own by keeping a static
 * object of this class. The registry may be used from any thread; a registered type stays until the end of
 * the process.
 */
class TARNBASE_EXPORT cObjType {
public:
    /** Makes an entry that holds a default value; the caller owns it. */
    using Create = cObj* (*)();
    /** The text of a value: one line, printable, and enough to read the same value back. */
    using ToText = QString (*)(const void* i_value);
    /** Reads a value. False leaves the value and tells what was expected and what was found. */
    using FromText = bool (*)(const QString& i_text, void* o_value, QString* o_error);

    /** Registers the type, unless one with the same type or the same name is there already. */
    cObjType(const QString& i_name, const std::type_info& i_type, Create i_create, ToText i_toText,
        FromText i_fromText);
    ~cObjType();
    cObjType(const cObjType&) = delete;
    cObjType& operator=(const cObjType&) = delete;

    /** The entry of a type. A type without one answers with the entry of void. Never null. */
    static cObjType* findType(const std::type_info& i_type);
    /** The type of a name, as getName gives it; null if there is none. */
    static cObjType* findType(const QString& i_name);

    /** The C++ type; that of void for the entry of void. */
    const std::type_info* getTypeInfo() const { return m_type; }
    /** The name that people and text forms use, such as "double" or "matrix<int>". */
    const QString& getName() const { return m_name; }

    /** A new entry with a default value; null for types that have no text form. The caller owns it. */
    cObj* create() const { return m_create ? m_create() : nullptr; }
    bool hasTextForm() const { return m_create && m_toText && m_fromText; }
    /** The text form of a value of this type; empty if there is none. */
    QString toText(const void* i_value) const { return m_toText ? m_toText(i_value) : QString(); }
    bool fromText(const QString& i_text, void* o_value, QString* o_error) const
    {
        return m_fromText && m_fromText(i_text, o_value, o_error);
    }

private:
    QString m_name;
    const std::type_info* m_type;
    Create m_create;
    ToText m_toText;
    FromText m_fromText;
};
