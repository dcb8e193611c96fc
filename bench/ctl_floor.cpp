// The floor of bench/ctl: the calls of the client interface that showing its document, applying it and applying it
// again take, straight from loops. Nothing here is zr_nexactl's own.
//
//   ctl_floor start|show|apply|again LANS PROFILES RULES FILTERS TUNNELS MAPPED MODULE     as bench/ctl makes the
//   document
#include <zr_nexa_client_api.h>

#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <initializer_list>
#include <utility>

namespace {

struct Sizes {
    uint32_t lans;
    uint32_t profiles;
    uint32_t rules;
    uint32_t filters;
    uint32_t tunnels;
    uint32_t mapped;
    uint32_t module;
};

uint8_t byte;
uint32_t word;
zr_nexa_lan_l2tp_info_t l2tp;

// ---- reading ----

void read_lists()
{
    static zr_nexa_lan_vlan_list_t vlans;
    static zr_nexa_wan_wwanconfig_list_v2_t profiles;
    zr_nexa_lan_vlan_get_v1(&vlans);
    zr_nexa_wan_wwanconfig_get_v2(&profiles);
}

void read_addressing(uint32_t lan)
{
    zr_nexa_lan_dhcp_cfg_t addressing = {};
    zr_nexa_lan_dhcp_srvctl_get_v1(lan, &word);
    zr_nexa_lan_dhcp_get_v1(lan, &addressing);
}

void read_filters(uint32_t lan)
{
    zr_nexa_lan_ipptgwfilter_list_t filters;
    zr_nexa_lan_ipptgwfilter_get_v1(lan, &filters);
}

void read_rules(uint32_t profile, bool with_rules)
{
    zr_nexa_nat_ipv4portmapping_list_t rules;
    zr_nexa_nat_ipv4dmz_get_v1(profile, &byte, &word);
    if (with_rules) zr_nexa_nat_ipv4portmapping_get_v1(profile, &rules);
}

// What the document says of a profile beside its mapping.
void read_profile(uint32_t profile, bool with_rules)
{
    static zr_nexa_firewall_entry_list_t entries;
    uint8_t policy = 0;
    zr_nexa_wan_reconnect_get_v1(profile, &byte);
    zr_nexa_wan_autoconnect_get_v1(profile, &byte);
    zr_nexa_wan_roaming_get_v1(profile, &byte);
    zr_nexa_nat_type_get_v1(profile, &byte);
    read_rules(profile, with_rules);
    for (const uint32_t family : {ZR_NEXA_IP_V4, ZR_NEXA_IP_V6})
        if (with_rules) zr_nexa_firewall_entry_get_v1(profile, family, &entries);
    zr_nexa_firewall_config_get_v1(profile, &byte, &policy);
}

void read_mappings()
{
    static zr_nexa_wan_mpdnmapping_list_t mappings;
    zr_nexa_wan_mpdnmapping_get_v1(&mappings);
}

void read_module_lists()
{
    zr_nexa_lan_dhcp_reserv_list_t reservations;
    zr_nexa_lan_dhcp_reserv_record_get_v1(&reservations);
}

void read_software_path()
{
    zr_nexa_lan_swpathfilter_list_t addresses;
    zr_nexa_lan_swpathfilter_get_v1(&addresses);
}

// What applying looks at, on a module that has so many LANs and profiles.
void read_for_document(const Sizes& document, uint32_t lans, uint32_t profiles)
{
    read_lists();
    for (uint32_t lan = 0; lan <= lans; ++lan) {
        read_addressing(lan);
        if (lan != 0 && document.filters != 0) read_filters(lan);
        for (int i = 0; lan != 0 && document.tunnels != 0 && i < 2; ++i)
            zr_nexa_lan_l2tp_get_v1(lan, &l2tp);
    }
    for (uint32_t profile = 1; profile <= profiles; ++profile)
        read_profile(profile, document.rules != 0);
    if (profiles != 0 && document.mapped != 0) read_mappings();
    if (document.lans + document.module != 0) read_module_lists();
    if (document.module != 0) read_software_path();
    zr_nexa_nat_routingbh_get_v1(&word);
}

void show(const Sizes& sizes)
{
    static unsigned char servers[ZR_NEXA_ALG_SIP_BUFFER_SIZE];
    static zr_nexa_wan_wwanconfig_list_v2_t profiles;
    uint8_t second = 0;
    uint16_t seconds = 0;
    int8_t mode = 0;
    int count = 0;
    char url[ZR_NEXA_LAN_GWURL_SIZE] = {};
    zr_nexa_firewall_hwfilter_cfg_t mac_filter = {};
    read_lists();
    zr_nexa_general_sfe_get_v1(&byte);
    zr_nexa_lan_packetstats_get_v1(&byte);
    zr_nexa_lan_dhcp_default_action_get_v1(&byte);
    zr_nexa_lan_gwurl_get_v1(url, &word);
    zr_nexa_lan_ipv4v6_get_v1(&byte, &second);
    zr_nexa_lan_ipptnat_get_v1(&byte);
    zr_nexa_nat_routingbh_get_v1(&word);
    zr_nexa_wan_wwanconfig_get_v2(&profiles);
    zr_nexa_wan_apwwan_get_v1(&word, &word);
    zr_nexa_firewall_hwfiltering_state_get_v1(&word, &mac_filter);
    zr_nexa_media_upnp_get_v1(&byte);
    zr_nexa_media_upnp_notify_interval_get_v1(&seconds);
    read_module_lists();
    read_software_path();
    for (uint32_t lan = 0; lan <= sizes.lans; ++lan) {
        zr_nexa_lan_ippt_t passthrough = {};
        passthrough.lan_id = static_cast<uint16_t>(lan);
        read_addressing(lan);
        read_filters(lan);
        zr_nexa_lan_l2tp_get_v1(lan, &l2tp);
        zr_nexa_lan_l2tp_get_v1(lan, &l2tp);
        if (lan != 0) zr_nexa_lan_ipptnatpdn_get_v1(lan, &mode);
        zr_nexa_lan_ippt_get_v1(&passthrough);
        zr_nexa_alg_sip_server_info_get_v1(lan, ZR_NEXA_IP_V4, &count, servers);
    }
    for (uint32_t profile = 1; profile <= sizes.profiles; ++profile) {
        read_profile(profile, true);
        for (const auto get : {zr_nexa_nat_pptpvpnpassthrough_ipv4_get_v1, zr_nexa_nat_pptpvpnpassthrough_ipv6_get_v1,
                               zr_nexa_nat_ipsecvpnpassthrough_ipv4_get_v1, zr_nexa_nat_ipsecvpnpassthrough_ipv6_get_v1,
                               zr_nexa_nat_l2tpvpnpassthrough_ipv4_get_v1, zr_nexa_nat_l2tpvpnpassthrough_ipv6_get_v1,
                               zr_nexa_media_upnp_pinhole_state_get_v1})
            get(profile, &byte);
    }
    if (sizes.profiles != 0) read_mappings();
}

// ---- writing ----

void make_lan(const Sizes& sizes, uint32_t lan)
{
    zr_nexa_lan_dhcp_cfg_t addressing = {};
    addressing.gateway_ip = 0x0a000001 + lan * 256;
    addressing.netmask = 0xffffff00;
    // Of a new LAN both records are read first, the switch makes sure of the bridge, and its own reading is two calls.
    zr_nexa_lan_dhcp_srvctl_get_v1(lan, &word);
    zr_nexa_lan_dhcp_get_v1(lan, &addressing);
    zr_nexa_lan_dhcp_srvctl_set_v1(lan, 1);
    zr_nexa_lan_dhcp_get_v1(lan, &addressing);
    zr_nexa_lan_dhcp_set_v1(lan, &addressing);
    for (uint32_t i = 0; i < sizes.filters; ++i)
        zr_nexa_lan_ipptgwfilter_add_v1(lan, ZR_NEXA_LAN_IPPTGWFILTER_TCP, static_cast<uint16_t>(i + 1),
                                        static_cast<uint16_t>(i + 1));
    for (uint32_t i = 0; i < sizes.tunnels; ++i) {
        zr_nexa_lan_l2tp_cfg_t config = {1, {}};
        config.tunnel.tunnel_id = i + 1;
        config.tunnel.peer_tunnel_id = i + 1;
        config.tunnel.ip_family = ZR_NEXA_IP_V4;
        config.tunnel.encapsulation = 2;
        config.tunnel.local_ipv4 = config.tunnel.peer_ipv4 = 1;
        while (config.tunnel.session_count < ZR_NEXA_LAN_L2TP_SESSIONS_MAX)
            config.tunnel.session[config.tunnel.session_count++] = {1, 1};
        zr_nexa_lan_l2tp_get_v1(lan, &l2tp);
        zr_nexa_lan_l2tp_set_v1(lan, &config);
    }
    for (int i = 0; sizes.tunnels != 0 && i < 2; ++i)  // the mode follows
        zr_nexa_lan_l2tp_get_v1(lan, &l2tp);
}

void make_profile(const Sizes& sizes)
{
    zr_nexa_wan_wwanconfig_t dial = {};
    dial.apn_id = 1;
    std::memset(dial.apn_name, 'a', 5);
    uint32_t profile = 0;
    zr_nexa_wan_wwanconfig_add_v2(&profile, dial);
    for (const auto& [set, get] : {std::pair(zr_nexa_wan_reconnect_set_v1, zr_nexa_wan_reconnect_get_v1),
                                   std::pair(zr_nexa_wan_autoconnect_set_v1, zr_nexa_wan_autoconnect_get_v1),
                                   std::pair(zr_nexa_wan_roaming_set_v1, zr_nexa_wan_roaming_get_v1),
                                   std::pair(zr_nexa_nat_type_set_v1, zr_nexa_nat_type_get_v1)}) {
        get(profile, &byte);
        set(profile, 1);
    }
    zr_nexa_nat_ipv4dmz_get_v1(profile, &byte, &word);
    zr_nexa_nat_ipv4dmz_set_v1(profile, 1, 0x0a000102);
    zr_nexa_firewall_entry_t entry = {};
    entry.ip_version = ZR_NEXA_IP_V4;
    for (uint32_t i = 0; i < sizes.rules; ++i) {
        const uint16_t port = static_cast<uint16_t>(i + 1);
        zr_nexa_nat_ipv4portmapping_add_v1(profile, 0x0a000102, port, port, ZR_NEXA_NAT_PROTO_TCP);
        zr_nexa_firewall_entry_add_v1(profile, &entry);
    }
    uint8_t policy = 0;
    zr_nexa_firewall_config_get_v1(profile, &byte, &policy);
    zr_nexa_firewall_config_set_v1(profile, 1, 0);
    for (uint32_t i = 0; i < sizes.mapped; ++i)
        zr_nexa_wan_mpdnmapping_add_v1(profile, static_cast<uint16_t>(i + 1));
}

void apply(const Sizes& sizes)
{
    read_for_document(sizes, 0, 0);
    for (uint32_t lan = 1; lan <= sizes.lans; ++lan)
        zr_nexa_lan_vlan_add_v1(static_cast<uint16_t>(lan), 1, 0);
    for (uint32_t lan = 1; lan <= sizes.lans; ++lan)
        make_lan(sizes, lan);
    for (uint32_t i = 0; sizes.module != 0 && i < ZR_NEXA_LAN_DHCP_RESERVATIONS_MAX; ++i) {
        zr_nexa_lan_dhcp_reserv_record_t record = {};
        zr_nexa_lan_dhcp_reserv_record_add_v1(&record);
    }
    for (uint32_t i = 0; sizes.module != 0 && i < ZR_NEXA_LAN_SWPATHFILTERS_MAX; ++i)
        zr_nexa_lan_swpathfilter_add_v1(i + 1);
    for (uint32_t profile = 1; profile <= sizes.profiles; ++profile)
        make_profile(sizes);
    read_for_document(sizes, sizes.lans, sizes.profiles);
}

uint32_t number(const char* text)
{
    return static_cast<uint32_t>(std::strtoul(text, nullptr, 10));
}

}  // namespace

int main(int argc, char** argv)
{
    if (argc != 9) return 1;
    const Sizes sizes = {number(argv[2]), number(argv[3]), number(argv[4]), number(argv[5]),
                         number(argv[6]), number(argv[7]), number(argv[8])};
    zr_nexa_client_init(nullptr);
    zr_nexa_wan_status_get_v1(0, nullptr, nullptr);
    if (std::strcmp(argv[1], "start") == 0)
        read_lists();
    else if (std::strcmp(argv[1], "show") == 0)
        show(sizes);
    else if (std::strcmp(argv[1], "apply") == 0)
        apply(sizes);
    else
        read_for_document(sizes, sizes.lans, sizes.profiles);
    return static_cast<int>(zr_nexa_client_uninit());
}
