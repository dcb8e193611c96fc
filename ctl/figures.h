// What runs: the profiles, the LANs that each of them feeds, the devices on these.
#ifndef ZR_NEXA_CTL_FIGURES_H
#define ZR_NEXA_CTL_FIGURES_H

#include <zr_nexa_client_api.h>

#include <string>
#include <vector>

#include "module.h"

namespace ctl {

// One family of a profile.
struct FamilyFigures {
    std::string state;  // "connected"; "failed" where the service has no state
    bool is_counted = false;
    qcmap_msgr_wwan_statistics_type_v01 counts = {};

    bool is_connected() const
    {
        return state == "connected";
    }
};

struct ProfileFigures {
    uint32_t handle = 0;
    std::string technology, family, apn_name;
    uint32_t apn_index = 0;
    std::vector<std::string> roles;
    FamilyFigures v4, v6;
    zr_nexa_wan_info_t info = {};
    std::vector<uint32_t> lans;  // that it feeds

    std::string name() const
    {
        return profile_name(handle);
    }
};

struct DeviceFigures {
    uint32_t type = 0;
    std::string address, mac, host_name;
    std::vector<std::string> v6_addresses;
    uint64_t received_bytes = 0;  // from the device
    uint64_t sent_bytes = 0;
    int lan = -1;  // whose net holds its address; -1: none
};

struct LanFigures {
    uint32_t id = 0;
    bool has_net = false;
    uint32_t address = 0, mask = 0;                           // host byte order
    std::vector<uint32_t> profiles;                           // that feed it
    std::vector<std::string> v4_sip_servers, v6_sip_servers;  // of the network

    std::string net() const
    {
        return has_net ? net_text(address, mask) : "";
    }
};

struct Figures {
    std::vector<ProfileFigures> profiles;  // by handle
    std::vector<LanFigures> lans;          // by id
    std::vector<DeviceFigures> devices;
    std::vector<Result> refused;  // what could not be read
};

// Asks the module, in a session that is open.
Figures read_figures();

// Tells what could not be read; the status that this means.
int status_of(const Figures& figures);

}  // namespace ctl

#endif
