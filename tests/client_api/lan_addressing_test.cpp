#include "api_test.h"

namespace {

using LanAddressingTest = ApiTest;

const char* const kGwurlSet = "zr_nexa_lan_gwurl_set_v1";
const char* const kGwurlGet = "zr_nexa_lan_gwurl_get_v1";
const char* const kSrvctlSet = "zr_nexa_lan_dhcp_srvctl_set_v1";
const char* const kSrvctlGet = "zr_nexa_lan_dhcp_srvctl_get_v1";
const char* const kDhcpSet = "zr_nexa_lan_dhcp_set_v1";
const char* const kDhcpGet = "zr_nexa_lan_dhcp_get_v1";
const char* const kActionSet = "zr_nexa_lan_dhcp_default_action_set_v1";
const char* const kActionGet = "zr_nexa_lan_dhcp_default_action_get_v1";
const char* const kFamiliesSet = "zr_nexa_lan_ipv4v6_set_v1";
const char* const kFamiliesGet = "zr_nexa_lan_ipv4v6_get_v1";

constexpr auto kStateOn = QCMAP_MSGR_CONFIG_STATE_ON_V01;

std::string word(uint32_t err)
{
    return std::to_string(static_cast<int>(err));
}

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

std::vector<ExpectedRecord> dhcp_cfg_records(const std::string& lan_id, const std::string& dns_mode)
{
    return {info("entry"),
            info("LAN_ID=" + lan_id + " GatewayIP=192.168.10.1"),
            info("LAN_ID=" + lan_id + " Netmask=255.255.0.0"),
            info("LAN_ID=" + lan_id + " DHCPStartIP=192.168.10.20"),
            info("LAN_ID=" + lan_id + " DHCPEndIP=192.168.10.60"),
            info("LAN_ID=" + lan_id + " DHCPLeaseTime=43200"),
            info("LAN_ID=" + lan_id + " DHCPMTU=1400"),
            info("LAN_ID=" + lan_id + " DNSMode=" + dns_mode + " PriDNSAddr=9.9.9.9"),
            info("LAN_ID=" + lan_id + " SecDNSAddr=255.0.0.1")};
}

std::string set_lan_call(const std::string& enable_dhcp, const std::string& dns)
{
    return "SetLANConfig(gateway_ip=3232238081 netmask=4294901760 enable_dhcp=" + enable_dhcp +
           " dhcp_start_ip=3232238100 dhcp_end_ip=3232238140 lease_time=43200 " + dns + " mtu=1400)";
}

// ---- gateway URL ----

TEST_F(LanAddressingTest, GatewayUrlIsHandedOnWithItsLength)
{
    EXPECT_EQ(zr_nexa_lan_gwurl_set_v1("router.example"), 0u);
    expect_row(kGwurlSet, {"SetGatewayUrl(url=\"router.example\" len=14)"},
               {info("entry"), info("Set gateway url:router.example, error 0")});
    EXPECT_EQ(zr_nexa_lan_gwurl_set_v1(""), 0u);
    expect_row(kGwurlSet, {"SetGatewayUrl(url=\"\" len=0)"}, {info("entry"), info("Set gateway url:, error 0")});
    const std::string long_url(100000, 'u');
    EXPECT_EQ(zr_nexa_lan_gwurl_set_v1(long_url.c_str()), 0u);
    expect_calls({"SetGatewayUrl(url=\"" + long_url + "\" len=100000)"});
}

TEST_F(LanAddressingTest, GatewayUrlSetFails)
{
    EXPECT_EQ(zr_nexa_lan_gwurl_set_v1(nullptr), 4u);
    expect_row(kGwurlSet, {}, {info("entry")});
    for (const uint32_t err : kErrorWords) {
        platform.on("SetGatewayUrl").fails(err);
        EXPECT_EQ(zr_nexa_lan_gwurl_set_v1("a.b"), err | 0x1000);
        expect_row(kGwurlSet, {"SetGatewayUrl(url=\"a.b\" len=3)"},
                   {info("entry"), error("Set gateway url error " + word(err) + ", gwurl:a.b")});
    }
}

TEST_F(LanAddressingTest, GatewayUrlIsReadIntoTheCallersBuffer)
{
    char url[ZR_NEXA_LAN_GWURL_SIZE];
    std::memset(url, 0xA5, sizeof(url));
    uint32_t len = 0xA5A5A5A5;
    platform.on("GetGatewayUrl").gives_array("url", "mobileap.home", 14).gives("len", 13u).succeeds(7);
    EXPECT_EQ(zr_nexa_lan_gwurl_get_v1(url, &len), 7u);
    EXPECT_STREQ(url, "mobileap.home");
    EXPECT_EQ(static_cast<unsigned char>(url[14]), 0xA5);
    EXPECT_EQ(len, 13u);
    expect_row(kGwurlGet, {"GetGatewayUrl()"},
               {info("entry"), info("Get gateway url:mobileap.home gwurl_len=13, error 7")});
}

TEST_F(LanAddressingTest, GatewayUrlThatFillsItsBufferIsLoggedUpToTheEnd)
{
    char url[ZR_NEXA_LAN_GWURL_SIZE];
    uint32_t len = 0;
    const std::string full(sizeof(url), 'x');
    platform.on("GetGatewayUrl").gives_array("url", full.data(), full.size()).gives("len", 128u);
    EXPECT_EQ(zr_nexa_lan_gwurl_get_v1(url, &len), 0u);
    expect_row(kGwurlGet, {"GetGatewayUrl()"},
               {info("entry"), info("Get gateway url:" + full + " gwurl_len=128, error 0")});
}

TEST_F(LanAddressingTest, GatewayUrlGetFails)
{
    char url[ZR_NEXA_LAN_GWURL_SIZE] = "before";
    uint32_t len = 99;
    EXPECT_EQ(zr_nexa_lan_gwurl_get_v1(nullptr, &len), 4u);
    EXPECT_EQ(zr_nexa_lan_gwurl_get_v1(url, nullptr), 4u);
    expect_row(kGwurlGet, {}, {info("entry"), info("entry")});
    for (const uint32_t err : kErrorWords) {
        platform.on("GetGatewayUrl").fails(err);
        EXPECT_EQ(zr_nexa_lan_gwurl_get_v1(url, &len), err | 0x1000);
        EXPECT_STREQ(url, "before");
        EXPECT_EQ(len, 99u);
        expect_row(kGwurlGet, {"GetGatewayUrl()"},
                   {info("entry"), error("Get gateway url error " + word(err) + ", gwurl:before gwurl_len=99")});
    }
    // The service has the caller's own buffer and length, so what it leaves in them stays.
    platform.on("GetGatewayUrl").gives_array("url", "half", 5).gives("len", 0x80000001u).fails(3);
    EXPECT_EQ(zr_nexa_lan_gwurl_get_v1(url, &len), 0x1003u);
    EXPECT_STREQ(url, "half");
    EXPECT_EQ(len, 0x80000001u);
    expect_row(kGwurlGet, {"GetGatewayUrl()"},
               {info("entry"), error("Get gateway url error 3, gwurl:half gwurl_len=-2147483647")});
}

// ---- DHCP server switch ----

TEST_F(LanAddressingTest, ServerSwitchChangesOneByteOfTheBridge)
{
    platform.on("GetLANConfig").gives("lan", platform_lan(3, 1));
    const std::string rest =
        " dhcp_start_ip=167838228 dhcp_end_ip=167838268 lease_time=7200 dns_mode=3 primary_dns=134744072"
        " secondary_dns=16909060 mtu=1480)";
    const struct {
        int32_t enable;
        const char* stored;
        const char* shown_hex;
    } rows[] = {{0, "0", "0"}, {1, "1", "1"}, {2, "2", "2"}, {256, "0", "100"}, {-1, "255", "ffffffff"}};
    for (const auto& row : rows) {
        EXPECT_EQ(zr_nexa_lan_dhcp_srvctl_set_v1(7, row.enable), 0u);
        expect_row(
            kSrvctlSet,
            {"SelectLANBridge(7)", "GetLANConfig()",
             std::string("SetLANConfig(gateway_ip=167838209 netmask=4294967040 enable_dhcp=") + row.stored + rest},
            {info("entry"), info("lan_id: 7"),
             info(std::string("Set LAN ID 7 DHCP Server(enable_dhcp=") + row.shown_hex + ") config successfully")});
    }
}

TEST_F(LanAddressingTest, ServerSwitchOfAMissingBridgeSetsTheDefaultAction)
{
    platform.on("SelectLANBridge").fails(25);
    const struct {
        int32_t enable;
        const char* call;
    } rows[] = {{0, "ZR_SetDefaultEnableDHCP(0)"},
                {1, "ZR_SetDefaultEnableDHCP(1)"},
                {2, "ZR_SetDefaultEnableDHCP(0)"},
                {3, "ZR_SetDefaultEnableDHCP(1)"},
                {-1, "ZR_SetDefaultEnableDHCP(1)"}};
    for (const auto& row : rows) {
        EXPECT_EQ(zr_nexa_lan_dhcp_srvctl_set_v1(300, row.enable), 0u);
        expect_row(kSrvctlSet, {"SelectLANBridge(300)", row.call},
                   {info("entry"), info("lan_id: 300"), info("Set ZR DHCP Default Action successfully ")});
    }
    platform.on("ZR_SetDefaultEnableDHCP").succeeds(5);
    EXPECT_EQ(zr_nexa_lan_dhcp_srvctl_set_v1(300, 1), 5u);
    platform.forget();
    for (const uint32_t err : kErrorWords) {
        platform.on("ZR_SetDefaultEnableDHCP").fails(err);
        EXPECT_EQ(zr_nexa_lan_dhcp_srvctl_set_v1(300, 1), err | 0x1000);
        expect_row(kSrvctlSet, {"SelectLANBridge(300)", "ZR_SetDefaultEnableDHCP(1)"},
                   {info("entry"), info("lan_id: 300"), error("Set ZR DHCP Default Action failure")});
    }
}

TEST_F(LanAddressingTest, ServerSwitchSetFailsAtReadingAndAtWriting)
{
    for (const uint32_t err : kErrorWords) {
        platform.on("GetLANConfig").fails(err);
        EXPECT_EQ(zr_nexa_lan_dhcp_srvctl_set_v1(0, 256), err | 0x2000);
        expect_row(kSrvctlSet, {"SelectLANBridge(0)", "GetLANConfig()"},
                   {info("entry"), info("lan_id: 0"),
                    error("Get LAN ID 0 DHCP Server(enable_dhcp=256) config error " + word(err))});
    }
    platform.on("GetLANConfig").succeeds();
    const std::string write =
        "SetLANConfig(gateway_ip=0 netmask=0 enable_dhcp=1 dhcp_start_ip=0 dhcp_end_ip=0 lease_time=0 dns_mode=0"
        " primary_dns=0 secondary_dns=0 mtu=0)";
    for (const uint32_t err : kErrorWords) {
        platform.on("SetLANConfig").fails(err);
        EXPECT_EQ(zr_nexa_lan_dhcp_srvctl_set_v1(0, 257), err | 0x3000);
        expect_row(kSrvctlSet, {"SelectLANBridge(0)", "GetLANConfig()", write},
                   {info("entry"), info("lan_id: 0"),
                    error("Set LAN ID 0 DHCP Server(enable_dhcp=257) config error " + word(err))});
    }
}

TEST_F(LanAddressingTest, ServerSwitchGivesTheBridgesByte)
{
    uint32_t enable = 0xA5A5A5A5;
    for (const unsigned value : {0u, 1u, 2u, 255u}) {
        platform.on("GetLANConfig").gives("lan", platform_lan(1, static_cast<uint8_t>(value)));
        EXPECT_EQ(zr_nexa_lan_dhcp_srvctl_get_v1(4094, &enable), 0u);
        EXPECT_EQ(enable, value);
        expect_row(kSrvctlGet, {"SelectLANBridge(4094)", "GetLANConfig()"}, {info("entry")});
    }
    platform.on("GetLANConfig").succeeds(17);
    EXPECT_EQ(zr_nexa_lan_dhcp_srvctl_get_v1(0, &enable), 17u);
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
        EXPECT_EQ(zr_nexa_lan_dhcp_srvctl_get_v1(12, &enable), 0u);
        EXPECT_EQ(enable, row.enable);
        expect_row(kSrvctlGet, {"SelectLANBridge(12)", "ZR_GetDefaultEnableDHCP()"},
                   {info("entry"), info("Get ZR DHCP Default Action successfully: " + std::to_string(row.enable))});
    }
    enable = 0xA5A5A5A5;
    for (const uint32_t err : kErrorWords) {
        platform.on("ZR_GetDefaultEnableDHCP").gives("state", kStateOn).fails(err);
        EXPECT_EQ(zr_nexa_lan_dhcp_srvctl_get_v1(12, &enable), err | 0x1000);
        EXPECT_EQ(enable, 0xA5A5A5A5u);
        expect_row(kSrvctlGet, {"SelectLANBridge(12)", "ZR_GetDefaultEnableDHCP()"},
                   {info("entry"), error("Get ZR DHCP Default Action failure")});
    }
}

