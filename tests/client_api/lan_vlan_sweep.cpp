#include "api_test.h"
#include "fault_sweep.h"

std::vector<SweepRow> lan_vlan_sweep_rows()
{
    static zr_nexa_lan_vlan_list_t list;
    std::vector<SweepRow> rows = {
        {"zr_nexa_lan_vlan_add_v1", [] { return zr_nexa_lan_vlan_add_v1(100, 1, 1); }, {{"CreateVLANConfig", 1}}},
        {"zr_nexa_lan_vlan_get_v1",
         [] {
             list = poisoned<zr_nexa_lan_vlan_list_t>();
             return zr_nexa_lan_vlan_get_v1(&list);
         },
         {{"GetVLANConfig", 1}},
         [](scripted::Platform& platform) { platform.on("GetVLANConfig").gives("count", int32_t{0}); },
         [] { return is_poisoned(list); }},
        {"zr_nexa_lan_vlan_del_v1", [] { return zr_nexa_lan_vlan_del_v1(100, 1); }, {{"DeleteVLANConfig", 1}}},
    };
    rows[0].bare_word_step = 2;
    rows[1].bare_word_step = 2;
    return rows;
}
