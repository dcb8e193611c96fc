// The wall clock of a test program, which the test can move: what is due in an hour need not be waited for.
#ifndef MOVED_CLOCK_H
#define MOVED_CLOCK_H

#include <stdint.h>

#include <atomic>

extern std::atomic<int64_t> clock_is_ahead_ms;

#endif
