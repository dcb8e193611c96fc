// A wall clock that stands while a test runs, and goes on when the test says so: what is due in an hour need not be
// waited for, and what takes a second takes it to the millisecond.
#ifndef STOPPED_CLOCK_H
#define STOPPED_CLOCK_H

#include <stdint.h>

#include <atomic>

// Milliseconds since 1970 began; 0: the clock goes as ever.
extern std::atomic<int64_t> clock_stands_at_ms;

#endif
