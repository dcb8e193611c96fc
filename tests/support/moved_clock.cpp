#include "moved_clock.h"

#include <sys/syscall.h>
#include <time.h>
#include <unistd.h>

std::atomic<int64_t> clock_is_ahead_ms{0};

// In place of the C library's.
extern "C" int clock_gettime(clockid_t clock, timespec* now) noexcept
{
    const int result = static_cast<int>(syscall(SYS_clock_gettime, clock, now));
    if (result == 0 && clock == CLOCK_REALTIME) {
        const int64_t ns = now->tv_nsec + clock_is_ahead_ms % 1000 * 1000000;
        now->tv_sec += clock_is_ahead_ms / 1000 + ns / 1000000000;
        now->tv_nsec = ns % 1000000000;
    }
    return result;
}
