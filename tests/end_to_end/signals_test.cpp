// SIGINT and SIGTERM at random moments of random commands.
#include <signal.h>
#include <unistd.h>

#include <atomic>
#include <memory>
#include <random>
#include <set>
#include <thread>

#include "program.h"
#include "run_tool.h"

namespace {

constexpr int kBatches = ZR_NEXA_SIGNAL_BATCHES;
constexpr int kSignalsPerBatch = 200;
constexpr int kAtATime = 4;
// For the end of a run. The shortest wait that it must not sit through takes 5 s.
constexpr double kSoon = kEmulated ? 4.0 : 2.0;

const std::vector<std::vector<std::string>> kCommands = {
    {"General", "SFE", "get"},
    {"General", "SFE", "enable"},
    {"General", "SFE", "disable"},
    {"General", "Restore", "yes"},
    {"LAN", "GWURL", "get"},
    {"LAN", "GWURL", "set", "mobileap.home"},
    {"LAN", "GWURL", "set", "module.example"},
    {"LAN", "DHCP", "get", "0"},
    {"LAN", "DHCP", "set", "0", "192.168.10.1", "255.255.255.0", "192.168.10.20", "192.168.10.60", "7200"},
    {"LAN", "DHCP", "set", "0", "10.0.0.1", "255.0.0.0", "10.0.0.2", "10.0.0.3", "60"},
    {"LAN", "DefaultDHCPEnable", "set", "0"},
    {"LAN", "VLAN", "add", "100", "1", "0"},
    {"LAN", "VLAN", "del", "100", "1"},
    {"LAN", "VLAN", "get"},
    {"WAN", "WWANConfig", "add", "0", "1"},
    {"WAN", "WWANConfig", "get"},
    {"WAN", "Connect", "connect", "1", "46"},
    {"WAN", "Connect", "disconnect", "1", "46"},
    {"WAN", "Info", "get", "1"},
    {"WAN", "MPDNMapping", "add", "1", "0"},
    {"NAT", "Type", "set", "1", "2"},
    {"NAT", "IPV4PortMapping", "add", "1", "192.168.225.50", "80", "443", "6"},
    {"LAN", "DHCP"},
    {"LAN"},
    {},
};

// Each command sets all of these or none.
const std::set<std::string> kWholeConfigurations = {
    "(V)LAN DHCP Config:\r\n(v)lan_id:       0\r\nGateway IP:      192.168.225.1\r\nNetmask:         255.255.255.0\r\n"
    "DHCP Start IP:   192.168.225.20\r\nDHCP End IP:     192.168.225.60\r\nDHCP Lease Time: 43200\r\nCMD OK\r\n",
    "(V)LAN DHCP Config:\r\n(v)lan_id:       0\r\nGateway IP:      192.168.10.1\r\nNetmask:         255.255.255.0\r\n"
    "DHCP Start IP:   192.168.10.20\r\nDHCP End IP:     192.168.10.60\r\nDHCP Lease Time: 7200\r\nCMD OK\r\n",
    "(V)LAN DHCP Config:\r\n(v)lan_id:       0\r\nGateway IP:      10.0.0.1\r\nNetmask:         255.0.0.0\r\n"
    "DHCP Start IP:   10.0.0.2\r\nDHCP End IP:     10.0.0.3\r\nDHCP Lease Time: 60\r\nCMD OK\r\n",
};

class SignalsTest : public ToolTest {
protected:
    // The command pauses, so that a signal always meets it.
    ToolOptions pausing() const
    {
        ToolOptions options = ToolTest::options();
        options.pauses = true;
        options.tells = true;
        return options;
    }
    // One run of a random command with one signal at a random moment.
    void interrupt_one(std::mt19937& random) const
    {
        const auto& words = kCommands[random() % kCommands.size()];
        StartedTool tool(words, pausing());
        ASSERT_TRUE(tool.wait_for_handlers()) << "ended before its pause";
        // From the opening of the session, which takes a millisecond, to the pause at the end; late in a slow build
        // too.
        const useconds_t latest_us = 1000u << (random() % 6);
        usleep(static_cast<useconds_t>(random()) % latest_us);
        ASSERT_TRUE(tool.send(random() % 2 == 0 ? SIGINT : SIGTERM));
        const auto sent = std::chrono::steady_clock::now();
        const ToolRun run = tool.wait();
        const std::chrono::duration<double> after = std::chrono::steady_clock::now() - sent;
        SCOPED_TRACE(words.empty() ? "menu" : words[0] + " " + (words.size() > 1 ? words[1] : ""));
        EXPECT_EQ(run.status, 0);
        EXPECT_EQ(run.err, "");
        EXPECT_LT(after.count(), kSoon);
    }
};

TEST_F(SignalsTest, EachEndsItsRunAndLeavesTheStateWhole)
{
    for (int batch = 0; batch < kBatches; ++batch) {
        std::atomic<int> left = kSignalsPerBatch;
        std::vector<std::thread> threads;
        for (int i = 0; i < kAtATime; ++i) {
            threads.emplace_back([&, i] {
                std::mt19937 random(static_cast<unsigned int>(batch * kAtATime + i));
                while (left-- > 0 && !HasFailure())
                    interrupt_one(random);
            });
        }
        for (auto& thread : threads)
            thread.join();

        ASSERT_FALSE(HasFailure()) << "in batch " << batch;
        ASSERT_EQ(integrity(database()), "ok");
        const ToolRun seen = run({"LAN", "DHCP", "get", "0"});
        EXPECT_EQ(seen.err, "");
        EXPECT_EQ(kWholeConfigurations.count(seen.out), 1u) << seen.out;
    }
}

TEST_F(SignalsTest, BothAtOnceAndAgainEndTheRunOnce)
{
    for (int i = 0; i < 20; ++i) {
        StartedTool tool({"LAN", "GWURL", "set", "module.example"}, pausing());
        ASSERT_TRUE(tool.wait_for_handlers());
        usleep(static_cast<useconds_t>(i) * 500);
        // It may be gone after the first.
        for (const int signo : {SIGINT, SIGTERM, SIGINT, SIGTERM})
            tool.send(signo);
        const ToolRun run = tool.wait();
        EXPECT_EQ(run.status, 0);
        EXPECT_LT(run.seconds, 1.0 + kSoon);
    }
    EXPECT_EQ(integrity(database()), "ok");
}

// A method that the signal meets ends its transaction first: done or undone, and the run ends.
TEST_F(SignalsTest, ALongMethodIsNoReasonToStay)
{
    ToolOptions slow = pausing();
    for (const char* fault : {"SetGatewayUrl=delay:5000", "IsReady=delay:5000", "EnableMobileAP_Ext=delay:5000"}) {
        slow.variables = {std::string("MOBILE_AP_FAULTS=") + fault};
        StartedTool tool({"LAN", "GWURL", "set", "module.example"}, slow);
        ASSERT_TRUE(tool.wait_for_handlers());
        usleep(100000);
        ASSERT_TRUE(tool.send(SIGTERM));
        const ToolRun run = tool.wait();
        EXPECT_EQ(run.status, 0) << fault;
        EXPECT_LT(run.seconds, kSoon) << fault;
    }
    expect({"LAN", "GWURL", "get"}, "LAN GWURL: mobileap.home\r\nCMD OK\r\n");
}

TEST_F(SignalsTest, WhatWasPrintedBeforeTheSignalIsKept)
{
    StartedTool tool({"General", "SFE", "get"}, pausing());
    ASSERT_TRUE(tool.wait_for_pause());
    ASSERT_TRUE(tool.send(SIGINT));
    const auto sent = std::chrono::steady_clock::now();
    const ToolRun run = tool.wait();
    EXPECT_EQ(run.out, "General SFE: enabled\r\nCMD OK\r\n");
    EXPECT_LT(std::chrono::steady_clock::now() - sent, std::chrono::milliseconds(900)) << "the pause came to its end";
}

}  // namespace
