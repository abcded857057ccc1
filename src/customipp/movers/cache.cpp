#include "move.h"

#include <algorithm>
#include <unistd.h>

namespace customipp {

size_t lastLevelCacheBytes()
{
    static const size_t bytes = [] {
        // Some processors report the sum of caches of which a core reaches only its own.
        constexpr size_t most = size_t(32) << 20;
#ifdef _SC_LEVEL3_CACHE_SIZE
        const long found = sysconf(_SC_LEVEL3_CACHE_SIZE);
        if (found > 0)
            return std::min(size_t(found), most);
#endif
        return most;
    }();
    return bytes;
}

} // namespace customipp
