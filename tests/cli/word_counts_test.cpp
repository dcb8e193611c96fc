// Every setting with every option word at every word count, 3 to 11.
#include <algorithm>
#include <cctype>
#include <map>
#include <set>

#include "cli_test.h"
#include "document.h"
#include "steps.h"

namespace {

using Parameters = std::vector<std::string>;

// One option word of a setting. The parameters are good ones in the order of the longest form, and some words more.
struct Row {
    std::string setting;
    std::string option;
    Parameters parameters;
    std::vector<int> counts;  // of words that are accepted, the tool's name among them
    std::string output;       // for them, the verdict included
    bool asks_platform = true;
};

const std::vector<Row>& rows()
{
    static const std::string ok = "CMD OK\r\n";
    static const Parameters any = {"1", "1", "1", "1", "1", "1", "1"};
    static const Parameters bridge = {"0", "192.168.10.1", "255.255.255.0", "192.168.10.20", "192.168.10.60", "7200",
                                      "x"};
    static const Parameters vlan = {"5", "1", "0", "x", "x", "x", "x"};
    static const Parameters passthrough_off = {"0", "0", "x", "x", "x", "x", "x"};
    static const Parameters passthrough_on = {"0", "1", "00:01:02:03:04:05", "x", "x", "x", "x"};
    static const Parameters filter = {"0", "1", "80", "90", "x", "x", "x"};
    static const Parameters mapping = {"1", "7", "x", "x", "x", "x", "x"};
    static const Parameters call = {"1", "4", "x", "x", "x", "x", "x"};
    static const Parameters calls = {"1", "46", "x", "x", "x", "x", "x"};
    static const Parameters dmz = {"1", "192.168.225.50", "x", "x", "x", "x", "x"};
    static const Parameters rule = {"1", "192.168.225.50", "80", "8080", "6", "x", "x"};
    static const std::vector<Row> all = {
        {"General Restore", "yes", any, {4}, "General Restore: success, will reboot in 5s\r\n" + ok},
        {"General Restore", "no", any, {4}, ok, false},
        {"General SFE", "get", any, {4}, "General SFE: enabled\r\n" + ok},
        {"General SFE", "enable", any, {4}, ok},
        {"General SFE", "disable", any, {4}, ok},

        {"LAN GWURL", "get", any, {4, 5}, "LAN GWURL: module.example\r\n" + ok},
        {"LAN GWURL", "set", any, {5}, ok},
        {"LAN DHCP",
         "get",
         bridge,
         {5, 10},
         "(V)LAN DHCP Config:\r\n"
         "(v)lan_id:       0\r\n"
         "Gateway IP:      192.168.225.1\r\n"
         "Netmask:         255.255.255.0\r\n"
         "DHCP Start IP:   192.168.225.20\r\n"
         "DHCP End IP:     192.168.225.60\r\n"
         "DHCP Lease Time: 43200\r\n" +
             ok},
        {"LAN DHCP", "set", bridge, {10}, ok},
        {"LAN VLAN", "get", vlan, {4, 6, 7}, "LAN VLAN List:\r\nvlan_id:5  vlan_type:1  vlan_accelerated:1\r\n" + ok},
        {"LAN VLAN", "add", vlan, {7}, ok},
        {"LAN VLAN", "del", vlan, {6}, ok},
        {"LAN IPPTNAT", "get", any, {4, 5}, "LAN IPPTNAT: WithNAT\r\n" + ok},
        {"LAN IPPTNAT", "set", any, {5}, ok},
        {"LAN IPPTNATPDN", "get", vlan, {5, 6}, "LAN IPPTNAT: WithNAT\r\n" + ok},
        {"LAN IPPTNATPDN", "set", vlan, {6}, ok},
        {"LAN IPPT",
         "get",
         passthrough_off,
         {5, 6, 7},
         "LAN IPPT Config:\r\nlan_id: 0--ippt_mode: 0--ippt_host_mac: --ippt_host_name: " + ok},
        {"LAN IPPT", "adaptive", passthrough_off, {6}, ok},
        {"LAN IPPT", "set", passthrough_off, {6, 7}, ok},
        {"LAN IPPT", "set", passthrough_on, {7}, ok},
        {"LAN IPPTGWFilter",
         "get",
         filter,
         {5, 6, 8},
         "LAN IPPTGWFilter:\r\nfilterID: 1 protocol: 1 start_port: 80 end_port 90\r\n" + ok},
        {"LAN IPPTGWFilter", "add", filter, {8}, ok},
        {"LAN IPPTGWFilter", "del", filter, {6}, ok},
        {"LAN DefaultDHCPEnable", "get", any, {4, 5}, "DefaultDHCPEnable: 1(enable)\r\n" + ok},
        {"LAN DefaultDHCPEnable", "set", any, {5}, "Set DefaultDHCPEnable successful\r\n" + ok},

        {"WAN WWANConfig", "get", any, {4, 5, 6, 7}, "WAN WWANConfig List:\r\nwwanconfig num = 0\r\n" + ok},
        {"WAN WWANConfig", "add", any, {6}, "WAN WWANConfig add success, new wwan_handle = 2\r\n" + ok},
        {"WAN WWANConfig", "set", any, {7}, "WAN WWANConfig modify success\r\n" + ok},
        {"WAN WWANConfig", "del", any, {5}, "WAN WWANConfig delete success\r\n" + ok},
        {"WAN WWANConfig", "setdefault", any, {5}, "WAN WWANConfig set default wwanconfig handle = 1 success\r\n" + ok},
        {"WAN APWWAN",
         "get",
         any,
         {4},
         "WAN APWWAN Config:\r\nAP wwanconfig handle = 3\r\nAP DNS wwanconfig handle = 4\r\n" + ok},
        {"WAN APWWAN", "set", any, {6}, "WAN APWWAN modify success\r\n" + ok},
        {"WAN Status", "get", any, {5}, "WAN Status:\r\nv4 connected\r\nv6 disconnected\r\n" + ok},
        {"WAN Connect", "connect", call, {6}, "WAN Connect connect v4 set success\r\n" + ok},
        {"WAN Connect", "disconnect", call, {6}, "WAN Connect disconnect v4 set success\r\n" + ok},
        {"WAN Connect",
         "connect",
         calls,
         {6},
         "WAN Connect connect v4 set success\r\nWAN Connect connect v6 set success\r\n" + ok},
        {"WAN Connect",
         "disconnect",
         calls,
         {6},
         "WAN Connect disconnect v4 set success\r\nWAN Connect disconnect v6 set success\r\n" + ok},
        {"WAN ReConnect", "get", any, {5, 6}, "WAN ReConnect enabled\r\n" + ok},
        {"WAN ReConnect", "set", any, {6}, "WAN ReConnect set enable success\r\n" + ok},
        {"WAN AutoConnect", "get", any, {5, 6}, "WAN AutoConnect disabled\r\n" + ok},
        {"WAN AutoConnect", "set", any, {6}, "WAN AutoConnect set enable success\r\n" + ok},
        {"WAN Info", "get", any, {5}, "WAN Info: disconnected\r\n" + ok},
        {"WAN MPDNMapping", "get", mapping, {4, 6}, "WAN MPDNMapping List:\r\nMPDNMapping rule num: 0\r\n" + ok},
        {"WAN MPDNMapping", "add", mapping, {6}, "WAN MPDNMapping add success\r\n" + ok},
        {"WAN MPDNMapping", "del", mapping, {6}, "WAN MPDNMapping del success\r\n" + ok},
        {"WAN RestartRadvd", "restart", any, {5}, "CMD Error#0x3\r\n", false},

        {"NAT Type", "get", any, {5, 6}, "NAT Type: FULL CONE NAT\r\n" + ok},
        {"NAT Type", "set", any, {6}, "NAT Type set success\r\n" + ok},
        {"NAT IPV4DMZ", "get", dmz, {5, 6}, "NAT IPV4DMZ: enabled\r\nDMZ IP: 192.168.225.50\r\n" + ok},
        {"NAT IPV4DMZ", "enable", dmz, {6}, "NAT IPV4DMZ enable success\r\n" + ok},
        {"NAT IPV4DMZ", "disable", dmz, {5, 6}, "NAT IPV4DMZ disable success\r\n" + ok},
        {"NAT IPV4PortMapping",
         "get",
         rule,
         {5, 9},
         "NAT IPV4PortMapping List:\r\nprivate_ip:192.168.225.50  private_port:80  global_port:8080  protocol:6\r\n" +
             ok},
        {"NAT IPV4PortMapping", "add", rule, {9}, "NAT IPV4PortMapping add success\r\n" + ok},
        {"NAT IPV4PortMapping", "del", rule, {9}, "NAT IPV4PortMapping delete success\r\n" + ok},
        {"NAT RoutingBH", "get", any, {4}, "NAT RoutingBH Config:\r\nRouting Behind = 1\r\n" + ok},
        {"NAT RoutingBH", "set", any, {5}, "NAT RoutingBH modify success\r\nneed reboot to take effect\r\n" + ok},
    };
    return all;
}

// Options that a setting does not know: its own ones in another spelling, and those of all others.
std::set<std::string> other_options(const std::string& setting)
{
    std::set<std::string> others = {"", "other", "on", "list", "default", "delete", std::string(100000, 'y')};
    std::set<std::string> own;
    for (const Row& row : rows()) {
        others.insert(row.option);
        if (row.setting != setting) continue;
        own.insert(row.option);
        std::string upper = row.option;
        upper[0] = static_cast<char>(std::toupper(upper[0]));
        others.insert(upper);
        std::transform(upper.begin(), upper.end(), upper.begin(), [](char c) { return std::toupper(c); });
        others.insert(upper);
        others.insert(row.option.substr(0, row.option.size() - 1));
        others.insert(row.option + row.option.back());
        others.insert(row.option + "d");
        others.insert(row.option + "x");
    }
    for (const std::string& option : own)
        others.erase(option);
    return others;
}

// As many words as count says, the tool's name among them.
std::string line(const std::string& setting, const std::string& option, const Parameters& parameters, int count)
{
    std::string words = setting + " '" + option + "'";
    for (int i = 4; i < count; ++i)
        words += " " + parameters[static_cast<size_t>(i) - 4];
    return words;
}

class WordCountsTest : public CliTest {
protected:
    WordCountsTest()
    {
        platform.on("GetDataPathOptStatus").gives("enable", uint8_t{1});
        platform.on("GetGatewayUrl").gives_array("url", "module.example", 14).gives("len", 14u);
        qcmap_msgr_lan_config_v01 lan = {};
        lan.gateway_ip = 0xC0A8E101;
        lan.netmask = 0xFFFFFF00;
        lan.dhcp_start_ip = 0xC0A8E114;
        lan.dhcp_end_ip = 0xC0A8E13C;
        lan.lease_time = 43200;
        platform.on("GetLANConfig").gives("lan", lan);
        platform.on("ZR_GetDefaultEnableDHCP").gives("state", QCMAP_MSGR_CONFIG_STATE_ON_V01);
        platform.on("ZR_GetIPPTNATPDN").gives("pdn", 1);
        platform.on("CreateWWANPolicyEx").gives("handle", 2u);
        platform.on("GetAPProfileHandle").gives("ap", 3u).gives("apdns", 4u);
        platform.on("GetReconnect").gives("enable", uint8_t{1});
        platform.on("GetAutoconnect").gives("enable", uint8_t{0});
        platform.on("GetNatType").gives("nat_type", QCMAP_MSGR_NAT_FULL_CONE_V01);
        platform.on("GetDMZ").gives("ip", 0xC0A8E132u);
        const qcmap_msgr_snat_entry_config_v01 entry = {0xC0A8E132, 80, 8080, 253};
        platform.on("GetStaticNatConfig").gives_array("entries", &entry, 1).gives("count", 1);
        platform.on("ZR_GetRoutingBH").gives("routing_bh", 1u);
        platform.on("GetFeatureMode").gives("features", 1ULL).gives("config", qcmap_client_feature_mode_config{1, 1});
        platform.on("GetIPPassthroughSoftwarePathFilters")
            .gives("list", qcmap_msgr_sw_path_filters_conf_t{2, 1, 0, {{80, 90, 1}}});
        const qcmap_msgr_vlan_config_ex_v01 vlan = {QCMAP_MSGR_INTERFACE_TYPE_ETH_V01, 5, 1};
        platform.on("GetVLANConfig").gives("count", int32_t{1}).gives_array("vlan", &vlan, 1);
        platform.on("GetWWANStatus")
            .gives("v4_status", QCMAP_MSGR_WWAN_STATUS_CONNECTED_V01)
            .gives("v6_status", QCMAP_MSGR_WWAN_STATUS_IPV6_DISCONNECTED_V01);
    }
};

TEST_F(WordCountsTest, EveryOptionTakesItsWordCountsAndNoOther)
{
    for (const Row& row : rows()) {
        for (int count = 4; count <= 11; ++count) {
            const std::string words = line(row.setting, row.option, row.parameters, count);
            SCOPED_TRACE(words);
            const bool accepted = std::find(row.counts.begin(), row.counts.end(), count) != row.counts.end();
            EXPECT_EQ(run(words), accepted ? row.output : kInvalidAndVerdict);
            EXPECT_EQ(!platform.journal.empty(), accepted && row.asks_platform);
        }
    }
}

// Of an option's ways one is enough.
TEST_F(WordCountsTest, OptionsThatAreNotOneChangeAreTheDocumentedOnes)
{
    std::set<std::string> seen;
    for (const Row& row : rows()) {
        run(line(row.setting, row.option, row.parameters, row.counts.front()));
        std::vector<std::string> methods;
        for (const std::string& call : platform.journal)
            methods.push_back(call.substr(0, call.find('(')));
        if (!is_one_change(methods)) seen.insert(row.setting + " " + row.option);
    }
    std::set<std::string> documented;
    for (DocumentedSteps& steps : documented_steps(ZR_NEXA_DOCS_DIR "/steps.md"))
        documented.merge(steps.commands);
    EXPECT_THAT(documented, testing::ContainerEq(seen));
    platform.reset();
}

TEST_F(WordCountsTest, EverySettingRefusesOtherOptionsAtEveryWordCount)
{
    std::map<std::string, Parameters> parameters;
    for (const Row& row : rows())
        parameters.emplace(row.setting, row.parameters);
    for (const auto& [setting, words] : parameters) {
        for (const std::string& option : other_options(setting)) {
            for (int count = 4; count <= 11; ++count)
                expect_invalid({line(setting, option, words, count)});
        }
    }
    platform.reset();
}

TEST_F(WordCountsTest, WithoutAnOptionEverySettingPrintsItsDocumentedUsage)
{
    platform.reset();
    std::set<std::string> documented;
    for (const FencedBlock& block : fenced_blocks(ZR_NEXA_DOCS_DIR "/usage.md")) {
        std::string usage;
        for (const auto& printed_line : block.lines)
            usage += printed_line + "\r\n";
        expect({{block.heading, usage + "CMD OK\r\n"}});
        documented.insert(block.heading);
    }
    std::set<std::string> settings;
    for (const Row& row : rows())
        settings.insert(row.setting);
    EXPECT_EQ(settings.size(), 23u);
    EXPECT_EQ(documented, settings);
}

}  // namespace
