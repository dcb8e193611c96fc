// The LAN bridges: bridge 0 is always there, every other one belongs to a VLAN.
#ifndef MOBILE_AP_LAN_ADDRESSING_H
#define MOBILE_AP_LAN_ADDRESSING_H

#include "store.h"

namespace mobile_ap {

// Adds the bridge of a VLAN with addresses of its own; whether its DHCP server runs is the default action's to say.
// Refuses with ALREADY_THERE when there is one.
void add_bridge(Store& db, int vlan_id);

// Removes the bridge of a VLAN, never bridge 0. Refuses with NO_ENTRY when there is none.
void remove_bridge(Store& db, int vlan_id);

}  // namespace mobile_ap

#endif
