#include "signals.h"

#include <pthread.h>
#include <time.h>

#include <algorithm>

namespace mobile_ap {

SignalsHeld::SignalsHeld()
{
    sigset_t held;
    sigemptyset(&held);
    sigaddset(&held, SIGINT);
    sigaddset(&held, SIGTERM);
    pthread_sigmask(SIG_BLOCK, &held, &before_);
}

SignalsHeld::~SignalsHeld()
{
    pthread_sigmask(SIG_SETMASK, &before_, nullptr);
}

bool signal_waiting()
{
    sigset_t waiting;
    if (sigpending(&waiting) != 0) return false;
    return sigismember(&waiting, SIGINT) == 1 || sigismember(&waiting, SIGTERM) == 1;
}

bool sleep_ms(unsigned int milliseconds)
{
    constexpr unsigned int kStep = 20;
    if (milliseconds == 0) return true;
    while (!signal_waiting()) {
        if (milliseconds == 0) return true;
        const unsigned int step = std::min(milliseconds, kStep);
        const timespec pause = {0, static_cast<long>(step) * 1000000L};
        nanosleep(&pause, nullptr);
        milliseconds -= step;
    }
    return false;
}

}  // namespace mobile_ap
