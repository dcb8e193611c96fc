#include <cstddef>

#include "fault_sweep.h"

namespace {

zr_nexa_lan_ippt_t ippt(uint8_t mode, const char* host_mac, const char* host_name, uint8_t adaptive_enable = 0)
{
    zr_nexa_lan_ippt_t rec = {};
    rec.ippt_mode = mode;
    rec.ippt_adaptive_enable = adaptive_enable;
    std::string(host_mac).copy(rec.host_mac, sizeof(rec.host_mac));
    std::string(host_name).copy(rec.host_name, sizeof(rec.host_name));
    return rec;
}

}  // namespace

std::vector<SweepRow> lan_passthrough_sweep_rows()
{
    static uint8_t mode;
    static int8_t pdn;
    static const zr_nexa_lan_ippt_t adaptive = ippt(0, "", "", 1);
    static const zr_nexa_lan_ippt_t off = ippt(0, "", "");
    static const zr_nexa_lan_ippt_t eth = ippt(1, "00:01:02:03:04:05", "");
    static const zr_nexa_lan_ippt_t wlan = ippt(2, "00:01:02:03:04:05", "");
    static const zr_nexa_lan_ippt_t usb = ippt(3, "", "pc");
    static const zr_nexa_lan_ippt_t eth_nic2 = ippt(4, "00:01:02:03:04:05", "");
    static zr_nexa_lan_ippt_t rec;
    static zr_nexa_lan_ipptgwfilter_list_t filters;
    static zr_nexa_lan_swpathfilter_list_t addresses;
    const SweepStep select = {"SelectLANBridge", 1, "Select LAN Bridge (LAN_ID=7) error %d"};
    const SweepStep select_silently = {"SelectLANBridge", 1, kLogsNothing};
    const SweepStep read_filters = {"GetIPPassthroughSoftwarePathFilters", 2, "Get IPPT SW Filters error %d"};
    const SweepStep write_filters = {"SetIPPassthroughSoftwarePathFilters", 3, "Set IPPT SW Filters error %d"};
    const auto one_filter = [](scripted::Platform& platform) {
        platform.on("GetIPPassthroughSoftwarePathFilters")
            .gives("list", qcmap_msgr_sw_path_filters_conf_t{2, 1, 0, {{80, 90, 1}}});
    };
    const auto passthrough_request = [&](SweptCall call, uint32_t step) {
        return SweepRow{call, {select_silently, {"SetIPPassthroughConfig", step, kLogsNothing}}};
    };
    rec.lan_id = 7;
    return {
        {SWEPT(zr_nexa_lan_ipptnat_set_v1, (2)),
         {{"SetFeatureMode", 1, "Set Feature Mode error %d, features=1 feature_mode=3"}}},
        {SWEPT(zr_nexa_lan_ipptnat_get_v1, (&mode)),
         {{"GetFeatureMode", 1, "Get Feature Mode error %d"}},
         {output(mode)},
         [](scripted::Platform& platform) {
             platform.on("GetFeatureMode")
                 .gives("features", 1ULL)
                 .gives("config", qcmap_client_feature_mode_config{1, 2});
         }},
        {SWEPT(zr_nexa_lan_ipptnatpdn_set_v1, (100, 2)),
         {select_silently,
          {"ZR_SetIPPTNATPDN", 2, "Set IPPTNATPDN error %d, lan=100 IPPTNATPDN=2"},
          {"ZR_GetIPPTNATPDN", 3, "Get IPPTNATPDN error %d, lan=100 IPPTNATPDN=2"}},
         {},
         [](scripted::Platform& platform) { platform.on("ZR_GetIPPTNATPDN").gives("pdn", int{2}); }},
        // The record shows what the caller's byte holds.
        {SWEPT(zr_nexa_lan_ipptnatpdn_get_v1, (100, &pdn)),
         {select_silently, {"ZR_GetIPPTNATPDN", 2, "Get IPPTNATPDN error %d, lan=100 IPPTNATPDN=-91"}},
         {output(pdn)},
         [](scripted::Platform& platform) { platform.on("ZR_GetIPPTNATPDN").gives("pdn", int{1}); }},
        passthrough_request(SWEPT(zr_nexa_lan_ippt_set_v1, (&adaptive)), 2),
        passthrough_request(SWEPT(zr_nexa_lan_ippt_set_v1, (&eth)), 4),
        passthrough_request(SWEPT(zr_nexa_lan_ippt_set_v1, (&wlan)), 4),
        passthrough_request(SWEPT(zr_nexa_lan_ippt_set_v1, (&eth_nic2)), 4),
        passthrough_request(SWEPT(zr_nexa_lan_ippt_set_v1, (&usb)), 5),
        {SWEPT(zr_nexa_lan_ippt_set_v1, (&off)),
         {select_silently, {"SetIPPassthroughConfig", 3, kLogsNothing}, {"SetIPPassthroughConfig", 6, kLogsNothing}}},
        {SWEPT(zr_nexa_lan_ippt_get_v1, (&rec)),
         {select, {"GetIPPassthroughConfig", 2, "Get IP Passthrough Config (LAN_ID=7) error %d"}},
         {{&rec.ippt_adaptive_enable, sizeof(rec) - offsetof(zr_nexa_lan_ippt_t, ippt_adaptive_enable)}},
         [](scripted::Platform& platform) {
             platform.on("GetIPPassthroughConfig")
                 .gives("mode", QCMAP_MSGR_IP_PASSTHROUGH_MODE_ENABLED_V01)
                 .gives("config", qcmap_msgr_ip_passthrough_config_v01{4, 0, 0, {1, 2, 3, 4, 5, 6}, {}});
         }},
        {SWEPT(zr_nexa_lan_ipptgwfilter_add_v1, (7, 1, 80, 80)), {select, read_filters, write_filters}, {}, one_filter},
        // Its output is cleared in any case: the area's test shows it.
        {SWEPT(zr_nexa_lan_ipptgwfilter_get_v1, (7, &filters)), {select, read_filters}, {}, one_filter},
        {SWEPT(zr_nexa_lan_ipptgwfilter_del_v1, (7, 1)), {select, read_filters, write_filters}, {}, one_filter},
        {SWEPT(zr_nexa_lan_swpathfilter_add_v1, (0xFFFFFFFE)),
         {{"ZR_AddIPToSWPathFilters", 1, "Add SW Path Filter IP failure, ipv4_address:-2"}}},
        {SWEPT(zr_nexa_lan_swpathfilter_del_v1, (17)),
         {{"ZR_DeleteIPFromSWPathFilters", 1, "Delete SW Path Filter IP failure, ipv4_address:17"}}},
        {SWEPT(zr_nexa_lan_swpathfilter_get_v1, (&addresses)),
         {{"ZR_GetIPFromSWPathFilters", 1, "Get SW Path Filter IP failure"}},
         {output(addresses)},
         [](scripted::Platform& platform) { platform.on("ZR_GetIPFromSWPathFilters").gives("count", int32_t{2}); }},
    };
}
