#include "api_test.h"
#include "fault_sweep.h"

namespace {

zr_nexa_lan_ippt_t ippt(uint8_t mode, const char* host_mac, const char* host_name)
{
    zr_nexa_lan_ippt_t rec = {};
    rec.ippt_mode = mode;
    std::string(host_mac).copy(rec.host_mac, sizeof(rec.host_mac));
    std::string(host_name).copy(rec.host_name, sizeof(rec.host_name));
    return rec;
}

}  // namespace

std::vector<SweepRow> lan_passthrough_sweep_rows()
{
    static uint8_t mode;
    static int8_t pdn;
    static zr_nexa_lan_ippt_t rec;
    static zr_nexa_lan_ipptgwfilter_list_t filters;
    static zr_nexa_lan_swpathfilter_list_t addresses;
    return {
        {"zr_nexa_lan_ipptnat_set_v1", [] { return zr_nexa_lan_ipptnat_set_v1(1); }, {{"SetFeatureMode", 1}}},
        {"zr_nexa_lan_ipptnat_get_v1",
         [] {
             mode = poisoned<uint8_t>();
             return zr_nexa_lan_ipptnat_get_v1(&mode);
         },
         {{"GetFeatureMode", 1}},
         [](scripted::Platform& platform) {
             platform.on("GetFeatureMode")
                 .gives("features", 1ULL)
                 .gives("config", qcmap_client_feature_mode_config{1, 2});
         },
         [] { return is_poisoned(mode); }},
        {"zr_nexa_lan_ipptnatpdn_set_v1",
         [] { return zr_nexa_lan_ipptnatpdn_set_v1(100, 2); },
         {{"SelectLANBridge", 1}, {"ZR_SetIPPTNATPDN", 2}, {"ZR_GetIPPTNATPDN", 3}},
         [](scripted::Platform& platform) { platform.on("ZR_GetIPPTNATPDN").gives("pdn", int{2}); }},
        {"zr_nexa_lan_ipptnatpdn_get_v1",
         [] {
             pdn = poisoned<int8_t>();
             return zr_nexa_lan_ipptnatpdn_get_v1(100, &pdn);
         },
         {{"SelectLANBridge", 1}, {"ZR_GetIPPTNATPDN", 2}},
         nullptr,
         [] { return is_poisoned(pdn); }},
        // Disabling makes the most calls; the other requests have rows of their own in the area's test.
        {"zr_nexa_lan_ippt_set_v1",
         [] {
             const zr_nexa_lan_ippt_t off = ippt(0, "", "");
             return zr_nexa_lan_ippt_set_v1(&off);
         },
         {{"SelectLANBridge", 1}, {"SetIPPassthroughConfig", 3}, {"SetIPPassthroughConfig", 6}}},
        {"zr_nexa_lan_ippt_get_v1",
         [] {
             rec = poisoned<zr_nexa_lan_ippt_t>();
             rec.lan_id = 4094;
             return zr_nexa_lan_ippt_get_v1(&rec);
         },
         {{"SelectLANBridge", 1}, {"GetIPPassthroughConfig", 2}},
         [](scripted::Platform& platform) {
             platform.on("GetIPPassthroughConfig")
                 .gives("mode", QCMAP_MSGR_IP_PASSTHROUGH_MODE_ENABLED_V01)
                 .gives("config", qcmap_msgr_ip_passthrough_config_v01{4, 0, 0, {1, 2, 3, 4, 5, 6}, {}});
         },
         [] {
             zr_nexa_lan_ippt_t as_it_was = poisoned<zr_nexa_lan_ippt_t>();
             as_it_was.lan_id = 4094;
             return std::memcmp(&rec, &as_it_was, sizeof(rec)) == 0;
         }},
        {"zr_nexa_lan_ipptgwfilter_add_v1",
         [] { return zr_nexa_lan_ipptgwfilter_add_v1(0, 1, 80, 80); },
         {{"SelectLANBridge", 1},
          {"GetIPPassthroughSoftwarePathFilters", 2},
          {"SetIPPassthroughSoftwarePathFilters", 3}}},
        // Its output is cleared in any case: the area's test shows it.
        {"zr_nexa_lan_ipptgwfilter_get_v1",
         [] { return zr_nexa_lan_ipptgwfilter_get_v1(0, &filters); },
         {{"SelectLANBridge", 1}, {"GetIPPassthroughSoftwarePathFilters", 2}}},
        {"zr_nexa_lan_ipptgwfilter_del_v1",
         [] { return zr_nexa_lan_ipptgwfilter_del_v1(0, 1); },
         {{"SelectLANBridge", 1},
          {"GetIPPassthroughSoftwarePathFilters", 2},
          {"SetIPPassthroughSoftwarePathFilters", 3}},
         [](scripted::Platform& platform) {
             platform.on("GetIPPassthroughSoftwarePathFilters")
                 .gives("list", qcmap_msgr_sw_path_filters_conf_t{2, 1, 0, {{80, 90, 1}}});
         }},
        {"zr_nexa_lan_swpathfilter_add_v1",
         [] { return zr_nexa_lan_swpathfilter_add_v1(0x04030201); },
         {{"ZR_AddIPToSWPathFilters", 1}}},
        {"zr_nexa_lan_swpathfilter_del_v1",
         [] { return zr_nexa_lan_swpathfilter_del_v1(0x04030201); },
         {{"ZR_DeleteIPFromSWPathFilters", 1}}},
        {"zr_nexa_lan_swpathfilter_get_v1",
         [] {
             addresses = poisoned<zr_nexa_lan_swpathfilter_list_t>();
             return zr_nexa_lan_swpathfilter_get_v1(&addresses);
         },
         {{"ZR_GetIPFromSWPathFilters", 1}},
         nullptr,
         [] { return is_poisoned(addresses); }},
    };
}
