// VLANs, and with them the LANs of a module.
#ifndef ZR_NEXA_CTL_LAN_VLAN_H
#define ZR_NEXA_CTL_LAN_VLAN_H

#include <cstddef>
#include <cstdint>

#include "keys.h"
#include "value.h"

namespace ctl {

constexpr size_t kVlansMax = 2000;
constexpr uint32_t kVlanIdMax = 4094;  // from 1; 0 is the default LAN, which has no VLAN

// The LANs that are there: {0: {}, 10: {vlan: {interface: ethernet, accelerated: true}}}. A VLAN whose interface has no
// name here has none in its vlan: it can be neither made nor removed.
Result read_lans(Value* lans);

// Makes a VLAN, and with it its LAN.
Result add_vlan(uint32_t id, const Value& vlan);

// Takes it away with all that stands on it; wants the interface that it was made with.
Result remove_vlan(uint32_t id, const Value& vlan);

}  // namespace ctl

#endif
