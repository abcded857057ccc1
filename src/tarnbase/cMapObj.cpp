#include <tarnbase/cMapObj.h>

#include <tarnbase/cObjIter.h>

#include <QVariant>

#include <utility>

namespace {

const cObjType* mapType()
{
    static const cObjType* const s_type = cObjType::findType(typeid(cMapObj));
    return s_type;
}

// The object is this container or has it somewhere below.
bool holds(const cObj& i_object, const cObj& i_container)
{
    if (&i_object == &i_container)
        return true;
    for (cObjIter entry(i_object); entry.isValid(); ++entry)
        if (holds(*entry, i_container))
            return true;
    return false;
}

} // namespace

cMapObj::cMapObj() : cObj(mapType()) {}

cMapObj::cMapObj(const cMapObj& i_other) : cObj(mapType()) { copyEntries(i_other); }

cMapObj::cMapObj(cMapObj&& io_other) noexcept
    : cObj(mapType()),
      m_entries(std::exchange(io_other.m_entries, {})),
      m_places(std::exchange(io_other.m_places, {}))
{
}

cMapObj::~cMapObj() { deleteEntries(); }

cMapObj& cMapObj::operator=(const cMapObj& i_other)
{
    if (this != &i_other)
        *this = cMapObj(i_other);
    return *this;
}

cMapObj& cMapObj::operator=(cMapObj&& io_other) // NOLINT(*-noexcept-move-constructor)
{
    if (this == &io_other)
        return *this;
    // The old entries go last: the source may be one of them.
    cMapObj old(std::move(*this));
    m_entries = std::exchange(io_other.m_entries, {});
    m_places = std::exchange(io_other.m_places, {});
    fireChangedSignal();
    return *this;
}

void cMapObj::copyEntries(const cMapObj& i_other)
{
    m_entries.reserve(i_other.m_entries.size());
    for (const Entry& entry : i_other.m_entries)
        m_entries.push_back({entry.key, entry.object->clone(), true});
    m_places = i_other.m_places;
}

void cMapObj::release(const Entry& i_entry)
{
    if (i_entry.owned)
        delete i_entry.object;
}

void cMapObj::deleteEntries()
{
    // A destructor may look into the map, and then finds it empty.
    const std::vector<Entry> entries = std::exchange(m_entries, {});
    m_places.clear();
    for (const Entry& entry : entries)
        release(entry);
}

bool cMapObj::isMap() const { return true; }
bool cMapObj::isContainer() const { return true; }
unsigned int cMapObj::getNumEntries() const { return static_cast<unsigned int>(m_entries.size()); }

cObj* cMapObj::find(const QString& i_key) const
{
    const auto place = m_places.constFind(i_key);
    return place != m_places.constEnd() ? m_entries[*place].object : nullptr;
}

cObj* cMapObj::getSubObject(unsigned int i_index) const
{
    return i_index < m_entries.size() ? m_entries[i_index].object : voidObject();
}

cObj* cMapObj::getSubObject(const QString& i_path) const
{
    const int slash = i_path.indexOf(QLatin1Char('/'));
    cObj* const entry = find(slash < 0 ? i_path : i_path.left(slash));
    if (entry == nullptr)
        return voidObject();
    return slash < 0 ? entry : entry->getSubObject(i_path.mid(slash + 1));
}

bool cMapObj::setSubObject(cObj* i_object, unsigned int i_index, bool i_own)
{
    if (i_index < m_entries.size())
        return setSubObject(i_object, QString(m_entries[i_index].key), i_own);
    return cObj::setSubObject(i_object, i_index, i_own);
}

bool cMapObj::setSubObject(cObj* i_object, const QString& i_path, bool i_own)
{
    // An object that holds this map cannot be deleted either: the map would go with it.
    if (i_object == nullptr || i_object->isVoid() || holds(*i_object, *this))
        return false;
    const int slash = i_path.indexOf(QLatin1Char('/'));
    if (slash < 0)
        return enter(i_object, i_path, i_own);
    if (i_path.count(QLatin1Char('/')) >= int(maxDepth))
        return cObj::setSubObject(i_object, i_path, i_own);

    const QString key = i_path.left(slash);
    const QString rest = i_path.mid(slash + 1);
    if (cObj* const group = find(key))
        return group->setSubObject(i_object, rest, i_own);
    auto group = std::make_unique<cMapObj>();
    return group->setSubObject(i_object, rest, i_own) && enter(group.release(), key, true);
}

bool cMapObj::enter(cObj* i_object, const QString& i_key, bool i_own)
{
    const auto place = m_places.constFind(i_key);
    if (place == m_places.constEnd()) {
        m_entries.push_back({i_key, i_object, i_own});
        m_places.insert(i_key, static_cast<unsigned int>(m_entries.size() - 1));
    } else {
        const Entry old = std::exchange(m_entries[*place], Entry {i_key, i_object, i_own});
        if (old.object != i_object)
            release(old);
    }
    fireChangedSignal();
    return true;
}

cObj* cMapObj::clone() const
{
    cMapObj* const copy = new cMapObj(*this);
    copyProps(*copy);
    return copy;
}

