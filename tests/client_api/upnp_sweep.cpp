#include "api_test.h"
#include "fault_sweep.h"

std::vector<SweepRow> upnp_sweep_rows()
{
    static uint8_t byte;
    static uint16_t interval;
    const auto byte_untouched = [] { return is_poisoned(byte); };
    return {
        // Switching off, the second step, has no row of its own: upnp_test shows it.
        {"zr_nexa_media_upnp_set_v1", [] { return zr_nexa_media_upnp_set_v1(1); }, {{"EnableUPNP", 1}}},
        {"zr_nexa_media_upnp_get_v1",
         [] {
             byte = poisoned<uint8_t>();
             return zr_nexa_media_upnp_get_v1(&byte);
         },
         {{"GetUPNPStatus", 1}},
         nullptr,
         byte_untouched},
        {"zr_nexa_media_upnp_notify_interval_set_v1",
         [] { return zr_nexa_media_upnp_notify_interval_set_v1(1800); },
         {{"SetUPNPNotifyInterval", 1}}},
        {"zr_nexa_media_upnp_notify_interval_get_v1",
         [] {
             interval = poisoned<uint16_t>();
             return zr_nexa_media_upnp_notify_interval_get_v1(&interval);
         },
         {{"GetUPNPNotifyInterval", 1}},
         nullptr,
         [] { return is_poisoned(interval); }},
        {"zr_nexa_media_upnp_pinhole_state_set_v1",
         [] { return zr_nexa_media_upnp_pinhole_state_set_v1(1, 1); },
         {{"SetWWANProfileHandlePreference", 1}, {"GetFirewall", 2}, {"SetUPNPState", 3}},
         [](scripted::Platform& platform) { platform.on("GetFirewall").gives("enable_firewall", uint8_t{1}); }},
        {"zr_nexa_media_upnp_pinhole_state_get_v1",
         [] {
             byte = poisoned<uint8_t>();
             return zr_nexa_media_upnp_pinhole_state_get_v1(1, &byte);
         },
         {{"SetWWANProfileHandlePreference", 1}, {"GetUPNPState", 2}},
         nullptr,
         byte_untouched},
    };
}
