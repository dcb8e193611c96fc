// Devices on the LAN, which come and go by themselves on a module.
#ifndef MOBILE_AP_LAN_SERVICES_H
#define MOBILE_AP_LAN_SERVICES_H

#include <stdint.h>

#include <string>
#include <vector>

#include "store.h"

namespace mobile_ap {

struct LanDevice {
    std::string mac;  // in lower case
    std::string ipv4;
    std::string host_name;
    std::vector<std::string> ipv6;
    uint32_t type = 4;
    int64_t rx_bytes = 0;
    int64_t tx_bytes = 0;
};

// A device joins; the one with its MAC address goes.
void join_lan(Store& db, const LanDevice& device);

// A device leaves, or all of them when the MAC address is empty. Refuses with NO_ENTRY when there is no such device.
void leave_lan(Store& db, const std::string& mac);

}  // namespace mobile_ap

#endif
