#include "fault_sweep.h"

std::vector<SweepRow> wan_connection_sweep_rows()
{
    static uint8_t mode;
    static uint32_t v4_status;
    static uint32_t v6_status;
    static zr_nexa_wan_info_t info_record;
    static qcmap_msgr_wwan_statistics_type_v01 statistics;
    const SweepStep select = {"SetWWANProfileHandlePreference", 1,
                              "Set WWAN Profile Handle Preference (wwan_handle=5) error %d"};
    std::vector<SweepRow> rows = {
        {SWEPT(zr_nexa_wan_status_get_v1, (5, &v4_status, &v6_status)),
         {select, {"GetWWANStatus", 2, "Get WWAN Status (wwan_handle=5) error %d"}},
         {output(v4_status), output(v6_status)},
         [](scripted::Platform& platform) {
             platform.on("GetWWANStatus")
                 .gives("v4_status", QCMAP_MSGR_WWAN_STATUS_CONNECTED_V01)
                 .gives("v6_status", QCMAP_MSGR_WWAN_STATUS_IPV6_CONNECTED_V01);
         }},
        {SWEPT(zr_nexa_wan_connect_v4_set_v1, (5, 1)),
         {select, {"ConnectBackHaul", 2, "Connect BackHaul (wwan_handle=5 call_type=1) error %d"}}},
        {SWEPT(zr_nexa_wan_connect_v4_set_v1, (5, 0)),
         {select, {"DisconnectBackHaul", 3, "Disconnect BackHaul (wwan_handle=5 call_type=1) error %d"}}},
        {SWEPT(zr_nexa_wan_connect_v6_set_v1, (5, 1)),
         {select, {"ConnectBackHaul", 2, "Connect BackHaul (wwan_handle=5 call_type=2) error %d"}}},
        {SWEPT(zr_nexa_wan_connect_v6_set_v1, (5, 0)),
         {select, {"DisconnectBackHaul", 3, "Disconnect BackHaul (wwan_handle=5 call_type=2) error %d"}}},
        {SWEPT(zr_nexa_wan_reconnect_set_v1, (5, 1)),
         {select, {"SetReconnect", 2, "Enable Reconnect Mode (wwan_handle=5) error %d"}}},
        {SWEPT(zr_nexa_wan_reconnect_set_v1, (5, 0)),
         {select, {"SetReconnect", 3, "Disable Reconnect Mode (wwan_handle=5) error %d"}}},
        {SWEPT(zr_nexa_wan_reconnect_get_v1, (5, &mode)),
         {select, {"GetReconnect", 2, "Get Reconnect Mode (wwan_handle=5) error %d"}},
         {output(mode)}},
        {SWEPT(zr_nexa_wan_autoconnect_set_v1, (5, 1)),
         {select, {"SetAutoconnect", 2, "Enable Autoconnect Mode (wwan_handle=5) error %d"}}},
        {SWEPT(zr_nexa_wan_autoconnect_set_v1, (5, 0)),
         {select, {"SetAutoconnect", 3, "Disable Autoconnect Mode (wwan_handle=5) error %d"}}},
        {SWEPT(zr_nexa_wan_autoconnect_get_v1, (5, &mode)),
         {select, {"GetAutoconnect", 2, "Get Autoconnect Mode (wwan_handle=5) error %d"}},
         {output(mode)}},
        {SWEPT(zr_nexa_wan_roaming_set_v1, (5, 1)),
         {select, {"SetRoaming", 2, "Enable NEXA roaming cfg (wwan_handle=5) error %d"}}},
        {SWEPT(zr_nexa_wan_roaming_set_v1, (5, 0)),
         {select, {"SetRoaming", 3, "Disable NEXA roaming cfg (wwan_handle=5) error %d"}}},
        {SWEPT(zr_nexa_wan_roaming_get_v1, (5, &mode)),
         {select, {"GetRoaming", 2, "Get NEXA roaming cfg (wwan_handle=5) error %d"}},
         {output(mode)}},
        // The next two clear their outputs before anything else; their own tests look at them.
        {SWEPT(zr_nexa_wan_info_get_v1, (5, &info_record)),
         {{"GetAllConnectedPDNEx", 1, "Get All Connected PDN (wwan_handle=5) error %d"}}},
        {SWEPT(zr_nexa_wan_statistics_get_v1, (5, 6, &statistics)),
         {select, {"GetWWANStatistics", 2, "Get WWAN Statistics (wwan_handle=5, ip_family=6) error %d"}}},
        {SWEPT(zr_nexa_wan_statistics_reset_v1, (5, 10)),
         {select, {"ResetWWANStatistics", 2, "Reset WWAN Statistics (wwan_handle=5, ip_family=10) error %d"}}},
        {SWEPT(zr_nexa_wan_radvd_restart_v1, ()), {}},
    };
    rows.back().needs_session = false;
    rows.back().clean_result = 3;
    return rows;
}
