// A platform that answers true and writes nothing: what every getter of the interface gives and logs then.
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

// Low 32 bits of an address, as a record shows them.
std::string where(const void* pointer)
{
    return std::to_string(static_cast<int32_t>(reinterpret_cast<uintptr_t>(pointer)));
}

TEST_F(UnwrittenOutputsTest, General)
{
    auto state = poisoned<uint8_t>();
    EXPECT_ROW(zr_nexa_general_sfe_get_v1(&state), 0u,
               "info  entry",
               "call  GetDataPathOptStatus()",
               "info  Get data path opt status sfe_config=" + where(&state) + ", error 0");
    EXPECT_TRUE(is_poisoned(state));
}

TEST_F(UnwrittenOutputsTest, LanAddressing)
{
    char url[ZR_NEXA_LAN_GWURL_SIZE] = "before";
    uint32_t len = 99;
    EXPECT_ROW(zr_nexa_lan_gwurl_get_v1(url, &len), 0u,
               "info  entry",
               "call  GetGatewayUrl()",
               "info  Get gateway url:before gwurl_len=99, error 0");
    EXPECT_STREQ(url, "before");
    EXPECT_EQ(len, 99u);

    auto enable = poisoned<uint32_t>();
    EXPECT_ROW(zr_nexa_lan_dhcp_srvctl_get_v1(9, &enable), 0u,
               "info  entry",
               "call  SelectLANBridge(9)",
               "call  GetLANConfig()");
    EXPECT_EQ(enable, 0u);

    auto cfg = poisoned<zr_nexa_lan_dhcp_cfg_t>();
    EXPECT_ROW(zr_nexa_lan_dhcp_get_v1(9, &cfg), 0u,
               "info  entry",
               "call  SelectLANBridge(9)",
               "call  GetLANConfig()",
               "info  LAN_ID=9 GatewayIP=0.0.0.0",
               "info  LAN_ID=9 Netmask=0.0.0.0",
               "info  LAN_ID=9 DHCPStartIP=0.0.0.0",
               "info  LAN_ID=9 DHCPEndIP=0.0.0.0",
               "info  LAN_ID=9 DHCPLeaseTime=0",
               "info  LAN_ID=9 DHCPMTU=0",
               "info  LAN_ID=9 DNSMode=-1515870811 PriDNSAddr=165.165.165.165",
               "info  LAN_ID=9 SecDNSAddr=165.165.165.165");
    EXPECT_EQ(cfg.gateway_ip, 0u);
    EXPECT_EQ(cfg.netmask, 0u);
    EXPECT_EQ(cfg.dhcp_start_ip, 0u);
    EXPECT_EQ(cfg.dhcp_end_ip, 0u);
    EXPECT_EQ(cfg.lease_time, 0u);
    EXPECT_EQ(cfg.mtu, 0u);
    EXPECT_TRUE(is_poisoned(cfg.dns_mode));
    EXPECT_TRUE(is_poisoned(cfg.primary_dns));
    EXPECT_TRUE(is_poisoned(cfg.secondary_dns));

    auto action = poisoned<uint8_t>();
    EXPECT_ROW(zr_nexa_lan_dhcp_default_action_get_v1(&action), 0u,
               "info  entry",
               "call  ZR_GetDefaultEnableDHCP()",
               "info  Get DHCP Default Action successfully: 0");
    EXPECT_EQ(action, 0);

    auto ipv4 = poisoned<uint8_t>();
    auto ipv6 = poisoned<uint8_t>();
    EXPECT_ROW(zr_nexa_lan_ipv4v6_get_v1(&ipv4, &ipv6), 0u,
               "info  entry",
               "call  GetIPv4State()",
               "call  GetIPv6State()",
               "info  Get NEXA IPv4 cfg 0, IPv6 cfg 0, error 0");
    EXPECT_EQ(ipv4, 0);
    EXPECT_EQ(ipv6, 0);

    platform.on("SelectLANBridge").fails(25);
    enable = poisoned<uint32_t>();
    EXPECT_ROW(zr_nexa_lan_dhcp_srvctl_get_v1(9, &enable), 0u,
               "info  entry",
               "call  SelectLANBridge(9)",
               "call  ZR_GetDefaultEnableDHCP()",
               "info  Get ZR DHCP Default Action successfully: 0");
    EXPECT_EQ(enable, 0u);
}

