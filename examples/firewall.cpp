// Switches the firewall of a WWAN profile on, adds rules to it and lists them back.
//
//   firewall [wwan_handle]        profile 1 when left out
//
// It may be run again: a rule that is there already is not added a second time. Status 0: all is as wanted; 1:
// something was refused, the printed lines tell what; 2: a word that makes no sense.
#include <arpa/inet.h>
#include <inttypes.h>
#include <zr_nexa_client_api.h>

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <string>
#include <vector>

#include "result_words.h"

namespace {

using Rule = zr_nexa_firewall_entry_t;

struct ListedRule {
    uint32_t handle;
    Rule rule;
};

// Addresses of this area are in host byte order.
uint32_t ipv4(const char* text)
{
    return ntohl(inet_addr(text));
}

Rule https_to_the_web_server()
{
    Rule rule = {};
    rule.ip_version = ZR_NEXA_IP_V4;
    rule.ipv4_dst_valid = 1;
    rule.ipv4_dst_addr = ipv4("192.168.225.40");
    rule.ipv4_dst_mask = ipv4("255.255.255.255");
    rule.proto_valid = 1;
    rule.protocol = ZR_NEXA_FIREWALL_PROTO_TCP;
    rule.dst_port_valid = 1;
    rule.dst_port = 443;
    return rule;
}

Rule sip_from_the_provider()
{
    Rule rule = {};
    rule.ip_version = ZR_NEXA_IP_V4;
    rule.ipv4_src_valid = 1;
    rule.ipv4_src_addr = ipv4("198.51.100.0");
    rule.ipv4_src_mask = ipv4("255.255.255.0");
    rule.proto_valid = 1;
    rule.protocol = ZR_NEXA_FIREWALL_PROTO_TCP_UDP;
    rule.dst_port_valid = 1;
    rule.dst_port = 5060;
    rule.dst_port_range = 1;  // one more port behind the first
    return rule;
}

Rule echo_requests()
{
    Rule rule = {};
    rule.ip_version = ZR_NEXA_IP_V4;
    rule.proto_valid = 1;
    rule.protocol = ZR_NEXA_FIREWALL_PROTO_ICMP;
    rule.icmp_type_valid = 1;
    rule.icmp_type = 8;
    rule.icmp_code_valid = 1;
    return rule;
}

Rule tunnel_of_the_branch_office()
{
    Rule rule = {};
    rule.ip_version = ZR_NEXA_IP_V6;
    rule.ipv6_src_valid = 1;
    inet_pton(AF_INET6, "2001:db8:40::", rule.ipv6_src_addr);
    rule.ipv6_src_prefix_len = 48;
    rule.proto_valid = 1;
    rule.protocol = ZR_NEXA_FIREWALL_PROTO_ESP;
    rule.esp_spi_valid = 1;
    rule.esp_spi = 0x1001;
    return rule;
}

std::string ipv4_text(uint32_t address)
{
    char text[INET_ADDRSTRLEN];
    const in_addr network = {htonl(address)};
    return inet_ntop(AF_INET, &network, text, sizeof text);
}

std::string ipv6_text(const uint8_t (&address)[16])
{
    char text[INET6_ADDRSTRLEN];
    return inet_ntop(AF_INET6, address, text, sizeof text);
}

std::string ports(uint16_t first, uint16_t range)
{
    std::string text = std::to_string(first);
    if (range != 0) text += "-" + std::to_string(first + range);
    return text;
}

const char* protocol_name(uint32_t protocol)
{
    switch (protocol) {
        case ZR_NEXA_FIREWALL_PROTO_TCP:
            return "TCP";
        case ZR_NEXA_FIREWALL_PROTO_UDP:
            return "UDP";
        case ZR_NEXA_FIREWALL_PROTO_ICMP:
            return "ICMP";
        case ZR_NEXA_FIREWALL_PROTO_ICMPV6:
            return "ICMPv6";
        case ZR_NEXA_FIREWALL_PROTO_TCP_UDP:
            return "TCP and UDP";
        case ZR_NEXA_FIREWALL_PROTO_ESP:
            return "ESP";
        default:
            return "another protocol";
    }
}

// All that a rule says, on one line. A value counts only when its flag is set.
std::string describe(const Rule& rule)
{
    std::string text = rule.ip_version == ZR_NEXA_IP_V6 ? "IPv6" : "IPv4";
    if (rule.direction != 0) text += ", direction " + std::to_string(rule.direction);
    if (rule.ipv4_src_valid) text += ", from " + ipv4_text(rule.ipv4_src_addr) + "/" + ipv4_text(rule.ipv4_src_mask);
    if (rule.ipv4_dst_valid) text += ", to " + ipv4_text(rule.ipv4_dst_addr) + "/" + ipv4_text(rule.ipv4_dst_mask);
    if (rule.ipv4_tos_valid)
        text += ", TOS " + std::to_string(rule.ipv4_tos) + "/" + std::to_string(rule.ipv4_tos_mask);
    if (rule.ipv6_src_valid)
        text += ", from " + ipv6_text(rule.ipv6_src_addr) + "/" + std::to_string(rule.ipv6_src_prefix_len);
    if (rule.ipv6_dst_valid)
        text += ", to " + ipv6_text(rule.ipv6_dst_addr) + "/" + std::to_string(rule.ipv6_dst_prefix_len);
    if (rule.ipv6_tc_valid)
        text += ", traffic class " + std::to_string(rule.ipv6_tc) + "/" + std::to_string(rule.ipv6_tc_mask);
    if (rule.ipv6_nat_flag) text += ", NAT flag " + std::to_string(rule.ipv6_nat_flag);
    if (rule.proto_valid) text += std::string(", ") + protocol_name(rule.protocol);
    if (rule.src_port_valid) text += ", source port " + ports(rule.src_port, rule.src_port_range);
    if (rule.dst_port_valid) text += ", destination port " + ports(rule.dst_port, rule.dst_port_range);
    if (rule.icmp_type_valid) text += ", type " + std::to_string(rule.icmp_type);
    if (rule.icmp_code_valid) text += ", code " + std::to_string(rule.icmp_code);
    if (rule.esp_spi_valid) text += ", SPI " + std::to_string(rule.esp_spi);
    return text;
}

// The rules of a profile, first the IPv4 ones.
bool read_rules(uint32_t wwan_handle, std::vector<ListedRule>* rules)
{
    rules->clear();
    for (const uint32_t ip_family : {ZR_NEXA_IP_V4, ZR_NEXA_IP_V6}) {
        zr_nexa_firewall_entry_list_t list = {};  // values without their flag are left alone
        const char* const what = ip_family == ZR_NEXA_IP_V4 ? "read IPv4 rules" : "read IPv6 rules";
        if (!report(what, zr_nexa_firewall_entry_get_v1(wwan_handle, ip_family, &list))) return false;
        for (uint32_t i = 0; i < list.count; ++i) {
            rules->push_back({list.handle[i], list.entry[i]});
        }
    }
    return true;
}

bool has(const std::vector<ListedRule>& rules, const Rule& wanted)
{
    return std::any_of(rules.begin(), rules.end(),
                       [text = describe(wanted)](const ListedRule& listed) { return describe(listed.rule) == text; });
}

bool add_rule(uint32_t wwan_handle, const std::vector<ListedRule>& present, const Rule& wanted)
{
    const std::string what = "add " + describe(wanted);
    if (has(present, wanted)) {
        std::printf("%s: is there already\n", what.c_str());
        return true;
    }
    return report(what.c_str(), zr_nexa_firewall_entry_add_v1(wwan_handle, &wanted));
}

bool configure(uint32_t wwan_handle)
{
    std::printf("firewall of profile %" PRIu32 "\n", wwan_handle);
    if (!report("switch on, drop what no rule lets through", zr_nexa_firewall_config_set_v1(wwan_handle, 1, 0)))
        return false;

    std::vector<ListedRule> rules;
    if (!read_rules(wwan_handle, &rules)) return false;
    for (const Rule& wanted :
         {https_to_the_web_server(), sip_from_the_provider(), echo_requests(), tunnel_of_the_branch_office()}) {
        if (!add_rule(wwan_handle, rules, wanted)) return false;
    }

    uint8_t enabled = 0;
    uint8_t allowed = 0;
    if (!report("read switch", zr_nexa_firewall_config_get_v1(wwan_handle, &enabled, &allowed))) return false;
    std::printf("  the firewall is %s, other packets are %s\n", enabled ? "on" : "off",
                allowed ? "let through" : "dropped");
    if (!read_rules(wwan_handle, &rules)) return false;
    for (const ListedRule& listed : rules) {
        std::printf("  rule %" PRIu32 ": %s\n", listed.handle, describe(listed.rule).c_str());
    }
    return enabled == 1 && allowed == 0;
}

}  // namespace

int main(int argc, char** argv)
{
    unsigned long long wwan_handle = 1;
    char* end = nullptr;
    if (argc > 1) wwan_handle = std::strtoull(argv[1], &end, 10);
    if (argc > 2 || (argc == 2 && (end == argv[1] || *end != '\0')) || wwan_handle > UINT32_MAX) {
        std::fprintf(stderr, "usage: %s [wwan_handle]\n", argv[0]);
        return 2;
    }

    if (!report("open session", zr_nexa_client_init(nullptr))) return EXIT_FAILURE;
    bool done = configure(static_cast<uint32_t>(wwan_handle));
    if (!report("close session", zr_nexa_client_uninit())) done = false;
    return done ? EXIT_SUCCESS : EXIT_FAILURE;
}