TEST_F(LanAddressingTest, ServerSwitchGetFailsAtReading)
{
    uint32_t enable = 0xA5A5A5A5;
    for (const uint32_t err : kErrorWords) {
        platform.on("GetLANConfig").fails(err);
        EXPECT_EQ(zr_nexa_lan_dhcp_srvctl_get_v1(3, &enable), err | 0x2000);
        EXPECT_EQ(enable, 0xA5A5A5A5u);
        expect_row(kSrvctlGet, {"SelectLANBridge(3)", "GetLANConfig()"},
                   {info("entry"), error("Get LAN ID 3 DHCP Server(enable_dhcp=0) config error " + word(err))});
    }
    platform.on("GetLANConfig").gives("lan", platform_lan(1, 9)).fails(3);
    EXPECT_EQ(zr_nexa_lan_dhcp_srvctl_get_v1(3, &enable), 0x2003u);
    EXPECT_EQ(enable, 0xA5A5A5A5u);
    expect_row(kSrvctlGet, {"SelectLANBridge(3)", "GetLANConfig()"},
               {info("entry"), error("Get LAN ID 3 DHCP Server(enable_dhcp=9) config error 3")});
}

// ---- LAN ids ----

TEST_F(LanAddressingTest, LanIdsEndAt4094)
{
    uint32_t enable = 0xA5A5A5A5;
    auto cfg = poisoned<zr_nexa_lan_dhcp_cfg_t>();
    for (const uint32_t lan_id : {4095u, 4096u, 65535u, 65536u, 0x80000000u, 0xFFFFFFFFu}) {
        EXPECT_EQ(zr_nexa_lan_dhcp_srvctl_set_v1(lan_id, 1), 6u);
        expect_row(kSrvctlSet, {}, {info("entry"), info("lan_id: " + word(lan_id))});
        EXPECT_EQ(zr_nexa_lan_dhcp_srvctl_get_v1(lan_id, &enable), 6u);
        EXPECT_EQ(zr_nexa_lan_dhcp_srvctl_get_v1(lan_id, nullptr), 6u);
        expect_row(kSrvctlGet, {}, {info("entry"), info("entry")});
        EXPECT_EQ(zr_nexa_lan_dhcp_set_v1(lan_id, &cfg), 6u);
        expect_row(kDhcpSet, {}, {info("entry")});
        EXPECT_EQ(zr_nexa_lan_dhcp_get_v1(lan_id, &cfg), 6u);
        expect_row(kDhcpGet, {}, {info("entry")});
    }
    EXPECT_EQ(enable, 0xA5A5A5A5u);
    EXPECT_TRUE(is_poisoned(cfg));
    EXPECT_EQ(zr_nexa_lan_dhcp_srvctl_set_v1(4094, 1), 0u);
    EXPECT_EQ(zr_nexa_lan_dhcp_set_v1(4094, &cfg), 0u);
    EXPECT_EQ(zr_nexa_lan_dhcp_get_v1(4094, &cfg), 0u);
    EXPECT_THAT(platform.journal, testing::Contains("SelectLANBridge(4094)").Times(3));
}

