// The LAN settings.
#include <zr_nexa/lan_addressing.h>
#include <zr_nexa/lan_passthrough.h>
#include <zr_nexa/lan_vlan.h>
#include <zr_nexa/mac_text.h>

#include <cstdio>

#include "answers.h"
#include "handlers.h"
#include "usage/lan.h"
#include "words.h"

namespace cli {

namespace {

bool is_vlan_id(uint16_t vlan_id)
{
    return vlan_id >= 2 && vlan_id <= ZR_NEXA_LAN_ID_MAX;
}

bool is_vlan_type(uint8_t vlan_type)
{
    return vlan_type >= ZR_NEXA_LAN_VLAN_IFACE_ETH && vlan_type <= ZR_NEXA_LAN_VLAN_IFACE_ETH_NIC2;
}

bool is_filter_port(uint16_t port)
{
    return port >= 1 && port <= ZR_NEXA_LAN_IPPTGWFILTER_PORT_MAX;
}

// IPPTNAT and IPPTNATPDN print the same label. A mode without a line prints nothing.
void print_ippt_nat(int mode)
{
    if (mode == ZR_NEXA_LAN_IPPTNAT_WITH_NAT) puts("LAN IPPTNAT: WithNAT\r");
    if (mode == ZR_NEXA_LAN_IPPTNAT_WITHOUT_NAT) puts("LAN IPPTNAT: WithoutNAT\r");
    if (mode == ZR_NEXA_LAN_IPPTNAT_WITH_NAT_ONE_DEVICE) puts("LAN IPPTNAT: WithNAT only one device\r");
}

}  // namespace

int lan_gwurl(int argc, char** argv)
{
    if (argc == 3) return usage(kGwurlUsage);
    if ((argc == 4 || argc == 5) && same(argv[3], "get")) {
        char url[ZR_NEXA_LAN_GWURL_SIZE] = {};
        uint32_t length = 0;
        const uint32_t code = zr_nexa_lan_gwurl_get_v1(url, &length);
        if (code != 0) return result(code);
        printf("LAN GWURL: %.*s\r\n", ZR_NEXA_LAN_GWURL_SIZE, url);
        return 0;
    }
    if (argc == 5 && same(argv[3], "set")) {
        // A longer word is cut to the block; the zero behind it ends the text that the interface measures.
        char url[ZR_NEXA_LAN_GWURL_SIZE + 1] = {};
        copy_block(url, ZR_NEXA_LAN_GWURL_SIZE, argv[4]);
        return result(zr_nexa_lan_gwurl_set_v1(url));
    }
    return invalid();
}

int lan_dhcp(int argc, char** argv)
{
    if (argc == 3) return usage(kDhcpUsage);
    if (argc != 5 && argc != 10) return invalid();
    // Neither check nor print has the cut: 65537 passes, is printed as 65537 and is LAN 1.
    if (number_s32(argv[4]) == 1) return invalid();
    const uint16_t lan_id = number_u16(argv[4]);

    zr_nexa_lan_dhcp_cfg_t cfg = {};
    if (same(argv[3], "get")) {
        const uint32_t code = zr_nexa_lan_dhcp_get_v1(lan_id, &cfg);
        if (code != 0) return result(code);
        puts("(V)LAN DHCP Config:\r");
        printf("(v)lan_id:       %d\r\n", number_s32(argv[4]));
        printf("Gateway IP:      %s\r\n", ipv4_text(cfg.gateway_ip));
        printf("Netmask:         %s\r\n", ipv4_text(cfg.netmask));
        printf("DHCP Start IP:   %s\r\n", ipv4_text(cfg.dhcp_start_ip));
        printf("DHCP End IP:     %s\r\n", ipv4_text(cfg.dhcp_end_ip));
        printf("DHCP Lease Time: %d\r\n", cfg.lease_time);
        return 0;
    }
    if (argc == 10 && same(argv[3], "set")) {
        cfg.lease_time = number_u32(argv[9]);
        if (!ipv4_from_word(argv[5], &cfg.gateway_ip) || !ipv4_from_word(argv[6], &cfg.netmask) ||
            !ipv4_from_word(argv[7], &cfg.dhcp_start_ip) || !ipv4_from_word(argv[8], &cfg.dhcp_end_ip) ||
            cfg.lease_time == 0) {
            return invalid();
        }
        return result(zr_nexa_lan_dhcp_set_v1(lan_id, &cfg));
    }
    return invalid();
}

int lan_defaultdhcpenable(int argc, char** argv)
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
        return result(zr_nexa_lan_dhcp_default_action_set_v1(action), "Set DefaultDHCPEnable successful\r");
    }
    return invalid();
}

