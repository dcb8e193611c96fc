// Many tools at once on one state: every change is there afterwards. None waits longer than 10 s for the others, so
// there are fewer at once where each is emulated.
#include <gmock/gmock.h>

#include <memory>

#include "program.h"
#include "run_tool.h"

namespace {

using ParallelTest = ToolTest;

TEST_F(ParallelTest, TwoHundredToolsLoseNoChange)
{
    constexpr int kVlans = 150;
    constexpr int kProfiles = 49;  // profile 1 is there from the factory
    std::vector<std::vector<std::string>> commands;
    for (int i = 0; i < kVlans; ++i)
        commands.push_back({"LAN", "VLAN", "add", std::to_string(100 + i), "1", "0"});
    for (int i = 0; i < kProfiles; ++i) {
        commands.push_back({"WAN", "WWANConfig", "add", std::to_string(i % 3), std::to_string(1 + i % 16)});
    }
    commands.push_back({"LAN", "GWURL", "set", "after.all"});
    ASSERT_EQ(commands.size(), 200u);

    constexpr size_t kAtOnce = kEmulated ? 20 : 200;
    std::vector<std::unique_ptr<StartedTool>> tools;
    while (tools.size() < commands.size()) {
        const size_t first = tools.size();
        for (size_t i = first; i < first + kAtOnce; ++i)
            tools.push_back(std::make_unique<StartedTool>(commands[i], options()));
        for (size_t i = first; i < first + kAtOnce; ++i) {
            const ToolRun seen = tools[i]->wait();
            EXPECT_THAT(seen.out, testing::EndsWith("CMD OK\r\n")) << commands[i][1];
            EXPECT_EQ(seen.err, "");
            EXPECT_EQ(seen.status, 0);
        }
    }

    EXPECT_EQ(integrity(database()), "ok");
    const std::string vlans = run({"LAN", "VLAN", "get"}).out;
    for (int i = 0; i < kVlans; ++i) {
        EXPECT_THAT(vlans, testing::HasSubstr("\r\nvlan_id:" + std::to_string(100 + i) + "  "));
    }
    const std::string profiles = run({"WAN", "WWANConfig", "get"}).out;
    EXPECT_THAT(profiles, testing::HasSubstr("wwanconfig num = 50\r\n"));
    for (int handle = 1; handle <= 50; ++handle) {
        EXPECT_THAT(profiles, testing::HasSubstr("\nwwan_handle:" + std::to_string(handle) + "  "));
    }
    expect({"LAN", "GWURL", "get"}, "LAN GWURL: after.all\r\nCMD OK\r\n");
}

// Writers of whole configurations beside readers: a reader never sees a part of one and a part of another.
TEST_F(ParallelTest, ReadersNeverSeeAMixture)
{
    expect({"LAN", "DHCP", "set", "0", "10.1.1.1", "255.0.0.0", "10.1.1.2", "10.1.1.3", "11"}, "CMD OK\r\n");
    constexpr int kPairs = kEmulated ? 10 : 40;
    std::vector<std::unique_ptr<StartedTool>> writers;
    std::vector<std::unique_ptr<StartedTool>> readers;
    for (int i = 0; i < kPairs; ++i) {
        const std::string n = std::to_string(i % 2 + 1);
        writers.push_back(std::make_unique<StartedTool>(
            std::vector<std::string>{"LAN", "DHCP", "set", "0", "10." + n + ".1.1", "255.0.0.0", "10." + n + ".1.2",
                                     "10." + n + ".1.3", n + n},
            options()));
        readers.push_back(
            std::make_unique<StartedTool>(std::vector<std::string>{"LAN", "DHCP", "get", "0"}, options()));
    }
    for (auto& writer : writers)
        EXPECT_EQ(writer->wait().out, "CMD OK\r\n");
    const auto configuration = [](const std::string& n) {
        return "(V)LAN DHCP Config:\r\n(v)lan_id:       0\r\nGateway IP:      10." + n +
               ".1.1\r\nNetmask:         255.0.0.0\r\nDHCP Start IP:   10." + n + ".1.2\r\nDHCP End IP:     10." + n +
               ".1.3\r\nDHCP Lease Time: " + n + n + "\r\nCMD OK\r\n";
    };
    for (auto& reader : readers) {
        EXPECT_THAT(reader->wait().out, testing::AnyOf(configuration("1"), configuration("2")));
    }
}

}  // namespace