TEST_F(LanAddressingTest, ANullRecordIsSeenBeforeTheLanId)
{
    EXPECT_EQ(zr_nexa_lan_dhcp_set_v1(0, nullptr), 4u);
    EXPECT_EQ(zr_nexa_lan_dhcp_set_v1(4095, nullptr), 4u);
    expect_row(kDhcpSet, {}, {info("entry"), info("entry")});
    EXPECT_EQ(zr_nexa_lan_dhcp_get_v1(0, nullptr), 4u);
    EXPECT_EQ(zr_nexa_lan_dhcp_get_v1(4095, nullptr), 4u);
    expect_row(kDhcpGet, {}, {info("entry"), info("entry")});
}

// ---- addresses and DHCP pool ----

TEST_F(LanAddressingTest, DhcpSetKeepsTheServerSwitchAndActivates)
{
    for (const unsigned enable_dhcp : {0u, 1u, 200u}) {
        platform.on("GetLANConfig").gives("lan", platform_lan(1, static_cast<uint8_t>(enable_dhcp)));
        const auto cfg = dhcp_cfg(3);
        EXPECT_EQ(zr_nexa_lan_dhcp_set_v1(5, &cfg), 0u);
        expect_row(
            kDhcpSet,
            {"SelectLANBridge(5)", "GetLANConfig()",
             set_lan_call(std::to_string(enable_dhcp), "dns_mode=3 primary_dns=151587081 secondary_dns=4278190081"),
             "ActivateLAN()"},
            dhcp_cfg_records("5", "3"));
    }
    platform.on("ActivateLAN").succeeds(19);
    const auto cfg = dhcp_cfg();
    EXPECT_EQ(zr_nexa_lan_dhcp_set_v1(0, &cfg), 19u);
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
        EXPECT_EQ(zr_nexa_lan_dhcp_set_v1(0, &cfg), 0u);
        expect_row(kDhcpSet, {"SelectLANBridge(0)", "GetLANConfig()", set_lan_call("0", row.stored), "ActivateLAN()"},
                   dhcp_cfg_records("0", row.logged));
    }
}

