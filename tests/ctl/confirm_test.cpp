// Applies that are confirmed or not, cut off, stopped, or met by another one: the program as it is run.
#include <gmock/gmock.h>
#include <sys/mount.h>

#include <chrono>
#include <filesystem>
#include <thread>

#include "platform_calls.h"
#include "program_fixture.h"

namespace {

using testing::HasSubstr;

constexpr char kFirst[] = R"(version: 1
general: {gateway_url: first.example, shortcut_engine: false}
lans:
  0: {address: 192.168.10.1/24, dhcp: {first: 192.168.10.20, last: 192.168.10.60}}
  10: {vlan: {interface: ethernet}, address: 192.168.11.1/24,
       dhcp: {first: 192.168.11.20, last: 192.168.11.60}, gateway_filters: [{protocol: tcp, ports: 80}]}
profiles:
  office:
    dial: {apn_index: 3}
    nat: {type: full-cone}
    vlans: [10]
)";

constexpr char kSecond[] = R"(version: 1
general: {gateway_url: second.example, packet_statistics: true}
profiles:
  main: {dial: {apn_index: 1}, roaming: true, nat: {type: symmetric}}
)";

constexpr char kOneChange[] = "version: 1\ngeneral: {shortcut_engine: false}\n";

class ConfirmTest : public ProgramTest {
protected:
    ConfirmTest()
    {
        first_ = written("first.yaml", kFirst);
        second_ = written("second.yaml", kSecond);
        one_ = written("one.yaml", kOneChange);
        factory_ = shown();
    }

    // Kills an apply in each of its changing calls; half of them have written by then. What is pending goes back.
    void kill_everywhere(const Words& more)
    {
        const std::string log = state.path() + "/log";
        Words words = {"apply", first_};
        words.insert(words.end(), more.begin(), more.end());
        ASSERT_EQ(ctl(words, logged(log, "")).status, 0);
        const Words calls = changing_calls(log);
        EXPECT_GT(calls.size(), 8u);
        ASSERT_EQ(ctl({"restore", "--yes"}).status, 0);
        ASSERT_EQ(shown(), factory_);
        for (size_t i = 0; i < calls.size(); ++i) {
            SCOPED_TRACE(calls[i]);
            std::filesystem::remove(log);
            StartedTool tool(words, ctl_options(logged(log, calls[i] + (i % 2 == 0 ? "=hold" : "=delay") + ":60000")));
            ASSERT_TRUE(comes([&] { return is_held() && changing_calls(log).size() >= i; }));
            std::this_thread::sleep_for(std::chrono::milliseconds(20));
            EXPECT_TRUE(tool.send(SIGKILL));
            EXPECT_EQ(tool.wait().status, 1000 + SIGKILL);
            const ToolRun told = ctl({"pending"});
            EXPECT_EQ(told.status, 1);
            EXPECT_THAT(told.out,
                        HasSubstr(more.empty() ? "an apply was cut off\n" : "an apply waits to be confirmed, "));
            const ToolRun back = ctl({"rollback", "--if-pending"});
            EXPECT_EQ(back.status, 0) << back.err;
            EXPECT_EQ(shown(), factory_);
            expect_nothing_pending();
        }
    }

    std::string first_;
    std::string second_;
    std::string one_;
    std::string factory_;
};

TEST_F(ConfirmTest, WhatIsConfirmedInTimeStays)
{
    const ToolRun applied = ctl({"apply", first_, "--confirm-within", "60"});
    EXPECT_EQ(applied.status, 0);
    EXPECT_THAT(applied.err, HasSubstr("zr_nexactl: \"zr_nexactl confirm\" within 60 s, or all is undone\n"));
    const ToolRun pending = ctl({"pending"});
    EXPECT_EQ(pending.status, 1);
    EXPECT_THAT(pending.out, testing::MatchesRegex("an apply waits to be confirmed, [0-9]+ s are left\n"));
    expect_ctl({"confirm"}, 0, "");
    expect_nothing_pending();
    EXPECT_THAT(shown(), HasSubstr("first.example"));
    expect_ctl({"confirm"}, 1, "", "zr_nexactl: nothing waits to be confirmed\n");
    expect_ctl({"rollback"}, 1, "", "zr_nexactl: nothing is pending\n");
    expect_ctl({"rollback", "--if-pending"}, 0, "");
}

