// The areas' sweep rows, one line an area.
#include "fault_sweep.h"

std::vector<SweepRow> general_sweep_rows();
std::vector<SweepRow> wan_profile_sweep_rows();
std::vector<SweepRow> wan_connection_sweep_rows();
std::vector<SweepRow> wan_mpdn_mapping_sweep_rows();
std::vector<SweepRow> firewall_sweep_rows();
std::vector<SweepRow> upnp_sweep_rows();
std::vector<SweepRow> gre_sweep_rows();
std::vector<SweepRow> lan_addressing_sweep_rows();
std::vector<SweepRow> vpn_passthrough_sweep_rows();
std::vector<SweepRow> alg_sweep_rows();
std::vector<SweepRow> lan_services_sweep_rows();
std::vector<SweepRow> lan_vlan_sweep_rows();
std::vector<SweepRow> lan_passthrough_sweep_rows();
std::vector<SweepRow> nat_sweep_rows();

std::vector<SweepRow> all_sweep_rows()
{
    std::vector<SweepRow> all;
    for (const auto& area : {
             general_sweep_rows,
             wan_profile_sweep_rows,
             wan_connection_sweep_rows,
             wan_mpdn_mapping_sweep_rows,
             nat_sweep_rows,
             firewall_sweep_rows,
             upnp_sweep_rows,
             gre_sweep_rows,
             lan_addressing_sweep_rows,
             vpn_passthrough_sweep_rows,
             alg_sweep_rows,
             lan_services_sweep_rows,
             lan_vlan_sweep_rows,
             lan_passthrough_sweep_rows,
         }) {
        for (auto& row : area()) {
            all.push_back(row);
        }
    }
    return all;
}
