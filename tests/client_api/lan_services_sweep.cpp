#include "api_test.h"
#include "fault_sweep.h"

namespace {

zr_nexa_lan_l2tp_cfg_t a_tunnel()
{
    zr_nexa_lan_l2tp_cfg_t config = {};
    config.mode = 2;
    config.tunnel.tunnel_id = 1;
    config.tunnel.peer_tunnel_id = 2;
    config.tunnel.ip_family = 4;
    config.tunnel.encapsulation = 2;
    config.tunnel.local_ipv4 = 1;
    config.tunnel.peer_ipv4 = 2;
    config.tunnel.session_count = 1;
    config.tunnel.session[0] = {1, 2};
    return config;
}

}  // namespace

std::vector<SweepRow> lan_services_sweep_rows()
{
    static const zr_nexa_lan_dhcp_reserv_record_t reservation = {};
    static const zr_nexa_lan_unmanaged_l2tp_cfg_t unmanaged = {};
    static const zr_nexa_lan_l2tp_cfg_t tunnel = a_tunnel();
    static zr_nexa_lan_dhcp_reserv_list_t list;
    static uint8_t state;
    static zr_nexa_lan_connected_device_t devices[ZR_NEXA_LAN_CONNECTED_DEVICES_MAX];
    static uint32_t count;
    static zr_nexa_lan_l2tp_info_t l2tp;
    return {
        {"zr_nexa_lan_dhcp_reserv_record_add_v1",
         [] { return zr_nexa_lan_dhcp_reserv_record_add_v1(&reservation); },
         {{"AddDHCPReservRecord", 1}}},
        {"zr_nexa_lan_dhcp_reserv_record_get_v1",
         [] {
             list = poisoned<zr_nexa_lan_dhcp_reserv_list_t>();
             return zr_nexa_lan_dhcp_reserv_record_get_v1(&list);
         },
         {{"GetDHCPReservRecords", 1}},
         nullptr,
         [] { return is_poisoned(list); }},
        {"zr_nexa_lan_dhcp_reserv_record_edit_v1",
         [] { return zr_nexa_lan_dhcp_reserv_record_edit_v1(1, &reservation); },
         {{"EditDHCPReservRecord", 1}}},
        {"zr_nexa_lan_dhcp_reserv_record_del_v1",
         [] { return zr_nexa_lan_dhcp_reserv_record_del_v1(1); },
         {{"DeleteDHCPReservRecord", 1}}},
        {"zr_nexa_lan_packetstats_set_v1",
         [] { return zr_nexa_lan_packetstats_set_v1(1); },
         {{"EnablePacketStats", 1}}},
        {"zr_nexa_lan_packetstats_get_v1",
         [] {
             state = poisoned<uint8_t>();
             return zr_nexa_lan_packetstats_get_v1(&state);
         },
         {{"GetPacketStatsStatus", 1}},
         nullptr,
         [] { return is_poisoned(state); }},
        {"zr_nexa_lan_packetstats_reset_v1",
         [] { return zr_nexa_lan_packetstats_reset_v1(); },
         {{"ResetPacketStats", 1}}},
        {"zr_nexa_lan_connected_device_info_get_v1",
         [] {
             devices[0] = poisoned<zr_nexa_lan_connected_device_t>();
             return zr_nexa_lan_connected_device_info_get_v1(devices, &count);
         },
         {{"GetConnectedDevicesInfo", 1}},
         [](scripted::Platform& platform) { platform.on("GetConnectedDevicesInfo").gives("count", 1u); },
         [] { return is_poisoned(devices[0]); }},
        {"zr_nexa_lan_unmanaged_l2tp_state_set_v1",
         [] { return zr_nexa_lan_unmanaged_l2tp_state_set_v1(7, &unmanaged); },
         {{"SelectLANBridge", 1}, {"SetUnmanagedL2TPStateEx", 2}}},
        {"zr_nexa_lan_l2tp_get_v1",
         [] {
             l2tp = poisoned<zr_nexa_lan_l2tp_info_t>();
             return zr_nexa_lan_l2tp_get_v1(7, &l2tp);
         },
         {{"SelectLANBridge", 1}, {"GetL2TPConfig", 2}},
         nullptr,
         [] { return is_poisoned(l2tp); }},
        {"zr_nexa_lan_l2tp_set_v1",
         [] { return zr_nexa_lan_l2tp_set_v1(7, &tunnel); },
         {{"SelectLANBridge", 1}, {"SetL2TPConfig", 2}}},
        {"zr_nexa_lan_l2tp_delete_v1",
         [] { return zr_nexa_lan_l2tp_delete_v1(7, 1); },
         {{"SelectLANBridge", 1}, {"DeleteL2TPTunnelConfig", 2}}},
    };
}