TEST_F(UnwrittenOutputsTest, VlansAndPassthrough)
{
    auto vlans = poisoned<zr_nexa_lan_vlan_list_t>();
    EXPECT_ROW(zr_nexa_lan_vlan_get_v1(&vlans), 0u,
               "info  entry",
               "call  GetVLANConfig()",
               "info  Get VLAN List Config Len 0, error 0");
    EXPECT_EQ(vlans.count, 0);
    EXPECT_TRUE(is_poisoned(vlans.vlan_id));

    // No feature is reported.
    auto nat = poisoned<uint8_t>();
    EXPECT_ROW(zr_nexa_lan_ipptnat_get_v1(&nat), 8u, "info  entry", "call  GetFeatureMode()");
    EXPECT_TRUE(is_poisoned(nat));

    auto pdn = poisoned<int8_t>();
    EXPECT_ROW(zr_nexa_lan_ipptnatpdn_get_v1(9, &pdn), 0u,
               "info  entry",
               "call  SelectLANBridge(9)",
               "call  ZR_GetIPPTNATPDN(-1)",
               "info  Get IPPTNATPDN error 0, lan=9 IPPTNATPDN=-1");
    EXPECT_EQ(pdn, -1);

    auto rec = poisoned<zr_nexa_lan_ippt_t>();
    rec.lan_id = 9;
    auto expected = rec;
    expected.ippt_mode = 0;
    expected.ippt_adaptive = 0;
    EXPECT_ROW(zr_nexa_lan_ippt_get_v1(&rec), 0u,
               "info  entry",
               "call  SelectLANBridge(9)",
               "call  GetIPPassthroughConfig()");
    EXPECT_EQ(std::memcmp(&rec, &expected, sizeof(rec)), 0);

    auto filters = poisoned<zr_nexa_lan_ipptgwfilter_list_t>();
    EXPECT_ROW(zr_nexa_lan_ipptgwfilter_get_v1(9, &filters), 0u,
               "info  entry",
               "call  SelectLANBridge(9)",
               "call  GetIPPassthroughSoftwarePathFilters(request=2 count=0 flags=0)");
    EXPECT_TRUE(is_zero(filters));

    auto addresses = poisoned<zr_nexa_lan_swpathfilter_list_t>();
    EXPECT_ROW(zr_nexa_lan_swpathfilter_get_v1(&addresses), 0u,
               "info  entry",
               "call  ZR_GetIPFromSWPathFilters(count=0)",
               "info  Get SW Path Filter IP successfully");
    EXPECT_EQ(addresses.count, 0u);
    EXPECT_TRUE(is_poisoned(addresses.ipv4_address));
}

