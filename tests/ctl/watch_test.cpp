// Indications as they come.
#include <csignal>
#include <thread>

#include "program_fixture.h"

namespace {

// A watch whose lines are read while it runs.
class Watching {
public:
    Watching(ToolOptions options, std::vector<std::string> words)
    {
        EXPECT_EQ(pipe2(lines_, O_CLOEXEC), 0);
        options.before_exec = [this] { dup2(lines_[1], STDOUT_FILENO); };
        words.insert(words.begin(), "watch");
        tool_ = std::make_unique<StartedTool>(words, options);
        close(lines_[1]);
    }
    ~Watching()
    {
        close(lines_[0]);
    }
    Watching(const Watching&) = delete;
    Watching& operator=(const Watching&) = delete;

    // Sends reports until one is told: from then on nothing is missed.
    void wait_until_it_listens()
    {
        for (int i = 0; i < 200; ++i) {
            ASSERT_EQ(run_program(ZR_NEXA_MOBILE_AP_CTL, {"report", "1"}), 0);
            if (more(100)) return;
        }
        FAIL() << "it does not listen";
    }
    // The line that comes next; empty at the end. Its time is checked and cut off.
    std::string next()
    {
        while (true) {
            const size_t end = text_.find('\n');
            if (end != std::string::npos) {
                const std::string line = text_.substr(0, end);
                text_.erase(0, end + 1);
                if (line.find("report") != std::string::npos) continue;
                return line;
            }
            if (!more(20000)) return "";
        }
    }
    StartedTool& tool()
    {
        return *tool_;
    }

private:
    bool more(int patience_ms)
    {
        pollfd ready = {lines_[0], POLLIN, 0};
        char block[4096];
        if (poll(&ready, 1, patience_ms) <= 0) return false;
        const ssize_t size = read(lines_[0], block, sizeof block);
        if (size <= 0) return false;
        text_.append(block, static_cast<size_t>(size));
        return true;
    }

