#include "fault_sweep.h"

std::vector<SweepRow> lan_addressing_sweep_rows()
{
    static char url[ZR_NEXA_LAN_GWURL_SIZE];
    static uint32_t word;
    static uint8_t first;
    static uint8_t second;
    static const zr_nexa_lan_dhcp_cfg_t given = {};
    static zr_nexa_lan_dhcp_cfg_t cfg;
    const auto without_bridge = [](scripted::Platform& platform) { platform.on("SelectLANBridge").fails(25); };
    // The bridge's switch shows in the record of a failed reading too, as far as it was read.
    const auto switch_is_6 = [](scripted::Platform& platform) {
        qcmap_msgr_lan_config_v01 lan = {};
        lan.enable_dhcp = 6;
        platform.on("GetLANConfig").gives("lan", lan);
    };
    const SweepStep select = {"SelectLANBridge", 1, "Select LAN Bridge (LAN_ID=8) error %d"};
    const SweepStep select_or_default = {"SelectLANBridge", 1, kLogsNothing, OnFailure::kGoesOn};
    return {
        {SWEPT(zr_nexa_lan_gwurl_set_v1, ("a.b")), {{"SetGatewayUrl", 1, "Set gateway url error %d, gwurl:a.b"}}},
        // What the caller's buffer and length hold is shown as it is.
        {SWEPT(zr_nexa_lan_gwurl_get_v1, (url, &word)),
         {{"GetGatewayUrl", 1,
           "Get gateway url error %d, gwurl:" + std::string(128, '\xA5') + " gwurl_len=-1515870811"}},
         {output(url), output(word)}},
        {SWEPT(zr_nexa_lan_dhcp_srvctl_set_v1, (8, 257)),
         {select_or_default,
          {"GetLANConfig", 2, "Get LAN ID 8 DHCP Server(enable_dhcp=257) config error %d"},
          {"SetLANConfig", 3, "Set LAN ID 8 DHCP Server(enable_dhcp=257) config error %d"}}},
        {SWEPT(zr_nexa_lan_dhcp_srvctl_set_v1, (8, 1)),
         {select_or_default, {"ZR_SetDefaultEnableDHCP", 1, "Set ZR DHCP Default Action failure"}},
         {},
         without_bridge},
        {SWEPT(zr_nexa_lan_dhcp_srvctl_get_v1, (8, &word)),
         {select_or_default, {"GetLANConfig", 2, "Get LAN ID 8 DHCP Server(enable_dhcp=6) config error %d"}},
         {output(word)},
         switch_is_6},
        {SWEPT(zr_nexa_lan_dhcp_srvctl_get_v1, (8, &word)),
         {select_or_default, {"ZR_GetDefaultEnableDHCP", 1, "Get ZR DHCP Default Action failure"}},
         {output(word)},
         without_bridge},
        {SWEPT(zr_nexa_lan_dhcp_set_v1, (8, &given)),
         {select,
          {"GetLANConfig", 2, "Get LAN ID 8 DHCP Server(enable_dhcp=6) config error %d"},
          {"SetLANConfig", 3, "Set LAN (LAN_ID=8) config error %d"},
          {"ActivateLAN", 4, "Activate LAN (LAN_ID=8) error %d"}},
         {},
         switch_is_6},
        {SWEPT(zr_nexa_lan_dhcp_get_v1, (8, &cfg)),
         {select, {"GetLANConfig", 2, "Get LAN (LAN_ID=8) config error %d"}},
         {output(cfg)},
         switch_is_6},
        {SWEPT(zr_nexa_lan_dhcp_default_action_get_v1, (&first)),
         {{"ZR_GetDefaultEnableDHCP", 1, "Get DHCP Default Action failure"}},
         {output(first)}},
        {SWEPT(zr_nexa_lan_dhcp_default_action_set_v1, (1)),
         {{"ZR_SetDefaultEnableDHCP", 1, "Set DHCP Default Action failure"}}},
        {SWEPT(zr_nexa_lan_ipv4v6_set_v1, (1, 1)),
         {{"EnableIPV4", 1, "Enable NEXA IPv4 cfg error %d"}, {"EnableIPV6", 3, "Enable NEXA IPv6 cfg error %d"}}},
        {SWEPT(zr_nexa_lan_ipv4v6_set_v1, (0, 0)),
         {{"DisableIPV4", 2, "Disable NEXA IPv4 cfg error %d"}, {"DisableIPV6", 4, "Disable NEXA IPv6 cfg error %d"}}},
        // The IPv4 switch is written before IPv6 is read; only the IPv6 one stays as it was.
        {SWEPT(zr_nexa_lan_ipv4v6_get_v1, (&first, &second)),
         {{"GetIPv4State", 2, "Get NEXA IPv4 cfg error %d"}, {"GetIPv6State", 3, "Get NEXA IPv6 cfg error %d"}},
         {output(second)}},
    };
}
