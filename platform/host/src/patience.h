// Waiting for what another process holds.
#ifndef MOBILE_AP_PATIENCE_H
#define MOBILE_AP_PATIENCE_H

#include <stdint.h>

namespace mobile_ap {

constexpr int kPatienceMs = 10000;

// Lasts for so many milliseconds from its making, by a clock that nobody sets.
class Patience {
public:
    explicit Patience(int milliseconds = kPatienceMs);

    // Naps for a random while, longer after many attempts. Returns false at once when the patience is at an end, or
    // when a signal waits.
    bool nap(int attempt) const;

private:
    int64_t end_ms_;
};

}  // namespace mobile_ap

#endif
