#include "patience.h"

#include <time.h>
#include <unistd.h>

#include <algorithm>
#include <random>

#include "signals.h"

namespace mobile_ap {
namespace {

constexpr unsigned int kLongestNapMs = 25;

int64_t now_ms()
{
    timespec now = {};
    clock_gettime(CLOCK_MONOTONIC, &now);
    return static_cast<int64_t>(now.tv_sec) * 1000 + now.tv_nsec / 1000000;
}

// Short at first, longer the longer the wait has been.
unsigned int random_nap_ms(int attempt)
{
    thread_local std::minstd_rand random(static_cast<unsigned int>(getpid()) * 2654435761u ^
                                         static_cast<unsigned int>(now_ms()));
    const unsigned int longest = std::min(kLongestNapMs, 2 + static_cast<unsigned int>(attempt));
    return 1 + static_cast<unsigned int>(random()) % longest;
}

}  // namespace

Patience::Patience(int milliseconds) : end_ms_(now_ms() + milliseconds) {}

bool Patience::nap(int attempt) const
{
    return now_ms() < end_ms_ && sleep_ms(random_nap_ms(attempt));
}

}  // namespace mobile_ap