int lan_vlan(int argc, char** argv)
{
    if (argc == 3) return usage(kVlanUsage);
    if ((argc == 4 || argc == 6 || argc == 7) && same(argv[3], "get")) {
        zr_nexa_lan_vlan_list_t list = {};
        const uint32_t code = zr_nexa_lan_vlan_get_v1(&list);
        if (code != 0) return result(code);
        puts(list.count == 0 ? "LAN VLAN List is empty\r" : "LAN VLAN List:\r");
        for (int i = 0; i < list.count; ++i) {
            printf("vlan_id:%d  vlan_type:%d  vlan_accelerated:%d\r\n", list.vlan_id[i], list.phy_iface_type[i],
                   list.is_accelerated[i]);
        }
        return 0;
    }
    if (argc == 7 && same(argv[3], "add")) {
        const uint16_t vlan_id = number_u16(argv[4]);
        const uint8_t vlan_type = number_u8(argv[5]);
        const uint8_t vlan_accelerated = number_u8(argv[6]);
        if (!is_vlan_id(vlan_id) || !is_vlan_type(vlan_type) || vlan_accelerated > 1) return invalid();
        return result(zr_nexa_lan_vlan_add_v1(vlan_id, vlan_type, vlan_accelerated));
    }
    if (argc == 6 && same(argv[3], "del")) {
        const uint16_t vlan_id = number_u16(argv[4]);
        const uint8_t vlan_type = number_u8(argv[5]);
        if (!is_vlan_id(vlan_id) || !is_vlan_type(vlan_type)) return invalid();
        return result(zr_nexa_lan_vlan_del_v1(vlan_id, vlan_type));
    }
    return invalid();
}

int lan_ipptnat(int argc, char** argv)
{
    if (argc == 3) return usage(kIpptNatUsage);
    if ((argc == 4 || argc == 5) && same(argv[3], "get")) {
        uint8_t mode = ZR_NEXA_LAN_IPPTNAT_WITH_NAT;
        const uint32_t code = zr_nexa_lan_ipptnat_get_v1(&mode);
        if (code != 0) return result(code);
        print_ippt_nat(mode);
        return 0;
    }
    if (argc == 5 && same(argv[3], "set")) {
        const uint8_t mode = number_u8(argv[4]);
        if (mode > ZR_NEXA_LAN_IPPTNAT_WITH_NAT_ONE_DEVICE) return invalid();
        return result(zr_nexa_lan_ipptnat_set_v1(mode));
    }
    return invalid();
}

int lan_ipptnatpdn(int argc, char** argv)
{
    if (argc == 3) return usage(kIpptNatPdnUsage);
    if (argc != 5 && argc != 6) return invalid();
    const uint16_t lan_id = number_u16(argv[4]);
    if (!is_lan_id(lan_id)) return invalid();

    if (same(argv[3], "get")) {
        int8_t mode = ZR_NEXA_LAN_IPPTNAT_DEFAULT;
        const uint32_t code = zr_nexa_lan_ipptnatpdn_get_v1(lan_id, &mode);
        if (code != 0) return result(code);
        if (mode == ZR_NEXA_LAN_IPPTNAT_DEFAULT) {
            puts("LAN IPPTNAT: Default config, use the global value of IPPTNAT configuration\r");
        } else {
            print_ippt_nat(mode);
        }
        return 0;
    }
    if (argc == 6 && same(argv[3], "set")) {
        const int8_t mode = number_s8(argv[5]);
        if (mode < ZR_NEXA_LAN_IPPTNAT_DEFAULT || mode > ZR_NEXA_LAN_IPPTNAT_WITH_NAT_ONE_DEVICE) return invalid();
        return result(zr_nexa_lan_ipptnatpdn_set_v1(lan_id, mode));
    }
    return invalid();
}

