#include "api_test.h"
#include "fault_sweep.h"

std::vector<SweepRow> wan_connection_sweep_rows()
{
    static uint8_t mode;
    static uint32_t v4_status;
    static uint32_t v6_status;
    static zr_nexa_wan_info_t info_record;
    static qcmap_msgr_wwan_statistics_type_v01 statistics;
    const auto mode_untouched = [] { return is_poisoned(mode); };
    return {
        {"zr_nexa_wan_status_get_v1",
         [] {
             v4_status = v6_status = poisoned<uint32_t>();
             return zr_nexa_wan_status_get_v1(2, &v4_status, &v6_status);
         },
         {{"SetWWANProfileHandlePreference", 1}, {"GetWWANStatus", 2}},
         nullptr,
         [] { return is_poisoned(v4_status) && is_poisoned(v6_status); }},
        {"zr_nexa_wan_connect_v4_set_v1",
         [] { return zr_nexa_wan_connect_v4_set_v1(2, 1); },
         {{"SetWWANProfileHandlePreference", 1}, {"ConnectBackHaul", 2}}},
        {"zr_nexa_wan_connect_v6_set_v1",
         [] { return zr_nexa_wan_connect_v6_set_v1(2, 0); },
         {{"SetWWANProfileHandlePreference", 1}, {"DisconnectBackHaul", 3}}},
        {"zr_nexa_wan_reconnect_set_v1",
         [] { return zr_nexa_wan_reconnect_set_v1(2, 1); },
         {{"SetWWANProfileHandlePreference", 1}, {"SetReconnect", 2}}},
        {"zr_nexa_wan_reconnect_get_v1",
         [] {
             mode = poisoned<uint8_t>();
             return zr_nexa_wan_reconnect_get_v1(2, &mode);
         },
         {{"SetWWANProfileHandlePreference", 1}, {"GetReconnect", 2}},
         nullptr,
         mode_untouched},
        {"zr_nexa_wan_autoconnect_set_v1",
         [] { return zr_nexa_wan_autoconnect_set_v1(2, 0); },
         {{"SetWWANProfileHandlePreference", 1}, {"SetAutoconnect", 3}}},
        {"zr_nexa_wan_autoconnect_get_v1",
         [] {
             mode = poisoned<uint8_t>();
             return zr_nexa_wan_autoconnect_get_v1(2, &mode);
         },
         {{"SetWWANProfileHandlePreference", 1}, {"GetAutoconnect", 2}},
         nullptr,
         mode_untouched},
        {"zr_nexa_wan_roaming_set_v1",
         [] { return zr_nexa_wan_roaming_set_v1(2, 1); },
         {{"SetWWANProfileHandlePreference", 1}, {"SetRoaming", 2}}},
        {"zr_nexa_wan_roaming_get_v1",
         [] {
             mode = poisoned<uint8_t>();
             return zr_nexa_wan_roaming_get_v1(2, &mode);
         },
         {{"SetWWANProfileHandlePreference", 1}, {"GetRoaming", 2}},
         nullptr,
         mode_untouched},
        // The next two clear their outputs before anything else; their own tests look at them.
        {"zr_nexa_wan_info_get_v1",
         [] { return zr_nexa_wan_info_get_v1(2, &info_record); },
         {{"GetAllConnectedPDNEx", 1}}},
        {"zr_nexa_wan_statistics_get_v1",
         [] { return zr_nexa_wan_statistics_get_v1(2, 4, &statistics); },
         {{"SetWWANProfileHandlePreference", 1}, {"GetWWANStatistics", 2}}},
        {"zr_nexa_wan_statistics_reset_v1",
         [] { return zr_nexa_wan_statistics_reset_v1(2, 4); },
         {{"SetWWANProfileHandlePreference", 1}, {"ResetWWANStatistics", 2}}},
        {"zr_nexa_wan_radvd_restart_v1", [] { return zr_nexa_wan_radvd_restart_v1(); }, {}, nullptr, nullptr, false, 3},
    };
}
