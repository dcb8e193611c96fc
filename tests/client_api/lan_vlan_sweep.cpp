#include "fault_sweep.h"

std::vector<SweepRow> lan_vlan_sweep_rows()
{
    static zr_nexa_lan_vlan_list_t list;
    std::vector<SweepRow> rows = {
        {SWEPT(zr_nexa_lan_vlan_add_v1, (100, 1, 1)), {{"CreateVLANConfig", 1, "Create VLAN(100) Config error %d"}}},
        {SWEPT(zr_nexa_lan_vlan_get_v1, (&list)),
         {{"GetVLANConfig", 1, "Get VLAN List Config error %d"}},
         {output(list)},
         [](scripted::Platform& platform) { platform.on("GetVLANConfig").gives("count", int32_t{3}); }},
        {SWEPT(zr_nexa_lan_vlan_del_v1, (100, 4)),
         {{"DeleteVLANConfig", 1, "Delete VLAN(ID=100 type=6) Config error %d"}}},
    };
    rows[0].bare_word_step = 2;
    rows[1].bare_word_step = 2;
    return rows;
}