TEST_F(ConfirmTest, WhatIsNotConfirmedInTimeIsUndone)
{
    EXPECT_EQ(ctl({"apply", first_, "--confirm-within", "1"}).status, 0);
    EXPECT_TRUE(comes([&] { return !is_held(); }));
    EXPECT_EQ(shown(), factory_);
    expect_nothing_pending();
}

TEST_F(ConfirmTest, AnApplyGoesOnAndIsUndoneWhenItsTerminalGoes)
{
    ToolOptions options = ctl_options({"MOBILE_AP_FAULTS=SetDataPathOptStatus=delay:300"});
    options.before_exec = [] {
        setsid();
        // Nobody reads what it says.
        int ends[2];
        if (pipe(ends) != 0) _exit(127);
        dup2(ends[1], STDOUT_FILENO);
        dup2(ends[1], STDERR_FILENO);
        close(ends[0]);
        close(ends[1]);
    };
    StartedTool tool({"apply", one_, "--confirm-within", "1"}, options);
    ASSERT_TRUE(comes([&] { return is_held(); }));
    EXPECT_EQ(kill(-tool.pid(), SIGHUP), 0);
    EXPECT_EQ(tool.wait().status, 0);
    EXPECT_TRUE(comes([&] { return !is_held(); }));
    EXPECT_EQ(shown(), factory_);
}

TEST_F(ConfirmTest, AFollowUpKeepsTheFirstStateAndSetsTheClockAnew)
{
    EXPECT_EQ(ctl({"apply", first_, "--confirm-within", "3"}).status, 0);
    const ToolRun second = ctl({"apply", second_, "--confirm-within", "60"});
    EXPECT_EQ(second.status, 0) << second.err;
    EXPECT_THAT(ctl({"pending"}).out,
                testing::MatchesRegex("an apply waits to be confirmed, (60|5[0-9]) s are left\n"));
    const std::string shown_then = shown();
    EXPECT_THAT(shown_then, HasSubstr("second.example"));
    EXPECT_EQ(ctl({"rollback"}).status, 0);
    EXPECT_EQ(shown(), factory_);
    expect_nothing_pending();
}

TEST_F(ConfirmTest, ARefusedFollowUpLeavesTheFirstPending)
{
    EXPECT_EQ(ctl({"apply", first_, "--confirm-within", "60"}).status, 0);
    const std::string between = shown();
    EXPECT_EQ(ctl({"apply", second_, "--confirm-within", "600"}, {"MOBILE_AP_FAULTS=SetNatType#1=fail:3"}).status, 4);
    EXPECT_EQ(shown(), between);
    EXPECT_THAT(ctl({"pending"}).out,
                testing::MatchesRegex("an apply waits to be confirmed, (60|5[0-9]) s are left\n"));
    EXPECT_EQ(ctl({"rollback"}).status, 0);
    EXPECT_EQ(shown(), factory_);
}

TEST_F(ConfirmTest, WithoutTheOptionAnApplyIsRefusedWhileOneWaits)
{
    EXPECT_EQ(ctl({"apply", one_, "--confirm-within", "60"}).status, 0);
    const ToolRun refused = ctl({"apply", second_});
    EXPECT_EQ(refused.status, 6);
    EXPECT_THAT(refused.err, testing::MatchesRegex("zr_nexactl: an apply waits to be confirmed, [0-9]+ s are left: "
                                                   "\"zr_nexactl confirm\", or \"zr_nexactl rollback\"\n"));
    EXPECT_EQ(ctl({"diff", second_}).status, 1);
    EXPECT_EQ(ctl({"rollback"}).status, 0);
    EXPECT_EQ(shown(), factory_);
}