    int lines_[2] = {-1, -1};
    std::string text_;
    std::unique_ptr<StartedTool> tool_;
};

constexpr const char* kTime = "2[0-9]{3}-[01][0-9]-[0-3][0-9]T[0-2][0-9]:[0-5][0-9]:[0-6][0-9]\\.[0-9]{3}Z";

std::string without_time(const std::string& line)
{
    const std::regex form(std::string(kTime) + " (.*)");
    std::smatch parts;
    return std::regex_match(line, parts, form) ? parts[1].str() : "no time: " + line;
}

using WatchTest = ProgramTest;

TEST_F(WatchTest, EachIndicationIsALine)
{
    Watching watch(ctl_options(), {});
    watch.wait_until_it_listens();
    command({"WAN", "Connect", "connect", "1", "46"});
    for (const char* line :
         {"status profile-1 v4-connecting",
          "bring-up profile-1 v4-connected wwan0 address 10.101.0.2 dns 192.0.2.53 second_dns 198.51.100.53",
          "status profile-1 v4-connected", "status profile-1 v6-connecting",
          "bring-up profile-1 v6-connected wwan0 address 10.101.0.2 dns 192.0.2.53 second_dns 198.51.100.53 v6_address "
          "2001:db8:1::2 v6_dns 2001:db8:ffff::53 second_v6_dns "
          "2001:db8:ffff::153",
          "status profile-1 v6-connected"})
        EXPECT_EQ(without_time(watch.next()), line);
    EXPECT_TRUE(watch.tool().send(SIGINT));
    const ToolRun ended = watch.tool().wait();
    EXPECT_EQ(ended.status, 0);
    EXPECT_EQ(ended.err, "");
}

TEST_F(WatchTest, WithJsonALineIsAnObject)
{
    Watching watch(ctl_options(), {"--json", "--until", "v4-connected"});
    watch.wait_until_it_listens();
    command({"WAN", "Connect", "connect", "1", "4"});
    const std::regex first("\\{\"time\": \"" + std::string(kTime) +
                           "\", \"event\": \"status\", \"profile\": \"profile-1\", \"state\": \"v4-connecting\"\\}");
    const std::regex second("\\{\"time\": \"" + std::string(kTime) +
                            "\", \"event\": \"bring-up\", \"profile\": \"profile-1\", \"state\": \"v4-connected\", "
                            "\"interface\": \"wwan0\", \"address\": \"10.101.0.2\", \"dns\": \"192.0.2.53\", "
                            "\"second_dns\": \"198.51.100.53\"\\}");
    std::string line = watch.next();
    EXPECT_TRUE(std::regex_match(line, first)) << line;
    line = watch.next();
    EXPECT_TRUE(std::regex_match(line, second)) << line;
    EXPECT_EQ(watch.next(), "");
    EXPECT_EQ(watch.tool().wait().status, 0);
}

TEST_F(WatchTest, AnEndOfTheNetworksIsTold)
{
    command({"WAN", "Connect", "connect", "1", "4"});
    Watching watch(ctl_options(), {"--until", "v4-disconnected"});
    watch.wait_until_it_listens();
    happens({"call", "drop", "1", "--reason", "6:36"});
    EXPECT_EQ(without_time(watch.next()), "tear-down profile-1 v4-disconnected end_type 6 end_code 36");
    EXPECT_EQ(watch.tool().wait().status, 0);
}

TEST_F(WatchTest, OnlyTheProfileThatIsAskedForIsTold)
{
    command({"WAN", "WWANConfig", "add", "0", "2"});
    Watching watch(ctl_options({"MOBILE_AP_LOG=file:" + state.path() + "/log"}),
                   {"--profile", "2", "--until", "v4-connected"});
    const auto is_open = [&] {
        std::ostringstream log;
        log << std::ifstream(state.path() + "/log").rdbuf();
        return log.str().find("zr_nexa_wan_status_get_v1(): entry") != std::string::npos;
    };
    while (!is_open())
        std::this_thread::sleep_for(std::chrono::milliseconds(10));
    command({"WAN", "Connect", "connect", "1", "4"});
    command({"WAN", "Connect", "connect", "2", "4"});
    EXPECT_EQ(without_time(watch.next()), "status profile-2 v4-connecting");
    EXPECT_EQ(without_time(watch.next()).substr(0, 31), "bring-up profile-2 v4-connected");
    EXPECT_EQ(watch.tool().wait().status, 0);
}

TEST_F(WatchTest, TheTimeEndsIt)
{
    expect_ctl({"watch", "--for", "0.1"}, 0, "");
    expect_ctl({"watch", "--for", "0.1", "--until", "v6-connected"}, 1, "");
    expect_ctl({"watch", "--until", "v6-disconnected"}, 0, "");  // it is so already
    expect_ctl({"watch", "--until", "v4-connecting-failed", "--for", "0.1"}, 1, "");
}

TEST_F(WatchTest, ASignalEndsWaitingForAStateWith1)
{
    for (const int signo : {SIGINT, SIGTERM}) {
        Watching watch(ctl_options(), {"--until", "v4-connected"});
        watch.wait_until_it_listens();
        EXPECT_TRUE(watch.tool().send(signo));
        EXPECT_EQ(watch.tool().wait().status, 1);
    }
}

// The state comes and goes between the opening of the session and the question: only the indications tell of it.
TEST_F(WatchTest, WhatComesBeforeTheQuestionIsNotMissed)
{
    const std::string log_file = state.path() + "/log";
    Watching watch(ctl_options({"MOBILE_AP_LOG=file:" + log_file, "MOBILE_AP_FAULTS=GetWWANPolicyListEx=delay:1500"}),
                   {"--until", "v4-connected", "--for", "10"});
    const auto is_open = [&] {
        std::ostringstream log;
        log << std::ifstream(log_file).rdbuf();
        return log.str().find("zr_nexa_wan_wwanconfig_get_v2(): entry") != std::string::npos;
    };
    while (!is_open())
        std::this_thread::sleep_for(std::chrono::milliseconds(10));
    command({"WAN", "Connect", "connect", "1", "4"});
    command({"WAN", "Connect", "disconnect", "1", "4"});
    EXPECT_EQ(without_time(watch.next()), "status profile-1 v4-connecting");
    EXPECT_EQ(without_time(watch.next()).substr(0, 31), "bring-up profile-1 v4-connected");
    EXPECT_EQ(watch.tool().wait().status, 0);
}

TEST_F(WatchTest, AStateThatCannotBeReadIsStatus3)
{
    expect_ctl({"watch", "--until", "v4-connected", "--for", "10"}, 3, "",
               "zr_nexactl: zr_nexa_wan_status_get_v1: 0x2003, step 2, reading the states: the service answered 3, the "
               "service is away; or it is not ready, or its state failed or stayed busy for 10 seconds, and standard "
               "error says why\n",
               {"MOBILE_AP_FAULTS=GetWWANStatus=fail:3"});
}

}  // namespace
