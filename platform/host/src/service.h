// The service itself: there, or away for a while.
#ifndef MOBILE_AP_SERVICE_H
#define MOBILE_AP_SERVICE_H

#include <stdint.h>

#include "store.h"

namespace mobile_ap {

// It answers nothing. Sessions stay open, and go on with what they had selected when it is back.
bool is_away(Store& db);

// It is away for so long; calls go on. 0: it is back, in this moment.
void leave(Store& db, int64_t at, int64_t milliseconds);

// The same, and all calls end.
void restart(Store& db, int64_t at, int64_t milliseconds);

// It is back: what holds from its next start on takes effect, and profiles with autoconnect dial.
void start_service(Store& db, int64_t at);

// When it started last; 0 when it never was away.
int64_t last_start_ms(Store& db);

}  // namespace mobile_ap

#endif
