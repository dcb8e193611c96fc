#include "fault_sweep.h"

std::vector<SweepRow> firewall_sweep_rows()
{
    static zr_nexa_firewall_entry_t entry = {};
    entry.ip_version = 4;
    static zr_nexa_firewall_entry_list_t list;
    static uint8_t enable;
    static uint8_t pkts;
    static zr_nexa_firewall_hwfilter_cfg_t filter = {};
    filter.num_of_macs = 1;
    filter.num_of_ifaces = 1;
    static uint32_t state;
    static zr_nexa_firewall_hwfilter_cfg_t config;
    const std::string refused = "Set WWAN Profile Handle Preference (wwan_handle=2) error %d";
    const SweepStep select = {"SetWWANProfileHandlePreference", 1, refused};
    return {
        {SWEPT(zr_nexa_firewall_entry_add_v1, (2, &entry)),
         {select, {"AddFireWallEntry", 2, "Add Firewall Entry error %d"}}},
        // The list is written to as the platform answers: its count and the entries in front of the failing one.
        {SWEPT(zr_nexa_firewall_entry_get_v1, (2, 4, &list)),
         {select, {"GetFireWallHandlesList", 2, "Get FireWall Handles List (wwan_handle=2) error %d"}},
         {output(list)},
         [](scripted::Platform& platform) { platform.on("GetFireWallHandlesList").gives("count", int32_t{0}); }},
        {SWEPT(zr_nexa_firewall_entry_get_v1, (2, 4, &list)),
         {select,
          {"GetFireWallHandlesList", 2, "Get FireWall Handles List (wwan_handle=2) error %d"},
          {"GetFireWallEntry", 3, "Get FireWall Entry (wwan_handle=2 index=0) error %d"},
          {"GetFireWallEntry", 3, "Get FireWall Entry (wwan_handle=2 index=1) error %d"}},
         {output(list.entry[1]), output(list.handle[1]), output(list.entry[49])},
         [](scripted::Platform& platform) { platform.on("GetFireWallHandlesList").gives("count", int32_t{2}); }},
        // Log readers know the selection's text for both failures.
        {SWEPT(zr_nexa_firewall_entry_del_v1, (2, 7)), {select, {"DeleteFireWallEntry", 2, refused}}},
        {SWEPT(zr_nexa_firewall_config_set_v1, (2, 1, 1)),
         {select, {"SetFirewall", 2, "Set Firewall Config error %d"}}},
        {SWEPT(zr_nexa_firewall_config_get_v1, (2, &enable, &pkts)),
         {select, {"GetFirewall", 2, "Get Firewall Config error %d"}},
         {output(enable), output(pkts)}},
        {SWEPT(zr_nexa_firewall_hwfiltering_state_set_v1, (1, &filter)),
         {{"SetHWMACFilteringState", 2, "Set Hardware Filtering State error %d"}}},
        {SWEPT(zr_nexa_firewall_hwfiltering_state_get_v1, (&state, &config)),
         {{"GetHWMACFilteringState", 2, "Get Hardware Filtering State error %d"}},
         {output(state), output(config)}},
    };
}
