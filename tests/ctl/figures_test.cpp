// What runs, as a tree, an object, a graph and figures.
#include "program_fixture.h"

namespace {

const std::string kPython = "/usr/bin/python3";  // the one that has the distribution's modules

class FiguresTest : public ProgramTest {
protected:
    // Counts grow with the time that a call is up: what it moved by itself is taken away again.
    void move(const std::string& profile) const
    {
        command({"WAN", "Connect", "connect", profile, "4"});
        happens({"traffic", profile, "--down", "1000", "--up", "2000", "--family", "4"});
        command({"WAN", "Connect", "disconnect", profile, "4"});
        change_state("UPDATE wwan_call SET active_ms = 0");
    }
    void set_up_a_module() const
    {
        command({"LAN", "VLAN", "add", "10", "1", "1"});
        command({"LAN", "VLAN", "add", "9", "1", "1"});
        command(
            {"LAN", "DHCP", "set", "10", "192.168.11.1", "255.255.255.0", "192.168.11.20", "192.168.11.60", "3600"});
        command({"WAN", "WWANConfig", "add", "1", "3"});
        command({"WAN", "MPDNMapping", "add", "2", "10"});
        happens({"device", "join", "02:00:00:00:00:07", "192.168.225.21", "lap\"top"});
        happens({"device", "join", "02:00:00:00:00:08", "192.168.11.21", "back\\slash"});
        happens({"device", "join", "02:00:00:00:00:09", "10.9.9.9", "nameless"});
        change_state("UPDATE connected_device SET host_name = '' WHERE host_name = 'nameless'");
        happens({"sip", "add", "--bridge", "10", "--address", "192.0.2.60"});
        happens({"sip", "add", "--bridge", "10", "--family", "6", "--fqdn", "sip.example"});
    }
};

TEST_F(FiguresTest, AFreshModulesTree)
{
    expect_ctl({"status"}, 0,
               "profile-1: APN index 1, any technology, ipv4v6; default, access point, DNS proxy\n"
               "  IPv4 disconnected\n"
               "  IPv6 disconnected\n"
               "  LAN 0, 192.168.225.1/24\n");
}

TEST_F(FiguresTest, TheTreeGoesFromProfilesOverLansToDevices)
{
    set_up_a_module();
    expect_ctl({"status"}, 0,
               "profile-1: APN index 1, any technology, ipv4v6; default, access point, DNS proxy\n"
               "  IPv4 disconnected\n"
               "  IPv6 disconnected\n"
               "  LAN 0, 192.168.225.1/24\n"
               "    192.168.225.21  02:00:00:00:00:07  lap\"top, received 0 bytes, sent 0 bytes\n"
               "  LAN 9, 192.168.234.1/24\n"
               "profile-2: APN index 3, umts, ipv4v6\n"
               "  IPv4 disconnected\n"
               "  IPv6 disconnected\n"
               "  LAN 10, 192.168.11.1/24\n"
               "    SIP servers of the network: 192.0.2.60, sip.example\n"
               "    192.168.11.21  02:00:00:00:00:08  back\\\\slash, received 0 bytes, sent 0 bytes\n"
               "on no LAN that is known:\n"
               "    10.9.9.9  02:00:00:00:00:09, received 0 bytes, sent 0 bytes\n");
}

TEST_F(FiguresTest, OfNetsThatOverlapTheSmallestHoldsADevice)
{
    command({"LAN", "VLAN", "add", "9", "1", "1"});
    command({"LAN", "VLAN", "add", "10", "1", "1"});
    command({"LAN", "DHCP", "set", "9", "10.0.9.1", "255.255.255.0", "10.0.9.20", "10.0.9.60", "3600"});
    command({"LAN", "DHCP", "set", "10", "10.0.10.1", "255.255.0.0", "10.0.10.20", "10.0.10.60", "3600"});
    happens({"device", "join", "02:00:00:00:00:07", "10.0.9.21", "a"});
    happens({"device", "join", "02:00:00:00:00:08", "10.0.8.21", "b"});
    const std::string text = ctl({"metrics"}).out;
    EXPECT_NE(text.find("mac=\"02:00:00:00:00:07\",lan=\"9\""), std::string::npos) << text;
    EXPECT_NE(text.find("mac=\"02:00:00:00:00:08\",lan=\"10\""), std::string::npos) << text;
}

TEST_F(FiguresTest, AConnectedProfileTellsItsAddressesAndCounts)
{
    expect_ctl({"connect", "1", "--family", "4", "--wait", "10"}, 0, "");
    const std::string tree = ctl({"status"}).out;
    const std::regex form(
        "profile-1: APN index 1, any technology, ipv4v6; default, access point, DNS proxy; on wwan0\n"
        "  IPv4 connected, 10\\.101\\.0\\.2/30, gateway 10\\.101\\.0\\.1, DNS 192\\.0\\.2\\.53 and "
        "198\\.51\\.100\\.53, "
        "MTU 1500\n"
        "       received [0-9]+ bytes in [0-9]+ packets, sent [0-9]+ bytes in [0-9]+ packets, 0 dropped\n"
        "  IPv6 disconnected\n"
        "  LAN 0, 192\\.168\\.225\\.1/24\n");
    EXPECT_TRUE(std::regex_match(tree, form)) << tree;
}

TEST_F(FiguresTest, AsAnObject)
{
    set_up_a_module();
    const std::string counts =
        "{\"received_bytes\": 0, \"received_dropped_packets\": 0, \"received_packets\": 0, \"sent_bytes\": 0, "
        "\"sent_dropped_packets\": 0, \"sent_packets\": 0, \"state\": \"disconnected\"}";
    expect_ctl(
        {"status", "--json"}, 0,
        "{\"devices\": ["
        "{\"address\": \"192.168.225.21\", \"host_name\": \"lap\\\"top\", \"ipv6\": [], \"lan\": 0, \"mac\": "
        "\"02:00:00:00:00:07\", \"received_bytes\": 0, \"sent_bytes\": 0, \"type\": 4}, "
        "{\"address\": \"192.168.11.21\", \"host_name\": \"back\\\\\\\\slash\", \"ipv6\": [], \"lan\": 10, \"mac\": "
        "\"02:00:00:00:00:08\", \"received_bytes\": 0, \"sent_bytes\": 0, \"type\": 4}, "
        "{\"address\": \"10.9.9.9\", \"host_name\": \"\", \"ipv6\": [], \"mac\": \"02:00:00:00:00:09\", "
        "\"received_bytes\": 0, \"sent_bytes\": 0, \"type\": 4}], "
        "\"lans\": ["
        "{\"address\": \"192.168.225.1/24\", \"ipv6_sip_servers\": [], \"lan\": 0, \"sip_servers\": []}, "
        "{\"address\": \"192.168.234.1/24\", \"ipv6_sip_servers\": [], \"lan\": 9, \"sip_servers\": []}, "
        "{\"address\": \"192.168.11.1/24\", \"ipv6_sip_servers\": [\"sip.example\"], \"lan\": 10, \"sip_servers\": "
        "[\"192.0.2.60\"]}], "
        "\"profiles\": ["
        "{\"apn_index\": 1, \"apn_name\": \"\", \"family\": \"ipv4v6\", \"handle\": 1, \"ipv4\": " +
            counts + ", \"ipv6\": " + counts +
            ", \"lans\": [0, 9], \"roles\": [\"default\", \"access point\", \"DNS proxy\"], \"technology\": \"any\"}, "
            "{\"apn_index\": 3, \"apn_name\": \"\", \"family\": \"ipv4v6\", \"handle\": 2, \"ipv4\": " +
            counts + ", \"ipv6\": " + counts + ", \"lans\": [10], \"roles\": [], \"technology\": \"umts\"}]}\n");
}

TEST_F(FiguresTest, AsAGraph)
{
    set_up_a_module();
    const ToolRun seen = ctl({"status", "--dot"});
    EXPECT_EQ(seen.status, 0);
    EXPECT_EQ(
        seen.out,
        "digraph module {\n"
        "  rankdir=LR;\n"
        "  node [shape=box];\n"
        "  \"profile-1\" [label=\"profile-1\\ndefault, access point, DNS proxy\\nIPv4 disconnected\\nIPv6 "
        "disconnected\"];\n"
        "  \"profile-2\" [label=\"profile-2\\nIPv4 disconnected\\nIPv6 disconnected\"];\n"
        "  \"lan-0\" [label=\"LAN 0\\n192.168.225.1/24\"];\n"
        "  \"profile-1\" -> \"lan-0\";\n"
        "  \"lan-9\" [label=\"LAN 9\\n192.168.234.1/24\"];\n"
        "  \"profile-1\" -> \"lan-9\";\n"
        "  \"lan-10\" [label=\"LAN 10\\n192.168.11.1/24\"];\n"
        "  \"profile-2\" -> \"lan-10\";\n"
        "  \"device-02:00:00:00:00:07\" [shape=ellipse, label=\"lap\\\"top\\n192.168.225.21\\n02:00:00:00:00:07\"];\n"
        "  \"lan-0\" -> \"device-02:00:00:00:00:07\";\n"
        "  \"device-02:00:00:00:00:08\" [shape=ellipse, "
        "label=\"back\\\\\\\\slash\\n192.168.11.21\\n02:00:00:00:00:08\"];\n"
        "  \"lan-10\" -> \"device-02:00:00:00:00:08\";\n"
        "  \"device-02:00:00:00:00:09\" [shape=ellipse, label=\"10.9.9.9\\n02:00:00:00:00:09\"];\n"
        "}\n");
    if (std::system("command -v dot >/dev/null") != 0) GTEST_SKIP() << "Graphviz is not installed";
    const std::string file = state.path() + "/module.dot";
    std::ofstream(file) << seen.out;
    EXPECT_EQ(std::system(("dot -Tsvg " + file + " >/dev/null 2>&1").c_str()), 0);
}

TEST_F(FiguresTest, WhatCannotBeReadIsToldAndTheRestIsThere)
{
    const std::vector<std::string> faults = {"MOBILE_AP_FAULTS=GetWWANStatistics=fail:48"};
    const std::string refusal =
        "zr_nexactl: zr_nexa_wan_statistics_get_v1: 0x2030, step 2, reading the counts: the "
        "service answered 48, a value is out of range, or does not go with what is there: a "
        "profile in use cannot be deleted\n";
    expect_ctl({"status"}, 3,
               "profile-1: APN index 1, any technology, ipv4v6; default, access point, DNS proxy\n"
               "  IPv4 disconnected\n"
               "  IPv6 disconnected\n"
               "  LAN 0, 192.168.225.1/24\n",
               refusal + refusal, faults);
    const ToolRun seen = ctl({"metrics"}, faults);
    EXPECT_EQ(seen.status, 3);
    EXPECT_NE(seen.out.find("zr_nexa_profile_connected{profile=\"1\",family=\"ipv4\"} 0\n"), std::string::npos);
    EXPECT_EQ(seen.out.find("zr_nexa_profile_received_bytes_total{"), std::string::npos);
    EXPECT_EQ(seen.out.substr(seen.out.size() - 6), "# EOF\n");
}

TEST_F(FiguresTest, FiguresForMonitoring)
{
    set_up_a_module();
    move("2");
    const std::string text = ctl({"metrics"}).out;
    for (const char* line :
         {"zr_nexa_up 1",
          "zr_nexa_profile_info{profile=\"2\",technology=\"umts\",family=\"ipv4v6\",apn_index=\"3\",apn_name=\"\"} 1",
          "zr_nexa_profile_connected{profile=\"2\",family=\"ipv6\"} 0", "zr_nexa_lan_devices{lan=\"0\"} 1",
          "zr_nexa_lan_devices{lan=\"9\"} 0", "zr_nexa_lan_profile{lan=\"10\",profile=\"2\"} 1",
          "zr_nexa_profile_received_bytes_total{profile=\"2\",family=\"ipv4\"} 1000",
          "zr_nexa_profile_sent_bytes_total{profile=\"2\",family=\"ipv4\"} 2000",
          "zr_nexa_profile_received_bytes_total{profile=\"2\",family=\"ipv6\"} 0",
          "zr_nexa_device_info{mac=\"02:00:00:00:00:07\",lan=\"0\",address=\"192.168.225.21\",host_name=\"lap\\\"top\"}"
          " "
          "1",
          "zr_nexa_device_received_bytes_total{mac=\"02:00:00:00:00:08\",lan=\"10\"} 0"})
        EXPECT_NE(text.find("\n" + std::string(line) + "\n"), std::string::npos) << line << "\n" << text;
}

// With texts that have to be escaped.
TEST_F(FiguresTest, BothParsersOfThePrometheusClientTakeTheFigures)
{
    if (std::system((kPython + " -c 'import prometheus_client' 2>/dev/null").c_str()) != 0)
        GTEST_SKIP() << "python3-prometheus-client is not installed";
    set_up_a_module();
    command({"WAN", "Connect", "connect", "1", "46"});
    const std::string text = ctl({"metrics"}).out;
    const std::string file = state.path() + "/metrics";
    std::ofstream(file) << text;
    const std::string program =
        "import sys\n"
        "from prometheus_client.openmetrics import parser as new\n"
        "from prometheus_client import parser as old\n"
        "text = open(sys.argv[1]).read()\n"
        "def samples(families):\n"
        "    return sorted((s.name, sorted(s.labels.items()), s.value) for f in families for s in f.samples)\n"
        "a = samples(new.text_string_to_metric_families(text))\n"
        "b = samples(old.text_string_to_metric_families(text))\n"
        "assert a == b, (a, b)\n"
        "assert len(a) == sum(1 for line in text.splitlines() if not line.startswith('#')), len(a)\n"
        "names = {v for n, l, _ in a if n == 'zr_nexa_device_info' for k, v in l if k == 'host_name'}\n"
        "assert names == {'lap\"top', 'back\\\\\\\\slash', ''}, names\n"
        "assert all(s.timestamp is None for f in new.text_string_to_metric_families(text) for s in f.samples)\n";
    const std::string script = state.path() + "/parse.py";
    std::ofstream(script) << program;
    EXPECT_EQ(std::system((kPython + " " + script + " " + file).c_str()), 0) << text;
}

}  // namespace
