// SIP servers that the network assigns, which on a module come with the data call.
#ifndef MOBILE_AP_ALG_H
#define MOBILE_AP_ALG_H

#include <stdint.h>

#include <string>

#include "store.h"

namespace mobile_ap {

// Adds a server to those of a bridge and family (4 or 6), by its address or, when that is empty, by its name.
// Refuses with INVALID_ID for an unknown bridge, INVALID_ARG for what is neither, LIMIT beyond 25 of a family.
void add_network_sip_server(Store& db, int bridge, uint32_t family, const std::string& address,
                            const std::string& fqdn);

// Removes all of a bridge. Refuses with INVALID_ID for an unknown bridge.
void clear_network_sip_servers(Store& db, int bridge);

}  // namespace mobile_ap

#endif
