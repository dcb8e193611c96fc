// LAN addressing: addresses and DHCP server of a LAN. Gateway URL, default DHCP action, IPv4 and IPv6 are the module's.
#include <zr_nexa/lan_addressing.h>

#include <algorithm>

#include "keys.h"

namespace ctl {
namespace {

constexpr uint32_t kAny = 0xffffffff;

// The modes without addresses. What is none of them and has no addresses either is stored as 0.
const Words kDnsModes = {{1, "mode-1"}, {2, "mode-2"}, {0, "unset"}};

Value dns_of(const zr_nexa_lan_dhcp_cfg_t& config)
{
    if (config.dns_mode != ZR_NEXA_LAN_DNS_MODE_ADDRESSES) return word_of(kDnsModes, config.dns_mode);
    return Value::List{ipv4_text(config.primary_dns), ipv4_text(config.secondary_dns)};
}

void set_dns(const Value& dns, zr_nexa_lan_dhcp_cfg_t* config)
{
    if (!dns.is_list()) {
        config->dns_mode = code_of(kDnsModes, dns.text());
        return;
    }
    config->dns_mode = ZR_NEXA_LAN_DNS_MODE_ADDRESSES;
    config->primary_dns = ipv4_of(dns.list()[0].text());
    config->secondary_dns = ipv4_of(dns.list()[1].text());
}

std::string without_mask(const Value& net)
{
    return net.text().substr(0, net.text().find('/'));
}

Row switch_row()
{
    Row row = {Scope::kLan,
               Shape::kUnit,
               Phase::kAddressing,
               "",
               {{"dhcp.enabled", flag(), "the LAN's DHCP server answers", "true"}},
               {"zr_nexa_lan_dhcp_srvctl_set_v1", "zr_nexa_lan_dhcp_srvctl_get_v1", "zr_nexa_lan_dhcp_get_v1"}};
    row.read = [](uint32_t lan, Value* out) {
        uint32_t enabled = 0;
        Result result = CALL(zr_nexa_lan_dhcp_srvctl_get_v1, lan, &enabled);
        if (result.good()) out->map()["dhcp.enabled"] = Value(enabled != 0);
        return result;
    };
    row.write = [](uint32_t lan, const Value& wanted, const Value&) {
        // Without a bridge the default action would be switched instead, and nothing said.
        zr_nexa_lan_dhcp_cfg_t config = {};
        Result bridge = CALL(zr_nexa_lan_dhcp_get_v1, lan, &config);
        if (!bridge.good()) return bridge;
        return CALL(zr_nexa_lan_dhcp_srvctl_set_v1, lan, wanted.child("dhcp.enabled").flag() ? 1 : 0);
    };
    row.next_follows = true;  // nothing is activated here
    return row;
}

Row addressing_row()
{
    Row row = {Scope::kLan,
               Shape::kUnit,
               Phase::kAddressing,
               "",
               {{"address", plain(Type::Kind::kNet), "the module's own address on the LAN, and with it the LAN's net",
                 "192.168.225.1/24"},
                {"dhcp.first", ipv4(), "first address that the DHCP server gives", "192.168.225.20"},
                {"dhcp.last", ipv4(), "last address that the DHCP server gives", "192.168.225.60"},
                {"dhcp.lease_seconds", number(0, kAny), "how long a device may keep its address", "43200"},
                {"dhcp.mtu", number(0, kAny), "MTU in bytes that devices are told", "1500"},
                {"dhcp.dns", list_of(ipv4(), 2, all_words(kDnsModes), 2),
                 "name servers that devices are told: two addresses, or one of the service's own modes", "mode-1"}},
               {"zr_nexa_lan_dhcp_set_v1", "zr_nexa_lan_dhcp_get_v1"}};
    row.read = [](uint32_t lan, Value* out) {
        zr_nexa_lan_dhcp_cfg_t config = {};  // a mode that is none is left alone, as unset
        Result result = CALL(zr_nexa_lan_dhcp_get_v1, lan, &config);
        if (!result.good()) return result;
        out->map() = {{"address", net_text(config.gateway_ip, config.netmask)},
                      {"dhcp.first", ipv4_text(config.dhcp_start_ip)},
                      {"dhcp.last", ipv4_text(config.dhcp_end_ip)},
                      {"dhcp.lease_seconds", config.lease_time},
                      {"dhcp.mtu", config.mtu},
                      {"dhcp.dns", dns_of(config)}};
        return result;
    };
    row.write = [](uint32_t lan, const Value& wanted, const Value&) {
        zr_nexa_lan_dhcp_cfg_t config = {};
        split_net(wanted.child("address").text(), &config.gateway_ip, &config.netmask);
        config.dhcp_start_ip = ipv4_of(wanted.child("dhcp.first").text());
        config.dhcp_end_ip = ipv4_of(wanted.child("dhcp.last").text());
        config.lease_time = wanted.child("dhcp.lease_seconds").number();
        config.mtu = wanted.child("dhcp.mtu").number();
        set_dns(wanted.child("dhcp.dns"), &config);
        return CALL(zr_nexa_lan_dhcp_set_v1, lan, &config);
    };
    row.is_stored_first = true;
    row.interrupts = [](const std::string& name, const Value& wanted, const Value& present) -> std::string {
        if (present.is_nothing()) return "";
        std::string text = name + " is activated anew: its devices lose the connection for a moment";
        const std::string address = without_mask(wanted.child("address"));
        if (address != without_mask(present.child("address"))) text += "; the module answers at " + address + " then";
        return text;
    };
    return row;
}

Row gateway_url_row()
{
    constexpr uint32_t kLongest = ZR_NEXA_LAN_GWURL_SIZE - 1;
    Row row = {Scope::kModule,
               Shape::kUnit,
               Phase::kModule,
               "",
               {{"general.gateway_url", text(1, kLongest), "host name under which the module's own pages answer",
                 "mobileap.home"}},
               {"zr_nexa_lan_gwurl_set_v1", "zr_nexa_lan_gwurl_get_v1"}};
    row.read = [](uint32_t, Value* out) {
        char url[ZR_NEXA_LAN_GWURL_SIZE] = {};  // a text that fills it has no end: its length counts
        uint32_t length = 0;
        Result result = CALL(zr_nexa_lan_gwurl_get_v1, url, &length);
        const std::string text = escaped(url, std::min<size_t>(length, sizeof url));
        const bool can_be_set = !text.empty() && length <= kLongest;
        if (result.good() && can_be_set) out->map()["general.gateway_url"] = text;
        return result;
    };
    row.write = [](uint32_t, const Value& wanted, const Value&) {
        return CALL(zr_nexa_lan_gwurl_set_v1, unescaped(wanted.child("general.gateway_url").text()).c_str());
    };
    return row;
}

Row ip_row()
{
    Row row = {Scope::kModule,
               Shape::kUnit,
               Phase::kCutting,
               "",
               {{"general.ipv4", flag(), "IPv4 of the whole service", "true"},
                {"general.ipv6", flag(), "IPv6 of the whole service", "true"}},
               {"zr_nexa_lan_ipv4v6_set_v1", "zr_nexa_lan_ipv4v6_get_v1"}};
    row.read = [](uint32_t, Value* out) {
        uint8_t ipv4 = 0;
        uint8_t ipv6 = 0;
        Result result = CALL(zr_nexa_lan_ipv4v6_get_v1, &ipv4, &ipv6);
        if (result.good()) out->map() = {{"general.ipv4", Value(ipv4 != 0)}, {"general.ipv6", Value(ipv6 != 0)}};
        return result;
    };
    row.write = [](uint32_t, const Value& wanted, const Value&) {
        return CALL(zr_nexa_lan_ipv4v6_set_v1, wanted.child("general.ipv4").flag() ? 1 : 0,
                    wanted.child("general.ipv6").flag() ? 1 : 0);
    };
    row.interrupts = [](const std::string&, const Value& wanted, const Value& present) -> std::string {
        std::string text;
        for (const auto& [key, name] : {std::pair("general.ipv4", "IPv4"), std::pair("general.ipv6", "IPv6")})
            if (present.child(key).flag() && !wanted.child(key).flag())
                text += (text.empty() ? "no " : ", no ") + std::string(name);
        return text.empty() ? "" : text + " on any LAN";
    };
    return row;
}

}  // namespace

std::vector<Row> lan_addressing_rows()
{
    return {module_flag(Phase::kNewLans,
                        {"general.dhcp_for_new_vlans", flag(), "the DHCP server starts when a VLAN is made", "true"},
                        NAMED(zr_nexa_lan_dhcp_default_action_set_v1), NAMED(zr_nexa_lan_dhcp_default_action_get_v1)),
            gateway_url_row(), ip_row(), switch_row(), addressing_row()};
}

}  // namespace ctl