TEST_F(ConfirmTest, AfterAnotherBootTheTimeIsOver)
{
    EXPECT_EQ(ctl({"apply", first_, "--confirm-within", "600"}).status, 0);
    std::ifstream in(held_file());
    const std::string text((std::istreambuf_iterator<char>(in)), {});
    const size_t boot = text.find("boot: \"") + 7;
    std::string other = text;
    other.replace(boot, 8, "00000000");
    // The process that waits sees it as well, and goes back by itself.
    std::ofstream(held_file() + ".other") << other;
    std::filesystem::rename(held_file() + ".other", held_file());
    EXPECT_TRUE(comes([&] { return !is_held(); }));
    EXPECT_EQ(shown(), factory_);

    // As a start-up script finds it.
    std::ofstream(held_file()) << other;
    EXPECT_EQ(ctl({"run", "General", "SFE", "disable"}).status, 0);
    expect_ctl({"pending"}, 1, "an apply was not confirmed in time\n");
    expect_ctl({"confirm"}, 1, "", "zr_nexactl: the time for confirming is over: \"zr_nexactl rollback\"\n");
    expect_ctl({"apply", one_, "--confirm-within", "9"}, 6, "",
               "zr_nexactl: an apply was not confirmed in time: \"zr_nexactl rollback\"\n");
    // The LAN may be stored and not in use: it is written again.
    expect_ctl({"rollback", "--if-pending"}, 0, "general.shortcut_engine: false -> true\n",
               "zr_nexactl: LAN 0 is activated anew: its devices lose the connection for a moment\n");
    EXPECT_EQ(shown(), factory_);
}

TEST_F(ConfirmTest, ASecondApplyIsToldWhoHoldsTheLock)
{
    StartedTool tool({"apply", one_}, ctl_options({"MOBILE_AP_FAULTS=SetDataPathOptStatus=delay:60000"}));
    ASSERT_TRUE(comes([&] { return is_held(); }));
    const std::string holder = "process " + std::to_string(tool.pid()) + " holds the lock of " + held_folder();
    expect_ctl({"pending"}, 1, "an apply is under way: " + holder + "\n");
    const std::string told = "zr_nexactl: " + holder + "\n";
    for (const Words& words : std::vector<Words>{
             {"apply", second_}, {"confirm"}, {"rollback"}, {"rollback", "--if-pending"}, {"restore", "--yes"}})
        expect_ctl(words, 6, "", told);
    EXPECT_TRUE(tool.send(SIGTERM));
    EXPECT_EQ(tool.wait().status, 4);
    EXPECT_EQ(shown(), factory_);
    expect_nothing_pending();
}

TEST_F(ConfirmTest, ARestoreDropsWhatIsPending)
{
    EXPECT_EQ(ctl({"apply", first_, "--confirm-within", "600"}).status, 0);
    expect_ctl({"restore", "--yes"}, 0, "");
    expect_nothing_pending();
    EXPECT_EQ(shown(), factory_);
}

TEST_F(ConfirmTest, KilledAtEachCallItIsTakenBack)
{
    kill_everywhere({});
}

TEST_F(ConfirmTest, KilledAtEachCallWhileItWouldWaitItIsTakenBack)
{
    kill_everywhere({"--confirm-within", "600"});
}

TEST_F(ConfirmTest, AnApplyBehindOneThatWasCutOffGoesOn)
{
    StartedTool tool({"apply", first_}, ctl_options({"MOBILE_AP_FAULTS=SetNatType=delay:60000"}));
    ASSERT_TRUE(comes([&] { return is_held(); }));
    ASSERT_TRUE(comes([&] { return shown().find("apn_index: 3") != std::string::npos; }));
    EXPECT_TRUE(tool.send(SIGKILL));
    tool.wait();
    const ToolRun refused = ctl({"apply", second_}, {"MOBILE_AP_FAULTS=SetNatType#1=fail:3"});
    EXPECT_EQ(refused.status, 4);
    EXPECT_THAT(refused.err,
                HasSubstr("zr_nexactl: an apply was cut off; its state is kept as the one to go back to\n"));
    EXPECT_EQ(shown(), factory_);
    expect_nothing_pending();
}

TEST_F(ConfirmTest, ASignalUndoesWhatWasBegun)
{
    for (const int signo : {SIGINT, SIGTERM}) {
        StartedTool tool({"apply", first_}, ctl_options({"MOBILE_AP_FAULTS=SetNatType#1=delay:60000"}));
        ASSERT_TRUE(comes([&] { return shown().find("apn_index: 3") != std::string::npos; }));
        EXPECT_TRUE(tool.send(signo));
        tool.send(signo);  // changes nothing
        tool.send(SIGTERM);
        const ToolRun stopped = tool.wait();
        EXPECT_EQ(stopped.status, 4) << stopped.err;
        EXPECT_EQ(shown(), factory_);
        expect_nothing_pending();
    }
}

