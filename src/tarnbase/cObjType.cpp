#include <tarnbase/cObjType.h>

#include "textForm.h"

#include <tarnbase/cDataValObj.h>
#include <tarnbase/cMapObj.h>

#include <QHash>

#include <mutex>
#include <typeindex>
#include <unordered_map>

namespace {

// Never destroyed: entries may be made and types taken out while the process ends.
struct Registry {
    std::mutex mutex;
    std::unordered_map<std::type_index, cObjType*> types; // guarded by mutex
    QHash<QString, cObjType*> names; // guarded by mutex
};

Registry& registry()
{
    static Registry* const s_registry = new Registry;
    return *s_registry;
}

template <class T> void registerValueType(const char* i_name)
{
    new cObjType(
        QString::fromLatin1(i_name), typeid(T), []() -> cObj* { return new cDataValObj<T>(T()); },
        [](const void* i_value) { return textForm::toText(*static_cast<const T*>(i_value)); },
        [](const QString& i_text, void* o_value, QString* o_error) {
            return textForm::fromText(i_text, *static_cast<T*>(o_value), o_error);
        });
}

// Registers the types of this library on first use, whatever static object comes first; gives the entry of
// void.
cObjType* ensureTypes()
{
    static cObjType* const s_void = [] {
        registerValueType<bool>("bool");
        registerValueType<int>("int");
        registerValueType<unsigned int>("uint");
        registerValueType<unsigned char>("uchar");
        registerValueType<unsigned short>("ushort");
        registerValueType<float>("float");
        registerValueType<double>("double");
        registerValueType<QString>("string");
        registerValueType<QStringList>("strings");
        registerValueType<QColor>("colour");
        registerValueType<QSize>("size");
        registerValueType<c2DPoint<int>>("point");
        registerValueType<cRect<int>>("rect");
        registerValueType<cRange<double>>("range");
        registerValueType<cMatrix<int>>("matrix<int>");
        registerValueType<cMatrix<float>>("matrix<float>");
        new cObjType(
            QStringLiteral("map"), typeid(cMapObj), []() -> cObj* { return new cMapObj; }, nullptr, nullptr);
        return new cObjType(QStringLiteral("void"), typeid(void), nullptr, nullptr, nullptr);
    }();
    return s_void;
}

} // namespace

cObjType::cObjType(const QString& i_name, const std::type_info& i_type, Create i_create, ToText i_toText,
    FromText i_fromText)
    : m_name(i_name),
      m_type(&i_type),
      m_create(i_create),
      m_toText(i_toText),
      m_fromText(i_fromText)
{
    Registry& all = registry();
    const std::lock_guard lock(all.mutex);
    if (all.types.count(i_type) == 0 && !all.names.contains(i_name)) {
        all.types.emplace(i_type, this);
        all.names.insert(i_name, this);
    }
}

cObjType::~cObjType()
{
    Registry& all = registry();
    const std::lock_guard lock(all.mutex);
    const auto entry = all.types.find(*m_type);
    if (entry != all.types.end() && entry->second == this) {
        all.types.erase(entry);
        all.names.remove(m_name);
    }
}

cObjType* cObjType::findType(const std::type_info& i_type)
{
    cObjType* const voidType = ensureTypes();
    Registry& all = registry();
    const std::lock_guard lock(all.mutex);
    const auto entry = all.types.find(i_type);
    return entry != all.types.end() ? entry->second : voidType;
}

cObjType* cObjType::findType(const QString& i_name)
{
    ensureTypes();
    Registry& all = registry();
    const std::lock_guard lock(all.mutex);
    return all.names.value(i_name, nullptr);
}
