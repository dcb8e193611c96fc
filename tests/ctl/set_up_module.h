// A module that one document has set up, and another one that changes it in every area, for the program as it is run.
// What the second one does can all be undone, so that going back must show what was shown before.
#ifndef SET_UP_MODULE_H
#define SET_UP_MODULE_H

#include <gmock/gmock.h>

#include <algorithm>
#include <cstdlib>
#include <filesystem>
#include <iostream>
#include <numeric>
#include <random>

#include "platform_calls.h"
#include "program_fixture.h"

// Profiles bear the names that show gives them.
inline constexpr char kBefore[] = R"(version: 1
general: {shortcut_engine: true, gateway_url: before.example, ipv6: true}
software_path: [10.7.1.9]
reservations: {10.7.1.30: {mac: "02:00:00:00:00:01"}, 10.7.1.31: {mac: "02:00:00:00:00:02"}}
lans:
  0: {address: 10.7.1.1/24, dhcp: {first: 10.7.1.2, last: 10.7.1.60}, sip_server: {name: sip.example}}
  10:
    vlan: {interface: ethernet}
    address: 10.7.2.1/24
    dhcp: {first: 10.7.2.2, last: 10.7.2.60}
    gateway_filters: [{protocol: tcp, ports: 80}, {protocol: udp, ports: 90}]
    l2tp: {enabled: true, mtu: 1400, mode: managed, tunnels: {
      7: {peer_tunnel: 8, encapsulation: ip, local: 192.0.2.1, peer: 192.0.2.2, sessions: [{local: 1, peer: 2}]}}}
  20: {vlan: {interface: ecm}, address: 10.7.3.1/24, dhcp: {first: 10.7.3.2, last: 10.7.3.60}}
profiles:
  profile-1: {dial: {apn_index: 1}, vlans: [10, 20]}
  profile-2:
    dial: {apn_index: 3, family: ipv4}
    nat: {type: full-cone, dmz: 10.7.1.50, port_mappings: [{protocol: tcp, global_port: 80, host: 10.7.1.50}]}
    firewall: {enabled: true, unmatched: drop, entries: [{family: ipv4, protocol: tcp, destination_ports: 22}]}
    upnp_pinholes: true
roles: {default: profile-1, access_point: profile-1, dns_proxy: profile-2}
hardware_mac_filter: {state: listed, stations: ["02:00:00:00:00:31"], interfaces: [[1, 0, 0, 0, 0]]}
)";

inline constexpr char kAfter[] = R"(version: 1
general: {shortcut_engine: false, packet_statistics: true, gateway_url: after.example, ipv6: false}
software_path: [10.7.1.8, 10.7.1.9]
reservations: {10.7.1.30: {mac: "02:00:00:00:00:05"}, 10.7.1.31: {absent: true}, 10.7.1.32: {mac: "02:00:00:00:00:03"}}
lans:
  0: {dhcp: {last: 10.7.1.70, lease_seconds: 7200}, sip_server: {name: other.example}}
  10:
    gateway_filters: [{protocol: tcp, ports: 80}, {protocol: udp, ports: 91}]
    l2tp: {mtu: 1300, mode: managed}
  20: {absent: true}
  30: {vlan: {interface: ethernet-2}, address: 10.7.4.1/24, dhcp: {first: 10.7.4.2, last: 10.7.4.60}}
profiles:
  profile-1: {dial: {apn_index: 1}, roaming: true, vlans: [10, 30], vpn_passthrough: {ipsec: {ipv4: true}}}
  profile-2:
    dial: {apn_index: 3, family: ipv4}
    nat: {type: symmetric, dmz: none, port_mappings: [{protocol: udp, global_port: 80, host: 10.7.1.50}]}
    firewall: {enabled: false, unmatched: let-through, entries: [{family: ipv6, protocol: udp, source_ports: 1-9}]}
    upnp_pinholes: false
  profile-3: {dial: {apn_index: 5}, autoconnect: true}
roles: {default: profile-1, access_point: profile-3, dns_proxy: profile-1}
upnp: {enabled: true, notify_seconds: 60}
hardware_mac_filter: {state: listed, stations: ["02:00:00:00:00:32"]}
)";

class SetUpModuleTest : public ProgramTest {
protected:
    SetUpModuleTest()
    {
        before_ = written("before.yaml", kBefore);
        after_ = written("after.yaml", kAfter);
        EXPECT_EQ(ctl({"apply", before_, "--exact"}).status, 0);
        shown_before_ = shown();
        keep_state();
    }

    // Outside of the state, which is put back.
    std::string written(const std::string& name, const std::string& text) const
    {
        const std::string path = work_.path() + "/" + name;
        std::ofstream(path) << text;
        return path;
    }

    // The state of the module, and what is held, as they are now are what back_to_kept() comes back to.
    void keep_state() const
    {
        put(state.path(), kept_.path());
    }
    void back_to_kept() const
    {
        put(kept_.path(), state.path());
    }

    std::string log() const
    {
        return work_.path() + "/log";
    }
    Words logging(const std::string& faults) const
    {
        std::filesystem::remove(log());
        return logged(log(), faults);
    }

    // Some of so many trials, in their order; all of them with ZR_NEXA_TRIALS=all. ZR_NEXA_SEED chooses the same again.
    static std::vector<size_t> some_of(size_t count, size_t at_most)
    {
        std::vector<size_t> chosen(count);
        std::iota(chosen.begin(), chosen.end(), 0);
        const char* const trials = std::getenv("ZR_NEXA_TRIALS");
        if (trials != nullptr && std::string(trials) == "all") return chosen;
        const char* const given = std::getenv("ZR_NEXA_SEED");
        const auto seed = given != nullptr ? static_cast<uint32_t>(std::strtoul(given, nullptr, 10))
                                           : static_cast<uint32_t>(std::random_device()());
        std::cout << "ZR_NEXA_SEED=" << seed << ": " << std::min(count, at_most) << " of " << count << "\n";
        std::mt19937 random(seed);
        std::shuffle(chosen.begin(), chosen.end(), random);
        chosen.resize(std::min(count, at_most));
        std::sort(chosen.begin(), chosen.end());
        return chosen;
    }

    std::string before_;
    std::string after_;
    std::string shown_before_;

private:
    static void put(const std::string& from, const std::string& to)
    {
        for (const auto& entry : std::filesystem::directory_iterator(to))
            std::filesystem::remove_all(entry.path());
        std::filesystem::copy(from, to, std::filesystem::copy_options::recursive);
    }

    TempFolder work_;
    TempFolder kept_;
};

#endif