TEST_F(LanAddressingTest, DhcpSetFailsAtEachStep)
{
    const auto cfg = dhcp_cfg(1);
    const std::vector<std::string> calls = {"SelectLANBridge(8)", "GetLANConfig()",
                                            set_lan_call("0", "dns_mode=1 primary_dns=0 secondary_dns=0"),
                                            "ActivateLAN()"};
    const struct {
        const char* method;
        uint32_t tag;
        const char* text;
    } steps[] = {
        {"SelectLANBridge", 0x1000, "Select LAN Bridge (LAN_ID=8) error "},
        {"GetLANConfig", 0x2000, "Get LAN ID 8 DHCP Server(enable_dhcp=0) config error "},
        {"SetLANConfig", 0x3000, "Set LAN (LAN_ID=8) config error "},
        {"ActivateLAN", 0x4000, "Activate LAN (LAN_ID=8) error "},
    };
    for (size_t i = 0; i < 4; ++i) {
        for (const uint32_t err : kErrorWords) {
            platform.on(steps[i].method).fails(err);
            EXPECT_EQ(zr_nexa_lan_dhcp_set_v1(8, &cfg), err | steps[i].tag);
            auto records = dhcp_cfg_records("8", "1");
            records.push_back(error(steps[i].text + word(err)));
            expect_row(kDhcpSet, {calls.begin(), calls.begin() + static_cast<std::ptrdiff_t>(i) + 1}, records);
        }
        platform.on(steps[i].method).succeeds();
    }
    platform.on("GetLANConfig").gives("lan", platform_lan(1, 6)).fails(3);
    EXPECT_EQ(zr_nexa_lan_dhcp_set_v1(8, &cfg), 0x2003u);
    EXPECT_EQ(platform.log.back().text, "Get LAN ID 8 DHCP Server(enable_dhcp=6) config error 3");
}

