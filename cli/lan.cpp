// The LAN settings.
#include <zr_nexa/lan_addressing.h>

#include <cstdio>

#include "handlers.h"
#include "usage/lan.h"
#include "words.h"

namespace cli {

namespace {

constexpr int kUrlSize = ZR_NEXA_LAN_GWURL_SIZE;

}  // namespace

int lan_gwurl(int argc, char** argv)
{
    if (argc == 3) return usage(kGwurlUsage);
    if ((argc == 4 || argc == 5) && same(argv[3], "get")) {
        char url[kUrlSize] = {};
        uint32_t length = 0;
        const uint32_t code = zr_nexa_lan_gwurl_get_v1(url, &length);
        if (code != 0) return result(code);
        printf("LAN GWURL: %.*s\r\n", kUrlSize, url);
        return 0;
    }
    if (argc == 5 && same(argv[3], "set")) {
        // A longer word is cut to the block; the zero behind it ends the text that the interface measures.
        char url[kUrlSize + 1] = {};
        copy_block(url, kUrlSize, argv[4]);
        return result(zr_nexa_lan_gwurl_set_v1(url));
    }
    return invalid();
}

int lan_dhcp(int argc, char** argv)
{
    if (argc == 3) return usage(kDhcpUsage);
    if (argc != 5 && argc != 10) return invalid();
    const int lan_id = number(argv[4]);
    if (lan_id == 1) return invalid();

    zr_nexa_lan_dhcp_cfg_t cfg = {};
    if (same(argv[3], "get")) {
        const uint32_t code = zr_nexa_lan_dhcp_get_v1(number_u16(argv[4]), &cfg);
        if (code != 0) return result(code);
        puts("(V)LAN DHCP Config:\r");
        printf("(v)lan_id:       %d\r\n", lan_id);
        printf("Gateway IP:      %s\r\n", ipv4_text(cfg.gateway_ip));
        printf("Netmask:         %s\r\n", ipv4_text(cfg.netmask));
        printf("DHCP Start IP:   %s\r\n", ipv4_text(cfg.dhcp_start_ip));
        printf("DHCP End IP:     %s\r\n", ipv4_text(cfg.dhcp_end_ip));
        printf("DHCP Lease Time: %d\r\n", cfg.lease_time);
        return 0;
    }
    if (same(argv[3], "set") && argc == 10) {
        cfg.lease_time = number_u32(argv[9]);
        if (!ipv4_from_word(argv[5], &cfg.gateway_ip) || !ipv4_from_word(argv[6], &cfg.netmask) ||
            !ipv4_from_word(argv[7], &cfg.dhcp_start_ip) || !ipv4_from_word(argv[8], &cfg.dhcp_end_ip) ||
            cfg.lease_time == 0) {
            return invalid();
        }
        return result(zr_nexa_lan_dhcp_set_v1(number_u16(argv[4]), &cfg));
    }
    return invalid();
}

int lan_default_dhcp_enable(int argc, char** argv)
{
    if (argc == 3) return usage(kDefaultDhcpEnableUsage);
    if ((argc == 4 || argc == 5) && same(argv[3], "get")) {
        uint8_t enable = 0;
        const uint32_t code = zr_nexa_lan_dhcp_default_action_get_v1(&enable);
        if (code != 0) return result(code);
        puts(enable == 0 ? "DefaultDHCPEnable: 0(disable)\r" : "DefaultDHCPEnable: 1(enable)\r");
        return 0;
    }
    if (argc == 5 && same(argv[3], "set")) {
        const uint32_t action = number_u32(argv[4]);
        if (action > 1) return invalid();
        const uint32_t code = zr_nexa_lan_dhcp_default_action_set_v1(action);
        if (code != 0) return result(code);
        puts("Set DefaultDHCPEnable successful\r");
        return 0;
    }
    return invalid();
}

}  // namespace cli
