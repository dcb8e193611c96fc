// What other areas ask about the WWAN connections.
#ifndef MOBILE_AP_WAN_CONNECTION_H
#define MOBILE_AP_WAN_CONNECTION_H

#include "store.h"

namespace mobile_ap {

// A call of the profile, in either IP family, is up.
bool is_connected(Store& db, uint32_t profile);

}  // namespace mobile_ap

#endif