TEST_F(LanAddressingTest, DhcpGetCopiesTheBridgesAddressing)
{
    platform.on("GetLANConfig").gives("lan", platform_lan(3));
    auto cfg = poisoned<zr_nexa_lan_dhcp_cfg_t>();
    EXPECT_EQ(zr_nexa_lan_dhcp_get_v1(9, &cfg), 0u);
    EXPECT_EQ(cfg.gateway_ip, 0x0A010201u);
    EXPECT_EQ(cfg.netmask, 0xFFFFFF00u);
    EXPECT_EQ(cfg.dhcp_start_ip, 0x0A010214u);
    EXPECT_EQ(cfg.dhcp_end_ip, 0x0A01023Cu);
    EXPECT_EQ(cfg.lease_time, 7200u);
    EXPECT_EQ(cfg.mtu, 1480u);
    EXPECT_EQ(cfg.dns_mode, 3u);
    EXPECT_EQ(cfg.primary_dns, 0x08080808u);
    EXPECT_EQ(cfg.secondary_dns, 0x01020304u);
    expect_row(kDhcpGet, {"SelectLANBridge(9)", "GetLANConfig()"},
               {info("entry"), info("LAN_ID=9 GatewayIP=10.1.2.1"), info("LAN_ID=9 Netmask=255.255.255.0"),
                info("LAN_ID=9 DHCPStartIP=10.1.2.20"), info("LAN_ID=9 DHCPEndIP=10.1.2.60"),
                info("LAN_ID=9 DHCPLeaseTime=7200"), info("LAN_ID=9 DHCPMTU=1480"),
                info("LAN_ID=9 DNSMode=3 PriDNSAddr=8.8.8.8"), info("LAN_ID=9 SecDNSAddr=1.2.3.4")});
    platform.on("GetLANConfig").succeeds(77);
    EXPECT_EQ(zr_nexa_lan_dhcp_get_v1(9, &cfg), 77u);
}