TEST_F(UnwrittenOutputsTest, LanServices)
{
    auto reservations = poisoned<zr_nexa_lan_dhcp_reserv_list_t>();
    EXPECT_ROW(zr_nexa_lan_dhcp_reserv_record_get_v1(&reservations), 0u,
               "info  entry",
               "call  GetDHCPReservRecords()",
               "info  No DHCP Reservation Records",
               "info  DHCP Reservation Record get successfully");
    EXPECT_EQ(reservations.count, 0u);
    EXPECT_TRUE(is_poisoned(reservations.record));

    auto state = poisoned<uint8_t>();
    EXPECT_ROW(zr_nexa_lan_packetstats_get_v1(&state), 0u,
               "info  entry",
               "call  GetPacketStatsStatus()",
               "info  Get Packet Stats succeeded");
    EXPECT_TRUE(is_poisoned(state));

    // The service has the caller's own count.
    zr_nexa_lan_connected_device_t devices[2] = {poisoned<zr_nexa_lan_connected_device_t>(),
                                                 poisoned<zr_nexa_lan_connected_device_t>()};
    uint32_t count = 1;
    EXPECT_ROW(zr_nexa_lan_connected_device_info_get_v1(devices, &count), 0u,
               "info  entry",
               "call  GetConnectedDevicesInfo()",
               "info  [No 0]device type(0), IP Addr(0.0.0.0), MAC(00:00:00:00:00:00)",
               "info  [No 0]RX bytes: 0 TX bytes: 0",
               "info  GetConnectedDevicesInfo successful");
    EXPECT_EQ(count, 1u);
    EXPECT_TRUE(is_zero(devices[0]));
    EXPECT_TRUE(is_poisoned(devices[1]));

    auto l2tp = poisoned<zr_nexa_lan_l2tp_info_t>();
    EXPECT_ROW(zr_nexa_lan_l2tp_get_v1(9, &l2tp), 0u,
               "info  entry",
               "call  SelectLANBridge(9)",
               "call  GetL2TPConfig()",
               "info  Get L2TP Config succeeds.");
    EXPECT_EQ(l2tp.state, 0u);
    EXPECT_EQ(l2tp.mode, 0u);
    EXPECT_EQ(l2tp.mtu, 0u);
    EXPECT_EQ(l2tp.mss, 0u);
    EXPECT_EQ(l2tp.clamp_mss, 0u);
    EXPECT_EQ(l2tp.tunnel_count, 0u);
    EXPECT_TRUE(is_poisoned(l2tp.tunnel));
}

TEST_F(UnwrittenOutputsTest, WanProfiles)
{
    auto list = poisoned<zr_nexa_wan_wwanconfig_list_t>();
    EXPECT_ROW(zr_nexa_wan_wwanconfig_get_v1(&list), 0u, "info  entry", "call  GetWWANPolicyListEx()");
    EXPECT_EQ(list.wwanconfig_num, 0u);
    EXPECT_EQ(list.default_wwan_handle, 0u);
    EXPECT_TRUE(is_poisoned(list.wwan_handle));

    auto list_v2 = poisoned<zr_nexa_wan_wwanconfig_list_v2_t>();
    EXPECT_ROW(zr_nexa_wan_wwanconfig_get_v2(&list_v2), 0u, "info  entry", "call  GetWWANPolicyListEx()");
    EXPECT_EQ(list_v2.wwanconfig_num, 0u);
    EXPECT_EQ(list_v2.default_wwan_handle, 0u);
    EXPECT_TRUE(is_poisoned(list_v2.wwan_handle));

    auto ap = poisoned<uint32_t>();
    auto apdns = poisoned<uint32_t>();
    EXPECT_ROW(zr_nexa_wan_apwwan_get_v1(&ap, &apdns), 0u,
               "info  entry",
               "call  GetAPProfileHandle()",
               "error Get AP WWAN Profile Handle Preference (ap_wwan_handle=0 apdns_wwan_handle=0) error 0");
    EXPECT_EQ(ap, 0u);
    EXPECT_EQ(apdns, 0u);

    auto handle = poisoned<uint32_t>();
    EXPECT_ROW(zr_nexa_wan_wwanconfig_add_v1(&handle, 1, 3), 0u,
               "info  entry",
               "call  CreateWWANPolicyEx(profile_handle=0 tech_pref=1 ip_family=10 profile_index_3gpp=3"
               " profile_index_3gpp2=3 apn_name=\"\" call_bringup_mode=0)",
               "info  Create WWANPolicy success:wwan_handle=0 tech_pref=1 apn_id=3");
    EXPECT_EQ(handle, 0u);
}

