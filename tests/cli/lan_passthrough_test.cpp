#include "cli_test.h"

namespace {

class LanPassthroughCliTest : public CliTest {
protected:
    void give_mode(uint64_t features, uint32_t mode)
    {
        platform.on("GetFeatureMode")
            .gives("features", static_cast<unsigned long long>(features))
            .gives("config", qcmap_client_feature_mode_config{1, mode});
    }
    void give_passthrough(int mode, uint32_t device_type, uint8_t adaptive_value, const std::string& host_name)
    {
        qcmap_msgr_ip_passthrough_config_v01 config = {device_type, 0, adaptive_value, {0, 1, 2, 0xAB, 0xCD, 0xEF}, {}};
        host_name.copy(config.host_name, sizeof(config.host_name));
        platform.on("GetIPPassthroughConfig")
            .gives("mode", static_cast<qcmap_msgr_ip_passthrough_mode_enum_v01>(mode))
            .gives("config", config);
    }
    void give_filters(const qcmap_msgr_sw_path_filters_conf_t& filters)
    {
        platform.on("GetIPPassthroughSoftwarePathFilters").gives("list", filters);
    }
};

// Lan ids that no setting with a lan_id takes; 65537 is 1 when it is cut to 16 bits.
const std::vector<std::string> kBadLanIds = {"1", "4095", "65535", "-1", "65537", "69631"};

const std::string kNoMac = "000000000000";
const std::string kOff = "SetIPPassthroughConfig(mode=0 has_config=0 config=null)";
const std::string kReadFilters = "GetIPPassthroughSoftwarePathFilters(request=2 count=0 flags=0)";

std::string on(const std::string& device_type, const std::string& mac, const std::string& host_name)
{
    return "SetIPPassthroughConfig(mode=1 has_config=1 device_type=" + device_type +
           " adaptive_flag=0 adaptive_value=0 mac=" + mac + " host_name=\"" + host_name + "\")";
}

std::string adaptive(const std::string& value)
{
    return "SetIPPassthroughConfig(mode=1 has_config=1 device_type=2147483647 adaptive_flag=1 adaptive_value=" + value +
           " mac=" + kNoMac + " host_name=\"\")";
}

std::string filters(const std::string& filter)
{
    return "SetIPPassthroughSoftwarePathFilters(request=2 count=1 flags=0 " + filter + ")";
}

// ---- IPPTNAT ----

TEST_F(LanPassthroughCliTest, NatGetPrintsTheMode)
{
    const std::vector<std::string> calls = {"GetFeatureMode()"};
    const std::pair<uint32_t, std::string> rows[] = {{1, "LAN IPPTNAT: WithNAT\r\nCMD OK\r\n"},
                                                     {2, "LAN IPPTNAT: WithoutNAT\r\nCMD OK\r\n"},
                                                     {3, "LAN IPPTNAT: WithNAT only one device\r\nCMD OK\r\n"},
                                                     {4, "CMD Error#0x5\r\n"}};
    for (const auto& [mode, output] : rows) {
        give_mode(1, mode);
        expect({{"LAN IPPTNAT get", output, calls}, {"LAN IPPTNAT get x", output, calls}});
    }
    expect({{"LAN IPPTNAT get", "CMD Error#0x1003\r\n", calls, "GetFeatureMode", 3}});
    give_mode(2, 1);
    expect({{"LAN IPPTNAT get", "CMD Error#0x8\r\n", calls}});
}

TEST_F(LanPassthroughCliTest, NatSetMapsTheMode)
{
    const Command set = {"LAN IPPTNAT set ?", "CMD OK\r\n", {"SetFeatureMode(1 features=1 feature_mode=?)"}};
    expect_each(set, {{"0", "2"}, {"1", "1"}, {"2", "3"}, {"257", "1"}, {"-254", "3"}, {"", "2"}, {"on", "2"}});
    expect_each({set.line, "CMD Error#0x1000\r\n", set.calls, "SetFeatureMode", 0}, {{"1", "1"}});
    expect_invalid(set.line, {"3", "255", "-1", "259"});
}

// ---- IPPTNATPDN ----

TEST_F(LanPassthroughCliTest, PdnGetPrintsTheModeUnderTheOtherSettingsLabel)
{
    const std::vector<std::string> calls = {"SelectLANBridge(4094)", "ZR_GetIPPTNATPDN(-1)"};
    const std::string global =
        "LAN IPPTNAT: Default config, use the global value of IPPTNAT configuration\r\nCMD OK\r\n";
    const std::pair<int, std::string> rows[] = {{1, "LAN IPPTNAT: WithNAT\r\nCMD OK\r\n"},
                                                {0, "LAN IPPTNAT: WithoutNAT\r\nCMD OK\r\n"},
                                                {2, "LAN IPPTNAT: WithNAT only one device\r\nCMD OK\r\n"},
                                                {-1, global},
                                                // The command's own value stays when the platform's is none of these.
                                                {3, global}};
    for (const auto& [pdn, output] : rows) {
        platform.on("ZR_GetIPPTNATPDN").gives("pdn", pdn);
        expect({{"LAN IPPTNATPDN get 4094", output, calls}, {"LAN IPPTNATPDN get 4094 x", output, calls}});
    }
    expect({{"LAN IPPTNATPDN get 2",
             "CMD Error#0x2003\r\n",
             {"SelectLANBridge(2)", "ZR_GetIPPTNATPDN(-1)"},
             "ZR_GetIPPTNATPDN",
             3}});
}

TEST_F(LanPassthroughCliTest, PdnSetReadsBack)
{
    const std::pair<std::string, int> rows[] = {{"-1", -1},  {"0", 0},   {"1", 1}, {"2", 2},
                                                {"255", -1}, {"258", 2}, {"x", 0}};
    for (const auto& [word, pdn] : rows) {
        platform.on("ZR_GetIPPTNATPDN").gives("pdn", pdn);
        expect({{"LAN IPPTNATPDN set 100 " + word,
                 "CMD OK\r\n",
                 {"SelectLANBridge(100)", "ZR_SetIPPTNATPDN(" + std::to_string(pdn) + ")", "ZR_GetIPPTNATPDN(-1)"}}});
    }
    expect({{"LAN IPPTNATPDN set 65636 1",
             "CMD Error#0x2101\r\n",
             {"SelectLANBridge(100)", "ZR_SetIPPTNATPDN(1)", "ZR_GetIPPTNATPDN(-1)"}}});
}

TEST_F(LanPassthroughCliTest, PdnOfTheDefaultLanIsRefusedByTheInterface)
{
    for (const char* line : {"LAN IPPTNATPDN get ?", "LAN IPPTNATPDN set ? 1"})
        expect_each({line, "CMD Error#0x4\r\n"}, {{"0", ""}, {"65536", ""}, {"lan", ""}});
}

TEST_F(LanPassthroughCliTest, PdnRefusesOtherNumbers)
{
    for (const char* line : {"LAN IPPTNATPDN get ?", "LAN IPPTNATPDN set ? 1", "LAN IPPTNATPDN nothing ?"})
        expect_invalid(line, kBadLanIds);
    expect_invalid("LAN IPPTNATPDN set 100 ?", {"-2", "3", "127", "128", "254"});
}

// ---- IPPT ----

TEST_F(LanPassthroughCliTest, IpptGetRunsItsPiecesTogether)
{
    const std::vector<std::string> calls = {"SelectLANBridge(100)", "GetIPPassthroughConfig()"};
    const struct {
        int mode;
        uint32_t device_type;
        uint8_t adaptive;
        std::string output;
    } rows[] = {
        {0, 4, 0, "--ippt_mode: 0--ippt_host_mac: --ippt_host_name: CMD OK\r\n"},
        {0, 4, 10,
         "adaptive ippt is enable: 10current effective ippt configuration:"
         "--ippt_mode: 0--ippt_host_mac: --ippt_host_name: CMD OK\r\n"},
        {1, 4, 0, "--ippt_mode: 1--ippt_host_mac: 00:01:02:ab:cd:ef--ippt_host_name: CMD OK\r\n"},
        {1, 8, 0, "--ippt_mode: 2--ippt_host_mac: 00:01:02:ab:cd:ef--ippt_host_name: CMD OK\r\n"},
        {1, 16, 5,
         "adaptive ippt is enable: 5current effective ippt configuration:"
         "--ippt_mode: 4--ippt_host_mac: 00:01:02:ab:cd:ef--ippt_host_name: CMD OK\r\n"},
        {1, 3, 0, "--ippt_mode: 3--ippt_host_mac: --ippt_host_name: Korvane_PCCMD OK\r\n"},
        {1, 9, 0, "--ippt_mode: 5--ippt_host_mac: --ippt_host_name: CMD OK\r\n"},
        {1, 0x7FFFFFFF, 7,
         "adaptive ippt is enable: 7current effective ippt configuration:"
         "--ippt_mode: 0--ippt_host_mac: --ippt_host_name: CMD OK\r\n"},
    };
    for (const auto& row : rows) {
        give_passthrough(row.mode, row.device_type, row.adaptive, "Korvane_PC");
        const std::string output = "LAN IPPT Config:\r\nlan_id: 100" + row.output;
        expect({{"LAN IPPT get 100", output, calls},
                {"LAN IPPT get 100 x", output, calls},
                {"LAN IPPT get 65636 x y", output, calls}});
    }
}

TEST_F(LanPassthroughCliTest, IpptGetPrintsNoMoreOfTheHostNameThanItsField)
{
    give_passthrough(1, 3, 0, std::string(100, 'n'));
    expect({{"LAN IPPT get 0",
             "LAN IPPT Config:\r\nlan_id: 0--ippt_mode: 3--ippt_host_mac: --ippt_host_name: " + std::string(100, 'n') +
                 "CMD OK\r\n",
             {"SelectLANBridge(0)", "GetIPPassthroughConfig()"}}});
}

TEST_F(LanPassthroughCliTest, IpptGetPrintsNothingOnAnError)
{
    give_passthrough(2, 3, 0, "");
    expect({{"LAN IPPT get 0", "CMD Error#0x1\r\n", {"SelectLANBridge(0)", "GetIPPassthroughConfig()"}},
            {"LAN IPPT get 2", "CMD Error#0x100e\r\n", {"SelectLANBridge(2)"}, "SelectLANBridge", 14}});
}

TEST_F(LanPassthroughCliTest, IpptAdaptiveSendsEveryMode)
{
    for (int mode = 0; mode <= 10; ++mode) {
        const std::string value = std::to_string(mode);
        expect({{"LAN IPPT adaptive 100 " + value, "CMD OK\r\n", {"SelectLANBridge(100)", adaptive(value)}}});
    }
    expect({{"LAN IPPT adaptive 0 266", "CMD OK\r\n", {"SelectLANBridge(0)", adaptive("10")}},
            {"LAN IPPT adaptive 0 1",
             "CMD Error#0x2003\r\n",
             {"SelectLANBridge(0)", adaptive("1")},
             "SetIPPassthroughConfig",
             3}});
    expect_invalid("LAN IPPT adaptive 0 ?", {"11", "255", "-1"});
}

TEST_F(LanPassthroughCliTest, IpptSetDisablesOnAnyLan)
{
    for (const char* line : {"LAN IPPT set ? 0", "LAN IPPT set ? 0 whatever", "LAN IPPT set ? 256"}) {
        expect_each({line, "CMD OK\r\n", {"SelectLANBridge(?)", adaptive("0"), kOff}},
                    {{"0", "0"}, {"2", "2"}, {"100", "100"}, {"4094", "4094"}});
    }
}

TEST_F(LanPassthroughCliTest, IpptSetTakesADevice)
{
    expect_each(
        {"LAN IPPT set 0 ? 00:01:02:aB:Cd:EF", "CMD OK\r\n", {"SelectLANBridge(0)", on("?", "000102abcdef", "")}},
        {{"1", "4"}, {"2", "8"}, {"4", "16"}, {"257", "4"}});
    // The name is a block of 100 bytes.
    const std::string whole(100, 'n');
    expect_each({"LAN IPPT set 0 3 ?", "CMD OK\r\n", {"SelectLANBridge(0)", on("3", kNoMac, "?")}},
                {{"Korvane_PC", "Korvane_PC"},
                 {std::string(99, 'n'), std::string(99, 'n')},
                 {whole, whole},
                 {std::string(101, 'n'), whole},
                 {std::string(100000, 'n'), whole}});
    // An empty name sends nothing.
    expect({{"LAN IPPT set 0 3 ''", "CMD OK\r\n", {"SelectLANBridge(0)"}}});
}

TEST_F(LanPassthroughCliTest, IpptSetRefusesWordsThatAreNoMacAddress)
{
    for (const char* line : {"LAN IPPT set 0 1 ?", "LAN IPPT set 0 2 ?", "LAN IPPT set 0 4 ?"}) {
        expect_invalid(line,
                       {"", "0", "00:01:02:03:04:0Z", "00:01:02:03:04:0", "00:01:02:03:04:056", "00:01:02:03:04:05 ",
                        "00-01-02-03-04-05", "000102030405", "00:01:02:03:04", "0:01:02:03:04:005",
                        "00:01:02:03:04:\xFF\xFE", "::::::::::::::::::", std::string(100000, 'a')});
    }
}

TEST_F(LanPassthroughCliTest, IpptRefusesOtherNumbers)
{
    expect_invalid("LAN IPPT set 0 ?", {"1", "2", "3", "4", "5", "255", "-1"});
    expect_invalid("LAN IPPT set 0 ? 00:01:02:03:04:05", {"5", "255", "-1"});
    // On a VLAN passthrough can only be disabled.
    expect_invalid("LAN IPPT set 100 ?", {"1", "2", "3", "4"});
    expect_invalid("LAN IPPT set 100 ? 00:01:02:03:04:05", {"1", "2", "3", "4"});
    for (const char* line : {"LAN IPPT get ?", "LAN IPPT adaptive ? 1", "LAN IPPT set ? 0", "LAN IPPT nothing ?"})
        expect_invalid(line, kBadLanIds);
}

// ---- IPPTGWFilter ----

TEST_F(LanPassthroughCliTest, FilterGetPrintsTheSlots)
{
    const std::vector<std::string> calls = {"SelectLANBridge(100)", kReadFilters};
    expect({{"LAN IPPTGWFilter get 100", "LAN IPPTGWFilter: No GW Filter\r\nCMD OK\r\n", calls}});

    give_filters({2, 3, 0, {{80, 90, 1}, {1, 65534, 2}, {0, 0, 4}}});
    const std::string list =
        "LAN IPPTGWFilter:\r\n"
        "filterID: 1 protocol: 1 start_port: 80 end_port 90\r\n"
        "filterID: 2 protocol: 2 start_port: 1 end_port 65534\r\n"
        "filterID: 3 protocol: 3 start_port: 0 end_port 0\r\n"
        "CMD OK\r\n";
    expect({{"LAN IPPTGWFilter get 100", list, calls},
            {"LAN IPPTGWFilter get 100 x", list, calls},
            {"LAN IPPTGWFilter get 100 x y z", list, calls}});

    // Only the first slot decides about the headline.
    give_filters({2, 5, 0, {{1, 2, 99}, {3, 4, 1}, {5, 6, 0}, {7, 8, 0}, {65535, 65535, 4}}});
    expect({{"LAN IPPTGWFilter get 100",
             "LAN IPPTGWFilter: No GW Filter\r\n"
             "filterID: 2 protocol: 1 start_port: 3 end_port 4\r\n"
             "filterID: 5 protocol: 3 start_port: 65535 end_port 65535\r\n"
             "CMD OK\r\n",
             calls},
            {"LAN IPPTGWFilter get 100", "CMD Error#0x2003\r\n", calls, "GetIPPassthroughSoftwarePathFilters", 3}});
}

TEST_F(LanPassthroughCliTest, FilterAddAppends)
{
    const std::string select = "SelectLANBridge(0)";
    expect({{"LAN IPPTGWFilter add 0 1 80 80",
             "CMD OK\r\n",
             {select, kReadFilters, filters("start=80 end=80 protocol=1")}},
            {"LAN IPPTGWFilter add 0 2 1 65534",
             "CMD OK\r\n",
             {select, kReadFilters, filters("start=1 end=65534 protocol=2")}},
            {"LAN IPPTGWFilter add 0 1 65616 -2",
             "CMD OK\r\n",
             {select, kReadFilters, filters("start=80 end=65534 protocol=1")}}});
    give_filters({2, 5, 0, {}});
    expect({{"LAN IPPTGWFilter add 4094 1 80 80", "CMD Error#0x2\r\n", {"SelectLANBridge(4094)", kReadFilters}}});

    expect_invalid("LAN IPPTGWFilter add 0 ? 1 2", {"0", "3", "4", "257", "258", "-1", "", "TCP"});
    expect_invalid("LAN IPPTGWFilter add 0 1 ? 65534", {"0", "65535", "65536", "-1", "", "http"});
    expect_invalid("LAN IPPTGWFilter add 0 1 1 ?", {"0", "65535", "65536", "-1", "", "http"});
    expect_invalid({"LAN IPPTGWFilter add 0 1 81 80"});
}

TEST_F(LanPassthroughCliTest, FilterDelDeletesByPlace)
{
    const std::string select = "SelectLANBridge(0)";
    give_filters({2, 2, 0, {{80, 90, 1}, {1, 2, 2}}});
    expect({{"LAN IPPTGWFilter del 0 1", "CMD OK\r\n", {select, kReadFilters, filters("start=1 end=2 protocol=2")}},
            {"LAN IPPTGWFilter del 0 258", "CMD OK\r\n", {select, kReadFilters, filters("start=80 end=90 protocol=1")}},
            {"LAN IPPTGWFilter del 0 5", "CMD Error#0x2\r\n", {select, kReadFilters}}});
    expect_invalid("LAN IPPTGWFilter del 0 ?", {"0", "6", "255", "256", "-1", "x"});
}

TEST_F(LanPassthroughCliTest, FilterRefusesOtherLanIds)
{
    for (const char* line : {"LAN IPPTGWFilter get ?", "LAN IPPTGWFilter add ? 1 80 80", "LAN IPPTGWFilter del ? 1",
                             "LAN IPPTGWFilter nothing ?"})
        expect_invalid(line, kBadLanIds);
}

}  // namespace