TEST_F(LanAddressingTest, DhcpGetKeepsTheCallersDnsFieldsWhenTheModeDoesNotCarryThem)
{
    const struct {
        uint32_t platform_mode;
        uint32_t mode;  // 44 is the caller's
        const char* logged;
    } rows[] = {{0, 44, "44"}, {1, 1, "1"}, {2, 2, "2"}, {4, 44, "44"}, {257, 44, "44"}, {0xFFFFFFFF, 44, "44"}};
    for (const auto& row : rows) {
        SCOPED_TRACE(row.platform_mode);
        platform.on("GetLANConfig").gives("lan", platform_lan(row.platform_mode));
        auto cfg = dhcp_cfg(44);
        EXPECT_EQ(zr_nexa_lan_dhcp_get_v1(0, &cfg), 0u);
        EXPECT_EQ(cfg.dns_mode, row.mode);
        EXPECT_EQ(cfg.primary_dns, 0x09090909u);
        EXPECT_EQ(cfg.secondary_dns, 0xFF000001u);
        EXPECT_EQ(platform.log[7].text, std::string("LAN_ID=0 DNSMode=") + row.logged + " PriDNSAddr=9.9.9.9");
        EXPECT_EQ(platform.log[8].text, "LAN_ID=0 SecDNSAddr=255.0.0.1");
        platform.forget();
    }
}

