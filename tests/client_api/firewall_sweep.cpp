#include "api_test.h"
#include "fault_sweep.h"

std::vector<SweepRow> firewall_sweep_rows()
{
    static zr_nexa_firewall_entry_list_t list;
    static uint8_t enable;
    static uint8_t pkts;
    static uint32_t state;
    static zr_nexa_firewall_hwfilter_cfg_t config;
    return {
        {"zr_nexa_firewall_entry_add_v1",
         [] {
             zr_nexa_firewall_entry_t entry = {};
             entry.ip_version = 4;
             return zr_nexa_firewall_entry_add_v1(1, &entry);
         },
         {{"SetWWANProfileHandlePreference", 1}, {"AddFireWallEntry", 2}}},
        {"zr_nexa_firewall_entry_get_v1",
         [] {
             list = poisoned<zr_nexa_firewall_entry_list_t>();
             return zr_nexa_firewall_entry_get_v1(1, 4, &list);
         },
         {{"SetWWANProfileHandlePreference", 1},
          {"GetFireWallHandlesList", 2},
          {"GetFireWallEntry", 3},
          {"GetFireWallEntry", 3}},
         [](scripted::Platform& platform) { platform.on("GetFireWallHandlesList").gives("count", int32_t{2}); },
         // The entries read before the failing one stay; none behind it is touched.
         [] { return is_poisoned(list.entry[2]) && is_poisoned(list.handle[2]) && is_poisoned(list.entry[49]); }},
        {"zr_nexa_firewall_entry_del_v1",
         [] { return zr_nexa_firewall_entry_del_v1(1, 7); },
         {{"SetWWANProfileHandlePreference", 1}, {"DeleteFireWallEntry", 2}}},
        {"zr_nexa_firewall_config_set_v1",
         [] { return zr_nexa_firewall_config_set_v1(1, 1, 1); },
         {{"SetWWANProfileHandlePreference", 1}, {"SetFirewall", 2}}},
        {"zr_nexa_firewall_config_get_v1",
         [] {
             enable = poisoned<uint8_t>();
             pkts = poisoned<uint8_t>();
             return zr_nexa_firewall_config_get_v1(1, &enable, &pkts);
         },
         {{"SetWWANProfileHandlePreference", 1}, {"GetFirewall", 2}},
         nullptr,
         [] { return is_poisoned(enable) && is_poisoned(pkts); }},
        {"zr_nexa_firewall_hwfiltering_state_set_v1",
         [] {
             zr_nexa_firewall_hwfilter_cfg_t filter = {};
             filter.num_of_macs = 1;
             filter.num_of_ifaces = 1;
             return zr_nexa_firewall_hwfiltering_state_set_v1(1, &filter);
         },
         {{"SetHWMACFilteringState", 2}}},
        {"zr_nexa_firewall_hwfiltering_state_get_v1",
         [] {
             state = poisoned<uint32_t>();
             config = poisoned<zr_nexa_firewall_hwfilter_cfg_t>();
             return zr_nexa_firewall_hwfiltering_state_get_v1(&state, &config);
         },
         {{"GetHWMACFilteringState", 2}},
         nullptr,
         [] { return is_poisoned(state) && is_poisoned(config); }},
    };
}
