// VLANs and IP passthrough from the command line to the host platform: what is refused leaves the state as it was.
#include "run_tool.h"

namespace {

const std::string kOk = "CMD OK\r\n";
const std::string kInvalid = "Input Parameter Invalid\r\nCMD Error#0xffff\r\n";

using LanEndToEndTest = ToolTest;

TEST_F(LanEndToEndTest, RefusedVlansChangeNothing)
{
    expect({"LAN", "VLAN", "add", "2", "1", "0"}, kOk);
    expect({"LAN", "VLAN", "add", "4094", "4", "1"}, kOk);
    for (const char* id : {"0", "1", "4095", "65535", "65536", "65537", "-1", "x", ""}) {
        expect({"LAN", "VLAN", "add", id, "1", "0"}, kInvalid);
        expect({"LAN", "VLAN", "del", id, "1"}, kInvalid);
    }
    expect({"LAN", "VLAN", "add", "3", "0", "0"}, kInvalid);
    expect({"LAN", "VLAN", "add", "3", "5", "0"}, kInvalid);
    expect({"LAN", "VLAN", "add", "3", "1", "2"}, kInvalid);
    expect({"LAN", "VLAN", "add", "2", "2", "0"}, "CMD Error#0x1076\r\n");
    expect({"LAN", "VLAN", "del", "3", "1"}, "CMD Error#0x1019\r\n");
    expect({"LAN", "VLAN", "del", "2", "4"}, "CMD Error#0x1030\r\n");
    expect({"LAN", "VLAN", "get"},
           "LAN VLAN List:\r\n"
           "vlan_id:2  vlan_type:1  vlan_accelerated:0\r\n"
           "vlan_id:4094  vlan_type:4  vlan_accelerated:1\r\n" +
               kOk);
}

TEST_F(LanEndToEndTest, RefusedPassthroughDevicesChangeNothing)
{
    const std::string kept =
        "LAN IPPT Config:\r\n"
        "lan_id: 0--ippt_mode: 1--ippt_host_mac: 00:01:02:03:04:ab--ippt_host_name: " +
        kOk;
    expect({"LAN", "VLAN", "add", "100", "1", "0"}, kOk);
    expect({"LAN", "IPPT", "set", "0", "1", "00:01:02:03:04:AB"}, kOk);
    for (const char* mac :
         {"", "0", "00:01:02:03:04:0", "00:01:02:03:04:0Z", "00:01:02:03:04:056", "00:01:02:03:04:05 ",
          "00-01-02-03-04-05", "000102030405", "00:01:02:03:04", "0:01:02:03:04:005", ":00:01:02:03:04:0"}) {
        for (const char* mode : {"1", "2", "4"}) {
            expect({"LAN", "IPPT", "set", "0", mode, mac}, kInvalid);
        }
    }
    expect({"LAN", "IPPT", "set", "0", "5", "00:01:02:03:04:05"}, kInvalid);
    expect({"LAN", "IPPT", "set", "0", "2"}, kInvalid);
    expect({"LAN", "IPPT", "set", "0", "3", ""}, kOk);
    expect({"LAN", "IPPT", "adaptive", "0", "11"}, kInvalid);
    expect({"LAN", "IPPT", "get", "0"}, kept);

    expect({"LAN", "IPPT", "set", "100", "1", "00:01:02:03:04:05"}, kInvalid);
    expect({"LAN", "IPPT", "set", "101", "0"}, "CMD Error#0x100e\r\n");
    expect({"LAN", "IPPTNATPDN", "set", "100", "2"}, kOk);
    for (const char* mode : {"3", "-2", "127"}) {
        expect({"LAN", "IPPTNATPDN", "set", "100", mode}, kInvalid);
    }
    expect({"LAN", "IPPTNATPDN", "set", "0", "1"}, "CMD Error#0x4\r\n");
    expect({"LAN", "IPPTNAT", "set", "3"}, kInvalid);
    expect({"LAN", "IPPT", "get", "100"},
           "LAN IPPT Config:\r\nlan_id: 100--ippt_mode: 0--ippt_host_mac: --ippt_host_name: " + kOk);
    expect({"LAN", "IPPTNATPDN", "get", "100"}, "LAN IPPTNAT: WithNAT only one device\r\n" + kOk);
    expect({"LAN", "IPPTNAT", "get"}, "LAN IPPTNAT: WithNAT\r\n" + kOk);
}

TEST_F(LanEndToEndTest, FiveFiltersFitAndTheNextIsRefused)
{
    std::string list = "LAN IPPTGWFilter:\r\n";
    for (const char* number : {"1", "2", "3", "4", "5"}) {
        expect({"LAN", "IPPTGWFilter", "add", "0", "1", number, "65534"}, kOk);
        list += std::string("filterID: ") + number + " protocol: 1 start_port: " + number + " end_port 65534\r\n";
    }
    expect({"LAN", "IPPTGWFilter", "add", "0", "1", "6", "6"}, "CMD Error#0x2\r\n");
    expect({"LAN", "IPPTGWFilter", "get", "0"}, list + kOk);

    expect({"LAN", "IPPTGWFilter", "del", "0", "2"}, kOk);
    expect({"LAN", "IPPTGWFilter", "del", "0", "5"}, "CMD Error#0x2\r\n");
    for (const char* number : {"0", "6", "256", "-1", "x"}) {
        expect({"LAN", "IPPTGWFilter", "del", "0", number}, kInvalid);
    }
    for (const char* port : {"0", "65535", "65536", "-1", "http", ""}) {
        expect({"LAN", "IPPTGWFilter", "add", "0", "1", port, "65534"}, kInvalid);
        expect({"LAN", "IPPTGWFilter", "add", "0", "1", "1", port}, kInvalid);
    }
    expect({"LAN", "IPPTGWFilter", "add", "0", "257", "80", "80"}, kInvalid);
    expect({"LAN", "IPPTGWFilter", "add", "0", "1", "81", "80"}, kInvalid);
    expect({"LAN", "IPPTGWFilter", "get", "0"},
           "LAN IPPTGWFilter:\r\n"
           "filterID: 1 protocol: 1 start_port: 1 end_port 65534\r\n"
           "filterID: 2 protocol: 1 start_port: 3 end_port 65534\r\n"
           "filterID: 3 protocol: 1 start_port: 4 end_port 65534\r\n"
           "filterID: 4 protocol: 1 start_port: 5 end_port 65534\r\n" +
               kOk);
}

}  // namespace