TEST_F(LanAddressingTest, DhcpGetFailsAtEachStep)
{
    auto cfg = poisoned<zr_nexa_lan_dhcp_cfg_t>();
    for (const uint32_t err : kErrorWords) {
        platform.on("SelectLANBridge").fails(err);
        EXPECT_EQ(zr_nexa_lan_dhcp_get_v1(2, &cfg), err | 0x1000);
        expect_row(kDhcpGet, {"SelectLANBridge(2)"},
                   {info("entry"), error("Select LAN Bridge (LAN_ID=2) error " + word(err))});
    }
    platform.on("SelectLANBridge").succeeds();
    for (const uint32_t err : kErrorWords) {
        platform.on("GetLANConfig").gives("lan", platform_lan()).fails(err);
        EXPECT_EQ(zr_nexa_lan_dhcp_get_v1(2, &cfg), err | 0x2000);
        expect_row(kDhcpGet, {"SelectLANBridge(2)", "GetLANConfig()"},
                   {info("entry"), error("Get LAN (LAN_ID=2) config error " + word(err))});
    }
    EXPECT_TRUE(is_poisoned(cfg));
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
        EXPECT_EQ(zr_nexa_lan_dhcp_default_action_get_v1(&enable), 0u);
        EXPECT_EQ(enable, row.enable);
        expect_row(kActionGet, {"ZR_GetDefaultEnableDHCP()"},
                   {info("entry"), info("Get DHCP Default Action successfully: " + std::to_string(row.enable))});
    }
    uint8_t enable = 0xA5;
    for (const uint32_t err : kErrorWords) {
        platform.on("ZR_GetDefaultEnableDHCP").gives("state", kStateOn).fails(err);
        EXPECT_EQ(zr_nexa_lan_dhcp_default_action_get_v1(&enable), err | 0x1000);
        EXPECT_EQ(enable, 0xA5);
        expect_row(kActionGet, {"ZR_GetDefaultEnableDHCP()"},
                   {info("entry"), error("Get DHCP Default Action failure")});
    }
}

TEST_F(LanAddressingTest, DefaultActionIsSetUnchecked)
{
    const struct {
        uint32_t state;
        const char* call;
    } rows[] = {{0, "ZR_SetDefaultEnableDHCP(0)"},
                {1, "ZR_SetDefaultEnableDHCP(1)"},
                {2, "ZR_SetDefaultEnableDHCP(2)"},
                {256, "ZR_SetDefaultEnableDHCP(256)"},
                {0xFFFFFFFF, "ZR_SetDefaultEnableDHCP(4294967295)"}};
    for (const auto& row : rows) {
        EXPECT_EQ(zr_nexa_lan_dhcp_default_action_set_v1(row.state), 0u);
        expect_row(kActionSet, {row.call}, {info("entry"), info("Set DHCP Default Action successfully ")});
    }
    for (const uint32_t err : kErrorWords) {
        platform.on("ZR_SetDefaultEnableDHCP").fails(err);
        EXPECT_EQ(zr_nexa_lan_dhcp_default_action_set_v1(1), err | 0x1000);
        expect_row(kActionSet, {"ZR_SetDefaultEnableDHCP(1)"},
                   {info("entry"), error("Set DHCP Default Action failure")});
    }
}

// ---- IPv4 and IPv6 switches ----

TEST_F(LanAddressingTest, FamiliesAreSwitchedIpv4First)
{
    const struct {
        uint32_t ipv4;
        uint32_t ipv6;
        const char* first;
        const char* second;
        const char* text;
    } rows[] = {
        {0, 0, "DisableIPV4()", "DisableIPV6()", "Set IPv4 cfg:0, IPv6 cfg:0, error 0"},
        {0, 1, "DisableIPV4()", "EnableIPV6()", "Set IPv4 cfg:0, IPv6 cfg:1, error 0"},
        {1, 0, "EnableIPV4()", "DisableIPV6()", "Set IPv4 cfg:1, IPv6 cfg:0, error 0"},
        {1, 1, "EnableIPV4()", "EnableIPV6()", "Set IPv4 cfg:1, IPv6 cfg:1, error 0"},
    };
    for (const auto& row : rows) {
        EXPECT_EQ(zr_nexa_lan_ipv4v6_set_v1(row.ipv4, row.ipv6), 0u);
        expect_row(kFamiliesSet, {row.first, row.second}, {info("entry"), info(row.text)});
    }
    // The word is the last call's, not the first one's.
    platform.on("EnableIPV4").succeeds(11);
    EXPECT_EQ(zr_nexa_lan_ipv4v6_set_v1(1, 1), 0u);
    platform.on("EnableIPV6").succeeds(12);
    EXPECT_EQ(zr_nexa_lan_ipv4v6_set_v1(1, 1), 12u);
}

