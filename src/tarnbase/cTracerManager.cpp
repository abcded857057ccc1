#include <tarnbase/cTracerManager.h>

#include <map>
#include <memory>
#include <mutex>
#include <vector>

namespace {

struct Listener {
    std::recursive_mutex mutex; // held during a call; recursive, so that a listener can remove itself
    std::function<void(const cTracerManager::Info&)> call;
    bool isRemoved = false; // guarded by mutex
};

// Lines that a listener traces must not reach the listeners, or one that always traces would never end.
thread_local bool t_isListening = false;

} // namespace

struct cTracerManager::Listeners {
    std::mutex mutex; // never held together with the mutex of a listener
    std::map<int, std::shared_ptr<Listener>> all; // guarded by mutex
    int lastId = 0; // guarded by mutex
};

cTracerManager::cTracerManager() : m_listeners(*new Listeners) {}

cTracerManager& cTracerManager::instance()
{
    // Never destroyed: the last lines are traced while the process ends.
    static cTracerManager* const s_instance = new cTracerManager;
    return *s_instance;
}

void cTracerManager::fireNewText(const Info& i_info)
{
    if (t_isListening)
        return;
    std::vector<std::shared_ptr<Listener>> listeners;
    {
        const std::lock_guard lock(m_listeners.mutex);
        listeners.reserve(m_listeners.all.size());
        for (const auto& entry : m_listeners.all)
            listeners.push_back(entry.second);
    }
    t_isListening = true;
    for (const auto& listener : listeners) {
        const std::lock_guard lock(listener->mutex);
        if (listener->isRemoved)
            continue;
        try {
            listener->call(i_info);
        } catch (...) {
            // A line is traced where something has failed already: it must not fail itself.
        }
    }
    t_isListening = false;
}

int cTracerManager::addListener(std::function<void(const Info&)> i_listener)
{
    auto listener = std::make_shared<Listener>();
    listener->call = std::move(i_listener);
    listener->isRemoved = !listener->call;
    const std::lock_guard lock(m_listeners.mutex);
    m_listeners.all.emplace(++m_listeners.lastId, std::move(listener));
    return m_listeners.lastId;
}

void cTracerManager::removeListener(int i_id)
{
    std::shared_ptr<Listener> listener;
    {
        const std::lock_guard lock(m_listeners.mutex);
        const auto entry = m_listeners.all.find(i_id);
        if (entry == m_listeners.all.end())
            return;
        listener = entry->second;
        m_listeners.all.erase(entry);
    }
    const std::lock_guard lock(listener->mutex);
    listener->isRemoved = true;
}