void cMapObj::clear()
{
    if (m_entries.empty())
        return;
    deleteEntries();
    fireChangedSignal();
}

bool cMapObj::assign(const cObj* i_source)
{
    const auto* const map = dynamic_cast<const cMapObj*>(i_source);
    if (map == nullptr)
        return false;
    *this = *map;
    return true;
}

cObj& cMapObj::operator<<(cObj* i_object)
{
    unsigned int number = getNumEntries();
    while (find(QString::number(number)) != nullptr)
        ++number;
    setSubObject(i_object, QString::number(number), true);
    return *this;
}

bool cMapObj::isEqual(const cObj* i_other) const
{
    const auto* const map = dynamic_cast<const cMapObj*>(i_other);
    if (map == nullptr || map->m_entries.size() != m_entries.size())
        return false;
    for (const Entry& entry : m_entries) {
        const cObj* const other = map->find(entry.key);
        if (other == nullptr || !entry.object->isEqual(other))
            return false;
    }
    return true;
}

bool cMapObj::isNotEqual(const cObj* i_other) const { return !isEqual(i_other); }

bool cMapObj::merge(const cObj* i_source, QFlags<ObjMergeFlag> i_flags)
{
    const auto* const map = dynamic_cast<const cMapObj*>(i_source);
    return map != nullptr && merge(*map, i_flags);
}

bool cMapObj::merge(const cMapObj& i_source, QFlags<ObjMergeFlag> i_flags)
{
    if (&i_source == this)
        return true;
    // A source that lies within this map, or has it within, could lose entries on the way.
    if (holds(*this, i_source) || holds(i_source, *this))
        return merge(cMapObj(i_source), i_flags);

    bool allTaken = true;
    for (const Entry& source : i_source.m_entries) {
        cObj* const mine = find(source.key);
        if (mine == nullptr) {
            if (!i_flags.testFlag(MergeExistingOnly))
                enter(source.object->clone(), source.key, true);
        } else if (mine->isContainer() && source.object->isContainer()) {
            allTaken &= mine->merge(source.object, i_flags);
        } else if (!i_flags.testFlag(MergeKeepExisting)) {
            const bool keepsType = mine->m_bound || i_flags.testFlag(MergeAssignOnly);
            const bool sameType = &mine->getObjType() == &source.object->getObjType();
            if ((keepsType || sameType) && mine->assign(source.object))
                continue;
            if (keepsType)
                allTaken = false;
            else
                enter(source.object->clone(), source.key, true);
        }
    }
    return allTaken;
}

QVariant cMapObj::toVariant() const
{
    QVariantMap map;
    for (const Entry& entry : m_entries)
        map.insert(entry.key, entry.object->toVariant());
    return map;
}

void cMapObj::fromVariant(const QVariant& i_variant)
{
    const QVariantMap map = i_variant.toMap();
    for (const Entry& entry : std::vector<Entry>(m_entries)) {
        const auto value = map.constFind(entry.key);
        if (value != map.constEnd())
            entry.object->fromVariant(*value);
    }
}

int cMapObj::indexOf(const cObj* i_child) const
{
    for (std::size_t i = 0; i < m_entries.size(); ++i)
        if (m_entries[i].object == i_child)
            return int(i);
    return -1;
}

QString cMapObj::getKeyOfChild(const cObj* i_child) const
{
    const int index = indexOf(i_child);
    return index < 0 ? QString() : m_entries[std::size_t(index)].key;
}

QStringList cMapObj::getKeys() const
{
    QStringList keys;
    keys.reserve(int(m_entries.size()));
    for (const Entry& entry : m_entries)
        keys.append(entry.key);
    return keys;
}

cObj* cMapObj::getIter(unsigned int i_index, QString* o_key) const
{
    if (i_index >= m_entries.size())
        return nullptr;
    if (o_key != nullptr)
        *o_key = m_entries[i_index].key;
    return m_entries[i_index].object;
}

void cMapObj::removeSubObject(const QString& i_key)
{
    const auto place = m_places.constFind(i_key);
    if (place == m_places.constEnd())
        return;
    const unsigned int index = *place;
    const Entry removed = m_entries[index];
    m_entries.erase(m_entries.begin() + index);
    m_places.remove(i_key);
    for (std::size_t i = index; i < m_entries.size(); ++i)
        m_places[m_entries[i].key] = static_cast<unsigned int>(i);
    release(removed);
    fireChangedSignal();
}

MapObjProxy cMapObj::operator[](const QString& i_path) { return MapObjProxy(*this, i_path); }

MapObjProxy::MapObjProxy(cMapObj& i_map, const QString& i_path) : m_map(i_map), m_path(i_path) {}

MapObjProxy::~MapObjProxy() = default;

MapObjProxy& MapObjProxy::operator=(cObj* i_object)
{
    if (i_object == nullptr)
        m_map.remove(m_path);
    else
        m_map.setSubObject(i_object, m_path, true);
    return *this;
}

cObj* MapObjProxy::operator->() const { return m_map.getSubObject(m_path); }

#include "moc_cMapObj.cpp"
