// The state to go back to, while an apply is under way or waits to be confirmed, and the lock that keeps applies apart.
// One folder is one module.
#ifndef ZR_NEXA_CTL_HELD_H
#define ZR_NEXA_CTL_HELD_H

#include <cstdint>
#include <optional>
#include <string>

#include "value.h"

namespace ctl {

// The folder for --state DIR; empty: of the environment, or the user's own. Made when it is missing, for its owner
// alone. Throws a Problem-like text as std::runtime_error when it cannot be.
std::string state_folder(const std::string& wish);

// Held from its making to its end.
class Lock {
public:
    explicit Lock(const std::string& folder);
    ~Lock();
    Lock(const Lock&) = delete;
    Lock& operator=(const Lock&) = delete;

    bool is_held() const
    {
        return holder_.empty();
    }
    // Who has it, when it is not ours.
    const std::string& holder() const
    {
        return holder_;
    }

private:
    int fd_ = -1;
    std::string holder_;
};

struct Held {
    Value document;        // with handles
    std::string boot;      // of the machine's run in which it was written
    int64_t until_ms = 0;  // of the clock since that boot; 0: an apply is under way, or was cut off
    int64_t seconds = 0;   // that were given for confirming; 0: none are waited for
};

// Milliseconds since the machine's start, which nobody sets, and the name of this start.
int64_t boot_clock_ms();
std::string boot_name();

// How long a confirmation is still waited for; 0 when the time is over, as it is after another boot.
int64_t seconds_left(const Held& held);

// What is pending in a folder, if anything. Throws std::runtime_error for a file that cannot be read.
std::optional<Held> read_held(const std::string& folder);

// Written whole or not at all, before anything is changed. Throws std::runtime_error.
void write_held(const std::string& folder, const Held& held);
void forget_held(const std::string& folder);

// Starts the process that goes back when no confirmation comes in time: off the terminal, and for itself.
void start_watchdog(const std::string& folder);

}  // namespace ctl

#endif
