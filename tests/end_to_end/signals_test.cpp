// SIGINT and SIGTERM at random moments of random commands, and at the end of a run.
#include <fcntl.h>
#include <signal.h>
#include <unistd.h>

#include <algorithm>
#include <atomic>
#include <fstream>
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

// A pipe into which nothing more fits: who writes to it stands still until it is read.
class FullPipe {
public:
    FullPipe()
    {
        EXPECT_EQ(pipe2(ends_, O_CLOEXEC | O_NONBLOCK), 0);
        const std::string page(static_cast<size_t>(sysconf(_SC_PAGESIZE)), '.');
        while (write(ends_[1], page.data(), page.size()) > 0)
            filling_ += page;
        for (const int end : ends_)
            fcntl(end, F_SETFL, 0);
    }
    ~FullPipe()
    {
        close(ends_[0]);
    }
    FullPipe(const FullPipe&) = delete;
    FullPipe& operator=(const FullPipe&) = delete;

    int writer() const
    {
        return ends_[1];
    }
    // All that others write behind the filling, until the last of them has closed it.
    std::string read_all()
    {
        close(ends_[1]);
        std::string bytes;
        char part[4096];
        for (ssize_t count = 0; (count = read(ends_[0], part, sizeof(part))) > 0;)
            bytes.append(part, static_cast<size_t>(count));
        EXPECT_EQ(bytes.substr(0, filling_.size()), filling_);
        return bytes.substr(std::min(filling_.size(), bytes.size()));
    }

private:
    int ends_[2] = {-1, -1};
    std::string filling_;
};

bool eventually(const std::function<bool()>& happens)
{
    for (int tries = 0; tries < 5000; ++tries) {
        if (happens()) return true;
        usleep(2000);
    }
    return false;
}

bool ignores_both(pid_t pid)
{
    constexpr unsigned long long kBoth = (1ULL << (SIGINT - 1)) | (1ULL << (SIGTERM - 1));
    return eventually([&] {
        unsigned long long ignored = 0;
        std::ifstream status("/proc/" + std::to_string(pid) + "/status");
        for (std::string line; std::getline(status, line);) {
            if (line.rfind("SigIgn:", 0) == 0) ignored = std::stoull(line.substr(7), nullptr, 16);
        }
        return (ignored & kBoth) == kBoth;
    });
}

int lines_with(const std::string& text, const std::string& file)
{
    int count = 0;
    std::ifstream lines(file);
    for (std::string line; std::getline(lines, line);) {
        if (line.find(text) != std::string::npos) ++count;
    }
    return count;
}

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

// What is printed goes out at the very end, behind all that the command itself does: a full pipe keeps it there.
TEST_F(SignalsTest, NoSecondEndBeginsInsideTheFirst)
{
    const struct {
        std::vector<std::string> words;
        std::string faults;
        const char* meets;  // the first signal comes behind two such records; null: the run ends by itself
        std::string out;
    } rows[] = {
        {{"LAN", "GWURL", "set", "module.example"}, "", nullptr, "CMD OK\r\n"},
        {{"WAN", "Connect", "connect", "1", "46"},
         "ConnectBackHaul#2=delay:60000,DisableMobileAP=delay:500",
         "SetWWANProfileHandlePreference()",
         "WAN Connect connect v4 set success\r\n"},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.words[1]);
        const std::string log = state.path() + "/" + row.words[1] + ".log";
        FullPipe pipe;
        ToolOptions stuck = options();
        stuck.variables = {"MOBILE_AP_LOG=file:" + log, "MOBILE_AP_LOG_LEVEL=debug"};
        if (!row.faults.empty()) stuck.variables.push_back("MOBILE_AP_FAULTS=" + row.faults);
        stuck.before_exec = [&] { dup2(pipe.writer(), STDOUT_FILENO); };
        StartedTool tool(row.words, stuck);
        if (row.meets != nullptr) {
            EXPECT_TRUE(eventually([&] { return lines_with(row.meets, log) == 2; }));
            EXPECT_TRUE(tool.send(SIGTERM));
            usleep(100000);
            EXPECT_TRUE(tool.send(SIGINT));  // while the session is being closed
        }
        EXPECT_TRUE(eventually([&] { return lines_with("DisableMobileAP()", log) > 0; }));
        EXPECT_TRUE(ignores_both(tool.pid()));
        for (const int signo : {SIGINT, SIGTERM, SIGINT, SIGTERM})
            EXPECT_TRUE(tool.send(signo));
        EXPECT_EQ(pipe.read_all(), row.out);
        EXPECT_EQ(tool.wait().status, 0);
        EXPECT_EQ(lines_with("zr_nexa_client_uninit(): entry", log), 1);
        EXPECT_EQ(lines_with("DisableMobileAP()", log), 1);
    }
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

// A signal may meet the lock half taken, by a thread that is not yet named as its owner: that looks as if another
// thread held it.
TEST_F(SignalsTest, NothingAsksForStandardOutputsLock)
{
    ToolOptions locked = pausing();
    locked.output_locked = true;
    for (const int signo : {0, SIGINT, SIGTERM}) {
        StartedTool tool({"General", "SFE", "get"}, locked);
        ASSERT_TRUE(tool.wait_for_pause());
        EXPECT_TRUE(tool.send(signo));
        const ToolRun run = tool.wait();
        EXPECT_EQ(run.status, 0);
        EXPECT_EQ(run.out, "General SFE: enabled\r\nCMD OK\r\n");
        EXPECT_EQ(run.err, "");
    }
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
