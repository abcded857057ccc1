// Qt 5's QMutex does not tell the thread sanitizer what it does, so that what it guards would look like
// races. In programs built with that sanitizer these members take the place of the library's, and forward to
// them.
#include <QMutex>
#include <dlfcn.h>
#include <sanitizer/tsan_interface.h>

namespace {
template <class Function> Function nextOf(const char* i_symbol)
{
    return reinterpret_cast<Function>(dlsym(RTLD_NEXT, i_symbol));
}
} // namespace

void QMutex::lock() noexcept
{
    static const auto s_next = nextOf<void (*)(QMutex*)>("_ZN6QMutex4lockEv");
    __tsan_mutex_pre_lock(this, 0);
    s_next(this);
    __tsan_mutex_post_lock(this, 0, 0);
}

bool QMutex::tryLock(int i_timeout) noexcept
{
    static const auto s_next = nextOf<bool (*)(QMutex*, int)>("_ZN6QMutex7tryLockEi");
    __tsan_mutex_pre_lock(this, __tsan_mutex_try_lock);
    const bool locked = s_next(this, i_timeout);
    __tsan_mutex_post_lock(this, __tsan_mutex_try_lock | (locked ? 0 : __tsan_mutex_try_lock_failed), 0);
    return locked;
}

void QMutex::unlock() noexcept
{
    static const auto s_next = nextOf<void (*)(QMutex*)>("_ZN6QMutex6unlockEv");
    __tsan_mutex_pre_unlock(this, 0);
    s_next(this);
    __tsan_mutex_post_unlock(this, 0);
}
