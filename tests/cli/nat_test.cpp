#include "cli_test.h"

namespace {

class NatCliTest : public CliTest {
protected:
    void give_rules(const std::vector<qcmap_msgr_snat_entry_config_v01>& rules)
    {
        platform.on("GetStaticNatConfig")
            .gives_array("entries", rules.data(), rules.size())
            .gives("count", static_cast<int>(rules.size()));
    }
};

const std::string kSelect = "SetWWANProfileHandlePreference(1)";

// ---- Type ----

TEST_F(NatCliTest, TypeGetPrintsTheType)
{
    const std::pair<int, std::string> rows[] = {
        {0, "SYMMETRIC NAT"}, {1, "PORT RESTRICTED CONE NAT"}, {2, "FULL CONE NAT"}, {3, "ADDRESS RESTRICTED NAT"},
        {4, "SYMMETRIC NAT"},  // of no name: leaves the preset 0
    };
    for (const auto& [type, name] : rows) {
        platform.on("GetNatType").gives("nat_type", static_cast<qcmap_msgr_nat_enum_v01>(type));
        expect({{"NAT Type get 1", "NAT Type: " + name + "\r\nCMD OK\r\n", {kSelect, "GetNatType()"}},
                // A word behind the handle is not looked at.
                {"NAT Type get 1 x", "NAT Type: " + name + "\r\nCMD OK\r\n", {kSelect, "GetNatType()"}}});
    }
    expect({{"NAT Type get 1", "CMD Error#0x2003\r\n", {kSelect, "GetNatType()"}, "GetNatType", 3},
            {"NAT Type get 1", "CMD Error#0x1009\r\n", {kSelect}, "SetWWANProfileHandlePreference", 9}});
}

TEST_F(NatCliTest, TypeSetCutsTheTypeToEightBits)
{
    expect_each({"NAT Type set 1 ?", "NAT Type set success\r\nCMD OK\r\n", {kSelect, "SetNatType(?)"}}, {{"0", "0"},
                                                                                                         {"1", "1"},
                                                                                                         {"2", "2"},
                                                                                                         {"3", "3"},
                                                                                                         {"256", "0"},
                                                                                                         {"259", "3"},
                                                                                                         {"-253", "3"},
                                                                                                         {"x", "0"},
                                                                                                         {"2x", "2"}});
    expect({{"NAT Type set 1 2", "CMD Error#0x2003\r\n", {kSelect, "SetNatType(2)"}, "SetNatType", 3},
            {"NAT Type set 1 2", "CMD Error#0x1009\r\n", {kSelect}, "SetWWANProfileHandlePreference", 9}});
    expect_invalid("NAT Type set 1 ?", {"4", "260", "255", "-1", "511"});
}

TEST_F(NatCliTest, TypeHandles)
{
    platform.on("GetNatType").gives("nat_type", QCMAP_MSGR_NAT_FULL_CONE_V01);
    expect_each({"NAT Type get ?",
                 "NAT Type: FULL CONE NAT\r\nCMD OK\r\n",
                 {"SetWWANProfileHandlePreference(?)", "GetNatType()"}},
                {{"50", "50"}, {"51", "51"}, {"7x", "7"}, {" 8", "8"}, {"-1", "4294967295"}});
    expect_invalid("NAT Type get ?", {"0", "x", "", "-0", "0x1"});
    expect_invalid("NAT Type set ? 1", {"0", "x", "", "-0", "0x1"});
    // What atoi makes of more than 32 bits: the low ones, or the largest number where long has no more.
    if (sizeof(long) > sizeof(int)) {
        expect_invalid({"NAT Type get 4294967296", "NAT Type set 4294967296 1"});
    } else {
        expect({{"NAT Type get 4294967296",
                 "NAT Type: FULL CONE NAT\r\nCMD OK\r\n",
                 {"SetWWANProfileHandlePreference(2147483647)", "GetNatType()"}}});
    }
}

// ---- IPV4DMZ ----

TEST_F(NatCliTest, DmzGetPrintsTheHost)
{
    const std::vector<std::string> calls = {kSelect, "GetDMZ()"};
    platform.on("GetDMZ").gives("ip", 0u);
    expect({{"NAT IPV4DMZ get 1", "NAT IPV4DMZ: disabled\r\nCMD OK\r\n", calls},
            {"NAT IPV4DMZ get 1 x", "NAT IPV4DMZ: disabled\r\nCMD OK\r\n", calls}});
    platform.on("GetDMZ").gives("ip", 0xC0A8E132u);
    expect({{"NAT IPV4DMZ get 1", "NAT IPV4DMZ: enabled\r\nDMZ IP: 192.168.225.50\r\nCMD OK\r\n", calls},
            {"NAT IPV4DMZ get 1", "CMD Error#0x2003\r\n", calls, "GetDMZ", 3},
            {"NAT IPV4DMZ get 1", "CMD Error#0x1009\r\n", {kSelect}, "SetWWANProfileHandlePreference", 9}});
}

TEST_F(NatCliTest, DmzEnableTakesEveryFormOfAnAddress)
{
    expect_each({"NAT IPV4DMZ enable 1 ?", "NAT IPV4DMZ enable success\r\nCMD OK\r\n", {kSelect, "AddDMZ(?)"}},
                {{"192.168.225.50", "3232293170"},
                 {"1", "1"},
                 {"10.1", "167772161"},
                 {"010.0.0.1", "134217729"},
                 {"0x7f.1", "2130706433"},
                 {"255.255.255.255", "4294967295"},
                 {"1.2.3.4 x", "16909060"}});
    expect({{"NAT IPV4DMZ enable 1 0.0.0.0", "CMD Error#0xa\r\n", {kSelect}},
            {"NAT IPV4DMZ enable 1 1.2.3.4", "CMD Error#0x2003\r\n", {kSelect, "AddDMZ(16909060)"}, "AddDMZ", 3},
            {"NAT IPV4DMZ enable 1 1.2.3.4", "CMD Error#0x1009\r\n", {kSelect}, "SetWWANProfileHandlePreference", 9}});
    expect_invalid("NAT IPV4DMZ enable 1 ?",
                   {"", "x", "256.1.1.1", "1.2.3.4.5", "1.2.3.4x", "1..2", "-1", "example.org"});
}

TEST_F(NatCliTest, DmzDisableIgnoresAFurtherWord)
{
    const std::vector<std::string> calls = {kSelect, "DeleteDMZ()"};
    expect({{"NAT IPV4DMZ disable 1", "NAT IPV4DMZ disable success\r\nCMD OK\r\n", calls},
            {"NAT IPV4DMZ disable 1 'not an address'", "NAT IPV4DMZ disable success\r\nCMD OK\r\n", calls},
            {"NAT IPV4DMZ disable 1", "CMD Error#0x3003\r\n", calls, "DeleteDMZ", 3},
            {"NAT IPV4DMZ disable 1", "CMD Error#0x1009\r\n", {kSelect}, "SetWWANProfileHandlePreference", 9}});
    // The interface only logs the address, which is 0 whatever the word says.
    EXPECT_EQ(run("NAT IPV4DMZ disable 1 1.2.3.4"), "NAT IPV4DMZ disable success\r\nCMD OK\r\n");
    ASSERT_FALSE(platform.log.empty());
    EXPECT_EQ(platform.log.back().text, "Delete DMZ IP success : wwan_handle=1 dmz_ip=0");
}

TEST_F(NatCliTest, DmzHandles)
{
    expect_each({"NAT IPV4DMZ disable ?",
                 "NAT IPV4DMZ disable success\r\nCMD OK\r\n",
                 {"SetWWANProfileHandlePreference(?)", "DeleteDMZ()"}},
                {{"50", "50"}, {"65537", "65537"}, {"-1", "4294967295"}});
    for (const char* line :
         {"NAT IPV4DMZ get ? 1.2.3.4", "NAT IPV4DMZ enable ? 1.2.3.4", "NAT IPV4DMZ disable ? 1.2.3.4"})
        expect_invalid(line, {"0", "x"});
}

// ---- IPV4PortMapping ----

// The command's words and the interface's protocol codes differ: 6 asks for a rule of both TCP and UDP.
TEST_F(NatCliTest, PortMappingSixMakesARuleOfBothProtocols)
{
    const std::string add = "NAT IPV4PortMapping add 1 192.168.225.50 80 8080 6";
    const std::string del = "NAT IPV4PortMapping del 1 192.168.225.50 80 8080 6";
    const std::string rule = "(private_ip=3232293170 private_port=80 global_port=8080 protocol=253)";
    const std::vector<std::string> add_calls = {kSelect, "AddStaticNatEntry" + rule};
    const std::vector<std::string> del_calls = {kSelect, "DeleteStaticNatEntry" + rule};
    expect({{add, "NAT IPV4PortMapping add success\r\nCMD OK\r\n", add_calls},
            {del, "NAT IPV4PortMapping delete success\r\nCMD OK\r\n", del_calls},
            {add, "CMD Error#0x2003\r\n", add_calls, "AddStaticNatEntry", 3},
            {del, "CMD Error#0x2003\r\n", del_calls, "DeleteStaticNatEntry", 3},
            {add, "CMD Error#0x1009\r\n", {kSelect}, "SetWWANProfileHandlePreference", 9},
            {del, "CMD Error#0x1009\r\n", {kSelect}, "SetWWANProfileHandlePreference", 9}});
}

TEST_F(NatCliTest, PortMappingPortsAreCutToSixteenBits)
{
    const std::vector<std::pair<std::string, std::string>> ports = {
        {"1", "1"}, {"65535", "65535"}, {"65537", "1"}, {"-1", "65535"}, {"80x", "80"}, {"131071", "65535"}};
    expect_each({"NAT IPV4PortMapping add 1 10.0.0.2 ? 7 6",
                 "NAT IPV4PortMapping add success\r\nCMD OK\r\n",
                 {kSelect, "AddStaticNatEntry(private_ip=167772162 private_port=? global_port=7 protocol=253)"}},
                ports);
    expect_each({"NAT IPV4PortMapping del 1 10.0.0.2 7 ? 6",
                 "NAT IPV4PortMapping delete success\r\nCMD OK\r\n",
                 {kSelect, "DeleteStaticNatEntry(private_ip=167772162 private_port=7 global_port=? protocol=253)"}},
                ports);
}

TEST_F(NatCliTest, PortMappingHandles)
{
    expect_each({"NAT IPV4PortMapping get ?",
                 "NAT IPV4PortMapping: no port mapping rule\r\nCMD OK\r\n",
                 {"SetWWANProfileHandlePreference(?)", "GetStaticNatConfig()"}},
                {{"50", "50"}, {"65537", "65537"}, {"-1", "4294967295"}});
}

TEST_F(NatCliTest, PortMappingAddAndDelRefuse)
{
    for (const std::string command : {"NAT IPV4PortMapping add", "NAT IPV4PortMapping del"}) {
        // The interface's own refusals.
        expect_each({command + " 1 192.168.225.50 80 443 ?", "CMD Error#0xc\r\n"},
                    {{"17", ""}, {"253", ""}, {"273", ""}, {"509", ""}});
        for (const char* ports : {" 80 443 ?", " 0 x ?"}) {
            expect_each({command + " 1 192.168.225.50" + ports, "CMD Error#0x4\r\n"},
                        {{"1", ""}, {"50", ""}, {"257", ""}, {"306", ""}});
        }
        expect({{command + " 1 255.255.255.255 80 443 6", "CMD Error#0x4\r\n"}});

        for (int protocol = 0; protocol < 256; ++protocol) {
            if (protocol == 1 || protocol == 6 || protocol == 17 || protocol == 50 || protocol == 253) continue;
            expect_invalid({command + " 1 192.168.225.50 80 443 " + std::to_string(protocol)});
        }
        expect_invalid(command + " 1 192.168.225.50 80 443 ?", {"", "x", "tcp", "-6", "256"});
        for (const char* protocol : {"6", "17", "253"}) {
            for (const std::string ports : {" ? 7 ", " 7 ? "})
                expect_invalid(command + " 1 10.0.0.2" + ports + protocol,
                               {"0", "65536", "-65536", "131072", "", "http"});
        }
        for (const char* protocol : {"6", "1"}) {
            expect_invalid(command + " 1 ? 80 443 " + protocol, {"0.0.0.0", "0", "", "x", "256.1.1.1", "1.2.3.4.5"});
        }
        expect_invalid({command + " 0", command + " 0 10.0.0.2 80 80 6"});
    }
}

TEST_F(NatCliTest, PortMappingGetListsTheRulesWithTheInterfacesCodes)
{
    const std::vector<std::string> calls = {kSelect, "GetStaticNatConfig()"};
    give_rules({});
    expect({{"NAT IPV4PortMapping get 1", "NAT IPV4PortMapping: no port mapping rule\r\nCMD OK\r\n", calls}});
    give_rules({{0xC0A8E132, 80, 8080, 6},
                {0x0A000001, 65535, 1, 17},
                {0x01020304, 0, 0, 1},
                {0xFFFFFFFE, 5060, 5061, 253},
                {0xC0A8E101, 0, 0, 50},
                {0, 1, 2, 99}});
    const std::string list =
        "NAT IPV4PortMapping List:\r\n"
        "private_ip:192.168.225.50  private_port:80  global_port:8080  protocol:2\r\n"
        "private_ip:10.0.0.1  private_port:65535  global_port:1  protocol:3\r\n"
        "private_ip:1.2.3.4  private_port:0  global_port:0  protocol:4\r\n"
        "private_ip:255.255.255.254  private_port:5060  global_port:5061  protocol:6\r\n"
        "private_ip:192.168.225.1  private_port:0  global_port:0  protocol:7\r\n"
        "private_ip:0.0.0.0  private_port:1  global_port:2  protocol:0\r\n"
        "CMD OK\r\n";
    expect({{"NAT IPV4PortMapping get 1", list, calls},
            {"NAT IPV4PortMapping get 1 a b c d", list, calls},
            {"NAT IPV4PortMapping get 1", "CMD Error#0x2003\r\n", calls, "GetStaticNatConfig", 3},
            {"NAT IPV4PortMapping get 1", "CMD Error#0x1009\r\n", {kSelect}, "SetWWANProfileHandlePreference", 9}});
    expect_invalid({"NAT IPV4PortMapping get 0", "NAT IPV4PortMapping get 0 10.0.0.2 80 80 6"});
}

TEST_F(NatCliTest, PortMappingListsFiftyRules)
{
    std::vector<qcmap_msgr_snat_entry_config_v01> rules;
    std::string list = "NAT IPV4PortMapping List:\r\n";
    for (uint16_t i = 1; i <= 50; ++i) {
        rules.push_back({0x0A000000u + i, i, static_cast<uint16_t>(1000 + i), 253});
        list += "private_ip:10.0.0." + std::to_string(i) + "  private_port:" + std::to_string(i) +
                "  global_port:" + std::to_string(1000 + i) + "  protocol:6\r\n";
    }
    give_rules(rules);
    expect({{"NAT IPV4PortMapping get 1", list + "CMD OK\r\n", {kSelect, "GetStaticNatConfig()"}}});
}

// ---- RoutingBH ----

TEST_F(NatCliTest, RoutingBehindGetPrintsTheSwitch)
{
    const std::vector<std::string> calls = {"ZR_GetRoutingBH()"};
    expect({{"NAT RoutingBH get", "NAT RoutingBH Config:\r\nRouting Behind = 0\r\nCMD OK\r\n", calls}});
    platform.on("ZR_GetRoutingBH").gives("routing_bh", 1u);
    expect({{"NAT RoutingBH get", "NAT RoutingBH Config:\r\nRouting Behind = 1\r\nCMD OK\r\n", calls}});
    platform.on("ZR_GetRoutingBH").gives("routing_bh", 2u);
    expect({{"NAT RoutingBH get", "CMD Error#0x2000\r\n", calls},
            {"NAT RoutingBH get", "CMD Error#0x1003\r\n", calls, "ZR_GetRoutingBH", 3}});
}

TEST_F(NatCliTest, RoutingBehindSetTellsToReboot)
{
    expect_each({"NAT RoutingBH set ?",
                 "NAT RoutingBH modify success\r\nneed reboot to take effect\r\nCMD OK\r\n",
                 {"ZR_SetRoutingBH(?)"}},
                {{"0", "0"}, {"1", "1"}, {"x", "0"}, {"1x", "1"}, {"", "0"}});
    expect({{"NAT RoutingBH set 1", "CMD Error#0x1003\r\n", {"ZR_SetRoutingBH(1)"}, "ZR_SetRoutingBH", 3}});
    expect_invalid("NAT RoutingBH set ?", {"-1", "2", "256", "257", "65536"});
}

}  // namespace
