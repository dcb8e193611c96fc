#include "cli_test.h"

namespace {

class LanCliTest : public CliTest {
protected:
    static qcmap_msgr_lan_config_v01 bridge()
    {
        qcmap_msgr_lan_config_v01 lan = {};
        lan.gateway_ip = 0xC0A8E101;
        lan.netmask = 0xFFFFFF00;
        lan.enable_dhcp = 1;
        lan.dhcp_start_ip = 0xC0A8E114;
        lan.dhcp_end_ip = 0xC0A8E13C;
        lan.lease_time = 43200;
        lan.dns_mode = 3;
        lan.primary_dns = 0x01010101;
        lan.secondary_dns = 0x02020202;
        lan.mtu = 1500;
        return lan;
    }
};

TEST_F(LanCliTest, GwurlUsage)
{
    expect_run({"LAN", "GWURL"},
               "How to use:\r\n"
               "zr_nexa LAN GWURL <option> [parameters]\r\n"
               "\r\n"
               "<option>\r\n"
               "get: zr_nexa LAN GWURL get\r\n"
               "     get getway url\r\n"
               "set: zr_nexa LAN GWURL get <url>\r\n"
               "     set getway url\r\n"
               "\r\n"
               "<url>\r\n"
               "url type\r\n"
               "exp: mobileap.home\r\n"
               "\r\n"
               "CMD OK\r\n");
}

TEST_F(LanCliTest, GwurlGetPrintsTheUrl)
{
    expect_run({"LAN", "GWURL", "get"}, "LAN GWURL: \r\nCMD OK\r\n", {"GetGatewayUrl()"});
    platform.on("GetGatewayUrl").gives_array("url", "module.example", 14).gives("len", 14u);
    expect_run({"LAN", "GWURL", "get"}, "LAN GWURL: module.example\r\nCMD OK\r\n", {"GetGatewayUrl()"});
    expect_run({"LAN", "GWURL", "get", "x"}, "LAN GWURL: module.example\r\nCMD OK\r\n", {"GetGatewayUrl()"});

    const std::string whole(128, 'w');
    platform.on("GetGatewayUrl").gives_array("url", whole.data(), whole.size()).gives("len", 128u);
    expect_run({"LAN", "GWURL", "get"}, "LAN GWURL: " + whole + "\r\nCMD OK\r\n", {"GetGatewayUrl()"});

    platform.on("GetGatewayUrl").fails(3);
    expect_run({"LAN", "GWURL", "get"}, "CMD Error#0x1003\r\n", {"GetGatewayUrl()"});
}

TEST_F(LanCliTest, GwurlSetCutsTheWordTo128Characters)
{
    expect_run({"LAN", "GWURL", "set", ""}, "CMD OK\r\n", {"SetGatewayUrl(url=\"\" len=0)"});
    expect_run({"LAN", "GWURL", "set", "u"}, "CMD OK\r\n", {"SetGatewayUrl(url=\"u\" len=1)"});
    expect_run({"LAN", "GWURL", "set", "http://%s%n \x01\xFF"}, "CMD OK\r\n",
               {"SetGatewayUrl(url=\"http://%s%n \x01\xFF\" len=14)"});
    expect_run({"LAN", "GWURL", "set", std::string(127, 'a')}, "CMD OK\r\n",
               {"SetGatewayUrl(url=\"" + std::string(127, 'a') + "\" len=127)"});
    for (const size_t length : {128u, 129u, 100000u}) {
        expect_run({"LAN", "GWURL", "set", std::string(length, 'b')}, "CMD OK\r\n",
                   {"SetGatewayUrl(url=\"" + std::string(128, 'b') + "\" len=128)"});
    }
    platform.on("SetGatewayUrl").fails(2);
    expect_run({"LAN", "GWURL", "set", "u"}, "CMD Error#0x1002\r\n", {"SetGatewayUrl(url=\"u\" len=1)"});
}

TEST_F(LanCliTest, GwurlRefusesAnythingElse)
{
    expect_invalid({"LAN", "GWURL", "get", "x", "y"});
    expect_invalid({"LAN", "GWURL", "set"});
    expect_invalid({"LAN", "GWURL", "set", "u", "v"});
    expect_invalid({"LAN", "GWURL", "Get"});
    expect_invalid({"LAN", "GWURL", "SET", "u"});
    expect_invalid({"LAN", "GWURL", ""});
    expect_invalid({"LAN", "GWURL", "", "u"});
}

TEST_F(LanCliTest, DhcpUsage)
{
    expect_run({"LAN", "DHCP"},
               "How to use:\r\n"
               "zr_nexa LAN DHCP <option> [parameters]\r\n"
               "\r\n"
               "<option>\r\n"
               "get: zr_nexa LAN DHCP get <lan_id>\r\n"
               "     get lan dhcp configs\r\n"
               "set: zr_nexa LAN DHCP set <lan_id> <gw_ip> <netmask> <start_ip> <end_ip> <lease_time>\r\n"
               "     set lan dhcp configs\r\n"
               "\r\n"
               "<lan_id>\r\n"
               "int type\r\n"
               "if you mean default lan, this value is 0; if you mean vlan, this value is vlan_id\r\n"
               "\r\n"
               "<gw_ip> <netmask> <start_ip> <end_ip>\r\n"
               "IP address type\r\n"
               "exp: 192.168.225.1 255.255.255.0 192.168.225.20 192.168.225.60\r\n"
               "\r\n"
               "<lease_time>\r\n"
               "int type\r\n"
               "unit is second, exp: 43200\r\n"
               "\r\n"
               "CMD OK\r\n");
}

TEST_F(LanCliTest, DhcpGetPrintsTheBridge)
{
    platform.on("GetLANConfig").gives("lan", bridge());
    const std::string values =
        "Gateway IP:      192.168.225.1\r\n"
        "Netmask:         255.255.255.0\r\n"
        "DHCP Start IP:   192.168.225.20\r\n"
        "DHCP End IP:     192.168.225.60\r\n"
        "DHCP Lease Time: 43200\r\n"
        "CMD OK\r\n";
    expect_run({"LAN", "DHCP", "get", "0"}, "(V)LAN DHCP Config:\r\n(v)lan_id:       0\r\n" + values,
               {"SelectLANBridge(0)", "GetLANConfig()"});
    expect_run({"LAN", "DHCP", "get", "2"}, "(V)LAN DHCP Config:\r\n(v)lan_id:       2\r\n" + values,
               {"SelectLANBridge(2)", "GetLANConfig()"});
    // Ten words are a get too, whatever they are.
    expect_run({"LAN", "DHCP", "get", "0", "a", "b", "c", "d", "e"},
               "(V)LAN DHCP Config:\r\n(v)lan_id:       0\r\n" + values, {"SelectLANBridge(0)", "GetLANConfig()"});
    // A word that is no number is LAN 0.
    expect_run({"LAN", "DHCP", "get", "lan"}, "(V)LAN DHCP Config:\r\n(v)lan_id:       0\r\n" + values,
               {"SelectLANBridge(0)", "GetLANConfig()"});
    // The line shows the number as it was read, the interface gets its low 16 bits.
    expect_run({"LAN", "DHCP", "get", "65538"}, "(V)LAN DHCP Config:\r\n(v)lan_id:       65538\r\n" + values,
               {"SelectLANBridge(2)", "GetLANConfig()"});
    expect_run({"LAN", "DHCP", "get", "65537"}, "(V)LAN DHCP Config:\r\n(v)lan_id:       65537\r\n" + values,
               {"SelectLANBridge(1)", "GetLANConfig()"});
    expect_run({"LAN", "DHCP", "get", "-65536"}, "(V)LAN DHCP Config:\r\n(v)lan_id:       -65536\r\n" + values,
               {"SelectLANBridge(0)", "GetLANConfig()"});
    expect_run({"LAN", "DHCP", "get", "4094"}, "(V)LAN DHCP Config:\r\n(v)lan_id:       4094\r\n" + values,
               {"SelectLANBridge(4094)", "GetLANConfig()"});
}

TEST_F(LanCliTest, DhcpGetPrintsALeaseBeyondTheSignedRangeAsItAlwaysDid)
{
    auto lan = bridge();
    lan.lease_time = 0xFFFFFFFF;
    platform.on("GetLANConfig").gives("lan", lan);
    EXPECT_THAT(run({"LAN", "DHCP", "get", "0"}), testing::EndsWith("DHCP Lease Time: -1\r\nCMD OK\r\n"));
}

TEST_F(LanCliTest, DhcpGetReturnsTheInterfacesCodes)
{
    expect_run({"LAN", "DHCP", "get", "70000"}, "CMD Error#0x6\r\n");
    expect_run({"LAN", "DHCP", "get", "4095"}, "CMD Error#0x6\r\n");
    expect_run({"LAN", "DHCP", "get", "-1"}, "CMD Error#0x6\r\n");
    platform.on("SelectLANBridge").fails(48);
    expect_run({"LAN", "DHCP", "get", "2"}, "CMD Error#0x1030\r\n", {"SelectLANBridge(2)"});
    platform.on("SelectLANBridge").succeeds();
    platform.on("GetLANConfig").fails(3);
    expect_run({"LAN", "DHCP", "get", "2"}, "CMD Error#0x2003\r\n", {"SelectLANBridge(2)", "GetLANConfig()"});
}

TEST_F(LanCliTest, DhcpSetSendsFiveValuesAndNoDns)
{
    platform.on("GetLANConfig").gives("lan", bridge());
    const auto calls = [](const std::string& lan_id, const std::string& values) {
        return std::vector<std::string>{"SelectLANBridge(" + lan_id + ")", "GetLANConfig()",
                                        "SetLANConfig(" + values + " dns_mode=0 primary_dns=0 secondary_dns=0 mtu=0)",
                                        "ActivateLAN()"};
    };
    expect_run({"LAN", "DHCP", "set", "0", "192.168.10.1", "255.255.255.0", "192.168.10.20", "192.168.10.60", "7200"},
               "CMD OK\r\n",
               calls("0",
                     "gateway_ip=3232238081 netmask=4294967040 enable_dhcp=1 dhcp_start_ip=3232238100 "
                     "dhcp_end_ip=3232238140 lease_time=7200"));
    // Short and octal forms; a negative lease is a large one.
    expect_run({"LAN", "DHCP", "set", "65538", "10.1", "0xffffff00", "012.2", "10.3", "-1"}, "CMD OK\r\n",
               calls("2",
                     "gateway_ip=167772161 netmask=4294967040 enable_dhcp=1 dhcp_start_ip=167772162 "
                     "dhcp_end_ip=167772163 lease_time=4294967295"));
    // Addresses of 0 are the platform's to refuse.
    expect_run({"LAN", "DHCP", "set", "0", "0.0.0.0", "0", "0", "0", "1"}, "CMD OK\r\n",
               calls("0", "gateway_ip=0 netmask=0 enable_dhcp=1 dhcp_start_ip=0 dhcp_end_ip=0 lease_time=1"));
}

TEST_F(LanCliTest, DhcpSetReturnsTheInterfacesCodes)
{
    const std::vector<std::string> words = {"LAN",      "DHCP",     "set",      "0",   "10.0.0.1",
                                            "10.0.0.2", "10.0.0.3", "10.0.0.4", "3600"};
    platform.on("SetLANConfig").fails(5);
    EXPECT_EQ(run(words), "CMD Error#0x3005\r\n");
    platform.on("SetLANConfig").succeeds();
    platform.on("ActivateLAN").fails(5);
    EXPECT_EQ(run(words), "CMD Error#0x4005\r\n");
    expect_run({"LAN", "DHCP", "set", "4095", "10.1", "10.1", "10.1", "10.1", "1"}, "CMD Error#0x6\r\n");
}

TEST_F(LanCliTest, DhcpSetRefusesABadAddressOrNoLease)
{
    const std::vector<std::string> good = {
        "LAN", "DHCP", "set", "0", "192.168.225.1", "255.255.255.0", "192.168.225.20", "192.168.225.60", "43200"};
    for (const size_t at : {4u, 5u, 6u, 7u}) {
        for (const char* bad : {"", "x", "256.0.0.1", "1.2.3.4.5", "1.2.3.4x"}) {
            auto words = good;
            words[at] = bad;
            expect_invalid(words);
        }
    }
    for (const char* lease : {"0", "", "x", "-0"}) {
        auto words = good;
        words[8] = lease;
        expect_invalid(words);
    }
}

TEST_F(LanCliTest, DhcpRefusesLan1AndAnythingElse)
{
    expect_invalid({"LAN", "DHCP", "get", "1"});
    expect_invalid({"LAN", "DHCP", "get", "1x"});
    expect_invalid({"LAN", "DHCP", "get", "1", "a", "b", "c", "d", "e"});
    expect_invalid({"LAN", "DHCP", "set", "1", "10.1", "10.1", "10.1", "10.1", "1"});
    expect_invalid({"LAN", "DHCP", "get"});
    expect_invalid({"LAN", "DHCP", "set"});
    expect_invalid({"LAN", "DHCP", "set", "0"});
    expect_invalid({"LAN", "DHCP", "Get", "0"});
    expect_invalid({"LAN", "DHCP", "del", "0", "10.1", "10.1", "10.1", "10.1", "1"});
    for (size_t words = 5; words <= 10; ++words) {
        if (words == 9) continue;
        for (const char* option : {"get", "set"}) {
            std::vector<std::string> line = {"LAN", "DHCP", option, "0", "10.1", "10.1", "10.1", "10.1", "1", "1"};
            line.resize(words);
            expect_invalid(line);
        }
    }
}

TEST_F(LanCliTest, DefaultDhcpEnableUsage)
{
    expect_run({"LAN", "DefaultDHCPEnable"},
               "How to use:\r\n"
               "zr_nexa LAN DefaultDHCPEnable <option> [action]\r\n"
               "\r\n"
               "<option>\r\n"
               "get: zr_nexa LAN DefaultDHCPEnable get\r\n"
               "     get current DefaultDHCPEnable config\r\n"
               "set: zr_nexa LAN DefaultDHCPEnable set <action>\r\n"
               "     get current DefaultDHCPEnable config\r\n"
               "\r\n"
               "<action>\r\n"
               "0: do not Start DHCP server when create LAN or boot\r\n"
               "1: Start DHCP server when create LAN or boot\r\n"
               "CMD OK\r\n");
}

TEST_F(LanCliTest, DefaultDhcpEnableGet)
{
    const std::vector<std::string> call = {"ZR_GetDefaultEnableDHCP()"};
    platform.on("ZR_GetDefaultEnableDHCP").gives("state", QCMAP_MSGR_CONFIG_STATE_OFF_V01);
    expect_run({"LAN", "DefaultDHCPEnable", "get"}, "DefaultDHCPEnable: 0(disable)\r\nCMD OK\r\n", call);
    platform.on("ZR_GetDefaultEnableDHCP").gives("state", QCMAP_MSGR_CONFIG_STATE_ON_V01);
    expect_run({"LAN", "DefaultDHCPEnable", "get"}, "DefaultDHCPEnable: 1(enable)\r\nCMD OK\r\n", call);
    expect_run({"LAN", "DefaultDHCPEnable", "get", "x"}, "DefaultDHCPEnable: 1(enable)\r\nCMD OK\r\n", call);
    platform.on("ZR_GetDefaultEnableDHCP").gives("state", QCMAP_MSGR_CONFIG_STATE_LIST_V01);
    expect_run({"LAN", "DefaultDHCPEnable", "get"}, "DefaultDHCPEnable: 0(disable)\r\nCMD OK\r\n", call);
    platform.on("ZR_GetDefaultEnableDHCP").fails(3);
    expect_run({"LAN", "DefaultDHCPEnable", "get"}, "CMD Error#0x1003\r\n", call);
}

TEST_F(LanCliTest, DefaultDhcpEnableSet)
{
    expect_run({"LAN", "DefaultDHCPEnable", "set", "0"}, "Set DefaultDHCPEnable successful\r\nCMD OK\r\n",
               {"ZR_SetDefaultEnableDHCP(0)"});
    expect_run({"LAN", "DefaultDHCPEnable", "set", "1"}, "Set DefaultDHCPEnable successful\r\nCMD OK\r\n",
               {"ZR_SetDefaultEnableDHCP(1)"});
    expect_run({"LAN", "DefaultDHCPEnable", "set", "off"}, "Set DefaultDHCPEnable successful\r\nCMD OK\r\n",
               {"ZR_SetDefaultEnableDHCP(0)"});
    platform.on("ZR_SetDefaultEnableDHCP").fails(3);
    expect_run({"LAN", "DefaultDHCPEnable", "set", "1"}, "CMD Error#0x1003\r\n", {"ZR_SetDefaultEnableDHCP(1)"});
}

TEST_F(LanCliTest, DefaultDhcpEnableRefusesAnythingElse)
{
    for (const char* action : {"2", "-1", "256", "257", "65536"}) {
        expect_invalid({"LAN", "DefaultDHCPEnable", "set", action});
    }
    expect_invalid({"LAN", "DefaultDHCPEnable", "set"});
    expect_invalid({"LAN", "DefaultDHCPEnable", "set", "1", "x"});
    expect_invalid({"LAN", "DefaultDHCPEnable", "get", "x", "y"});
    expect_invalid({"LAN", "DefaultDHCPEnable", "Get"});
    expect_invalid({"LAN", "DefaultDHCPEnable", ""});
}

}  // namespace