TEST_F(UnwrittenOutputsTest, WanConnectionAndMapping)
{
    auto v4 = poisoned<uint32_t>();
    auto v6 = poisoned<uint32_t>();
    EXPECT_ROW(zr_nexa_wan_status_get_v1(5, &v4, &v6), 0u,
               "info  entry",
               "call  SetWWANProfileHandlePreference(5)",
               "call  GetWWANStatus()",
               "info  Get WWAN Status (wwan_handle=5):wwan_v4_status=0 wwan_v6_status=0");
    EXPECT_TRUE(is_poisoned(v4));
    EXPECT_TRUE(is_poisoned(v6));

    auto mode = poisoned<uint8_t>();
    EXPECT_ROW(zr_nexa_wan_reconnect_get_v1(5, &mode), 0u,
               "info  entry",
               "call  SetWWANProfileHandlePreference(5)",
               "call  GetReconnect()",
               "info  Get Reconnect Mode (wwan_handle=5) Status 0, error 0");
    EXPECT_EQ(mode, 0);
    mode = poisoned<uint8_t>();
    EXPECT_ROW(zr_nexa_wan_autoconnect_get_v1(5, &mode), 0u,
               "info  entry",
               "call  SetWWANProfileHandlePreference(5)",
               "call  GetAutoconnect()",
               "info  Get Autoconnect Mode (wwan_handle=5) Status 0, error 0");
    EXPECT_EQ(mode, 0);
    mode = poisoned<uint8_t>();
    EXPECT_ROW(zr_nexa_wan_roaming_get_v1(5, &mode), 0u,
               "info  entry",
               "call  SetWWANProfileHandlePreference(5)",
               "call  GetRoaming()",
               "info  Get Roaming Mode (wwan_handle=5) Status 0, error 0");
    EXPECT_EQ(mode, 0);

    auto details = poisoned<zr_nexa_wan_info_t>();
    EXPECT_ROW(zr_nexa_wan_info_get_v1(5, &details), 0u, "info  entry", "call  GetAllConnectedPDNEx()");
    EXPECT_TRUE(is_zero(details));

    auto statistics = poisoned<qcmap_msgr_wwan_statistics_type_v01>();
    EXPECT_ROW(zr_nexa_wan_statistics_get_v1(5, 4, &statistics), 0u,
               "info  entry",
               "call  SetWWANProfileHandlePreference(5)",
               "call  GetWWANStatistics(4)",
               "info  Get WWAN Statistics (wwan_handle=5, ip_family=4) success.");
    EXPECT_TRUE(is_zero(statistics));

    static zr_nexa_wan_mpdnmapping_list_t mappings;
    mappings.count = 5;
    EXPECT_ROW(zr_nexa_wan_mpdnmapping_get_v1(&mappings), 0u, "info  entry", "call  GetPDNtoVLANMappingsEx()");
    EXPECT_EQ(mappings.count, 0u);
}

TEST_F(UnwrittenOutputsTest, Nat)
{
    auto byte = poisoned<uint8_t>();
    EXPECT_ROW(zr_nexa_nat_type_get_v1(5, &byte), 0u,
               "info  entry",
               "call  SetWWANProfileHandlePreference(5)",
               "call  GetNatType()",
               "info  Get Nat Type (wwan_handle=5) 0, error 0");
    EXPECT_EQ(byte, 0);

    byte = poisoned<uint8_t>();
    auto word = poisoned<uint32_t>();
    EXPECT_ROW(zr_nexa_nat_ipv4dmz_get_v1(5, &byte, &word), 0u,
               "info  entry",
               "call  SetWWANProfileHandlePreference(5)",
               "call  GetDMZ()",
               "info  Get DMZ IP success : wwan_handle=5 dmz_enable=" + where(&byte) + " dmz_ip=" + where(&word));
    EXPECT_EQ(byte, 0);
    EXPECT_EQ(word, 0u);

    auto list = poisoned<zr_nexa_nat_ipv4portmapping_list_t>();
    EXPECT_ROW(zr_nexa_nat_ipv4portmapping_get_v1(5, &list), 0u,
               "info  entry",
               "call  SetWWANProfileHandlePreference(5)",
               "call  GetStaticNatConfig()");
    EXPECT_EQ(list.count, 0u);
    EXPECT_TRUE(is_poisoned(list.private_ip));

    word = poisoned<uint32_t>();
    EXPECT_ROW(zr_nexa_nat_routingbh_get_v1(&word), 0u,
               "info  entry",
               "call  ZR_GetRoutingBH()",
               "info  Get RoutingBH(routingbh=0) error 0");
    EXPECT_EQ(word, 0u);
}

