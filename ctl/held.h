// The state to go back to, while an apply is under way or waits to be confirmed, and the lock that keeps applies apart.
// One folder is one module.
#ifndef ZR_NEXA_CTL_HELD_H
#define ZR_NEXA_CTL_HELD_H

#include <cstdint>
#include <optional>
#include <stdexcept>
#include <string>
#include <vector>

#include "value.h"

namespace ctl {

// The folder for lock and held state cannot be made, or others may write into it.
struct UnusableFolder : std::runtime_error {
    using std::runtime_error::runtime_error;
};

// The folder for --state DIR; empty: of the environment, or the user's own. Made when it is missing, for its owner
// alone; not for who only looks. Throws UnusableFolder.
std::string state_folder(const std::string& wish, bool is_made = true);

// Held from its making to its end, unless another process has it.
class Lock {
public:
    explicit Lock(const std::string& folder, const char* name = "/lock");
    ~Lock();
    Lock(const Lock&) = delete;
    Lock& operator=(const Lock&) = delete;

    bool is_held() const
    {
        return holder_.empty();
    }
    // "process 12 holds the lock of /var/lib/zr_nexactl", when it is not ours.
    const std::string& holder() const
    {
        return holder_;
    }

private:
    int fd_ = -1;
    std::string holder_;
};

// The same, without taking it; empty: nobody holds it.
std::string lock_holder(const std::string& folder);

struct Held {
    Value document;        // with handles
    Value unnamed;         // of it, what no apply was to change, and one that was cut off may have left changed
    std::string boot;      // of the machine's run in which it was written
    int64_t until_ms = 0;  // of the clock since that boot; 0: none is running
    int64_t seconds =
        0;  // that were given for confirming; 0: none are waited for, an apply is under way or was cut off
    bool has_gre = false;                // a copy of GRE's file stands beside it
    std::vector<std::string> left = {};  // what is not as it should be since; no more than a few lines are kept
};

// What can be done with a held state.
constexpr const char* kWaysOn = "\"zr_nexactl rollback\" goes back, \"zr_nexactl confirm\" keeps things as they are";

// Milliseconds since the machine's start, which nobody sets, and the name of this start.
int64_t boot_clock_ms();
std::string boot_name();

// How long a confirmation is still waited for; 0 when the time is over, as it is after another boot.
int64_t milliseconds_left(const Held& held);
int64_t seconds_left(const Held& held);

// What is pending in a folder, if anything. Throws std::runtime_error for a file that cannot be read.
std::optional<Held> read_held(const std::string& folder);
// The same without the document, for one line's cost.
std::optional<Held> read_held_head(const std::string& folder);

// What differs when another held state has taken its place; empty: there is none.
std::string held_stamp(const std::string& folder);

// Written whole or not at all, and only what can be read again, before anything is changed. Throws std::runtime_error.
void write_held(const std::string& folder, const Held& held);
// With the copy of GRE's file.
void forget_held(const std::string& folder);

// Starts the process that goes back when no confirmation comes in time: off the terminal, and for itself. It runs when
// this returns; else a std::runtime_error is thrown.
void start_watchdog(const std::string& folder);
// In that process: nothing of who started it is kept, and it is told that the watch has begun.
void leave_the_caller();
void answer_as_watchdog();

}  // namespace ctl

#endif
