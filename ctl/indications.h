// Indications of the session, one after the other, and how waiting for them ends.
#ifndef ZR_NEXA_CTL_INDICATIONS_H
#define ZR_NEXA_CTL_INDICATIONS_H

#include <zr_nexa_client_api.h>

#include <chrono>
#include <cstdint>
#include <optional>

#include "types.h"

namespace ctl {

// Words of the states: "v4-connected".
extern const Words kStates;

struct Indication {
    uint32_t event = 0;
    std::chrono::system_clock::time_point time;  // when it came
    zr_nexa_ind_call_event_t call = {};          // of a call event
    uint32_t kind = 0;                           // of a status report
};

// The callback of a session: takes a note of each indication.
void note_indication(uint32_t event, uint32_t length, const void* data, ...);

// Ends of waiting other than by an indication.
enum class Waited { kIndication, kTimeIsOver, kSignal };

// Takes SIGINT and SIGTERM from the process while it lives: they end the waiting. Made before the session.
class Indications {
public:
    Indications();
    ~Indications();
    Indications(const Indications&) = delete;
    Indications& operator=(const Indications&) = delete;

    using Deadline = std::optional<std::chrono::steady_clock::time_point>;
    // The next one that came, or comes before the deadline.
    Waited next(const Deadline& deadline, Indication* out);
    // Whether a signal came; it stays so.
    bool signalled();

private:
    int signals_ = -1;
    bool signalled_ = false;
};

}  // namespace ctl

#endif