// The service has the caller's own byte, which the record shows: 0xA5.
TEST_F(UnwrittenOutputsTest, VpnPassthrough)
{
    auto flag = poisoned<uint8_t>();
    EXPECT_ROW(zr_nexa_nat_pptpvpnpassthrough_ipv4_get_v1(5, &flag), 0u,
               "info  entry",
               "call  SetWWANProfileHandlePreference(5)",
               "call  GetPPTPVpnPassthrough()",
               "info  Get IPv4 PPTP Passthrough (wwan_handle=5) Status 165, error 0");
    EXPECT_ROW(zr_nexa_nat_pptpvpnpassthrough_ipv6_get_v1(5, &flag), 0u,
               "info  entry",
               "call  SetWWANProfileHandlePreference(5)",
               "call  GetPPTPVpnPassthrough_Ipv6()",
               "info  Get IPv6 PPTP Passthrough (wwan_handle=5) Status 165, error 0");
    EXPECT_ROW(zr_nexa_nat_ipsecvpnpassthrough_ipv4_get_v1(5, &flag), 0u,
               "info  entry",
               "call  SetWWANProfileHandlePreference(5)",
               "call  GetIPSECVpnPassthrough()",
               "info  Get IPv4 IPSec VPN Passthrough (wwan_handle=5) Status 165, error 0");
    EXPECT_ROW(zr_nexa_nat_ipsecvpnpassthrough_ipv6_get_v1(5, &flag), 0u,
               "info  entry",
               "call  SetWWANProfileHandlePreference(5)",
               "call  GetIPSECVpnPassthrough_Ipv6()",
               "info  Get IPv6 IPSec VPN Passthrough (wwan_handle=5) Status 165, error 0");
    EXPECT_ROW(zr_nexa_nat_l2tpvpnpassthrough_ipv4_get_v1(5, &flag), 0u,
               "info  entry",
               "call  SetWWANProfileHandlePreference(5)",
               "call  GetL2TPVpnPassthrough()",
               "info  Get IPv4 L2TP VPN Passthrough (wwan_handle=5) Status 165, error 0");
    EXPECT_ROW(zr_nexa_nat_l2tpvpnpassthrough_ipv6_get_v1(5, &flag), 0u,
               "info  entry",
               "call  SetWWANProfileHandlePreference(5)",
               "call  GetL2TPVpnPassthrough_Ipv6()",
               "info  Get IPv6 L2TP VPN Passthrough (wwan_handle=5) Status 165, error 0");
    EXPECT_TRUE(is_poisoned(flag));
}

TEST_F(UnwrittenOutputsTest, SipServers)
{
    struct {
        unsigned char configured[108];
        unsigned char network[ZR_NEXA_ALG_SIP_BUFFER_SIZE - 108];
    } out;
    std::memset(&out, 0xA5, sizeof(out));
    auto count = poisoned<int>();
    EXPECT_ROW(zr_nexa_alg_sip_server_info_get_v1(9, ZR_NEXA_IP_V6, &count, &out), 0u,
               "info  entry",
               "call  SelectLANBridge(9)",
               "call  GetV6SIPServerInfo()",
               "info  Successfully get IPV4 SIP server info.");
    EXPECT_EQ(count, 0);
    EXPECT_TRUE(is_poisoned(out));

    count = poisoned<int>();
    EXPECT_ROW(zr_nexa_alg_sip_server_info_get_v1(9, ZR_NEXA_IP_V4, &count, &out), 0u,
               "info  entry",
               "call  SelectLANBridge(9)",
               "call  GetSIPServerInfo()",
               "info  Successfully get IPV4 SIP server info.");
    EXPECT_EQ(count, 0);
    EXPECT_TRUE(is_zero(out.configured));
    EXPECT_TRUE(is_poisoned(out.network));
}

