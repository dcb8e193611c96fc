#include "api_test.h"
#include "fault_sweep.h"

std::vector<SweepRow> lan_addressing_sweep_rows()
{
    static char url[ZR_NEXA_LAN_GWURL_SIZE];
    static uint32_t word;
    static uint8_t first;
    static uint8_t second;
    static zr_nexa_lan_dhcp_cfg_t cfg;
    return {
        {"zr_nexa_lan_gwurl_set_v1", [] { return zr_nexa_lan_gwurl_set_v1("router.example"); }, {{"SetGatewayUrl", 1}}},
        {"zr_nexa_lan_gwurl_get_v1",
         [] {
             std::memset(url, 0xA5, sizeof(url));
             word = poisoned<uint32_t>();
             return zr_nexa_lan_gwurl_get_v1(url, &word);
         },
         {{"GetGatewayUrl", 1}},
         nullptr,
         [] { return is_poisoned(url) && is_poisoned(word); }},
        // Without the bridge it goes on to the default DHCP action.
        {"zr_nexa_lan_dhcp_srvctl_set_v1",
         [] { return zr_nexa_lan_dhcp_srvctl_set_v1(0, 1); },
         {{"SelectLANBridge", 1, OnFailure::kGoesOn}, {"GetLANConfig", 2}, {"SetLANConfig", 3}}},
        {"zr_nexa_lan_dhcp_srvctl_get_v1",
         [] {
             word = poisoned<uint32_t>();
             return zr_nexa_lan_dhcp_srvctl_get_v1(0, &word);
         },
         {{"SelectLANBridge", 1, OnFailure::kGoesOn}, {"GetLANConfig", 2}},
         nullptr,
         [] { return is_poisoned(word); }},
        {"zr_nexa_lan_dhcp_set_v1",
         [] {
             cfg = {};
             return zr_nexa_lan_dhcp_set_v1(0, &cfg);
         },
         {{"SelectLANBridge", 1}, {"GetLANConfig", 2}, {"SetLANConfig", 3}, {"ActivateLAN", 4}}},
        {"zr_nexa_lan_dhcp_get_v1",
         [] {
             cfg = poisoned<zr_nexa_lan_dhcp_cfg_t>();
             return zr_nexa_lan_dhcp_get_v1(0, &cfg);
         },
         {{"SelectLANBridge", 1}, {"GetLANConfig", 2}},
         nullptr,
         [] { return is_poisoned(cfg); }},
        {"zr_nexa_lan_dhcp_default_action_get_v1",
         [] {
             first = poisoned<uint8_t>();
             return zr_nexa_lan_dhcp_default_action_get_v1(&first);
         },
         {{"ZR_GetDefaultEnableDHCP", 1}},
         nullptr,
         [] { return is_poisoned(first); }},
        {"zr_nexa_lan_dhcp_default_action_set_v1",
         [] { return zr_nexa_lan_dhcp_default_action_set_v1(1); },
         {{"ZR_SetDefaultEnableDHCP", 1}}},
        {"zr_nexa_lan_ipv4v6_set_v1",
         [] { return zr_nexa_lan_ipv4v6_set_v1(1, 0); },
         {{"EnableIPV4", 1}, {"DisableIPV6", 4}}},
        // The IPv4 switch is written before IPv6 is read; only the IPv6 one stays as it was.
        {"zr_nexa_lan_ipv4v6_get_v1",
         [] {
             first = poisoned<uint8_t>();
             second = poisoned<uint8_t>();
             return zr_nexa_lan_ipv4v6_get_v1(&first, &second);
         },
         {{"GetIPv4State", 2}, {"GetIPv6State", 3}},
         nullptr,
         [] { return is_poisoned(second); }},
    };
}
