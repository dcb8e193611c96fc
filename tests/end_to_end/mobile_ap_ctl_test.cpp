// The development tool as a process: its words, what it prints, its statuses, and what commands see of it.
#include <unistd.h>

#include <chrono>
#include <filesystem>
#include <fstream>
#include <sstream>
#include <thread>

#include "run_tool.h"

namespace {

class MobileApCtlTest : public ToolTest {
protected:
    ToolRun ctl(const std::vector<std::string>& words) const
    {
        return ctl(words, options());
    }
    static ToolRun ctl(const std::vector<std::string>& words, ToolOptions with)
    {
        with.program = ZR_NEXA_MOBILE_AP_CTL;
        return run_tool(words, with);
    }
    void expect_ctl(const std::vector<std::string>& words, int status, const std::string& out, const std::string& err)
    {
        std::string shown = "mobile_ap_ctl";
        for (const std::string& word : words)
            shown += " \"" + word + "\"";
        SCOPED_TRACE(shown);
        const ToolRun seen = ctl(words);
        EXPECT_EQ(seen.out, out);
        EXPECT_EQ(seen.err, err);
        EXPECT_EQ(seen.status, status);
    }
    void done(const std::vector<std::string>& words, const std::string& out = "")
    {
        expect_ctl(words, 0, out, "");
    }
    std::string scenario(const std::string& text) const
    {
        const std::string path = state.path() + "/scenario.txt";
        std::ofstream(path) << text;
        return path;
    }
    // "connected disconnected": what the command shows of profile 1, or its verdict.
    std::string wan_status() const
    {
        const std::string out = run({"WAN", "Status", "get", "1"}).out;
        const size_t v4 = out.find("v4 ");
        const size_t v6 = out.find("v6 ");
        if (v4 == std::string::npos || v6 == std::string::npos) return out;
        return out.substr(v4 + 3, out.find('\r', v4) - v4 - 3) + " " + out.substr(v6 + 3, out.find('\r', v6) - v6 - 3);
    }
    void connect(const std::string& families) const
    {
        const ToolRun seen = run({"WAN", "Connect", "connect", "1", families});
        EXPECT_EQ(seen.out.substr(seen.out.rfind("CMD")), "CMD OK\r\n") << seen.out;
    }
};

TEST_F(MobileApCtlTest, EveryCommandIsDone)
{
    connect("46");
    done({"traffic", "1", "--down", "5000000", "--up", "20"});
    done({"call", "drop", "1", "--reason", "6:36"}, "profile 1: IPv4 call ended\nprofile 1: IPv6 call ended\n");
    expect({"WAN", "ReConnect", "set", "1", "1"}, "WAN ReConnect set enable success\r\nCMD OK\r\n");
    connect("4");
    done({"call", "drop", "1"}, "profile 1: IPv4 call ended; dialled again in 3 s\n");
    done({"call", "refuse", "1", "disconnect", "--times", "2"});
    done({"call", "slow", "1", "100"});
    done({"roam", "on"});
    done({"roam", "off"});
    done({"device", "join", "02:00:00:00:00:07", "192.168.225.21", "my laptop"});
    done({"device", "leave", "02:00:00:00:00:07"});
    done({"device", "leave", "--all"});
    done({"sip", "add", "--fqdn", "pcscf.example"});
    done({"sip", "clear"});
    done({"report", "1"});
    done({"service", "restart"}, "the service is back in 2 s\n");
    done({"service", "away", "3"}, "the service is back in 3 s\n");
    done({"service", "away", "0"});
    done({"forget"}, "events taken back: 0\n");
}

TEST_F(MobileApCtlTest, WrongWordsChangeNothing)
{
    const auto wrong = [&](const std::vector<std::string>& words, const std::string& reason) {
        expect_ctl(words, 2, "", "mobile_ap_ctl: " + reason + "; see --help\n");
    };
    wrong({}, "A subcommand is required");
    wrong({"nonsense"}, "\"nonsense\" is no word that is known here");
    wrong({"call", "dorp", "1"}, "\"dorp\" is no word that is known here");
    wrong({"call", "drop", "51"}, "profile: Value 51 not in range 1 to 50");
    wrong({"call", "drop", "1", "--reason", "x"}, "--reason: two numbers, as in 6:36, not x");
    wrong({"call", "drop", "1", "roam", "on"}, "The following arguments were not expected: on roam");
    wrong({"play"}, "file is required");
    wrong({"play", "/nonexistent"}, "file: File does not exist: /nonexistent");
    wrong({"play", "/tmp"}, "file: File is actually a directory: /tmp");
    EXPECT_FALSE(std::filesystem::exists(database()));
}

TEST_F(MobileApCtlTest, WhatCannotBeDoneIsTold)
{
    expect_ctl({"call", "drop", "1"}, 1, "", "mobile_ap_ctl: no such call\n");
    expect_ctl({"call", "drop", "2"}, 1, "", "mobile_ap_ctl: no such profile\n");
    expect_ctl({"traffic", "1"}, 1, "", "mobile_ap_ctl: no such call\n");
    expect_ctl({"device", "leave", "02:00:00:00:00:07"}, 1, "", "mobile_ap_ctl: no such device\n");
    expect_ctl({"sip", "clear", "--bridge", "5"}, 1, "", "mobile_ap_ctl: no such LAN bridge\n");
    expect_ctl({"sip", "add", "--address", "x"}, 1, "", "mobile_ap_ctl: a value is out of range\n");
}

TEST_F(MobileApCtlTest, WithoutAStateFolderNothingIsDone)
{
    const ToolRun seen = ctl({"roam", "on"}, ToolOptions{"/nonexistent/state"});
    EXPECT_EQ(seen.out, "");
    EXPECT_EQ(seen.err, "mobile_ap_ctl: mobile-AP state /nonexistent/state: No such file or directory\n");
    EXPECT_EQ(seen.status, 1);
}

TEST_F(MobileApCtlTest, HelpTeaches)
{
    const ToolRun seen = ctl({"--help"}, ToolOptions{"/nonexistent/state"});
    EXPECT_EQ(seen.status, 0);
    EXPECT_EQ(seen.err, "");
    for (const char* word : {"\n  call ", "\n  service ", "\n  roam ", "\n  traffic ", "\n  device ", "\n  sip ",
                             "\n  report ", "\n  play ", "\n  forget ", "Examples:", "Statuses: 0 done"}) {
        EXPECT_NE(seen.out.find(word), std::string::npos) << word << "\n" << seen.out;
    }
    for (const std::vector<std::string>& words : std::vector<std::vector<std::string>>{
             {"call", "drop", "--help"}, {"service", "away", "-h"}, {"play", "--help"}, {"device", "join", "--help"}}) {
        const ToolRun help = ctl(words);
        EXPECT_EQ(help.status, 0);
        EXPECT_NE(help.out.find("Usage: mobile_ap_ctl " + words[0]), std::string::npos) << help.out;
    }
}

// Every example in the help is one that works.
TEST_F(MobileApCtlTest, TheExamplesInTheHelpWork)
{
    connect("46");
    std::ofstream(state.path() + "/bad_day.txt") << "0 roam on\n";
    ToolOptions here = options();
    here.before_exec = [&] { EXPECT_EQ(chdir(state.path().c_str()), 0); };
    std::istringstream help(ctl({"--help"}).out);
    int examples = 0;
    for (std::string line; std::getline(help, line);) {
        if (line.rfind("  mobile_ap_ctl ", 0) != 0) continue;
        std::istringstream text(line.substr(16, line.find("  ", 16) - 16));
        std::vector<std::string> words;
        for (std::string word; text >> word;)
            words.push_back(word);
        const ToolRun seen = ctl(words, here);
        EXPECT_EQ(seen.status, 0) << line << "\n" << seen.err;
        ++examples;
        if (words[0] == "service") ctl({"service", "away", "0"});
    }
    EXPECT_EQ(examples, 7);
}

TEST_F(MobileApCtlTest, EmptyWordsAreTold)
{
    expect_ctl({"sip", "add", "", "--x"}, 2, "", "mobile_ap_ctl: an empty word makes no sense\n");
}

TEST_F(MobileApCtlTest, CommandsMeetAnAwayService)
{
    connect("4");
    done({"service", "away", "600"}, "the service is back in 600 s\n");
    EXPECT_EQ(wan_status(), "CMD Error#0xd\r\n");
    // What is not about the service waits for it.
    done({"call", "drop", "1"}, "the service is away; this happens when it is back\n");
    done({"device", "join", "02:00:00:00:00:07", "192.168.225.21", "my laptop"},
         "the service is away; this happens when it is back\n");
    done({"service", "away", "0"});
    EXPECT_EQ(wan_status(), "disconnected disconnected");
    done({"device", "leave", "02:00:00:00:00:07"});
}

TEST_F(MobileApCtlTest, AScenarioHappensAtItsTimes)
{
    connect("46");
    const auto start = std::chrono::steady_clock::now();
    done({"play", scenario("# a bad second\r\n"
                           "900ms call drop 1 --family 4   # the network goes\r\n"
                           "0     device join 02:00:00:00:00:07 192.168.225.21 \"my laptop\"\r\n"
                           "1min  roam on\r\n")},
         "events to come: 3\n");
    done({"device", "leave", "02:00:00:00:00:07"});
    std::string seen;
    while ((seen = wan_status()) == "connected connected") {
        ASSERT_LT(std::chrono::steady_clock::now() - start, std::chrono::seconds(30));
        std::this_thread::sleep_for(std::chrono::milliseconds(20));
    }
    EXPECT_GE(std::chrono::steady_clock::now() - start, std::chrono::milliseconds(900));
    EXPECT_EQ(seen, "disconnected connected");
    done({"forget"}, "events taken back: 1\n");
    done({"forget"}, "events taken back: 0\n");
}

TEST_F(MobileApCtlTest, AScenarioWithAWrongLineIsNotPlayed)
{
    const std::string path = scenario("0 roam on\n\n5s call drop 1 --family 5\n6s nonsense\n");
    expect_ctl({"play", path}, 2, "", "mobile_ap_ctl: " + path + ": line 3: --family: 5 not in {4,6}\n");
    scenario("0 roam on\nsoon roam off\n");
    expect_ctl({"play", path}, 2, "",
               "mobile_ap_ctl: " + path + ": line 2: \"soon\" is no time such as 500ms, 2s or 1min, a week at most\n");
    done({"forget"}, "events taken back: 0\n");
    scenario("");
    done({"play", path}, "events to come: 0\n");
}

TEST_F(MobileApCtlTest, AnEventThatIsRefusedIsToldByWhoeverLooks)
{
    done({"play", scenario("0 call drop 9\n")}, "events to come: 1\n");
    const ToolRun seen = run({"WAN", "Status", "get", "1"});
    EXPECT_EQ(seen.out, "WAN Status:\r\nv4 disconnected\r\nv6 disconnected\r\nCMD OK\r\n");
    EXPECT_EQ(seen.err, "mobile-AP event \"call drop 9\": no such profile\n");
}

// What is told has been done: a reader that has gone ends the tool when it tells, not before.
TEST_F(MobileApCtlTest, WhatIsDoneStaysDoneThoughNobodyReads)
{
    connect("4");
    ToolOptions unread = options();
    unread.before_exec = [] {
        int ends[2];
        if (pipe(ends) != 0) _exit(126);
        dup2(ends[1], STDOUT_FILENO);
        close(ends[0]);
        close(ends[1]);
    };
    ctl({"call", "drop", "1"}, unread);
    EXPECT_EQ(wan_status(), "disconnected disconnected");
}

}  // namespace