TEST_F(UnwrittenOutputsTest, Firewall)
{
    auto list = poisoned<zr_nexa_firewall_entry_list_t>();
    EXPECT_ROW(zr_nexa_firewall_entry_get_v1(5, 4, &list), 0u,
               "info  entry",
               "call  SetWWANProfileHandlePreference(5)",
               "call  GetFireWallHandlesList(ip_family=4)");
    EXPECT_EQ(list.count, 0u);
    EXPECT_TRUE(is_poisoned(list.handle));

    // One entry is counted: its handle is 0, its flags are clear, and it has no values.
    platform.on("GetFireWallHandlesList").gives("count", int32_t{1});
    EXPECT_ROW(zr_nexa_firewall_entry_get_v1(5, 4, &list), 0u,
               "info  entry",
               "call  SetWWANProfileHandlePreference(5)",
               "call  GetFireWallHandlesList(ip_family=4)",
               "call  GetFireWallEntry(ip_family=4 handle=0 clear=1)");
    EXPECT_EQ(list.count, 1u);
    EXPECT_EQ(list.handle[0], 0u);
    EXPECT_TRUE(is_poisoned(list.entry[0].direction));
    EXPECT_TRUE(is_poisoned(list.entry[0].ip_version));
    EXPECT_EQ(list.entry[0].ipv4_src_valid, 0);
    EXPECT_EQ(list.entry[0].proto_valid, 0);
    EXPECT_TRUE(is_poisoned(list.entry[0].protocol));

    auto enable = poisoned<uint8_t>();
    auto pkts = poisoned<uint8_t>();
    EXPECT_ROW(zr_nexa_firewall_config_get_v1(5, &enable, &pkts), 0u,
               "info  entry",
               "call  SetWWANProfileHandlePreference(5)",
               "call  GetFirewall()",
               "info  Get Firewall Config enable_firewall=0, pkts_allowed=0");
    EXPECT_EQ(enable, 0);
    EXPECT_EQ(pkts, 0);

    auto state = poisoned<uint32_t>();
    auto config = poisoned<zr_nexa_firewall_hwfilter_cfg_t>();
    EXPECT_ROW(zr_nexa_firewall_hwfiltering_state_get_v1(&state, &config), 0u,
               "info  entry",
               "call  GetHWMACFilteringState()");
    EXPECT_EQ(state, 0u);
    EXPECT_EQ(config.num_of_macs, 0u);
    EXPECT_EQ(config.num_of_ifaces, 0u);
    EXPECT_TRUE(is_poisoned(config.mac_addr));
    EXPECT_TRUE(is_poisoned(config.iface));
}

TEST_F(UnwrittenOutputsTest, Upnp)
{
    auto enable = poisoned<uint8_t>();
    EXPECT_ROW(zr_nexa_media_upnp_get_v1(&enable), 0u, "info  entry", "call  GetUPNPStatus()");
    EXPECT_TRUE(is_poisoned(enable));

    auto interval = poisoned<uint16_t>();
    EXPECT_ROW(zr_nexa_media_upnp_notify_interval_get_v1(&interval), 0u,
               "info  entry",
               "call  GetUPNPNotifyInterval()",
               "info  Get UPnP Notify Interval is 0");
    EXPECT_EQ(interval, 0);

    auto state = poisoned<uint8_t>();
    EXPECT_ROW(zr_nexa_media_upnp_pinhole_state_get_v1(5, &state), 0u,
               "info  entry",
               "call  SetWWANProfileHandlePreference(5)",
               "call  GetUPNPState()",
               "info  Get UPNP Pinhole state is 0");
    EXPECT_EQ(state, 0);

    // A firewall of which nothing is known is off.
    EXPECT_ROW(zr_nexa_media_upnp_pinhole_state_set_v1(5, 1), 14u,
               "info  entry",
               "call  SetWWANProfileHandlePreference(5)",
               "call  GetFirewall()",
               "error Firewall is DISABLED. UPNP NOT ALLOWED");
}

}  // namespace
