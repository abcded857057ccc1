#include <tarnflow/cStation.h>

#include <QMap>
#include <QStringList>
#include <mutex>

namespace {
struct Entry {
    cStationFactory factory;
    cStationInfo info;
};

/** Filled by static objects of other libraries, so it must not be one itself. */
struct Registry {
    std::mutex mutex; ///< guards the entries
    QMap<QString, Entry> entries;
};

Registry& registry()
{
    static Registry s_registry;
    return s_registry;
}
} // namespace

bool cStation::registercStation(const QString& i_id, cStationFactory i_factory)
{
    return registercStation(i_id, i_factory, cStationInfo());
}

bool cStation::registercStation(const QString& i_id, cStationFactory i_factory, const cStationInfo& i_info)
{
    if (!i_factory || i_id.isEmpty())
        return false;
    Registry& stations = registry();
    const std::lock_guard lock(stations.mutex);
    if (stations.entries.contains(i_id))
        return false;
    stations.entries.insert(i_id, {i_factory, i_info});
    return true;
}

QStringList cStation::getIdentifiers()
{
    Registry& stations = registry();
    const std::lock_guard lock(stations.mutex);
    return stations.entries.keys();
}

QStringList cStation::resolveIdentifier(const QString& i_text)
{
    Registry& stations = registry();
    const std::lock_guard lock(stations.mutex);
    if (stations.entries.contains(i_text))
        return {i_text};
    QStringList found;
    if (i_text.isEmpty())
        return found;
    const QString suffix = QLatin1Char('/') + i_text;
    for (auto entry = stations.entries.cbegin(); entry != stations.entries.cend(); ++entry)
        if (entry.key().endsWith(suffix))
            found.append(entry.key());
    return found;
}

cStation* cStation::create(const QString& i_id)
{
    cStationFactory factory = nullptr;
    {
        Registry& stations = registry();
        const std::lock_guard lock(stations.mutex);
        const auto entry = stations.entries.constFind(i_id);
        if (entry == stations.entries.cend())
            return nullptr;
        factory = entry->factory;
    }
    cStation* station = factory();
    if (station)
        station->m_identifier = i_id;
    return station;
}

cStationInfo cStation::getInfo(const QString& i_id)
{
    Registry& stations = registry();
    const std::lock_guard lock(stations.mutex);
    return stations.entries.value(i_id).info;
}
