#include "cli_test.h"

namespace {

constexpr const char* kSelect1 = "SetWWANProfileHandlePreference(1)";

class NatCliTest : public CliTest {
protected:
    // Words that no setting of the category takes, at every word count from one parameter to seven.
    void expect_option_refused(const std::string& setting, const std::string& option)
    {
        std::vector<std::string> words = {"NAT", setting, option};
        for (const char* parameter : {"1", "1", "80", "80", "6", "1", "1"}) {
            expect_invalid(words);
            words.emplace_back(parameter);
        }
    }
};

TEST_F(NatCliTest, TypeUsage)
{
    expect_run({"NAT", "Type"},
               "How to use:\r\n"
               "zr_nexa NAT Type <option> [parameters]\r\n"
               "\r\n"
               "<option>\r\n"
               "set: zr_nexa NAT Type set <wwan_handle> <nat_type>\r\n"
               "     set wan interface nat type\r\n"
               "get: zr_nexa NAT Type get <wwan_handle>\r\n"
               "     get wan interface nat type\r\n"
               "\r\n"
               "<wwan_handle>\r\n"
               "int type, wwanconfig handle, 1-50\r\n"
               "\r\n"
               "<nat_type>\r\n"
               "0 : SYMMETRIC NAT\r\n"
               "1 : PORT RESTRICTED CONE NAT\r\n"
               "2 : FULL CONE NAT\r\n"
               "3 : ADDRESS RESTRICTED NAT\r\n"
               "\r\n"
               "CMD OK\r\n");
}

TEST_F(NatCliTest, DmzUsage)
{
    expect_run({"NAT", "IPV4DMZ"},
               "How to use:\r\n"
               "zr_nexa NAT IPV4DMZ <option> [parameters]\r\n"
               "\r\n"
               "<option>\r\n"
               "enable: zr_nexa NAT IPV4DMZ enable <wwan_handle> <dmz_ip>\r\n"
               "        enable default lan ipv4 dmz\r\n"
               "disable: zr_nexa NAT IPV4DMZ disable <wwan_handle>\r\n"
               "         disable default lan ipv4 dmz\r\n"
               "get: zr_nexa NAT IPV4DMZ get <wwan_handle>\r\n"
               "     get default lan ipv4 dmz config\r\n"
               "\r\n"
               "<wwan_handle>\r\n"
               "int type, wwanconfig handle, 1-50\r\n"
               "\r\n"
               "<dmz_ip>\r\n"
               "IP address type\r\n"
               "exp: 192.168.225.50\r\n"
               "\r\n"
               "CMD OK\r\n");
}

TEST_F(NatCliTest, PortMappingUsage)
{
    expect_run(
        {"NAT", "IPV4PortMapping"},
        "How to use:\r\n"
        "zr_nexa NAT IPV4PortMapping <option> [parameters]\r\n"
        "\r\n"
        "<option>\r\n"
        "add: zr_nexa NAT IPV4PortMapping add <wwan_handle> <private_ip> <private_port> <global_port> <protocol>\r\n"
        "     add a ipv4 port mapping rule on default lan\r\n"
        "get: zr_nexa NAT IPV4PortMapping get <wwan_handle>\r\n"
        "     get all ipv4 port mapping rule config on default lan\r\n"
        "del: zr_nexa NAT IPV4PortMapping del <wwan_handle> <private_ip> <private_port> <global_port> <protocol>\r\n"
        "     del a ipv4 port mapping rule on default lan\r\n"
        "\r\n"
        "<private_ip>\r\n"
        "IP address type\r\n"
        "exp: 192.168.225.50\r\n"
        "\r\n"
        "<private_port>\r\n"
        "int type, 1-65535\r\n"
        "\r\n"
        "<global_port>\r\n"
        "int type, 1-65535\r\n"
        "\r\n"
        "<protocol>\r\n"
        "1: ICMP\r\n"
        "6: TCP\r\n"
        "17: UDP\r\n"
        "50: ESP\r\n"
        "253: TCP_UDP\r\n"
        "\r\n"
        "CMD OK\r\n");
}

TEST_F(NatCliTest, RoutingBehindUsage)
{
    expect_run({"NAT", "RoutingBH"},
               "How to use:\r\n"
               "zr_nexa NAT RoutingBH <option> [parameters]\r\n"
               "\r\n"
               "<option>\r\n"
               "set: zr_nexa NAT RoutingBH set <routingbh>\r\n"
               "     configure the routingbh/routingbh_ippt enable or disable\r\n"
               "get: zr_nexa NAT RoutingBH get\r\n"
               "     query the routingbh/routingbh_ippt status\r\n"
               "\r\n"
               "<routingbh>\r\n"
               "int type, routingbh config, 0-1\r\n"
               "The Routing Behind function on internal datacall enable or disable\r\n"
               "\r\n"
               "CMD OK\r\n");
}

// ---- Type ----

TEST_F(NatCliTest, TypeGetPrintsTheType)
{
    const char* const names[] = {"SYMMETRIC NAT", "PORT RESTRICTED CONE NAT", "FULL CONE NAT",
                                 "ADDRESS RESTRICTED NAT"};
    for (const int type : {0, 1, 2, 3}) {
        platform.on("GetNatType").gives("nat_type", static_cast<qcmap_msgr_nat_enum_v01>(type));
        expect_run({"NAT", "Type", "get", "1"}, std::string("NAT Type: ") + names[type] + "\r\nCMD OK\r\n",
                   {kSelect1, "GetNatType()"});
    }
    // A word behind the handle is not looked at.
    expect_run({"NAT", "Type", "get", "1", "x"}, "NAT Type: ADDRESS RESTRICTED NAT\r\nCMD OK\r\n",
               {kSelect1, "GetNatType()"});
    // A type of no name leaves the preset 0.
    platform.on("GetNatType").gives("nat_type", static_cast<qcmap_msgr_nat_enum_v01>(4));
    expect_run({"NAT", "Type", "get", "1"}, "NAT Type: SYMMETRIC NAT\r\nCMD OK\r\n", {kSelect1, "GetNatType()"});
}

TEST_F(NatCliTest, TypeSetCutsTheTypeToEightBits)
{
    const std::pair<const char*, const char*> rows[] = {{"0", "0"},    {"1", "1"},   {"2", "2"},
                                                        {"3", "3"},    {"256", "0"}, {"259", "3"},
                                                        {"-253", "3"}, {"x", "0"},   {"2x", "2"}};
    for (const auto& [word, type] : rows) {
        expect_run({"NAT", "Type", "set", "1", word}, "NAT Type set success\r\nCMD OK\r\n",
                   {kSelect1, std::string("SetNatType(") + type + ")"});
    }
    for (const char* word : {"4", "260", "255", "-1", "511"}) {
        expect_invalid({"NAT", "Type", "set", "1", word});
    }
}

TEST_F(NatCliTest, TypeHandles)
{
    std::vector<const char*> refused = {"0", "x", "", "-0", "0x1"};
    std::vector<std::pair<const char*, const char*>> rows = {
        {"50", "50"}, {"51", "51"}, {"7x", "7"}, {" 8", "8"}, {"-1", "4294967295"}};
    // What atoi makes of more than 32 bits: the low ones, or the largest number where long has no more.
    if (sizeof(long) > sizeof(int)) {
        refused.push_back("4294967296");
    } else {
        rows.emplace_back("4294967296", "2147483647");
    }
    for (const char* word : refused) {
        expect_invalid({"NAT", "Type", "get", word});
        expect_invalid({"NAT", "Type", "set", word, "1"});
    }
    platform.on("GetNatType").gives("nat_type", QCMAP_MSGR_NAT_FULL_CONE_V01);
    for (const auto& [word, handle] : rows) {
        expect_run({"NAT", "Type", "get", word}, "NAT Type: FULL CONE NAT\r\nCMD OK\r\n",
                   {std::string("SetWWANProfileHandlePreference(") + handle + ")", "GetNatType()"});
    }
}

TEST_F(NatCliTest, TypeRefusesOtherWords)
{
    expect_invalid({"NAT", "Type", "get"});
    expect_invalid({"NAT", "Type", "set"});
    expect_invalid({"NAT", "Type", "set", "1"});
    expect_invalid({"NAT", "Type", "get", "1", "2", "3"});
    expect_invalid({"NAT", "Type", "set", "1", "2", "3"});
    for (const char* option : {"Get", "SET", "", "enable", "sett"}) {
        expect_option_refused("Type", option);
    }
}

// ---- IPV4DMZ ----

TEST_F(NatCliTest, DmzGetPrintsTheHost)
{
    platform.on("GetDMZ").gives("ip", 0u);
    for (const auto& words :
         {std::vector<std::string>{"NAT", "IPV4DMZ", "get", "1"}, {"NAT", "IPV4DMZ", "get", "1", "x"}}) {
        expect_run(words, "NAT IPV4DMZ: disabled\r\nCMD OK\r\n", {kSelect1, "GetDMZ()"});
    }
    platform.on("GetDMZ").gives("ip", 0xC0A8E132u);
    expect_run({"NAT", "IPV4DMZ", "get", "1"}, "NAT IPV4DMZ: enabled\r\nDMZ IP: 192.168.225.50\r\nCMD OK\r\n",
               {kSelect1, "GetDMZ()"});
}

TEST_F(NatCliTest, DmzEnableTakesEveryFormOfAnAddress)
{
    const std::pair<const char*, const char*> rows[] = {{"192.168.225.50", "3232293170"},
                                                        {"1", "1"},
                                                        {"10.1", "167772161"},
                                                        {"010.0.0.1", "134217729"},
                                                        {"0x7f.1", "2130706433"},
                                                        {"255.255.255.255", "4294967295"},
                                                        {"1.2.3.4 x", "16909060"}};
    for (const auto& [word, address] : rows) {
        expect_run({"NAT", "IPV4DMZ", "enable", "1", word}, "NAT IPV4DMZ enable success\r\nCMD OK\r\n",
                   {kSelect1, std::string("AddDMZ(") + address + ")"});
    }
    for (const char* word : {"", "x", "256.1.1.1", "1.2.3.4.5", "1.2.3.4x", "1..2", "-1", "example.org"}) {
        expect_invalid({"NAT", "IPV4DMZ", "enable", "1", word});
    }
    expect_run({"NAT", "IPV4DMZ", "enable", "1", "0.0.0.0"}, "CMD Error#0xa\r\n", {kSelect1});
}

TEST_F(NatCliTest, DmzDisableIgnoresAFurtherWord)
{
    expect_run({"NAT", "IPV4DMZ", "disable", "1"}, "NAT IPV4DMZ disable success\r\nCMD OK\r\n",
               {kSelect1, "DeleteDMZ()"});
    expect_run({"NAT", "IPV4DMZ", "disable", "1", "not an address"}, "NAT IPV4DMZ disable success\r\nCMD OK\r\n",
               {kSelect1, "DeleteDMZ()"});
    // The interface only logs the address, which is 0 whatever the word says.
    EXPECT_EQ(run({"NAT", "IPV4DMZ", "disable", "1", "1.2.3.4"}), "NAT IPV4DMZ disable success\r\nCMD OK\r\n");
    ASSERT_FALSE(platform.log.empty());
    EXPECT_EQ(platform.log.back().text, "Delete DMZ IP success : wwan_handle=1 dmz_ip=0");
}

TEST_F(NatCliTest, DmzRefusesOtherWords)
{
    for (const char* option : {"get", "enable", "disable"}) {
        expect_invalid({"NAT", "IPV4DMZ", option});
        expect_invalid({"NAT", "IPV4DMZ", option, "0", "1.2.3.4"});
        expect_invalid({"NAT", "IPV4DMZ", option, "x", "1.2.3.4"});
        expect_invalid({"NAT", "IPV4DMZ", option, "1", "1.2.3.4", "x"});
    }
    expect_invalid({"NAT", "IPV4DMZ", "enable", "1"});
    for (const char* option : {"set", "Get", "", "ENABLE", "disabled"}) {
        expect_option_refused("IPV4DMZ", option);
    }
}

// ---- IPV4PortMapping ----

// The command's words and the interface's protocol codes differ: 6 asks for a rule of both TCP and UDP.
TEST_F(NatCliTest, PortMappingSixMakesARuleOfBothProtocols)
{
    expect_run({"NAT", "IPV4PortMapping", "add", "1", "192.168.225.50", "80", "8080", "6"},
               "NAT IPV4PortMapping add success\r\nCMD OK\r\n",
               {kSelect1, "AddStaticNatEntry(private_ip=3232293170 private_port=80 global_port=8080 protocol=253)"});
    expect_run({"NAT", "IPV4PortMapping", "del", "1", "192.168.225.50", "80", "8080", "6"},
               "NAT IPV4PortMapping delete success\r\nCMD OK\r\n",
               {kSelect1, "DeleteStaticNatEntry(private_ip=3232293170 private_port=80 global_port=8080 protocol=253)"});
}

TEST_F(NatCliTest, PortMappingsOtherProtocolsAreTheInterfacesToRefuse)
{
    for (const char* option : {"add", "del"}) {
        for (const char* protocol : {"17", "253", "273", "509"}) {
            expect_run({"NAT", "IPV4PortMapping", option, "1", "192.168.225.50", "80", "443", protocol},
                       "CMD Error#0xc\r\n");
        }
        for (const char* protocol : {"1", "50", "257", "306"}) {
            expect_run({"NAT", "IPV4PortMapping", option, "1", "192.168.225.50", "80", "443", protocol},
                       "CMD Error#0x4\r\n");
            expect_run({"NAT", "IPV4PortMapping", option, "1", "192.168.225.50", "0", "x", protocol},
                       "CMD Error#0x4\r\n");
        }
    }
}

TEST_F(NatCliTest, PortMappingRefusesProtocolsOfItsOwn)
{
    for (const char* option : {"add", "del"}) {
        for (int protocol = 0; protocol < 256; ++protocol) {
            if (protocol == 1 || protocol == 6 || protocol == 17 || protocol == 50 || protocol == 253) continue;
            expect_invalid(
                {"NAT", "IPV4PortMapping", option, "1", "192.168.225.50", "80", "443", std::to_string(protocol)});
        }
        for (const char* protocol : {"", "x", "tcp", "-6", "256"}) {
            expect_invalid({"NAT", "IPV4PortMapping", option, "1", "192.168.225.50", "80", "443", protocol});
        }
    }
}

TEST_F(NatCliTest, PortMappingPortsAreCutToSixteenBits)
{
    const std::pair<const char*, const char*> rows[] = {{"1", "1"},      {"65535", "65535"}, {"65537", "1"},
                                                        {"-1", "65535"}, {"80x", "80"},      {"131071", "65535"}};
    for (const auto& [word, port] : rows) {
        expect_run({"NAT", "IPV4PortMapping", "add", "1", "10.0.0.2", word, "7", "6"},
                   "NAT IPV4PortMapping add success\r\nCMD OK\r\n",
                   {kSelect1, std::string("AddStaticNatEntry(private_ip=167772162 private_port=") + port +
                                  " global_port=7 protocol=253)"});
        expect_run({"NAT", "IPV4PortMapping", "del", "1", "10.0.0.2", "7", word, "6"},
                   "NAT IPV4PortMapping delete success\r\nCMD OK\r\n",
                   {kSelect1, std::string("DeleteStaticNatEntry(private_ip=167772162 private_port=7 global_port=") +
                                  port + " protocol=253)"});
    }
    for (const char* option : {"add", "del"}) {
        for (const char* word : {"0", "65536", "-65536", "131072", "", "http"}) {
            for (const char* protocol : {"6", "17", "253"}) {
                expect_invalid({"NAT", "IPV4PortMapping", option, "1", "10.0.0.2", word, "7", protocol});
                expect_invalid({"NAT", "IPV4PortMapping", option, "1", "10.0.0.2", "7", word, protocol});
            }
        }
    }
}

TEST_F(NatCliTest, PortMappingAddresses)
{
    for (const char* option : {"add", "del"}) {
        for (const char* word : {"0.0.0.0", "0", "", "x", "256.1.1.1", "1.2.3.4.5"}) {
            for (const char* protocol : {"6", "1"}) {
                expect_invalid({"NAT", "IPV4PortMapping", option, "1", word, "80", "443", protocol});
            }
        }
        expect_run({"NAT", "IPV4PortMapping", option, "1", "255.255.255.255", "80", "443", "6"}, "CMD Error#0x4\r\n");
    }
}

TEST_F(NatCliTest, PortMappingGetListsTheRulesWithTheInterfacesCodes)
{
    platform.on("GetStaticNatConfig").gives("count", 0);
    expect_run({"NAT", "IPV4PortMapping", "get", "1"}, "NAT IPV4PortMapping: no port mapping rule\r\nCMD OK\r\n",
               {kSelect1, "GetStaticNatConfig()"});

    const qcmap_msgr_snat_entry_config_v01 entries[] = {{0xC0A8E132, 80, 8080, 6}, {0x0A000001, 65535, 1, 17},
                                                        {0x01020304, 0, 0, 1},     {0xFFFFFFFE, 5060, 5061, 253},
                                                        {0xC0A8E101, 0, 0, 50},    {0, 1, 2, 99}};
    platform.on("GetStaticNatConfig").gives_array("entries", entries, 6).gives("count", 6);
    const std::string listed =
        "NAT IPV4PortMapping List:\r\n"
        "private_ip:192.168.225.50  private_port:80  global_port:8080  protocol:2\r\n"
        "private_ip:10.0.0.1  private_port:65535  global_port:1  protocol:3\r\n"
        "private_ip:1.2.3.4  private_port:0  global_port:0  protocol:4\r\n"
        "private_ip:255.255.255.254  private_port:5060  global_port:5061  protocol:6\r\n"
        "private_ip:192.168.225.1  private_port:0  global_port:0  protocol:7\r\n"
        "private_ip:0.0.0.0  private_port:1  global_port:2  protocol:0\r\n"
        "CMD OK\r\n";
    expect_run({"NAT", "IPV4PortMapping", "get", "1"}, listed, {kSelect1, "GetStaticNatConfig()"});
    expect_run({"NAT", "IPV4PortMapping", "get", "1", "a", "b", "c", "d"}, listed, {kSelect1, "GetStaticNatConfig()"});
}

TEST_F(NatCliTest, PortMappingListsFiftyRules)
{
    std::vector<qcmap_msgr_snat_entry_config_v01> entries;
    std::string listed = "NAT IPV4PortMapping List:\r\n";
    for (uint16_t i = 1; i <= 50; ++i) {
        entries.push_back({0x0A000000u + i, i, static_cast<uint16_t>(1000 + i), 253});
        listed += "private_ip:10.0.0." + std::to_string(i) + "  private_port:" + std::to_string(i) +
                  "  global_port:" + std::to_string(1000 + i) + "  protocol:6\r\n";
    }
    platform.on("GetStaticNatConfig").gives_array("entries", entries.data(), 50).gives("count", 50);
    expect_run({"NAT", "IPV4PortMapping", "get", "1"}, listed + "CMD OK\r\n", {kSelect1, "GetStaticNatConfig()"});
}

TEST_F(NatCliTest, PortMappingRefusesOtherWords)
{
    for (const char* option : {"get", "add", "del"}) {
        expect_invalid({"NAT", "IPV4PortMapping", option});
        expect_invalid({"NAT", "IPV4PortMapping", option, "0"});
        expect_invalid({"NAT", "IPV4PortMapping", option, "0", "10.0.0.2", "80", "80", "6"});
        expect_invalid({"NAT", "IPV4PortMapping", option, "1", "10.0.0.2"});
        expect_invalid({"NAT", "IPV4PortMapping", option, "1", "10.0.0.2", "80"});
        expect_invalid({"NAT", "IPV4PortMapping", option, "1", "10.0.0.2", "80", "80"});
        expect_invalid({"NAT", "IPV4PortMapping", option, "1", "10.0.0.2", "80", "80", "6", "x"});
    }
    expect_invalid({"NAT", "IPV4PortMapping", "add", "1"});
    expect_invalid({"NAT", "IPV4PortMapping", "del", "1"});
    for (const char* option : {"set", "Add", "delete", ""}) {
        expect_option_refused("IPV4PortMapping", option);
    }
}

// ---- RoutingBH ----

TEST_F(NatCliTest, RoutingBehindGetPrintsTheSwitch)
{
    expect_run({"NAT", "RoutingBH", "get"}, "NAT RoutingBH Config:\r\nRouting Behind = 0\r\nCMD OK\r\n",
               {"ZR_GetRoutingBH()"});
    platform.on("ZR_GetRoutingBH").gives("routing_bh", 1u);
    expect_run({"NAT", "RoutingBH", "get"}, "NAT RoutingBH Config:\r\nRouting Behind = 1\r\nCMD OK\r\n",
               {"ZR_GetRoutingBH()"});
    platform.on("ZR_GetRoutingBH").gives("routing_bh", 2u);
    expect_run({"NAT", "RoutingBH", "get"}, "CMD Error#0x2000\r\n", {"ZR_GetRoutingBH()"});
}

TEST_F(NatCliTest, RoutingBehindSetTellsToReboot)
{
    const std::pair<const char*, const char*> rows[] = {{"0", "0"}, {"1", "1"}, {"x", "0"}, {"1x", "1"}, {"", "0"}};
    for (const auto& [word, value] : rows) {
        expect_run({"NAT", "RoutingBH", "set", word},
                   "NAT RoutingBH modify success\r\nneed reboot to take effect\r\nCMD OK\r\n",
                   {std::string("ZR_SetRoutingBH(") + value + ")"});
    }
    for (const char* word : {"-1", "2", "256", "257", "65536"}) {
        expect_invalid({"NAT", "RoutingBH", "set", word});
    }
}

TEST_F(NatCliTest, RoutingBehindRefusesOtherWords)
{
    expect_invalid({"NAT", "RoutingBH", "get", "1"});
    expect_invalid({"NAT", "RoutingBH", "set"});
    expect_invalid({"NAT", "RoutingBH", "set", "1", "1"});
    for (const char* option : {"enable", "GET", ""}) {
        expect_option_refused("RoutingBH", option);
    }
}

// ---- failures ----

TEST_F(NatCliTest, APlatformErrorIsAllThatIsPrinted)
{
    struct Row {
        std::vector<std::string> words;
        std::string method;
        std::string call;
        bool selects;
        std::string verdict;
    };
    const std::string rule = "(private_ip=167772162 private_port=80 global_port=81 protocol=253)";
    const Row rows[] = {
        {{"NAT", "Type", "get", "1"}, "GetNatType", "GetNatType()", true, "CMD Error#0x2003\r\n"},
        {{"NAT", "Type", "set", "1", "2"}, "SetNatType", "SetNatType(2)", true, "CMD Error#0x2003\r\n"},
        {{"NAT", "IPV4DMZ", "get", "1"}, "GetDMZ", "GetDMZ()", true, "CMD Error#0x2003\r\n"},
        {{"NAT", "IPV4DMZ", "enable", "1", "1.2.3.4"}, "AddDMZ", "AddDMZ(16909060)", true, "CMD Error#0x2003\r\n"},
        {{"NAT", "IPV4DMZ", "disable", "1"}, "DeleteDMZ", "DeleteDMZ()", true, "CMD Error#0x3003\r\n"},
        {{"NAT", "IPV4PortMapping", "get", "1"},
         "GetStaticNatConfig",
         "GetStaticNatConfig()",
         true,
         "CMD Error#0x2003\r\n"},
        {{"NAT", "IPV4PortMapping", "add", "1", "10.0.0.2", "80", "81", "6"},
         "AddStaticNatEntry",
         "AddStaticNatEntry" + rule,
         true,
         "CMD Error#0x2003\r\n"},
        {{"NAT", "IPV4PortMapping", "del", "1", "10.0.0.2", "80", "81", "6"},
         "DeleteStaticNatEntry",
         "DeleteStaticNatEntry" + rule,
         true,
         "CMD Error#0x2003\r\n"},
        {{"NAT", "RoutingBH", "get"}, "ZR_GetRoutingBH", "ZR_GetRoutingBH()", false, "CMD Error#0x1003\r\n"},
        {{"NAT", "RoutingBH", "set", "1"}, "ZR_SetRoutingBH", "ZR_SetRoutingBH(1)", false, "CMD Error#0x1003\r\n"},
    };
    for (const Row& row : rows) {
        platform.reset();
        platform.on(row.method).fails(3);
        std::vector<std::string> calls = {row.call};
        if (row.selects) calls.insert(calls.begin(), kSelect1);
        expect_run(row.words, row.verdict, calls);
        EXPECT_THAT(platform.unused_answers(), testing::IsEmpty());
        if (!row.selects) continue;
        platform.reset();
        platform.on("SetWWANProfileHandlePreference").fails(9);
        expect_run(row.words, "CMD Error#0x1009\r\n", {kSelect1});
    }
}

}  // namespace
