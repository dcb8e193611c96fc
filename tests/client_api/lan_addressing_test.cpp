#include "api_test.h"

namespace {

using LanAddressingTest = ApiTest;

// 10.1.2.1 with pool 10.1.2.20 to 10.1.2.60, and a DNS pair.
qcmap_msgr_lan_config_v01 platform_lan(uint32_t dns_mode = 3, uint8_t enable_dhcp = 1)
{
    qcmap_msgr_lan_config_v01 lan = {};
    lan.gateway_ip = 0x0A010201;
    lan.netmask = 0xFFFFFF00;
    lan.enable_dhcp = enable_dhcp;
    lan.dhcp_start_ip = 0x0A010214;
    lan.dhcp_end_ip = 0x0A01023C;
    lan.lease_time = 7200;
    lan.dns_mode = dns_mode;
    lan.primary_dns = 0x08080808;
    lan.secondary_dns = 0x01020304;
    lan.mtu = 1480;
    return lan;
}

zr_nexa_lan_dhcp_cfg_t dhcp_cfg(uint32_t dns_mode = 3)
{
    zr_nexa_lan_dhcp_cfg_t cfg;
    cfg.gateway_ip = 0xC0A80A01;
    cfg.netmask = 0xFFFF0000;
    cfg.dhcp_start_ip = 0xC0A80A14;
    cfg.dhcp_end_ip = 0xC0A80A3C;
    cfg.lease_time = 43200;
    cfg.mtu = 1400;
    cfg.dns_mode = dns_mode;
    cfg.primary_dns = 0x09090909;
    cfg.secondary_dns = 0xFF000001;
    return cfg;
}

std::vector<std::string> dhcp_cfg_lines(const std::string& lan_id, const std::string& dns_mode)
{
    return {"info  LAN_ID=" + lan_id + " GatewayIP=192.168.10.1",
            "info  LAN_ID=" + lan_id + " Netmask=255.255.0.0",
            "info  LAN_ID=" + lan_id + " DHCPStartIP=192.168.10.20",
            "info  LAN_ID=" + lan_id + " DHCPEndIP=192.168.10.60",
            "info  LAN_ID=" + lan_id + " DHCPLeaseTime=43200",
            "info  LAN_ID=" + lan_id + " DHCPMTU=1400",
            "info  LAN_ID=" + lan_id + " DNSMode=" + dns_mode + " PriDNSAddr=9.9.9.9",
            "info  LAN_ID=" + lan_id + " SecDNSAddr=255.0.0.1"};
}

std::string set_lan_call(const std::string& enable_dhcp, const std::string& dns)
{
    return "call  SetLANConfig(gateway_ip=3232238081 netmask=4294901760 enable_dhcp=" + enable_dhcp +
           " dhcp_start_ip=3232238100 dhcp_end_ip=3232238140 lease_time=43200 " + dns + " mtu=1400)";
}

// ---- gateway URL ----

TEST_F(LanAddressingTest, GatewayUrlIsHandedOnWithItsLength)
{
    EXPECT_ROW(zr_nexa_lan_gwurl_set_v1("router.example"), 0u,
               "info  entry",
               "call  SetGatewayUrl(url=\"router.example\" len=14)",
               "info  Set gateway url:router.example, error 0");
    EXPECT_ROW(zr_nexa_lan_gwurl_set_v1(""), 0u,
               "info  entry",
               "call  SetGatewayUrl(url=\"\" len=0)",
               "info  Set gateway url:, error 0");
    const std::string long_url(100000, 'u');
    EXPECT_ROW(zr_nexa_lan_gwurl_set_v1(long_url.c_str()), 0u,
               "info  entry",
               "call  SetGatewayUrl(url=\"" + long_url + "\" len=100000)",
               "info  Set gateway url:" + long_url + ", error 0");
    EXPECT_ROW(zr_nexa_lan_gwurl_set_v1(nullptr), 4u, "info  entry");
}

TEST_F(LanAddressingTest, GatewayUrlIsReadIntoTheCallersBuffer)
{
    char url[ZR_NEXA_LAN_GWURL_SIZE];
    std::memset(url, 0xA5, sizeof(url));
    uint32_t len = 0xA5A5A5A5;
    EXPECT_ROW(zr_nexa_lan_gwurl_get_v1(nullptr, &len), 4u, "info  entry");
    EXPECT_ROW(zr_nexa_lan_gwurl_get_v1(url, nullptr), 4u, "info  entry");
    platform.on("GetGatewayUrl").gives_array("url", "mobileap.home", 14).gives("len", 13u).succeeds(7);
    EXPECT_ROW(zr_nexa_lan_gwurl_get_v1(url, &len), 7u,
               "info  entry",
               "call  GetGatewayUrl()",
               "info  Get gateway url:mobileap.home gwurl_len=13, error 7");
    EXPECT_STREQ(url, "mobileap.home");
    EXPECT_EQ(static_cast<unsigned char>(url[14]), 0xA5);
    EXPECT_EQ(len, 13u);
}

TEST_F(LanAddressingTest, GatewayUrlThatFillsItsBufferIsLoggedUpToTheEnd)
{
    char url[ZR_NEXA_LAN_GWURL_SIZE];
    uint32_t len = 0;
    const std::string full(sizeof(url), 'x');
    platform.on("GetGatewayUrl").gives_array("url", full.data(), full.size()).gives("len", 128u);
    EXPECT_ROW(zr_nexa_lan_gwurl_get_v1(url, &len), 0u,
               "info  entry",
               "call  GetGatewayUrl()",
               "info  Get gateway url:" + full + " gwurl_len=128, error 0");
}

TEST_F(LanAddressingTest, WhatAFailedServiceLeavesInTheUrlStays)
{
    char url[ZR_NEXA_LAN_GWURL_SIZE] = "before";
    uint32_t len = 99;
    platform.on("GetGatewayUrl").gives_array("url", "half", 5).gives("len", 0x80000001u).fails(3);
    EXPECT_ROW(zr_nexa_lan_gwurl_get_v1(url, &len), 0x1003u,
               "info  entry",
               "call  GetGatewayUrl()",
               "error Get gateway url error 3, gwurl:half gwurl_len=-2147483647");
    EXPECT_STREQ(url, "half");
    EXPECT_EQ(len, 0x80000001u);
}

// ---- DHCP server switch ----

TEST_F(LanAddressingTest, ServerSwitchChangesOneByteOfTheBridge)
{
    platform.on("GetLANConfig").gives("lan", platform_lan(3, 1));
    const struct {
        int32_t enable;
        std::string stored;
        std::string shown_hex;
    } rows[] = {{0, "0", "0"}, {1, "1", "1"}, {2, "2", "2"}, {256, "0", "100"}, {-1, "255", "ffffffff"}};
    for (const auto& row : rows) {
        EXPECT_ROW(zr_nexa_lan_dhcp_srvctl_set_v1(7, row.enable), 0u,
                   "info  entry",
                   "info  lan_id: 7",
                   "call  SelectLANBridge(7)",
                   "call  GetLANConfig()",
                   "call  SetLANConfig(gateway_ip=167838209 netmask=4294967040 enable_dhcp=" + row.stored +
                       " dhcp_start_ip=167838228 dhcp_end_ip=167838268 lease_time=7200 dns_mode=3"
                       " primary_dns=134744072 secondary_dns=16909060 mtu=1480)",
                   "info  Set LAN ID 7 DHCP Server(enable_dhcp=" + row.shown_hex + ") config successfully");
    }
}

TEST_F(LanAddressingTest, ServerSwitchOfAMissingBridgeSetsTheDefaultAction)
{
    platform.on("SelectLANBridge").fails(25);
    const struct {
        int32_t enable;
        const char* call;
    } rows[] = {{0, "call  ZR_SetDefaultEnableDHCP(0)"},
                {1, "call  ZR_SetDefaultEnableDHCP(1)"},
                {2, "call  ZR_SetDefaultEnableDHCP(0)"},
                {3, "call  ZR_SetDefaultEnableDHCP(1)"},
                {-1, "call  ZR_SetDefaultEnableDHCP(1)"}};
    for (const auto& row : rows) {
        EXPECT_ROW(zr_nexa_lan_dhcp_srvctl_set_v1(300, row.enable), 0u,
                   "info  entry",
                   "info  lan_id: 300",
                   "call  SelectLANBridge(300)",
                   row.call,
                   "info  Set ZR DHCP Default Action successfully ");
    }
}

TEST_F(LanAddressingTest, ServerSwitchGivesTheBridgesByte)
{
    uint32_t enable = 0xA5A5A5A5;
    for (const unsigned value : {0u, 1u, 2u, 255u}) {
        platform.on("GetLANConfig").gives("lan", platform_lan(1, static_cast<uint8_t>(value)));
        EXPECT_ROW(zr_nexa_lan_dhcp_srvctl_get_v1(4094, &enable), 0u,
                   "info  entry",
                   "call  SelectLANBridge(4094)",
                   "call  GetLANConfig()");
        EXPECT_EQ(enable, value);
    }
}

TEST_F(LanAddressingTest, ServerSwitchOfAMissingBridgeIsTheDefaultAction)
{
    platform.on("SelectLANBridge").fails(25);
    uint32_t enable = 0xA5A5A5A5;
    const struct {
        int state;
        uint32_t enable;
    } rows[] = {{0, 0}, {1, 1}, {2, 0}, {-1, 0}, {257, 0}};
    for (const auto& row : rows) {
        platform.on("ZR_GetDefaultEnableDHCP").gives("state", static_cast<qcmap_msgr_config_state_enum_v01>(row.state));
        EXPECT_ROW(zr_nexa_lan_dhcp_srvctl_get_v1(12, &enable), 0u,
                   "info  entry",
                   "call  SelectLANBridge(12)",
                   "call  ZR_GetDefaultEnableDHCP()",
                   "info  Get ZR DHCP Default Action successfully: " + std::to_string(row.enable));
        EXPECT_EQ(enable, row.enable);
    }
}

// ---- LAN ids ----

TEST_F(LanAddressingTest, LanIdsEndAt4094)
{
    uint32_t enable = 0xA5A5A5A5;
    auto cfg = poisoned<zr_nexa_lan_dhcp_cfg_t>();
    for (const uint32_t lan_id : {4095u, 4096u, 65535u, 65536u, 0x80000000u, 0xFFFFFFFFu}) {
        EXPECT_ROW(zr_nexa_lan_dhcp_srvctl_set_v1(lan_id, 1), 6u,
                   "info  entry",
                   "info  lan_id: " + std::to_string(static_cast<int>(lan_id)));
        EXPECT_ROW(zr_nexa_lan_dhcp_srvctl_get_v1(lan_id, &enable), 6u, "info  entry");
        EXPECT_ROW(zr_nexa_lan_dhcp_srvctl_get_v1(lan_id, nullptr), 6u, "info  entry");
        EXPECT_ROW(zr_nexa_lan_dhcp_set_v1(lan_id, &cfg), 6u, "info  entry");
        EXPECT_ROW(zr_nexa_lan_dhcp_get_v1(lan_id, &cfg), 6u, "info  entry");
    }
    EXPECT_EQ(enable, 0xA5A5A5A5u);
    EXPECT_TRUE(is_poisoned(cfg));
    EXPECT_EQ(zr_nexa_lan_dhcp_srvctl_set_v1(4094, 1), 0u);
    EXPECT_EQ(zr_nexa_lan_dhcp_set_v1(4094, &cfg), 0u);
    EXPECT_EQ(zr_nexa_lan_dhcp_get_v1(4094, &cfg), 0u);
    EXPECT_THAT(platform.lines(""), testing::Contains("call  SelectLANBridge(4094)").Times(3));
}

TEST_F(LanAddressingTest, ANullRecordIsSeenBeforeTheLanId)
{
    for (const uint32_t lan_id : {0u, 4095u}) {
        EXPECT_ROW(zr_nexa_lan_dhcp_set_v1(lan_id, nullptr), 4u, "info  entry");
        EXPECT_ROW(zr_nexa_lan_dhcp_get_v1(lan_id, nullptr), 4u, "info  entry");
    }
}

// ---- addresses and DHCP pool ----

TEST_F(LanAddressingTest, DhcpSetKeepsTheServerSwitchAndActivates)
{
    for (const unsigned enable_dhcp : {0u, 1u, 200u}) {
        platform.on("GetLANConfig").gives("lan", platform_lan(1, static_cast<uint8_t>(enable_dhcp)));
        const auto cfg = dhcp_cfg(3);
        EXPECT_ROW(zr_nexa_lan_dhcp_set_v1(5, &cfg), 0u,
                   "info  entry",
                   dhcp_cfg_lines("5", "3"),
                   "call  SelectLANBridge(5)",
                   "call  GetLANConfig()",
                   set_lan_call(std::to_string(enable_dhcp),
                                "dns_mode=3 primary_dns=151587081 secondary_dns=4278190081"),
                   "call  ActivateLAN()");
    }
}

TEST_F(LanAddressingTest, DhcpSetDropsDnsAddressesThatItsModeDoesNotCarry)
{
    const struct {
        uint32_t mode;
        const char* logged;
        const char* stored;
    } rows[] = {
        {0, "0", "dns_mode=0 primary_dns=0 secondary_dns=0"},
        {1, "1", "dns_mode=1 primary_dns=0 secondary_dns=0"},
        {2, "2", "dns_mode=2 primary_dns=0 secondary_dns=0"},
        {3, "3", "dns_mode=3 primary_dns=151587081 secondary_dns=4278190081"},
        {4, "4", "dns_mode=0 primary_dns=0 secondary_dns=0"},
        {7, "7", "dns_mode=0 primary_dns=0 secondary_dns=0"},
        {259, "259", "dns_mode=0 primary_dns=0 secondary_dns=0"},
        {0xFFFFFFFF, "-1", "dns_mode=0 primary_dns=0 secondary_dns=0"},
    };
    for (const auto& row : rows) {
        const auto cfg = dhcp_cfg(row.mode);
        EXPECT_ROW(zr_nexa_lan_dhcp_set_v1(0, &cfg), 0u,
                   "info  entry",
                   dhcp_cfg_lines("0", row.logged),
                   "call  SelectLANBridge(0)",
                   "call  GetLANConfig()",
                   set_lan_call("0", row.stored),
                   "call  ActivateLAN()");
    }
}

TEST_F(LanAddressingTest, DhcpGetCopiesTheBridgesAddressing)
{
    platform.on("GetLANConfig").gives("lan", platform_lan(3));
    auto cfg = poisoned<zr_nexa_lan_dhcp_cfg_t>();
    EXPECT_ROW(zr_nexa_lan_dhcp_get_v1(9, &cfg), 0u,
               "info  entry",
               "call  SelectLANBridge(9)",
               "call  GetLANConfig()",
               "info  LAN_ID=9 GatewayIP=10.1.2.1",
               "info  LAN_ID=9 Netmask=255.255.255.0",
               "info  LAN_ID=9 DHCPStartIP=10.1.2.20",
               "info  LAN_ID=9 DHCPEndIP=10.1.2.60",
               "info  LAN_ID=9 DHCPLeaseTime=7200",
               "info  LAN_ID=9 DHCPMTU=1480",
               "info  LAN_ID=9 DNSMode=3 PriDNSAddr=8.8.8.8",
               "info  LAN_ID=9 SecDNSAddr=1.2.3.4");
    EXPECT_EQ(cfg.gateway_ip, 0x0A010201u);
    EXPECT_EQ(cfg.netmask, 0xFFFFFF00u);
    EXPECT_EQ(cfg.dhcp_start_ip, 0x0A010214u);
    EXPECT_EQ(cfg.dhcp_end_ip, 0x0A01023Cu);
    EXPECT_EQ(cfg.lease_time, 7200u);
    EXPECT_EQ(cfg.mtu, 1480u);
    EXPECT_EQ(cfg.dns_mode, 3u);
    EXPECT_EQ(cfg.primary_dns, 0x08080808u);
    EXPECT_EQ(cfg.secondary_dns, 0x01020304u);
}

TEST_F(LanAddressingTest, DhcpGetKeepsTheCallersDnsFieldsWhenTheModeDoesNotCarryThem)
{
    const struct {
        uint32_t platform_mode;
        uint32_t mode;  // 44 is the caller's
        const char* logged;
    } rows[] = {{0, 44, "44"}, {1, 1, "1"}, {2, 2, "2"}, {4, 44, "44"}, {257, 44, "44"}, {0xFFFFFFFF, 44, "44"}};
    for (const auto& row : rows) {
        auto lan = platform_lan(row.platform_mode);
        // The rest as the caller's, so that only the mode shows.
        lan.gateway_ip = 0xC0A80A01;
        lan.netmask = 0xFFFF0000;
        lan.dhcp_start_ip = 0xC0A80A14;
        lan.dhcp_end_ip = 0xC0A80A3C;
        lan.lease_time = 43200;
        lan.mtu = 1400;
        platform.on("GetLANConfig").gives("lan", lan);
        auto cfg = dhcp_cfg(44);
        EXPECT_ROW(zr_nexa_lan_dhcp_get_v1(0, &cfg), 0u,
                   "info  entry",
                   "call  SelectLANBridge(0)",
                   "call  GetLANConfig()",
                   dhcp_cfg_lines("0", row.logged));
        EXPECT_EQ(cfg.dns_mode, row.mode);
        EXPECT_EQ(cfg.primary_dns, 0x09090909u);
        EXPECT_EQ(cfg.secondary_dns, 0xFF000001u);
    }
}

// ---- default DHCP action ----

TEST_F(LanAddressingTest, DefaultActionIsReadAsASwitch)
{
    const struct {
        int state;
        uint8_t enable;
    } rows[] = {{0, 0}, {1, 1}, {2, 0}, {-1, 0}, {0x101, 0}};
    for (const auto& row : rows) {
        uint8_t enable = 0xA5;
        platform.on("ZR_GetDefaultEnableDHCP").gives("state", static_cast<qcmap_msgr_config_state_enum_v01>(row.state));
        EXPECT_ROW(zr_nexa_lan_dhcp_default_action_get_v1(&enable), 0u,
                   "info  entry",
                   "call  ZR_GetDefaultEnableDHCP()",
                   "info  Get DHCP Default Action successfully: " + std::to_string(row.enable));
        EXPECT_EQ(enable, row.enable);
    }
}

TEST_F(LanAddressingTest, DefaultActionIsSetUnchecked)
{
    for (const uint32_t state : {0u, 1u, 2u, 256u, 0xFFFFFFFFu}) {
        EXPECT_ROW(zr_nexa_lan_dhcp_default_action_set_v1(state), 0u,
                   "info  entry",
                   "call  ZR_SetDefaultEnableDHCP(" + std::to_string(state) + ")",
                   "info  Set DHCP Default Action successfully ");
    }
}

// ---- IPv4 and IPv6 switches ----

TEST_F(LanAddressingTest, FamiliesAreSwitchedIpv4First)
{
    EXPECT_ROW(zr_nexa_lan_ipv4v6_set_v1(0, 0), 0u,
               "info  entry",
               "call  DisableIPV4()",
               "call  DisableIPV6()",
               "info  Set IPv4 cfg:0, IPv6 cfg:0, error 0");
    EXPECT_ROW(zr_nexa_lan_ipv4v6_set_v1(0, 1), 0u,
               "info  entry",
               "call  DisableIPV4()",
               "call  EnableIPV6()",
               "info  Set IPv4 cfg:0, IPv6 cfg:1, error 0");
    EXPECT_ROW(zr_nexa_lan_ipv4v6_set_v1(1, 0), 0u,
               "info  entry",
               "call  EnableIPV4()",
               "call  DisableIPV6()",
               "info  Set IPv4 cfg:1, IPv6 cfg:0, error 0");
    // The word is the last call's, not the first one's.
    platform.on("EnableIPV4").succeeds(11);
    EXPECT_ROW(zr_nexa_lan_ipv4v6_set_v1(1, 1), 0u,
               "info  entry",
               "call  EnableIPV4()",
               "call  EnableIPV6()",
               "info  Set IPv4 cfg:1, IPv6 cfg:1, error 0");
}

TEST_F(LanAddressingTest, FamilySwitchesAbove1AreRefused)
{
    for (const uint32_t bad : {2u, 256u, 0x80000000u, 0xFFFFFFFFu}) {
        EXPECT_ROW(zr_nexa_lan_ipv4v6_set_v1(bad, 1), 4u, "info  entry");
        EXPECT_ROW(zr_nexa_lan_ipv4v6_set_v1(1, bad), 4u, "info  entry");
    }
}

TEST_F(LanAddressingTest, FamiliesAreReadAsTheServiceGivesThem)
{
    platform.on("GetIPv4State").gives("state", uint8_t{1});
    platform.on("GetIPv6State").gives("state", uint8_t{200}).succeeds(9);
    uint8_t ipv4 = 0xA5;
    uint8_t ipv6 = 0xA5;
    EXPECT_ROW(zr_nexa_lan_ipv4v6_get_v1(nullptr, &ipv6), 4u, "info  entry");
    EXPECT_ROW(zr_nexa_lan_ipv4v6_get_v1(&ipv4, nullptr), 4u, "info  entry");
    EXPECT_ROW(zr_nexa_lan_ipv4v6_get_v1(&ipv4, &ipv6), 9u,
               "info  entry",
               "call  GetIPv4State()",
               "call  GetIPv6State()",
               "info  Get NEXA IPv4 cfg 1, IPv6 cfg 200, error 9");
    EXPECT_EQ(ipv4, 1);
    EXPECT_EQ(ipv6, 200);
}

TEST_F(LanAddressingTest, Ipv4IsWrittenBeforeIpv6IsRead)
{
    uint8_t ipv4 = 0xA5;
    uint8_t ipv6 = 0xA5;
    platform.on("GetIPv4State").gives("state", uint8_t{1}).fails(3);
    EXPECT_EQ(zr_nexa_lan_ipv4v6_get_v1(&ipv4, &ipv6), 0x2003u);
    EXPECT_EQ(ipv4, 0xA5);
    platform.on("GetIPv4State").succeeds();
    platform.on("GetIPv6State").gives("state", uint8_t{1}).fails(3);
    EXPECT_EQ(zr_nexa_lan_ipv4v6_get_v1(&ipv4, &ipv6), 0x3003u);
    EXPECT_EQ(ipv4, 1);
    EXPECT_EQ(ipv6, 0xA5);
}

}  // namespace