int lan_ippt(int argc, char** argv)
{
    if (argc == 3) return usage(kIpptUsage);
    if (argc != 5 && argc != 6 && argc != 7) return invalid();
    const uint16_t lan_id = number_u16(argv[4]);
    if (!is_lan_id(lan_id)) return invalid();

    zr_nexa_lan_ippt_t rec = {};
    rec.lan_id = lan_id;
    if (same(argv[3], "get")) {
        const uint32_t code = zr_nexa_lan_ippt_get_v1(&rec);
        if (code != 0) return result(code);
        puts("LAN IPPT Config:\r");
        // One line, which the dispatcher's verdict ends: scripts cut it at the dashes.
        printf("lan_id: %d", rec.lan_id);
        if (rec.ippt_adaptive != 0) {
            printf("adaptive ippt is enable: %d", rec.ippt_adaptive);
            printf("current effective ippt configuration:");
        }
        printf("--ippt_mode: %d", rec.ippt_mode);
        printf("--ippt_host_mac: %.*s", ZR_NEXA_LAN_IPPT_MAC_SIZE, rec.host_mac);
        printf("--ippt_host_name: %.*s", ZR_NEXA_LAN_IPPT_NAME_SIZE, rec.host_name);
        return 0;
    }
    if (argc == 6 && same(argv[3], "adaptive")) {
        rec.ippt_adaptive_enable = 1;
        rec.ippt_adaptive = number_u8(argv[5]);
        if (rec.ippt_adaptive > ZR_NEXA_LAN_IPPT_ADAPTIVE_MAX) return invalid();
        return result(zr_nexa_lan_ippt_set_v1(&rec));
    }
    if ((argc == 6 || argc == 7) && same(argv[3], "set")) {
        rec.ippt_mode = number_u8(argv[5]);
        if (rec.ippt_mode > ZR_NEXA_LAN_IPPT_ETH_NIC2) return invalid();
        if (rec.ippt_mode != ZR_NEXA_LAN_IPPT_OFF) {
            // On a VLAN passthrough can only be disabled, whatever the usage text says.
            if (lan_id != 0 || argc == 6) return invalid();
            if (rec.ippt_mode == ZR_NEXA_LAN_IPPT_USB) {
                copy_block(rec.host_name, argv[6]);
            } else {
                copy_block(rec.host_mac, argv[6]);
                if (!zr_nexa_is_mac_text(rec.host_mac, sizeof(rec.host_mac))) return invalid();
            }
        }
        return result(zr_nexa_lan_ippt_set_v1(&rec));
    }
    return invalid();
}

int lan_ipptgwfilter(int argc, char** argv)
{
    if (argc == 3) return usage(kIpptGwFilterUsage);
    if (argc != 5 && argc != 6 && argc != 8) return invalid();
    const uint16_t lan_id = number_u16(argv[4]);
    if (!is_lan_id(lan_id)) return invalid();

    if (same(argv[3], "get")) {
        zr_nexa_lan_ipptgwfilter_list_t list = {};
        const uint32_t code = zr_nexa_lan_ipptgwfilter_get_v1(lan_id, &list);
        if (code != 0) return result(code);
        puts(list.protocol[0] != 0 ? "LAN IPPTGWFilter:\r" : "LAN IPPTGWFilter: No GW Filter\r");
        for (int i = 0; i < ZR_NEXA_LAN_IPPTGWFILTERS_MAX; ++i) {
            if (list.protocol[i] == 0) continue;
            printf("filterID: %d protocol: %d start_port: %d end_port %d\r\n", i + 1, list.protocol[i],
                   list.start_port[i], list.end_port[i]);
        }
        return 0;
    }
    if (argc == 8 && same(argv[3], "add")) {
        const uint32_t protocol = number_u32(argv[5]);
        const uint16_t start_port = number_u16(argv[6]);
        const uint16_t end_port = number_u16(argv[7]);
        // The interface's third protocol is not offered here.
        if (protocol != ZR_NEXA_LAN_IPPTGWFILTER_TCP && protocol != ZR_NEXA_LAN_IPPTGWFILTER_UDP) return invalid();
        if (!is_filter_port(start_port) || !is_filter_port(end_port) || end_port < start_port) return invalid();
        return result(zr_nexa_lan_ipptgwfilter_add_v1(lan_id, protocol, start_port, end_port));
    }
    if (argc == 6 && same(argv[3], "del")) {
        const uint8_t filter_id = number_u8(argv[5]);
        if (filter_id < 1 || filter_id > ZR_NEXA_LAN_IPPTGWFILTERS_MAX) return invalid();
        return result(zr_nexa_lan_ipptgwfilter_del_v1(lan_id, filter_id));
    }
    return invalid();
}

}  // namespace cli