TEST_F(LanAddressingTest, FamilySwitchesAbove1AreRefused)
{
    for (const uint32_t bad : {2u, 256u, 0x80000000u, 0xFFFFFFFFu}) {
        EXPECT_EQ(zr_nexa_lan_ipv4v6_set_v1(bad, 1), 4u);
        EXPECT_EQ(zr_nexa_lan_ipv4v6_set_v1(1, bad), 4u);
        expect_row(kFamiliesSet, {}, {info("entry"), info("entry")});
    }
}

TEST_F(LanAddressingTest, FamilySwitchingFailsWithATagOfItsOwnForEachCall)
{
    const struct {
        uint32_t ipv4;
        uint32_t ipv6;
        const char* method;
        uint32_t tag;
        std::vector<std::string> calls;
        const char* text;
    } rows[] = {
        {1, 1, "EnableIPV4", 0x1000, {"EnableIPV4()"}, "Enable NEXA IPv4 cfg error "},
        {0, 1, "DisableIPV4", 0x2000, {"DisableIPV4()"}, "Disable NEXA IPv4 cfg error "},
        {1, 1, "EnableIPV6", 0x3000, {"EnableIPV4()", "EnableIPV6()"}, "Enable NEXA IPv6 cfg error "},
        {0, 0, "DisableIPV6", 0x4000, {"DisableIPV4()", "DisableIPV6()"}, "Disable NEXA IPv6 cfg error "},
    };
    for (const auto& row : rows) {
        for (const uint32_t err : kErrorWords) {
            platform.on(row.method).fails(err);
            EXPECT_EQ(zr_nexa_lan_ipv4v6_set_v1(row.ipv4, row.ipv6), err | row.tag);
            expect_row(kFamiliesSet, row.calls, {info("entry"), error(row.text + word(err))});
        }
        platform.on(row.method).succeeds();
    }
}

TEST_F(LanAddressingTest, FamiliesAreReadAsTheServiceGivesThem)
{
    platform.on("GetIPv4State").gives("state", uint8_t{1});
    platform.on("GetIPv6State").gives("state", uint8_t{200}).succeeds(9);
    uint8_t ipv4 = 0xA5;
    uint8_t ipv6 = 0xA5;
    EXPECT_EQ(zr_nexa_lan_ipv4v6_get_v1(&ipv4, &ipv6), 9u);
    EXPECT_EQ(ipv4, 1);
    EXPECT_EQ(ipv6, 200);
    expect_row(kFamiliesGet, {"GetIPv4State()", "GetIPv6State()"},
               {info("entry"), info("Get NEXA IPv4 cfg 1, IPv6 cfg 200, error 9")});
    EXPECT_EQ(zr_nexa_lan_ipv4v6_get_v1(nullptr, &ipv6), 4u);
    EXPECT_EQ(zr_nexa_lan_ipv4v6_get_v1(&ipv4, nullptr), 4u);
    expect_row(kFamiliesGet, {}, {info("entry"), info("entry")});
}

TEST_F(LanAddressingTest, FamilyReadingTagsBeginAtTheSecond)
{
    for (const uint32_t err : kErrorWords) {
        uint8_t ipv4 = 0xA5;
        uint8_t ipv6 = 0xA5;
        platform.on("GetIPv4State").gives("state", uint8_t{1}).fails(err);
        EXPECT_EQ(zr_nexa_lan_ipv4v6_get_v1(&ipv4, &ipv6), err | 0x2000);
        EXPECT_EQ(ipv4, 0xA5);
        EXPECT_EQ(ipv6, 0xA5);
        expect_row(kFamiliesGet, {"GetIPv4State()"}, {info("entry"), error("Get NEXA IPv4 cfg error " + word(err))});

        platform.on("GetIPv4State").succeeds();
        platform.on("GetIPv6State").gives("state", uint8_t{1}).fails(err);
        EXPECT_EQ(zr_nexa_lan_ipv4v6_get_v1(&ipv4, &ipv6), err | 0x3000);
        EXPECT_EQ(ipv4, 1) << "IPv4 was read already";
        EXPECT_EQ(ipv6, 0xA5);
        expect_row(kFamiliesGet, {"GetIPv4State()", "GetIPv6State()"},
                   {info("entry"), error("Get NEXA IPv6 cfg error " + word(err))});
    }
}

}  // namespace
