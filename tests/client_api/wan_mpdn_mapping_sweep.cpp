#include "fault_sweep.h"

std::vector<SweepRow> wan_mpdn_mapping_sweep_rows()
{
    static zr_nexa_wan_mpdnmapping_list_t list;
    const SweepStep select_profile = {"SetWWANProfileHandlePreference", 1,
                                      "Set WWAN Profile Handle Preference (wwan_handle=3) error %d"};
    const SweepStep select_bridge = {"SelectLANBridge", 2, "Select LAN Bridge (LAN_ID=4094) error %d"};
    return {
        {SWEPT(zr_nexa_wan_mpdnmapping_add_v1, (3, 4094)),
         {select_profile, select_bridge, {"AddPDNToVLANMapping", 3, "Add PDN 3 To VLAN 4094 Mapping error %d"}}},
        {SWEPT(zr_nexa_wan_mpdnmapping_get_v1, (&list)),
         {{"GetPDNtoVLANMappingsEx", 1, "Get PDN to VLAN Mappings List error %d"}},
         {output(list)},
         [](scripted::Platform& platform) { platform.on("GetPDNtoVLANMappingsEx").gives("count", 1); }},
        {SWEPT(zr_nexa_wan_mpdnmapping_del_v1, (3, 4094)),
         {select_profile, select_bridge, {"DeletePDNToVLANMapping", 3, "Delete PDN 3 To 4094 VLAN Mapping error %d"}}},
    };
}
