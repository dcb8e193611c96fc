// What the mobile network outside does to calls. It is no setting of the module: a factory restore leaves it alone.
#ifndef MOBILE_AP_NETWORK_H
#define MOBILE_AP_NETWORK_H

#include <optional>

#include "store.h"
#include "wan_call.h"

namespace mobile_ap {

enum class CallRequest { kConnect, kDisconnect };

// The next so many requests for this call come to nothing, for this reason. 0 takes it back.
void refuse_calls(Store& db, const Call& call, CallRequest request, uint32_t times, EndReason reason);

// The reason why the network refuses this request, if it does; one time less is left then.
std::optional<EndReason> take_refusal(Store& db, const Call& call, CallRequest request);

// How long connecting and disconnecting take for this profile.
void set_call_delay(Store& db, uint32_t profile, int64_t milliseconds);
int64_t call_delay(Store& db, uint32_t profile);

// The module is in a foreign network.
void set_roaming(Store& db, bool roams);
bool is_roaming(Store& db);

}  // namespace mobile_ap

#endif
