#include <tarnflow/cThreadWatch.h>

#include <ctime>

namespace {
qint64 threadTime()
{
    timespec now {};
    clock_gettime(CLOCK_THREAD_CPUTIME_ID, &now);
    return qint64(now.tv_sec) * 1'000'000'000 + now.tv_nsec;
}
} // namespace

void cThreadWatch::start() { m_start = threadTime(); }

qint64 cThreadWatch::elapsed() const { return threadTime() - m_start; }
