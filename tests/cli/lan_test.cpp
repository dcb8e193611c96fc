#include "cli_test.h"

namespace {

class LanCliTest : public CliTest {
protected:
    void give_bridge(uint32_t lease_time)
    {
        qcmap_msgr_lan_config_v01 lan = {};
        lan.gateway_ip = 0xC0A8E101;
        lan.netmask = 0xFFFFFF00;
        lan.enable_dhcp = 1;
        lan.dhcp_start_ip = 0xC0A8E114;
        lan.dhcp_end_ip = 0xC0A8E13C;
        lan.lease_time = lease_time;
        lan.dns_mode = 3;
        lan.primary_dns = 0x01010101;
        lan.secondary_dns = 0x02020202;
        lan.mtu = 1500;
        platform.on("GetLANConfig").gives("lan", lan);
    }
    static std::string bridge(const std::string& lan_id, const std::string& lease_time = "43200")
    {
        return "(V)LAN DHCP Config:\r\n"
               "(v)lan_id:       " +
               lan_id +
               "\r\n"
               "Gateway IP:      192.168.225.1\r\n"
               "Netmask:         255.255.255.0\r\n"
               "DHCP Start IP:   192.168.225.20\r\n"
               "DHCP End IP:     192.168.225.60\r\n"
               "DHCP Lease Time: " +
               lease_time + "\r\nCMD OK\r\n";
    }
    static std::vector<std::string> get_calls(const std::string& lan_id)
    {
        return {"SelectLANBridge(" + lan_id + ")", "GetLANConfig()"};
    }
    // How many of a set's calls are reached, ActivateLAN the last.
    static std::vector<std::string> set_calls(const std::string& lan_id, const std::string& values, size_t reached = 4)
    {
        std::vector<std::string> calls = {"SelectLANBridge(" + lan_id + ")", "GetLANConfig()",
                                          "SetLANConfig(" + values + " dns_mode=0 primary_dns=0 secondary_dns=0 mtu=0)",
                                          "ActivateLAN()"};
        calls.resize(reached);
        return calls;
    }
};

// ---- GWURL ----

TEST_F(LanCliTest, GwurlGetPrintsTheUrl)
{
    const std::vector<std::string> calls = {"GetGatewayUrl()"};
    expect({{"LAN GWURL get", "LAN GWURL: \r\nCMD OK\r\n", calls}});
    for (const std::string& url : {std::string("module.example"), std::string(128, 'w')}) {
        platform.on("GetGatewayUrl").gives_array("url", url.data(), url.size());
        platform.on("GetGatewayUrl").gives("len", static_cast<uint32_t>(url.size()));
        expect({{"LAN GWURL get", "LAN GWURL: " + url + "\r\nCMD OK\r\n", calls},
                {"LAN GWURL get x", "LAN GWURL: " + url + "\r\nCMD OK\r\n", calls}});
    }
    expect({{"LAN GWURL get", "CMD Error#0x1003\r\n", calls, "GetGatewayUrl", 3}});
}

TEST_F(LanCliTest, GwurlSetCutsTheWordTo128Characters)
{
    const std::string whole = "SetGatewayUrl(url=\"" + std::string(128, 'b') + "\" len=128)";
    expect(
        {{"LAN GWURL set ''", "CMD OK\r\n", {"SetGatewayUrl(url=\"\" len=0)"}},
         {"LAN GWURL set u", "CMD OK\r\n", {"SetGatewayUrl(url=\"u\" len=1)"}},
         {"LAN GWURL set 'http://%s%n \x01\xFF'", "CMD OK\r\n", {"SetGatewayUrl(url=\"http://%s%n \x01\xFF\" len=14)"}},
         {"LAN GWURL set " + std::string(127, 'a'),
          "CMD OK\r\n",
          {"SetGatewayUrl(url=\"" + std::string(127, 'a') + "\" len=127)"}},
         {"LAN GWURL set " + std::string(128, 'b'), "CMD OK\r\n", {whole}},
         {"LAN GWURL set " + std::string(129, 'b'), "CMD OK\r\n", {whole}},
         {"LAN GWURL set " + std::string(100000, 'b'), "CMD OK\r\n", {whole}},
         {"LAN GWURL set u", "CMD Error#0x1002\r\n", {"SetGatewayUrl(url=\"u\" len=1)"}, "SetGatewayUrl", 2}});
}

// ---- DHCP ----

TEST_F(LanCliTest, DhcpGetPrintsTheBridge)
{
    give_bridge(43200);
    expect({{"LAN DHCP get 0", bridge("0"), get_calls("0")},
            {"LAN DHCP get 2", bridge("2"), get_calls("2")},
            // Ten words are a get too, whatever they are.
            {"LAN DHCP get 0 a b c d e", bridge("0"), get_calls("0")},
            // A word that is no number is LAN 0.
            {"LAN DHCP get lan", bridge("0"), get_calls("0")},
            // The line shows the number as it was read, the interface gets its low 16 bits.
            {"LAN DHCP get 65538", bridge("65538"), get_calls("2")},
            {"LAN DHCP get 65537", bridge("65537"), get_calls("1")},
            {"LAN DHCP get -65536", bridge("-65536"), get_calls("0")},
            {"LAN DHCP get 4094", bridge("4094"), get_calls("4094")},
            // These it refuses.
            {"LAN DHCP get 70000", "CMD Error#0x6\r\n"},
            {"LAN DHCP get 4095", "CMD Error#0x6\r\n"},
            {"LAN DHCP get -1", "CMD Error#0x6\r\n"},
            {"LAN DHCP get 2", "CMD Error#0x1030\r\n", {"SelectLANBridge(2)"}, "SelectLANBridge", 48},
            {"LAN DHCP get 2", "CMD Error#0x2003\r\n", get_calls("2"), "GetLANConfig", 3}});
}

TEST_F(LanCliTest, DhcpGetPrintsALeaseBeyondTheSignedRangeAsItAlwaysDid)
{
    give_bridge(0xFFFFFFFF);
    expect({{"LAN DHCP get 0", bridge("0", "-1"), get_calls("0")}});
}

TEST_F(LanCliTest, DhcpSetSendsFiveValuesAndNoDns)
{
    give_bridge(43200);
    const std::string typical = "LAN DHCP set 0 192.168.10.1 255.255.255.0 192.168.10.20 192.168.10.60 7200";
    const std::string values =
        "gateway_ip=3232238081 netmask=4294967040 enable_dhcp=1 dhcp_start_ip=3232238100 dhcp_end_ip=3232238140 "
        "lease_time=7200";
    expect({{typical, "CMD OK\r\n", set_calls("0", values)},
            // Short, hexadecimal and octal forms; a negative lease is a large one.
            {"LAN DHCP set 65538 10.1 0xffffff00 012.2 10.3 -1", "CMD OK\r\n",
             set_calls("2",
                       "gateway_ip=167772161 netmask=4294967040 enable_dhcp=1 dhcp_start_ip=167772162 "
                       "dhcp_end_ip=167772163 lease_time=4294967295")},
            // Addresses of 0 are the platform's to refuse.
            {"LAN DHCP set 0 0.0.0.0 0 0 0 1", "CMD OK\r\n",
             set_calls("0", "gateway_ip=0 netmask=0 enable_dhcp=1 dhcp_start_ip=0 dhcp_end_ip=0 lease_time=1")},
            {typical, "CMD Error#0x3005\r\n", set_calls("0", values, 3), "SetLANConfig", 5},
            {typical, "CMD Error#0x4005\r\n", set_calls("0", values), "ActivateLAN", 5},
            {"LAN DHCP set 4095 10.1 10.1 10.1 10.1 1", "CMD Error#0x6\r\n"}});
}

TEST_F(LanCliTest, DhcpSetRefusesABadAddressOrNoLease)
{
    for (const char* line : {"LAN DHCP set 0 ? 255.255.255.0 192.168.225.20 192.168.225.60 43200",
                             "LAN DHCP set 0 192.168.225.1 ? 192.168.225.20 192.168.225.60 43200",
                             "LAN DHCP set 0 192.168.225.1 255.255.255.0 ? 192.168.225.60 43200",
                             "LAN DHCP set 0 192.168.225.1 255.255.255.0 192.168.225.20 ? 43200"}) {
        expect_invalid(line, {"", "x", "256.0.0.1", "1.2.3.4.5", "1.2.3.4x"});
    }
    expect_invalid("LAN DHCP set 0 192.168.225.1 255.255.255.0 192.168.225.20 192.168.225.60 ?", {"0", "", "x", "-0"});
}

TEST_F(LanCliTest, DhcpRefusesLan1)
{
    expect_invalid(
        {"LAN DHCP get 1", "LAN DHCP get 1x", "LAN DHCP get 1 a b c d e", "LAN DHCP set 1 10.1 10.1 10.1 10.1 1"});
}

// ---- DefaultDHCPEnable ----

TEST_F(LanCliTest, DefaultDhcpEnableGet)
{
    const std::vector<std::string> calls = {"ZR_GetDefaultEnableDHCP()"};
    const std::string disabled = "DefaultDHCPEnable: 0(disable)\r\nCMD OK\r\n";
    platform.on("ZR_GetDefaultEnableDHCP").gives("state", QCMAP_MSGR_CONFIG_STATE_OFF_V01);
    expect({{"LAN DefaultDHCPEnable get", disabled, calls}});
    platform.on("ZR_GetDefaultEnableDHCP").gives("state", QCMAP_MSGR_CONFIG_STATE_LIST_V01);
    expect({{"LAN DefaultDHCPEnable get", disabled, calls}});
    platform.on("ZR_GetDefaultEnableDHCP").gives("state", QCMAP_MSGR_CONFIG_STATE_ON_V01);
    expect({{"LAN DefaultDHCPEnable get", "DefaultDHCPEnable: 1(enable)\r\nCMD OK\r\n", calls},
            {"LAN DefaultDHCPEnable get x", "DefaultDHCPEnable: 1(enable)\r\nCMD OK\r\n", calls},
            {"LAN DefaultDHCPEnable get", "CMD Error#0x1003\r\n", calls, "ZR_GetDefaultEnableDHCP", 3}});
}

TEST_F(LanCliTest, DefaultDhcpEnableSet)
{
    const std::string line = "LAN DefaultDHCPEnable set ?";
    expect_each({line, "Set DefaultDHCPEnable successful\r\nCMD OK\r\n", {"ZR_SetDefaultEnableDHCP(?)"}},
                {{"0", "0"}, {"1", "1"}, {"off", "0"}});
    expect_each({line, "CMD Error#0x1003\r\n", {"ZR_SetDefaultEnableDHCP(?)"}, "ZR_SetDefaultEnableDHCP", 3},
                {{"1", "1"}});
    expect_invalid(line, {"2", "-1", "256", "257", "65536"});
}

}  // namespace
