// The NAT settings.
#include <zr_nexa/nat.h>

#include <cstdio>

#include "answers.h"
#include "handlers.h"
#include "usage/nat.h"
#include "words.h"

namespace cli {

namespace {

// The protocols of the command line.
constexpr uint8_t kIcmp = 1;
constexpr uint8_t kTcp = 6;
constexpr uint8_t kUdp = 17;
constexpr uint8_t kEsp = 50;
constexpr uint8_t kTcpUdp = 253;

struct Rule {
    uint32_t private_ip;
    uint16_t private_port;
    uint16_t global_port;
    uint8_t protocol;
};

// The four words behind the handle. The protocol goes to the interface as it was typed, although the interface counts
// protocols in another way: scripts depend on what comes of it.
bool rule_from_words(char** argv, Rule* rule)
{
    if (!ipv4_from_word(argv[5], &rule->private_ip) || rule->private_ip == 0) return false;
    rule->private_port = number_u16(argv[6]);
    rule->global_port = number_u16(argv[7]);
    rule->protocol = number_u8(argv[8]);
    if (rule->protocol == kIcmp || rule->protocol == kEsp) {
        rule->private_port = 0;
        rule->global_port = 0;
        return true;
    }
    return rule->private_port != 0 && rule->global_port != 0 &&
           (rule->protocol == kTcp || rule->protocol == kUdp || rule->protocol == kTcpUdp);
}

}  // namespace

int nat_type(int argc, char** argv)
{
    if (argc == 3) return usage(kTypeUsage);
    if (argc != 5 && argc != 6) return invalid();
    const uint32_t wwan_handle = number_u32(argv[4]);
    if (wwan_handle == 0) return invalid();

    if (same(argv[3], "get")) {
        uint8_t type = 0;
        const uint32_t code = zr_nexa_nat_type_get_v1(wwan_handle, &type);
        if (code != 0) return result(code);
        if (type == ZR_NEXA_NAT_TYPE_SYMMETRIC) puts("NAT Type: SYMMETRIC NAT\r");
        if (type == ZR_NEXA_NAT_TYPE_PORT_RESTRICTED_CONE) puts("NAT Type: PORT RESTRICTED CONE NAT\r");
        if (type == ZR_NEXA_NAT_TYPE_FULL_CONE) puts("NAT Type: FULL CONE NAT\r");
        if (type == ZR_NEXA_NAT_TYPE_ADDRESS_RESTRICTED) puts("NAT Type: ADDRESS RESTRICTED NAT\r");
        return 0;
    }
    if (argc == 6 && same(argv[3], "set")) {
        const uint8_t type = number_u8(argv[5]);
        if (type > ZR_NEXA_NAT_TYPE_ADDRESS_RESTRICTED) return invalid();
        return result(zr_nexa_nat_type_set_v1(wwan_handle, type), "NAT Type set success\r");
    }
    return invalid();
}

int nat_ipv4dmz(int argc, char** argv)
{
    if (argc == 3) return usage(kIpv4DmzUsage);
    if (argc != 5 && argc != 6) return invalid();
    const uint32_t wwan_handle = number_u32(argv[4]);
    if (wwan_handle == 0) return invalid();

    if (same(argv[3], "get")) {
        uint8_t enable = 0;
        uint32_t dmz_ip = 0;
        const uint32_t code = zr_nexa_nat_ipv4dmz_get_v1(wwan_handle, &enable, &dmz_ip);
        if (code != 0) return result(code);
        if (enable == 0) {
            puts("NAT IPV4DMZ: disabled\r");
        } else {
            puts("NAT IPV4DMZ: enabled\r");
            printf("DMZ IP: %s\r\n", ipv4_text(dmz_ip));
        }
        return 0;
    }
    if (argc == 6 && same(argv[3], "enable")) {
        uint32_t dmz_ip = 0;
        if (!ipv4_from_word(argv[5], &dmz_ip)) return invalid();
        return result(zr_nexa_nat_ipv4dmz_set_v1(wwan_handle, 1, dmz_ip), "NAT IPV4DMZ enable success\r");
    }
    if (same(argv[3], "disable")) {
        return result(zr_nexa_nat_ipv4dmz_set_v1(wwan_handle, 0, 0), "NAT IPV4DMZ disable success\r");
    }
    return invalid();
}

int nat_ipv4portmapping(int argc, char** argv)
{
    if (argc == 3) return usage(kIpv4PortMappingUsage);
    if (argc != 5 && argc != 9) return invalid();
    const uint32_t wwan_handle = number_u32(argv[4]);
    if (wwan_handle == 0) return invalid();

    if (same(argv[3], "get")) {
        zr_nexa_nat_ipv4portmapping_list_t list = {};
        const uint32_t code = zr_nexa_nat_ipv4portmapping_get_v1(wwan_handle, &list);
        if (code != 0) return result(code);
        puts(list.count == 0 ? "NAT IPV4PortMapping: no port mapping rule\r" : "NAT IPV4PortMapping List:\r");
        for (uint32_t i = 0; i < list.count; ++i) {
            printf("private_ip:%s  private_port:%d  global_port:%d  protocol:%d\r\n", ipv4_text(list.private_ip[i]),
                   list.private_port[i], list.global_port[i], list.protocol[i]);
        }
        return 0;
    }
    Rule rule = {};
    if (argc != 9 || !rule_from_words(argv, &rule)) return invalid();

    if (same(argv[3], "add")) {
        return result(zr_nexa_nat_ipv4portmapping_add_v1(wwan_handle, rule.private_ip, rule.private_port,
                                                         rule.global_port, rule.protocol),
                      "NAT IPV4PortMapping add success\r");
    }
    if (same(argv[3], "del")) {
        return result(zr_nexa_nat_ipv4portmapping_del_v1(wwan_handle, rule.private_ip, rule.private_port,
                                                         rule.global_port, rule.protocol),
                      "NAT IPV4PortMapping delete success\r");
    }
    return invalid();
}

int nat_routingbh(int argc, char** argv)
{
    if (argc == 3) return usage(kRoutingBhUsage);
    if (argc == 4 && same(argv[3], "get")) {
        uint32_t routingbh = 0;
        const uint32_t code = zr_nexa_nat_routingbh_get_v1(&routingbh);
        if (code != 0) return result(code);
        puts("NAT RoutingBH Config:\r");
        printf("Routing Behind = %d\r\n", routingbh);
        return 0;
    }
    if (argc == 5 && same(argv[3], "set")) {
        const uint32_t routingbh = number_u32(argv[4]);
        if (routingbh > 1) return invalid();
        return result(zr_nexa_nat_routingbh_set_v1(routingbh),
                      "NAT RoutingBH modify success\r\nneed reboot to take effect\r");
    }
    return invalid();
}

}  // namespace cli
