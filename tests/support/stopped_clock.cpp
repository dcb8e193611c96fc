#include "stopped_clock.h"

#include <sys/syscall.h>
#include <time.h>
#include <unistd.h>

std::atomic<int64_t> clock_stands_at_ms{0};

// In place of the C library's.
extern "C" int clock_gettime(clockid_t clock, timespec* now) noexcept
{
    const int64_t ms = clock_stands_at_ms;
    if (clock != CLOCK_REALTIME || ms == 0) return static_cast<int>(syscall(SYS_clock_gettime, clock, now));
    *now = {static_cast<time_t>(ms / 1000), static_cast<long>(ms % 1000 * 1000000)};
    return 0;
}
