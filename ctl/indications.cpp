#include "indications.h"

#include <poll.h>
#include <sys/eventfd.h>
#include <sys/signalfd.h>
#include <unistd.h>

#include <algorithm>
#include <csignal>
#include <cstring>
#include <deque>
#include <mutex>

namespace ctl {

const Words kStates = {{ZR_NEXA_IND_V4_CONNECTING, "v4-connecting"},
                       {ZR_NEXA_IND_V4_CONNECTING_FAILED, "v4-connecting-failed"},
                       {ZR_NEXA_IND_V4_CONNECTED, "v4-connected"},
                       {ZR_NEXA_IND_V4_DISCONNECTING, "v4-disconnecting"},
                       {ZR_NEXA_IND_V4_DISCONNECTING_FAILED, "v4-disconnecting-failed"},
                       {ZR_NEXA_IND_V4_DISCONNECTED, "v4-disconnected"},
                       {ZR_NEXA_IND_V6_CONNECTING, "v6-connecting"},
                       {ZR_NEXA_IND_V6_CONNECTING_FAILED, "v6-connecting-failed"},
                       {ZR_NEXA_IND_V6_CONNECTED, "v6-connected"},
                       {ZR_NEXA_IND_V6_DISCONNECTING, "v6-disconnecting"},
                       {ZR_NEXA_IND_V6_DISCONNECTING_FAILED, "v6-disconnecting-failed"},
                       {ZR_NEXA_IND_V6_DISCONNECTED, "v6-disconnected"}};

namespace {

// The callback gets no word of its caller's, so the notes are the process's.
struct Notes {
    std::mutex mutex;
    std::deque<Indication> queue;
    const int more = eventfd(0, EFD_CLOEXEC | EFD_NONBLOCK);
};

Notes& notes()
{
    static Notes all;
    return all;
}

sigset_t ending_signals()
{
    sigset_t set;
    sigemptyset(&set);
    sigaddset(&set, SIGINT);
    sigaddset(&set, SIGTERM);
    return set;
}

// For poll, rounded up; -1 for ever.
int milliseconds_until(const Indications::Deadline& deadline)
{
    if (!deadline) return -1;
    constexpr std::chrono::milliseconds kDay = std::chrono::hours(24);
    const auto left = std::chrono::ceil<std::chrono::milliseconds>(*deadline - std::chrono::steady_clock::now());
    return static_cast<int>(std::clamp(left, std::chrono::milliseconds(0), kDay).count());
}

}  // namespace

void note_indication(uint32_t event, uint32_t length, const void* data, ...)
{
    Indication note;
    note.event = event;
    note.time = std::chrono::system_clock::now();
    if (event == ZR_NEXA_IND_STATUS_REPORT)
        std::memcpy(&note.kind, data, std::min<size_t>(length, sizeof note.kind));
    else
        std::memcpy(&note.call, data, std::min<size_t>(length, sizeof note.call));
    const std::lock_guard<std::mutex> lock(notes().mutex);
    notes().queue.push_back(note);
    eventfd_write(notes().more, 1);
}

Indications::Indications()
{
    const sigset_t set = ending_signals();
    pthread_sigmask(SIG_BLOCK, &set, nullptr);
    signals_ = signalfd(-1, &set, SFD_CLOEXEC | SFD_NONBLOCK);
    notes();
}

Indications::~Indications()
{
    close(signals_);
}

Waited Indications::next(const Deadline& deadline, Indication* out)
{
    for (;;) {
        {
            const std::lock_guard<std::mutex> lock(notes().mutex);
            if (!notes().queue.empty()) {
                *out = notes().queue.front();
                notes().queue.pop_front();
                return Waited::kIndication;
            }
            eventfd_t count = 0;
            eventfd_read(notes().more, &count);
        }
        if (signalled()) return Waited::kSignal;
        if (deadline && std::chrono::steady_clock::now() >= *deadline) return Waited::kTimeIsOver;
        pollfd ready[] = {{notes().more, POLLIN, 0}, {signals_, POLLIN, 0}};
        poll(ready, 2, milliseconds_until(deadline));
    }
}

bool Indications::signalled()
{
    signalfd_siginfo signal = {};
    if (read(signals_, &signal, sizeof signal) == sizeof signal) signalled_ = true;
    return signalled_;
}

}  // namespace ctl
