// A platform that answers true and writes nothing: what every getter of the interface gives then, and logs where its
// outputs do not show it.
#include <algorithm>

#include "api_test.h"

namespace {

using UnwrittenOutputsTest = ApiTest;

template <typename T>
bool is_zero(const T& value)
{
    const auto* const bytes = reinterpret_cast<const unsigned char*>(&value);
    return std::all_of(bytes, bytes + sizeof(T), [](unsigned char byte) { return byte == 0; });
}

TEST_F(UnwrittenOutputsTest, OutputsOfTheCallerStay)
{
    // The service is handed the caller's own.
    auto byte = poisoned<uint8_t>();
    EXPECT_EQ(zr_nexa_general_sfe_get_v1(&byte), 0u);
    EXPECT_TRUE(is_poisoned(byte));
    char url[ZR_NEXA_LAN_GWURL_SIZE] = "before";
    uint32_t len = 99;
    EXPECT_EQ(zr_nexa_lan_gwurl_get_v1(url, &len), 0u);
    EXPECT_STREQ(url, "before");
    EXPECT_EQ(len, 99u);
    for (const auto get : {zr_nexa_nat_pptpvpnpassthrough_ipv4_get_v1, zr_nexa_nat_pptpvpnpassthrough_ipv6_get_v1,
                           zr_nexa_nat_ipsecvpnpassthrough_ipv4_get_v1, zr_nexa_nat_ipsecvpnpassthrough_ipv6_get_v1,
                           zr_nexa_nat_l2tpvpnpassthrough_ipv4_get_v1, zr_nexa_nat_l2tpvpnpassthrough_ipv6_get_v1}) {
        EXPECT_EQ(get(5, &byte), 0u);
        EXPECT_TRUE(is_poisoned(byte));
    }
    zr_nexa_lan_connected_device_t devices[2] = {poisoned<zr_nexa_lan_connected_device_t>(),
                                                 poisoned<zr_nexa_lan_connected_device_t>()};
    uint32_t count = 1;
    EXPECT_EQ(zr_nexa_lan_connected_device_info_get_v1(devices, &count), 0u);
    EXPECT_EQ(count, 1u);
    EXPECT_TRUE(is_zero(devices[0]));
    EXPECT_TRUE(is_poisoned(devices[1]));
}

TEST_F(UnwrittenOutputsTest, ValuesWithoutAMeaningLeaveTheOutput)
{
    auto byte = poisoned<uint8_t>();
    EXPECT_ROW(zr_nexa_media_upnp_get_v1(&byte), 0u, "info  entry", "call  GetUPNPStatus()");
    EXPECT_TRUE(is_poisoned(byte));
    EXPECT_EQ(zr_nexa_lan_packetstats_get_v1(&byte), 0u);
    EXPECT_TRUE(is_poisoned(byte));
    EXPECT_EQ(zr_nexa_lan_ipptnat_get_v1(&byte), 8u) << "no feature was reported";
    EXPECT_TRUE(is_poisoned(byte));
    platform.forget();
    auto v4 = poisoned<uint32_t>();
    auto v6 = poisoned<uint32_t>();
    EXPECT_ROW(zr_nexa_wan_status_get_v1(5, &v4, &v6), 0u,
               "info  entry",
               "call  SetWWANProfileHandlePreference(5)",
               "call  GetWWANStatus()",
               "info  Get WWAN Status (wwan_handle=5):wwan_v4_status=0 wwan_v6_status=0");
    EXPECT_TRUE(is_poisoned(v4));
    EXPECT_TRUE(is_poisoned(v6));
}

TEST_F(UnwrittenOutputsTest, SwitchesAndNumbersAreZero)
{
    auto byte = poisoned<uint8_t>();
    for (const auto get : {zr_nexa_nat_type_get_v1, zr_nexa_wan_reconnect_get_v1, zr_nexa_wan_autoconnect_get_v1,
                           zr_nexa_wan_roaming_get_v1, zr_nexa_media_upnp_pinhole_state_get_v1}) {
        byte = poisoned<uint8_t>();
        EXPECT_EQ(get(5, &byte), 0u);
        EXPECT_EQ(byte, 0);
    }
    byte = poisoned<uint8_t>();
    EXPECT_EQ(zr_nexa_lan_dhcp_default_action_get_v1(&byte), 0u);
    EXPECT_EQ(byte, 0);

    byte = poisoned<uint8_t>();
    auto other_byte = poisoned<uint8_t>();
    EXPECT_EQ(zr_nexa_lan_ipv4v6_get_v1(&byte, &other_byte), 0u);
    EXPECT_EQ(byte, 0);
    EXPECT_EQ(other_byte, 0);
    byte = other_byte = poisoned<uint8_t>();
    EXPECT_EQ(zr_nexa_firewall_config_get_v1(5, &byte, &other_byte), 0u);
    EXPECT_EQ(byte, 0);
    EXPECT_EQ(other_byte, 0);

    auto interval = poisoned<uint16_t>();
    EXPECT_EQ(zr_nexa_media_upnp_notify_interval_get_v1(&interval), 0u);
    EXPECT_EQ(interval, 0);

    auto word = poisoned<uint32_t>();
    EXPECT_EQ(zr_nexa_nat_routingbh_get_v1(&word), 0u);
    EXPECT_EQ(word, 0u);
    byte = poisoned<uint8_t>();
    word = poisoned<uint32_t>();
    EXPECT_EQ(zr_nexa_nat_ipv4dmz_get_v1(5, &byte, &word), 0u);
    EXPECT_EQ(byte, 0);
    EXPECT_EQ(word, 0u);
    word = poisoned<uint32_t>();
    EXPECT_EQ(zr_nexa_wan_wwanconfig_add_v1(&word, 1, 3), 0u);
    EXPECT_EQ(word, 0u);
    word = poisoned<uint32_t>();
    auto other_word = poisoned<uint32_t>();
    EXPECT_EQ(zr_nexa_wan_apwwan_get_v1(&word, &other_word), 0u);
    EXPECT_EQ(word, 0u);
    EXPECT_EQ(other_word, 0u);

    auto pdn = poisoned<int8_t>();
    EXPECT_EQ(zr_nexa_lan_ipptnatpdn_get_v1(9, &pdn), 0u);
    EXPECT_EQ(pdn, -1);

    word = poisoned<uint32_t>();
    EXPECT_EQ(zr_nexa_lan_dhcp_srvctl_get_v1(9, &word), 0u);
    EXPECT_EQ(word, 0u);
    platform.on("SelectLANBridge").fails(25);  // the default action then
    word = poisoned<uint32_t>();
    EXPECT_EQ(zr_nexa_lan_dhcp_srvctl_get_v1(9, &word), 0u);
    EXPECT_EQ(word, 0u);
}

TEST_F(UnwrittenOutputsTest, ListsAreEmpty)
{
    auto vlans = poisoned<zr_nexa_lan_vlan_list_t>();
    EXPECT_EQ(zr_nexa_lan_vlan_get_v1(&vlans), 0u);
    EXPECT_EQ(vlans.count, 0);
    EXPECT_TRUE(is_poisoned(vlans.vlan_id));

    auto filters = poisoned<zr_nexa_lan_ipptgwfilter_list_t>();
    EXPECT_EQ(zr_nexa_lan_ipptgwfilter_get_v1(9, &filters), 0u);
    EXPECT_TRUE(is_zero(filters));

    auto addresses = poisoned<zr_nexa_lan_swpathfilter_list_t>();
    EXPECT_EQ(zr_nexa_lan_swpathfilter_get_v1(&addresses), 0u);
    EXPECT_EQ(addresses.count, 0u);
    EXPECT_TRUE(is_poisoned(addresses.ipv4_address));

    auto reservations = poisoned<zr_nexa_lan_dhcp_reserv_list_t>();
    EXPECT_EQ(zr_nexa_lan_dhcp_reserv_record_get_v1(&reservations), 0u);
    EXPECT_EQ(reservations.count, 0u);
    EXPECT_TRUE(is_poisoned(reservations.record));

    auto profiles = poisoned<zr_nexa_wan_wwanconfig_list_t>();
    EXPECT_EQ(zr_nexa_wan_wwanconfig_get_v1(&profiles), 0u);
    EXPECT_EQ(profiles.wwanconfig_num, 0u);
    EXPECT_EQ(profiles.default_wwan_handle, 0u);
    EXPECT_TRUE(is_poisoned(profiles.wwan_handle));
    auto profiles_v2 = poisoned<zr_nexa_wan_wwanconfig_list_v2_t>();
    EXPECT_EQ(zr_nexa_wan_wwanconfig_get_v2(&profiles_v2), 0u);
    EXPECT_EQ(profiles_v2.wwanconfig_num, 0u);
    EXPECT_EQ(profiles_v2.default_wwan_handle, 0u);
    EXPECT_TRUE(is_poisoned(profiles_v2.wwan_handle));

    static zr_nexa_wan_mpdnmapping_list_t pdn_mappings;
    pdn_mappings.count = 5;
    EXPECT_EQ(zr_nexa_wan_mpdnmapping_get_v1(&pdn_mappings), 0u);
    EXPECT_EQ(pdn_mappings.count, 0u);

    auto port_mappings = poisoned<zr_nexa_nat_ipv4portmapping_list_t>();
    EXPECT_EQ(zr_nexa_nat_ipv4portmapping_get_v1(5, &port_mappings), 0u);
    EXPECT_EQ(port_mappings.count, 0u);
    EXPECT_TRUE(is_poisoned(port_mappings.private_ip));

    struct {
        unsigned char configured[108];
        unsigned char network[ZR_NEXA_ALG_SIP_BUFFER_SIZE - 108];
    } servers;
    std::memset(&servers, 0xA5, sizeof(servers));
    auto count = poisoned<int>();
    EXPECT_EQ(zr_nexa_alg_sip_server_info_get_v1(9, ZR_NEXA_IP_V6, &count, &servers), 0u);
    EXPECT_EQ(count, 0);
    EXPECT_TRUE(is_poisoned(servers));
    count = poisoned<int>();
    EXPECT_EQ(zr_nexa_alg_sip_server_info_get_v1(9, ZR_NEXA_IP_V4, &count, &servers), 0u);
    EXPECT_EQ(count, 0);
    EXPECT_TRUE(is_zero(servers.configured));
    EXPECT_TRUE(is_poisoned(servers.network));
}

TEST_F(UnwrittenOutputsTest, RecordsAreEmpty)
{
    auto cfg = poisoned<zr_nexa_lan_dhcp_cfg_t>();
    EXPECT_EQ(zr_nexa_lan_dhcp_get_v1(9, &cfg), 0u);
    EXPECT_EQ(cfg.gateway_ip, 0u);
    EXPECT_EQ(cfg.netmask, 0u);
    EXPECT_EQ(cfg.dhcp_start_ip, 0u);
    EXPECT_EQ(cfg.dhcp_end_ip, 0u);
    EXPECT_EQ(cfg.lease_time, 0u);
    EXPECT_EQ(cfg.mtu, 0u);
    EXPECT_TRUE(is_poisoned(cfg.dns_mode));
    EXPECT_TRUE(is_poisoned(cfg.primary_dns));
    EXPECT_TRUE(is_poisoned(cfg.secondary_dns));

    auto passthrough = poisoned<zr_nexa_lan_ippt_t>();
    passthrough.lan_id = 9;
    auto off = passthrough;
    off.ippt_mode = 0;
    off.ippt_adaptive = 0;
    EXPECT_EQ(zr_nexa_lan_ippt_get_v1(&passthrough), 0u);
    EXPECT_EQ(std::memcmp(&passthrough, &off, sizeof(off)), 0);

    auto l2tp = poisoned<zr_nexa_lan_l2tp_info_t>();
    EXPECT_EQ(zr_nexa_lan_l2tp_get_v1(9, &l2tp), 0u);
    EXPECT_EQ(l2tp.state, 0u);
    EXPECT_EQ(l2tp.mode, 0u);
    EXPECT_EQ(l2tp.mtu, 0u);
    EXPECT_EQ(l2tp.mss, 0u);
    EXPECT_EQ(l2tp.clamp_mss, 0u);
    EXPECT_EQ(l2tp.tunnel_count, 0u);
    EXPECT_TRUE(is_poisoned(l2tp.tunnel));

    auto details = poisoned<zr_nexa_wan_info_t>();
    EXPECT_EQ(zr_nexa_wan_info_get_v1(5, &details), 0u);
    EXPECT_TRUE(is_zero(details));
    auto statistics = poisoned<qcmap_msgr_wwan_statistics_type_v01>();
    EXPECT_EQ(zr_nexa_wan_statistics_get_v1(5, 4, &statistics), 0u);
    EXPECT_TRUE(is_zero(statistics));

    auto state = poisoned<uint32_t>();
    auto filter = poisoned<zr_nexa_firewall_hwfilter_cfg_t>();
    EXPECT_EQ(zr_nexa_firewall_hwfiltering_state_get_v1(&state, &filter), 0u);
    EXPECT_EQ(state, 0u);
    EXPECT_EQ(filter.num_of_macs, 0u);
    EXPECT_EQ(filter.num_of_ifaces, 0u);
    EXPECT_TRUE(is_poisoned(filter.mac_addr));
    EXPECT_TRUE(is_poisoned(filter.iface));
}

TEST_F(UnwrittenOutputsTest, AFirewallIsOffAndItsEntriesAreEmpty)
{
    EXPECT_EQ(zr_nexa_media_upnp_pinhole_state_set_v1(5, 1), 14u);

    auto list = poisoned<zr_nexa_firewall_entry_list_t>();
    EXPECT_EQ(zr_nexa_firewall_entry_get_v1(5, 4, &list), 0u);
    EXPECT_EQ(list.count, 0u);
    EXPECT_TRUE(is_poisoned(list.handle));
    platform.on("GetFireWallHandlesList").gives("count", int32_t{1});
    EXPECT_EQ(zr_nexa_firewall_entry_get_v1(5, 4, &list), 0u);
    EXPECT_EQ(list.count, 1u);
    EXPECT_EQ(list.handle[0], 0u);
    EXPECT_TRUE(is_poisoned(list.entry[0].direction));
    EXPECT_TRUE(is_poisoned(list.entry[0].ip_version));
    EXPECT_EQ(list.entry[0].ipv4_src_valid, 0);
    EXPECT_EQ(list.entry[0].proto_valid, 0);
    EXPECT_TRUE(is_poisoned(list.entry[0].protocol));
}

}  // namespace
