#include <tarnbase/cTypeConverterBase.h>

#include <map>
#include <mutex>
#include <typeindex>
#include <utility>

namespace {

using Pair = std::pair<std::type_index, std::type_index>;

// Never destroyed: converters of other libraries leave it while the process ends.
struct Registry {
    std::mutex mutex;
    std::map<Pair, cTypeConverterBase*> converters; // guarded by mutex
};

Registry& registry()
{
    static Registry* const s_registry = new Registry;
    return *s_registry;
}

} // namespace

cTypeConverterBase::cTypeConverterBase(
    bool i_register, const std::type_info& i_from, const std::type_info& i_to)
    : m_from(i_from),
      m_to(i_to)
{
    if (!i_register)
        return;
    Registry& all = registry();
    const std::lock_guard lock(all.mutex);
    all.converters.emplace(Pair(i_from, i_to), this);
}

cTypeConverterBase::~cTypeConverterBase()
{
    Registry& all = registry();
    const std::lock_guard lock(all.mutex);
    const auto entry = all.converters.find(Pair(m_from, m_to));
    if (entry != all.converters.end() && entry->second == this)
        all.converters.erase(entry);
}

const std::type_info& cTypeConverterBase::getTypeInfoSrc() const { return m_from; }
const std::type_info& cTypeConverterBase::getTypeInfoDst() const { return m_to; }

cTypeConverterBase* cTypeConverterBase::getTypeConverter(
    const std::type_info& i_from, const std::type_info& i_to)
{
    Registry& all = registry();
    const std::lock_guard lock(all.mutex);
    const auto entry = all.converters.find(Pair(i_from, i_to));
    return entry != all.converters.end() ? entry->second : nullptr;
}
