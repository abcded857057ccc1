#include "move.h"

#include <unistd.h>

namespace customipp {

size_t lastLevelCacheBytes()
{
    static const size_t bytes = [] {
#ifdef _SC_LEVEL3_CACHE_SIZE
        const long found = sysconf(_SC_LEVEL3_CACHE_SIZE);
        if (found > 0)
            return size_t(found);
#endif
        return size_t(32) << 20; // nothing is known: streaming too late costs less than streaming too early
    }();
    return bytes;
}

} // namespace customipp
