// Runs before any other code of the library when it is loaded, and is compiled for every processor: the rest
// of the library is compiled for the base below and would end with an illegal instruction on an older one.

#if defined(__x86_64__)

#include <cstdlib>
#include <unistd.h>

namespace {

// The first priority that is free for programs: ahead of every constructor without a number.
__attribute__((constructor(101))) void refuseOlderProcessor()
{
    __builtin_cpu_init();
    if (__builtin_cpu_supports("sse4.2") && __builtin_cpu_supports("aes") && __builtin_cpu_supports("pclmul"))
        return;
    static const char s_message[]
        = "customipp: this processor is too old: SSE4.2, AES and PCLMUL are required\n";
    // Not much more than a system call is safe this early.
    if (write(STDERR_FILENO, s_message, sizeof s_message - 1) < 0) {}
    _exit(EXIT_FAILURE);
}

} // namespace

#endif
