#include "fault_sweep.h"

std::vector<SweepRow> upnp_sweep_rows()
{
    static uint8_t byte;
    static uint16_t interval;
    const SweepStep select = {"SetWWANProfileHandlePreference", 1,
                              "Set WWAN Profile Handle Preference (wwan_handle=4) error %d"};
    return {
        {SWEPT(zr_nexa_media_upnp_set_v1, (1)), {{"EnableUPNP", 1, "Enable UPnP State error %d"}}},
        {SWEPT(zr_nexa_media_upnp_set_v1, (0)), {{"DisableUPNP", 2, "Disable UPnP State error %d"}}},
        {SWEPT(zr_nexa_media_upnp_get_v1, (&byte)),
         {{"GetUPNPStatus", 1, "Get UPNP Status error %d"}},
         {output(byte)},
         [](scripted::Platform& platform) { platform.on("GetUPNPStatus").gives("mode", QCMAP_MSGR_UPNP_MODE_UP_V01); }},
        {SWEPT(zr_nexa_media_upnp_notify_interval_set_v1, (1800)),
         {{"SetUPNPNotifyInterval", 1, "Set UPnP Notify Interval error %d"}}},
        {SWEPT(zr_nexa_media_upnp_notify_interval_get_v1, (&interval)),
         {{"GetUPNPNotifyInterval", 1, "Get UPnP Notify Interval error %d"}},
         {output(interval)}},
        {SWEPT(zr_nexa_media_upnp_pinhole_state_set_v1, (4, 1)),
         {select, {"GetFirewall", 2, "Get Firewall State error %d"}, {"SetUPNPState", 3, "Set UPNP state error %d"}},
         {},
         [](scripted::Platform& platform) { platform.on("GetFirewall").gives("enable_firewall", uint8_t{1}); }},
        {SWEPT(zr_nexa_media_upnp_pinhole_state_get_v1, (4, &byte)),
         {select, {"GetUPNPState", 2, "Get UPNP Pinhole state error %d"}},
         {output(byte)}},
    };
}
