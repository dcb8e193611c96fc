// The NAT settings from the command line to the host platform and back.
#include "run_tool.h"

namespace {

const std::string kOk = "CMD OK\r\n";
const std::string kAdded = "NAT IPV4PortMapping add success\r\n" + kOk;

class NatEndToEndTest : public ToolTest {
protected:
    static std::vector<std::string> rule(const std::string& option, const std::string& private_ip,
                                         const std::string& private_port, const std::string& global_port,
                                         const std::string& protocol = "6")
    {
        return {"NAT", "IPV4PortMapping", option, "1", private_ip, private_port, global_port, protocol};
    }
    static std::string listed(int number)
    {
        const std::string shown = std::to_string(number);
        return "private_ip:10.0.0." + shown + "  private_port:" + shown + "  global_port:" + shown + "  protocol:6\r\n";
    }
};

TEST_F(NatEndToEndTest, FiftyRulesFitAndTheNextIsRefused)
{
    std::string list = "NAT IPV4PortMapping List:\r\n";
    for (int i = 1; i <= 50; ++i) {
        const std::string number = std::to_string(i);
        expect(rule("add", "10.0.0." + number, number, number), kAdded);
        list += listed(i);
    }
    expect(rule("add", "10.0.0.51", "51", "51"), "CMD Error#0x203e\r\n");
    expect({"NAT", "IPV4PortMapping", "get", "1"}, list + kOk);
    expect(rule("del", "10.0.0.1", "1", "1"), "NAT IPV4PortMapping delete success\r\n" + kOk);
    expect(rule("add", "10.0.0.51", "51", "51"), kAdded);
    list.erase(list.find("private_ip"), listed(1).size());
    expect({"NAT", "IPV4PortMapping", "get", "1"}, list + listed(51) + kOk);
}

TEST_F(NatEndToEndTest, WhatIsRefusedChangesNothing)
{
    expect(rule("add", "10.0.0.7", "7", "7"), kAdded);
    const std::string invalid = "Input Parameter Invalid\r\nCMD Error#0xffff\r\n";
    expect(rule("add", "10.0.0.7", "7", "7"), "CMD Error#0x2076\r\n");
    expect(rule("del", "10.0.0.7", "7", "8"), "CMD Error#0x2019\r\n");
    expect(rule("del", "10.0.0.8", "7", "7"), "CMD Error#0x2019\r\n");
    expect(rule("add", "10.0.0.8", "7", "7", "17"), "CMD Error#0xc\r\n");
    expect(rule("add", "10.0.0.8", "7", "7", "253"), "CMD Error#0xc\r\n");
    expect(rule("add", "10.0.0.8", "7", "7", "1"), "CMD Error#0x4\r\n");
    expect(rule("add", "10.0.0.8", "7", "7", "50"), "CMD Error#0x4\r\n");
    expect(rule("add", "255.255.255.255", "7", "7"), "CMD Error#0x4\r\n");
    for (const char* port : {"0", "65536", "-65536", "http", ""}) {
        expect(rule("add", "10.0.0.8", port, "7"), invalid);
        expect(rule("add", "10.0.0.8", "7", port), invalid);
    }
    for (const char* address : {"0.0.0.0", "256.0.0.1", "", "host"}) {
        expect(rule("add", address, "7", "7"), invalid);
    }
    expect({"NAT", "IPV4PortMapping", "get", "1"}, "NAT IPV4PortMapping List:\r\n" + listed(7) + kOk);

    for (const char* handle : {"2", "51", "-1", "2147483647"}) {
        expect({"NAT", "Type", "get", handle}, "CMD Error#0x1009\r\n");
        expect({"NAT", "Type", "set", handle, "2"}, "CMD Error#0x1009\r\n");
    }
    expect({"NAT", "Type", "set", "1", "4"}, invalid);
    expect({"NAT", "Type", "get", "1"}, "NAT Type: PORT RESTRICTED CONE NAT\r\n" + kOk);
    expect({"NAT", "IPV4DMZ", "enable", "1", "0.0.0.0"}, "CMD Error#0xa\r\n");
    expect({"NAT", "IPV4DMZ", "enable", "1", "300.1.1.1"}, invalid);
    expect({"NAT", "IPV4DMZ", "get", "1"}, "NAT IPV4DMZ: disabled\r\n" + kOk);
    expect({"NAT", "RoutingBH", "set", "2"}, invalid);
    expect({"NAT", "RoutingBH", "get"}, "NAT RoutingBH Config:\r\nRouting Behind = 0\r\n" + kOk);
}

TEST_F(NatEndToEndTest, PortsAndTypesAreCutToTheirWidth)
{
    expect(rule("add", "10.0.0.1", "65537", "-1"), kAdded);
    expect({"NAT", "IPV4PortMapping", "get", "1"},
           "NAT IPV4PortMapping List:\r\n"
           "private_ip:10.0.0.1  private_port:1  global_port:65535  protocol:6\r\n" +
               kOk);
    expect({"NAT", "Type", "set", "1", "259"}, "NAT Type set success\r\n" + kOk);
    expect({"NAT", "Type", "get", "1"}, "NAT Type: ADDRESS RESTRICTED NAT\r\n" + kOk);
}

}  // namespace
