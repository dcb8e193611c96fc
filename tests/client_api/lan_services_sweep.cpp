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
    const SweepStep select = {"SelectLANBridge", 1, "Select LAN Bridge (LAN_ID=7) error %d"};
    return {
        {SWEPT(zr_nexa_lan_dhcp_reserv_record_add_v1, (&reservation)),
         {{"AddDHCPReservRecord", 1, "Failed to Add DHCP Reservation record. Error 0x%x."}}},
        {SWEPT(zr_nexa_lan_dhcp_reserv_record_get_v1, (&list)),
         {{"GetDHCPReservRecords", 1, "Failed to Get DHCP Reservation record. Error 0x%x."}},
         {output(list)}},
        {SWEPT(zr_nexa_lan_dhcp_reserv_record_edit_v1, (1, &reservation)),
         {{"EditDHCPReservRecord", 1, "Failed to Edit DHCP Reservation record. Error 0x%x."}}},
        {SWEPT(zr_nexa_lan_dhcp_reserv_record_del_v1, (1)),
         {{"DeleteDHCPReservRecord", 1, "Failed to Delete DHCP Reservation record. Error 0x%x."}}},
        {SWEPT(zr_nexa_lan_packetstats_set_v1, (1)), {{"EnablePacketStats", 1, "Packet Stats Enable failed"}}},
        {SWEPT(zr_nexa_lan_packetstats_set_v1, (0)), {{"DisablePacketStats", 2, "Packet Stats Disable failed"}}},
        {SWEPT(zr_nexa_lan_packetstats_get_v1, (&state)),
         {{"GetPacketStatsStatus", 1, "Get Packet Stats failed"}},
         {output(state)},
         [](scripted::Platform& platform) { platform.on("GetPacketStatsStatus").gives("status", uint32_t{1}); }},
        {SWEPT(zr_nexa_lan_packetstats_reset_v1, ()), {{"ResetPacketStats", 1, "Packet Stats reset request failed"}}},
        // The service has the caller's own count.
        {SWEPT(zr_nexa_lan_connected_device_info_get_v1, (devices, &count)),
         {{"GetConnectedDevicesInfo", 1, "GetConnectedDevicesInfo failed(%d)"}},
         {output(devices[0])},
         [](scripted::Platform& platform) { platform.on("GetConnectedDevicesInfo").gives("count", 1u); }},
        {SWEPT(zr_nexa_lan_unmanaged_l2tp_state_set_v1, (7, &unmanaged)),
         {select, {"SetUnmanagedL2TPStateEx", 2, "Set L2TP Unmanaged state fails, Error: 0x%x"}}},
        {SWEPT(zr_nexa_lan_l2tp_get_v1, (7, &l2tp)),
         {select, {"GetL2TPConfig", 2, "Get L2TP Config Failed, Error: 0x%x"}},
         {output(l2tp)}},
        {SWEPT(zr_nexa_lan_l2tp_set_v1, (7, &tunnel)), {select, {"SetL2TPConfig", 2, "Set L2TP Config error %d"}}},
        {SWEPT(zr_nexa_lan_l2tp_delete_v1, (7, 1)),
         {select, {"DeleteL2TPTunnelConfig", 2, "Delete L2TP Config fails, Error: 0x%x"}}},
    };
}