TEST_F(ConfirmTest, ASignalBeforeTheFirstChangeChangesNothing)
{
    StartedTool tool({"apply", first_}, ctl_options({"MOBILE_AP_FAULTS=GetVLANConfig=delay:60000"}));
    ASSERT_TRUE(comes([&] { return access((held_folder() + "/lock").c_str(), F_OK) == 0; }));
    EXPECT_TRUE(tool.send(SIGTERM));
    EXPECT_EQ(tool.wait().status, 1000 + SIGTERM);
    EXPECT_EQ(shown(), factory_);
    expect_nothing_pending();
}

TEST_F(ConfirmTest, TheFileOfGreIsPutBackByteForByte)
{
    const bool ran = in_private_mounts([&] {
        ASSERT_EQ(mount("none", "/etc", "tmpfs", 0, nullptr), 0);
        ASSERT_EQ(mount("none", "/run", "tmpfs", 0, nullptr), 0);
        std::filesystem::create_directories("/etc/data/ipa");
        std::filesystem::create_directories("/run/data");
        const std::string path = "/etc/data/ipa/IPACM_cfg.xml";
        const std::string kept = "<system>  <IPACM><GREFlag><GREEnabled>0</GREEnabled></GREFlag>\n\n</IPACM></system>";
        const auto content = [&path] {
            std::ifstream file(path);
            return std::string((std::istreambuf_iterator<char>(file)), {});
        };
        std::ofstream(path) << kept;
        const std::string gre = written("gre.yaml",
                                        "version: 1\ngeneral: {ipv6: false}\n"
                                        "gre: {enabled: true, servers: [10.0.0.1], masks: [255.0.0.0]}\n");
        const std::string more = written("more.yaml",
                                         "version: 1\ngre: {enabled: true, servers: [10.0.0.1], masks: [255.0.0.0]}\n"
                                         "write_only: {alg: {1: true}}\n");
        const ToolRun refused = ctl({"apply", more}, {"MOBILE_AP_FAULTS=EnableAlg=fail:3"});
        EXPECT_EQ(refused.status, 4) << refused.err;
        EXPECT_THAT(refused.out, testing::StartsWith("gre.enabled: false -> true\n"));
        EXPECT_EQ(content(), kept);
        expect_nothing_pending();

        EXPECT_EQ(ctl({"apply", gre, "--confirm-within", "600"}).status, 0);
        EXPECT_NE(content(), kept);
        EXPECT_EQ(ctl({"rollback"}).status, 0);
        EXPECT_EQ(content(), kept);
        expect_nothing_pending();
        EXPECT_FALSE(std::filesystem::exists(held_folder() + "/IPACM_cfg.xml"));

        EXPECT_EQ(ctl({"apply", gre}).status, 0);
        expect_ctl({"apply", gre}, 0, "", "zr_nexactl: nothing differs\n");
        EXPECT_FALSE(std::filesystem::exists(held_folder() + "/IPACM_cfg.xml"));
    });
    if (!ran) GTEST_SKIP() << "mounts of one's own are not allowed here";
}

TEST_F(ConfirmTest, WithJsonEachStepIsAnObject)
{
    expect_ctl({"apply", one_, "--json"}, 0,
               "{\"plan\": [\"general.shortcut_engine: true -> false\"]}\n"
               "{\"step\": [\"general.shortcut_engine: true -> false\"], \"outcome\": \"done\"}\n"
               "{\"status\": 0, \"left\": [], \"problems\": []}\n");
    expect_ctl({"apply", one_, "--json"}, 0, "{\"status\": 0, \"left\": [], \"problems\": []}\n");
    const ToolRun refused = ctl({"apply", second_, "--json"}, {"MOBILE_AP_FAULTS=SetNatType#1=fail:3"});
    EXPECT_EQ(refused.status, 4);
    std::istringstream lines(refused.out);
    for (std::string line; std::getline(lines, line);)
        EXPECT_THAT(line, testing::MatchesRegex("\\{.*\\}"));
    EXPECT_THAT(refused.out, HasSubstr("\"outcome\": \"refused\", \"function\": \"zr_nexa_nat_type_set_v1\", "
                                       "\"code\": 8195, \"words\": "));
    EXPECT_THAT(refused.out, HasSubstr("{\"undo\": [\"general.gateway_url: second.example -> mobileap.home\"], "
                                       "\"outcome\": \"done\"}\n"));
    EXPECT_THAT(refused.out, testing::ContainsRegex(
                                 "\\{\"status\": 4, \"left\": \\[\\], \"problems\": \\[\"refused: [^\n]*\"\\]\\}\n$"));
}

}  // namespace
