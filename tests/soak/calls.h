// The C library's calls that change files, as the host platform and SQLite make them in this program: one of them can
// be made to fail, to come late, or to be the last that the process makes.
#ifndef SOAK_CALLS_H
#define SOAK_CALLS_H

#include <stdint.h>

namespace soak {

enum class CallKind { kOpen, kWrite, kSync, kSize, kName, kMap };
constexpr int kCallKinds = 6;

struct CallPlan {
    int dies_at = 0;       // of all these calls; 0: at none. A write is half made.
    uint32_t lingers = 0;  // not 0: around some of them it waits for a moment; of what is random in that, the seed
    CallKind kind = CallKind::kOpen;
    int fails_at = 0;  // of the kind's; 0: none
    int error = 0;
    bool from_then_on = false;
    bool no_watches = false;  // inotify is not to be had
};

// What holds for this process from now on, with the counts at 0.
void plan_calls(const CallPlan& plan);

// So many of the kind were made, and so many of them failed.
int calls_made(CallKind kind);
int calls_failed();

}  // namespace soak

#endif
