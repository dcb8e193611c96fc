#include "cli_test.h"

namespace {

class LanPassthroughCliTest : public CliTest {
protected:
    void platform_gives_passthrough(int mode, uint32_t device_type, uint8_t adaptive_value, const char* host_name)
    {
        qcmap_msgr_ip_passthrough_config_v01 config = {device_type, 0, adaptive_value, {0, 1, 2, 0xAB, 0xCD, 0xEF}, {}};
        std::string(host_name).copy(config.host_name, sizeof(config.host_name));
        platform.on("GetIPPassthroughConfig")
            .gives("mode", static_cast<qcmap_msgr_ip_passthrough_mode_enum_v01>(mode))
            .gives("config", config);
    }
};

// Lan ids that no setting with a lan_id takes; 65537 is 1 when it is cut to 16 bits.
const std::vector<std::string> kBadLanIds = {"1", "4095", "65535", "-1", "65537", "69631"};

std::string passthrough_line(const std::string& device_type, int flag, int value, const std::string& mac,
                             const std::string& host_name)
{
    return "SetIPPassthroughConfig(mode=1 has_config=1 device_type=" + device_type +
           " adaptive_flag=" + std::to_string(flag) + " adaptive_value=" + std::to_string(value) + " mac=" + mac +
           " host_name=\"" + host_name + "\")";
}
const std::string kDisableLine = "SetIPPassthroughConfig(mode=0 has_config=0 config=null)";
const std::string kNoMac = "000000000000";
const std::string kReadFilters = "GetIPPassthroughSoftwarePathFilters(request=2 count=0 flags=0)";

// ---- IPPTNAT ----

TEST_F(LanPassthroughCliTest, NatUsage)
{
    expect_run({"LAN", "IPPTNAT"},
               "How to use:\r\n"
               "zr_nexa LAN IPPTNAT <option> [parameters]\r\n"
               "\r\n"
               "<option>\r\n"
               "set: zr_nexa LAN IPPTNAT set <ippt_nat>\r\n"
               "     set ippt nat mode\r\n"
               "get: zr_nexa LAN IPPTNAT get\r\n"
               "     get ippt nat mode\r\n"
               "\r\n"
               "<ippt_nat>\r\n"
               "int type\r\n"
               "1: ippt withnat mode, module will config network NAT for ippt device\r\n"
               "0: ippt withoutnat mode, module will not config network NAT for ippt device\r\n"
               "2: ippt withnat only one device mode, module will config network NAT for ippt device\r\n"
               "\r\n"
               "CMD OK\r\n");
}

TEST_F(LanPassthroughCliTest, NatGetPrintsTheMode)
{
    const struct {
        uint32_t platform_mode;
        const char* output;
    } rows[] = {{1, "LAN IPPTNAT: WithNAT\r\nCMD OK\r\n"},
                {2, "LAN IPPTNAT: WithoutNAT\r\nCMD OK\r\n"},
                {3, "LAN IPPTNAT: WithNAT only one device\r\nCMD OK\r\n"},
                {4, "CMD Error#0x5\r\n"}};
    for (const auto& row : rows) {
        platform.on("GetFeatureMode")
            .gives("features", 1ULL)
            .gives("config", qcmap_client_feature_mode_config{1, row.platform_mode});
        expect_run({"LAN", "IPPTNAT", "get"}, row.output, {"GetFeatureMode()"});
        expect_run({"LAN", "IPPTNAT", "get", "x"}, row.output, {"GetFeatureMode()"});
    }
    platform.on("GetFeatureMode").gives("features", 2ULL);
    expect_run({"LAN", "IPPTNAT", "get"}, "CMD Error#0x8\r\n", {"GetFeatureMode()"});
    platform.on("GetFeatureMode").fails(3);
    expect_run({"LAN", "IPPTNAT", "get"}, "CMD Error#0x1003\r\n", {"GetFeatureMode()"});
}

TEST_F(LanPassthroughCliTest, NatSetMapsTheMode)
{
    const struct {
        const char *word, *mode;
    } rows[] = {{"0", "2"}, {"1", "1"}, {"2", "3"}, {"257", "1"}, {"-254", "3"}, {"", "2"}, {"on", "2"}};
    for (const auto& row : rows) {
        expect_run({"LAN", "IPPTNAT", "set", row.word}, "CMD OK\r\n",
                   {std::string("SetFeatureMode(1 features=1 feature_mode=") + row.mode + ")"});
    }
    for (const char* word : {"3", "255", "-1", "259"})
        expect_invalid({"LAN", "IPPTNAT", "set", word});
    platform.on("SetFeatureMode").fails(0);
    expect_run({"LAN", "IPPTNAT", "set", "1"}, "CMD Error#0x1000\r\n", {"SetFeatureMode(1 features=1 feature_mode=1)"});
}

TEST_F(LanPassthroughCliTest, NatRefusesOtherWordsAndCounts)
{
    expect_invalid({"LAN", "IPPTNAT", "get", "x", "y"});
    expect_invalid({"LAN", "IPPTNAT", "set"});
    expect_invalid({"LAN", "IPPTNAT", "set", "1", "1"});
    for (const char* option : {"", "Get", "SET", "add"}) {
        expect_invalid({"LAN", "IPPTNAT", option});
        expect_invalid({"LAN", "IPPTNAT", option, "1"});
    }
}

// ---- IPPTNATPDN ----

TEST_F(LanPassthroughCliTest, PdnUsage)
{
    expect_run({"LAN", "IPPTNATPDN"},
               "How to use:\r\n"
               "zr_nexa LAN IPPTNATPDN <option> [parameters]\r\n"
               "\r\n"
               "<option>\r\n"
               "set: zr_nexa LAN IPPTNATPDN set <lan_id> <ippt_nat>\r\n"
               "     set ippt nat mode\r\n"
               "get: zr_nexa LAN IPPTNATPDN get <lan_id>\r\n"
               "     get ippt nat mode\r\n"
               "\r\n"
               "<lan_id>\r\n"
               "int type\r\n"
               "if you mean default lan, this value is 0; if you mean vlan, this value is vlan_id\r\n"
               "\r\n"
               "<ippt_nat>\r\n"
               "int type\r\n"
               "1: ippt withnat mode, module will config network NAT for ippt device\r\n"
               "0: ippt withoutnat mode, module will not config network NAT for ippt device\r\n"
               "2: ippt withnat only one device mode, module will config network NAT for ippt device\r\n"
               "-1: ippt default mode for PDN, use the global value of IPPTNAT configuration\r\n"
               "\r\n"
               "CMD OK\r\n");
}

TEST_F(LanPassthroughCliTest, PdnGetPrintsTheModeUnderTheOtherSettingsLabel)
{
    const struct {
        int pdn;
        const char* output;
    } rows[] = {{1, "LAN IPPTNAT: WithNAT\r\nCMD OK\r\n"},
                {0, "LAN IPPTNAT: WithoutNAT\r\nCMD OK\r\n"},
                {2, "LAN IPPTNAT: WithNAT only one device\r\nCMD OK\r\n"},
                {-1, "LAN IPPTNAT: Default config, use the global value of IPPTNAT configuration\r\nCMD OK\r\n"},
                // The command's own value stays when the platform's is none of these.
                {3, "LAN IPPTNAT: Default config, use the global value of IPPTNAT configuration\r\nCMD OK\r\n"}};
    for (const auto& row : rows) {
        platform.on("ZR_GetIPPTNATPDN").gives("pdn", row.pdn);
        const std::vector<std::string> calls = {"SelectLANBridge(4094)", "ZR_GetIPPTNATPDN(-1)"};
        expect_run({"LAN", "IPPTNATPDN", "get", "4094"}, row.output, calls);
        expect_run({"LAN", "IPPTNATPDN", "get", "4094", "x"}, row.output, calls);
    }
    platform.on("ZR_GetIPPTNATPDN").fails(3);
    expect_run({"LAN", "IPPTNATPDN", "get", "2"}, "CMD Error#0x2003\r\n",
               {"SelectLANBridge(2)", "ZR_GetIPPTNATPDN(-1)"});
}

TEST_F(LanPassthroughCliTest, PdnSetReadsBack)
{
    const struct {
        const char* word;
        int pdn;
    } rows[] = {{"-1", -1}, {"0", 0}, {"1", 1}, {"2", 2}, {"255", -1}, {"258", 2}, {"x", 0}};
    for (const auto& row : rows) {
        platform.on("ZR_GetIPPTNATPDN").gives("pdn", row.pdn);
        expect_run(
            {"LAN", "IPPTNATPDN", "set", "100", row.word}, "CMD OK\r\n",
            {"SelectLANBridge(100)", "ZR_SetIPPTNATPDN(" + std::to_string(row.pdn) + ")", "ZR_GetIPPTNATPDN(-1)"});
    }
    expect_run({"LAN", "IPPTNATPDN", "set", "65636", "1"}, "CMD Error#0x2101\r\n",
               {"SelectLANBridge(100)", "ZR_SetIPPTNATPDN(1)", "ZR_GetIPPTNATPDN(-1)"});
    for (const char* word : {"-2", "3", "127", "128", "254"}) {
        expect_invalid({"LAN", "IPPTNATPDN", "set", "100", word});
    }
}

TEST_F(LanPassthroughCliTest, PdnOfTheDefaultLanIsRefusedByTheInterface)
{
    for (const char* lan_id : {"0", "65536", "lan"}) {
        expect_run({"LAN", "IPPTNATPDN", "get", lan_id}, "CMD Error#0x4\r\n");
        expect_run({"LAN", "IPPTNATPDN", "set", lan_id, "1"}, "CMD Error#0x4\r\n");
    }
}

TEST_F(LanPassthroughCliTest, PdnRefusesOtherWordsAndCounts)
{
    for (const auto& lan_id : kBadLanIds) {
        expect_invalid({"LAN", "IPPTNATPDN", "get", lan_id});
        expect_invalid({"LAN", "IPPTNATPDN", "set", lan_id, "1"});
        expect_invalid({"LAN", "IPPTNATPDN", "nothing", lan_id});
    }
    for (const char* option : {"get", "set", "add", ""}) {
        expect_invalid({"LAN", "IPPTNATPDN", option});
        expect_invalid({"LAN", "IPPTNATPDN", option, "100", "1", "1"});
    }
    expect_invalid({"LAN", "IPPTNATPDN", "set", "100"});
    expect_invalid({"LAN", "IPPTNATPDN", "add", "100"});
    expect_invalid({"LAN", "IPPTNATPDN", "Set", "100", "1"});
}

// ---- IPPT ----

TEST_F(LanPassthroughCliTest, IpptUsage)
{
    expect_run({"LAN", "IPPT"},
               "How to use:\r\n"
               "zr_nexa LAN IPPT <option> [parameters]\r\n"
               "\r\n"
               "<option>\r\n"
               "adaptive: zr_nexa LAN IPPT adaptive <lan_id> <adaptive_mode>\r\n"
               "          set ippt mode\r\n"
               "set:      zr_nexa LAN IPPT set <lan_id> <ippt_mode> [<ippt_host_info>]\r\n"
               "          set ippt mode\r\n"
               "get:      zr_nexa LAN IPPT get <lan_id>\r\n"
               "          get ippt mode\r\n"
               "\r\n"
               "<lan_id>\r\n"
               "int type\r\n"
               "if you mean default lan, this value is 0; if you mean vlan, this value is vlan_id\r\n"
               "\r\n"
               "<adaptive_mode>\r\n"
               "int type\r\n"
               "0:  disable adaptive ippt\r\n"
               "1:  enable adaptive ippt: ETH newest device\r\n"
               "2:  enable adaptive ippt: ETH first device\r\n"
               "3:  enable adaptive ippt: USB(ECM/RNDIS) newest device\r\n"
               "4:  enable adaptive ippt: USB(ECM/RNDIS) first device\r\n"
               "5:  enable adaptive ippt: Wi-Fi newest device\r\n"
               "6:  enable adaptive ippt: Wi-Fi first device\r\n"
               "7:  enable adaptive ippt: Any newest device\r\n"
               "8:  enable adaptive ippt: Any first device\r\n"
               "9:  enable adaptive ippt: ETH-NIC2 newest device\r\n"
               "10: enable adaptive ippt: ETH-NIC2 first device\r\n"
               "\r\n"
               "<ippt_mode>\r\n"
               "int type\r\n"
               "0: disable ippt mode\r\n"
               "1: enable ippt mode on ETH interface\r\n"
               "2: enable ippt mode on WLAN interface, not support when <lan_id> is a vlan interface\r\n"
               "3: enable ippt mode on USB(ECM/RNDIS) interface\r\n"
               "4: enable ippt mode on ETH_NIC2 interface\r\n"
               "\r\n"
               "<ippt_host_info>\r\n"
               "string type\r\n"
               "if <ippt_mode> is 0 this value can be omitted\r\n"
               "if <ippt_mode> is 1/2/4 this value should be hosts mac address, exp: 00:01:02:03:04:05\r\n"
               "if <ippt_mode> is 3 this value should be hosts name, exp: Korvane_PC\r\n"
               "\r\n"
               "CMD OK\r\n");
}

TEST_F(LanPassthroughCliTest, IpptGetRunsItsPiecesTogether)
{
    const struct {
        int mode;
        uint32_t device_type;
        uint8_t adaptive;
        const char* output;
    } rows[] = {
        {0, 4, 0, "lan_id: 100--ippt_mode: 0--ippt_host_mac: --ippt_host_name: CMD OK\r\n"},
        {0, 4, 10,
         "lan_id: 100adaptive ippt is enable: 10current effective ippt configuration:"
         "--ippt_mode: 0--ippt_host_mac: --ippt_host_name: CMD OK\r\n"},
        {1, 4, 0, "lan_id: 100--ippt_mode: 1--ippt_host_mac: 00:01:02:ab:cd:ef--ippt_host_name: CMD OK\r\n"},
        {1, 8, 0, "lan_id: 100--ippt_mode: 2--ippt_host_mac: 00:01:02:ab:cd:ef--ippt_host_name: CMD OK\r\n"},
        {1, 16, 5,
         "lan_id: 100adaptive ippt is enable: 5current effective ippt configuration:"
         "--ippt_mode: 4--ippt_host_mac: 00:01:02:ab:cd:ef--ippt_host_name: CMD OK\r\n"},
        {1, 3, 0, "lan_id: 100--ippt_mode: 3--ippt_host_mac: --ippt_host_name: Korvane_PCCMD OK\r\n"},
        {1, 9, 0, "lan_id: 100--ippt_mode: 5--ippt_host_mac: --ippt_host_name: CMD OK\r\n"},
        {1, 0x7FFFFFFF, 7,
         "lan_id: 100adaptive ippt is enable: 7current effective ippt configuration:"
         "--ippt_mode: 0--ippt_host_mac: --ippt_host_name: CMD OK\r\n"},
    };
    for (const auto& row : rows) {
        platform_gives_passthrough(row.mode, row.device_type, row.adaptive, "Korvane_PC");
        const std::vector<std::string> calls = {"SelectLANBridge(100)", "GetIPPassthroughConfig()"};
        const std::string output = std::string("LAN IPPT Config:\r\n") + row.output;
        expect_run({"LAN", "IPPT", "get", "100"}, output, calls);
        expect_run({"LAN", "IPPT", "get", "100", "x"}, output, calls);
        expect_run({"LAN", "IPPT", "get", "65636", "x", "y"}, output, calls);
    }
}

TEST_F(LanPassthroughCliTest, IpptGetPrintsNoMoreOfTheHostNameThanItsField)
{
    platform_gives_passthrough(1, 3, 0, std::string(100, 'n').c_str());
    expect_run({"LAN", "IPPT", "get", "0"},
               "LAN IPPT Config:\r\nlan_id: 0--ippt_mode: 3--ippt_host_mac: --ippt_host_name: " +
                   std::string(100, 'n') + "CMD OK\r\n",
               {"SelectLANBridge(0)", "GetIPPassthroughConfig()"});
}

TEST_F(LanPassthroughCliTest, IpptGetPrintsNothingOnAnError)
{
    platform_gives_passthrough(2, 3, 0, "");
    expect_run({"LAN", "IPPT", "get", "0"}, "CMD Error#0x1\r\n", {"SelectLANBridge(0)", "GetIPPassthroughConfig()"});
    platform.on("SelectLANBridge").fails(14);
    expect_run({"LAN", "IPPT", "get", "2"}, "CMD Error#0x100e\r\n", {"SelectLANBridge(2)"});
}

TEST_F(LanPassthroughCliTest, IpptAdaptiveSendsEveryMode)
{
    for (int mode = 0; mode <= 10; ++mode) {
        expect_run({"LAN", "IPPT", "adaptive", "100", std::to_string(mode)}, "CMD OK\r\n",
                   {"SelectLANBridge(100)", passthrough_line("2147483647", 1, mode, kNoMac, "")});
    }
    expect_run({"LAN", "IPPT", "adaptive", "0", "266"}, "CMD OK\r\n",
               {"SelectLANBridge(0)", passthrough_line("2147483647", 1, 10, kNoMac, "")});
    for (const char* mode : {"11", "255", "-1"})
        expect_invalid({"LAN", "IPPT", "adaptive", "0", mode});
    platform.on("SetIPPassthroughConfig").fails(3);
    expect_run({"LAN", "IPPT", "adaptive", "0", "1"}, "CMD Error#0x2003\r\n",
               {"SelectLANBridge(0)", passthrough_line("2147483647", 1, 1, kNoMac, "")});
}

TEST_F(LanPassthroughCliTest, IpptSetDisablesOnAnyLan)
{
    for (const char* lan_id : {"0", "2", "100", "4094"}) {
        const std::vector<std::string> calls = {std::string("SelectLANBridge(") + lan_id + ")",
                                                passthrough_line("2147483647", 1, 0, kNoMac, ""), kDisableLine};
        expect_run({"LAN", "IPPT", "set", lan_id, "0"}, "CMD OK\r\n", calls);
        expect_run({"LAN", "IPPT", "set", lan_id, "0", "whatever"}, "CMD OK\r\n", calls);
        expect_run({"LAN", "IPPT", "set", lan_id, "256"}, "CMD OK\r\n", calls);
    }
}

TEST_F(LanPassthroughCliTest, IpptSetTakesADevice)
{
    const struct {
        const char *mode, *device_type;
    } rows[] = {{"1", "4"}, {"2", "8"}, {"4", "16"}, {"257", "4"}};
    for (const auto& row : rows) {
        expect_run({"LAN", "IPPT", "set", "0", row.mode, "00:01:02:aB:Cd:EF"}, "CMD OK\r\n",
                   {"SelectLANBridge(0)", passthrough_line(row.device_type, 0, 0, "000102abcdef", "")});
    }
    expect_run({"LAN", "IPPT", "set", "0", "3", "Korvane_PC"}, "CMD OK\r\n",
               {"SelectLANBridge(0)", passthrough_line("3", 0, 0, kNoMac, "Korvane_PC")});
    // The name is a block of 100 bytes.
    for (const size_t length : {99u, 100u, 101u, 100000u}) {
        expect_run({"LAN", "IPPT", "set", "0", "3", std::string(length, 'n')}, "CMD OK\r\n",
                   {"SelectLANBridge(0)",
                    passthrough_line("3", 0, 0, kNoMac, std::string(length < 100 ? length : size_t{100}, 'n'))});
    }
    // An empty name sends nothing.
    expect_run({"LAN", "IPPT", "set", "0", "3", ""}, "CMD OK\r\n", {"SelectLANBridge(0)"});
}

TEST_F(LanPassthroughCliTest, IpptSetRefusesWordsThatAreNoMacAddress)
{
    for (const char* mode : {"1", "2", "4"}) {
        for (const std::string& word : std::vector<std::string>{
                 "", "0", "00:01:02:03:04:0Z", "00:01:02:03:04:0", "00:01:02:03:04:056", "00:01:02:03:04:05 ",
                 "00-01-02-03-04-05", "000102030405", "00:01:02:03:04", "0:01:02:03:04:005", "00:01:02:03:04:\xFF\xFE",
                 "::::::::::::::::::", std::string(100000, 'a')}) {
            expect_invalid({"LAN", "IPPT", "set", "0", mode, word});
        }
    }
}

TEST_F(LanPassthroughCliTest, IpptSetRefusesWhatItDoesNotOffer)
{
    for (const char* mode : {"5", "255", "-1"}) {
        expect_invalid({"LAN", "IPPT", "set", "0", mode});
        expect_invalid({"LAN", "IPPT", "set", "0", mode, "00:01:02:03:04:05"});
    }
    for (const char* mode : {"1", "2", "3", "4"}) {
        expect_invalid({"LAN", "IPPT", "set", "0", mode});
        // On a VLAN passthrough can only be disabled.
        expect_invalid({"LAN", "IPPT", "set", "100", mode});
        expect_invalid({"LAN", "IPPT", "set", "100", mode, "00:01:02:03:04:05"});
    }
}

TEST_F(LanPassthroughCliTest, IpptRefusesOtherWordsAndCounts)
{
    for (const auto& lan_id : kBadLanIds) {
        expect_invalid({"LAN", "IPPT", "get", lan_id});
        expect_invalid({"LAN", "IPPT", "adaptive", lan_id, "1"});
        expect_invalid({"LAN", "IPPT", "set", lan_id, "0"});
        expect_invalid({"LAN", "IPPT", "nothing", lan_id});
    }
    for (const char* option : {"get", "set", "adaptive", "add", ""}) {
        expect_invalid({"LAN", "IPPT", option});
        expect_invalid({"LAN", "IPPT", option, "0", "0", "x", "y"});
    }
    expect_invalid({"LAN", "IPPT", "set", "0"});
    expect_invalid({"LAN", "IPPT", "adaptive", "0"});
    expect_invalid({"LAN", "IPPT", "adaptive", "0", "1", "x"});
    for (const char* option : {"Get", "SET", "Adaptive", ""}) {
        expect_invalid({"LAN", "IPPT", option, "0"});
        expect_invalid({"LAN", "IPPT", option, "0", "0"});
        expect_invalid({"LAN", "IPPT", option, "0", "0", "x"});
    }
}

// ---- IPPTGWFilter ----

TEST_F(LanPassthroughCliTest, FilterUsage)
{
    expect_run({"LAN", "IPPTGWFilter"},
               "How to use:\r\n"
               "zr_nexa LAN IPPTGWFilter <option> [parameters]\r\n"
               "\r\n"
               "<option>\r\n"
               "add: zr_nexa LAN IPPTGWFilter add <lan_id> <protocol> <start_port> <end_port>\r\n"
               "     add a ippt getway address software filter config\r\n"
               "del: zr_nexa LAN IPPTGWFilter del <lan_id> <filter_ID>\r\n"
               "     del a ippt getway address software filter config\r\n"
               "get: zr_nexa LAN IPPTGWFilter get <lan_id>\r\n"
               "     get all ippt getway address software filter config\r\n"
               "\r\n"
               "<lan_id>\r\n"
               "int type\r\n"
               "if you mean default lan, this value is 0; if you mean vlan, this value is vlan_id\r\n"
               "\r\n"
               "<protocol>\r\n"
               "int type\r\n"
               "1: TCP\r\n"
               "2: UDP\r\n"
               "\r\n"
               "<start_port>\r\n"
               "int type, 1-65534\r\n"
               "\r\n"
               "<end_port>\r\n"
               "int type, 1-65534, must be equal to or greater than <start_port>\r\n"
               "\r\n"
               "<filter_ID>\r\n"
               "int type, 1-5\r\n"
               "IPPT GW Filter num\r\n"
               "\r\n"
               "CMD OK\r\n");
}

TEST_F(LanPassthroughCliTest, FilterGetPrintsTheSlots)
{
    const std::vector<std::string> calls = {"SelectLANBridge(100)", kReadFilters};
    expect_run({"LAN", "IPPTGWFilter", "get", "100"}, "LAN IPPTGWFilter: No GW Filter\r\nCMD OK\r\n", calls);

    platform.on("GetIPPassthroughSoftwarePathFilters")
        .gives("list", qcmap_msgr_sw_path_filters_conf_t{2, 3, 0, {{80, 90, 1}, {1, 65534, 2}, {0, 0, 4}}});
    const std::string output =
        "LAN IPPTGWFilter:\r\n"
        "filterID: 1 protocol: 1 start_port: 80 end_port 90\r\n"
        "filterID: 2 protocol: 2 start_port: 1 end_port 65534\r\n"
        "filterID: 3 protocol: 3 start_port: 0 end_port 0\r\n"
        "CMD OK\r\n";
    expect_run({"LAN", "IPPTGWFilter", "get", "100"}, output, calls);
    expect_run({"LAN", "IPPTGWFilter", "get", "100", "x"}, output, calls);
    expect_run({"LAN", "IPPTGWFilter", "get", "100", "x", "y", "z"}, output, calls);

    // Only the first slot decides about the headline.
    platform.on("GetIPPassthroughSoftwarePathFilters")
        .gives("list", qcmap_msgr_sw_path_filters_conf_t{
                           2, 5, 0, {{1, 2, 99}, {3, 4, 1}, {5, 6, 0}, {7, 8, 0}, {65535, 65535, 4}}});
    expect_run({"LAN", "IPPTGWFilter", "get", "100"},
               "LAN IPPTGWFilter: No GW Filter\r\n"
               "filterID: 2 protocol: 1 start_port: 3 end_port 4\r\n"
               "filterID: 5 protocol: 3 start_port: 65535 end_port 65535\r\n"
               "CMD OK\r\n",
               calls);

    platform.on("GetIPPassthroughSoftwarePathFilters").fails(3);
    expect_run({"LAN", "IPPTGWFilter", "get", "100"}, "CMD Error#0x2003\r\n", calls);
}

TEST_F(LanPassthroughCliTest, FilterAddAppends)
{
    const struct {
        const char *protocol, *start, *end, *stored;
    } rows[] = {{"1", "80", "80", "start=80 end=80 protocol=1"},
                {"2", "1", "65534", "start=1 end=65534 protocol=2"},
                {"1", "65616", "-2", "start=80 end=65534 protocol=1"}};
    for (const auto& row : rows) {
        expect_run({"LAN", "IPPTGWFilter", "add", "0", row.protocol, row.start, row.end}, "CMD OK\r\n",
                   {"SelectLANBridge(0)", kReadFilters,
                    std::string("SetIPPassthroughSoftwarePathFilters(request=2 count=1 flags=0 ") + row.stored + ")"});
    }
    platform.on("GetIPPassthroughSoftwarePathFilters").gives("list", qcmap_msgr_sw_path_filters_conf_t{2, 5, 0, {}});
    expect_run({"LAN", "IPPTGWFilter", "add", "4094", "1", "80", "80"}, "CMD Error#0x2\r\n",
               {"SelectLANBridge(4094)", kReadFilters});
}

TEST_F(LanPassthroughCliTest, FilterAddRefusesBadNumbers)
{
    for (const char* protocol : {"0", "3", "4", "257", "258", "-1", "", "TCP"}) {
        expect_invalid({"LAN", "IPPTGWFilter", "add", "0", protocol, "1", "2"});
    }
    for (const char* port : {"0", "65535", "65536", "-1", "", "http"}) {
        expect_invalid({"LAN", "IPPTGWFilter", "add", "0", "1", port, "65534"});
        expect_invalid({"LAN", "IPPTGWFilter", "add", "0", "1", "1", port});
    }
    expect_invalid({"LAN", "IPPTGWFilter", "add", "0", "1", "81", "80"});
}

TEST_F(LanPassthroughCliTest, FilterDelDeletesByPlace)
{
    platform.on("GetIPPassthroughSoftwarePathFilters")
        .gives("list", qcmap_msgr_sw_path_filters_conf_t{2, 2, 0, {{80, 90, 1}, {1, 2, 2}}});
    expect_run({"LAN", "IPPTGWFilter", "del", "0", "1"}, "CMD OK\r\n",
               {"SelectLANBridge(0)", kReadFilters,
                "SetIPPassthroughSoftwarePathFilters(request=2 count=1 flags=0 start=1 end=2 protocol=2)"});
    expect_run({"LAN", "IPPTGWFilter", "del", "0", "258"}, "CMD OK\r\n",
               {"SelectLANBridge(0)", kReadFilters,
                "SetIPPassthroughSoftwarePathFilters(request=2 count=1 flags=0 start=80 end=90 protocol=1)"});
    expect_run({"LAN", "IPPTGWFilter", "del", "0", "5"}, "CMD Error#0x2\r\n", {"SelectLANBridge(0)", kReadFilters});
    for (const char* number : {"0", "6", "255", "256", "-1", "x"}) {
        expect_invalid({"LAN", "IPPTGWFilter", "del", "0", number});
    }
}

TEST_F(LanPassthroughCliTest, FilterRefusesOtherWordsAndCounts)
{
    for (const auto& lan_id : kBadLanIds) {
        expect_invalid({"LAN", "IPPTGWFilter", "get", lan_id});
        expect_invalid({"LAN", "IPPTGWFilter", "add", lan_id, "1", "80", "80"});
        expect_invalid({"LAN", "IPPTGWFilter", "del", lan_id, "1"});
        expect_invalid({"LAN", "IPPTGWFilter", "nothing", lan_id});
    }
    for (const char* option : {"get", "add", "del", "set", ""}) {
        expect_invalid({"LAN", "IPPTGWFilter", option});
        expect_invalid({"LAN", "IPPTGWFilter", option, "0", "1", "1"});
        expect_invalid({"LAN", "IPPTGWFilter", option, "0", "1", "1", "1", "1"});
    }
    expect_invalid({"LAN", "IPPTGWFilter", "add", "0"});
    expect_invalid({"LAN", "IPPTGWFilter", "add", "0", "1"});
    expect_invalid({"LAN", "IPPTGWFilter", "del", "0"});
    expect_invalid({"LAN", "IPPTGWFilter", "del", "0", "1", "1", "1"});
    for (const char* option : {"Get", "ADD", "delete", ""}) {
        expect_invalid({"LAN", "IPPTGWFilter", option, "0"});
        expect_invalid({"LAN", "IPPTGWFilter", option, "0", "1"});
        expect_invalid({"LAN", "IPPTGWFilter", option, "0", "1", "1", "1"});
    }
}

}  // namespace
